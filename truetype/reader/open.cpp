#include "truetype/reader/open.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/mapping.h"
#include "truetype/reader/names.h"
#include "truetype/reader/tables.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;

constexpr std::uint32_t kPlainVersion = 0x00010000;
constexpr std::uint32_t kTagTrue = 0x74727565;
constexpr std::uint32_t kTagTtcf = 0x74746366;
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
  const std::optional<std::uint32_t> kind = image.read<std::uint32_t>(0);
  if (kind == kPlainVersion || kind == kTagTrue) return FontResultOk;  // directoryOffset is 0
  if (kind != kTagTtcf) return FontResultBadFormat;
  const std::optional<std::uint32_t> version = image.read<std::uint32_t>(4);
  if (version != 0x00010000u && version != 0x00020000u) return FontResultBadFormat;
  const std::optional<std::uint32_t> faceCount = image.read<std::uint32_t>(8);
  if (!faceCount) return FontResultBadFormat;
  if (faceIndex >= *faceCount) return FontResultBadFaceIndex;
  const std::optional<std::uint32_t> offset =
      image.read<std::uint32_t>(12 + 4 * std::size_t{faceIndex});
  if (!offset) return FontResultBadFormat;
  font.directoryOffset = *offset;
  return FontResultOk;
}

// Notes each table that has a slot, the last of a tag, and holds all to the image.
bool findTables(ByteView image, TrueTypeFont& font) noexcept {
  const ByteView face = image.from(font.directoryOffset);
  const std::optional<std::uint16_t> count = face.read<std::uint16_t>(4);
  if (!count || !face.holds(12, 16 * std::size_t{*count})) return false;
  font.tableCount = *count;
  struct Place {
    bool present;
    std::uint32_t offset, length;
  };
  Place places[kTableSlotCount] = {};
  for (std::size_t entry = 12; entry < 12 + 16 * std::size_t{*count}; entry += 16) {
    const std::int32_t slot = tableSlotForTag(face.readOrZero<std::uint32_t>(entry));
    if (slot < 0) continue;
    places[slot] = {true, face.readOrZero<std::uint32_t>(entry + 8),
                    face.readOrZero<std::uint32_t>(entry + 12)};
  }
  for (std::int32_t slot = 0; slot < kTableSlotCount; ++slot) {
    const Place& place = places[slot];
    if (!place.present || !image.holds(place.offset, place.length)) continue;
    font.tables[slot] = font.image + place.offset;
    font.tableLengths[slot] = place.length;
  }
  for (const TableSlot slot : kRequired) {
    if (font.tables[slot] == nullptr) return false;
  }
  return true;
}

// Whether the records that a header counts lie in the image with it. Without any no more than the
// count is read.
bool holdsRecords(ByteView table, std::size_t countOffset, std::size_t header,
                  std::size_t recordSize) noexcept {
  const std::optional<std::uint16_t> count = table.read<std::uint16_t>(countOffset);
  return count && (*count == 0 || table.holds(0, header + *count * recordSize));
}

// The entries of loca as byte offsets into glyf.
bool decodeLoca(ByteView loca, std::size_t count, bool isLong, std::uint32_t* out) noexcept {
  return isLong ? loca.readRun32(count, out) : loca.readDoubledRun16(count, out);
}

FontResult readGlyphPlaces(TrueTypeFont& font) noexcept {
  const auto glyphs = detail::tableView(font, kSlotMaxp).read<std::uint16_t>(4);
  const ByteView head = detail::tableView(font, kSlotHead);
  const auto unitsPerEm = head.read<std::uint16_t>(18);
  const auto locaFormat = head.read<std::int16_t>(50);
  if (!glyphs || !unitsPerEm || *unitsPerEm == 0) return FontResultBadFormat;
  if (locaFormat != std::int16_t{0} && locaFormat != std::int16_t{1}) return FontResultBadFormat;
  font.unitsPerEm = *unitsPerEm;

  const bool isLong = *locaFormat == 1;
  const std::uint32_t entries = font.tableLengths[kSlotLoca] >> (isLong ? 2 : 1);
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

// The count of long metrics, at byte 34 of both headers.
std::uint32_t readLongMetrics(TrueTypeFont& font, TableSlot slot) noexcept {
  if (font.tables[slot] == nullptr) return 0;
  const auto count = detail::tableView(font, slot).read<std::uint16_t>(34);
  if (count) return *count;
  font.tables[slot] = nullptr;
  font.tableLengths[slot] = 0;
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
  if (const FontResult result = readGlyphPlaces(*font); result != FontResultOk) return result;
  font->numberOfHMetrics = readLongMetrics(*font, kSlotHhea);
  font->numOfLongVerMetrics = readLongMetrics(*font, kSlotVhea);
  if (!holdsRecords(detail::tableView(*font, kSlotName), 2, 6, 12) ||
      !holdsRecords(detail::tableView(*font, kSlotCmap), 2, 4, 8)) {
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
