#include "truetype/reader/detail/outline.h"

#include <bit>

#include "truetype/reader/fixed_point.h"
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
                       GlyphPoint* points) noexcept {
  std::uint32_t x = 0, y = 0;
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

// Passes over the flags of `count` points and tells `store` each run of equal ones, from a point
// on. Nothing where a repeat passes the last point or the data is cut.
template <class Store>
std::optional<CoordinatePlaces> readFlags(ByteView glyph, std::uint32_t contours,
                                          std::uint32_t count, Store store) noexcept {
  const std::size_t instructions = kContourEnds + 2 * std::size_t{contours};
  std::size_t place = instructions + 2 + glyph.readOrZero<std::uint16_t>(instructions);
  if (count == 0 || place > glyph.size()) return std::nullopt;
  std::uint64_t lengths = 0;
  // Beyond the end flags read 0; the place reached tells afterwards that this has happened.
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint8_t flag = glyph.readOrZero<std::uint8_t>(place++);
    const std::uint64_t own = kPointForms.forms[formOf(flag)].lengths;
    lengths += own;
    store(i, flag);
    if ((flag & kRepeat) == 0) continue;
    const std::uint32_t repeats = glyph.readOrZero<std::uint8_t>(place++);
    if (repeats >= count - i) return std::nullopt;
    lengths += own * repeats;
    for (const std::uint32_t last = i + repeats; i < last;) store(++i, flag);
  }
  const std::size_t xLength = static_cast<std::uint32_t>(lengths), yLength = lengths >> 32;
  if (!glyph.holds(place, xLength + yLength)) return std::nullopt;
  return CoordinatePlaces{place, place + xLength, place + xLength + yLength};
}

std::uint16_t contourEnd(ByteView glyph, std::size_t contour) noexcept {
  return glyph.readOrZero<std::uint16_t>(kContourEnds + 2 * contour);
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

// How many points end a contour: with ends that do not rise, several contours may share one.
std::uint32_t countDistinctEnds(ByteView glyph, std::uint32_t contours) noexcept {
  std::uint64_t marks[0x10000 / 64] = {};
  for (std::size_t i = 0; i < contours; ++i) {
    const std::uint16_t end = contourEnd(glyph, i);
    marks[end / 64] |= std::uint64_t{1} << end % 64;
  }
  std::uint32_t distinct = 0;
  for (const std::uint64_t word : marks)
    distinct += static_cast<std::uint32_t>(std::popcount(word));
  return distinct;
}

// Whether no repeat passes the last of `count` points, eight flags at a step. `flags` has more
// bytes than six for each of them, and they take two at the most.
bool repeatsFit(ByteView flags, std::uint32_t count) noexcept {
  constexpr std::uint64_t kRepeats = 0x0101010101010101u * kRepeat;
  std::size_t place = 0;
  for (std::uint32_t i = 0; i < count;) {
    const std::uint64_t repeats = flags.readHeld<std::uint64_t>(place) & kRepeats;
    const auto plain = static_cast<std::uint32_t>(std::countl_zero(repeats)) / 8;
    place += plain;
    i += plain;
    if (plain == 8 || i >= count) continue;
    const std::uint32_t more = flags.readHeld<std::uint8_t>(place + 1);
    if (more >= count - i) return false;
    place += 2;
    i += more + 1;
  }
  return true;
}

struct Placement {
  std::int32_t a = 0x10000, b = 0, c = 0, d = 0x10000;  // 16.16
  std::int32_t m = 0x10000, n = 0x10000;
  std::int32_t e = 0, f = 0;  // font units
};

// Nothing where the record is cut.
std::optional<Component> readComponent(ByteView glyph, std::size_t record) noexcept {
  const std::uint16_t flags = glyph.readOrZero<std::uint16_t>(record);
  if (!glyph.holds(record, componentSize(flags))) return std::nullopt;
  return Component{flags, glyph.readOrZero<std::uint16_t>(record + 2)};
}

std::int32_t largerDoubledIfAlike(std::int32_t one, std::int32_t other) noexcept {
  const std::int32_t p = one < 0 ? -one : one;
  const std::int32_t q = other < 0 ? -other : other;
  const std::int32_t larger = p > q ? p : q;
  const std::int32_t apart = p > q ? p - q : q - p;
  return apart <= 33 ? larger * 2 : larger;  // 33 / 65536
}

Placement readPlacement(ByteView glyph, std::size_t record) noexcept {
  const std::uint16_t flags = glyph.readOrZero<std::uint16_t>(record);
  Placement placement;
  std::size_t next = record + 6;
  if ((flags & kArgumentsAreWords) != 0) {
    placement.e = glyph.readOrZero<std::int16_t>(record + 4);
    placement.f = glyph.readOrZero<std::int16_t>(record + 6);
    next = record + 8;
  } else {
    const auto argument = [&](std::size_t place) -> std::int32_t {
      const std::int32_t byte = glyph.readOrZero<std::uint8_t>(place);
      return (flags & kArgumentsAreSigned) != 0 && byte > 0x7F ? byte - 0x100 : byte;
    };
    placement.e = argument(record + 4);
    placement.f = argument(record + 5);
  }
  const auto value = [&](std::size_t index) {  // 2.14 into 16.16
    return glyph.readOrZero<std::int16_t>(next + 2 * index) * 4;
  };
  if ((flags & kHasScale) != 0) {
    placement.a = placement.d = value(0);
  } else if ((flags & kHasTwoScales) != 0) {
    placement.a = value(0);
    placement.d = value(1);
  } else if ((flags & kHasMatrix) != 0) {
    placement.a = value(0);
    placement.b = value(1);
    placement.c = value(2);
    placement.d = value(3);
  }
  placement.m = largerDoubledIfAlike(placement.a, placement.b);
  placement.n = largerDoubledIfAlike(placement.c, placement.d);
  return placement;
}

std::int32_t shiftUp(std::int32_t value) noexcept {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value) << 16);
}

