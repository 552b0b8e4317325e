// Values that live from static initialisation to process exit. Nothing changes them, so any number
// of threads may read them.
#pragma once

#include <cstdint>

#include "bignum/integer.h"

namespace ulm::bignum {

// The priority of their static initialisers, for [[gnu::init_priority]]. Initialisers without a
// priority run later and may use the constants; those with a lower number run earlier and may not.
inline constexpr int kConstantsPriority = 300;

// Built in this order: Zero, One, Two, MinusOne, MinusTwo, PrimeWitnesses; destroyed in the
// reverse.
extern const QLInteger Zero;
extern const QLInteger One;
extern const QLInteger Two;
extern const QLInteger MinusOne;
extern const QLInteger MinusTwo;

// The bases of the primality tests, in the order of their use. 39 and 49 are not prime; they belong
// here all the same, and the result of each test depends on them.
inline constexpr std::uint32_t kPrimeWitnessCount = 18;
extern const QLInteger PrimeWitnesses[kPrimeWitnessCount];

}  // namespace ulm::bignum
