#include "bignum/detail/storage.h"
#include "bignum/integer.h"

namespace ulm::bignum {

QLInteger& QLInteger::operator<<=(std::uint32_t bits) {
  if (bits == 0 || !IsNonZero()) return *this;
  const std::uint32_t oldCount = count;
  const std::uint64_t grown = ((std::uint64_t{bits} + 31 + 32 * std::uint64_t{count}) >> 5) + 1;
  EnsureCount(detail::checkedCount(grown));
  ShiftLeftBits(words, oldCount + 1, bits % kWordBits);
  if (bits >= kWordBits) ShiftLeftWords(words, oldCount + 1, bits / kWordBits);
  Normalise();
  return *this;
}

QLInteger& QLInteger::operator>>=(std::uint32_t bits) {
  if (bits == 0 || !IsNonZero()) return *this;
  const std::uint32_t places = bits / kWordBits;
  if (places >= count) {
    Assign(0);
    return *this;
  }
  ShiftRightWords(words, count, places);
  ShiftRightBits(words, count - places, bits % kWordBits);
  Normalise();
  if (!IsNonZero()) negative = 0;
  return *this;
}

QLInteger operator>>(const QLInteger& a, std::uint32_t bits) {
  QLInteger shifted(a);
  shifted >>= bits;
  return shifted;
}

}  // namespace ulm::bignum
