// What stands behind the payloads of table objects, and the image handlers.
#pragma once

#include <cassert>
#include <cstdint>
#include <type_traits>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/c_buffer.h"
#include "truetype/format/byte_sink.h"
#include "truetype/format/directory.h"
#include "truetype/format/glyf.h"
#include "truetype/list.h"
#include "truetype/writer/detail/big_endian.h"
#include "truetype/writer/detail/glyph_arena.h"
#include "truetype/writer/detail/glyph_index.h"
#include "truetype/writer/table.h"

namespace ulm::truetype::detail {

using format::padded;

// A box around the origin and the boxes of glyphs, in font units.
struct GlyphExtent {
  std::int16_t xMin, yMin, xMax, yMax;

  // The last byte of a glyph's header may be the zero that makes a length even. A shorter glyph
  // adds nothing.
  void include(ByteView glyph) noexcept {
    using format::GlyphHeader;
    constexpr std::size_t kTop = GlyphHeader::kYMax.kOffset;
    if (glyph.size() < GlyphHeader::kSize - 1) return;
    const bool isCut = glyph.size() < GlyphHeader::kSize;
    const std::int32_t top =
        isCut ? glyph.readHeld<std::int8_t>(kTop) * 0x100 : glyph.readHeld<std::int16_t>(kTop);
    const auto header = FixedView<GlyphHeader, kTop>::vouched(glyph.start());
    widen(xMin, xMax, header.get(GlyphHeader::kXMin), header.get(GlyphHeader::kXMax));
    widen(yMin, yMax, header.get(GlyphHeader::kYMin), static_cast<std::int16_t>(top));
  }

 private:
  static void widen(std::int16_t& low, std::int16_t& high, std::int16_t from,
                    std::int16_t to) noexcept {
    if (from < low) low = from;
    if (to > high) high = to;
  }
};

// A record of a table that borrows its glyphs' bytes, with the node that holds it in the list.
struct BorrowedGlyph {
  TTListNode node;
  GlyphData glyph;  // `data` points into the font, and may end before `byteCount`
  bool isOdd;       // by one byte, for which the file has a zero
};

// A glyf table's list comes first, so that the payload is also the list.
struct GlyfPayload {
  TTList glyphs;
  GlyphIndex index;
  // Of a table that the subset driver fills, else null: owns all its BorrowedGlyphs.
  GlyphArena* borrowed;
  GlyphExtent extent;           // of a borrowing table's glyphs, read while their bytes are at hand
  std::uint32_t cyclesCounted;  // composites with a cycle that the reader has counted
  std::uint64_t cycleWork;      // what that took
  std::uint64_t foreignBytes;   // read of outlines beyond their glyphs' own bytes
};
static_assert(std::is_standard_layout_v<GlyfPayload>);

// A failure of an addition next to those of addGlyph: mostGlyphBytes.
inline constexpr std::int32_t kTooManyGlyphBytes = -4;

inline constexpr std::uint64_t kMostForeignBytes = std::uint64_t{1} << 26;

// The most bytes of glyphs that one call takes out of a font. Glyphs of an undamaged font share
// none, so that all of them together have no more than the image; damaged ones could turn a small
// image into gigabytes.
inline std::uint64_t mostGlyphBytes(const TrueTypeFont& font) noexcept {
  return (std::uint64_t{1} << 25) + 4 * static_cast<std::uint64_t>(font.imageSize);
}

struct NamePayload {
  TTList records;
  bool incomplete;  // a record was lost for want of memory
};

inline GlyfPayload& glyfOf(const WriterTable* table) noexcept {
  return *static_cast<GlyfPayload*>(table->data);
}
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

// The bytes of a glyf table's image, which are one glyph after the other. Those of a borrowing
// table get the references of the new font as they are written.
std::uint64_t glyfLength(const TTList& glyphs) noexcept;
void writeGlyphs(const GlyfPayload& table, format::ByteSink out) noexcept;

// A buffer for an image of `length` bytes, the padding zero and the rest unset; null without
// memory. It becomes the table's image.
std::uint8_t* makeImage(WriterTable* table, std::uint32_t length) noexcept;

// An image while it is made: a buffer as that of makeImage, written to through a sink.
class NewImage {
 public:
  NewImage(WriterTable* table, std::uint32_t length) noexcept
      : start_(makeImage(table, length)), length_(length) {}
  NewImage(const NewImage&) = delete;
  NewImage& operator=(const NewImage&) = delete;

  bool hasMemory() const noexcept { return start_ != nullptr; }
  // The image's bytes, without the padding.
  format::ByteSink bytes() noexcept { return {start_, length_, &overflowed_}; }
  // Hands out the image. WriterResultBadTable, with `out` as it was, where a write did not fit.
  WriterResult finish(std::uint32_t tag, TableImage* out) const noexcept {
    assert(!overflowed_);
    if (overflowed_) return WriterResultBadTable;
    *out = {start_, length_, tag};
    return WriterResultOk;
  }

 private:
  std::uint8_t* start_;
  std::uint32_t length_;
  bool overflowed_ = false;
};

// Each fills the image or gives a code with the outputs as they were: null, 0 and 0.
WriterResult makeGlyfImage(WriterTable* table, TableImage* out) noexcept;
WriterResult makeCmapImage(WriterTable* table, TableImage* out) noexcept;
WriterResult makeNameImage(WriterTable* table, TableImage* out) noexcept;

// As getTableImage.
WriterResult makeTableImage(WriterTable* table, TableImage* out) noexcept;

// Whether a glyph that describeGlyph refuses has more bytes than a record can tell.
bool isTooLarge(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept;

// Makes the references of a composite's bytes those of the new font: to the first records of the
// glyphs, or to `absent` where one has none.
void renumberComponents(format::ByteSink glyph, const GlyphIndex& index,
                        std::uint32_t absent) noexcept;

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
