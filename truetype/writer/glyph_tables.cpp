#include "truetype/writer/detail/glyph_tables.h"

#include <cassert>
#include <utility>

#include "truetype/format/byte_sink.h"
#include "truetype/format/glyf.h"
#include "truetype/format/head.h"
#include "truetype/format/hhea.h"
#include "truetype/format/hmtx.h"
#include "truetype/format/maxp.h"
#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype::detail {
namespace {

using format::FixedSink, format::LongMetric, format::LongMetrics, format::Loca;
using format::Head, format::Hhea, format::Maxp;

constexpr std::uint32_t kMostGlyphs = 0xFFFF;

void raise(std::uint16_t& most, std::uint16_t value) noexcept {
  if (value > most) most = value;
}

// What the glyphs come to, read in one pass over them.
struct Totals {
  std::uint32_t bytes = 0;
  static_assert(std::uint64_t{kMostGlyphs} * 0xFFFF <= UINT32_MAX);
  std::uint16_t points = 0, contours = 0, compositePoints = 0, compositeContours = 0;
  // Glyphs from here on have the advance of the last one, which is stored once.
  std::uint32_t longMetrics = 1;
  std::uint16_t allLengths = 0;  // or-ed together

  // `offsets` gets where each glyph begins and the last one ends, `metrics` a long entry of each.
  void read(const TTList& glyphs, std::uint32_t* offsets,
            format::ArraySink<std::uint32_t> metrics) noexcept {
    std::uint32_t place = 0;
    std::uint16_t advance = 0;
    for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next, ++place) {
      const auto& glyph = *static_cast<const GlyphData*>(node->item);
      offsets[place] = bytes;
      bytes += glyph.byteCount;
      allLengths |= glyph.byteCount;
      metrics.put(place, LongMetric::both(glyph.advanceWidth, glyph.leftSideBearing));
      if (glyph.advanceWidth != advance) longMetrics = place + 1;
      advance = glyph.advanceWidth;
      raise(glyph.isComposite == 0 ? points : compositePoints, glyph.pointCount);
      raise(glyph.isComposite == 0 ? contours : compositeContours, glyph.contourCount);
    }
    offsets[place] = bytes;
    if (glyphs.count < 3) longMetrics = glyphs.count;
  }
};

// Short offsets are halved.
WriterResult addLoca(TrueTypeWriter* writer, const std::uint32_t* offsets, std::uint32_t count,
                     bool isLong) noexcept {
  WriterTable* table = createLocaTable();
  if (table == nullptr) return WriterResultNoMemory;
  auto& payload = *static_cast<LocaTableData*>(table->data);
  const std::size_t length = Loca::size(count, isLong);
  const auto room = static_cast<std::size_t>(padded(length));
  payload.bytes = makeZeroedBuffer<std::uint8_t>(room).release();
  if (payload.bytes == nullptr) {
    disposeWriterTable(table);
    return WriterResultNoMemory;
  }
  payload.length = static_cast<std::uint32_t>(length);
  bool overflowed = false;
  const format::ByteSink bytes(payload.bytes, length, &overflowed);
  if (isLong) {
    const auto loca = bytes.array(Loca::kLongOffsets, count);
    for (std::size_t i = 0; i < count; ++i) loca.put(i, offsets[i]);
  } else {
    const auto loca = bytes.array(Loca::kShortOffsets, count);
    for (std::size_t i = 0; i < count; ++i) {
      loca.put(i, static_cast<std::uint16_t>(offsets[i] / 2));
    }
  }
  assert(!overflowed);
  return static_cast<WriterResult>(addWriterTable(writer, table));
}

// Of the metrics after the long ones the bearings are left. `metrics` has a long entry for each of
// `count` glyphs.
WriterResult addHmtx(TrueTypeWriter* writer, CBuffer<std::uint8_t> metrics, std::uint32_t count,
                     std::uint32_t longMetrics) noexcept {
  const LongMetrics layout{longMetrics};
  bool overflowed = false;
  const format::ByteSink bytes(metrics.get(), LongMetrics::kEntries.bytes(count), &overflowed);
  const RecordView<LongMetrics> stored(bytes.view());
  for (std::size_t i = longMetrics; i < count; ++i) {
    const std::int16_t bearing =
        stored.held(LongMetrics::kEntries, i).get(LongMetric::kSideBearing);
    bytes.put<std::int16_t>(layout.bearing(i), bearing);
  }
  assert(!overflowed);
  WriterTable* table = adoptRawTable(
      LongMetrics::kHmtxTag, static_cast<std::uint32_t>(layout.size(count)), std::move(metrics));
  if (table == nullptr) return WriterResultNoMemory;
  return static_cast<WriterResult>(addWriterTable(writer, table));
}

