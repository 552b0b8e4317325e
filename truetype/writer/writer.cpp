#include "truetype/writer/writer.h"

#include <algorithm>
#include <cassert>
#include <optional>

#include "truetype/detail/swap_run.h"
#include "truetype/format/byte_sink.h"
#include "truetype/format/directory.h"
#include "truetype/format/head.h"
#include "truetype/writer/detail/glyph_tables.h"
#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype {
namespace {

using detail::CBuffer;
using detail::TableImage;
using format::ByteSink;
using format::Head, format::OffsetTable, format::TableEntry;

// With more, 16 times the largest power of 2 in the number does not fit searchRange.
constexpr std::uint32_t kMostTables = 4095;

void disposeItem(void* table) noexcept { disposeWriterTable(static_cast<WriterTable*>(table)); }

std::uint32_t fileTagOf(const WriterTable* table) noexcept {
  return table->tag == kTagRaw ? static_cast<const RawTableData*>(table->data)->tag : table->tag;
}

// A table's image with its place in the order of adding, which settles the order of equal tags.
struct Entry {
  TableImage image;
  const detail::GlyfPayload* glyphs;  // in place of the bytes of a glyf table
  std::uint32_t place;
};

// Glyphs go straight to the file: no other table is as large. Those of `glyf` have `glyfLength`
// bytes.
WriterResult makeEntry(WriterTable* table, const WriterTable* glyf, std::uint64_t glyfLength,
                       Entry& entry) noexcept {
  entry.glyphs = nullptr;
  if (table->tag != kTagGlyf) return detail::makeTableImage(table, &entry.image);
  std::free(table->image);
  table->image = nullptr;
  entry.glyphs = &detail::glyfOf(table);
  const TTList& list = entry.glyphs->glyphs;
  const std::uint64_t length = table == glyf ? glyfLength : detail::glyfLength(list);
  if (list.count == 0) return WriterResultEmptyTable;
  if (format::padded(length) > UINT32_MAX) return WriterResultFileTooLarge;
  entry.image = {nullptr, static_cast<std::uint32_t>(length), kTagGlyf};
  return WriterResultOk;
}

// The table with its padding.
void writeTable(const Entry& entry, ByteSink out) noexcept {
  const std::uint32_t length = entry.image.length;
  if (entry.glyphs != nullptr) {
    detail::writeGlyphs(*entry.glyphs, out);
    out.clear(length, out.size() - length);
  } else {
    out.copy(0, {entry.image.bytes, out.size()});
  }
}

void writeHeader(std::uint32_t sfntVersion, std::uint32_t tables,
                 format::RecordSink<OffsetTable> out) noexcept {
  const auto search = format::SearchFields::of(tables, TableEntry::kSize);
  out.put(OffsetTable::kVersion, sfntVersion);
  out.put(OffsetTable::kTableCount, static_cast<std::uint16_t>(tables));
  out.put(OffsetTable::kSearchRange, search.searchRange);
  out.put(OffsetTable::kEntrySelector, search.entrySelector);
  out.put(OffsetTable::kRangeShift, search.rangeShift);
}

// The directory and the tables, and in head the adjustment of the file's sum. That sum is the one
// of its parts, since each begins at a word.
void writeTables(const Entry* entries, std::uint32_t count, ByteSink out) noexcept {
  const format::RecordSink<OffsetTable> directory(out);
  const auto directoryLength = static_cast<std::uint32_t>(OffsetTable::kTables.at(count));
  std::uint32_t offset = directoryLength;
  std::uint32_t sum = 0;
  std::optional<ByteSink> head;
  for (std::uint32_t i = 0; i < count; ++i) {
    const TableImage& image = entries[i].image;
    const auto length = static_cast<std::uint32_t>(format::padded(image.length));
    const ByteSink table = out.sub(offset, length);
    writeTable(entries[i], table);
    const std::uint32_t checksum = detail::sumRun32(table.view());
    const auto entry = directory.at(OffsetTable::kTables, i);
    entry.put(TableEntry::kTag, image.tag);
    entry.put(TableEntry::kChecksum, checksum);
    entry.put(TableEntry::kOffset, offset);
    entry.put(TableEntry::kLength, image.length);
    // A raw table may come under that tag without having the field.
    if (image.tag == kTagHead && image.length >= Head::kChecksumAdjustment.kEnd) head = table;
    sum += checksum;
    offset += length;
  }
  sum += detail::sumRun32(out.sub(0, directoryLength).view());
  if (head) {
    format::RecordSink<Head>(*head).put(Head::kChecksumAdjustment, format::kFileChecksum - sum);
  }
}

}  // namespace

