#include "bignum/detail/storage.h"
#include "bignum/integer.h"

namespace ulm::bignum {
namespace {

int threeWay(std::uint32_t a, std::uint32_t b) noexcept { return a < b ? -1 : a > b ? 1 : 0; }

// The order of two values whose signs are given and whose magnitudes compare as `magnitudes`.
int signedOrder(bool aNegative, bool bNegative, int magnitudes) noexcept {
  if (aNegative != bNegative) return aNegative ? -1 : 1;
  return aNegative ? -magnitudes : magnitudes;
}

}  // namespace

int QLInteger::CompareMagnitude(const QLInteger& other) const noexcept {
  if (count != other.count) return threeWay(count, other.count);
  return CompareWords(words, other.words, count);
}

int QLInteger::CompareMagnitude(std::uint32_t other) const noexcept {
  if (count > 1) return 1;
  return threeWay(words[0], other);
}

int QLInteger::CompareMagnitude(std::int32_t other) const noexcept {
  return CompareMagnitude(detail::magnitudeOf(other));
}

int QLInteger::Compare(const QLInteger& other) const noexcept {
  return signedOrder(IsNegative(), other.IsNegative(), CompareMagnitude(other));
}

int QLInteger::Compare(std::int32_t other) const noexcept {
  return signedOrder(IsNegative(), other < 0, CompareMagnitude(detail::magnitudeOf(other)));
}

bool operator==(const QLInteger& a, const QLInteger& b) noexcept {
  return a.count == b.count && a.negative == b.negative && EqualWords(a.words, b.words, a.count);
}

bool operator==(const QLInteger& a, std::int32_t b) noexcept {
  return a.count == 1 && a.IsNegative() == (b < 0) && a.words[0] == detail::magnitudeOf(b);
}

}  // namespace ulm::bignum
