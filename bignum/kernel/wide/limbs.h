// Arithmetic on arrays of 64-bit limbs, least significant limb first: what the wide kernel is made
// of. Sizes are in limbs. No array may be empty unless an entry says so.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "bignum/words.h"

namespace ulm::bignum::kernel {
inline namespace wide {

// A limb by itself.
using Digit = std::uint64_t;
__extension__ using Double = unsigned __int128;

inline constexpr unsigned kLimbBits = 64;

// A limb in an array: two words, the low one first on every machine, so that an array of words can
// be used as one of limbs. It has the alignment of a word, and is read and written as bytes.
class Limb {
 public:
  Limb() = default;  // has no value yet
  explicit Limb(Digit value) noexcept { *this = value; }
  [[gnu::always_inline]] operator Digit() const noexcept {
    Digit value;
    std::memcpy(&value, words_, sizeof value);
    return lowWordFirst(value);
  }
  [[gnu::always_inline]] Limb& operator=(Digit value) noexcept {
    value = lowWordFirst(value);
    std::memcpy(words_, &value, sizeof value);
    return *this;
  }

 private:
  // Changes a limb to the machine's order of its halves or from it.
  static constexpr Digit lowWordFirst(Digit value) noexcept {
    return std::endian::native == std::endian::little ? value : std::rotl(value, kWordBits);
  }

  Word words_[2];
};
static_assert(sizeof(Limb) == sizeof(Digit) && alignof(Limb) == alignof(Word));

inline Limb* limbsAt(Word* words) noexcept { return static_cast<Limb*>(static_cast<void*>(words)); }
inline const Limb* limbsAt(const Word* words) noexcept {
  return static_cast<const Limb*>(static_cast<const void*>(words));
}

constexpr std::size_t limbsFor(std::size_t words) noexcept { return words / 2 + words % 2; }

inline void copyLimbs(Limb* dst, const Limb* src, std::size_t n) noexcept {
  if (n != 0) std::memmove(dst, src, n * sizeof(Limb));
}
inline void zeroLimbs(Limb* dst, std::size_t n) noexcept {
  if (n != 0) std::memset(static_cast<void*>(dst), 0, n * sizeof(Limb));
}

// limbsFor(count) limbs of `count` words. What follows the words is not read.
inline void limbsOfWords(Limb* limbs, const Word* words, std::size_t count) noexcept {
  if (count % 2 != 0) limbs[count / 2] = words[count - 1];
  copyLimbs(limbs, limbsAt(words), count / 2);
}

// `count` words of limbs, of which there are limbsFor(count) or more.
inline void wordsOfLimbs(Word* words, const Limb* limbs, std::size_t count) noexcept {
  std::memcpy(words, limbs, count * sizeof(Word));
}

// The number of limbs without zero limbs on top; 0 for zero. n may be 0.
inline std::size_t significant(const Limb* a, std::size_t n) noexcept {
  while (n != 0 && Digit{a[n - 1]} == 0) --n;
  return n;
}

// The order of two numbers of n limbs: -1, 0 or 1. n may be 0.
inline int compareLimbs(const Limb* a, const Limb* b, std::size_t n) noexcept {
  while (n-- > 0) {
    const Digit x = a[n], y = b[n];
    if (x != y) return x < y ? -1 : 1;
  }
  return 0;
}

// r = a + b, r = a - b; return the carry or borrow out. r may be a or b; n may be 0.
Digit addLimbs(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept;
Digit subLimbs(Limb* r, const Limb* a, const Limb* b, std::size_t n) noexcept;

// r += v, r -= v; return the carry or borrow out. n may be 0, and then they return v.
inline Digit addLimb(Limb* r, std::size_t n, Digit v) noexcept {
  for (std::size_t i = 0; i < n && v != 0; ++i) {
    const Digit sum = r[i] + v;
    v = sum < v ? 1 : 0;
    r[i] = sum;
  }
  return v;
}
inline Digit subLimb(Limb* r, std::size_t n, Digit v) noexcept {
  for (std::size_t i = 0; i < n && v != 0; ++i) {
    const Digit before = r[i];
    r[i] = before - v;
    v = before < v ? 1 : 0;
  }
  return v;
}

// r = a * b + carry, r += a * b, r -= a * b; return the limb above r. r may be a in the first.
Digit mulLimb(Limb* r, const Limb* a, std::size_t n, Digit b, Digit carry = 0) noexcept;
Digit addMulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept;
Digit subMulLimb(Limb* r, const Limb* a, std::size_t n, Digit b) noexcept;

// r = a << s, r = a >> s for s of 0 to 63; return the bits that leave, at the end of the limb where
// they would go on. r may be a; shifting left, r may also start above a, and below a otherwise.
Digit shiftLimbsLeft(Limb* r, const Limb* a, std::size_t n, unsigned s) noexcept;
Digit shiftLimbsRight(Limb* r, const Limb* a, std::size_t n, unsigned s) noexcept;

// r = a * b and r = a * a by the schoolbook. r: an + bn limbs, separate from both. an >= bn.
void mulRows(Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn) noexcept;
void sqrRows(Limb* r, const Limb* a, std::size_t n) noexcept;

// t / 2^(64 n) modulo m, in out, n limbs; below 2^(64 n) and congruent, but not always below m.
//   t        2 n limbs, destroyed
//   m        odd, n limbs
//   inverse  -1 / m modulo 2^64
// out may be the upper half of t.
void reduceRows(Limb* out, Limb* t, const Limb* m, std::size_t n, Digit inverse) noexcept;

// r = a * b / 2^(64 n) modulo m, in the terms of reduceRows, all of n limbs; r may be a or b.
// Returns false, with nothing written, where a product and its reduction by themselves are as fast.
bool mulReduced(Limb* r, const Limb* a, const Limb* b, const Limb* m, std::size_t n,
                Digit inverse) noexcept;

// r = a * b for n limbs each, and r = a * a. r: 2 n limbs, separate from the rest. scratch:
// productScratch(n) limbs.
std::size_t productScratch(std::size_t n) noexcept;
void mulEqual(Limb* r, const Limb* a, const Limb* b, std::size_t n, Limb* scratch) noexcept;
void square(Limb* r, const Limb* a, std::size_t n, Limb* scratch) noexcept;
// r = a * b. r: an + bn limbs; an >= bn. scratch: mulScratch(an, bn) limbs.
std::size_t mulScratch(std::size_t an, std::size_t bn) noexcept;
void mul(Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn,
         Limb* scratch) noexcept;

// The quotient and remainder of a by d.
//   q        receives an - dn limbs; returned is the limb above them, 0 or 1
//   a        an limbs, an >= dn; receives the remainder in its low dn limbs
//   d        dn limbs, the top bit set
//   scratch  divScratch(dn) limbs
std::size_t divScratch(std::size_t dn) noexcept;
Digit divLimbs(Limb* q, Limb* a, std::size_t an, const Limb* d, std::size_t dn,
               Limb* scratch) noexcept;

// floor((2^128 - 1) / d) - 2^64 for a d with its top bit set.
Digit reciprocal(Digit d) noexcept;
// The quotient of high:low by d, with its reciprocal; rest receives the remainder. high < d.
inline Digit divideDouble(Digit high, Digit low, Digit d, Digit inverse, Digit& rest) noexcept {
  const Double estimate = Double{high} * inverse + (Double{high} << kLimbBits | low);
  Digit q = static_cast<Digit>(estimate >> kLimbBits) + 1;
  Digit r = low - q * d;
  if (r > static_cast<Digit>(estimate)) {
    --q;
    r += d;
  }
  if (r >= d) {
    ++q;
    r -= d;
  }
  rest = r;
  return q;
}
// q = a / d; returns the remainder. d has its top bit set; q may be a. high: a limb above a, below
// d.
Digit divByLimb(Limb* q, const Limb* a, std::size_t n, Digit d, Digit inverse, Digit high) noexcept;

// -1 / m modulo 2^64 for an odd m.
constexpr Digit negativeInverse(Digit m) noexcept {
  Digit x = m * 3 ^ 2;  // right in 5 bits
  for (int i = 0; i < 4; ++i) x *= 2 - m * x;
  return 0 - x;
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
