// The head table: what holds for the whole font.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

struct Head {
  static constexpr std::uint32_t kTag = tag("head");
  static constexpr std::uint32_t kVersion1 = 0x00010000;
  static constexpr std::uint32_t kMagic = 0x5F0F3CF5;

  static constexpr std::size_t kSize = 54;
  static constexpr Field<Head, std::uint32_t, 0> kVersion{};
  static constexpr Field<Head, std::uint32_t, 4> kFontRevision{};
  static constexpr Field<Head, std::uint32_t, 8> kChecksumAdjustment{};
  static constexpr Field<Head, std::uint32_t, 12> kMagicNumber{};
  static constexpr Field<Head, std::uint16_t, 16> kFlags{};
  static constexpr Field<Head, std::uint16_t, 18> kUnitsPerEm{};
  static constexpr Field<Head, std::uint64_t, 20> kCreated{};  // seconds since 1904
  static constexpr Field<Head, std::uint64_t, 28> kModified{};
  static constexpr Field<Head, std::int16_t, 36> kXMin{};
  static constexpr Field<Head, std::int16_t, 38> kYMin{};
  static constexpr Field<Head, std::int16_t, 40> kXMax{};
  static constexpr Field<Head, std::int16_t, 42> kYMax{};
  static constexpr Field<Head, std::uint16_t, 44> kMacStyle{};
  static constexpr Field<Head, std::uint16_t, 46> kLowestRecPPEM{};
  static constexpr Field<Head, std::uint16_t, 48> kFontDirectionHint{};
  static constexpr Field<Head, std::int16_t, 50> kIndexToLocFormat{};  // 0 short, 1 long
  static constexpr Field<Head, std::int16_t, 52> kGlyphDataFormat{};
};

}  // namespace ulm::truetype::format
