#include "truetype/reader/detail/outline.h"

#include <algorithm>
#include <bit>

#include "truetype/reader/detail/placement.h"
#include "truetype/reader/glyphs.h"

namespace ulm::truetype::detail {
namespace {

constexpr std::size_t kContourEnds = 10;
constexpr std::uint8_t kRepeat = 0x08;

// How the flags of a point decode: of the 16 bits at a coordinate's place these, times a factor,
// are its change in 256ths, modulo 2^32, and so many bytes are used up.
struct PointForm {
  std::uint32_t xMask, xFactor, yMask, yFactor;
  std::uint32_t xLength, yLength;
  std::uint64_t lengths;  // xLength, and yLength in the upper half
};

constexpr std::size_t formOf(std::uint32_t flags) noexcept { return flags >> 1 & 0x1F; }

struct PointForms {
  PointForm forms[32] = {};
  constexpr PointForms() noexcept {
    for (std::uint32_t flags = 0; flags < 0x40; flags += 2) {
      PointForm& form = forms[formOf(flags)];
      const bool positiveX = (flags & 0x10) != 0, positiveY = (flags & 0x20) != 0;
      set((flags & 0x02) != 0, positiveX, form.xMask, form.xFactor, form.xLength);
      set((flags & 0x04) != 0, positiveY, form.yMask, form.yFactor, form.yLength);
      form.lengths = std::uint64_t{form.yLength} << 32 | form.xLength;
    }
  }

