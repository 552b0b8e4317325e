// The loca and glyf tables: where glyphs are, and what their bytes mean.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

// Offsets into glyf, one more than glyphs: of 16 bits, halved, or of 32 bits.
struct Loca {
  static constexpr std::uint32_t kTag = tag("loca");
  static constexpr std::int16_t kShortFormat = 0, kLongFormat = 1;  // head's indexToLocFormat
  static constexpr Array<Loca, std::uint16_t, 0> kShortOffsets{};
  static constexpr Array<Loca, std::uint32_t, 0> kLongOffsets{};

  // The bytes of `count` offsets.
  static constexpr std::size_t size(std::size_t count, bool isLong) noexcept {
    return isLong ? kLongOffsets.bytes(count) : kShortOffsets.bytes(count);
  }
  // The whole offsets in `length` bytes.
  static constexpr std::uint32_t entriesIn(std::uint32_t length, bool isLong) noexcept {
    return length / static_cast<std::uint32_t>(size(1, isLong));
  }
};

struct GlyphHeader {
  static constexpr std::uint32_t kGlyfTag = tag("glyf");
  static constexpr std::int16_t kComposite = -1;  // a contour count

  static constexpr std::size_t kSize = 10;
  static constexpr Field<GlyphHeader, std::int16_t, 0> kContourCount{};
  static constexpr Field<GlyphHeader, std::int16_t, 2> kXMin{};
  static constexpr Field<GlyphHeader, std::int16_t, 4> kYMin{};
  static constexpr Field<GlyphHeader, std::int16_t, 6> kXMax{};
  static constexpr Field<GlyphHeader, std::int16_t, 8> kYMax{};
};

}  // namespace ulm::truetype::format
