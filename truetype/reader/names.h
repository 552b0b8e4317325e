// The names of a font and its raw name records.
#pragma once

#include <cstdint>

#include "truetype/font.h"
#include "truetype/reader/global_info.h"  // for callers that include this header for it
#include "truetype/records.h"

namespace ulm::truetype {

// The index of the record with exactly these four IDs, or -1, by a bisection of records that are
// taken to be sorted. The caller vouches for the 6 + 12 * recordCount bytes of the table, which may
// be null with a count of 0.
std::int32_t findNameRecord(const std::uint8_t* nameTable, std::uint32_t recordCount,
                            std::uint16_t platformID, std::uint16_t encodingID,
                            std::uint16_t languageID, std::uint16_t nameID) noexcept;

// A new text from record `index`, released with free; null without memory. The caller vouches for
// the record and for the bytes of its string.
//   isUtf16  non-zero: length / 2 big-endian units, the low byte of each; `outWide`, which may be
//            null, receives the units in host order with a terminating 0, released with free.
//            Zero: the bytes as they are; `outWide` receives null.
char* nameRecordText(const std::uint8_t* nameTable, std::uint32_t index, std::int32_t isUtf16,
                     std::uint16_t** outWide) noexcept;

// Of all strings together that getNameRecords copies. Only records that share a large string many
// times can come to more.
inline constexpr std::size_t kMaxNameBytes = std::size_t{1} << 24;

// All records in table order, with copies of their strings; returns their count. `outRecords`
// receives an array for releaseNameRecords, or null with a count of 0. A string that leaves the
// image has length 0. The result is 0 without memory and beyond kMaxNameBytes.
std::int32_t getNameRecords(const TrueTypeFont* font, NameRecord** outRecords) noexcept;
// Releases the strings and the array, which may be null. A count below 1 releases the array alone.
void releaseNameRecords(NameRecord* records, std::int32_t count) noexcept;

// The name analysis of open, not for other callers: sets the four names of a record whose name
// records are inside the image. A string that leaves the image counts as empty. False without
// memory.
bool readFontNames(TrueTypeFont* font) noexcept;

}  // namespace ulm::truetype
