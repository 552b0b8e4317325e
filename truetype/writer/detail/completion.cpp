#include "truetype/writer/detail/completion.h"

#include <cassert>
#include <cstddef>
#include <utility>

#include "truetype/detail/c_buffer.h"
#include "truetype/format/byte_sink.h"
#include "truetype/format/directory.h"
#include "truetype/format/glyf.h"
#include "truetype/format/head.h"
#include "truetype/format/hhea.h"
#include "truetype/format/hmtx.h"
#include "truetype/format/maxp.h"
#include "truetype/writer/detail/table_object.h"

namespace ulm::truetype::detail {
namespace {

using format::Head, format::Hhea, format::Loca, format::LongMetric, format::LongMetrics;
using format::Maxp;

// The fields of a head, maxp or hhea object.
template <class Table>
format::FixedSink<Table> fieldsOf(WriterTable* table) noexcept {
  return format::FixedSink<Table>::vouched(static_cast<std::uint8_t*>(table->data));
}

WriterResult addTable(TrueTypeWriter* writer, WriterTable* table) noexcept {
  if (table == nullptr) return WriterResultNoMemory;
  return static_cast<WriterResult>(addWriterTable(writer, table));
}

// A loca table of the offsets, which are halved in 16 bits.
WriterResult addLoca(TrueTypeWriter* writer, const std::uint32_t* offsets, std::uint32_t count,
                     bool isLong) noexcept {
  const std::size_t length = Loca::size(count, isLong);
  NewBytes bytes(length);
  if (!bytes.hasMemory()) return WriterResultNoMemory;
  if (isLong) {
    const auto loca = bytes.sink().array(Loca::kLongOffsets, count);
    for (std::size_t i = 0; i < count; ++i) loca.put(i, offsets[i]);
  } else {
    const auto loca = bytes.sink().array(Loca::kShortOffsets, count);
    for (std::size_t i = 0; i < count; ++i) {
      loca.put(i, static_cast<std::uint16_t>(offsets[i] / 2));
    }
  }
  CBuffer<std::uint8_t> made;
  const WriterResult result = bytes.release(&made);
  if (result != WriterResultOk) return result;
  WriterTable* table = createLocaTable();
  if (table == nullptr) return WriterResultNoMemory;
  *static_cast<LocaTableData*>(table->data) = {static_cast<std::uint32_t>(length), made.release()};
  return addTable(writer, table);
}

// Of the metrics after the long ones the bearings are left. `metrics` has a long entry for each of
// `count` glyphs.
WriterResult addHmtx(TrueTypeWriter* writer, NewBytes& metrics, std::uint32_t count,
                     std::uint32_t longMetrics) noexcept {
  const LongMetrics layout{longMetrics};
  const format::ByteSink bytes = metrics.sink();
  const format::RecordView<LongMetrics> stored(bytes.view());
  for (std::size_t i = longMetrics; i < count; ++i) {
    bytes.put<std::int16_t>(layout.bearing(i),
                            stored.held(LongMetrics::kEntries, i).get(LongMetric::kSideBearing));
  }
  CBuffer<std::uint8_t> made;
  const WriterResult result = metrics.release(&made);
  if (result != WriterResultOk) return result;
  return addTable(
      writer, makeRawTable(LongMetrics::kHmtxTag, static_cast<std::uint32_t>(layout.size(count)),
                           std::move(made)));
}

void completeHead(WriterTable* table, const FontBox& box, bool isLong) noexcept {
  const auto head = fieldsOf<Head>(table);
  head.put(Head::kXMin, box.xMin);
  head.put(Head::kYMin, box.yMin);
  head.put(Head::kXMax, box.xMax);
  head.put(Head::kYMax, box.yMax);
  head.put(Head::kIndexToLocFormat, isLong ? Loca::kLongFormat : Loca::kShortFormat);
}

void completeMaxp(WriterTable* table, const GlyphTotals& totals, std::uint32_t count) noexcept {
  const auto maxp = fieldsOf<Maxp>(table);
  maxp.put(Maxp::kGlyphCount, static_cast<std::uint16_t>(count));
  maxp.put(Maxp::kMaxPoints, totals.points);
  maxp.put(Maxp::kMaxContours, totals.contours);
  maxp.put(Maxp::kMaxCompositePoints, totals.compositePoints);
  maxp.put(Maxp::kMaxCompositeContours, totals.compositeContours);
}

}  // namespace

WriterResult completeTables(TrueTypeWriter* writer, NewGlyphs& glyphs,
                            std::uint32_t* outGlyfLength) noexcept {
  WriterTable* head = findWriterTable(writer, kTagHead);
  WriterTable* maxp = findWriterTable(writer, kTagMaxp);
  WriterTable* hhea = findWriterTable(writer, kTagHhea);
  if (head == nullptr || maxp == nullptr || hhea == nullptr) return WriterResultMissingTable;
  const std::uint32_t count = glyphs.count();
  if (count == 0) return WriterResultEmptyTable;
  if (count > kMaxGlyphCount) return WriterResultTooManyGlyphs;
  removeWriterTable(writer, kTagLoca);
  removeWriterTable(writer, LongMetrics::kHmtxTag);

  const CBuffer<std::uint32_t> offsets = makeBuffer<std::uint32_t>(count + std::size_t{1});
  NewBytes metrics(LongMetrics::kEntries.bytes(count));
  if (offsets == nullptr || !metrics.hasMemory()) return WriterResultNoMemory;
  const GlyphTotals totals =
      glyphs.measure(offsets.get(), metrics.sink().array(LongMetrics::kNumbers, count));
  if (totals.allLengths % 2 != 0) return WriterResultBadTable;
  *outGlyfLength = totals.bytes;
  FontBox box;
  const WriterResult renumbered = glyphs.renumber(&box);
  if (renumbered != WriterResultOk) return renumbered;

  const bool isLong = !Loca::fitsShort(totals.bytes);
  const WriterResult added = addLoca(writer, offsets.get(), count + 1, isLong);
  if (added != WriterResultOk) return added;
  completeHead(head, box, isLong);
  completeMaxp(maxp, totals, count);
  fieldsOf<Hhea>(hhea).put(Hhea::kLongMetricCount, static_cast<std::uint16_t>(totals.longMetrics));
  return addHmtx(writer, metrics, count, totals.longMetrics);
}

}  // namespace ulm::truetype::detail
