#include "truetype/glyph/simple_glyph.h"

#include <algorithm>
#include <bit>
#include <optional>

#include "truetype/format/glyf.h"
#include "truetype/glyph/component_records.h"

namespace ulm::truetype::detail {
namespace {

using format::PointFlag, format::SimpleGlyph;

// How the flags of a point decode. Of the 16 bits at a coordinate's offset, those of the mask times
// the factor are the change of the coordinate in 256ths, modulo 2^32. The coordinate takes `length`
// bytes.
struct PointForm {
  std::uint32_t xMask, xFactor, yMask, yFactor;
  std::uint32_t xLength, yLength;
  std::uint64_t lengths;  // xLength, and yLength in the upper half
};

// The five bits of a flag byte that decide, as an index.
constexpr std::size_t formOf(std::uint32_t flags) noexcept { return flags >> 1 & 0x1F; }

struct PointForms {
  PointForm forms[32] = {};
  constexpr PointForms() noexcept {
    for (std::uint32_t flags = 0; flags < 0x40; flags += 2) {
      PointForm& form = forms[formOf(flags)];
      const auto has = [flags](std::uint8_t bit) { return (flags & bit) != 0; };
      set(has(PointFlag::kXIsByte), has(PointFlag::kXIsPositiveOrSame), form.xMask, form.xFactor,
          form.xLength);
      set(has(PointFlag::kYIsByte), has(PointFlag::kYIsPositiveOrSame), form.yMask, form.yFactor,
          form.yLength);
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

// Both coordinates of all points. read(offset) returns 16 bits; of those beyond the last
// coordinate, by two bytes at most, any value will do.
template <class Read>
void decodeCoordinates(Read read, std::size_t xOffset, std::size_t yOffset, std::uint32_t count,
                       PointOffset moved, GlyphPoint* points) noexcept {
  std::uint32_t x = std::uint32_t{moved.x} << 8, y = std::uint32_t{moved.y} << 8;
  for (GlyphPoint* point = points; point != points + count; ++point) {
    const PointForm& form = kPointForms.forms[formOf(point->flags)];
    x += (read(xOffset) & form.xMask) * form.xFactor;
    y += (read(yOffset) & form.yMask) * form.yFactor;
    xOffset += form.xLength;
    yOffset += form.yLength;
    point->x = static_cast<std::int16_t>(x >> 8);
    point->y = static_cast<std::int16_t>(y >> 8);
  }
}

// Where the coordinates of a simple glyph are.
struct CoordinateOffsets {
  std::size_t x, y, end;
};

std::size_t flagsOffset(ByteView glyph, std::uint32_t contours) noexcept {
  return SimpleGlyph::instructions(contours) +
         glyph.readOrZero<std::uint16_t>(SimpleGlyph::instructionCount(contours));
}

// Passes over the flags of `count` points from `offset` on, which ends after those that were read,
// and calls store(index, flag) for each point. Nothing where a repeat passes the last point or the
// data is cut.
template <class Store>
std::optional<CoordinateOffsets> readFlags(ByteView glyph, std::size_t& offset, std::uint32_t count,
                                           Store store) noexcept {
  if (count == 0) return std::nullopt;
  std::uint64_t lengths = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (offset >= glyph.size()) return std::nullopt;
    const auto flag = glyph.readHeld<std::uint8_t>(offset++);
    const std::uint64_t own = kPointForms.forms[formOf(flag)].lengths;
    lengths += own;
    store(i, flag);
    if ((flag & PointFlag::kRepeat) == 0) continue;
    const std::uint32_t repeats = glyph.readOrZero<std::uint8_t>(offset++);
    if (repeats >= count - i) return std::nullopt;
    lengths += own * repeats;
    for (const std::uint32_t last = i + repeats; i < last;) store(++i, flag);
  }
  const std::size_t xLength = static_cast<std::uint32_t>(lengths);
  const auto yLength = static_cast<std::size_t>(lengths >> 32);
  if (!glyph.holds(offset, xLength + yLength)) return std::nullopt;
  return CoordinateOffsets{offset, offset + xLength, offset + xLength + yLength};
}

bool holdsContourEnds(ByteView glyph, std::uint32_t contours) noexcept {
  return RecordView<SimpleGlyph>(glyph).holds(SimpleGlyph::kContourEnds, contours);
}

// The glyph holds the ends of all its contours.
std::uint16_t contourEnd(ByteView glyph, std::size_t contour) noexcept {
  return glyph.readHeld<std::uint16_t>(SimpleGlyph::kContourEnds.at(contour));
}

// What the ends of contours say, of which there is at least one.
struct ContourEnds {
  std::uint32_t largest = 0;
  bool rising = true;
};
ContourEnds readContourEnds(ByteView glyph, std::uint32_t contours) noexcept {
  ContourEnds ends{contourEnd(glyph, 0), true};
  for (std::uint32_t i = 1, before = ends.largest; i < contours; ++i) {
    const std::uint32_t end = contourEnd(glyph, i);
    ends.rising = ends.rising && end > before;
    if (end > ends.largest) ends.largest = end;
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

// Whether no repeat passes the last of `count` points, eight flags at a step. There have to be more
// bytes from `offset` on than kMaxPointSize for each point. `offset` ends after the flags.
bool repeatsFit(ByteView glyph, std::size_t& offset, std::uint32_t count) noexcept {
  constexpr std::uint64_t kRepeats = 0x0101010101010101u * PointFlag::kRepeat;
  for (std::uint32_t i = 0; i < count;) {
    const std::uint64_t repeats = glyph.readHeld<std::uint64_t>(offset) & kRepeats;
    const auto plain = static_cast<std::uint32_t>(std::countl_zero(repeats)) / 8;
    offset += plain;
    i += plain;
    if (plain == sizeof(repeats) || i >= count) continue;
    ++offset;  // the flag
    const std::uint32_t more = glyph.readHeld<std::uint8_t>(offset);
    if (more >= count - i) return false;
    ++offset;
    i += more + 1;
  }
  return true;
}

}  // namespace

// The lengths of coordinates matter only near the end of glyf.
SimpleShape simpleShape(ByteView glyph) noexcept {
  const std::int32_t stored = contourCount(glyph);
  if (stored <= 0) return {};
  const auto contours = static_cast<std::uint32_t>(stored);
  SimpleShape shape{};
  shape.ends = static_cast<std::uint16_t>(stored);
  if (!holdsContourEnds(glyph, contours)) return shape;
  const ContourEnds ends = readContourEnds(glyph, contours);
  const std::uint32_t count = shape.capacity = ends.largest + 1;
  std::size_t offset = flagsOffset(glyph, contours);
  const bool isWhole =
      glyph.from(offset).size() / PointFlag::kMaxPointSize > count
          ? repeatsFit(glyph, offset, count)
          : readFlags(glyph, offset, count, [](std::uint32_t, std::uint8_t) {}).has_value();
  static_assert(INT32_MAX + std::int64_t{0xFFFF} < UINT32_MAX);  // images have 31 bits of bytes
  shape.reach = static_cast<std::uint32_t>(offset);
  if (!isWhole) return shape;
  shape.points = count;
  shape.contours = ends.rising
                       ? shape.ends
                       : static_cast<std::uint16_t>(countDistinctEnds(glyph, contours, count));
  return shape;
}

std::uint32_t simplePointCount(ByteView glyph, std::uint32_t contours) noexcept {
  return holdsContourEnds(glyph, contours) ? readContourEnds(glyph, contours).largest + 1 : 0;
}

bool decodeSimplePoints(ByteView glyph, std::uint32_t contours, std::uint32_t count,
                        PointOffset offset, GlyphPoint* points) noexcept {
  const auto store = [points](std::uint32_t at, std::uint8_t flag) { points[at].flags = flag; };
  std::size_t flags = flagsOffset(glyph, contours);
  const std::optional<CoordinateOffsets> offsets = readFlags(glyph, flags, count, store);
  if (!offsets) return false;
  if (glyph.holds(offsets->end, sizeof(std::uint16_t))) {
    const auto read = [glyph](std::size_t at) -> std::uint32_t {
      return glyph.readHeld<std::uint16_t>(at);
    };
    decodeCoordinates(read, offsets->x, offsets->y, count, offset, points);
  } else {
    const auto read = [glyph](std::size_t at) -> std::uint32_t {
      const std::size_t second = at + sizeof(std::uint8_t);
      return std::uint32_t{glyph.readOrZero<std::uint8_t>(at)} << 8 |
             glyph.readOrZero<std::uint8_t>(second);
    };
    decodeCoordinates(read, offsets->x, offsets->y, count, offset, points);
  }
  for (std::size_t i = 0; i < contours; ++i) {
    points[contourEnd(glyph, i)].flags |= kPointEndsContour;
  }
  return true;
}

}  // namespace ulm::truetype::detail
