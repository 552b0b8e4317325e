// From character codes of 16 bits to glyph indices.
#pragma once

#include <cstdint>

#include "truetype/font.h"

namespace ulm::truetype {

// The cmap analysis of open, not for other callers: sets cmapSubtable, cmapType and cmapLookup of a
// record whose cmap and encoding records are inside the image. Of the Windows encodings 1 to 6,
// then 0, it takes the first that has a record with an offset. A subtable of another format than 0,
// 2, 4 and 6 is not usable, nor is one that could lead a lookup outside the image, and there is no
// second choice. Where only the code 0xFFFF leads outside, as the last segment does in some fonts,
// the lookup returns 0 for that code and works for the others.
void selectCmapSubtable(TrueTypeFont* font) noexcept;

// The glyph of `code` by a subtable of the format, 0 for none. The caller vouches that `subtable`
// is one that selectCmapSubtable has found usable, or that all bytes its values lead to can be
// read; it is not null. Format 4 bisects the end codes as findFirstNotBelow does, formats 0 and 6
// take one read, format 2 takes two steps.
std::uint16_t cmapLookupFormat0(const std::uint8_t* subtable, std::uint16_t code) noexcept;
std::uint16_t cmapLookupFormat2(const std::uint8_t* subtable, std::uint16_t code) noexcept;
std::uint16_t cmapLookupFormat4(const std::uint8_t* subtable, std::uint16_t code) noexcept;
std::uint16_t cmapLookupFormat6(const std::uint8_t* subtable, std::uint16_t code) noexcept;

// The index of the first of `count` sorted big-endian numbers that is at or above `key`; 0xFFFF if
// there is none, and for a count of 0 or 0xFFFF. The caller vouches for 2 * count bytes; with a
// count of 0 `array` may be null. Numbers that are not sorted are bisected in the same way.
std::uint16_t findFirstNotBelow(const std::uint8_t* array, std::uint16_t count,
                                std::uint16_t key) noexcept;

}  // namespace ulm::truetype
