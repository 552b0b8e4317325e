// Views of an open font: its image, its tables and its glyphs.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/table_slot.h"
#include "truetype/font.h"
#include "truetype/format/byte_view.h"

namespace ulm::truetype::detail {

using format::ByteView;
using format::FixedView;
using format::RecordView;

inline ByteView imageView(const TrueTypeFont& font) noexcept {
  return {font.image, static_cast<std::size_t>(font.imageSize)};
}

// From the start of the table to the end of the image: stored lengths bound no lookup. Empty for a
// table that the font lacks.
inline ByteView tableView(const TrueTypeFont& font, TableSlot slot) noexcept {
  const std::uint8_t* table = font.tables[slot];
  if (table == nullptr) return {};
  return {table, imageView(font).from(static_cast<std::size_t>(table - font.image)).size()};
}
template <class Table>
RecordView<Table> tableOf(const TrueTypeFont& font) noexcept {
  return RecordView<Table>(tableView(font, kSlotOf<Table>));
}

// The bytes of a glyph, up to the end of glyf; empty for a glyph without data, and for one that
// starts outside glyf. `glyphIndex` is below numGlyphs.
inline ByteView glyphView(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
  const std::uint32_t start = font.glyphOffsets[glyphIndex];
  if (font.glyphOffsets[glyphIndex + 1] == start) return {};
  return ByteView(font.tables[kSlotGlyf], font.tableLengths[kSlotGlyf]).from(start);
}

}  // namespace ulm::truetype::detail
