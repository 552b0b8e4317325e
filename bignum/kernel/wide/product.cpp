// Products of long numbers: Karatsuba's method above a size, rows below it.
#include <algorithm>

#include "bignum/kernel/wide/limbs.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// Limbs from which the method pays, measured with MULX.
constexpr std::size_t kKaratsuba = 28;
constexpr std::size_t kKaratsubaSquare = 44;

// r = |a - b| for n and m limbs, where m is n or n - 1. Returns whether a < b.
bool differenceOf(Limb* r, const Limb* a, std::size_t n, const Limb* b, std::size_t m) noexcept {
  const bool longer = m < n && a[n - 1] != 0;
  if (!longer && compareLimbs(a, b, m) < 0) {
    subLimbs(r, b, a, m);
    if (m < n) r[m] = 0;
    return true;
  }
  const Digit borrow = subLimbs(r, a, b, m);
  if (m < n) r[m] = a[m] - borrow;
  return false;
}

// Adds or subtracts the product of the differences, which is in scratch, to the two outer products,
// which are in r, as the middle part of the result.
void combine(Limb* r, std::size_t n, bool add, Limb* scratch) noexcept {
  const std::size_t low = n - n / 2, high = n / 2;
  const Limb* const differences = scratch;
  Limb* const middle = scratch + 2 * low;
  Digit carry = addLimbs(middle, r, r + 2 * low, 2 * high);
  if (high != low) {
    copyLimbs(middle + 2 * high, r + 2 * high, 2);
    carry = addLimb(middle + 2 * high, 2, carry);
  }
  if (add) {
    carry += addLimbs(middle, middle, differences, 2 * low);
  } else {
    carry -= subLimbs(middle, middle, differences, 2 * low);
  }
  carry += addLimbs(r + low, r + low, middle, 2 * low);
  // What is above the middle part has 2 high - low limbs, which the product fits.
  addLimb(r + 3 * low, 2 * high - low, carry);
}

}  // namespace

// Each level takes 4 low + 1 limbs at the most, or 2 low and what the next one takes.
std::size_t productScratch(std::size_t n) noexcept {
  return n < std::min(kKaratsuba, kKaratsubaSquare) ? 0 : 2 * n + 64;
}

// The depth of the recursion is the logarithm of n.
void mulEqual(Limb* r, const Limb* a, const Limb* b, std::size_t n, Limb* scratch) noexcept {
  if (n < kKaratsuba) {
    mulRows(r, a, n, b, n);
    return;
  }
  const std::size_t low = n - n / 2, high = n / 2;
  const bool aLess = differenceOf(r, a, low, a + low, high);
  const bool bLess = differenceOf(r + low, b, low, b + low, high);
  mulEqual(scratch, r, r + low, low, scratch + 2 * low);
  mulEqual(r, a, b, low, scratch + 2 * low);
  mulEqual(r + 2 * low, a + low, b + low, high, scratch + 2 * low);
  combine(r, n, aLess != bLess, scratch);
}

void square(Limb* r, const Limb* a, std::size_t n, Limb* scratch) noexcept {
  if (n < kKaratsubaSquare) {
    sqrRows(r, a, n);
    return;
  }
  const std::size_t low = n - n / 2, high = n / 2;
  differenceOf(r, a, low, a + low, high);
  square(scratch, r, low, scratch + 2 * low);
  square(r, a, low, scratch + 2 * low);
  square(r + 2 * low, a + low, high, scratch + 2 * low);
  combine(r, n, false, scratch);
}

// A piece's product takes 2 bn limbs. The last piece may be shorter than b and then be the shorter
// operand in turn; the lengths fall as the remainders of Euclid's algorithm do, and sum up to less
// than 4 bn.
std::size_t mulScratch(std::size_t an, std::size_t bn) noexcept {
  if (bn < kKaratsuba) return 0;
  return an == bn ? productScratch(bn) : 10 * bn + 64;
}

void mul(Limb* r, const Limb* a, std::size_t an, const Limb* b, std::size_t bn,
         Limb* scratch) noexcept {
  if (bn < kKaratsuba) {
    mulRows(r, a, an, b, bn);
    return;
  }
  mulEqual(r, a, b, bn, scratch);
  for (std::size_t done = bn; done < an;) {
    const std::size_t piece = std::min(bn, an - done);
    mul(scratch, b, bn, a + done, piece, scratch + 2 * bn);
    // The first bn limbs meet what is there; the others are new.
    copyLimbs(r + done + bn, scratch + bn, piece);
    const Digit carry = addLimbs(r + done, r + done, scratch, bn);
    addLimb(r + done + bn, piece, carry);
    done += piece;
  }
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
