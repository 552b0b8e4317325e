// The maxp table: counts of the font and of its largest glyphs.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

// Glyph numbers are below this, so that the number 0xFFFF is in no font.
inline constexpr std::uint32_t kMaxGlyphCount = 0xFFFF;

struct Maxp {
  static constexpr std::uint32_t kTag = tag("maxp");
  static constexpr std::uint32_t kVersion1 = 0x00010000;

  static constexpr std::size_t kSize = 32;  // of version 1.0
  static constexpr Field<Maxp, std::uint32_t, 0> kVersion{};
  static constexpr Field<Maxp, std::uint16_t, 4> kGlyphCount{};  // numGlyphs
  static constexpr Field<Maxp, std::uint16_t, 6> kMaxPoints{};
  static constexpr Field<Maxp, std::uint16_t, 8> kMaxContours{};
  static constexpr Field<Maxp, std::uint16_t, 10> kMaxCompositePoints{};
  static constexpr Field<Maxp, std::uint16_t, 12> kMaxCompositeContours{};
};

}  // namespace ulm::truetype::format
