// getGlyphData and collectGlyphComponents with results that tell exhausted memory from a glyph that
// there is not, which the public operations cannot. The reader makes them, the writer asks for
// them.
#pragma once

#include <cstdint>

#include "truetype/detail/byte_view.h"
#include "truetype/detail/metric.h"
#include "truetype/font.h"
#include "truetype/list.h"
#include "truetype/records.h"
#include "truetype/result.h"

namespace ulm::truetype::detail {

// What a simple glyph has; all 0 for any other. It is small enough to be returned in registers.
struct SimpleShape {
  std::uint32_t points;    // of the outline; 0 where its data is damaged
  std::uint32_t room;      // for its points, before they are decoded; 0 where `ends` are cut
  std::uint32_t reach;     // the end of what was read
  std::uint16_t contours;  // of the outline, as `points`
  std::uint16_t ends;      // of contours, as stored
};
SimpleShape simpleShape(ByteView glyph) noexcept;

// The length of a glyph's own bytes by its two offsets, 0 where they descend.
inline std::size_t ownLength(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
  const std::uint32_t start = font.glyphOffsets[glyphIndex];
  const std::uint32_t next = font.glyphOffsets[glyphIndex + 1];
  return next < start ? 0 : next - start;
}

// The record of a glyph but for isComposite and the counts, which are 0, and for `data`, which
// would be a copy of the first `outLength` bytes of `outGlyph`, made even by a zero.
// FontResultBadArgument as below.
inline FontResult describeGlyph(const TrueTypeFont& font, std::uint32_t glyphIndex, GlyphData* out,
                                ByteView* outGlyph, std::size_t* outLength) noexcept {
  if (glyphIndex >= font.numGlyphs) return FontResultBadArgument;
  const std::uint32_t start = font.glyphOffsets[glyphIndex];
  const std::uint32_t next = font.glyphOffsets[glyphIndex + 1];
  if (next < start) return FontResultBadArgument;
  const ByteView glyph = glyphView(font, glyphIndex);
  const std::size_t length = glyph.size() < next - start ? glyph.size() : next - start;
  if (length >= 0xFFFF) return FontResultBadArgument;

  Metric across{0, 0};
  if (font.tables[kSlotHmtx] != nullptr && font.numberOfHMetrics != 0) {
    across =
        metricOf(tableView(font, kSlotHmtx), font.numberOfHMetrics, font.numGlyphs, glyphIndex);
  }
  *out = {.glyphIndex = glyphIndex,
          .byteCount = static_cast<std::uint16_t>((length + 1) & ~std::size_t{1}),
          .data = nullptr,
          .advanceWidth = across.advance,
          .leftSideBearing = across.sideBearing,
          .isComposite = 0,
          .pointCount = 0,
          .contourCount = 0,
          .newIndex = 0};
  *outGlyph = glyph;
  *outLength = length;
  return FontResultOk;
}

// Whether a glyph of so many bytes is to be described as a composite.
inline bool isComposite(ByteView glyph, std::size_t length) noexcept {
  return length > 0 && glyph.readOrZero<std::int8_t>(0) < 0;
}

// The counts of the record's outline; false without memory, which only a composite needs.
// `outWork`, if given, receives what it took, as countOutline has it.
bool countGlyphData(const TrueTypeFont& font, GlyphData* glyph,
                    std::uint64_t* outWork = nullptr) noexcept;

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
