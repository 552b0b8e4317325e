// Outlines of simple glyphs.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/font_views.h"
#include "truetype/glyph/placement.h"
#include "truetype/records.h"

namespace ulm::truetype::detail {

// What a simple glyph has; all 0 for any other.
struct SimpleShape {
  std::uint32_t points, contours;  // of the outline; 0 where its data is damaged
  std::uint32_t ends;              // of contours, as stored
  std::uint32_t capacity;  // for its points, before they are decoded; 0 where `ends` are cut
  std::size_t reach;       // the end of what was read
};

// Reads contour ends and flags, and no coordinate.
SimpleShape simpleShape(ByteView glyph) noexcept;

// The points of a simple glyph with at least one contour, before they are decoded; 0 where its ends
// of contours are cut.
std::uint32_t simplePointCount(ByteView glyph, std::uint32_t contours) noexcept;

// Fills `count` points, as many as simplePointCount returned, all moved by `offset`. False where a
// repeat passes the last point or the data is cut; the points then have no meaning.
bool decodeSimplePoints(ByteView glyph, std::uint32_t contours, std::uint32_t count,
                        PointOffset offset, GlyphPoint* points) noexcept;

}  // namespace ulm::truetype::detail
