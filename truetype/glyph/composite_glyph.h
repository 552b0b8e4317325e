// Outlines of composite glyphs, and the size of any glyph's outline.
#pragma once

#include <cstdint>

#include "truetype/detail/font_views.h"
#include "truetype/glyph/component_path.h"
#include "truetype/records.h"

namespace ulm::truetype::detail {

// How a walk through a composite ended.
enum class WalkEnd {
  Whole,
  NoOutline,  // the chain of components is cut, or the work is beyond its bound (glyph/limits.h)
  NoMemory,
};

// `outCapacity` receives the points for which decodeCompositePoints needs an array. Components that
// turn out damaged may leave some of it unused.
WalkEnd measureComposite(const TrueTypeFont& font, std::uint32_t glyphIndex, ComponentPath& path,
                         std::uint32_t* outCapacity) noexcept;

// Fills the points of a composite that measureComposite has measured on the same path; returns
// their number.
std::uint32_t decodeCompositePoints(const TrueTypeFont& font, std::uint32_t glyphIndex,
                                    ComponentPath& path, GlyphPoint* points) noexcept;

// The size of an outline, and what it took to find out: the work that kMostOutlineWork bounds, and
// kRecordWork for each record.
struct OutlineSize {
  std::uint32_t points, contours;
  std::uint64_t work;
};
inline constexpr std::uint32_t kRecordWork = 8;

// The points of the outline that getGlyphPoints resolves and the ends of contours among them, both
// 0 for a glyph without an outline. No coordinate is read and no memory for points taken; the
// components of a composite are walked once. `glyphIndex` is below numGlyphs. False without memory,
// which only a composite needs.
bool countOutline(const TrueTypeFont& font, std::uint32_t glyphIndex, OutlineSize* out) noexcept;

}  // namespace ulm::truetype::detail
