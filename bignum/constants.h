// Values that live from static initialisation to process exit. Nothing changes them.
#pragma once

#include <cstdint>

#include "bignum/integer.h"

namespace ulm::bignum {

extern const QLInteger Zero;
extern const QLInteger One;
extern const QLInteger Two;
extern const QLInteger MinusOne;
extern const QLInteger MinusTwo;

// The bases of the primality tests, in the order in which they are used. They are not all prime: 39
// and 49 belong here, and each test result depends on it.
inline constexpr std::uint32_t kPrimeWitnessCount = 18;
extern const QLInteger PrimeWitnesses[kPrimeWitnessCount];

}  // namespace ulm::bignum
