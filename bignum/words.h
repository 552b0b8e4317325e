// Routines on bare arrays of words: magnitudes without a sign, least significant word first.
//
// Lengths are in words unless a comment says otherwise. No routine checks a bound: the caller
// guarantees the room that a comment names. An array may be null only where its length is 0. Only
// AllocateWords and ResizeWords allocate or throw.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ulm::bignum {

using Word = std::uint32_t;
constexpr std::uint32_t kWordBits = 32;

// dst += src, dst -= src, over n words. Return the carry or borrow out, 0 or 1. dst may be src.
Word AddWords(Word* dst, const Word* src, std::uint32_t n) noexcept;
Word SubtractWords(Word* dst, const Word* src, std::uint32_t n) noexcept;

// Add or subtract the word v at dst[0] and ripple over at most n words. Return the carry or borrow
// that is left after them: 0 or 1, or v itself if n is 0.
Word AddWord(Word* dst, Word v, std::uint32_t n) noexcept;
Word SubtractWord(Word* dst, Word v, std::uint32_t n) noexcept;

// Adds v at dst[0] and ripples until the carry is 0. There is no length: the caller guarantees the
// room.
void RippleAddWord(Word* dst, Word v) noexcept;

// dst += src * m, for n words of src. dst has at least one word more than n. A carry out of that
// word ripples further, so the caller guarantees room for it where it can arise. The arrays do not
// overlap.
void MultiplyAddWord(Word* dst, const Word* src, Word m, std::uint32_t n) noexcept;

// Shift n words by s bits, 0 to 31. Bits that leave the n words are lost.
void ShiftLeftBits(Word* words, std::uint32_t n, std::uint32_t s) noexcept;
void ShiftRightBits(Word* words, std::uint32_t n, std::uint32_t s) noexcept;
void ShiftRightOne(Word* words, std::uint32_t n) noexcept;

// Moves n words up by k words and zeroes the k low words. The array has room for n + k words.
void ShiftLeftWords(Word* words, std::uint32_t n, std::uint32_t k) noexcept;
// Moves n words down by k words and zeroes the top k of them; zeroes all n if k is n or more.
void ShiftRightWords(Word* words, std::uint32_t n, std::uint32_t k) noexcept;

// Returns -1, 0 or 1, comparing from the top word down; 0 for n = 0.
int CompareWords(const Word* a, const Word* b, std::uint32_t n) noexcept;
// Whether all n words are equal; true for n = 0.
bool EqualWords(const Word* a, const Word* b, std::uint32_t n) noexcept;

// Returns a zeroed array of exactly n words, to be freed by FreeWords; never null, also for n = 0.
// Throws std::bad_alloc.
Word* AllocateWords(std::uint32_t n);
// Returns a zeroed array of newCount words with the first min(newCount, oldCount) words of `old`,
// and frees `old`, which may be null if oldCount is 0. Throws std::bad_alloc and leaves `old` as it
// is.
Word* ResizeWords(Word* old, std::uint32_t newCount, std::uint32_t oldCount);
// Null is allowed.
void FreeWords(Word* words) noexcept;

// The index of the byte that holds bit i of a byte string, and the index of the bit in that byte.
constexpr std::uint32_t ByteOfBit(std::uint32_t i) noexcept { return i >> 3; }
constexpr std::uint32_t BitInByte(std::uint32_t i) noexcept { return i & 7; }
// Bit i of a byte string, which is long enough to hold it. Not null.
bool TestRawBit(const std::uint8_t* bytes, std::uint32_t i) noexcept;
void SetRawBit(std::uint8_t* bytes, std::uint32_t i, bool on) noexcept;
// The number of bytes that hold `bits` bits.
constexpr std::size_t bytesForBits(std::uint32_t bits) noexcept {
  return static_cast<std::size_t>(bits >> 3) + ((bits & 7) != 0 ? 1 : 0);
}
// Byte i of the byte string that the words form, low byte first.
constexpr std::uint8_t byteOfWords(const Word* words, std::size_t i) noexcept {
  return static_cast<std::uint8_t>(words[i / 4] >> (i % 4 * 8));
}

// The multiple of m at or below x, and the multiple at or above x, which must be below 2^32. m is
// not 0.
constexpr std::uint32_t RoundDownTo(std::uint32_t x, std::uint32_t m) noexcept { return x - x % m; }
constexpr std::uint32_t RoundUpTo(std::uint32_t x, std::uint32_t m) noexcept {
  return x % m == 0 ? x : x - x % m + m;
}

}  // namespace ulm::bignum
