// getGlyphData and collectGlyphComponents with results that tell exhausted memory from a glyph that
// there is not, which the public operations cannot. The reader makes them, the writer asks for
// them.
#pragma once

#include <cstdint>

#include "truetype/detail/byte_view.h"
#include "truetype/font.h"
#include "truetype/list.h"
#include "truetype/records.h"
#include "truetype/result.h"

namespace ulm::truetype::detail {

// What a simple glyph has; all 0 for any other.
struct SimpleShape {
  std::uint32_t points, contours;  // of the outline; 0 where its data is damaged
  std::uint32_t ends;              // of contours, as stored
  std::uint32_t room;  // for its points, before they are decoded; 0 where `ends` are cut
};
SimpleShape simpleShape(ByteView glyph) noexcept;

// The record of a glyph but for `data`, which would be a copy of `outBytes`, made even by a zero.
// `outShape` is that of the bytes, or 0 for a composite, whose points and contours countGlyphData
// tells. FontResultBadArgument as below.
FontResult describeGlyph(const TrueTypeFont& font, std::uint32_t glyphIndex, GlyphData* out,
                         ByteView* outBytes, SimpleShape* outShape) noexcept;

// The counts of the record's outline; false without memory, which only a composite needs.
bool countGlyphData(const TrueTypeFont& font, GlyphData* glyph) noexcept;

// `outData` receives an owned record (its holder frees `data`, then the record), or null on every
// result but FontResultOk.
//   FontResultBadArgument  the index is not below numGlyphs, the next offset is below the glyph's
//                          own, or its bytes are more than the record's count can tell
//   FontResultNoMemory     nothing is left allocated
FontResult makeGlyphData(const TrueTypeFont& font, std::uint32_t glyphIndex,
                         GlyphData** outData) noexcept;

// Appends to `list`; `outAppended` receives the number of entries, also where memory runs out.
//   FontResultBadArgument  the index is not below numGlyphs
//   FontResultNoMemory     the list has ended early
FontResult appendComponents(const TrueTypeFont& font, std::uint32_t glyphIndex, TTList* list,
                            std::int32_t* outAppended) noexcept;

}  // namespace ulm::truetype::detail