// One coordinate: the two weighted ones, each divided by the row's factor, plus the offset, and all
// of it multiplied by that factor. A factor of 0 leaves the offset.
std::int16_t place(std::int32_t weightX, std::int32_t x, std::int32_t weightY, std::int32_t y,
                   std::int32_t factor, std::int32_t offset) noexcept {
  if (factor == 0) return static_cast<std::int16_t>(offset);
  std::uint32_t sum = static_cast<std::uint32_t>(shiftUp(offset));
  // A weight of 0 adds nothing, and is the common case.
  if (weightX != 0) {
    sum += static_cast<std::uint32_t>(fixedMultiplyDivide(weightX, shiftUp(x), factor));
  }
  if (weightY != 0) {
    sum += static_cast<std::uint32_t>(fixedMultiplyDivide(weightY, shiftUp(y), factor));
  }
  return static_cast<std::int16_t>(fixedMultiply(factor, static_cast<std::int32_t>(sum)) >> 16);
}

void placePoints(const Placement& to, GlyphPoint* points, std::uint32_t count) noexcept {
  if (to.a == 0x10000 && to.b == 0 && to.c == 0 && to.d == 0x10000) {
    // All the arithmetic comes down to a move.
    for (std::uint32_t i = 0; i < count; ++i) {
      points[i].x = static_cast<std::int16_t>(points[i].x + to.e);
      points[i].y = static_cast<std::int16_t>(points[i].y + to.f);
    }
    return;
  }
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::int32_t x = points[i].x, y = points[i].y;
    points[i].x = place(to.a, x, to.c, y, to.m, to.e);
    points[i].y = place(to.b, x, to.d, y, to.n, to.f);
  }
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
  void addSimple(ByteView glyph, std::uint32_t contours) noexcept {
    const std::uint32_t points = simplePointCount(glyph, contours);
    work += contours + std::uint64_t{points};
    if (work <= kMostOutlineWork) totals.room += points;
    if (totals.room > most) most = totals.room;
  }
  void placeFrom(const OutlineTotals& first, ByteView, std::size_t) noexcept {
    work += totals.room - first.room;
  }
  bool withinBounds() const noexcept { return work <= kMostOutlineWork; }
};

// Counts as Measure does, and beside that what the outline will hold.
struct Count : Measure {
  void addSimple(ByteView glyph, std::uint32_t contours) noexcept {
    Measure::addSimple(glyph, contours);
    if (!withinBounds()) return;
    const SimpleShape shape = simpleShape(glyph);
    totals.points += shape.points;
    totals.contours += shape.contours;
  }
};

// Fills an array that Measure has found large enough.
struct Decode {
  GlyphPoint* points;
  OutlineTotals totals = {};

  bool enterRecord() noexcept { return true; }
  void addSimple(ByteView glyph, std::uint32_t contours) noexcept {
    const std::uint32_t added = simplePointCount(glyph, contours);
    if (decodeSimplePoints(glyph, contours, added, points + totals.points)) totals.points += added;
  }
  void placeFrom(const OutlineTotals& first, ByteView glyph, std::size_t record) noexcept {
    const std::uint32_t count = totals.points - first.points;
    if (count != 0) placePoints(readPlacement(glyph, record), points + first.points, count);
  }
  bool withinBounds() const noexcept { return true; }
};

