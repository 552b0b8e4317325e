// What the sources of the integer share: small magnitudes, checked sizes, scratch words.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "bignum/words.h"

namespace ulm::bignum::detail {

constexpr Word magnitudeOf(std::int32_t number) noexcept {
  const auto bits = static_cast<Word>(number);
  return number < 0 ? 0 - bits : bits;  // wraps to 2^31 for -2^31
}

// Bits of a magnitude of n words, whose top word is not zero.
constexpr std::uint64_t bitLengthOf(const Word* words, std::uint32_t n) noexcept {
  return std::uint64_t{n - 1} * kWordBits +
         static_cast<std::uint64_t>(std::bit_width(words[n - 1]));
}

// A number of words as the 32-bit quantity that counts are.
inline std::uint32_t checkedCount(std::uint64_t wordCount) {
  if (wordCount > UINT32_MAX) throw std::bad_alloc();
  return static_cast<std::uint32_t>(wordCount);
}

struct WordsDeleter {
  void operator()(Word* words) const noexcept { FreeWords(words); }
};
using WordsHolder = std::unique_ptr<Word, WordsDeleter>;

// Working words for a kernel; null where it wants none.
inline WordsHolder scratchWords(std::size_t n) {
  return WordsHolder(n == 0 ? nullptr : AllocateWords(checkedCount(n)));
}

}  // namespace ulm::bignum::detail
