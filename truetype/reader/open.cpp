#include "truetype/reader/open.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include "truetype/detail/c_buffer.h"
#include "truetype/detail/font_views.h"
#include "truetype/detail/swap_run.h"
#include "truetype/format/cmap.h"
#include "truetype/format/directory.h"
#include "truetype/format/glyf.h"
#include "truetype/format/head.h"
#include "truetype/format/hhea.h"
#include "truetype/format/maxp.h"
#include "truetype/format/name.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/mapping.h"
#include "truetype/reader/names.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;
using detail::RecordView;
using format::CollectionHeader;
using format::OffsetTable;

constexpr TableSlot kRequired[] = {kSlotMaxp, kSlotHead, kSlotGlyf,
                                   kSlotLoca, kSlotName, kSlotCmap};

void release(TrueTypeFont* font) noexcept {
  std::free(font->fileName);
  std::free(font->glyphOffsets);
  std::free(font->postScriptName);
  std::free(font->familyName);
  std::free(font->familyNameWide);
  std::free(font->subfamilyName);
  std::free(font->tables);
  std::free(font->tableLengths);
  std::free(font->kernTables);
  std::free(font);
}

struct Release {
  void operator()(TrueTypeFont* font) const noexcept { release(font); }
};

// Finds the face's offset table.
FontResult findFace(ByteView image, std::uint32_t faceIndex, TrueTypeFont& font) noexcept {
  const auto version = RecordView<OffsetTable>(image).read(OffsetTable::kVersion);
  if (version == OffsetTable::kTrueType || version == OffsetTable::kAppleTrueType) {
    return FontResultOk;  // directoryOffset is 0
  }
  if (version != CollectionHeader::kCollection) return FontResultBadFormat;
  const RecordView<CollectionHeader> collection(image);
  const auto header = collection.holding(CollectionHeader::kVersion, CollectionHeader::kFaceCount);
  if (!header || (header->get(CollectionHeader::kVersion) != CollectionHeader::kVersion1 &&
                  header->get(CollectionHeader::kVersion) != CollectionHeader::kVersion2)) {
    return FontResultBadFormat;
  }
  if (faceIndex >= header->get(CollectionHeader::kFaceCount)) return FontResultBadFaceIndex;
  const auto offset = collection.read(CollectionHeader::kOffsets, faceIndex);
  if (!offset) return FontResultBadFormat;
  font.directoryOffset = *offset;
  return FontResultOk;
}

// Notes each table that has a slot, the last of a tag, and holds all to the image.
bool findTables(ByteView image, TrueTypeFont& font) noexcept {
  using format::TableEntry;
  const RecordView<OffsetTable> face(image.from(font.directoryOffset));
  const auto count = face.read(OffsetTable::kTableCount);
  if (!count || !face.holds(OffsetTable::kTables, *count)) return false;
  font.tableCount = *count;
  struct Location {
    bool present;
    std::uint32_t offset, length;
  };
  Location locations[kTableSlotCount] = {};
  for (std::size_t i = 0; i < *count; ++i) {
    const auto entry = face.held(OffsetTable::kTables, i);
    const std::int32_t slot = detail::slotForTag(entry.get(TableEntry::kTag));
    if (slot < 0) continue;
    locations[slot] = {true, entry.get(TableEntry::kOffset), entry.get(TableEntry::kLength)};
  }
  for (std::int32_t slot = 0; slot < kTableSlotCount; ++slot) {
    const Location& table = locations[slot];
    if (!table.present || !image.holds(table.offset, table.length)) continue;
    font.tables[slot] = font.image + table.offset;
    font.tableLengths[slot] = table.length;
  }
  for (const TableSlot slot : kRequired) {
    if (font.tables[slot] == nullptr) return false;
  }
  return true;
}

// Whether the records that a header counts are in the image. Without any no more than the count is
// read.
template <class Table, std::size_t CountOffset, class Element, std::size_t Offset>
bool holdsRecords(RecordView<Table> table, format::Field<Table, std::uint16_t, CountOffset> field,
                  format::Array<Table, Element, Offset> records) noexcept {
  const std::optional<std::uint16_t> count = table.read(field);
  return count && (*count == 0 || table.holds(records, *count));
}

// The first `count` entries of loca as byte offsets into glyf. False where they are not all there.
bool decodeLoca(ByteView loca, std::size_t count, bool isLong, std::uint32_t* out) noexcept {
  return isLong ? detail::storeRun32(loca, count, out)
                : detail::storeDoubledRun16(loca, count, out);
}

