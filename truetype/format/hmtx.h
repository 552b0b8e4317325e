// The hmtx and vmtx tables: advances and side bearings. A number of long entries, which hhea or
// vhea gives, is followed by the side bearings of the other glyphs.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

struct LongMetric {
  static constexpr std::size_t kSize = 4;
  static constexpr Field<LongMetric, std::uint16_t, 0> kAdvance{};
  static constexpr Field<LongMetric, std::int16_t, 2> kSideBearing{};
  // Both as one number, the advance in the upper half.
  static constexpr Field<LongMetric, std::uint32_t, 0> kBoth{};
  static constexpr std::uint32_t both(std::uint16_t advance, std::int16_t sideBearing) noexcept {
    return std::uint32_t{advance} << 16 | static_cast<std::uint16_t>(sideBearing);
  }
};

// The layout with `longCount` long entries. Counts and indices have 32 bits at most.
struct LongMetrics {
  static constexpr std::uint32_t kHmtxTag = tag("hmtx"), kVmtxTag = tag("vmtx");
  static constexpr Array<LongMetrics, LongMetric, 0> kEntries{};
  static constexpr Array<LongMetrics, std::uint32_t, 0> kNumbers{};  // the entries as kBoth
  std::size_t longCount;

  // The offset of the side bearing of a glyph that has no long entry, so whose index is not below
  // longCount. A long entry has the size of two bearings.
  constexpr std::size_t bearing(std::size_t glyph) const noexcept {
    static_assert(LongMetric::kSize == 2 * kElementSize<std::int16_t>);
    return (longCount + glyph) * kElementSize<std::int16_t>;
  }
  // The bytes of the table for `glyphCount` glyphs.
  constexpr std::size_t size(std::size_t glyphCount) const noexcept {
    return bearing(glyphCount > longCount ? glyphCount : longCount);
  }
};

}  // namespace ulm::truetype::format
