#include "truetype/reader/glyphs.h"

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/reader/detail/outline.h"
#include "truetype/reader/metrics.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::CBuffer;
using detail::ComponentPath;

constexpr std::int32_t kNoSuchGlyph = -1;

// Where the points of a glyph go: gives an array with room for `count` points, or null.
struct Allocated {
  GlyphPoint** outPoints;
  CBuffer<GlyphPoint> points;
  GlyphPoint* room(std::uint32_t count) noexcept {
    points = detail::makeBuffer<GlyphPoint>(count);
    return points.get();
  }
  std::int32_t done(std::uint32_t count) noexcept {
    *outPoints = points.release();
    return static_cast<std::int32_t>(count);
  }
  std::int32_t refused() const noexcept { return 0; }  // no memory
};

struct Borrowed {
  GlyphPoint* points;
  std::uint32_t* inOutCount;
  std::uint32_t needed = 0;
  GlyphPoint* room(std::uint32_t count) noexcept {
    needed = count;
    return count <= *inOutCount ? points : nullptr;
  }
  std::int32_t done(std::uint32_t count) noexcept {
    *inOutCount = count;
    return static_cast<std::int32_t>(count);
  }
  std::int32_t refused() noexcept {
    *inOutCount = needed;
    return kCapacityTooSmall;
  }
};

template <class Place>
std::int32_t readSimple(ByteView glyph, std::uint32_t contours, Place& place) noexcept {
  const std::uint32_t count = detail::simplePointCount(glyph, contours);
  if (count == 0) return 0;
  GlyphPoint* points = place.room(count);
  if (points == nullptr) return place.refused();
  return detail::decodeSimplePoints(glyph, contours, count, {}, points) ? place.done(count) : 0;
}

template <class Place>
std::int32_t readComposite(const TrueTypeFont& font, std::uint32_t glyphIndex,
                           const TTList* ancestry, Place& place) noexcept {
  ComponentPath path(font, ancestry, ancestry == nullptr);
  std::uint32_t most = 0;
  if (detail::measureComposite(font, glyphIndex, path, &most) != detail::WalkEnd::kWhole) return 0;
  GlyphPoint* points = place.room(most);
  // An empty outline needs no room of its caller's.
  if (points == nullptr && most != 0) return place.refused();
  return place.done(detail::decodeCompositePoints(font, glyphIndex, path, points));
}

template <class Place>
std::int32_t readOutline(const TrueTypeFont& font, std::uint32_t glyphIndex, const TTList* ancestry,
                         Place& place) noexcept {
  if (glyphIndex >= font.numGlyphs) return kNoSuchGlyph;
  const ByteView glyph = detail::glyphView(font, glyphIndex);
  const std::int32_t contours = glyph.readOrZero<std::int16_t>(0);
  if (contours > 0) return readSimple(glyph, static_cast<std::uint32_t>(contours), place);
  return contours == -1 ? readComposite(font, glyphIndex, ancestry, place) : 0;
}

// The metrics of a composite's own components that are marked to lend them, one after the other.
void readLentMetrics(const TrueTypeFont& font, ByteView glyph, GlyphMetrics* metrics) noexcept {
  std::uint16_t flags = detail::kMoreComponents;
  std::size_t record = detail::kFirstComponent;
  for (; (flags & detail::kMoreComponents) != 0; record += detail::componentSize(flags)) {
    if (!glyph.holds(record, 4)) return;
    flags = glyph.readOrZero<std::uint16_t>(record);
    const std::uint16_t index = glyph.readOrZero<std::uint16_t>(record + 2);
    if ((flags & detail::kLendsMetrics) != 0 && index < font.numGlyphs) {
      readGlyphMetrics(&font, index, metrics);
    }
  }
}

}  // namespace

std::int32_t getGlyphPoints(const TrueTypeFont* font, std::uint32_t glyphIndex,
                            GlyphPoint** outPoints) noexcept {
  return readGlyphOutline(font, glyphIndex, outPoints, nullptr);
}

std::int32_t decodeGlyphPoints(const TrueTypeFont* font, std::uint32_t glyphIndex,
                               GlyphPoint* points, std::uint32_t* inOutCount) noexcept {
  Borrowed place{points, inOutCount};
  const std::int32_t result = readOutline(*font, glyphIndex, nullptr, place);
  if (result <= 0 && result != kCapacityTooSmall) *inOutCount = 0;
  return result;
}

std::int32_t readGlyphOutline(const TrueTypeFont* font, std::uint32_t glyphIndex,
                              GlyphPoint** outPoints, TTList* ancestry) noexcept {
  *outPoints = nullptr;
  Allocated place{outPoints, nullptr};
  return readOutline(*font, glyphIndex, ancestry, place);
}

std::int32_t readSimpleGlyph(const TrueTypeFont* font, std::uint32_t glyphIndex,
                             GlyphPoint** outPoints, GlyphMetrics* metrics) noexcept {
  *outPoints = nullptr;
  if (glyphIndex >= font->numGlyphs) return 0;
  const ByteView glyph = detail::glyphView(*font, glyphIndex);
  const std::int32_t contours = glyph.readOrZero<std::int16_t>(0);
  if (contours < 1) return 0;
  if (metrics != nullptr) {
    readGlyphBox(font, glyphIndex, metrics);
    readGlyphMetrics(font, glyphIndex, metrics);
  }
  Allocated place{outPoints, nullptr};
  return readSimple(glyph, static_cast<std::uint32_t>(contours), place);
}

std::int32_t readCompositeGlyph(const TrueTypeFont* font, std::uint32_t glyphIndex,
                                GlyphPoint** outPoints, GlyphMetrics* metrics,
                                TTList* ancestry) noexcept {
  *outPoints = nullptr;
  if (glyphIndex >= font->numGlyphs) return 0;
  const ByteView glyph = detail::compositeView(*font, glyphIndex);
  if (glyph.size() == 0) return 0;
  if (metrics != nullptr) {
    readGlyphBox(font, glyphIndex, metrics);
    readGlyphMetrics(font, glyphIndex, metrics);
    readLentMetrics(*font, glyph, metrics);
  }
  Allocated place{outPoints, nullptr};
  return readComposite(*font, glyphIndex, ancestry, place);
}

}  // namespace ulm::truetype
