// Entries of the hmtx and vmtx tables.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/byte_view.h"

namespace ulm::truetype::detail {

struct Metric {
  std::uint16_t advance;
  std::int16_t sideBearing;
};

// The rule of both tables; `longCount` is above 0.
inline Metric metricByRule(ByteView table, std::size_t longCount, std::size_t glyphCount,
                           std::size_t glyph) noexcept {
  const std::size_t entry = 4 * (glyph < longCount ? glyph : longCount - 1);
  const std::size_t bearing = glyph < longCount || glyph >= glyphCount
                                  ? entry + 2
                                  : 4 * longCount + 2 * (glyph - longCount);
  return {table.readOrZero<std::uint16_t>(entry), table.readOrZero<std::int16_t>(bearing)};
}

// The same by one test where the table is whole: a long entry is one read, and where a side bearing
// behind the entries is there the last of them is.
inline Metric metricOf(ByteView table, std::size_t longCount, std::size_t glyphCount,
                       std::size_t glyph) noexcept {
  if (glyph < longCount) {
    if (table.holds(4 * glyph, 4)) {
      const auto both = table.readHeld<std::uint32_t>(4 * glyph);
      return {static_cast<std::uint16_t>(both >> 16), static_cast<std::int16_t>(both)};
    }
  } else if (glyph < glyphCount && table.holds(2 * (longCount + glyph), 2)) {
    return {table.readHeld<std::uint16_t>(4 * longCount - 4),
            table.readHeld<std::int16_t>(2 * (longCount + glyph))};
  }
  return metricByRule(table, longCount, glyphCount, glyph);
}

}  // namespace ulm::truetype::detail
