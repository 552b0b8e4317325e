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

// Bytes of a record with these flags, of which the lower ones rule.
constexpr std::size_t componentSize(std::uint16_t flags) noexcept {
  // By matrix, two scales and scale, the bits 2, 1 and 0 of the index.
  constexpr std::uint8_t kScaleBytes[8] = {0, 2, 4, 2, 8, 2, 4, 2};
  static_assert(kHasScale == 8 && kHasTwoScales == 0x40 && kHasMatrix == 0x80);
  const std::size_t scales = (std::size_t{flags} >> 3 & 1) | (std::size_t{flags} >> 5 & 6);
  return 6 + 2 * (std::size_t{flags} & kArgumentsAreWords) + kScaleBytes[scales];
}

}  // namespace ulm::truetype::detail
