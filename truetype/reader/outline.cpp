#include "truetype/reader/detail/outline.h"

#include "truetype/reader/fixed_point.h"
#include "truetype/reader/glyphs.h"

namespace ulm::truetype::detail {
namespace {

constexpr std::size_t kContourEnds = 10;
constexpr std::uint8_t kRepeat = 0x08;

// How the flags of a point decode: a coordinate's change is its next byte times one factor plus the
// byte after that times another, and so many bytes are used up. Coordinates are kept modulo 2^16,
// so that a word needs no sign.
struct PointForm {
  std::uint32_t x0, x1, y0, y1;
  std::uint32_t xLength, yLength;
};

constexpr std::size_t formOf(std::uint32_t flags) noexcept { return flags >> 1 & 0x1F; }

struct PointForms {
  PointForm forms[32] = {};
  constexpr PointForms() noexcept {
    for (std::uint32_t flags = 0; flags < 0x40; flags += 2) {
      PointForm& form = forms[formOf(flags)];
      const bool positiveX = (flags & 0x10) != 0, positiveY = (flags & 0x20) != 0;
      set((flags & 0x02) != 0, positiveX, form.x0, form.x1, form.xLength);
      set((flags & 0x04) != 0, positiveY, form.y0, form.y1, form.yLength);
    }
  }

 private:
  // Without the byte bit the positive bit means "the same as before".
  static constexpr void set(bool isByte, bool positive, std::uint32_t& first, std::uint32_t& second,
                            std::uint32_t& length) noexcept {
    first = isByte ? (positive ? 1u : 0xFFFFFFFFu) : (positive ? 0u : 256u);
    second = !isByte && !positive ? 1u : 0u;
    length = isByte ? 1u : (positive ? 0u : 2u);
  }
};
constexpr PointForms kPointForms;

// Both coordinates of all points. `read` gives the byte at a place, also up to two bytes beyond the
// last coordinate, where it does not matter what.
template <class Read>
void decodeCoordinates(Read read, std::size_t xPlace, std::size_t yPlace, std::uint32_t count,
                       GlyphPoint* points) noexcept {
  std::uint32_t x = 0, y = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    const PointForm& form = kPointForms.forms[formOf(points[i].flags)];
    x += read(xPlace) * form.x0 + read(xPlace + 1) * form.x1;
    y += read(yPlace) * form.y0 + read(yPlace + 1) * form.y1;
    xPlace += form.xLength;
    yPlace += form.yLength;
    points[i].x = static_cast<std::int16_t>(x);
    points[i].y = static_cast<std::int16_t>(y);
  }
}

struct Placement {
  std::int32_t a = 0x10000, b = 0, c = 0, d = 0x10000;  // 16.16
  std::int32_t m = 0x10000, n = 0x10000;
  std::int32_t e = 0, f = 0;  // font units
};

struct Component {
  std::uint16_t flags;
  std::uint16_t glyphIndex;
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
  } else if ((flags & kArgumentsAreSigned) != 0) {
    placement.e = glyph.readOrZero<std::int8_t>(record + 4);
    placement.f = glyph.readOrZero<std::int8_t>(record + 5);
  } else {
    placement.e = glyph.readOrZero<std::uint8_t>(record + 4);
    placement.f = glyph.readOrZero<std::uint8_t>(record + 5);
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
  std::uint32_t count = 0;
  std::uint32_t most = 0;
  std::uint32_t records = 0;
  std::uint64_t work = 0;

  bool enterRecord() noexcept {
    return ++records <= kMostComponentRecords && work <= kMostOutlineWork;
  }
  void addSimple(ByteView glyph, std::uint32_t contours) noexcept {
    const std::uint32_t points = simplePointCount(glyph, contours);
    work += contours + std::uint64_t{points};
    if (work <= kMostOutlineWork) count += points;
    if (count > most) most = count;
  }
  void placeFrom(std::uint32_t first, ByteView, std::size_t) noexcept { work += count - first; }
  bool withinBounds() const noexcept { return work <= kMostOutlineWork; }
};

// Fills an array that Measure has found large enough.
struct Decode {
  GlyphPoint* points;
  std::uint32_t count = 0;

