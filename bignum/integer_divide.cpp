#include "bignum/detail/storage.h"
#include "bignum/integer.h"
#include "bignum/kernel/kernel.h"

namespace ulm::bignum {
namespace {

// The words in use without zero words on top: the kernel gets exact lengths, whatever it is given.
std::uint32_t significantCount(const QLInteger& value) noexcept {
  std::uint32_t n = value.count;
  while (n > 1 && value.words[n - 1] == 0) --n;
  return n;
}

// Divide, and Remainder where there is no quotient.
void divideInto(const QLInteger& dividend, const QLInteger& divisor, QLInteger* quotient,
                QLInteger& remainder) {
  const bool dividendNegative = dividend.IsNegative();
  const bool quotientNegative = dividendNegative != divisor.IsNegative();
  const std::uint32_t aCount = significantCount(dividend);
  const std::uint32_t bCount = significantCount(divisor);

  const bool divisorIsZero = bCount == 1 && divisor.words[0] == 0;
  const int order = aCount != bCount ? (aCount < bCount ? -1 : 1)
                                     : CompareWords(dividend.words, divisor.words, aCount);
  if (divisorIsZero || order < 0) {
    remainder.Assign(dividend);
    if (quotient != nullptr) quotient->Assign(0);
    return;
  }
  if (order == 0) {
    remainder.Assign(0);
    if (quotient != nullptr) quotient->Assign(quotientNegative ? -1 : 1);
    return;
  }

  const std::uint64_t diff =
      detail::bitLengthOf(dividend.words, aCount) - detail::bitLengthOf(divisor.words, bCount);
  // All memory comes first, so that the remainder, which may be the dividend, changes last.
  const auto scratch = detail::scratchWords(kernel::divideScratch(aCount, bCount));
  QLInteger digits(kEmptyHolder);
  if (quotient != nullptr) digits.EnsureCount(detail::checkedCount((diff + 32) >> 5));
  remainder.Assign(dividend);
  remainder.Normalise();
  if (diff >= kWordBits) remainder.EnsureCount(aCount + 2);  // as a left shift by 32 bits grows it

  kernel::divide(quotient != nullptr ? digits.words : nullptr, remainder.words, aCount,
                 divisor.words, bCount, scratch.get());

  remainder.count = aCount;
  remainder.negative = 0;
  remainder.Normalise();
  if (dividendNegative) remainder.MakeNegative();
  if (quotient != nullptr) {
    digits.Normalise();
    if (quotientNegative) digits.MakeNegative();
    quotient->Swap(digits);
  }
}

}  // namespace

void Divide(const QLInteger& dividend, const QLInteger& divisor, QLInteger& quotient,
            QLInteger& remainder) {
  divideInto(dividend, divisor, &quotient, remainder);
}

void Divide(const QLInteger& dividend, std::int32_t divisor, QLInteger& quotient,
            QLInteger& remainder) {
  divideInto(dividend, QLInteger(divisor), &quotient, remainder);
}

void Remainder(const QLInteger& dividend, const QLInteger& divisor, QLInteger& remainder) {
  divideInto(dividend, divisor, nullptr, remainder);
}

QLInteger operator/(const QLInteger& a, const QLInteger& b) {
  QLInteger quotient(kEmptyHolder);
  QLInteger remainder(kEmptyHolder);
  Divide(a, b, quotient, remainder);
  return quotient;
}

QLInteger& QLInteger::operator%=(const QLInteger& modulus) {
  QLInteger remainder(kEmptyHolder);
  Remainder(*this, modulus, remainder);
  Swap(remainder);
  return *this;
}

}  // namespace ulm::bignum
