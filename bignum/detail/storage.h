// What the sources of the library share: small magnitudes, checked sizes, words that clean up.
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

// The bits of a magnitude of n words, whose top word is not zero.
constexpr std::uint64_t bitLengthOf(const Word* words, std::uint32_t n) noexcept {
  return std::uint64_t{n - 1} * kWordBits +
         static_cast<std::uint64_t>(std::bit_width(words[n - 1]));
}

// The maximum number of words of a value. The index of a bit in the next word would need more than
// 32 bits.
inline constexpr std::uint32_t kMaxWords = 1u << 27;

// Returns wordCount, or throws std::bad_alloc if it is above kMaxWords. Every count that a value
// grows to passes through here.
inline std::uint32_t checkedCount(std::uint64_t wordCount) {
  if (wordCount > kMaxWords) throw std::bad_alloc();
  return static_cast<std::uint32_t>(wordCount);
}

// Returns an array of exactly n words without a value, to be freed by FreeWords; never null. Throws
// std::bad_alloc.
Word* allocateUnfilled(std::uint32_t n);

// Zeroes n words by stores that no compiler removes, although the words are freed next. words may
// be null if n is 0.
inline void wipeWords(Word* words, std::uint32_t n) noexcept {
  volatile Word* const wiped = words;
  for (std::uint32_t i = 0; i < n; ++i) wiped[i] = 0;
}

// Replaces n words by their bytes, low byte first, in the same storage, and returns these bytes. A
// machine that stores words in this order changes nothing. On any other machine the words have lost
// their values.
inline const std::uint8_t* bytesInPlace(Word* words, std::uint32_t n) noexcept {
  auto* const bytes = static_cast<std::uint8_t*>(static_cast<void*>(words));
  for (std::size_t i = 0; i < n; ++i) {
    const Word word = words[i];
    for (std::size_t k = 0; k < 4; ++k) bytes[4 * i + k] = byteOfWords(&word, k);
  }
  return bytes;
}

struct WordsDeleter {
  void operator()(Word* words) const noexcept { FreeWords(words); }
};
using WordsHolder = std::unique_ptr<Word, WordsDeleter>;

// Allocates n zeroed words as working space of a kernel; null for n = 0. They are not the storage
// of a value, so kMaxWords does not apply. Throws std::bad_alloc.
inline WordsHolder scratchWords(std::size_t n) {
  if (n > UINT32_MAX) throw std::bad_alloc();
  return WordsHolder(n == 0 ? nullptr : AllocateWords(static_cast<std::uint32_t>(n)));
}

}  // namespace ulm::bignum::detail
