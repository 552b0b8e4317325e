// The compression function by the SHA instructions of x86-64. Only this source is compiled for
// them. It includes no header whose inline functions the linker could use for the rest of the
// program.
#include <cpuid.h>
#include <immintrin.h>

#include "bignum/digest/detail/sha_transform.h"

namespace ulm::bignum::detail {
namespace {

// A vector holds four consecutive words, the first in its highest lane. Four vectors are a window
// on the last 16 words of the schedule.
struct Rounds {
  __m128i window[4];
  __m128i abcd;
  __m128i before;  // abcd before the last four steps, from which an instruction computes e

  // Replaces the oldest four words by the next four.
  template <bool Rotate, int Group>
  [[gnu::always_inline]] void extend() noexcept {
    __m128i& oldest = window[Group % 4];
    const __m128i& last = window[(Group + 3) % 4];
    const __m128i mixed =
        _mm_xor_si128(_mm_sha1msg1_epu32(oldest, window[(Group + 1) % 4]), window[(Group + 2) % 4]);
    if constexpr (Rotate) {
      oldest = _mm_sha1msg2_epu32(mixed, last);
    } else {
      // Each word needs the word 3 before it. Three of them are in `last`; the fourth is the first
      // of the new words.
      const __m128i three = _mm_xor_si128(mixed, _mm_slli_si128(last, 4));
      oldest = _mm_xor_si128(three, _mm_srli_si128(three, 12));
    }
  }

  // Group `Group` of four steps, and all groups after it.
  template <bool Rotate, int Group>
  [[gnu::always_inline]] void run() noexcept {
    if constexpr (Group < 20) {
      if constexpr (Group >= 4) extend<Rotate, Group>();
      const __m128i words = window[Group % 4];
      __m128i e;
      if constexpr (Group == 0) {
        e = _mm_add_epi32(before, words);
      } else {
        e = _mm_sha1nexte_epu32(before, words);
      }
      before = abcd;
      abcd = _mm_sha1rnds4_epu32(abcd, e, Group / 5);
      run<Rotate, Group + 1>();
    }
  }
};

template <bool Rotate>
void transform(std::uint32_t (&state)[5], const std::uint8_t* blocks,
               std::size_t blockCount) noexcept {
  // Reverses all 16 bytes: the first word goes to lane 3, and its first byte is its highest.
  const __m128i order = _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  const auto load = [](const void* from) {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
  };
  __m128i abcd = _mm_shuffle_epi32(load(state), 0x1B);
  __m128i e = _mm_set_epi32(static_cast<int>(state[4]), 0, 0, 0);
  for (; blockCount != 0; --blockCount, blocks += 64) {
    Rounds rounds;
    for (std::size_t i = 0; i < 4; ++i) {
      rounds.window[i] = _mm_shuffle_epi8(load(blocks + 16 * i), order);
    }
    rounds.abcd = abcd;
    rounds.before = e;
    rounds.template run<Rotate, 0>();
    e = _mm_sha1nexte_epu32(rounds.before, e);
    abcd = _mm_add_epi32(abcd, rounds.abcd);
  }
  _mm_storeu_si128(static_cast<__m128i*>(static_cast<void*>(state)), _mm_shuffle_epi32(abcd, 0x1B));
  state[4] = static_cast<std::uint32_t>(_mm_extract_epi32(e, 3));
}

}  // namespace

void transformByInstructions(std::uint32_t (&state)[5], const std::uint8_t* blocks,
                             std::size_t blockCount, bool rotate) noexcept {
  if (rotate) {
    transform<true>(state, blocks, blockCount);
  } else {
    transform<false>(state, blocks, blockCount);
  }
}

bool haveShaInstructions() noexcept {
  constexpr unsigned kSsse3 = 1u << 9;
  constexpr unsigned kSse41 = 1u << 19;
  constexpr unsigned kSha = 1u << 29;
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0) return false;
  if ((c & kSsse3) == 0 || (c & kSse41) == 0) return false;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & kSha) != 0;
}

}  // namespace ulm::bignum::detail
