// What a kernel of word arithmetic does: all that takes time in the big integers, on bare arrays,
// least significant word first. A kernel allocates nothing, knows no sign and decides no storage:
// the operations of QLInteger give it room by rules of their own, so that each kernel leaves the
// same values, counts and capacities. ULM_BIGNUM_KERNEL names the one that is built; the names of
// each lie in a namespace of its own, so that two can be linked side by side and compared.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bignum/words.h"

namespace ulm::bignum::kernel {
inline namespace ULM_BIGNUM_KERNEL {

// The routines of bignum/words.h by these names, with the same contracts.
Word add(Word* dst, const Word* src, std::uint32_t n) noexcept;
Word subtract(Word* dst, const Word* src, std::uint32_t n) noexcept;
Word addWord(Word* dst, Word v, std::uint32_t n) noexcept;
Word subtractWord(Word* dst, Word v, std::uint32_t n) noexcept;
void rippleAdd(Word* dst, Word v) noexcept;
void multiplyAdd(Word* dst, const Word* src, Word m, std::uint32_t n) noexcept;
void shiftLeft(Word* words, std::uint32_t n, std::uint32_t s) noexcept;
void shiftRight(Word* words, std::uint32_t n, std::uint32_t s) noexcept;
int compare(const Word* a, const Word* b, std::uint32_t n) noexcept;

// Words of scratch space that `multiply` wants for operands of these lengths.
std::size_t multiplyScratch(std::uint32_t aCount, std::uint32_t bCount) noexcept;

// product = a * b. product: aCount + bCount words, zeroed by the caller, apart from both operands.
// a and b: 1 word or more each, and may be the same array. scratch: multiplyScratch words.
void multiply(Word* product, const Word* a, std::uint32_t aCount, const Word* b,
              std::uint32_t bCount, Word* scratch) noexcept;

// Words of scratch space that `divide` wants for operands of these lengths.
std::size_t divideScratch(std::uint32_t aCount, std::uint32_t bCount) noexcept;

// The quotient and remainder of a by b, where a > b > 0 and neither has a zero top word.
//   quotient   receives ((aBits - bBits) + 32) >> 5 words, zeroed by the caller; null where only
//   the
//              remainder is asked for
//   remainder  holds a, aCount words; receives the remainder with zero words above it. There is
//   room
//              for 2 words more where a has 32 bits or more above b: the words hold what they like
//   divisor    b, bCount words, unchanged; apart from the other arrays
//   scratch    divideScratch words
void divide(Word* quotient, Word* remainder, std::uint32_t aCount, const Word* divisor,
            std::uint32_t bCount, Word* scratch) noexcept;

}  // namespace ULM_BIGNUM_KERNEL
}  // namespace ulm::bignum::kernel
