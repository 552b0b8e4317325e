// How a composite places the points of a component.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/byte_view.h"
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

// The arguments of the component record, which the glyph holds whole.
PointOffset readOffset(ByteView glyph, std::size_t record) noexcept;

// Places `count` points as the record says, and moves them by `then`.
void placePoints(ByteView glyph, std::size_t record, PointOffset then, GlyphPoint* points,
                 std::uint32_t count) noexcept;

}  // namespace ulm::truetype::detail
