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

// The most words of a value: one more would hold bits whose index is no 32-bit quantity.
inline constexpr std::uint32_t kMaxWords = 1u << 27;

// Returns wordCount, or throws std::bad_alloc above kMaxWords. Every count that a value is to grow
// to passes through here.
inline std::uint32_t checkedCount(std::uint64_t wordCount) {
  if (wordCount > kMaxWords) throw std::bad_alloc();
  return static_cast<std::uint32_t>(wordCount);
}

struct WordsDeleter {
  void operator()(Word* words) const noexcept { FreeWords(words); }
};
using WordsHolder = std::unique_ptr<Word, WordsDeleter>;

// Zeroes n words by stores that no compiler leaves out, although the words are freed next.
inline void wipeWords(Word* words, std::uint32_t n) noexcept {
  volatile Word* const wiped = words;
  for (std::uint32_t i = 0; i < n; ++i) wiped[i] = 0;
}

// Lays n words out as their bytes, low byte first, in their own storage, and returns these. On a
// machine that stores words so nothing changes; on another they are words no longer.
inline const std::uint8_t* bytesInPlace(Word* words, std::uint32_t n) noexcept {
  auto* const bytes = static_cast<std::uint8_t*>(static_cast<void*>(words));
  for (std::size_t i = 0; i < n; ++i) {
    const Word word = words[i];
    for (std::size_t k = 0; k < 4; ++k) bytes[4 * i + k] = byteOfWords(&word, k);
  }
  return bytes;
}

// Working words for a kernel; null where it needs none. They are no value's storage, so they may
// be more than kMaxWords.
inline WordsHolder scratchWords(std::size_t n) {
  if (n > UINT32_MAX) throw std::bad_alloc();
  return WordsHolder(n == 0 ? nullptr : AllocateWords(static_cast<std::uint32_t>(n)));
}

}  // namespace ulm::bignum::detail
