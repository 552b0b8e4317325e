// The names of a font, its raw name records and its global description.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/records.h"

namespace ulm::truetype {

// The index of the record with exactly these keys, or -1, by bisection of records that are taken to
// be sorted. The caller vouches for the 6 + 12 * recordCount bytes of the table.
std::int32_t findNameRecord(const std::uint8_t* nameTable, std::uint32_t recordCount,
                            std::uint16_t platformID, std::uint16_t encodingID,
                            std::uint16_t languageID, std::uint16_t nameID) noexcept;

// A new text from record `index`, given back with free; null without memory. The caller vouches for
// the record and for the bytes of its string.
//   isUtf16  non-zero: length / 2 big-endian units, of each the low byte; `outWide`, if given,
//            receives the units in host order with a terminating 0, given back with free.
//            Zero: the bytes as they are; `outWide` receives null.
char* nameRecordText(const std::uint8_t* nameTable, std::uint32_t index, std::int32_t isUtf16,
                     std::uint16_t** outWide) noexcept;

// All records in table order, with copies of their strings; the result is their count.
// `outRecords` receives an array for releaseNameRecords, null with a count of 0. A string that
// leaves the image has length 0. Without memory, and beyond kMostNameBytes of strings, which only
// records that share a large string over and over can come to, the result is 0.
inline constexpr std::size_t kMostNameBytes = std::size_t{1} << 24;
std::int32_t getNameRecords(const TrueTypeFont* font, NameRecord** outRecords) noexcept;
// A count below 1 releases the array alone.
void releaseNameRecords(NameRecord* records, std::int32_t count) noexcept;

// Fills the caller's record. What the font lacks, a table or bytes beyond the image, is 0.
void getGlobalFontInfo(const TrueTypeFont* font, GlobalFontInfo* outInfo) noexcept;

// The names of the Unicode ranges by their bit number in GlobalFontInfo::unicodeRanges.
inline constexpr std::size_t kUnicodeRangeNameCount = 71;
extern const char* const unicodeRangeNames[kUnicodeRangeNameCount];

// The name analysis of open, not for other callers: sets the four names of a record whose name
// records lie in the image. A string that leaves the image counts as empty. False where memory ran
// out.
bool readFontNames(TrueTypeFont* font) noexcept;

}  // namespace ulm::truetype
