#include "bignum/number_theory.h"

#include <algorithm>

#include "bignum/constants.h"
#include "bignum/kernel/methods.h"

namespace ulm::bignum {
namespace {

// Euclid's loop: leaves the last non-zero remainder in r. Neither operand is zero.
void reduceToDivisor(QLInteger& r, QLInteger& t) {
  if (kernel::reduceToDivisor(r, t)) return;
  while (t.IsNonZero()) {
    Remainder(r, t, r);
    r.Swap(t);
  }
}

// next = previous - quotient * current: one step of the sequences that Euclid's loop extends.
void nextOfSequence(QLInteger& next, const QLInteger& previous, const QLInteger& quotient,
                    const QLInteger& current) {
  next.Assign(previous);
  next -= quotient * current;
}

// (previous, current) becomes (current, next). next receives the storage that is no longer used.
void advance(QLInteger& previous, QLInteger& current, QLInteger& next) noexcept {
  previous.Swap(current);
  current.Swap(next);
}

// Whether base to the power n - 1 is 1 modulo n. n is 4 or more.
bool fermatHolds(const QLInteger& n, const QLInteger& base) {
  QLInteger power(kEmptyHolder);
  ModPow(base, n - 1, n, power);
  return power == 1;
}

enum class Verdict { Prime, Composite, Open };

// Runs the Fermat rounds to the first bases of the table. A value that equals a base is prime in
// the round of that base; until then 2 and 3 pass each round. Open means that all rounds passed.
Verdict fermatRoundsOf(const QLInteger& n, std::uint32_t rounds) {
  for (std::uint32_t i = 0; i < rounds; ++i) {
    const QLInteger& base = PrimeWitnesses[i];
    if (n == base) return Verdict::Prime;
    if (n < 4) {
      if (n == 2 || n == 3) continue;
      return Verdict::Composite;
    }
    if (!fermatHolds(n, base)) return Verdict::Composite;
  }
  return Verdict::Open;
}

bool passesRabinRounds(const QLInteger& n, std::uint32_t rounds) {
  return std::all_of(PrimeWitnesses, PrimeWitnesses + rounds,
                     [&n](const QLInteger& base) { return RabinMillerTest(n, base); });
}

bool passes(const QLInteger& n, std::uint32_t fermatRounds, std::uint32_t rabinRounds) {
  bool passed = false;
  if (kernel::passesRounds(n, fermatRounds, rabinRounds, passed)) return passed;
  const Verdict verdict = fermatRoundsOf(n, fermatRounds);
  return verdict == Verdict::Prime ||
         (verdict == Verdict::Open && passesRabinRounds(n, rabinRounds));
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
    // Without a modulus the powers would grow without a bound.
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

bool FermatTest(const QLInteger& n, const QLInteger& base) {
  if (n < 4) return n == 2 || n == 3;
  return fermatHolds(n, base);
}

bool RabinMillerTest(const QLInteger& n, const QLInteger& base) {
  if (n < 4) return n == 2 || n == 3;
  if (n.IsEven()) return false;
  QLInteger divisor(kEmptyHolder);
  if (!Gcd(n, base, divisor) || !(divisor == 1)) return false;

  const QLInteger minusOne = n - 1;
  std::uint32_t s = 0;
  while (!minusOne.TestBit(s)) ++s;
  QLInteger x(kEmptyHolder);
  ModPow(base, minusOne >> s, n, x);
  if (x == 1 || x == minusOne) return true;
  for (std::uint32_t i = 1; i < s; ++i) {
    x *= x;
    Remainder(x, n, x);
    if (x == minusOne) return true;
    if (x == 1) return false;
  }
  return false;
}

bool IsProbablePrime(const QLInteger& n, std::uint32_t fermatRounds, std::uint32_t rabinRounds) {
  return passes(n, std::min(fermatRounds, kPrimeWitnessCount),
                std::min(rabinRounds, kPrimeWitnessCount));
}

void NextPrime(const QLInteger& a, QLInteger& result) {
  if (a < 2) {
    result.Assign(2);
    return;
  }
  result.Assign(a);
  if (result.IsEven()) result += 1;
  if (kernel::raiseToPrime(result)) return;
  while (!passes(result, 5, 3)) result += 2;
}

}  // namespace ulm::bignum
