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

  // A glyph shorter than its header adds nothing.
  void include(const GlyphData& glyph) noexcept {
    using format::GlyphHeader;
    if (glyph.byteCount < GlyphHeader::kSize) return;
    const auto header = format::FixedView<GlyphHeader>::vouched(glyph.data);
    widen(xMin, xMax, header.get(GlyphHeader::kXMin), header.get(GlyphHeader::kXMax));
    widen(yMin, yMax, header.get(GlyphHeader::kYMin), header.get(GlyphHeader::kYMax));
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
  // The references of a borrowing table are made those of the new font as its composites come, or,
  // where one can't be told before the list is whole, all at the end.
  bool lateReferences;
};
static_assert(std::is_standard_layout_v<GlyfPayload>);

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
// too where there is no glyph, and once the table has more than 65,535. 0, or the first of the
// other failures; then the table is to be disposed of.
std::int32_t addFontGlyphs(WriterTable* glyfTable, const TrueTypeFont& font,
                           const std::uint16_t* glyphIds, std::size_t count,
                           std::int32_t* newIndices) noexcept;

// The bytes of a glyf table's image, which are one glyph after the other.
std::uint64_t glyfLength(const TTList& glyphs) noexcept;
void writeGlyphs(const TTList& glyphs, format::ByteSink out) noexcept;

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
