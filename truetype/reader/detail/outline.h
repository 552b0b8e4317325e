// Outlines into arrays whose size is known: the work behind the public glyph operations.
#pragma once

#include <cstdint>

#include "truetype/detail/byte_view.h"
#include "truetype/reader/detail/component.h"
#include "truetype/records.h"

namespace ulm::truetype::detail {

// Room for the points of a simple glyph with `contours` of them, at least 1; 0 where its ends of
// contours are cut.
std::uint32_t simplePointCount(ByteView glyph, std::uint32_t contours) noexcept;

// Fills `count` points, as simplePointCount gave it. False where a repeat passes the last point or
// the data is cut; the points are then worthless.
bool decodeSimplePoints(ByteView glyph, std::uint32_t contours, std::uint32_t count,
                        GlyphPoint* points) noexcept;

// Room for the points of a composite; components that turn out damaged may leave some of it
// unused. Nothing where the chain of components is cut, the work is beyond its bound, or memory is.
std::optional<std::uint32_t> compositePointCount(const TrueTypeFont& font, std::uint32_t glyphIndex,
                                                 ComponentPath& path) noexcept;

// Fills the points of a composite that compositePointCount has measured on the same path; gives
// their number.
std::uint32_t decodeCompositePoints(const TrueTypeFont& font, std::uint32_t glyphIndex,
                                    ComponentPath& path, GlyphPoint* points) noexcept;

}  // namespace ulm::truetype::detail
