// The start of a font file: the offset table with its directory, and the header of a collection.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

// Tables whose contents the library does not read.
inline constexpr std::uint32_t kCvtTag = tag("cvt "), kPrepTag = tag("prep");
inline constexpr std::uint32_t kFpgmTag = tag("fpgm"), kGsubTag = tag("GSUB");
inline constexpr std::uint32_t kGposTag = tag("GPOS"), kFvarTag = tag("fvar");

// One table of the directory, which is sorted by tag.
struct TableEntry {
  static constexpr std::size_t kSize = 16;
  static constexpr Field<TableEntry, std::uint32_t, 0> kTag{};
  static constexpr Field<TableEntry, std::uint32_t, 4> kChecksum{};
  static constexpr Field<TableEntry, std::uint32_t, 8> kOffset{};   // from the start of the file
  static constexpr Field<TableEntry, std::uint32_t, 12> kLength{};  // without the padding
};

struct OffsetTable {
  static constexpr std::uint32_t kTrueType = 0x00010000;  // versions
  static constexpr std::uint32_t kAppleTrueType = tag("true");
  static constexpr std::uint32_t kPostScriptOutlines = tag("OTTO");  // which the library refuses

  static constexpr std::size_t kSize = 12;
  static constexpr Field<OffsetTable, std::uint32_t, 0> kVersion{};
  static constexpr Field<OffsetTable, std::uint16_t, 4> kTableCount{};
  static constexpr Field<OffsetTable, std::uint16_t, 6> kSearchRange{};
  static constexpr Field<OffsetTable, std::uint16_t, 8> kEntrySelector{};
  static constexpr Field<OffsetTable, std::uint16_t, 10> kRangeShift{};
  static constexpr Array<OffsetTable, TableEntry, kSize> kTables{};  // kTableCount of them
};

struct CollectionHeader {
  static constexpr std::uint32_t kCollection = tag("ttcf");  // signature
  static constexpr std::uint32_t kVersion1 = 0x00010000, kVersion2 = 0x00020000;

  static constexpr std::size_t kSize = 12;
  static constexpr Field<CollectionHeader, std::uint32_t, 0> kSignature{};
  static constexpr Field<CollectionHeader, std::uint32_t, 4> kVersion{};
  static constexpr Field<CollectionHeader, std::uint32_t, 8> kFaceCount{};
  // Of the faces' offset tables, from the start of the file.
  static constexpr Array<CollectionHeader, std::uint32_t, kSize> kOffsets{};
};

// The first numbers of the compressed files of the web, which the library does not unpack.
inline constexpr std::uint32_t kWoffSignature = tag("wOFF"), kWoff2Signature = tag("wOF2");

// The three fields by which old readers bisect `count` entries of `entrySize` bytes. `count` is at
// least 1; the caller vouches that count * entrySize fits 16 bits.
struct SearchFields {
  std::uint16_t searchRange, entrySelector, rangeShift;

  static constexpr SearchFields of(std::uint32_t count, std::uint32_t entrySize) noexcept {
    const std::uint32_t power = std::bit_floor(count);
    return {static_cast<std::uint16_t>(entrySize * power),
            static_cast<std::uint16_t>(std::countr_zero(power)),
            static_cast<std::uint16_t>(entrySize * (count - power))};
  }
};

// The next multiple of 4: each table of a file is filled up to it with zeros.
constexpr std::uint64_t padded(std::uint64_t length) noexcept {
  return (length + 3) & ~std::uint64_t{3};
}

// What the words of a whole file sum up to, modulo 2^32, by head's checkSumAdjustment.
inline constexpr std::uint32_t kFileChecksum = 0xB1B0AFBA;

}  // namespace ulm::truetype::format
