// What a kernel does on whole values where it has a method of its own. An entry returns false, with
// nothing changed, for operands that it has none for, and its caller then loops over the public
// operations: so the plain kernel does always. Results are those of the loops, but for the
// capacity, which holds them and is never lowered where a result is assigned. Operands are in
// normal form. The one exception is std::bad_alloc, and what it leaves is what the public
// operations promise.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bignum/integer.h"

namespace ulm::bignum::kernel {
inline namespace ULM_BIGNUM_KERNEL {

// ModPow for an exponent of 2 bits or more and a modulus that is not zero.
bool modPow(const QLInteger& base, const QLInteger& exponent, const QLInteger& modulus,
            QLInteger& result);

// Leaves in r the last remainder of r and t that is not zero. Neither is zero; t is worked on.
bool reduceToDivisor(QLInteger& r, QLInteger& t);

// ExtendedGcd for a b that is not zero.
bool extendedGcd(const QLInteger& a, const QLInteger& b, QLInteger& g, QLInteger& x, QLInteger& y);

// Whether n passes so many Fermat and strong rounds, at most 18 each, in `passed`.
bool passesRounds(const QLInteger& n, std::uint32_t fermatRounds, std::uint32_t rabinRounds,
                  bool& passed);

// Raises an odd value of 3 or more to the first odd one that passes 5 Fermat and 3 strong rounds.
bool raiseToPrime(QLInteger& value);

// The value of the digits among the characters of [first, last), not negative.
bool readDigits(QLInteger& value, const char* first, const char* last, std::int32_t radix);

// Writes the digits of the magnitude, which is not zero, without a terminator, the highest first.
// Gives their number in `length`; where that is above `room` nothing is written.
bool writeDigits(const QLInteger& value, std::uint32_t radix, char* buffer, std::size_t room,
                 std::size_t& length);

}  // namespace ULM_BIGNUM_KERNEL
}  // namespace ulm::bignum::kernel
