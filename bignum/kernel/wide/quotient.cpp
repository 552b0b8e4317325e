// Division by limbs of the quotient: each is estimated from the top three limbs of what remains and
// the top two of the divisor, and is one too large at most. Long divisors are divided by halves.
#include <algorithm>

#include "bignum/kernel/wide/limbs.h"

namespace ulm::bignum::kernel {
inline namespace wide {
namespace {

// Limbs of divisor and quotient from which dividing by halves pays, measured with MULX.
constexpr std::size_t kHalves = 56;

// A divisor whose top bit is set, of two limbs or more.
struct Divisor {
  const Limb* limbs;
  std::size_t n;
  Digit inverse;  // floor((2^192 - 1) / top two limbs) - 2^64

  Digit top() const noexcept { return limbs[n - 1]; }
  Digit second() const noexcept { return limbs[n - 2]; }
  Divisor upper(std::size_t m) const noexcept { return {limbs + (n - m), m, inverse}; }
};

Digit reciprocalOfTwo(Digit d1, Digit d0) noexcept {
  Digit v = reciprocal(d1);
  Digit p = d1 * v + d0;
  if (p < d0) {
    --v;
    if (p >= d1) {
      --v;
      p -= d1;
    }
    p -= d1;
  }
  const Double product = Double{d0} * v;
  const auto high = static_cast<Digit>(product >> kLimbBits);
  p += high;
  if (p < high) {
    --v;
    if (p > d1 || (p == d1 && static_cast<Digit>(product) >= d0)) --v;
  }
  return v;
}

// The quotient of n2:n1:n0 by d1:d0, where n2:n1 is below d1:d0; n2:n1 receives the remainder.
Digit divideTriple(Digit& n2, Digit& n1, Digit n0, Digit d1, Digit d0, Digit inverse) noexcept {
  const Double estimate = Double{n2} * inverse + (Double{n2} << kLimbBits | n1);
  auto q = static_cast<Digit>(estimate >> kLimbBits);
  const Double d = Double{d1} << kLimbBits | d0;
  Double rest = (Double{n1 - d1 * q} << kLimbBits | n0) - d - Double{d0} * q;
  ++q;
  if (static_cast<Digit>(rest >> kLimbBits) >= static_cast<Digit>(estimate)) {
    --q;
    rest += d;
  }
  if (rest >= d) [[unlikely]] {
    ++q;
    rest -= d;
  }
  n2 = static_cast<Digit>(rest >> kLimbBits);
  n1 = static_cast<Digit>(rest);
  return q;
}

struct SubMulLong {
  Digit operator()(Limb* r, const Limb* a, std::size_t n, Digit b) const noexcept {
    return subMulLimb(r, a, n, b);
  }
};
// The same for so few limbs that a call takes longer.
template <unsigned Limbs>
struct SubMulShort {
  Digit operator()(Limb* r, const Limb* a, std::size_t, Digit b) const noexcept {
    Digit borrow = 0;
    for (unsigned i = 0; i < Limbs; ++i) {
      const Double product = Double{a[i]} * b + borrow;
      const Digit before = r[i], low = static_cast<Digit>(product);
      r[i] = before - low;
      borrow = static_cast<Digit>(product >> kLimbBits) + (before < low ? 1 : 0);
    }
    return borrow;
  }
};

// subMul is subMulLimb for the limbs of the divisor but for its upper two.
template <class SubMul>
Digit divideRowsBy(Limb* q, Limb* a, std::size_t an, const Divisor& d, SubMul subMul) noexcept {
  const std::size_t dn = d.n;
  const std::size_t lower = dn - 2;
  const Digit d1 = d.top(), d0 = d.second();
  Limb* at = a + (an - dn);  // what is divided next is dn limbs from here, and one below
  Digit above = 0;
  if (compareLimbs(at, d.limbs, dn) >= 0) {
    subLimbs(at, at, d.limbs, dn);
    above = 1;
  }
  // The remainder's top limb is kept here, not in the array.
  Digit n2 = at[dn - 1];
  for (std::size_t i = an - dn; i-- > 0;) {
    --at;
    Digit n1 = at[dn - 1];
    Digit digit;
    if (n2 == d1 && n1 == d0) [[unlikely]] {
      // The estimate would not fit a limb. This one is never too large.
      digit = ~Digit{0};
      subMulLimb(at, d.limbs, dn, digit);
      n2 = at[dn - 1];
    } else {
      digit = divideTriple(n2, n1, at[dn - 2], d1, d0, d.inverse);
      const Digit borrow = subMul(at, d.limbs, lower, digit);
      const Double rest = (Double{n2} << kLimbBits | n1) - borrow;
      const bool tooLarge = (Double{n2} << kLimbBits | n1) < borrow;
      n2 = static_cast<Digit>(rest >> kLimbBits);
      at[dn - 2] = static_cast<Digit>(rest);
      if (tooLarge) [[unlikely]] {
        n2 += d1 + addLimbs(at, at, d.limbs, dn - 1);
        --digit;
      }
    }
    q[i] = digit;
  }
  at[dn - 1] = n2;
  return above;
}

Digit divideRows(Limb* q, Limb* a, std::size_t an, const Divisor& d) noexcept {
  switch (d.n) {
    case 2:
      return divideRowsBy(q, a, an, d, SubMulShort<0>());
    case 3:
      return divideRowsBy(q, a, an, d, SubMulShort<1>());
    case 4:
      return divideRowsBy(q, a, an, d, SubMulShort<2>());
    default:
      return divideRowsBy(q, a, an, d, SubMulLong());
  }
}

// Takes q * (the divisor's low limbs) from a, whose upper limbs were divided by the others, and
// adds the divisor back while that was too much. q has k limbs and the limb `above`, which is
// returned as it is then.
Digit takeLowerPart(Limb* q, std::size_t k, Digit above, Limb* a, const Divisor& d,
                    Limb* scratch) noexcept {
  const std::size_t lower = d.n - k;
  Limb* const product = scratch;
  if (k >= lower) {
    mul(product, q, k, d.limbs, lower, scratch + d.n);
  } else {
    mul(product, d.limbs, lower, q, k, scratch + d.n);
  }
  Digit borrow = subLimbs(a, a, product, d.n);
  if (above != 0) borrow += subLimbs(a + k, a + k, d.limbs, lower);
  while (borrow != 0) {
    above -= subLimb(q, k, 1);
    borrow -= addLimbs(a, a, d.limbs, d.n);
  }
  return above;
}

// Divides 2 n limbs by n; the depth of the recursion is the logarithm of n.
Digit divideByHalves(Limb* q, Limb* a, const Divisor& d, Limb* scratch) noexcept {
  if (d.n < kHalves) return divideRows(q, a, 2 * d.n, d);
  const std::size_t low = d.n / 2, high = d.n - low;
  Digit above = divideByHalves(q + low, a + 2 * low, d.upper(high), scratch);
  above = takeLowerPart(q + low, high, above, a + low, d, scratch);
  const Digit carried = divideByHalves(q, a + high, d.upper(low), scratch);
  // The limb above the lower half comes from an estimate that was one too large, or is zero.
  takeLowerPart(q, low, carried, a, d, scratch);
  return above;
}

}  // namespace

std::size_t divScratch(std::size_t dn) noexcept {
  return dn < kHalves ? 0 : dn + mulScratch(dn, dn / 2 + 1);
}

Digit divLimbs(Limb* q, Limb* a, std::size_t an, const Limb* d, std::size_t dn,
               Limb* scratch) noexcept {
  const std::size_t qn = an - dn;
  if (dn == 1) {
    Digit top = a[qn];
    const Digit above = top >= d[0] ? 1 : 0;
    if (above != 0) top -= d[0];
    a[0] = divByLimb(q, a, qn, d[0], reciprocal(d[0]), top);
    return above;
  }
  const Divisor divisor{d, dn, reciprocalOfTwo(d[dn - 1], d[dn - 2])};
  if (dn < kHalves || qn < kHalves) return divideRows(q, a, an, divisor);

  // The top k limbs of the quotient first, so that the others are whole blocks of dn limbs.
  const std::size_t k = qn % dn == 0 ? dn : qn % dn;
  std::size_t left = qn - k;
  Digit above;
  if (k < kHalves) {
    above = divideRows(q + left, a + left, dn + k, divisor);
  } else {
    above = divideByHalves(q + left, a + left + (dn - k), divisor.upper(k), scratch);
    if (k != dn) above = takeLowerPart(q + left, k, above, a + left, divisor, scratch);
  }
  while (left != 0) {
    left -= dn;
    divideByHalves(q + left, a + left, divisor, scratch);
  }
  return above;
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
