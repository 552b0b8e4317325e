#include "truetype/writer/writer.h"

#include <algorithm>
#include <cstring>

#include "truetype/detail/swap_run.h"
#include "truetype/writer/detail/glyph_tables.h"
#include "truetype/writer/detail/payloads.h"

namespace ulm::truetype {
namespace {

using detail::CBuffer;
using detail::put16;
using detail::put32;
using detail::TableImage;

constexpr std::uint32_t kSfntVersion = 0x00010000;
constexpr std::uint32_t kHeader = 12;
constexpr std::uint32_t kDirectoryEntry = 16;
// With more, 16 times the largest power of 2 in the number does not fit searchRange.
constexpr std::uint32_t kMostTables = 4095;
constexpr std::uint32_t kWholeFileSum = 0xB1B0AFBA;
constexpr std::uint32_t kHeadAdjustment = 8;

void disposeItem(void* table) noexcept { disposeWriterTable(static_cast<WriterTable*>(table)); }

std::uint32_t fileTagOf(const WriterTable* table) noexcept {
  return table->tag == kTagRaw ? static_cast<const RawTableData*>(table->data)->tag : table->tag;
}

// A table's image with its place in the order of adding, which settles the order of equal tags.
struct Entry {
  TableImage image;
  const TTList* glyphs;  // in place of the bytes of a glyf table
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
  entry.glyphs = detail::listOf(table);
  const std::uint64_t length = table == glyf ? glyfLength : detail::glyfLength(*entry.glyphs);
  if (entry.glyphs->count == 0) return WriterResultEmptyTable;
  if (detail::padded(length) > UINT32_MAX) return WriterResultFileTooLarge;
  entry.image = {nullptr, static_cast<std::uint32_t>(length), kTagGlyf};
  return WriterResultOk;
}

void writeTable(const Entry& entry, std::uint8_t* out) noexcept {
  const std::uint32_t length = entry.image.length;
  const auto room = static_cast<std::size_t>(detail::padded(length));
  if (entry.glyphs != nullptr) {
    detail::writeGlyphs(*entry.glyphs, out);
    std::memset(out + length, 0, room - length);
  } else if (length != 0) {
    std::memcpy(out, entry.image.bytes, room);
  }
}

void writeHeader(std::uint8_t* file, std::uint32_t sfntVersion, std::uint32_t tables) noexcept {
  std::uint32_t power = 1, log = 0;
  for (; power * 2 <= tables; power *= 2) ++log;
  put32(file, 0, sfntVersion);
  put16(file, 4, tables);
  put16(file, 6, 16 * power);
  put16(file, 8, log);
  put16(file, 10, 16 * (tables - power));
}

// The directory and the tables. The sum of the whole file is that of its parts: each begins at a
// word.
void writeTables(std::uint8_t* file, const Entry* entries, std::uint32_t count) noexcept {
  std::uint32_t place = kHeader + kDirectoryEntry * count;
  std::uint32_t sum = 0;
  std::uint8_t* head = nullptr;
  for (std::uint32_t i = 0; i < count; ++i) {
    const TableImage& image = entries[i].image;
    const auto room = static_cast<std::uint32_t>(detail::padded(image.length));
    writeTable(entries[i], file + place);
    const std::uint32_t checksum = tableChecksum(file + place, image.length);
    std::uint8_t* entry = file + kHeader + std::size_t{kDirectoryEntry} * i;
    put32(entry, 0, image.tag);
    put32(entry, 4, checksum);
    put32(entry, 8, place);
    put32(entry, 12, image.length);
    // A raw table may come under that tag without having the field.
    if (image.tag == kTagHead && image.length >= kHeadAdjustment + 4) head = file + place;
    sum += checksum;
    place += room;
  }
  sum += tableChecksum(file, kHeader + kDirectoryEntry * count);
  put32(head, kHeadAdjustment, kWholeFileSum - sum);
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
  *writer = {kSfntVersion, tables};
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
  std::uint64_t length = kHeader + std::uint64_t{kDirectoryEntry} * count;
  std::uint32_t place = 0;
  for (const TTListNode* node = writer->tables->first; node != nullptr; node = node->next) {
    Entry& entry = entries[place];
    entry.place = place++;
    const WriterResult made =
        makeEntry(static_cast<WriterTable*>(node->item), glyf, glyfLength, entry);
    if (made != WriterResultOk) return made;
    length += detail::padded(entry.image.length);
  }
  if (count > kMostTables || length > UINT32_MAX) return WriterResultFileTooLarge;
  std::sort(entries.get(), entries.get() + count, [](const Entry& a, const Entry& b) {
    return a.image.tag != b.image.tag ? a.image.tag < b.image.tag : a.place < b.place;
  });

  CBuffer<std::uint8_t> file = detail::makeBuffer<std::uint8_t>(static_cast<std::size_t>(length));
  if (file == nullptr) return WriterResultNoMemory;
  writeHeader(file.get(), writer->sfntVersion, count);
  writeTables(file.get(), entries.get(), count);
  *outImage = file.release();
  *outLength = static_cast<std::uint32_t>(length);
  return WriterResultOk;
}

std::uint32_t tableChecksum(const std::uint8_t* bytes, std::uint32_t length) noexcept {
  return detail::sumRun32(bytes, static_cast<std::size_t>(detail::padded(length) / 4));
}

}  // namespace ulm::truetype
