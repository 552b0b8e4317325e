// The interface of a kernel: the word arithmetic in which the big integers spend their time.
//
// A kernel works on bare arrays, least significant word first. It knows no sign and decides nothing
// about the storage of values: the operations of QLInteger provide all room by their own rules, so
// that values, counts and capacities are the same with each kernel. What it allocates is its own
// working space.
//
// The build chooses one kernel by ULM_BIGNUM_KERNEL. The names of each kernel are in a namespace of
// its own, so that a program can link two of them and compare their results.
#pragma once

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

// product = a * b. Throws std::bad_alloc before anything is written.
//   product  receives aCount + bCount words; overlaps neither operand
//   a, b     at least 1 word each; may be the same array
void multiply(Word* product, const Word* a, std::uint32_t aCount, const Word* b,
              std::uint32_t bCount);

// Divides a by b, where a > b > 0 and neither has a zero word at its top. Throws std::bad_alloc
// before anything is written.
//   quotient   receives ((aBits - bBits) + 32) >> 5 words; null if only the remainder is asked for
//   remainder  receives bCount words. Has room for aCount words, and for 2 more if a is at least 32
//              bits longer than b; what is above the remainder then has no meaning
//   dividend   a in aCount words; may be the array of the remainder
//   divisor    b in bCount words; overlaps no array that is written
void divide(Word* quotient, Word* remainder, const Word* dividend, std::uint32_t aCount,
            const Word* divisor, std::uint32_t bCount);

// Whether an operation may write a result to the storage of its destination, where that has the
// size that fresh storage would have. This saves an allocation; only the address of the words shows
// it.
#ifdef ULM_KERNEL_REUSES_STORAGE
inline constexpr bool kReusesStorage = true;
#else
inline constexpr bool kReusesStorage = false;
#endif

}  // namespace ULM_BIGNUM_KERNEL
}  // namespace ulm::bignum::kernel
