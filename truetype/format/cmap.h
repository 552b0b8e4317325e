// The cmap table: encoding records and the subtable formats that map codes of 16 bits.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

struct EncodingRecord {
  static constexpr std::size_t kSize = 8;
  static constexpr Field<EncodingRecord, std::uint16_t, 0> kPlatformID{};
  static constexpr Field<EncodingRecord, std::uint16_t, 2> kEncodingID{};
  static constexpr Field<EncodingRecord, std::uint32_t, 4> kOffset{};  // from the table's start
};

struct Cmap {
  static constexpr std::uint32_t kTag = tag("cmap");
  static constexpr std::uint16_t kWindowsPlatform = 3, kWindowsUnicode = 1;

  static constexpr std::size_t kSize = 4;
  static constexpr Field<Cmap, std::uint16_t, 0> kVersion{};
  static constexpr Field<Cmap, std::uint16_t, 2> kCount{};
  static constexpr Array<Cmap, EncodingRecord, kSize> kRecords{};  // kCount of them
};

// What all formats up to 6 begin with.
struct CmapSubtable {
  static constexpr Field<CmapSubtable, std::uint16_t, 0> kFormat{};
};

// A glyph of 8 bits for each of 256 codes.
struct Cmap0 {
  static constexpr Array<Cmap0, std::uint8_t, 6> kGlyphs{};
  static constexpr std::size_t kCodeCount = 256;
};

// Codes of two bytes, or of one. The high byte picks a subheader, which maps a range of low bytes.
struct Cmap2SubHeader {
  static constexpr std::size_t kSize = 8;
  static constexpr Field<Cmap2SubHeader, std::uint16_t, 0> kFirstCode{};
  static constexpr Field<Cmap2SubHeader, std::uint16_t, 2> kEntryCount{};
  static constexpr Field<Cmap2SubHeader, std::uint16_t, 4> kDelta{};
  static constexpr Field<Cmap2SubHeader, std::uint16_t, 6> kRangeOffset{};
};
struct Cmap2 {
  static constexpr std::size_t kKeyCount = 256;
  static constexpr Array<Cmap2, std::uint16_t, 6> kKeys{};  // subheader indices, times their size
  static constexpr Array<Cmap2, Cmap2SubHeader, kKeys.at(kKeyCount)> kSubHeaders{};
};

// A range offset, in formats 2 and 4, counts from its own field and leads to the glyphs of a range.
// The offset of the glyph of code `index` of the range:
constexpr std::size_t rangeGlyph(std::size_t field, std::size_t rangeOffset,
                                 std::size_t index) noexcept {
  return field + rangeOffset + index * kElementSize<std::uint16_t>;
}

// Segments of codes, ascending.
struct Cmap4 {
  static constexpr std::uint16_t kFormatNumber = 4;
  static constexpr std::uint16_t kLastCode = 0xFFFF;  // the end of the last segment

  static constexpr std::size_t kSize = 14;
  static constexpr Field<Cmap4, std::uint16_t, 0> kFormat{};
  static constexpr Field<Cmap4, std::uint16_t, 2> kLength{};  // bytes
  static constexpr Field<Cmap4, std::uint16_t, 4> kLanguage{};
  static constexpr Field<Cmap4, std::uint16_t, 6> kSegmentBytes{};  // segCountX2
  static constexpr Field<Cmap4, std::uint16_t, 8> kSearchRange{};
  static constexpr Field<Cmap4, std::uint16_t, 10> kEntrySelector{};
  static constexpr Field<Cmap4, std::uint16_t, 12> kRangeShift{};
  static constexpr Array<Cmap4, std::uint16_t, kSize> kEndCodes{};
};

// Where the arrays of format 4 are with `segments` segments, of 16 bits at most.
struct Cmap4Arrays {
  static constexpr std::size_t kNumber = kElementSize<std::uint16_t>;
  // A segment's entries in all four arrays.
  static constexpr std::size_t kSegmentSize = 4 * kNumber;
  std::size_t segments;

  static constexpr Cmap4Arrays ofSegmentBytes(std::uint16_t segmentBytes) noexcept {
    return {segmentBytes / kNumber};
  }

  static constexpr std::size_t endCode(std::size_t segment) noexcept {
    return Cmap4::kEndCodes.at(segment);
  }
  constexpr std::size_t pad() const noexcept { return endCode(segments); }  // reservedPad
  constexpr std::size_t startCode(std::size_t segment) const noexcept {
    return pad() + kNumber * (1 + segment);
  }
  constexpr std::size_t delta(std::size_t segment) const noexcept {
    return startCode(segments + segment);
  }
  // A range offset of 0 is none: the delta alone gives the glyphs.
  constexpr std::size_t rangeOffset(std::size_t segment) const noexcept {
    return delta(segments + segment);
  }
  constexpr std::size_t glyph(std::size_t index) const noexcept {
    return rangeOffset(segments + index);
  }
};

// A range of codes.
struct Cmap6 {
  static constexpr Field<Cmap6, std::uint16_t, 6> kFirstCode{};
  static constexpr Field<Cmap6, std::uint16_t, 8> kCount{};
  static constexpr Array<Cmap6, std::uint16_t, 10> kGlyphs{};  // kCount of them
};

}  // namespace ulm::truetype::format
