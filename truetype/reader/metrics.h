// Advances, side bearings and boxes of glyphs.
//
// With n long entries, glyph g takes entry g if g is below n. Otherwise it takes the advance of
// entry n - 1, and side bearing g - n of those after the long entries, or, if g is not below the
// glyph count, the side bearing of entry n - 1. What is outside the image reads as 0. No pointer
// may be null unless its function says so.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/records.h"

namespace ulm::truetype {

// Fills the four advance and bearing fields, in font units, and leaves the box alone. `glyphIndex`
// is below numGlyphs. All are 0 without horizontal metrics; the vertical ones are 0 without
// vertical metrics.
void readGlyphMetrics(const TrueTypeFont* font, std::uint32_t glyphIndex,
                      GlyphMetrics* metrics) noexcept;

// Fills the box from the glyph's header, in font units; the outline is not read. False, with
// nothing written, for a glyph without data or an index that is not below numGlyphs.
bool readGlyphBox(const TrueTypeFont* font, std::uint32_t glyphIndex,
                  GlyphMetrics* metrics) noexcept;

// numGlyphs scaled boxes from the glyphs' headers, zero for a glyph without data; released with
// free. Null without memory.
GlyphBox* readAllGlyphBoxes(const TrueTypeFont* font) noexcept;

// Scaled advances of `count` glyphs, from vmtx with a non-zero `vertical`; released with free. Null
// with a count below 1 or null `glyphs`, where the font has no such metrics, or without memory.
ScaledAdvance* getScaledAdvances(const TrueTypeFont* font, const std::uint16_t* glyphs,
                                 std::int32_t count, std::int32_t vertical) noexcept;

// The same from raw tables, for one glyph or for `count` of them. Either table may be null. The
// caller vouches for their length: 4 bytes for each of the hCount (vCount) long entries and 2 for
// each further glyph up to glyphCount. A unitsPerEm of 0 gives zeros. An array is released with
// free; it is null with a count below 1, null `glyphs`, or without memory.
ScaledMetrics* getScaledMetricsFromTables(const std::uint8_t* hmtx, const std::uint8_t* vmtx,
                                          std::int32_t hCount, std::int32_t vCount,
                                          std::uint32_t glyphCount, std::int32_t unitsPerEm,
                                          const std::uint16_t* glyphs, std::int32_t count) noexcept;
void getScaledGlyphMetricsFromTables(const std::uint8_t* hmtx, const std::uint8_t* vmtx,
                                     std::int32_t hCount, std::int32_t vCount,
                                     std::uint32_t glyphCount, std::int32_t unitsPerEm,
                                     std::uint16_t glyph, ScaledMetrics* outMetrics) noexcept;

// The 16-bit field at byte 2 of a raw table: the count of name, of cmap and of a kern table of
// version 0. The caller vouches for 4 bytes. 0 for null.
std::uint16_t rawTableCount(const std::uint8_t* table) noexcept;

}  // namespace ulm::truetype
