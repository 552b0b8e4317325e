#include "truetype/writer/detail/glyph_tables.h"

#include <cstring>
#include <utility>

#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype::detail {
namespace {

constexpr std::uint32_t kTagHmtx = 0x686D7478;
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
  void read(const TTList& glyphs, std::uint32_t* offsets, std::uint8_t* metrics) noexcept {
    std::uint32_t place = 0;
    std::uint16_t advance = 0;
    for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next, ++place) {
      const auto& glyph = *static_cast<const GlyphData*>(node->item);
      offsets[place] = bytes;
      bytes += glyph.byteCount;
      allLengths |= glyph.byteCount;
      put32(metrics, std::size_t{4} * place,
            std::uint32_t{glyph.advanceWidth} << 16 |
                static_cast<std::uint16_t>(glyph.leftSideBearing));
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
  auto& loca = *static_cast<LocaTableData*>(table->data);
  const std::uint32_t length = count * (isLong ? 4 : 2);
  loca.bytes = makeZeroedBuffer<std::uint8_t>(static_cast<std::size_t>(padded(length))).release();
  if (loca.bytes == nullptr) {
    disposeWriterTable(table);
    return WriterResultNoMemory;
  }
  loca.length = length;
  if (isLong) {
    for (std::size_t i = 0; i < count; ++i) put32(loca.bytes, 4 * i, offsets[i]);
  } else {
    for (std::size_t i = 0; i < count; ++i) put16(loca.bytes, 2 * i, offsets[i] / 2);
  }
  return static_cast<WriterResult>(addWriterTable(writer, table));
}

// Of the metrics behind the long ones the bearings are left.
WriterResult addHmtx(TrueTypeWriter* writer, CBuffer<std::uint8_t> metrics, std::uint32_t count,
                     std::uint32_t longMetrics) noexcept {
  std::size_t length = std::size_t{4} * longMetrics;
  for (std::size_t i = longMetrics; i < count; ++i, length += 2) {
    std::memmove(metrics.get() + length, metrics.get() + 4 * i + 2, 2);
  }
  WriterTable* table =
      adoptRawTable(kTagHmtx, static_cast<std::uint32_t>(length), std::move(metrics));
  if (table == nullptr) return WriterResultNoMemory;
  return static_cast<WriterResult>(addWriterTable(writer, table));
}

std::uint8_t* bytesOf(WriterTable* table) noexcept {
  return static_cast<std::uint8_t*>(table->data);
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
  auto& payload = *static_cast<GlyfPayload*>(glyf->data);
  const TTList& glyphs = payload.glyphs;
  if (glyphs.count == 0) return WriterResultEmptyTable;
  if (glyphs.count > kMostGlyphs) return WriterResultTooManyGlyphs;
  removeWriterTable(writer, kTagLoca);
  removeWriterTable(writer, kTagHmtx);

  const std::size_t count = glyphs.count;
  const CBuffer<std::uint32_t> offsets = makeBuffer<std::uint32_t>(count + 1);
  CBuffer<std::uint8_t> metrics = makeBuffer<std::uint8_t>(4 * count);
  if (offsets == nullptr || metrics == nullptr) return WriterResultNoMemory;
  Totals totals;
  totals.read(glyphs, offsets.get(), metrics.get());
  if (totals.allLengths % 2 != 0) return WriterResultBadTable;
  *outBytes = totals.bytes;
  GlyphExtent extent = payload.extent;
  if (payload.store == nullptr) {
    // What has been done to the list between two glyphs can't be seen at its end.
    payload.index.forget();
    if (!payload.index.follow(glyphs)) return WriterResultNoMemory;
    for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next) {
      extent.include(*static_cast<const GlyphData*>(node->item));
    }
  }
  if (payload.store == nullptr || payload.lateReferences) renumberGlyphs(payload);
  const bool isLong = totals.bytes / 2 > 0xFFFF;
  const WriterResult loca = addLoca(writer, offsets.get(), glyphs.count + 1, isLong);
  if (loca != WriterResultOk) return loca;

  put16(bytesOf(head), 36, static_cast<std::uint16_t>(extent.xMin));
  put16(bytesOf(head), 38, static_cast<std::uint16_t>(extent.yMin));
  put16(bytesOf(head), 40, static_cast<std::uint16_t>(extent.xMax));
  put16(bytesOf(head), 42, static_cast<std::uint16_t>(extent.yMax));
  put16(bytesOf(head), 50, isLong ? 1 : 0);
  put16(bytesOf(maxp), 4, glyphs.count);
  put16(bytesOf(maxp), 6, totals.points);
  put16(bytesOf(maxp), 8, totals.contours);
  put16(bytesOf(maxp), 10, totals.compositePoints);
  put16(bytesOf(maxp), 12, totals.compositeContours);

  put16(bytesOf(hhea), 34, totals.longMetrics);
  return addHmtx(writer, std::move(metrics), glyphs.count, totals.longMetrics);
}

}  // namespace ulm::truetype::detail