  bool enterRecord() noexcept { return true; }
  void addSimple(ByteView glyph, std::uint32_t contours) noexcept {
    const std::uint32_t added = simplePointCount(glyph, contours);
    if (decodeSimplePoints(glyph, contours, added, points + count)) count += added;
  }
  void placeFrom(std::uint32_t first, ByteView glyph, std::size_t record) noexcept {
    if (count != first) placePoints(readPlacement(glyph, record), points + first, count - first);
  }
  bool withinBounds() const noexcept { return true; }
};

// Visits all components of a composite, each before it is placed. False where the outermost chain
// is cut, or a bound or memory ends the walk.
template <class Sink>
bool walkComponents(const TrueTypeFont& font, std::uint32_t glyphIndex, ComponentPath& path,
                    Sink& sink) noexcept {
  path.clear();
  if (!path.push({glyphView(font, glyphIndex), 0, kFirstComponent, glyphIndex, 0})) return false;
  for (;;) {
    ComponentFrame& top = path.top();
    const std::uint32_t first = sink.count;
    const std::size_t record = top.next;
    const std::optional<Component> component =
        record == kNoRecord ? std::nullopt : readComponent(top.glyph, record);
    if (!component) {  // this composite has ended, or its chain is cut
      const bool cut = record != kNoRecord;
      const std::uint32_t own = top.firstPoint;
      if (cut) sink.count = own;
      path.pop();
      if (path.empty()) return !cut && sink.withinBounds();
      sink.placeFrom(own, path.top().glyph, path.top().record);
      continue;
    }
    if (!sink.enterRecord()) return false;
    top.record = record;
    top.next = (component->flags & kMoreComponents) != 0 ? record + componentSize(component->flags)
                                                         : kNoRecord;
    const std::uint32_t index = component->glyphIndex;
    if (index >= font.numGlyphs || path.contains(index)) continue;
    const ByteView glyph = glyphView(font, index);
    const std::int32_t contours = glyph.readOrZero<std::int16_t>(0);
    if (contours > 0) {
      sink.addSimple(glyph, static_cast<std::uint32_t>(contours));
      sink.placeFrom(first, top.glyph, record);
    } else if (contours == -1) {
      if (!path.push({glyph, 0, kFirstComponent, index, first})) return false;
    }
  }
}

}  // namespace

std::uint32_t simplePointCount(ByteView glyph, std::uint32_t contours) noexcept {
  if (!glyph.holds(kContourEnds, 2 * std::size_t{contours})) return 0;
  std::uint32_t last = 0;
  for (std::size_t i = 0; i < contours; ++i) {
    const std::uint32_t end = glyph.readOrZero<std::uint16_t>(kContourEnds + 2 * i);
    if (end > last) last = end;
  }
  return last + 1;
}

bool decodeSimplePoints(ByteView glyph, std::uint32_t contours, std::uint32_t count,
                        GlyphPoint* points) noexcept {
  const std::size_t instructions = kContourEnds + 2 * std::size_t{contours};
  std::size_t place = instructions + 2 + glyph.readOrZero<std::uint16_t>(instructions);
  if (count == 0 || place > glyph.size()) return false;
  std::size_t xLength = 0, yLength = 0;
  // Beyond the end flags read 0; the place reached tells afterwards that this has happened.
  for (std::uint32_t i = 0; i < count;) {
    const std::uint8_t flag = glyph.readOrZero<std::uint8_t>(place++);
    const std::uint32_t repeats =
        (flag & kRepeat) == 0 ? 0u : glyph.readOrZero<std::uint8_t>(place++);
    if (repeats >= count - i) return false;
    const PointForm& form = kPointForms.forms[formOf(flag)];
    xLength += form.xLength * (repeats + 1);
    yLength += form.yLength * (repeats + 1);
    const std::uint32_t end = i + repeats + 1;
    for (; i < end; ++i) points[i].flags = flag;
  }
  if (!glyph.holds(place, xLength + yLength)) return false;
  if (glyph.holds(place, xLength + yLength + 2)) {
    const auto read = [glyph](std::size_t at) -> std::uint32_t { return glyph.readHeld(at); };
    decodeCoordinates(read, place, place + xLength, count, points);
  } else {
    const auto read = [glyph](std::size_t at) -> std::uint32_t {
      return glyph.readOrZero<std::uint8_t>(at);
    };
    decodeCoordinates(read, place, place + xLength, count, points);
  }
  for (std::size_t i = 0; i < contours; ++i) {
    points[glyph.readOrZero<std::uint16_t>(kContourEnds + 2 * i)].flags |= kPointEndsContour;
  }
  return true;
}

std::optional<std::uint32_t> compositePointCount(const TrueTypeFont& font, std::uint32_t glyphIndex,
                                                 ComponentPath& path) noexcept {
  Measure measure;
  if (!walkComponents(font, glyphIndex, path, measure)) return std::nullopt;
  return measure.most;
}

std::uint32_t decodeCompositePoints(const TrueTypeFont& font, std::uint32_t glyphIndex,
                                    ComponentPath& path, GlyphPoint* points) noexcept {
  Decode decode{points};
  return walkComponents(font, glyphIndex, path, decode) ? decode.count : 0;
}

}  // namespace ulm::truetype::detail
