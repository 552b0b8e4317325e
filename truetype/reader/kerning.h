// Kerning of glyph runs and pairs, from the Microsoft form of the kern table.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/records.h"

namespace ulm::truetype {

// The kern analysis of open: sets kernType, kernTableCount and kernTables. False where memory ran
// out; anything wrong with the table is kernType 0. The chain of subtables may leave the table but
// not the image, and an Apple count has to fit into the image by the length fields alone. A
// subtable whose pairs leave the image becomes a null entry, so that requests never lead outside.
// `font` is a record of open, or one whose kernTables is null: an array that it has is released.
bool analyseKernTable(TrueTypeFont* font) noexcept;

// Kerning of `count` glyphs into the caller's count - 1 adjustments, element i between the glyphs i
// and i + 1; `vertical` is 0 or 1 and picks the subtables and the field that is set. The last
// subtable that holds a pair wins. Does nothing without glyphs or a place for the result. On the
// Apple form it prints one line on the standard error stream and gives zeros. A bisection per pair
// and usable subtable.
void getRunKerning(const TrueTypeFont* font, const std::uint16_t* glyphs, std::int32_t count,
                   std::int32_t vertical, KernAdjustment* outAdjustments) noexcept;

// The same for one pair, from the values of an open font, whose kernTables the caller vouches for;
// null entries are passed over. Does nothing unless both outputs are given. An index above 0xFFFF
// has no kerning.
void getPairKerning(std::int32_t kernType, std::uint32_t kernTableCount,
                    const std::uint8_t* const* kernTables, std::int32_t unitsPerEm,
                    std::int32_t vertical, std::uint32_t left, std::uint32_t right,
                    std::int32_t* outX, std::int32_t* outY) noexcept;

}  // namespace ulm::truetype
