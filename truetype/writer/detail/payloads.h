// What stands behind the payloads of table objects, and the image handlers.
#pragma once

#include <cstdint>
#include <type_traits>

#include "truetype/bytes.h"
#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/list.h"
#include "truetype/writer/detail/big_endian.h"
#include "truetype/writer/detail/glyph_arena.h"
#include "truetype/writer/detail/glyph_index.h"
#include "truetype/writer/table.h"

namespace ulm::truetype::detail {

// A box around the origin and the boxes of glyphs, in font units.
struct GlyphExtent {
  std::int16_t xMin, yMin, xMax, yMax;

  // The header of a glyph has 10 bytes; fewer add nothing.
  void include(const GlyphData& glyph) noexcept {
    if (glyph.byteCount < 10) return;
    widen(xMin, xMax, readInt16(glyph.data, 2), readInt16(glyph.data, 6));
    widen(yMin, yMax, readInt16(glyph.data, 4), readInt16(glyph.data, 8));
  }

 private:
  static void widen(std::int16_t& low, std::int16_t& high, std::int16_t from,
                    std::int16_t to) noexcept {
    if (from < low) low = from;
    if (to > high) high = to;
  }
};

// A glyf table's list comes first, so that the payload is also the list.
struct GlyfPayload {
  TTList glyphs;
  GlyphIndex index;
  // Of a table that the subset driver fills, else null: owns all nodes and records, and of the data
  // what is not borrowed from the font.
  GlyphStore* store;
  GlyphExtent extent;           // of a borrowing table's glyphs, read while their bytes are at hand
  std::uint32_t cyclesCounted;  // composites with a cycle that the reader has counted
  std::uint64_t cycleWork;      // what that took
  std::uint64_t foreignBytes;   // read of outlines beyond their glyphs' own bytes
  // The references of a borrowing table are made those of the new font as its composites come, or,
  // where one can't be told before the list is whole, all at the end.
  bool lateReferences;
};
static_assert(std::is_standard_layout_v<GlyfPayload>);

// A failure of an addition next to those of addGlyph: mostGlyphBytes.
inline constexpr std::int32_t kTooManyGlyphBytes = -4;

inline constexpr std::uint64_t kMostForeignBytes = std::uint64_t{1} << 26;

// The most bytes of glyphs that one call takes out of a font. Glyphs of an undamaged font share
// none, so that all of them together have no more than the image; damaged ones could turn a small
// image into gigabytes.
inline std::uint64_t mostGlyphBytes(const TrueTypeFont& font) noexcept {
  return (std::uint64_t{1} << 24) + 4 * static_cast<std::uint64_t>(font.imageSize);
}

struct NamePayload {
  TTList records;
  bool incomplete;  // a record was lost for want of memory
};

inline TTList* listOf(const WriterTable* table) noexcept {
  return static_cast<TTList*>(table->data);
}

struct TableImage {
  const std::uint8_t* bytes;
  std::uint32_t length;
  std::uint32_t tag;
};

// A raw table of `length` of the bytes, for which there is room up to a multiple of 4; they may be
// null where that is 0. Null without memory, the bytes being freed.
WriterTable* adoptRawTable(std::uint32_t tag, std::uint32_t length,
                           CBuffer<std::uint8_t> bytes) noexcept;

// A glyf table that borrows from the font, which is to outlive it; to be filled from that by
// addFontGlyphs alone. It has no list operations but to walk over it. Room for `glyphs` is made at
// once. A composite that is added again has no counts: its first record has them.
WriterTable* createBorrowingGlyfTable(const TrueTypeFont& font, std::uint32_t glyphs) noexcept;
// addGlyph of each glyph's own data to a borrowing table. newIndices receives the results, kNoGlyph
// too where there is no glyph, and once the table has more than 65,535. WriterResultOk, or why the
// table is to be disposed of.
WriterResult addFontGlyphs(WriterTable* glyfTable, const TrueTypeFont& font,
                           const std::uint16_t* glyphIds, std::size_t count,
                           std::int32_t* newIndices) noexcept;

// The bytes of a glyf table's image, which are one glyph after the other.
std::uint64_t glyfLength(const TTList& glyphs) noexcept;
void writeGlyphs(const TTList& glyphs, std::uint8_t* out) noexcept;

// A buffer for an image of `length` bytes, the padding zero and the rest unset; null without
// memory. It becomes the table's image.
std::uint8_t* makeImage(WriterTable* table, std::uint32_t length) noexcept;

// Each fills the image or gives a code with the outputs as they were: null, 0 and 0.
WriterResult makeGlyfImage(WriterTable* table, TableImage* out) noexcept;
WriterResult makeCmapImage(WriterTable* table, TableImage* out) noexcept;
WriterResult makeNameImage(WriterTable* table, TableImage* out) noexcept;

// As getTableImage.
WriterResult makeTableImage(WriterTable* table, TableImage* out) noexcept;

// Copies a glyph, filled up to an even length by a zero.
void copyEven(ByteView bytes, std::uint8_t* out) noexcept;
// Whether a glyph that describeGlyph refuses has more bytes than a record can tell.
bool isTooLarge(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept;

// Makes the references of a composite those of the new font: to the first records of the glyphs, or
// to `absent` where one has none.
void renumberComponents(const GlyphData& glyph, const GlyphIndex& index,
                        std::uint32_t absent) noexcept;
// The same of a whole table, each glyph of which is as it was in the font.
void renumberGlyphs(GlyfPayload& payload) noexcept;

void disposeGlyphs(GlyfPayload* payload) noexcept;
void freeGlyphData(void* glyph) noexcept;
void freeNameRecord(void* record) noexcept;

// addCharMapping of each pair, the glyphs being new indices or -1.
void addCharMappings(WriterTable* cmapTable, const std::uint16_t* charCodes,
                     const std::int32_t* glyphIds, std::size_t count) noexcept;

// A name record with a copy of `length` bytes. False without memory, the list being as it was.
bool appendNameRecord(WriterTable* nameTable, const NameRecord& keys, const std::uint8_t* bytes,
                      std::uint16_t length) noexcept;

}  // namespace ulm::truetype::detail
