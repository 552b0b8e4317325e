// All values of the library that static initialisation builds. They are in one source because the
// order within it is the order of construction.
#include "bignum/constants.h"

namespace ulm::bignum {

[[gnu::init_priority(kConstantsPriority)]] const QLInteger Zero(0);
[[gnu::init_priority(kConstantsPriority)]] const QLInteger One(1);
[[gnu::init_priority(kConstantsPriority)]] const QLInteger Two(2);
[[gnu::init_priority(kConstantsPriority)]] const QLInteger MinusOne(-1);
[[gnu::init_priority(kConstantsPriority)]] const QLInteger MinusTwo(-2);
[[gnu::init_priority(kConstantsPriority)]] const QLInteger PrimeWitnesses[kPrimeWitnessCount] = {
    2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 39, 41, 43, 47, 49, 53};

}  // namespace ulm::bignum
