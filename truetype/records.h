// The plain records that the font library hands out or fills.
#pragma once

#include <cstdint>

namespace ulm::truetype {

struct NameRecord {
  std::uint16_t platformID;
  std::uint16_t encodingID;
  std::uint16_t languageID;
  std::uint16_t nameID;
  std::uint16_t length;  // bytes
  std::uint8_t* data;    // owned copy of the stored bytes, no terminator; null when length is 0
};

// Lengths marked "scaled" are thousandths of the em. The texts are the font's own and live as long
// as its record.
struct GlobalFontInfo {
  const char* family;
  const std::uint16_t* familyWide;  // may be null
  const char* subfamily;
  const char* postScript;
  std::uint32_t weight;
  std::uint32_t width;
  std::uint32_t pitch;       // isFixedPitch, all 32 bits
  std::int32_t italicAngle;  // 16.16 degrees
  std::uint16_t selection;
  std::int32_t xMin, yMin, xMax, yMax;                    // scaled
  std::int32_t ascender, descender, lineGap;              // scaled, from hhea
  std::int32_t verticalAscender, verticalDescender;       // scaled, from vhea
  std::int32_t typoAscender, typoDescender, typoLineGap;  // scaled, from OS/2
  std::int32_t winAscent, winDescent;                     // scaled, from OS/2
  std::int32_t symbolEncoded;                             // 1 for a symbol character map
  std::int32_t unicodeRangesValid;                        // 1 where unicodeRanges were read
  std::uint32_t unicodeRanges[4];                         // bit n is bit n mod 32 of word n / 32
  std::uint8_t panose[10];
  std::uint16_t typeFlags;
};

inline constexpr std::uint32_t kPointOnCurve = 0x01;
inline constexpr std::uint32_t kPointEndsContour = 0x8000;

struct GlyphPoint {
  std::uint32_t flags;  // low byte: the stored flag byte; kPointEndsContour
  std::int16_t x;       // font units
  std::int16_t y;
};

inline constexpr std::uint32_t kMaxGlyphBytes = 65534;  // of a GlyphData: its largest byteCount

// A glyph's bytes with its counts, as the reader hands it to the writer. Its holder frees `data`,
// then the record.
struct GlyphData {
  std::uint32_t glyphIndex;  // in the source font
  std::uint16_t byteCount;   // of data: the glyph's length rounded up to even
  std::uint8_t* data;        // owned; null for a glyph without data
  std::uint16_t advanceWidth;
  std::int16_t leftSideBearing;
  std::uint16_t isComposite;
  std::uint16_t pointCount;    // of the resolved outline, low 16 bits
  std::uint16_t contourCount;  // likewise
  std::uint32_t newIndex;      // the writer's to assign; 0 until then
};

struct GlyphMetrics {  // font units
  std::int16_t xMin, yMin, xMax, yMax;
  std::uint16_t advanceWidth;
  std::int16_t leftSideBearing;
  std::uint16_t advanceHeight;
  std::int16_t topSideBearing;
};

// The low 16 bits of values in thousandths of the em.
struct GlyphBox {
  std::int16_t xMin, yMin, xMax, yMax;
};
struct ScaledAdvance {
  std::uint16_t advance;
  std::int16_t sideBearing;
};
struct ScaledMetrics {
  std::uint16_t advanceWidth, advanceHeight;
  std::int16_t leftSideBearing, topSideBearing;
};

struct KernAdjustment {  // thousandths of the em
  std::int32_t x, y;
};

}  // namespace ulm::truetype