FontResult readGlyphOffsets(TrueTypeFont& font) noexcept {
  using format::Head, format::Loca;
  const auto glyphs = detail::tableOf<format::Maxp>(font).read(format::Maxp::kGlyphCount);
  const auto head = detail::tableOf<Head>(font).holding(Head::kUnitsPerEm, Head::kIndexToLocFormat);
  if (!glyphs || !head || head->get(Head::kUnitsPerEm) == 0) return FontResultBadFormat;
  const std::int16_t locaFormat = head->get(Head::kIndexToLocFormat);
  const bool isLong = locaFormat == Loca::kLongFormat;
  if (!isLong && locaFormat != Loca::kShortFormat) return FontResultBadFormat;
  font.unitsPerEm = head->get(Head::kUnitsPerEm);

  const std::uint32_t entries = Loca::entriesIn(font.tableLengths[kSlotLoca], isLong);
  if (entries == 0) {
    font.glyphOffsets = detail::makeZeroedBuffer<std::uint32_t>(1).release();
    return font.glyphOffsets != nullptr ? FontResultOk : FontResultNoMemory;
  }
  font.numGlyphs = entries - 1 < *glyphs ? entries - 1 : *glyphs;
  font.glyphOffsets = detail::makeBuffer<std::uint32_t>(font.numGlyphs + std::size_t{1}).release();
  if (font.glyphOffsets == nullptr) return FontResultNoMemory;
  return decodeLoca(detail::tableView(font, kSlotLoca), font.numGlyphs + std::size_t{1}, isLong,
                    font.glyphOffsets)
             ? FontResultOk
             : FontResultBadFormat;
}

// The count of long metrics of hhea or vhea. A table too short to have one is dropped.
template <class Table>
std::uint32_t readLongMetricCount(TrueTypeFont& font) noexcept {
  constexpr TableSlot kSlot = detail::kSlotOf<Table>;
  const auto count = detail::tableOf<Table>(font).read(Table::kLongMetricCount);
  if (count) return *count;
  font.tables[kSlot] = nullptr;
  font.tableLengths[kSlot] = 0;
  return 0;
}

}  // namespace

FontResult openTrueTypeFont(const char* name, const std::uint8_t* image, std::int32_t imageSize,
                            std::uint32_t faceIndex, TrueTypeFont** outFont) noexcept {
  if (outFont == nullptr) return FontResultBadArgument;
  *outFont = nullptr;
  if (name == nullptr || image == nullptr || imageSize <= 0) return FontResultBadArgument;

  std::unique_ptr<TrueTypeFont, Release> font(
      static_cast<TrueTypeFont*>(std::calloc(1, sizeof(TrueTypeFont))));
  if (font == nullptr) return FontResultNoMemory;
  const std::size_t nameSize = std::strlen(name) + 1;
  font->fileName = detail::makeBuffer<char>(nameSize).release();
  font->tables = detail::makeZeroedBuffer<const std::uint8_t*>(kTableSlotCount).release();
  font->tableLengths = detail::makeZeroedBuffer<std::uint32_t>(kTableSlotCount).release();
  if (font->fileName == nullptr || font->tables == nullptr || font->tableLengths == nullptr) {
    return FontResultNoMemory;
  }
  std::memcpy(font->fileName, name, nameSize);
  font->imageSize = imageSize;
  font->image = image;

  const ByteView bytes = detail::imageView(*font);
  if (const FontResult result = findFace(bytes, faceIndex, *font); result != FontResultOk) {
    return result;
  }
  font->signature = kFontSignature;
  if (!findTables(bytes, *font)) return FontResultBadFormat;
  if (const FontResult result = readGlyphOffsets(*font); result != FontResultOk) return result;
  font->numberOfHMetrics = readLongMetricCount<format::Hhea>(*font);
  font->numOfLongVerMetrics = readLongMetricCount<format::Vhea>(*font);
  if (!holdsRecords(detail::tableOf<format::Name>(*font), format::Name::kCount,
                    format::Name::kEntries) ||
      !holdsRecords(detail::tableOf<format::Cmap>(*font), format::Cmap::kCount,
                    format::Cmap::kRecords)) {
    return FontResultBadFormat;
  }
  if (!readFontNames(font.get())) return FontResultNoMemory;
  selectCmapSubtable(font.get());
  if (!analyseKernTable(font.get())) return FontResultNoMemory;
  *outFont = font.release();
  return FontResultOk;
}

void closeTrueTypeFont(TrueTypeFont* font) noexcept {
  if (font == nullptr || font->signature != kFontSignature) return;
  release(font);
}

}  // namespace ulm::truetype
