// The OS/2 table: how the font presents itself to Windows.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

struct Os2 {
  static constexpr std::uint32_t kTag = tag("OS/2");

  // Of version 0 as Apple published it, which ends before the typographic metrics, and as Microsoft
  // did.
  static constexpr std::size_t kShortSize = 68, kSize = 78;
  static constexpr Field<Os2, std::uint16_t, 4> kWeightClass{};
  static constexpr Field<Os2, std::uint16_t, 6> kWidthClass{};
  static constexpr Field<Os2, std::uint16_t, 8> kType{};    // fsType, the embedding permissions
  static constexpr Array<Os2, std::uint8_t, 32> kPanose{};  // 10 of them
  static constexpr Array<Os2, std::uint32_t, 42> kUnicodeRanges{};  // 4 of them
  static constexpr Field<Os2, std::uint16_t, 62> kSelection{};
  static constexpr Field<Os2, std::int16_t, 68> kTypoAscender{};
  static constexpr Field<Os2, std::int16_t, 70> kTypoDescender{};
  static constexpr Field<Os2, std::int16_t, 72> kTypoLineGap{};
  static constexpr Field<Os2, std::uint16_t, 74> kWinAscent{};
  static constexpr Field<Os2, std::uint16_t, 76> kWinDescent{};
};

}  // namespace ulm::truetype::format
