// Probable primes.
#include <algorithm>

#include "bignum/constants.h"
#include "bignum/kernel/methods.h"
#include "bignum/number_theory.h"

namespace ulm::bignum {
namespace {

// Whether base to the power n - 1 is 1 modulo n; n is 4 or more.
bool fermatHolds(const QLInteger& n, const QLInteger& base) {
  QLInteger power(kEmptyHolder);
  ModPow(base, n - 1, n, power);
  return power == 1;
}

enum class Verdict { kPrime, kComposite, kOpen };

// The Fermat rounds to the first bases of the table. A value that equals a base is prime at its
// turn; 2 and 3 wait for theirs.
Verdict fermatRoundsOf(const QLInteger& n, std::uint32_t rounds) {
  for (std::uint32_t i = 0; i < rounds; ++i) {
    const QLInteger& base = PrimeWitnesses[i];
    if (n == base) return Verdict::kPrime;
    if (n < 4) {
      if (n == 2 || n == 3) continue;
      return Verdict::kComposite;
    }
    if (!fermatHolds(n, base)) return Verdict::kComposite;
  }
  return Verdict::kOpen;
}

bool passesRabinRounds(const QLInteger& n, std::uint32_t rounds) {
  return std::all_of(PrimeWitnesses, PrimeWitnesses + rounds,
                     [&n](const QLInteger& base) { return RabinMillerTest(n, base); });
}

bool passes(const QLInteger& n, std::uint32_t fermatRounds, std::uint32_t rabinRounds) {
  bool passed = false;
  if (kernel::passesRounds(n, fermatRounds, rabinRounds, passed)) return passed;
  const Verdict verdict = fermatRoundsOf(n, fermatRounds);
  return verdict == Verdict::kPrime ||
         (verdict == Verdict::kOpen && passesRabinRounds(n, rabinRounds));
}

}  // namespace

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
