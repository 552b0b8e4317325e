// The loca and glyf tables: where glyphs are, and what their bytes mean.
#pragma once

#include <cstdint>

#include "truetype/format/field.h"

namespace ulm::truetype::format {

// Offsets into glyf, one more than glyphs: of 16 bits, halved, or of 32 bits.
struct Loca {
  static constexpr std::uint32_t kTag = tag("loca");
  static constexpr std::int16_t kShortFormat = 0, kLongFormat = 1;  // head's indexToLocFormat
  static constexpr Array<Loca, std::uint16_t, 0> kShortOffsets{};
  static constexpr Array<Loca, std::uint32_t, 0> kLongOffsets{};

  // Whether an offset can be halved into 16 bits.
  static constexpr bool fitsShort(std::uint32_t offset) noexcept {
    return offset / 2 <= UINT16_MAX;
  }
  // The bytes of `count` offsets.
  static constexpr std::size_t size(std::size_t count, bool isLong) noexcept {
    return isLong ? kLongOffsets.bytes(count) : kShortOffsets.bytes(count);
  }
  // The whole offsets in `length` bytes.
  static constexpr std::uint32_t entriesIn(std::uint32_t length, bool isLong) noexcept {
    return length / static_cast<std::uint32_t>(size(1, isLong));
  }
};

// What each glyph begins with.
struct GlyphHeader {
  static constexpr std::uint32_t kGlyfTag = tag("glyf");
  static constexpr std::int16_t kComposite = -1;  // a contour count; others are of simple glyphs

  static constexpr std::size_t kSize = 10;
  static constexpr Field<GlyphHeader, std::int16_t, 0> kContourCount{};
  static constexpr Field<GlyphHeader, std::int16_t, 2> kXMin{};
  static constexpr Field<GlyphHeader, std::int16_t, 4> kYMin{};
  static constexpr Field<GlyphHeader, std::int16_t, 6> kXMax{};
  static constexpr Field<GlyphHeader, std::int16_t, 8> kYMax{};
};

// A simple glyph: the last points of its contours, instructions after their count, then flags, x
// and y of all points.
struct SimpleGlyph {
  static constexpr Array<SimpleGlyph, std::uint16_t, GlyphHeader::kSize> kContourEnds{};

  static constexpr std::size_t instructionCount(std::size_t contours) noexcept {
    return kContourEnds.at(contours);
  }
  static constexpr std::size_t instructions(std::size_t contours) noexcept {
    return kContourEnds.at(contours + 1);
  }
};

// The bits of a point's flag byte.
struct PointFlag {
  static constexpr std::uint8_t kXIsByte = 0x02, kYIsByte = 0x04;
  static constexpr std::uint8_t kRepeat = 0x08;  // a byte follows: how often the flag is repeated
  // Of a byte: it is positive. Of a coordinate that is no byte: it is the same as the one before.
  static constexpr std::uint8_t kXIsPositiveOrSame = 0x10, kYIsPositiveOrSame = 0x20;
  // A flag, its count of repeats, and two words.
  static constexpr std::size_t kMaxPointSize = 6;
};

// One component of a composite glyph. The arguments follow the head as words or bytes, and then the
// scales.
struct Component {
  enum Flag : std::uint16_t {
    kArgumentsAreWords = 0x0001,
    kArgumentsAreSigned = 0x0002,  // those that are bytes; words always are
    kHasScale = 0x0008,
    kMoreComponents = 0x0020,
    kHasTwoScales = 0x0040,
    kHasMatrix = 0x0080,
    kUsesMyMetrics = 0x0200,
    kScaleFlags = kHasScale | kHasTwoScales | kHasMatrix,  // the lowest one that is set decides
    kSizeFlags = kArgumentsAreWords | kScaleFlags,
  };

  static constexpr std::size_t kFirst = GlyphHeader::kSize;  // the offset in a glyph
  static constexpr std::size_t kHeadSize = 4;
  static constexpr Field<Component, std::uint16_t, 0> kFlags{};
  static constexpr Field<Component, std::uint16_t, 2> kGlyphIndex{};
  static constexpr Field<Component, std::uint32_t, 0> kHead{};  // both, the flags in the upper half
  static constexpr Array<Component, std::uint16_t, kHeadSize> kWords{};
  static constexpr Array<Component, std::uint8_t, kHeadSize> kBytes{};

  // The offset of scale `index`, a signed number of 2.14 bits.
  static constexpr std::size_t scale(std::uint16_t flags, std::size_t index) noexcept {
    const bool words = (flags & kArgumentsAreWords) != 0;
    return (words ? kWords.at(2) : kBytes.at(2)) + index * kElementSize<std::int16_t>;
  }
  static constexpr std::size_t scaleCount(std::uint16_t flags) noexcept {
    return (flags & kHasScale) != 0       ? 1
           : (flags & kHasTwoScales) != 0 ? 2
           : (flags & kHasMatrix) != 0    ? 4
                                          : 0;
  }
  // The bytes of a record with these flags.
  static constexpr std::size_t size(std::uint16_t flags) noexcept;

 private:
  struct Sizes {
    std::uint8_t bytes[kSizeFlags + 1] = {};
    constexpr Sizes() noexcept {
      for (std::uint16_t flags = 0; flags <= kSizeFlags; ++flags) {
        bytes[flags] = static_cast<std::uint8_t>(scale(flags, scaleCount(flags)));
      }
    }
  };
  static const Sizes kSizes;
};

inline constexpr Component::Sizes Component::kSizes;
constexpr std::size_t Component::size(std::uint16_t flags) noexcept {
  return kSizes.bytes[flags & kSizeFlags];
}

}  // namespace ulm::truetype::format