 private:
  // Without the byte bit the positive bit means "the same as before".
  static constexpr void set(bool isByte, bool positive, std::uint32_t& mask, std::uint32_t& factor,
                            std::uint32_t& length) noexcept {
    mask = isByte ? 0xFF00u : (positive ? 0u : 0xFFFFu);
    factor = isByte ? (positive ? 1u : 0xFFFFFFFFu) : 256u;
    length = isByte ? 1u : (positive ? 0u : 2u);
  }
};
constexpr PointForms kPointForms;

// Both coordinates of all points. `read` gives the 16 bits at a place, also up to two bytes beyond
// the last coordinate, where it does not matter what.
template <class Read>
void decodeCoordinates(Read read, std::size_t xPlace, std::size_t yPlace, std::uint32_t count,
                       PointOffset offset, GlyphPoint* points) noexcept {
  std::uint32_t x = std::uint32_t{offset.x} << 8, y = std::uint32_t{offset.y} << 8;
  for (GlyphPoint* point = points; point != points + count; ++point) {
    const PointForm& form = kPointForms.forms[formOf(point->flags)];
    x += (read(xPlace) & form.xMask) * form.xFactor;
    y += (read(yPlace) & form.yMask) * form.yFactor;
    xPlace += form.xLength;
    yPlace += form.yLength;
    point->x = static_cast<std::int16_t>(x >> 8);
    point->y = static_cast<std::int16_t>(y >> 8);
  }
}

// Where the coordinates of a simple glyph lie.
struct CoordinatePlaces {
  std::size_t x, y, end;
};

std::size_t flagsOffset(ByteView glyph, std::uint32_t contours) noexcept {
  const std::size_t instructions = kContourEnds + 2 * std::size_t{contours};
  return instructions + 2 + glyph.readOrZero<std::uint16_t>(instructions);
}

// Passes over the flags of `count` points from `at` on, which ends after those that were read,
// and hands `store` each with the index of its point. Nothing where a repeat passes the last point
// or the data is cut.
template <class Store>
std::optional<CoordinatePlaces> readFlags(ByteView glyph, std::size_t& at, std::uint32_t count,
                                          Store store) noexcept {
  if (count == 0) return std::nullopt;
  std::uint64_t lengths = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (at >= glyph.size()) return std::nullopt;
    const auto flag = glyph.readHeld<std::uint8_t>(at++);
    const std::uint64_t own = kPointForms.forms[formOf(flag)].lengths;
    lengths += own;
    store(i, flag);
    if ((flag & kRepeat) == 0) continue;
    const std::uint32_t repeats = glyph.readOrZero<std::uint8_t>(at++);
    if (repeats >= count - i) return std::nullopt;
    lengths += own * repeats;
    for (const std::uint32_t last = i + repeats; i < last;) store(++i, flag);
  }
  const std::size_t xLength = static_cast<std::uint32_t>(lengths), yLength = lengths >> 32;
  if (!glyph.holds(at, xLength + yLength)) return std::nullopt;
  return CoordinatePlaces{at, at + xLength, at + xLength + yLength};
}

// The glyph holds the ends of all its contours.
std::uint16_t contourEnd(ByteView glyph, std::size_t contour) noexcept {
  return glyph.readHeld<std::uint16_t>(kContourEnds + 2 * contour);
}

// The ends of contours, of which there is at least one.
struct ContourEnds {
  std::uint32_t most = 0;
  bool rising = true;
};
ContourEnds readContourEnds(ByteView glyph, std::uint32_t contours) noexcept {
  ContourEnds ends{contourEnd(glyph, 0), true};
  for (std::uint32_t i = 1, before = ends.most; i < contours; ++i) {
    const std::uint32_t end = contourEnd(glyph, i);
    ends.rising = ends.rising && end > before;
    if (end > ends.most) ends.most = end;
    before = end;
  }
  return ends;
}

// How many points end a contour: with ends that do not rise, several contours may share one. Time
// grows with the contours and the points, of which there are `count`.
std::uint32_t countDistinctEnds(ByteView glyph, std::uint32_t contours,
                                std::uint32_t count) noexcept {
  std::uint64_t marks[0x10000 / 64];
  const std::size_t words = (std::size_t{count} + 63) / 64;
  std::fill_n(marks, words, std::uint64_t{0});
  for (std::size_t i = 0; i < contours; ++i) {
    const std::uint16_t end = contourEnd(glyph, i);
    marks[end / 64] |= std::uint64_t{1} << end % 64;
  }
  std::uint32_t distinct = 0;
  for (std::size_t i = 0; i < words; ++i)
    distinct += static_cast<std::uint32_t>(std::popcount(marks[i]));
  return distinct;
}

// Whether no repeat passes the last of `count` points, eight flags at a step. From `at` on there
// are more bytes than six for each of them, and they take two at the most. `at` ends after them.
bool repeatsFit(ByteView flags, std::size_t& at, std::uint32_t count) noexcept {
  constexpr std::uint64_t kRepeats = 0x0101010101010101u * kRepeat;
  for (std::uint32_t i = 0; i < count;) {
    const std::uint64_t repeats = flags.readHeld<std::uint64_t>(at) & kRepeats;
    const auto plain = static_cast<std::uint32_t>(std::countl_zero(repeats)) / 8;
    at += plain;
    i += plain;
    if (plain == 8 || i >= count) continue;
    const std::uint32_t more = flags.readHeld<std::uint8_t>(at + 1);
    if (more >= count - i) return false;
    at += 2;
    i += more + 1;
  }
  return true;
}

// Nothing where the record is cut.
std::optional<Component> readComponent(ByteView glyph, std::size_t record) noexcept {
  const std::uint16_t flags = glyph.readOrZero<std::uint16_t>(record);
  if (!glyph.holds(record, componentSize(flags))) return std::nullopt;
  return Component{flags, glyph.readOrZero<std::uint16_t>(record + 2)};
}

// Counts points and work, and stops at the bound. The most points at any time are the room needed:
// a composite whose chain is cut gives back what it had.
struct Measure {
  OutlineTotals totals = {};
  std::uint32_t most = 0;
  std::uint32_t records = 0;
  std::uint64_t work = 0;

  bool enterRecord() noexcept {
    return ++records <= kMostComponentRecords && work <= kMostOutlineWork;
  }
  PointOffset offsetIn(const ComponentFrame&, std::uint16_t) const noexcept { return {}; }
  void addSimple(ByteView glyph, std::uint32_t contours, const ComponentFrame& within,
                 std::uint16_t flags) noexcept {
    const OutlineTotals before = totals;
    add(contours, simplePointCount(glyph, contours));
    place(before, within, flags);
  }
  // The points since `before` are those of the frame's present record.
  void place(const OutlineTotals& before, const ComponentFrame&, std::uint16_t flags) noexcept {
    work += placementWork(flags) * (totals.room - before.room);
  }
  bool withinBounds() const noexcept { return work <= kMostOutlineWork; }