void createTrueTypeWriter(TrueTypeWriter** outWriter) noexcept {
  *outWriter = nullptr;
  TTList* tables = listCreate();
  auto* writer = static_cast<TrueTypeWriter*>(std::malloc(sizeof(TrueTypeWriter)));
  if (tables == nullptr || writer == nullptr) {
    listDispose(tables);
    std::free(writer);
    return;
  }
  listSetDestructor(tables, disposeItem);
  *writer = {OffsetTable::kTrueType, tables};
  *outWriter = writer;
}

void disposeTrueTypeWriter(TrueTypeWriter* writer) noexcept {
  if (writer == nullptr) return;
  listDispose(writer->tables);
  std::free(writer);
}

std::int32_t addWriterTable(TrueTypeWriter* writer, WriterTable* table) noexcept {
  if (table == nullptr) return WriterResultOk;
  const std::uint32_t count = listCount(writer->tables);
  listAppend(writer->tables, table);
  if (listCount(writer->tables) != count) return WriterResultOk;
  disposeWriterTable(table);
  return WriterResultNoMemory;
}

void removeWriterTable(TrueTypeWriter* writer, std::uint32_t tag) noexcept {
  TTList* tables = writer->tables;
  listFirst(tables);
  while (const auto* table = static_cast<const WriterTable*>(listCurrent(tables))) {
    const bool atLast = listAtLast(tables) != 0;
    if (fileTagOf(table) == tag) {
      listRemoveCurrent(tables);
    } else {
      listNext(tables);
    }
    if (atLast) return;
  }
}

WriterTable* findWriterTable(const TrueTypeWriter* writer, std::uint32_t tag) noexcept {
  for (const TTListNode* node = writer->tables->first; node != nullptr; node = node->next) {
    auto* table = static_cast<WriterTable*>(node->item);
    if (table->tag == tag) return table;
  }
  return nullptr;
}

WriterResult assembleFont(TrueTypeWriter* writer, std::uint8_t** outImage,
                          std::uint32_t* outLength) noexcept {
  if (listIsEmpty(writer->tables) != 0) return WriterResultBadTable;
  std::uint32_t glyfLength = 0;
  const WriterResult prepared = detail::prepareGlyphTables(writer, &glyfLength);
  if (prepared != WriterResultOk) return prepared;
  const WriterTable* glyf = findWriterTable(writer, kTagGlyf);

  const std::uint32_t count = listCount(writer->tables);
  const CBuffer<Entry> entries = detail::makeBuffer<Entry>(count);
  if (entries == nullptr) return WriterResultNoMemory;
  std::uint64_t length = OffsetTable::kTables.at(count);
  std::uint32_t place = 0;
  for (const TTListNode* node = writer->tables->first; node != nullptr; node = node->next) {
    Entry& entry = entries[place];
    entry.place = place++;
    const WriterResult made =
        makeEntry(static_cast<WriterTable*>(node->item), glyf, glyfLength, entry);
    if (made != WriterResultOk) return made;
    length += format::padded(entry.image.length);
  }
  if (count > kMostTables || length > UINT32_MAX) return WriterResultFileTooLarge;
  std::sort(entries.get(), entries.get() + count, [](const Entry& a, const Entry& b) {
    return a.image.tag != b.image.tag ? a.image.tag < b.image.tag : a.place < b.place;
  });

  CBuffer<std::uint8_t> file = detail::makeBuffer<std::uint8_t>(static_cast<std::size_t>(length));
  if (file == nullptr) return WriterResultNoMemory;
  bool overflowed = false;
  const ByteSink out(file.get(), static_cast<std::size_t>(length), &overflowed);
  writeHeader(writer->sfntVersion, count, format::RecordSink<OffsetTable>(out));
  writeTables(entries.get(), count, out);
  assert(!overflowed);
  if (overflowed) return WriterResultBadTable;
  *outImage = file.release();
  *outLength = static_cast<std::uint32_t>(length);
  return WriterResultOk;
}

std::uint32_t tableChecksum(const std::uint8_t* bytes, std::uint32_t length) noexcept {
  return detail::sumRun32({bytes, static_cast<std::size_t>(format::padded(length))});
}

}  // namespace ulm::truetype
