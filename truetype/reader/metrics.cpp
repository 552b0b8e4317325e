#include "truetype/reader/metrics.h"

#include "truetype/bytes.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/detail/font_views.h"
#include "truetype/detail/long_metrics.h"
#include "truetype/format/cmap.h"
#include "truetype/format/glyf.h"
#include "truetype/format/hmtx.h"
#include "truetype/format/kern.h"
#include "truetype/format/name.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::Metric;
using detail::metricOf;
using format::Cmap, format::GlyphHeader, format::Kern, format::Name;

std::uint16_t lowHalf(std::int32_t value) noexcept { return static_cast<std::uint16_t>(value); }

ScaledAdvance scale(std::int32_t unitsPerEm, Metric metric) noexcept {
  return {lowHalf(scaleToThousandths(unitsPerEm, metric.advance)),
          static_cast<std::int16_t>(scaleToThousandths(unitsPerEm, metric.sideBearing))};
}

// The bytes of a raw table with these counts, for which the caller vouches.
ByteView rawView(const std::uint8_t* table, std::size_t longCount,
                 std::size_t glyphCount) noexcept {
  return {table, format::LongMetrics{longCount}.size(glyphCount)};
}

}  // namespace

void readGlyphMetrics(const TrueTypeFont* font, std::uint32_t glyphIndex,
                      GlyphMetrics* metrics) noexcept {
  const bool hasHorizontal = font->tables[kSlotHmtx] != nullptr && font->numberOfHMetrics != 0;
  const Metric across = detail::horizontalMetric(*font, glyphIndex);
  const Metric down = hasHorizontal ? detail::verticalMetric(*font, glyphIndex) : Metric{0, 0};
  metrics->advanceWidth = across.advance;
  metrics->leftSideBearing = across.sideBearing;
  metrics->advanceHeight = down.advance;
  metrics->topSideBearing = down.sideBearing;
}

bool readGlyphBox(const TrueTypeFont* font, std::uint32_t glyphIndex,
                  GlyphMetrics* metrics) noexcept {
  if (glyphIndex >= font->numGlyphs) return false;
  const detail::RecordView<GlyphHeader> glyph(detail::glyphView(*font, glyphIndex));
  if (glyph.bytes().size() == 0) return false;
  metrics->xMin = glyph.readOrZero(GlyphHeader::kXMin);
  metrics->yMin = glyph.readOrZero(GlyphHeader::kYMin);
  metrics->xMax = glyph.readOrZero(GlyphHeader::kXMax);
  metrics->yMax = glyph.readOrZero(GlyphHeader::kYMax);
  return true;
}

GlyphBox* readAllGlyphBoxes(const TrueTypeFont* font) noexcept {
  auto boxes = detail::makeZeroedBuffer<GlyphBox>(font->numGlyphs);
  if (boxes == nullptr) return nullptr;
  const auto scaled = [font](std::int16_t value) {
    return static_cast<std::int16_t>(scaleToThousandths(font->unitsPerEm, value));
  };
  for (std::uint32_t i = 0; i < font->numGlyphs; ++i) {
    GlyphMetrics stored;
    if (!readGlyphBox(font, i, &stored)) continue;
    boxes[i] = {scaled(stored.xMin), scaled(stored.yMin), scaled(stored.xMax), scaled(stored.yMax)};
  }
  return boxes.release();
}

ScaledAdvance* getScaledAdvances(const TrueTypeFont* font, const std::uint16_t* glyphs,
                                 std::int32_t count, std::int32_t vertical) noexcept {
  const TableSlot slot = vertical != 0 ? kSlotVmtx : kSlotHmtx;
  const std::uint32_t longCount =
      vertical != 0 ? font->numOfLongVerMetrics : font->numberOfHMetrics;
  if (count <= 0 || glyphs == nullptr || longCount == 0 || font->tables[slot] == nullptr) {
    return nullptr;
  }
  const ByteView table = detail::tableView(*font, slot);
  auto advances = detail::makeZeroedBuffer<ScaledAdvance>(static_cast<std::size_t>(count));
  if (advances == nullptr) return nullptr;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    advances[i] = scale(font->unitsPerEm, metricOf(table, longCount, font->numGlyphs, glyphs[i]));
  }
  return advances.release();
}

void getScaledGlyphMetricsFromTables(const std::uint8_t* hmtx, const std::uint8_t* vmtx,
                                     std::int32_t hCount, std::int32_t vCount,
                                     std::uint32_t glyphCount, std::int32_t unitsPerEm,
                                     std::uint16_t glyph, ScaledMetrics* outMetrics) noexcept {
  *outMetrics = {};
  const auto scaled = [&](const std::uint8_t* table, std::int32_t longCount) -> ScaledAdvance {
    if (table == nullptr || longCount <= 0) return {};
    const auto entries = static_cast<std::size_t>(longCount);
    return scale(unitsPerEm,
                 metricOf(rawView(table, entries, glyphCount), entries, glyphCount, glyph));
  };
  const ScaledAdvance across = scaled(hmtx, hCount);
  const ScaledAdvance down = scaled(vmtx, vCount);
  *outMetrics = {across.advance, down.advance, across.sideBearing, down.sideBearing};
}

ScaledMetrics* getScaledMetricsFromTables(const std::uint8_t* hmtx, const std::uint8_t* vmtx,
                                          std::int32_t hCount, std::int32_t vCount,
                                          std::uint32_t glyphCount, std::int32_t unitsPerEm,
                                          const std::uint16_t* glyphs,
                                          std::int32_t count) noexcept {
  if (count <= 0 || glyphs == nullptr) return nullptr;
  auto metrics = detail::makeZeroedBuffer<ScaledMetrics>(static_cast<std::size_t>(count));
  if (metrics == nullptr) return nullptr;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    getScaledGlyphMetricsFromTables(hmtx, vmtx, hCount, vCount, glyphCount, unitsPerEm, glyphs[i],
                                    &metrics[i]);
  }
  return metrics.release();
}

std::uint16_t rawTableCount(const std::uint8_t* table) noexcept {
  static_assert(Name::kCount.kOffset == Cmap::kCount.kOffset &&
                Name::kCount.kOffset == Kern::kCount.kOffset);
  constexpr std::size_t kRead = Name::kCount.kEnd;
  return table == nullptr ? std::uint16_t{0}
                          : detail::FixedView<Name, kRead>::vouched(table).get(Name::kCount);
}

}  // namespace ulm::truetype
