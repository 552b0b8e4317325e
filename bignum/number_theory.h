// Powers, common divisors, roots and probable primes. There is no random source, so every result is
// deterministic. std::bad_alloc is the only exception. No operation takes the same time for all
// values: they are not for secrets whose use others can time.
//
// The capacity of a result is a multiple of 32 words that holds it, and depends on the kernel;
// where a result is assigned it is at least what the destination had. The costs are those of the
// plain kernel. The wide kernel gives the same values at a lower cost.
#pragma once

#include <cstdint>

#include "bignum/integer.h"

namespace ulm::bignum {

// Returns base to the power of the exponent's magnitude, by squaring from the exponent's top bit
// down. A base of zero gives 0, even to the power 0; any other base to the power 0 gives 1.
QLInteger Pow(const QLInteger& base, const QLInteger& exponent);

// Writes base to the power of the exponent's magnitude, modulo the modulus, to result. Each product
// is reduced by Remainder, which has the sign of its dividend: a negative base can give a negative
// result.
//   exponent  0 gives 1 for every modulus; 1 gives the Remainder of the base
//   modulus   0 gives the base for an exponent of 1, and 0 for any larger exponent
//   result    an object of its own; may be an empty holder
// It takes BitLength(exponent) - 1 squarings, and one product for each further bit that is set.
void ModPow(const QLInteger& base, const QLInteger& exponent, const QLInteger& modulus,
            QLInteger& result);

// Writes the greatest common divisor to result and returns true. Its sign is what the truncating
// remainders leave: -2 for -6 and 4. Returns false, with result unchanged, if a or b is zero.
// result may be a but not b.
bool Gcd(const QLInteger& a, const QLInteger& b, QLInteger& result);

// Returns true if the last remainder that is not zero is exactly +1: false for 3 and -4, true for
// -3 and 4. Returns false if a or b is zero.
bool AreCoprime(const QLInteger& a, const QLInteger& b);

// Writes g, x and y with a * x + b * y = g; returns true. Euclid's loop stops at the first
// remainder that is zero or negative. So g is the greatest common divisor if a is not negative and
// b is positive. If b is zero or negative, g is a itself, x is 1 and y is 0. x and y can be
// negative. g, x and y are three objects; each may be an empty holder.
bool ExtendedGcd(const QLInteger& a, const QLInteger& b, QLInteger& g, QLInteger& x, QLInteger& y);

// Returns the square root, rounded down; 0 for a negative x.
QLInteger IntegerSqrt(const QLInteger& x);

// Returns whether n passes Fermat's test to this base: base to the power n - 1 is 1 modulo n. Below
// 4 the answer is exact: true for 2 and 3 only.
bool FermatTest(const QLInteger& n, const QLInteger& base);

// Returns whether n passes the strong probable-prime test of Rabin and Miller to this base. Below 4
// the answer is exact; an even n from 4 up gives false. So does a base for which Gcd of n and base
// is not +1, above all a base of 0 and one that shares a factor with n.
bool RabinMillerTest(const QLInteger& n, const QLInteger& base);

// Returns whether n passes Fermat's test to the first fermatRounds bases of PrimeWitnesses and then
// the strong test to the first rabinRounds; each count is at most 18, and a larger one is as 18. A
// prime that is itself a base is accepted in its Fermat round, but the strong test to it fails:
// with fewer Fermat rounds than strong ones a prime of 53 or less can be refused. With both counts
// 0 the answer is true.
bool IsProbablePrime(const QLInteger& n, std::uint32_t fermatRounds, std::uint32_t rabinRounds);

// Writes the smallest value from a up that passes 5 Fermat rounds and 3 strong rounds to result; 2
// gives 3, and anything below 2 gives 2. result may be a. The search has no bound.
void NextPrime(const QLInteger& a, QLInteger& result);

}  // namespace ulm::bignum
