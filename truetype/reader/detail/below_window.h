// Sixteen big-endian numbers of 16 bits compared with a key at once.
#pragma once

#include <cstddef>
#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#else
#include "truetype/format/big_endian.h"
#endif

namespace ulm::truetype::detail {

inline constexpr std::size_t kBelowWindow = 16;

// Bit i is set where number i is below `key`. The caller vouches for the 32 bytes, which may lie at
// any alignment.
inline std::uint32_t belowInWindow(const std::uint8_t* numbers, std::uint16_t key) noexcept {
#ifdef __SSE2__
  const auto* vectors = reinterpret_cast<const __m128i*>(numbers);
  const __m128i wanted = _mm_set1_epi16(static_cast<std::int16_t>(key));
  // The key less a number, without going below zero, is zero where the number is not below it.
  const auto notBelow = [wanted](__m128i stored) {
    const __m128i number = _mm_or_si128(_mm_slli_epi16(stored, 8), _mm_srli_epi16(stored, 8));
    return _mm_cmpeq_epi16(_mm_subs_epu16(wanted, number), _mm_setzero_si128());
  };
  const __m128i all =
      _mm_packs_epi16(notBelow(_mm_loadu_si128(vectors)), notBelow(_mm_loadu_si128(vectors + 1)));
  return static_cast<std::uint32_t>(_mm_movemask_epi8(all)) ^ 0xFFFFu;
#else
  std::uint32_t below = 0;
  for (std::size_t i = 0; i < kBelowWindow; ++i) {
    below |= std::uint32_t{format::loadBigEndian<std::uint16_t>(numbers + i * sizeof(key)) < key}
             << i;
  }
  return below;
#endif
}

}  // namespace ulm::truetype::detail
