// The entry of a glyph in the hmtx and vmtx tables.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/font_views.h"
#include "truetype/format/hmtx.h"

namespace ulm::truetype::detail {

struct Metric {
  std::uint16_t advance;
  std::int16_t sideBearing;
};

// With n = longCount entries, at least one, glyph g has entry g, if that is below n. Otherwise it
// has the advance of the last entry, and its own side bearing from those after the entries, or, if
// g is not below glyphCount, the last entry's. What is outside the table is 0.
inline Metric metricByRule(ByteView table, std::size_t longCount, std::size_t glyphCount,
                           std::size_t glyph) noexcept {
  using format::LongMetric, format::LongMetrics;
  const std::size_t entry = LongMetrics::kEntries.at(glyph < longCount ? glyph : longCount - 1);
  const std::size_t bearing = glyph < longCount || glyph >= glyphCount
                                  ? entry + LongMetric::kSideBearing.kOffset
                                  : LongMetrics{longCount}.bearing(glyph);
  return {table.readOrZero<std::uint16_t>(entry + LongMetric::kAdvance.kOffset),
          table.readOrZero<std::int16_t>(bearing)};
}

// The same with one test where the table is whole: a long entry is one read, and where a side
// bearing after the entries is there, so is the last entry.
inline Metric metricOf(ByteView table, std::size_t longCount, std::size_t glyphCount,
                       std::size_t glyph) noexcept {
  using format::LongMetric, format::LongMetrics;
  if (glyph < longCount) {
    const std::size_t entry = LongMetrics::kEntries.at(glyph);
    if (table.holds(entry, LongMetric::kSize)) {
      const auto both = table.readHeld<std::uint32_t>(entry + LongMetric::kBoth.kOffset);
      return {static_cast<std::uint16_t>(both >> 16), static_cast<std::int16_t>(both)};
    }
  } else if (glyph < glyphCount) {
    const std::size_t bearing = LongMetrics{longCount}.bearing(glyph);
    if (table.holds(bearing, format::kElementSize<std::int16_t>)) {
      const std::size_t last = LongMetrics::kEntries.at(longCount - 1);
      return {table.readHeld<std::uint16_t>(last + LongMetric::kAdvance.kOffset),
              table.readHeld<std::int16_t>(bearing)};
    }
  }
  return metricByRule(table, longCount, glyphCount, glyph);
}

// The glyph's metric in a font; all 0 where that has no such metrics.
inline Metric horizontalMetric(const TrueTypeFont& font, std::size_t glyph) noexcept {
  if (font.tables[kSlotHmtx] == nullptr || font.numberOfHMetrics == 0) return {0, 0};
  return metricOf(tableView(font, kSlotHmtx), font.numberOfHMetrics, font.numGlyphs, glyph);
}
inline Metric verticalMetric(const TrueTypeFont& font, std::size_t glyph) noexcept {
  if (font.tables[kSlotVmtx] == nullptr || font.numOfLongVerMetrics == 0) return {0, 0};
  return metricOf(tableView(font, kSlotVmtx), font.numOfLongVerMetrics, font.numGlyphs, glyph);
}

}  // namespace ulm::truetype::detail
