// What a font says of one glyph, outline apart: all that a GlyphData record is made of.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/font_views.h"
#include "truetype/detail/long_metrics.h"
#include "truetype/font.h"
#include "truetype/format/glyf.h"
#include "truetype/records.h"

namespace ulm::truetype::detail {

// Why there is no record of a glyph.
enum class GlyphRefusal : std::uint8_t {
  None,
  NoSuchGlyph,     // the index is not below numGlyphs
  OffsetsDescend,  // the next glyph's offset is below its own
  TooLarge,        // more than kMaxGlyphBytes
};

struct GlyphDescription {
  GlyphRefusal refusal;  // the other fields have values only with None
  bool isComposite;
  Metric horizontal;
  ByteView glyph;      // from its first byte to the end of glyf
  std::size_t length;  // of its own bytes, at the start of `glyph`

  ByteView ownBytes() const noexcept { return {glyph.start(), length}; }
  // With the zero that makes an odd length even.
  std::uint16_t byteCount() const noexcept {
    return static_cast<std::uint16_t>((length + 1) & ~std::size_t{1});
  }
  // A record without data, counts and new index.
  GlyphData record(std::uint32_t glyphIndex) const noexcept {
    return {.glyphIndex = glyphIndex,
            .byteCount = byteCount(),
            .data = nullptr,
            .advanceWidth = horizontal.advance,
            .leftSideBearing = horizontal.sideBearing,
            .isComposite = isComposite,
            .pointCount = 0,
            .contourCount = 0,
            .newIndex = 0};
  }
};

// The length of a glyph by its two offsets, 0 where they descend. `glyphIndex` is below numGlyphs.
inline std::size_t storedLength(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
  const std::uint32_t start = font.glyphOffsets[glyphIndex];
  const std::uint32_t next = font.glyphOffsets[glyphIndex + 1];
  return next < start ? 0 : next - start;
}

inline GlyphDescription describeGlyph(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
  GlyphDescription described;
  described.refusal = GlyphRefusal::NoSuchGlyph;
  if (glyphIndex >= font.numGlyphs) return described;
  described.refusal = GlyphRefusal::OffsetsDescend;
  if (font.glyphOffsets[glyphIndex + 1] < font.glyphOffsets[glyphIndex]) return described;
  const std::size_t stored = storedLength(font, glyphIndex);
  described.glyph = glyphView(font, glyphIndex);
  described.length = described.glyph.size() < stored ? described.glyph.size() : stored;
  described.refusal = GlyphRefusal::TooLarge;
  if (described.length > kMaxGlyphBytes) return described;
  described.refusal = GlyphRefusal::None;
  described.horizontal = horizontalMetric(font, glyphIndex);
  // The top bit of the contour count, which is there with its first byte.
  described.isComposite =
      described.length > 0 &&
      described.glyph.readHeld<std::int8_t>(format::GlyphHeader::kContourCount.kOffset) < 0;
  return described;
}

}  // namespace ulm::truetype::detail
