// The kern table in its two forms, which differ in the size of their fields.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

struct Kern {
  static constexpr std::uint32_t kTag = tag("kern");

  static constexpr std::size_t kSize = 4;                     // subtables follow
  static constexpr Field<Kern, std::uint16_t, 0> kVersion{};  // 0
  static constexpr Field<Kern, std::uint16_t, 2> kCount{};
};

struct KernPair {
  static constexpr std::size_t kSize = 6;
  static constexpr Field<KernPair, std::uint32_t, 0> kKey{};   // the left glyph in the upper half
  static constexpr Field<KernPair, std::int16_t, 4> kValue{};  // font units
};

struct KernSubtable {
  static constexpr std::uint16_t kHorizontal = 0x0001;  // of coverage

  static constexpr Field<KernSubtable, std::uint16_t, 0> kVersion{};
  static constexpr Field<KernSubtable, std::uint16_t, 2> kLength{};  // bytes, this header included
  static constexpr Field<KernSubtable, std::uint16_t, 4> kCoverage{};
  static constexpr Field<KernSubtable, std::uint16_t, 6> kPairCount{};  // of format 0
  static constexpr Array<KernSubtable, KernPair, 14> kPairs{};          // sorted by key
};

struct AppleKern {
  static constexpr std::uint32_t kVersion1 = 0x00010000;

  static constexpr std::size_t kSize = 8;  // subtables follow
  static constexpr Field<AppleKern, std::uint32_t, 0> kVersion{};
  static constexpr Field<AppleKern, std::uint32_t, 4> kCount{};
};

struct AppleKernSubtable {
  static constexpr Field<AppleKernSubtable, std::uint32_t, 0> kLength{};  // bytes
};

}  // namespace ulm::truetype::format
