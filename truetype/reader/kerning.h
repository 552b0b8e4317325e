// Kerning of glyph runs and pairs, from the Microsoft form of the kern table.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/records.h"

namespace ulm::truetype {

// The kern analysis of open, not for other callers: sets kernType, kernTableCount and kernTables.
// False without memory; a fault of the table is kernType 0. The chain of subtables may leave the
// table but not the image, and an Apple count has to fit into the image by the length fields alone.
// A subtable whose pairs leave the image becomes a null entry, so that no request leads outside.
// `font` is a record of open, or one whose kernTables is null: an array that it has is released.
bool analyseKernTable(TrueTypeFont* font) noexcept;

// Kerning of `count` glyphs into the caller's count - 1 adjustments, element i between the glyphs i
// and i + 1. `vertical` is 0 or 1 and picks the subtables and the field that is set. The last
// subtable that holds a pair counts. Does nothing with a count below 1, null `glyphs` or null
// `outAdjustments`. On the Apple form it prints one line on the standard error stream and gives
// zeros. Takes a bisection for each pair and usable subtable.
void getRunKerning(const TrueTypeFont* font, const std::uint16_t* glyphs, std::int32_t count,
                   std::int32_t vertical, KernAdjustment* outAdjustments) noexcept;

// The same for one pair, from the values of an open font. The caller vouches for kernTables; null
// entries are skipped, and a null array has no kerning. Does nothing if an output is null. An index
// above 0xFFFF has no kerning.
void getPairKerning(std::int32_t kernType, std::uint32_t kernTableCount,
                    const std::uint8_t* const* kernTables, std::int32_t unitsPerEm,
                    std::int32_t vertical, std::uint32_t left, std::uint32_t right,
                    std::int32_t* outX, std::int32_t* outY) noexcept;

}  // namespace ulm::truetype
