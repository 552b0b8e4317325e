// Routines on bare arrays of words: magnitudes without a sign, least significant word first. They
// take raw arrays and lengths in words, allocate nothing unless they say so, and check no bound:
// the caller vouches for the room that each one names.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ulm::bignum {

using Word = std::uint32_t;
constexpr std::uint32_t kWordBits = 32;

// dst += src, dst -= src over n words; give the carry or borrow out, 0 or 1. dst may be src.
Word AddWords(Word* dst, const Word* src, std::uint32_t n) noexcept;
Word SubtractWords(Word* dst, const Word* src, std::uint32_t n) noexcept;

// Adds the word v at dst[0], or subtracts it, and ripples over at most n words. Gives what is left
// to carry or borrow above them: 0 or 1, or v itself where n is 0.
Word AddWord(Word* dst, Word v, std::uint32_t n) noexcept;
Word SubtractWord(Word* dst, Word v, std::uint32_t n) noexcept;

// Adds v at dst[0] and ripples until the carry dies, however far up that is.
void RippleAddWord(Word* dst, Word v) noexcept;

// dst += src * m, for n words of src. dst has at least one word more; a carry out of that one
// ripples on, so there must be room for it where it can arise. dst and src do not overlap.
void MultiplyAddWord(Word* dst, const Word* src, Word m, std::uint32_t n) noexcept;

// Shift n words by s bits, 0 to 31. Bits that leave the n words are lost.
void ShiftLeftBits(Word* words, std::uint32_t n, std::uint32_t s) noexcept;
void ShiftRightBits(Word* words, std::uint32_t n, std::uint32_t s) noexcept;
void ShiftRightOne(Word* words, std::uint32_t n) noexcept;

// Moves n words up by k places, into room for n + k words, and zeroes the k low words.
void ShiftLeftWords(Word* words, std::uint32_t n, std::uint32_t k) noexcept;
// Moves n words down by k places and zeroes the top k of them; all n where k is n or more.
void ShiftRightWords(Word* words, std::uint32_t n, std::uint32_t k) noexcept;

// -1, 0 or 1, from the top word down; 0 for n = 0.
int CompareWords(const Word* a, const Word* b, std::uint32_t n) noexcept;
bool EqualWords(const Word* a, const Word* b, std::uint32_t n) noexcept;

// A zero-filled array of exactly n words, to be freed by FreeWords. Throws std::bad_alloc.
Word* AllocateWords(std::uint32_t n);
// A zero-filled array of newCount words with the first min(newCount, oldCount) words of `old`,
// which is freed. Throws std::bad_alloc, and then `old` is untouched.
Word* ResizeWords(Word* old, std::uint32_t newCount, std::uint32_t oldCount);
// Null is allowed.
void FreeWords(Word* words) noexcept;

// The byte that holds bit i of a byte string, and the bit's place in it.
constexpr std::uint32_t ByteOfBit(std::uint32_t i) noexcept { return i >> 3; }
constexpr std::uint32_t BitInByte(std::uint32_t i) noexcept { return i & 7; }
// The bytes that hold `bits` bits.
constexpr std::size_t bytesForBits(std::uint32_t bits) noexcept {
  return static_cast<std::size_t>(bits >> 3) + ((bits & 7) != 0 ? 1 : 0);
}
// Byte i of the byte string that words are, the low byte first.
constexpr std::uint8_t byteOfWords(const Word* words, std::size_t i) noexcept {
  return static_cast<std::uint8_t>(words[i / 4] >> (i % 4 * 8));
}
bool TestRawBit(const std::uint8_t* bytes, std::uint32_t i) noexcept;
void SetRawBit(std::uint8_t* bytes, std::uint32_t i, bool on) noexcept;

// The multiple of m at or below x, and the one at or above x, which must be below 2^32; m is not 0.
constexpr std::uint32_t RoundDownTo(std::uint32_t x, std::uint32_t m) noexcept { return x - x % m; }
constexpr std::uint32_t RoundUpTo(std::uint32_t x, std::uint32_t m) noexcept {
  return x % m == 0 ? x : x - x % m + m;
}

}  // namespace ulm::bignum