 protected:
  void add(std::uint32_t contours, std::uint32_t points) noexcept {
    work += contours + std::uint64_t{points};
    if (withinBounds()) totals.room += points;
    if (totals.room > most) most = totals.room;
  }
};

// Counts as Measure does, and also what the outline will hold.
struct Count : Measure {
  void addSimple(ByteView glyph, std::uint32_t, const ComponentFrame& within,
                 std::uint16_t flags) noexcept {
    const OutlineTotals before = totals;
    const SimpleShape shape = simpleShape(glyph);
    add(shape.ends, shape.room);
    totals.points += shape.points;
    totals.contours += shape.contours;
    place(before, within, flags);
  }
};

// Fills an array that Measure has found large enough. Moves cost nothing, however deep they nest:
// they add up on the way down, from the innermost record that scales, whose points they follow.
struct Decode {
  GlyphPoint* points;
  OutlineTotals totals = {};

  bool enterRecord() noexcept { return true; }
  PointOffset offsetIn(const ComponentFrame& within, std::uint16_t flags) const noexcept {
    if (isScaled(flags)) return {};
    return within.offset + readOffset(within.glyph, within.record);
  }
  void addSimple(ByteView glyph, std::uint32_t contours, const ComponentFrame& within,
                 std::uint16_t flags) noexcept {
    const OutlineTotals before = totals;
    const std::uint32_t added = simplePointCount(glyph, contours);
    const PointOffset offset = offsetIn(within, flags);
    if (!decodeSimplePoints(glyph, contours, added, offset, points + before.points)) return;
    totals.points += added;
    place(before, within, flags);
  }
  void place(const OutlineTotals& before, const ComponentFrame& within,
             std::uint16_t flags) noexcept {
    const std::uint32_t count = totals.points - before.points;
    if (count == 0 || !isScaled(flags)) return;
    placePoints(within.glyph, within.record, within.offset, points + before.points, count);
  }
  bool withinBounds() const noexcept { return true; }
};

// Visits all components of a composite, each before it is placed.
template <class Sink>
WalkEnd walkComponents(const TrueTypeFont& font, std::uint32_t glyphIndex, ComponentPath& path,
                       Sink& sink) noexcept {
  path.clear();
  ComponentFrame now = frameOf(glyphView(font, glyphIndex), glyphIndex);
  for (;;) {
    const std::optional<Component> component =
        now.next == kNoRecord ? std::nullopt : readComponent(now.glyph, now.next);
    if (!component) {  // this composite has ended, or its chain is cut
      const bool cut = now.next != kNoRecord;
      const OutlineTotals before = now.before;
      if (cut) sink.totals = before;
      if (path.empty()) return !cut && sink.withinBounds() ? WalkEnd::kWhole : WalkEnd::kNoOutline;
      now = path.pop();
      sink.place(before, now, now.glyph.template readHeld<std::uint16_t>(now.record));
      continue;
    }
    if (!sink.enterRecord()) return WalkEnd::kNoOutline;
    const std::uint16_t flags = component->flags;
    now.record = now.next;
    now.next = (flags & kMoreComponents) != 0 ? now.record + componentSize(flags) : kNoRecord;
    const std::uint32_t index = component->glyphIndex;
    if (index >= font.numGlyphs || path.leadsBack(now, index)) continue;
    const ByteView glyph = glyphView(font, index);
    const std::int32_t contours = glyph.readOrZero<std::int16_t>(0);
    if (contours > 0) {
      sink.addSimple(glyph, static_cast<std::uint32_t>(contours), now, flags);
    } else if (contours == -1) {
      if (!path.push(now)) return WalkEnd::kNoMemory;
      now = frameOf(glyph, index, sink.totals, sink.offsetIn(now, flags));
    }
  }
}

}  // namespace

std::uint32_t simplePointCount(ByteView glyph, std::uint32_t contours) noexcept {
  if (!glyph.holds(kContourEnds, 2 * std::size_t{contours})) return 0;
  return readContourEnds(glyph, contours).most + 1;
}

