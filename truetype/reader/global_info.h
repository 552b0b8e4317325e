// The global description of a font, and the names of the Unicode ranges.
#pragma once

#include <cstddef>

#include "truetype/font.h"
#include "truetype/records.h"

namespace ulm::truetype {

// Fills the caller's record. What the font lacks, a table or bytes beyond the image, is 0.
void getGlobalFontInfo(const TrueTypeFont* font, GlobalFontInfo* outInfo) noexcept;

// The names of the Unicode ranges by their bit number in GlobalFontInfo::unicodeRanges.
inline constexpr std::size_t kUnicodeRangeNameCount = 71;
extern const char* const unicodeRangeNames[kUnicodeRangeNameCount];

}  // namespace ulm::truetype
