#include "truetype/writer/subset.h"

#include "truetype/detail/byte_view.h"
#include "truetype/writer/detail/payloads.h"
#include "truetype/writer/writer.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::CBuffer;

constexpr std::uint8_t kGenericText[] = {'T', 'r', 'u', 'e', 'T', 'y', 'p',
                                         'e', 'S', 'u', 'b', 's', 'e', 't'};
constexpr std::uint8_t kGenericUnits[] = {0, 'T', 0, 'r', 0, 'u', 0, 'e', 0, 'T', 0, 'y', 0, 'p',
                                          0, 'e', 0, 'S', 0, 'u', 0, 'b', 0, 's', 0, 'e', 0, 't'};
constexpr NameRecord kGenericMacintosh{1, 0, 0, 6, sizeof kGenericText, nullptr};
constexpr NameRecord kGenericWindows{3, 1, 0x0409, 6, sizeof kGenericUnits, nullptr};

struct DisposeTable {
  void operator()(WriterTable* table) const noexcept { disposeWriterTable(table); }
};
using OwnedTable = std::unique_ptr<WriterTable, DisposeTable>;
struct DisposeWriter {
  void operator()(TrueTypeWriter* writer) const noexcept { disposeTrueTypeWriter(writer); }
};
using OwnedWriter = std::unique_ptr<TrueTypeWriter, DisposeWriter>;

bool appendGeneric(WriterTable* names) noexcept {
  return detail::appendNameRecord(names, kGenericMacintosh, kGenericText, sizeof kGenericText) &&
         detail::appendNameRecord(names, kGenericWindows, kGenericUnits, sizeof kGenericUnits);
}

// The records of the source in their order. Once their strings are too long for any name table, the
// rest makes no difference.
bool appendSource(WriterTable* names, const TrueTypeFont& font) noexcept {
  const ByteView table = detail::tableView(font, kSlotName);
  const std::uint32_t count = table.readOrZero<std::uint16_t>(2);
  const std::size_t strings = table.readOrZero<std::uint16_t>(4);
  std::uint32_t total = 0;
  for (std::uint32_t i = 0; i < count && total < 0x10000; ++i) {
    const ByteView record = table.from(6 + std::size_t{12} * i);
    const NameRecord keys{record.readOrZero<std::uint16_t>(0), record.readOrZero<std::uint16_t>(2),
                          record.readOrZero<std::uint16_t>(4), record.readOrZero<std::uint16_t>(6),
                          record.readOrZero<std::uint16_t>(8), nullptr};
    const ByteView string =
        table.sub(strings + record.readOrZero<std::uint16_t>(10), keys.length).value_or(ByteView());
    const auto length = static_cast<std::uint16_t>(string.size());
    if (!detail::appendNameRecord(names, keys, string.start(), length)) return false;
    total += length;
  }
  return true;
}

// Null without memory, as the makers below.
OwnedTable makeNames(const TrueTypeFont& font, std::uint32_t count, const NameRecord* records,
                     std::uint32_t flags) noexcept {
  OwnedTable names(createNameTable(0, nullptr));
  if (names == nullptr) return nullptr;
  bool whole = true;
  if ((flags & SubsetGenericName) == 0) {
    if (count == 0) whole = appendSource(names.get(), font);
    for (std::uint32_t i = 0; whole && i < count; ++i) {
      whole = detail::appendNameRecord(names.get(), records[i], records[i].data, records[i].length);
    }
  }
  if (detail::listOf(names.get())->count == 0) whole = whole && appendGeneric(names.get());
  return whole ? std::move(names) : nullptr;
}

OwnedTable makeHhea(const TrueTypeFont& font) noexcept {
  const ByteView hhea = detail::tableView(font, kSlotHhea);
  const auto at = [hhea](std::size_t offset) { return hhea.readOrZero<std::uint16_t>(offset); };
  return OwnedTable(createHheaTable(at(4), at(6), at(8), at(18), at(20)));
}

OwnedTable makeHead(const TrueTypeFont& font) noexcept {
  const ByteView head = detail::tableView(font, kSlotHead);
  const auto at = [head](std::size_t offset) { return head.readOrZero<std::uint16_t>(offset); };
  std::uint8_t created[8] = {};
  head.copy(20, sizeof created, created);
  return OwnedTable(createHeadTable(head.readOrZero<std::uint32_t>(4), at(16), at(18), created,
                                    at(44), at(46), at(48)));
}

