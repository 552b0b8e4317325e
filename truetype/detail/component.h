// The records of which a composite glyph is made.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/detail/byte_view.h"

namespace ulm::truetype::detail {

enum ComponentFlag : std::uint16_t {
  kArgumentsAreWords = 0x0001,
  kArgumentsAreSigned = 0x0002,
  kHasScale = 0x0008,
  kMoreComponents = 0x0020,
  kHasTwoScales = 0x0040,
  kHasMatrix = 0x0080,
  kLendsMetrics = 0x0200,
};

inline constexpr std::size_t kFirstComponent = 10;
inline constexpr std::size_t kNoRecord = SIZE_MAX;  // behind the last

// Where a composite's bytes are, nothing for all other glyphs. `glyphIndex` is below numGlyphs.
inline ByteView compositeView(const TrueTypeFont& font, std::uint32_t glyphIndex) noexcept {
  const ByteView glyph = glyphView(font, glyphIndex);
  return glyph.readOrZero<std::int16_t>(0) == -1 ? glyph : ByteView();
}

inline constexpr std::uint16_t kScaleFlags = kHasScale | kHasTwoScales | kHasMatrix;
inline constexpr std::uint16_t kSizeFlags = kArgumentsAreWords | kScaleFlags;

struct ComponentSizes {
  std::uint8_t bytes[kSizeFlags + 1] = {};
  constexpr ComponentSizes() noexcept {
    for (std::uint32_t flags = 0; flags <= kSizeFlags; ++flags) {
      const int words = (flags & kArgumentsAreWords) != 0 ? 2 : 1;
      const int scales = (flags & kHasScale) != 0       ? 1
                         : (flags & kHasTwoScales) != 0 ? 2
                         : (flags & kHasMatrix) != 0    ? 4
                                                        : 0;
      bytes[flags] = static_cast<std::uint8_t>(4 + 2 * words + 2 * scales);
    }
  }
};
inline constexpr ComponentSizes kComponentSizes;

// Bytes of a record with these flags, of which the lower ones rule.
constexpr std::size_t componentSize(std::uint16_t flags) noexcept {
  return kComponentSizes.bytes[flags & kSizeFlags];
}

// Whether a record with these flags does more than to move its points.
constexpr bool isScaled(std::uint16_t flags) noexcept { return (flags & kScaleFlags) != 0; }

// Work of placing one point, in units of one point read.
constexpr std::uint64_t placementWork(std::uint16_t flags) noexcept {
  if (!isScaled(flags)) return 0;
  return (flags & (kHasScale | kHasTwoScales)) != 0 ? 2 : 3;
}

}  // namespace ulm::truetype::detail
