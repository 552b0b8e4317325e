#include "truetype/writer/detail/assembly.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "truetype/detail/c_buffer.h"
#include "truetype/detail/swap_run.h"
#include "truetype/format/byte_sink.h"
#include "truetype/format/directory.h"
#include "truetype/format/head.h"
#include "truetype/writer/detail/completion.h"
#include "truetype/writer/detail/table_object.h"

namespace ulm::truetype::detail {
namespace {

using format::ByteSink;
using format::Head, format::OffsetTable, format::TableEntry;

// With more, 16 times the largest power of 2 in the number does not fit searchRange.
constexpr std::uint32_t kMaxTables = 4095;

// A table of the file.
struct FileTable {
  TableImage image;
  const NewGlyphs* glyphs;  // instead of the bytes of the image; null for all other tables
  std::uint32_t index;      // in the order of adding, which settles the order of equal tags
};

// Makes the images of all tables into `out`, in the order of adding. The result is that of the
// first image that fails.
WriterResult makeImages(const TTList& tables, const FileTable& glyf, const WriterTable* glyfObject,
                        FileTable* out) noexcept {
  std::uint32_t index = 0;
  for (const TTListNode* node = tables.first; node != nullptr; node = node->next, ++index) {
    auto* object = static_cast<WriterTable*>(node->item);
    FileTable& table = out[index];
    table = glyf;
    table.index = index;
    if (object == glyfObject) continue;
    table.glyphs = nullptr;
    TableImage& image = table.image;
    const WriterResult made = getTableImage(object, &image.bytes, &image.length, &image.tag);
    if (made != WriterResultOk) return made;
  }
  if (glyfObject == nullptr) {
    out[index] = glyf;
    out[index].index = index;
  }
  return WriterResultOk;
}

// The table with its padding.
void writeTable(const FileTable& table, ByteSink out) noexcept {
  const std::uint32_t length = table.image.length;
  if (table.glyphs != nullptr) {
    table.glyphs->write(out.sub(0, length));
    out.clear(length, out.size() - length);
  } else {
    out.copy(0, {table.image.bytes, out.size()});
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
void writeTables(const FileTable* tables, std::uint32_t count, ByteSink out) noexcept {
  const format::RecordSink<OffsetTable> directory(out);
  const auto directoryLength = static_cast<std::uint32_t>(OffsetTable::kTables.at(count));
  std::uint32_t offset = directoryLength;
  std::uint32_t sum = 0;
  std::optional<ByteSink> head;
  for (std::uint32_t i = 0; i < count; ++i) {
    const TableImage& image = tables[i].image;
    const auto length = static_cast<std::uint32_t>(format::padded(image.length));
    const ByteSink bytes = out.sub(offset, length);
    writeTable(tables[i], bytes);
    const std::uint32_t checksum = sumRun32(bytes.view());
    const auto entry = directory.at(OffsetTable::kTables, i);
    entry.put(TableEntry::kTag, image.tag);
    entry.put(TableEntry::kChecksum, checksum);
    entry.put(TableEntry::kOffset, offset);
    entry.put(TableEntry::kLength, image.length);
    // A raw table may come under that tag without having the field.
    if (image.tag == kTagHead && image.length >= Head::kChecksumAdjustment.kEnd) head = bytes;
    sum += checksum;
    offset += length;
  }
  sum += sumRun32(out.sub(0, directoryLength).view());
  if (head) {
    format::RecordSink<Head>(*head).put(Head::kChecksumAdjustment, format::kFileChecksum - sum);
  }
}

}  // namespace

WriterResult assemble(TrueTypeWriter* writer, NewGlyphs& glyphs, const WriterTable* glyf,
                      std::uint8_t** outImage, std::uint32_t* outLength) noexcept {
  FileTable glyfTable{{nullptr, 0, kTagGlyf}, &glyphs, 0};
  const WriterResult completed = completeTables(writer, glyphs, &glyfTable.image.length);
  if (completed != WriterResultOk) return completed;

  const std::uint32_t count = listCount(writer->tables) + (glyf == nullptr ? 1 : 0);
  const CBuffer<FileTable> tables = makeBuffer<FileTable>(count);
  if (tables == nullptr) return WriterResultNoMemory;
  const WriterResult made = makeImages(*writer->tables, glyfTable, glyf, tables.get());
  if (made != WriterResultOk) return made;
  std::uint64_t length = OffsetTable::kTables.at(count);
  for (std::uint32_t i = 0; i < count; ++i) length += format::padded(tables[i].image.length);
  if (count > kMaxTables || length > UINT32_MAX) return WriterResultFileTooLarge;
  std::sort(tables.get(), tables.get() + count, [](const FileTable& a, const FileTable& b) {
    return a.image.tag != b.image.tag ? a.image.tag < b.image.tag : a.index < b.index;
  });

  NewBytes file(static_cast<std::size_t>(length));
  if (!file.hasMemory()) return WriterResultNoMemory;
  writeHeader(writer->sfntVersion, count, format::RecordSink<OffsetTable>(file.sink()));
  writeTables(tables.get(), count, file.sink());
  CBuffer<std::uint8_t> image;
  const WriterResult written = file.release(&image);
  if (written != WriterResultOk) return written;
  *outImage = image.release();
  *outLength = static_cast<std::uint32_t>(length);
  return WriterResultOk;
}

}  // namespace ulm::truetype::detail