OwnedTable makePost(const TrueTypeFont& font) noexcept {
  const ByteView post = detail::tableView(font, kSlotPost);
  return OwnedTable(
      createPostTable(post.readOrZero<std::uint32_t>(4), post.readOrZero<std::uint16_t>(8),
                      post.readOrZero<std::uint16_t>(10), post.readOrZero<std::uint32_t>(12)));
}

WriterResult add(TrueTypeWriter* writer, OwnedTable table) noexcept {
  if (table == nullptr) return WriterResultNoMemory;
  return static_cast<WriterResult>(addWriterTable(writer, table.release()));
}

// A copy of the source's table, if it has one.
WriterResult addCopy(TrueTypeWriter* writer, const TrueTypeFont& font, TableSlot slot,
                     std::uint32_t tag) noexcept {
  if (font.tables[slot] == nullptr) return WriterResultOk;
  return add(writer, OwnedTable(createRawTable(tag, font.tableLengths[slot], font.tables[slot])));
}

}  // namespace

WriterResult createTrueTypeSubset(const TrueTypeFont* font, std::uint8_t** outImage,
                                  std::uint32_t* outLength, std::uint16_t* glyphIds,
                                  const std::uint16_t* charCodes, std::int32_t glyphCount,
                                  std::uint32_t nameRecordCount, const NameRecord* nameRecords,
                                  std::uint32_t flags) noexcept {
  if (glyphCount < 1) return WriterResultNoData;
  TrueTypeWriter* made = nullptr;
  createTrueTypeWriter(&made);
  const OwnedWriter writer(made);
  if (writer == nullptr) return WriterResultNoMemory;
  const auto addTable = [&](WriterResult& result, OwnedTable table) {
    if (result == WriterResultOk) result = add(writer.get(), std::move(table));
  };
  const auto addCopyOf = [&](WriterResult& result, TableSlot slot, std::uint32_t tag) {
    if (result == WriterResultOk) result = addCopy(writer.get(), *font, slot, tag);
  };

  WriterResult result = WriterResultOk;
  addTable(result, makeNames(*font, nameRecordCount, nameRecords, flags));
  addTable(result,
           OwnedTable(createMaxpTable(font->tables[kSlotMaxp], font->tableLengths[kSlotMaxp])));
  addTable(result, makeHhea(*font));
  addTable(result, makeHead(*font));
  const auto wanted = static_cast<std::uint32_t>(glyphCount);
  OwnedTable glyf(
      detail::createBorrowingGlyfTable(*font, wanted < font->numGlyphs ? wanted : font->numGlyphs));
  const auto count = static_cast<std::size_t>(glyphCount);
  const CBuffer<std::int32_t> newIndices = detail::makeBuffer<std::int32_t>(count);
  if (result != WriterResultOk || glyf == nullptr || newIndices == nullptr) {
    return WriterResultNoMemory;
  }

  // Any failure is one that leaves the caller's list as it was.
  const WriterResult taken =
      detail::addFontGlyphs(glyf.get(), *font, glyphIds, count, newIndices.get());
  if (taken != WriterResultOk) return taken;
  for (std::size_t k = 0; k < count; ++k) glyphIds[k] = static_cast<std::uint16_t>(newIndices[k]);
  if (truetype::glyphCount(glyf.get()) == 0) return WriterResultNoData;

  OwnedTable cmap(createCmapTable());
  if (cmap != nullptr) {
    detail::addCharMappings(cmap.get(), charCodes, newIndices.get(), count);
  }
  addTable(result, std::move(glyf));
  addTable(result, std::move(cmap));
  addCopyOf(result, kSlotCvt, 0x63767420);
  addCopyOf(result, kSlotPrep, 0x70726570);
  addCopyOf(result, kSlotFpgm, 0x6670676D);
  addTable(result, makePost(*font));
  if ((flags & SubsetKeepOS2) != 0) addCopyOf(result, kSlotOs2, 0x4F532F32);
  return result == WriterResultOk ? assembleFont(writer.get(), outImage, outLength) : result;
}

}  // namespace ulm::truetype
