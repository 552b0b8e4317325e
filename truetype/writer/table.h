// Table objects of the font writer: one WriterTable for each table of the new font, how it is made
// and filled, and its image.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/format/cmap.h"
#include "truetype/format/glyf.h"
#include "truetype/format/head.h"
#include "truetype/format/hhea.h"
#include "truetype/format/maxp.h"
#include "truetype/format/name.h"
#include "truetype/format/post.h"
#include "truetype/list.h"
#include "truetype/records.h"
#include "truetype/writer/result.h"

namespace ulm::truetype {

inline constexpr std::uint32_t kTagRaw = 0;  // a raw table; its own tag is in its payload
inline constexpr std::uint32_t kTagHead = format::Head::kTag;
inline constexpr std::uint32_t kTagHhea = format::Hhea::kTag;
inline constexpr std::uint32_t kTagLoca = format::Loca::kTag;
inline constexpr std::uint32_t kTagMaxp = format::Maxp::kTag;
inline constexpr std::uint32_t kTagGlyf = format::GlyphHeader::kGlyfTag;
inline constexpr std::uint32_t kTagCmap = format::Cmap::kTag;
inline constexpr std::uint32_t kTagName = format::Name::kTag;
inline constexpr std::uint32_t kTagPost = format::Post::kTag;

// One table. An object belongs to one thread at a time.
//   data  by tag: RawTableData, LocaTableData, CmapTableData, PostTableData; the 54, 36 and 32
//         bytes of head, hhea and maxp as they are in the file; for glyf and name the TTList of
//         GlyphData and NameRecord, whose destructor frees the record with its `data`
struct WriterTable {
  std::uint32_t tag;
  std::uint8_t* image;  // owned; of the last getTableImage, for kinds that build one; may be null
  void* data;           // owned
};

struct RawTableData {
  std::uint32_t tag;
  std::uint32_t length;  // bytes
  std::uint8_t* bytes;   // owned, zeros up to a multiple of 4; null with length 0
};

struct LocaTableData {
  std::uint32_t length;  // bytes
  std::uint8_t* bytes;   // owned, zeros up to a multiple of 4
};

// Mappings in the order of adding.
struct CmapSubtable {
  std::uint32_t id;
  std::uint32_t count;
  std::uint32_t capacity;
  std::uint32_t* charCodes;  // owned
  std::uint32_t* glyphIds;   // owned
};
inline constexpr std::uint32_t kWindowsUnicodeSubtable = 0x0301;

struct CmapTableData {
  std::uint32_t subtableCount;
  std::uint32_t capacity;
  CmapSubtable* subtables;  // owned, ascending by id
  bool incomplete;          // a mapping was lost for want of memory
};

struct PostTableData {
  std::uint32_t format;              // kPostFormat
  std::uint32_t italicAngle;         // 16.16 degrees
  std::uint16_t underlinePosition;   // font units, bits of a signed number
  std::uint16_t underlineThickness;  // font units
  std::uint32_t isFixedPitch;
};
inline constexpr std::uint32_t kPostFormat = format::Post::kVersion3;  // without glyph names

// Constructors: null without memory. What is made is given back with disposeWriterTable, or handed
// to a writer.

WriterTable* createRawTable(std::uint32_t tag, std::uint32_t length,
                            const std::uint8_t* bytes) noexcept;  // copies `bytes`
// The box, the format of loca and the checksum are filled in by assembleFont. `created`: 8 bytes.
WriterTable* createHeadTable(std::uint32_t fontRevision, std::uint16_t flags,
                             std::uint16_t unitsPerEm, const std::uint8_t* created,
                             std::uint16_t macStyle, std::uint16_t lowestRecPPEM,
                             std::uint16_t fontDirectionHint) noexcept;
// The maxima stay 0; numberOfHMetrics is filled in by assembleFont.
WriterTable* createHheaTable(std::uint16_t ascender, std::uint16_t descender, std::uint16_t lineGap,
                             std::uint16_t caretSlopeRise, std::uint16_t caretSlopeRun) noexcept;
WriterTable* createLocaTable() noexcept;  // empty; assembleFont makes its own
// A copy of `bytes` if there are 32 of them, else 32 zeros; counts are filled in by assembleFont.
WriterTable* createMaxpTable(const std::uint8_t* bytes, std::uint32_t length) noexcept;
WriterTable* createGlyfTable() noexcept;
WriterTable* createCmapTable() noexcept;
// Deep copies; a count below 1 gives an empty table.
WriterTable* createNameTable(std::int32_t count, const NameRecord* records) noexcept;
WriterTable* createPostTable(std::uint32_t italicAngle, std::uint16_t underlinePosition,
                             std::uint16_t underlineThickness, std::uint32_t isFixedPitch) noexcept;

// Appends to the subtable 0x0301. Codes come in ascending order: nothing sorts them or looks for
// repeats. Values are cut to 16 bits in the image. Where memory runs out the mappings stay as they
// were, and the table's image is refused with WriterResultNoMemory from then on.
void addCharMapping(WriterTable* cmapTable, std::uint32_t charCode, std::uint32_t glyphId) noexcept;

// Appends the glyph, whose ownership passes to the table in every case, and behind it, in the order
// of first use, those of its components in `font` that the table does not hold yet; `glyphIndex`
// tells them apart. The result is the glyph's index in the new font. The glyph itself is not looked
// for: added twice, it is there twice. A component that has no GlyphData, as where its loca entries
// descend, is left out. Otherwise one of these, with the table as it was:
inline constexpr std::int32_t kNoGlyph = -1;  // `glyph` is null
inline constexpr std::int32_t kGlyphNoMemory = -2;
// A component of 65,535 bytes or more, or components that come to more than 32 MiB and four times
// the font's image, as glyphs can that share their bytes.
inline constexpr std::int32_t kGlyphTooLarge = -3;
// Components get the counts of getGlyphData, but in damaged fonts some get 0:
//   - composites that draw on a cycle of components, beyond 256 of those in a table, and as soon as
//     counting them has taken four times kMostOutlineWork
//   - simple glyphs whose outline runs on past their own bytes, and composites whose chain of
//     components does, as soon as 64 MiB have been read in that way. Such a chain then ends where
//     the glyph's own bytes do.
// The number 0xFFFF is in no font, and a reference to it finds no record.
// Time grows with the component records not seen in earlier calls for the same font. `byteCount` is
// even; `font` stays open until the table has all its glyphs.
std::int32_t addGlyph(WriterTable* glyfTable, GlyphData* glyph, const TrueTypeFont* font) noexcept;
std::uint32_t glyphCount(const WriterTable* glyfTable) noexcept;

// Appends a deep copy. Without memory as addCharMapping.
void addNameRecord(WriterTable* nameTable, const NameRecord* record) noexcept;

// The table's bytes in the file. The buffer stays the table's, until the next call or its disposal;
// behind outLength bytes it holds zeros up to a multiple of 4. `outTag` is the tag in the file. On
// failure the outputs are null and 0, but for the tag of a post table.
//   cmap  Up to 6,551 mappings each is a segment of its own. More would not fit the format's 16-bit
//         fields: neighbouring codes are then merged into the fewest bytes, every lookup being the
//         same. WriterResultCmapTooLarge where that does not fit either, or where so many mappings
//         are not in ascending order.
//   name  Sorted; records of equal keys stay in the order of adding.
//   post  A payload of another format is told on the standard error stream: WriterResultBadTable.
//   glyf  Glyphs without bytes are no empty table.
WriterResult getTableImage(WriterTable* table, const std::uint8_t** outBytes,
                           std::uint32_t* outLength, std::uint32_t* outTag) noexcept;

void disposeWriterTable(WriterTable* table) noexcept;  // null is allowed

}  // namespace ulm::truetype
