// The routines on words, two at a time.
#include <algorithm>

#include "bignum/kernel/kernel.h"
#include "bignum/kernel/wide/limbs.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// The words of n that are done as limbs.
std::uint32_t pairedWords(std::uint32_t n) noexcept { return n / 2 * 2; }

}  // namespace

Word add(Word* dst, const Word* src, std::uint32_t n) noexcept {
  const std::uint32_t paired = pairedWords(n);
  std::uint64_t carry = addLimbs(limbsAt(dst), limbsAt(dst), limbsAt(src), paired / 2);
  for (std::uint32_t i = paired; i < n; ++i) {
    carry += std::uint64_t{dst[i]} + src[i];
    dst[i] = static_cast<Word>(carry);
    carry >>= kWordBits;
  }
  return static_cast<Word>(carry);
}

Word subtract(Word* dst, const Word* src, std::uint32_t n) noexcept {
  const std::uint32_t paired = pairedWords(n);
  std::uint64_t borrow = subLimbs(limbsAt(dst), limbsAt(dst), limbsAt(src), paired / 2);
  for (std::uint32_t i = paired; i < n; ++i) {
    const std::uint64_t difference = std::uint64_t{dst[i]} - src[i] - borrow;
    dst[i] = static_cast<Word>(difference);
    borrow = (difference >> kWordBits) & 1;
  }
  return static_cast<Word>(borrow);
}

Word addWord(Word* dst, Word v, std::uint32_t n) noexcept {
  for (std::uint32_t i = 0; i < n && v != 0; ++i) {
    dst[i] += v;  // wraps when there is a carry
    v = dst[i] < v ? 1 : 0;
  }
  return v;
}

Word subtractWord(Word* dst, Word v, std::uint32_t n) noexcept {
  for (std::uint32_t i = 0; i < n && v != 0; ++i) {
    const Word before = dst[i];
    dst[i] -= v;  // wraps when there is a borrow
    v = before < v ? 1 : 0;
  }
  return v;
}

void rippleAdd(Word* dst, Word v) noexcept {
  for (; v != 0; ++dst) {
    *dst += v;  // wraps when there is a carry
    v = *dst < v ? 1 : 0;
  }
}

void multiplyAdd(Word* dst, const Word* src, Word m, std::uint32_t n) noexcept {
  const std::uint32_t paired = pairedWords(n);
  std::uint64_t carry = paired == 0 ? 0 : addMulLimb(limbsAt(dst), limbsAt(src), paired / 2, m);
  for (std::uint32_t i = paired; i < n; ++i) {
    carry += std::uint64_t{src[i]} * m + dst[i];
    dst[i] = static_cast<Word>(carry);
    carry >>= kWordBits;
  }
  rippleAdd(dst + n, static_cast<Word>(carry));
}

void shiftLeft(Word* words, std::uint32_t n, std::uint32_t s) noexcept {
  if (s == 0 || n == 0) return;
  const std::uint32_t paired = pairedWords(n);
  auto fromBelow =
      paired == 0
          ? Word{0}
          : static_cast<Word>(shiftLimbsLeft(limbsAt(words), limbsAt(words), paired / 2, s));
  for (std::uint32_t i = paired; i < n; ++i) {
    const Word word = words[i];
    words[i] = (word << s) | fromBelow;
    fromBelow = word >> (kWordBits - s);
  }
}

void shiftRight(Word* words, std::uint32_t n, std::uint32_t s) noexcept {
  if (s == 0) return;
  const std::uint32_t paired = pairedWords(n);
  Word fromAbove = 0;
  for (std::uint32_t i = n; i-- > paired;) {
    const Word word = words[i];
    words[i] = (word >> s) | fromAbove;
    fromAbove = word << (kWordBits - s);
  }
  if (paired == 0) return;
  shiftLimbsRight(limbsAt(words), limbsAt(words), paired / 2, s);
  words[paired - 1] |= fromAbove;
}

int compare(const Word* a, const Word* b, std::uint32_t n) noexcept {
  for (std::uint32_t i = n; i-- > 0;) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return 0;
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
