// The plain kernel has no methods for whole values: the loops over public operations are its own.
#include "bignum/kernel/methods.h"

namespace ulm::bignum::kernel {
inline namespace ULM_BIGNUM_KERNEL {

bool modPow(const QLInteger&, const QLInteger&, const QLInteger&, QLInteger&) { return false; }
bool reduceToDivisor(QLInteger&, QLInteger&) { return false; }
bool extendedGcd(const QLInteger&, const QLInteger&, QLInteger&, QLInteger&, QLInteger&) {
  return false;
}
bool passesRounds(const QLInteger&, std::uint32_t, std::uint32_t, bool&) { return false; }
bool raiseToPrime(QLInteger&) { return false; }
bool readDigits(QLInteger&, const char*, const char*, std::int32_t) { return false; }
bool writeDigits(const QLInteger&, std::uint32_t, char*, std::size_t, std::size_t&) {
  return false;
}

}  // namespace ULM_BIGNUM_KERNEL
}  // namespace ulm::bignum::kernel
