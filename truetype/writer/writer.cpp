#include "truetype/writer/writer.h"

#include <cstdlib>

#include "truetype/detail/swap_run.h"
#include "truetype/format/directory.h"
#include "truetype/writer/detail/assembly.h"
#include "truetype/writer/detail/glyf_table.h"

namespace ulm::truetype {
namespace {

void disposeItem(void* table) noexcept { disposeWriterTable(static_cast<WriterTable*>(table)); }

std::uint32_t fileTagOf(const WriterTable* table) noexcept {
  return table->tag == kTagRaw ? static_cast<const RawTableData*>(table->data)->tag : table->tag;
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
  *writer = {format::OffsetTable::kTrueType, tables};
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
  WriterTable* glyf = findWriterTable(writer, kTagGlyf);
  if (glyf == nullptr) return WriterResultMissingTable;
  std::free(glyf->image);
  glyf->image = nullptr;
  detail::ListedGlyphs glyphs(detail::glyfOf(glyf));
  return detail::assemble(writer, glyphs, glyf, outImage, outLength);
}

std::uint32_t tableChecksum(const std::uint8_t* bytes, std::uint32_t length) noexcept {
  return detail::sumRun32({bytes, static_cast<std::size_t>(format::padded(length))});
}

}  // namespace ulm::truetype