// The lengths of coordinates matter near the end of glyf alone.
SimpleShape simpleShape(ByteView glyph) noexcept {
  const std::int32_t stored = glyph.readOrZero<std::int16_t>(0);
  if (stored <= 0) return {};
  const auto contours = static_cast<std::uint32_t>(stored);
  SimpleShape shape{};
  shape.ends = static_cast<std::uint16_t>(stored);
  if (!glyph.holds(kContourEnds, 2 * std::size_t{contours})) return shape;
  const ContourEnds ends = readContourEnds(glyph, contours);
  const std::uint32_t count = shape.room = ends.most + 1;
  std::size_t at = flagsOffset(glyph, contours);
  constexpr std::size_t kMostPointBytes = 6;  // a flag, its repeat and two words
  const bool isWhole =
      glyph.from(at).size() / kMostPointBytes > count
          ? repeatsFit(glyph, at, count)
          : readFlags(glyph, at, count, [](std::uint32_t, std::uint8_t) {}).has_value();
  static_assert(INT32_MAX + std::int64_t{0xFFFF} < UINT32_MAX);  // images have 31 bits of bytes
  shape.reach = static_cast<std::uint32_t>(at);
  if (!isWhole) return shape;
  shape.points = count;
  shape.contours = ends.rising
                       ? shape.ends
                       : static_cast<std::uint16_t>(countDistinctEnds(glyph, contours, count));
  return shape;
}

bool decodeSimplePoints(ByteView glyph, std::uint32_t contours, std::uint32_t count,
                        PointOffset offset, GlyphPoint* points) noexcept {
  const auto store = [points](std::uint32_t at, std::uint8_t flag) { points[at].flags = flag; };
  std::size_t flags = flagsOffset(glyph, contours);
  const std::optional<CoordinatePlaces> places = readFlags(glyph, flags, count, store);
  if (!places) return false;
  if (glyph.holds(places->end, 2)) {
    const auto read = [glyph](std::size_t at) -> std::uint32_t {
      return glyph.readHeld<std::uint16_t>(at);
    };
    decodeCoordinates(read, places->x, places->y, count, offset, points);
  } else {
    const auto read = [glyph](std::size_t at) -> std::uint32_t {
      return std::uint32_t{glyph.readOrZero<std::uint8_t>(at)} << 8 |
             glyph.readOrZero<std::uint8_t>(at + 1);
    };
    decodeCoordinates(read, places->x, places->y, count, offset, points);
  }
  for (std::size_t i = 0; i < contours; ++i) {
    points[contourEnd(glyph, i)].flags |= kPointEndsContour;
  }
  return true;
}

WalkEnd measureComposite(const TrueTypeFont& font, std::uint32_t glyphIndex, ComponentPath& path,
                         std::uint32_t* outRoom) noexcept {
  Measure measure;
  const WalkEnd end = walkComponents(font, glyphIndex, path, measure);
  *outRoom = measure.most;
  return end;
}

std::uint32_t decodeCompositePoints(const TrueTypeFont& font, std::uint32_t glyphIndex,
                                    ComponentPath& path, GlyphPoint* points) noexcept {
  Decode decode{points};
  return walkComponents(font, glyphIndex, path, decode) == WalkEnd::kWhole ? decode.totals.points
                                                                           : 0;
}

bool countOutline(const TrueTypeFont& font, std::uint32_t glyphIndex, OutlineSize* out) noexcept {
  *out = {};
  const ByteView glyph = glyphView(font, glyphIndex);
  const std::int32_t contours = glyph.readOrZero<std::int16_t>(0);
  if (contours > 0) {
    const SimpleShape shape = simpleShape(glyph);
    *out = {shape.points, shape.contours, std::uint64_t{shape.ends} + shape.room};
  } else if (contours == -1) {
    ComponentPath path(font, nullptr, true);
    Count count;
    const WalkEnd end = walkComponents(font, glyphIndex, path, count);
    if (end == WalkEnd::kNoMemory) return false;
    out->work = count.work + std::uint64_t{kRecordWork} * count.records;
    if (end != WalkEnd::kWhole) return true;
    out->points = count.totals.points;
    out->contours = count.totals.contours;
  }
  return true;
}

}  // namespace ulm::truetype::detail
