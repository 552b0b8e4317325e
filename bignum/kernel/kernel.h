// The interface of a kernel: the word arithmetic in which the big integers spend their time.
//
// A kernel works on bare arrays, least significant word first. It allocates nothing, knows no sign
// and decides nothing about storage: the operations of QLInteger provide all room by their own
// rules, so that values, counts and capacities are the same with each kernel.
//
// The build chooses one kernel by ULM_BIGNUM_KERNEL. The names of each kernel are in a namespace of
// its own, so that a program can link two of them and compare their results.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bignum/words.h"

namespace ulm::bignum::kernel {
inline namespace ULM_BIGNUM_KERNEL {

// The routines of bignum/words.h with these names, and with the same contracts.
Word add(Word* dst, const Word* src, std::uint32_t n) noexcept;
Word subtract(Word* dst, const Word* src, std::uint32_t n) noexcept;
Word addWord(Word* dst, Word v, std::uint32_t n) noexcept;
Word subtractWord(Word* dst, Word v, std::uint32_t n) noexcept;
void rippleAdd(Word* dst, Word v) noexcept;
void multiplyAdd(Word* dst, const Word* src, Word m, std::uint32_t n) noexcept;
void shiftLeft(Word* words, std::uint32_t n, std::uint32_t s) noexcept;
void shiftRight(Word* words, std::uint32_t n, std::uint32_t s) noexcept;
int compare(const Word* a, const Word* b, std::uint32_t n) noexcept;

// Returns the words of scratch space that multiply needs for operands of these lengths.
std::size_t multiplyScratch(std::uint32_t aCount, std::uint32_t bCount) noexcept;

// product = a * b.
//   product  aCount + bCount words, zeroed by the caller; overlaps neither operand
//   a, b     at least 1 word each; may be the same array
//   scratch  multiplyScratch words; may be null if that is 0
void multiply(Word* product, const Word* a, std::uint32_t aCount, const Word* b,
              std::uint32_t bCount, Word* scratch) noexcept;

// Returns the words of scratch space that divide needs for operands of these lengths.
std::size_t divideScratch(std::uint32_t aCount, std::uint32_t bCount) noexcept;

// Divides a by b, where a > b > 0 and neither has a zero word at its top.
//   quotient   receives ((aBits - bBits) + 32) >> 5 words, zeroed by the caller; null if only the
//              remainder is asked for
//   remainder  holds a in aCount words and receives the remainder, with zero words above it. If a
//              is at least 32 bits longer than b, there is room for 2 more words of any content
//   divisor    b in bCount words, which do not change; overlaps no other array
//   scratch    divideScratch words; may be null if that is 0
void divide(Word* quotient, Word* remainder, std::uint32_t aCount, const Word* divisor,
            std::uint32_t bCount, Word* scratch) noexcept;

}  // namespace ULM_BIGNUM_KERNEL
}  // namespace ulm::bignum::kernel
