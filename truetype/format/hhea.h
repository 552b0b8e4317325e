// The hhea and vhea tables: metrics of a line, horizontal and vertical.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

struct Hhea {
  static constexpr std::uint32_t kTag = tag("hhea");
  static constexpr std::uint32_t kVersion1 = 0x00010000;

  static constexpr std::size_t kSize = 36;
  static constexpr Field<Hhea, std::uint32_t, 0> kVersion{};
  static constexpr Field<Hhea, std::int16_t, 4> kAscender{};
  static constexpr Field<Hhea, std::int16_t, 6> kDescender{};
  static constexpr Field<Hhea, std::int16_t, 8> kLineGap{};
  static constexpr Field<Hhea, std::int16_t, 18> kCaretSlopeRise{};
  static constexpr Field<Hhea, std::int16_t, 20> kCaretSlopeRun{};
  static constexpr Field<Hhea, std::uint16_t, 34> kLongMetricCount{};  // numberOfHMetrics
};

struct Vhea {
  static constexpr std::uint32_t kTag = tag("vhea");

  static constexpr std::size_t kSize = 36;
  static constexpr Field<Vhea, std::int16_t, 4> kAscender{};
  static constexpr Field<Vhea, std::int16_t, 6> kDescender{};
  static constexpr Field<Vhea, std::uint16_t, 34> kLongMetricCount{};  // numOfLongVerMetrics
};

}  // namespace ulm::truetype::format
