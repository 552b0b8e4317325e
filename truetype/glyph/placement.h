// How a composite places the points of a component.
#pragma once

#include <cstdint>

#include "truetype/detail/font_views.h"
#include "truetype/glyph/component_records.h"
#include "truetype/records.h"

namespace ulm::truetype::detail {

// A move in font units, modulo 65,536 as coordinates are: moves that follow each other are one.
struct PointOffset {
  std::uint16_t x = 0, y = 0;

  friend PointOffset operator+(PointOffset one, PointOffset other) noexcept {
    return {static_cast<std::uint16_t>(one.x + other.x),
            static_cast<std::uint16_t>(one.y + other.y)};
  }
};

// The arguments of a record, which the glyph holds whole.
PointOffset readOffset(ByteView glyph, const ComponentRecord& record) noexcept;

// Places `count` points as a record says, which the glyph holds whole, and moves them by `then`.
void placePoints(ByteView glyph, const ComponentRecord& record, PointOffset then,
                 GlyphPoint* points, std::uint32_t count) noexcept;

}  // namespace ulm::truetype::detail