// Visits all components of a composite, each before it is placed.
template <class Sink>
WalkEnd walkComponents(const TrueTypeFont& font, std::uint32_t glyphIndex, ComponentPath& path,
                       Sink& sink) noexcept {
  path.clear();
  ComponentFrame now = frameOf(glyphView(font, glyphIndex), glyphIndex, {});
  for (;;) {
    const std::optional<Component> component =
        now.next == kNoRecord ? std::nullopt : readComponent(now.glyph, now.next);
    if (!component) {  // this composite has ended, or its chain is cut
      const bool cut = now.next != kNoRecord;
      const OutlineTotals before = now.before;
      if (cut) sink.totals = before;
      if (path.empty()) return !cut && sink.withinBounds() ? WalkEnd::kWhole : WalkEnd::kNoOutline;
      now = path.pop();
      sink.placeFrom(before, now.glyph, now.record);
      continue;
    }
    if (!sink.enterRecord()) return WalkEnd::kNoOutline;
    now.record = now.next;
    now.next = (component->flags & kMoreComponents) != 0
                   ? now.record + componentSize(component->flags)
                   : kNoRecord;
    const std::uint32_t index = component->glyphIndex;
    if (index >= font.numGlyphs || path.leadsBack(now, index)) continue;
    const ByteView glyph = glyphView(font, index);
    const std::int32_t contours = glyph.readOrZero<std::int16_t>(0);
    const OutlineTotals before = sink.totals;
    if (contours > 0) {
      sink.addSimple(glyph, static_cast<std::uint32_t>(contours));
      sink.placeFrom(before, now.glyph, now.record);
    } else if (contours == -1) {
      if (!path.push(now)) return WalkEnd::kNoMemory;
      now = frameOf(glyph, index, before);
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
  if (!glyph.holds(kContourEnds, 2 * std::size_t{contours})) return {0, 0, contours, 0};
  const ContourEnds ends = readContourEnds(glyph, contours);
  const std::uint32_t count = ends.most + 1;
  const std::size_t instructions = kContourEnds + 2 * std::size_t{contours};
  const ByteView flags =
      glyph.from(instructions + 2 + glyph.readOrZero<std::uint16_t>(instructions));
  constexpr std::size_t kMostPointBytes = 6;  // a flag, its repeat and two words
  const bool isWhole =
      flags.size() / kMostPointBytes > count
          ? repeatsFit(flags, count)
          : readFlags(glyph, contours, count, [](std::uint32_t, std::uint8_t) {}).has_value();
  if (!isWhole) return {0, 0, contours, count};
  return {count, ends.rising ? contours : countDistinctEnds(glyph, contours), contours, count};
}

bool decodeSimplePoints(ByteView glyph, std::uint32_t contours, std::uint32_t count,
                        GlyphPoint* points) noexcept {
  const auto store = [points](std::uint32_t at, std::uint8_t flag) { points[at].flags = flag; };
  const std::optional<CoordinatePlaces> places = readFlags(glyph, contours, count, store);
  if (!places) return false;
  if (glyph.holds(places->end, 2)) {
    const auto read = [glyph](std::size_t at) -> std::uint32_t {
      return glyph.readHeld<std::uint16_t>(at);
    };
    decodeCoordinates(read, places->x, places->y, count, points);
  } else {
    const auto read = [glyph](std::size_t at) -> std::uint32_t {
      return std::uint32_t{glyph.readOrZero<std::uint8_t>(at)} << 8 |
             glyph.readOrZero<std::uint8_t>(at + 1);
    };
    decodeCoordinates(read, places->x, places->y, count, points);
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

bool countOutline(const TrueTypeFont& font, std::uint32_t glyphIndex, std::uint32_t* outPoints,
                  std::uint32_t* outContours) noexcept {
  *outPoints = *outContours = 0;
  const ByteView glyph = glyphView(font, glyphIndex);
  const std::int32_t contours = glyph.readOrZero<std::int16_t>(0);
  if (contours > 0) {
    const SimpleShape shape = simpleShape(glyph);
    *outPoints = shape.points;
    *outContours = shape.contours;
  } else if (contours == -1) {
    ComponentPath path(font, nullptr, true);
    Count count;
    const WalkEnd end = walkComponents(font, glyphIndex, path, count);
    if (end == WalkEnd::kNoMemory) return false;
    if (end != WalkEnd::kWhole) return true;
    *outPoints = count.totals.points;
    *outContours = count.totals.contours;
  }
  return true;
}

}  // namespace ulm::truetype::detail
