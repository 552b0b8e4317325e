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

// One table of a new font. An object belongs to one thread at a time.
//   data  by tag: RawTableData, LocaTableData, CmapTableData, PostTableData; the 54, 36 and 32
//         bytes of head, hhea and maxp as they are in the file; for glyf and name the TTList of
//         GlyphData and NameRecord, whose destructor frees the record with its `data`
struct WriterTable {
  std::uint32_t tag;
  std::uint8_t* image;  // owned; of the last getTableImage if that made a new buffer, else null
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
  bool incomplete;          // memory ran out for a mapping
};

struct PostTableData {
  std::uint32_t format;              // kPostFormat
  std::uint32_t italicAngle;         // 16.16 degrees
  std::uint16_t underlinePosition;   // font units, bits of a signed number
  std::uint16_t underlineThickness;  // font units
  std::uint32_t isFixedPitch;
};
inline constexpr std::uint32_t kPostFormat = format::Post::kVersion3;  // without glyph names

// The constructors return null without memory. What they make is disposed of with
// disposeWriterTable or handed to a writer.

// A table whose bytes are written as they are. Copies `length` bytes, which may be null with length
// 0.
WriterTable* createRawTable(std::uint32_t tag, std::uint32_t length,
                            const std::uint8_t* bytes) noexcept;

// Each number is the field of that name. assembleFont fills in the box, the format of loca and the
// checksum.
//   fontRevision  16.16
//   unitsPerEm    font units in an em
//   created       8 bytes as they are in the file, seconds since 1904; not null
WriterTable* createHeadTable(std::uint32_t fontRevision, std::uint16_t flags,
                             std::uint16_t unitsPerEm, const std::uint8_t* created,
                             std::uint16_t macStyle, std::uint16_t lowestRecPPEM,
                             std::uint16_t fontDirectionHint) noexcept;

// Each number is the field of that name, in font units, the bits of a signed number. The maxima of
// the table stay 0; assembleFont fills in numberOfHMetrics.
WriterTable* createHheaTable(std::uint16_t ascender, std::uint16_t descender, std::uint16_t lineGap,
                             std::uint16_t caretSlopeRise, std::uint16_t caretSlopeRun) noexcept;

WriterTable* createLocaTable() noexcept;  // empty; assembleFont makes its own

// A copy of `bytes`, which may be null, if `length` is 32, else 32 zeros. assembleFont fills in the
// counts.
WriterTable* createMaxpTable(const std::uint8_t* bytes, std::uint32_t length) noexcept;

WriterTable* createGlyfTable() noexcept;  // without glyphs
WriterTable* createCmapTable() noexcept;  // without mappings

// Deep copies of `count` records; a count below 1 gives an empty table, and `records` may be null.
WriterTable* createNameTable(std::int32_t count, const NameRecord* records) noexcept;

// Each number is the field of that name. italicAngle is 16.16 degrees, the underline is in font
// units.
WriterTable* createPostTable(std::uint32_t italicAngle, std::uint16_t underlinePosition,
                             std::uint16_t underlineThickness, std::uint32_t isFixedPitch) noexcept;

// Appends to the subtable 0x0301. Codes have to come in ascending order: nothing sorts them or
// searches for repeats. Values are cut to 16 bits in the image. Without memory the mappings stay as
// they were, and from then on the table's image is refused with WriterResultNoMemory.
void addCharMapping(WriterTable* cmapTable, std::uint32_t charCode, std::uint32_t glyphId) noexcept;

// The results of addGlyph below 0, with the table as it was.
inline constexpr std::int32_t kNoGlyph = -1;  // `glyph` is null
inline constexpr std::int32_t kGlyphNoMemory = -2;
// A component has more than kMaxGlyphBytes, or the components come to more than 16 MiB and four
// times the font's image, as glyphs can that share their bytes.
inline constexpr std::int32_t kGlyphTooLarge = -3;

// Appends a glyph, whose ownership passes to the table with every result, and after it, in the
// order of first use, those of its components in `font` that the table does not hold yet;
// `glyphIndex` identifies them. Returns the glyph's index in the new font, or one of the results
// above. The glyph itself is not searched for: added twice, it is in the font twice. A component
// that has no GlyphData is left out, unless it is too large. Components get the counts of
// getGlyphData, but in damaged fonts some get 0:
//   - composites that draw on a cycle of components, beyond 256 of those in a table, and as soon as
//     counting them has taken four times kMaxOutlineWork
//   - simple glyphs whose outline runs on past their own bytes, and composites whose chain of
//     components does, as soon as 64 MiB have been read in that way. Such a chain then ends where
//     the glyph's own bytes do.
// The number 0xFFFF is in no font, and a reference to it finds no record.
// The time grows with the component records not seen in earlier calls for the same font.
// `byteCount` is even. `font` is not null and stays open until the table has all its glyphs.
std::int32_t addGlyph(WriterTable* glyfTable, GlyphData* glyph, const TrueTypeFont* font) noexcept;

std::uint32_t glyphCount(const WriterTable* glyfTable) noexcept;

// Appends a deep copy. Without memory the records stay as they were, and from then on the table's
// image is refused with WriterResultNoMemory.
void addNameRecord(WriterTable* nameTable, const NameRecord* record) noexcept;

// The table's bytes as they are in the file. The buffer belongs to the table, until the next call
// or its disposal; after outLength bytes it holds zeros up to a multiple of 4. `outTag` is the tag
// in the file. On failure the outputs are null and 0, except for the tag of a post table. No output
// may be null. Returns WriterResultOk or, by table:
//   any         WriterResultUnknownTable for a tag without a handler; WriterResultNoMemory
//   glyf, loca  WriterResultEmptyTable without glyphs or bytes, where a glyph without bytes counts;
//               WriterResultFileTooLarge if the glyphs pass 32 bits
//   cmap        WriterResultCmapTooLarge. Each of up to 6,551 mappings is a segment of its own.
//   More
//               would not fit the format's 16-bit fields: then neighbouring codes are merged into
//               the fewest bytes, with the same result of every lookup. The refusal means that this
//               does not fit either, or that so many mappings are not in ascending order
//   name        WriterResultNoData, WriterResultNameTooLong, WriterResultNameOutOfRange. The
//   records
//               are sorted; those of equal keys stay in the order of adding
//   post        WriterResultBadTable for a payload of another format, which is also reported on the
//               standard error stream
WriterResult getTableImage(WriterTable* table, const std::uint8_t** outBytes,
                           std::uint32_t* outLength, std::uint32_t* outTag) noexcept;

void disposeWriterTable(WriterTable* table) noexcept;  // null is allowed

}  // namespace ulm::truetype
