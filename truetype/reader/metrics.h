// Advances, side bearings and boxes of glyphs.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/records.h"

namespace ulm::truetype {

// With n long entries, glyph g takes entry g where g is below n; else the advance of entry n - 1
// and the side bearing g - n of those behind the long entries, or where g is not below the glyph
// count the side bearing of entry n - 1. What lies outside the image reads 0.

// Fills the four advance and bearing fields, in font units, and leaves the box alone. `glyphIndex`
// is below numGlyphs. All are 0 without horizontal metrics, the vertical ones without those.
void readGlyphMetrics(const TrueTypeFont* font, std::uint32_t glyphIndex,
                      GlyphMetrics* metrics) noexcept;

// Fills the box from the glyph's header, in font units, without a look at its outline. False, and
// nothing written, for a glyph without data or an index that is not below numGlyphs.
bool readGlyphBox(const TrueTypeFont* font, std::uint32_t glyphIndex,
                  GlyphMetrics* metrics) noexcept;

// numGlyphs scaled boxes from the glyphs' headers, zero for a glyph without data; to be given back
// with free. Null without memory.
GlyphBox* readAllGlyphBoxes(const TrueTypeFont* font) noexcept;

// Scaled advances of `count` glyphs, a non-zero `vertical` from vmtx; to be given back with free.
// Null without glyphs, where the font has no such metrics, or without memory.
ScaledAdvance* getScaledAdvances(const TrueTypeFont* font, const std::uint16_t* glyphs,
                                 std::int32_t count, std::int32_t vertical) noexcept;

// The same from raw tables, either of which may be null and whose length the caller vouches for:
// 4 bytes for each of the hCount (vCount) long entries and 2 for each glyph beyond up to
// glyphCount. A unitsPerEm of 0 gives zeros. To be given back with free; null without glyphs or
// memory.
ScaledMetrics* getScaledMetricsFromTables(const std::uint8_t* hmtx, const std::uint8_t* vmtx,
                                          std::int32_t hCount, std::int32_t vCount,
                                          std::uint32_t glyphCount, std::int32_t unitsPerEm,
                                          const std::uint16_t* glyphs, std::int32_t count) noexcept;
void getScaledGlyphMetricsFromTables(const std::uint8_t* hmtx, const std::uint8_t* vmtx,
                                     std::int32_t hCount, std::int32_t vCount,
                                     std::uint32_t glyphCount, std::int32_t unitsPerEm,
                                     std::uint16_t glyph, ScaledMetrics* outMetrics) noexcept;

// The 16-bit field at byte 2 of a raw table, 0 for null: the count of name, of cmap and of a kern
// table of version 0. The caller vouches for 4 bytes.
std::uint16_t rawTableCount(const std::uint8_t* table) noexcept;

}  // namespace ulm::truetype
