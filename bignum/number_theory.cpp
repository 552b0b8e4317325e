// Powers, common divisors and the square root.
#include "bignum/number_theory.h"

#include "bignum/kernel/methods.h"

namespace ulm::bignum {
namespace {

// Euclid's loop: leaves in r the last remainder of r and t that is not zero. Neither is zero.
void reduceToDivisor(QLInteger& r, QLInteger& t) {
  if (kernel::reduceToDivisor(r, t)) return;
  while (t.IsNonZero()) {
    Remainder(r, t, r);
    r.Swap(t);
  }
}

// previous - quotient * current, in `next`.
void nextOfSequence(QLInteger& next, const QLInteger& previous, const QLInteger& quotient,
                    const QLInteger& current) {
  next.Assign(previous);
  next -= quotient * current;
}

// (previous, current) become (current, next); next gets the words that fall out.
void advance(QLInteger& previous, QLInteger& current, QLInteger& next) noexcept {
  previous.Swap(current);
  current.Swap(next);
}

}  // namespace

QLInteger Pow(const QLInteger& base, const QLInteger& exponent) {
  if (!base.IsNonZero()) return QLInteger(0);
  if (!exponent.IsNonZero()) return QLInteger(1);
  QLInteger result(base);
  for (std::uint32_t i = exponent.BitLength() - 1; i-- > 0;) {
    result *= result;
    if (exponent.TestBit(i)) result *= base;
  }
  return result;
}

void ModPow(const QLInteger& base, const QLInteger& exponent, const QLInteger& modulus,
            QLInteger& result) {
  result.Assign(1);
  if (!exponent.IsNonZero()) return;
  const std::uint32_t exponentBits = exponent.BitLength();
  if (exponentBits > 1 && !modulus.IsNonZero()) {
    // Without a modulus nothing would bound the powers.
    result.Assign(0);
    return;
  }
  if (exponentBits > 1 && kernel::modPow(base, exponent, modulus, result)) return;
  QLInteger power(base);
  if (!exponent.IsEven()) result.Assign(base);
  if (exponentBits == 1) Remainder(result, modulus, result);
  for (std::uint32_t i = 1; i < exponentBits; ++i) {
    power *= power;
    Remainder(power, modulus, power);
    if (exponent.TestBit(i)) {
      result *= power;
      Remainder(result, modulus, result);
    }
  }
}

bool Gcd(const QLInteger& a, const QLInteger& b, QLInteger& result) {
  if (!a.IsNonZero() || !b.IsNonZero()) return false;
  QLInteger t(b);
  result.Assign(a);
  reduceToDivisor(result, t);
  return true;
}

bool AreCoprime(const QLInteger& a, const QLInteger& b) {
  if (!a.IsNonZero() || !b.IsNonZero()) return false;
  QLInteger r(a);
  QLInteger t(b);
  reduceToDivisor(r, t);
  return r == 1;
}

bool ExtendedGcd(const QLInteger& a, const QLInteger& b, QLInteger& g, QLInteger& x, QLInteger& y) {
  if (!b.IsNonZero()) {
    g.Assign(a);
    x.Assign(1);
    y.Assign(0);
    return true;
  }
  if (kernel::extendedGcd(a, b, g, x, y)) return true;
  QLInteger r0(a);
  QLInteger r1(b);
  QLInteger x0(1);
  QLInteger x1(0);
  QLInteger y0(0);
  QLInteger y1(1);
  QLInteger quotient(kEmptyHolder);
  QLInteger r(kEmptyHolder);
  while (r1.IsPositive()) {
    Divide(r0, r1, quotient, r);
    nextOfSequence(r, r0, quotient, r1);
    nextOfSequence(x, x0, quotient, x1);
    nextOfSequence(y, y0, quotient, y1);
    advance(r0, r1, r);
    advance(x0, x1, x);
    advance(y0, y1, y);
  }
  g.Swap(r0);
  x.Swap(x0);
  y.Swap(y0);
  return true;
}

QLInteger IntegerSqrt(const QLInteger& x) {
  if (!x.IsPositive()) return QLInteger(0);
  QLInteger guess = PowerOfTwo(static_cast<std::uint32_t>((std::uint64_t{x.BitLength()} + 1) >> 1));
  QLInteger previous(kEmptyHolder);
  do {
    previous.Assign(guess);
    QLInteger next = x / previous;
    next += previous;
    guess.Assign(next >> 1);
  } while (guess < previous);
  return previous;
}

}  // namespace ulm::bignum
