// All values of the library that are built in static initialisation, in their order. The priority
// puts them after the module's own start (its heap and its switches) and before any object that has
// none, so that those can use them.
#include "bignum/constants.h"

namespace ulm::bignum {

[[gnu::init_priority(300)]] const QLInteger Zero(0);
[[gnu::init_priority(300)]] const QLInteger One(1);
[[gnu::init_priority(300)]] const QLInteger Two(2);
[[gnu::init_priority(300)]] const QLInteger MinusOne(-1);
[[gnu::init_priority(300)]] const QLInteger MinusTwo(-2);
[[gnu::init_priority(300)]] const QLInteger PrimeWitnesses[kPrimeWitnessCount] = {
    2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37, 39, 41, 43, 47, 49, 53};

}  // namespace ulm::bignum
