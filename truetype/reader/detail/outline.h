// Outlines into arrays whose size is known: the work behind the public glyph operations.
#pragma once

#include <cstdint>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/glyph_data.h"
#include "truetype/reader/detail/component_path.h"
#include "truetype/records.h"

namespace ulm::truetype::detail {

// Room for the points of a simple glyph with `contours` of them, at least 1; 0 where its ends of
// contours are cut.
std::uint32_t simplePointCount(ByteView glyph, std::uint32_t contours) noexcept;

// Fills `count` points, as simplePointCount gave it, all moved by `offset`. False where a repeat
// passes the last point or the data is cut; the points are then worthless.
bool decodeSimplePoints(ByteView glyph, std::uint32_t contours, std::uint32_t count,
                        PointOffset offset, GlyphPoint* points) noexcept;

// How a walk through a composite ended: at its end; before it, where the chain of components is cut
// or the work is beyond its bound, which leaves no outline; or where memory ran out.
enum class WalkEnd { kWhole, kNoOutline, kNoMemory };

// Room for the points of a composite; components that turn out damaged may leave some of it
// unused.
WalkEnd measureComposite(const TrueTypeFont& font, std::uint32_t glyphIndex, ComponentPath& path,
                         std::uint32_t* outRoom) noexcept;

// Fills the points of a composite that measureComposite has measured on the same path; gives their
// number.
std::uint32_t decodeCompositePoints(const TrueTypeFont& font, std::uint32_t glyphIndex,
                                    ComponentPath& path, GlyphPoint* points) noexcept;

// What an outline comes to, and what it took to find out: the work that kMostOutlineWork bounds,
// and kRecordWork for each record.
struct OutlineSize {
  std::uint32_t points, contours;
  std::uint64_t work;
};
inline constexpr std::uint32_t kRecordWork = 8;

// The points of the outline that getGlyphPoints resolves and the ends of contours among them, both
// 0 for a glyph without an outline. No coordinate is read and no room for points taken; the
// components of a composite are walked once. `glyphIndex` is below numGlyphs. False where memory
// ran out.
bool countOutline(const TrueTypeFont& font, std::uint32_t glyphIndex, OutlineSize* out) noexcept;

}  // namespace ulm::truetype::detail