// The bytes of a head, maxp or hhea object.
template <class Table>
FixedSink<Table> fieldsOf(WriterTable* table) noexcept {
  return FixedSink<Table>::vouched(static_cast<std::uint8_t*>(table->data));
}

}  // namespace

WriterResult prepareGlyphTables(TrueTypeWriter* writer, std::uint32_t* outBytes) noexcept {
  WriterTable* glyf = findWriterTable(writer, kTagGlyf);
  WriterTable* head = findWriterTable(writer, kTagHead);
  WriterTable* maxp = findWriterTable(writer, kTagMaxp);
  WriterTable* hhea = findWriterTable(writer, kTagHhea);
  if (glyf == nullptr || head == nullptr || maxp == nullptr || hhea == nullptr) {
    return WriterResultMissingTable;
  }
  GlyfPayload& payload = glyfOf(glyf);
  const TTList& glyphs = payload.glyphs;
  if (glyphs.count == 0) return WriterResultEmptyTable;
  if (glyphs.count > kMostGlyphs) return WriterResultTooManyGlyphs;
  removeWriterTable(writer, kTagLoca);
  removeWriterTable(writer, LongMetrics::kHmtxTag);

  const std::size_t count = glyphs.count;
  const CBuffer<std::uint32_t> offsets = makeBuffer<std::uint32_t>(count + 1);
  const std::size_t metricsSize = LongMetrics::kEntries.bytes(count);
  CBuffer<std::uint8_t> metrics = makeBuffer<std::uint8_t>(metricsSize);
  if (offsets == nullptr || metrics == nullptr) return WriterResultNoMemory;
  Totals totals;
  bool overflowed = false;
  const format::ByteSink metricsOut(metrics.get(), metricsSize, &overflowed);
  totals.read(glyphs, offsets.get(), metricsOut.array(LongMetrics::kNumbers, count));
  if (totals.allLengths % 2 != 0) return WriterResultBadTable;
  *outBytes = totals.bytes;
  GlyphExtent extent = payload.extent;
  if (payload.borrowed == nullptr) {
    // What has been done to the list between two glyphs can't be seen at its end.
    payload.index.forget();
    if (!payload.index.follow(glyphs)) return WriterResultNoMemory;
    for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next) {
      const auto& glyph = *static_cast<const GlyphData*>(node->item);
      extent.include(ByteView(glyph.data, glyph.byteCount));
      if (glyph.isComposite != 0) {
        renumberComponents({glyph.data, glyph.byteCount, &overflowed}, payload.index, glyphs.count);
      }
    }
  }
  const bool isLong = totals.bytes / 2 > 0xFFFF;
  const WriterResult loca = addLoca(writer, offsets.get(), glyphs.count + 1, isLong);
  if (loca != WriterResultOk) return loca;

  const auto box = fieldsOf<Head>(head);
  box.put(Head::kXMin, extent.xMin);
  box.put(Head::kYMin, extent.yMin);
  box.put(Head::kXMax, extent.xMax);
  box.put(Head::kYMax, extent.yMax);
  box.put(Head::kIndexToLocFormat, isLong ? Loca::kLongFormat : Loca::kShortFormat);
  const auto counts = fieldsOf<Maxp>(maxp);
  counts.put(Maxp::kGlyphCount, static_cast<std::uint16_t>(glyphs.count));
  counts.put(Maxp::kMaxPoints, totals.points);
  counts.put(Maxp::kMaxContours, totals.contours);
  counts.put(Maxp::kMaxCompositePoints, totals.compositePoints);
  counts.put(Maxp::kMaxCompositeContours, totals.compositeContours);
  fieldsOf<Hhea>(hhea).put(Hhea::kLongMetricCount, static_cast<std::uint16_t>(totals.longMetrics));
  return addHmtx(writer, std::move(metrics), glyphs.count, totals.longMetrics);
}

}  // namespace ulm::truetype::detail
