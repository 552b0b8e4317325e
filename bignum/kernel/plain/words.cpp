// The plain kernel: schoolbook arithmetic, one step at a time. Every faster kernel has to equal it
// word for word, so it is written to be read, not to be fast.
#include "bignum/kernel/kernel.h"

namespace ulm::bignum::kernel {
inline namespace ULM_BIGNUM_KERNEL {

Word add(Word* dst, const Word* src, std::uint32_t n) noexcept {
  std::uint64_t carry = 0;
  for (std::uint32_t i = 0; i < n; ++i) {
    carry += std::uint64_t{dst[i]} + src[i];
    dst[i] = static_cast<Word>(carry);
    carry >>= kWordBits;
  }
  return static_cast<Word>(carry);
}

Word subtract(Word* dst, const Word* src, std::uint32_t n) noexcept {
  std::uint64_t borrow = 0;
  for (std::uint32_t i = 0; i < n; ++i) {
    // Wraps on purpose: below zero the high half is all ones, and its low bit is the borrow.
    const std::uint64_t difference = std::uint64_t{dst[i]} - src[i] - borrow;
    dst[i] = static_cast<Word>(difference);
    borrow = (difference >> kWordBits) & 1;
  }
  return static_cast<Word>(borrow);
}

Word addWord(Word* dst, Word v, std::uint32_t n) noexcept {
  for (std::uint32_t i = 0; i < n && v != 0; ++i) {
    dst[i] += v;  // wraps if there is a carry
    v = dst[i] < v ? 1 : 0;
  }
  return v;
}

Word subtractWord(Word* dst, Word v, std::uint32_t n) noexcept {
  for (std::uint32_t i = 0; i < n && v != 0; ++i) {
    const Word before = dst[i];
    dst[i] -= v;  // wraps if there is a borrow
    v = before < v ? 1 : 0;
  }
  return v;
}

void rippleAdd(Word* dst, Word v) noexcept {
  for (; v != 0; ++dst) {
    *dst += v;  // wraps if there is a carry
    v = *dst < v ? 1 : 0;
  }
}

void shiftLeft(Word* words, std::uint32_t n, std::uint32_t s) noexcept {
  if (s == 0) return;
  Word fromBelow = 0;
  for (std::uint32_t i = 0; i < n; ++i) {
    const Word word = words[i];
    words[i] = (word << s) | fromBelow;
    fromBelow = word >> (kWordBits - s);
  }
}

void shiftRight(Word* words, std::uint32_t n, std::uint32_t s) noexcept {
  if (s == 0) return;
  Word fromAbove = 0;
  for (std::uint32_t i = n; i-- > 0;) {
    const Word word = words[i];
    words[i] = (word >> s) | fromAbove;
    fromAbove = word << (kWordBits - s);
  }
}

int compare(const Word* a, const Word* b, std::uint32_t n) noexcept {
  for (std::uint32_t i = n; i-- > 0;) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return 0;
}

}  // namespace ULM_BIGNUM_KERNEL
}  // namespace ulm::bignum::kernel
