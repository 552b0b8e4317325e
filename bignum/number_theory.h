// Powers, common divisors, roots and probable primes over QLInteger. Every result is deterministic:
// there is no random source. Results are normalised as everywhere; their capacity is a multiple of
// 32 words that holds them, and where a result is assigned it is not below what the destination
// had. Working values are local, and std::bad_alloc is the one exception. The work that entries
// tell is that of the plain kernel; the wide one gives the same results with less.
#pragma once

#include <cstdint>

#include "bignum/integer.h"

namespace ulm::bignum {

// base to the power of the exponent's magnitude, by squaring from the exponent's top bit down. A
// base of zero gives 0, even to the power 0; any other base to the power 0 gives 1.
QLInteger Pow(const QLInteger& base, const QLInteger& exponent);

// base to the power of the exponent's magnitude, with a Remainder by the modulus after each
// product: it has the sign of the dividend, so a negative base can give a negative result. An
// exponent of 0 gives 1, whatever the modulus; an exponent of 1 gives the Remainder of the base. A
// modulus of 0 gives the base for an exponent of 1 and 0 for any above. result is an object of its
// own and may be an empty holder. BitLength(exponent) - 1 squarings and a product for each further
// bit that is set.
void ModPow(const QLInteger& base, const QLInteger& exponent, const QLInteger& modulus,
            QLInteger& result);

// The greatest common divisor by remainders, with the sign that these leave: -2 for -6 and 4.
// False, and result untouched, when a or b is zero. result may be a but not b.
bool Gcd(const QLInteger& a, const QLInteger& b, QLInteger& result);

// True when the last remainder that is not zero is exactly +1: false for 3 and -4, true for -3 and
// 4. False when a or b is zero.
bool AreCoprime(const QLInteger& a, const QLInteger& b);

// g, x and y with a * x + b * y = g, each a distinct object. Euclid's loop stops at the first
// remainder that is zero or negative: for a of zero or more and positive b, g is the greatest
// common divisor; for b of zero or below it is a itself, with x = 1 and y = 0. x and y can be
// negative. Always true.
bool ExtendedGcd(const QLInteger& a, const QLInteger& b, QLInteger& g, QLInteger& x, QLInteger& y);

// The floor of the square root, by Newton's iteration from above; 0 for a negative x.
QLInteger IntegerSqrt(const QLInteger& x);

// Whether n passes Fermat's test to this base: false below 2, true for 2 and 3.
bool FermatTest(const QLInteger& n, const QLInteger& base);

// The strong probable-prime test of Rabin and Miller to one base: false below 2 and for even n, 2
// excepted; true for 2 and 3. A base that shares a factor with n, or is zero, rejects it.
bool RabinMillerTest(const QLInteger& n, const QLInteger& base);

// Fermat's test, then the strong test, each to the first bases of PrimeWitnesses, at most all 18. A
// prime that is itself a base is told as prime at its turn among the Fermat rounds, while the
// strong test rejects it: with few Fermat rounds and more of the others a small prime can be
// refused. With both counts 0 the answer is true.
bool IsProbablePrime(const QLInteger& n, std::uint32_t fermatRounds, std::uint32_t rabinRounds);

// The smallest value at or above a that passes 5 Fermat and 3 strong rounds, and 3 for 2. result
// may be a. The search has no bound.
void NextPrime(const QLInteger& a, QLInteger& result);

}  // namespace ulm::bignum
