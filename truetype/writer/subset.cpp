#include "truetype/writer/subset.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "truetype/detail/c_buffer.h"
#include "truetype/detail/font_views.h"
#include "truetype/detail/name_entry.h"
#include "truetype/detail/table_slot.h"
#include "truetype/format/head.h"
#include "truetype/format/hhea.h"
#include "truetype/format/name.h"
#include "truetype/format/post.h"
#include "truetype/writer/detail/assembly.h"
#include "truetype/writer/detail/cmap_table.h"
#include "truetype/writer/detail/name_table.h"
#include "truetype/writer/detail/subset_glyphs.h"
#include "truetype/writer/writer.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::CBuffer;
using format::Head, format::Hhea, format::Name, format::Post;

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

// Appends the records of the source in their order. Once their strings are too long for any name
// table, the rest makes no difference.
bool appendSource(WriterTable* names, const TrueTypeFont& font) noexcept {
  constexpr std::uint32_t kTooLong = 0x10000;
  const auto table = detail::tableOf<Name>(font);
  const std::uint32_t count = table.readOrZero(Name::kCount);
  std::uint32_t total = 0;
  for (std::uint32_t i = 0; i < count && total < kTooLong; ++i) {
    const ByteView string = detail::nameString(table, i);
    const auto length = static_cast<std::uint16_t>(string.size());
    const NameRecord keys = detail::nameKeys(table, i);
    if (!detail::appendNameRecord(names, keys, string.start(), length)) return false;
    total += length;
  }
  return true;
}

// The functions that make tables return null without memory.
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
  if (detail::namesOf(names.get()).records.count == 0) whole = whole && appendGeneric(names.get());
  return whole ? std::move(names) : nullptr;
}

OwnedTable makeMaxp(const TrueTypeFont& font) noexcept {
  return OwnedTable(createMaxpTable(font.tables[kSlotMaxp], font.tableLengths[kSlotMaxp]));
}

OwnedTable makeHhea(const TrueTypeFont& font) noexcept {
  const auto hhea = detail::tableOf<Hhea>(font);
  const auto get = [hhea](auto field) {
    return static_cast<std::uint16_t>(hhea.readOrZero(field));
  };
  return OwnedTable(createHheaTable(get(Hhea::kAscender), get(Hhea::kDescender),
                                    get(Hhea::kLineGap), get(Hhea::kCaretSlopeRise),
                                    get(Hhea::kCaretSlopeRun)));
}

OwnedTable makeHead(const TrueTypeFont& font) noexcept {
  const auto head = detail::tableOf<Head>(font);
  std::uint8_t created[sizeof(decltype(Head::kCreated)::Value)];
  format::storeBigEndian(created, head.readOrZero(Head::kCreated));
  return OwnedTable(createHeadTable(
      head.readOrZero(Head::kFontRevision), head.readOrZero(Head::kFlags),
      head.readOrZero(Head::kUnitsPerEm), created, head.readOrZero(Head::kMacStyle),
      head.readOrZero(Head::kLowestRecPPEM), head.readOrZero(Head::kFontDirectionHint)));
}

OwnedTable makePost(const TrueTypeFont& font) noexcept {
  const auto post = detail::tableOf<Post>(font);
  return OwnedTable(
      createPostTable(static_cast<std::uint32_t>(post.readOrZero(Post::kItalicAngle)),
                      static_cast<std::uint16_t>(post.readOrZero(Post::kUnderlinePosition)),
                      static_cast<std::uint16_t>(post.readOrZero(Post::kUnderlineThickness)),
                      post.readOrZero(Post::kIsFixedPitch)));
}

WriterResult add(TrueTypeWriter* writer, OwnedTable table) noexcept {
  if (table == nullptr) return WriterResultNoMemory;
  return static_cast<WriterResult>(addWriterTable(writer, table.release()));
}

// The tables that are made from the source's.
WriterResult addMadeTables(TrueTypeWriter* writer, const TrueTypeFont& font) noexcept {
  for (const auto make : {makeMaxp, makeHhea, makeHead, makePost}) {
    const WriterResult result = add(writer, make(font));
    if (result != WriterResultOk) return result;
  }
  return WriterResultOk;
}

// Copies of the source's tables, of those that it has.
WriterResult addCopies(TrueTypeWriter* writer, const TrueTypeFont& font,
                       std::uint32_t flags) noexcept {
  for (const TableSlot slot : {kSlotCvt, kSlotPrep, kSlotFpgm, kSlotOs2}) {
    if (slot == kSlotOs2 && (flags & SubsetKeepOS2) == 0) continue;
    if (font.tables[slot] == nullptr) continue;
    const WriterResult result =
        add(writer, OwnedTable(createRawTable(detail::kSlotTags[static_cast<std::size_t>(slot)],
                                              font.tableLengths[slot], font.tables[slot])));
    if (result != WriterResultOk) return result;
  }
  return WriterResultOk;
}

// The mapping of each code to the glyph with the same index.
WriterResult addCmap(TrueTypeWriter* writer, const std::uint16_t* charCodes,
                     const std::int32_t* newIndices, std::size_t count) noexcept {
  OwnedTable cmap(createCmapTable());
  if (cmap != nullptr) detail::appendMappings(cmap.get(), charCodes, newIndices, count);
  return add(writer, std::move(cmap));
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
  WriterResult result = add(writer.get(), makeNames(*font, nameRecordCount, nameRecords, flags));
  if (result == WriterResultOk) result = addMadeTables(writer.get(), *font);
  if (result == WriterResultOk) result = addCopies(writer.get(), *font, flags);
  if (result != WriterResultOk) return result;

  const auto count = static_cast<std::size_t>(glyphCount);
  detail::SubsetGlyphs glyphs(*font);
  const CBuffer<std::int32_t> newIndices = detail::makeBuffer<std::int32_t>(count);
  const auto wanted = static_cast<std::uint32_t>(glyphCount);
  if (newIndices == nullptr || !glyphs.expect(std::min(wanted, font->numGlyphs))) {
    return WriterResultNoMemory;
  }
  result = glyphs.take(glyphIds, count, newIndices.get());
  if (result != WriterResultOk) return result;  // the caller's list is as it was
  for (std::size_t k = 0; k < count; ++k) glyphIds[k] = static_cast<std::uint16_t>(newIndices[k]);
  if (glyphs.count() == 0) return WriterResultNoData;

  result = addCmap(writer.get(), charCodes, newIndices.get(), count);
  if (result != WriterResultOk) return result;
  return detail::assemble(writer.get(), glyphs, nullptr, outImage, outLength);
}

}  // namespace ulm::truetype
