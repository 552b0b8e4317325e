#include "truetype/writer/detail/glyph_tables.h"

#include "truetype/detail/component.h"
#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype::detail {
namespace {

constexpr std::uint32_t kTagHmtx = 0x686D7478;
constexpr std::uint32_t kMostGlyphs = 0xFFFF;

// What the glyphs come to.
struct Totals {
  std::uint64_t bytes = 0;
  std::uint16_t points = 0, contours = 0, compositePoints = 0, compositeContours = 0;
};

void raise(std::uint16_t& most, std::uint16_t value) noexcept {
  if (value > most) most = value;
}
// False where a glyph has an odd number of bytes.
bool addUp(const TTList& glyphs, Totals& totals) noexcept {
  for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next) {
    const auto& glyph = *static_cast<const GlyphData*>(node->item);
    if (glyph.byteCount % 2 != 0) return false;
    totals.bytes += glyph.byteCount;
    if (glyph.isComposite == 0) {
      raise(totals.points, glyph.pointCount);
      raise(totals.contours, glyph.contourCount);
    } else {
      raise(totals.compositePoints, glyph.pointCount);
      raise(totals.compositeContours, glyph.contourCount);
    }
  }
  return true;
}

// Makes the references of a composite those of the new font.
void renumber(const GlyphData& glyph, const GlyphIndex& index, std::uint32_t glyphs) noexcept {
  const ByteView data(glyph.data, glyph.byteCount);
  std::uint16_t flags = kMoreComponents;
  std::size_t record = kFirstComponent;
  for (; (flags & kMoreComponents) != 0; record += componentSize(flags)) {
    if (!data.holds(record, 4)) return;
    flags = data.readOrZero<std::uint16_t>(record);
    const std::uint32_t place = index.find(data.readOrZero<std::uint16_t>(record + 2));
    put16(glyph.data, record + 2, place == kNoRecordIndex ? glyphs : place);
  }
}

// Glyphs from the result on have the advance of the last one, which is stored once.
std::uint32_t countLongMetrics(const TTList& glyphs) noexcept {
  if (glyphs.count < 3) return glyphs.count;
  const TTListNode* node = glyphs.last;
  std::uint32_t last = glyphs.count - 1;
  for (; last > 0; --last, node = node->previous) {
    if (static_cast<const GlyphData*>(node->item)->advanceWidth !=
        static_cast<const GlyphData*>(node->previous->item)->advanceWidth) {
      break;
    }
  }
  return last + 1;
}

// The offset of each glyph and the end of the last, halved in the short form.
WriterResult addLoca(TrueTypeWriter* writer, const TTList& glyphs, bool isLong) noexcept {
  WriterTable* table = createLocaTable();
  if (table == nullptr) return WriterResultNoMemory;
  auto& loca = *static_cast<LocaTableData*>(table->data);
  const std::uint32_t length = (glyphs.count + 1) * (isLong ? 4 : 2);
  loca.bytes = makeZeroedBuffer<std::uint8_t>(static_cast<std::size_t>(padded(length))).release();
  if (loca.bytes == nullptr) {
    disposeWriterTable(table);
    return WriterResultNoMemory;
  }
  loca.length = length;
  std::uint32_t offset = 0;
  std::size_t place = 0;
  const auto store = [&] {
    if (isLong) {
      put32(loca.bytes, 4 * place++, offset);
    } else {
      put16(loca.bytes, 2 * place++, offset / 2);
    }
  };
  for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next) {
    store();
    offset += static_cast<const GlyphData*>(node->item)->byteCount;
  }
  store();
  return static_cast<WriterResult>(addWriterTable(writer, table));
}

WriterResult addHmtx(TrueTypeWriter* writer, const TTList& glyphs,
                     std::uint32_t longMetrics) noexcept {
  const std::uint32_t length = 4 * longMetrics + 2 * (glyphs.count - longMetrics);
  const CBuffer<std::uint8_t> bytes = makeBuffer<std::uint8_t>(length);
  if (bytes == nullptr) return WriterResultNoMemory;
  std::size_t place = 0;
  std::uint32_t glyph = 0;
  for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next, ++glyph) {
    const auto& metrics = *static_cast<const GlyphData*>(node->item);
    if (glyph < longMetrics) {
      put16(bytes.get(), place, metrics.advanceWidth);
      place += 2;
    }
    put16(bytes.get(), place, static_cast<std::uint16_t>(metrics.leftSideBearing));
    place += 2;
  }
  WriterTable* table = createRawTable(kTagHmtx, length, bytes.get());
  if (table == nullptr) return WriterResultNoMemory;
  return static_cast<WriterResult>(addWriterTable(writer, table));
}

std::uint8_t* bytesOf(WriterTable* table) noexcept {
  return static_cast<std::uint8_t*>(table->data);
}

}  // namespace

WriterResult prepareGlyphTables(TrueTypeWriter* writer) noexcept {
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

  Totals totals;
  if (!addUp(glyphs, totals)) return WriterResultBadTable;
  if (totals.bytes > UINT32_MAX) return WriterResultFileTooLarge;
  // What has been done to the list between two glyphs can't be seen at its end.
  if (payload.store == nullptr) payload.index.forget();
  if (!payload.index.follow(glyphs)) return WriterResultNoMemory;
  for (const TTListNode* node = glyphs.first; node != nullptr; node = node->next) {
    const auto& glyph = *static_cast<const GlyphData*>(node->item);
    if (glyph.isComposite != 0) renumber(glyph, payload.index, glyphs.count);
  }
  GlyphExtent extent = payload.extent;
  for (const TTListNode* node = glyphs.first; payload.store == nullptr && node != nullptr;
       node = node->next) {
    extent.include(*static_cast<const GlyphData*>(node->item));
  }
  const bool isLong = totals.bytes / 2 > 0xFFFF;
  const WriterResult loca = addLoca(writer, glyphs, isLong);
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

  const std::uint32_t longMetrics = countLongMetrics(glyphs);
  put16(bytesOf(hhea), 34, longMetrics);
  return addHmtx(writer, glyphs, longMetrics);
}

}  // namespace ulm::truetype::detail
