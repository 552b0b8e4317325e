// Quotients and remainders.
#include "bignum/detail/storage.h"
#include "bignum/integer.h"
#include "bignum/kernel/kernel.h"

namespace ulm::bignum {
namespace {

// The words in use without zero words at the top. The kernel takes exact lengths, but a value whose
// top bit was cleared by SetBit can have such words.
std::uint32_t significantCount(const QLInteger& value) noexcept {
  std::uint32_t n = value.count;
  while (n > 1 && value.words[n - 1] == 0) --n;
  return n;
}

// One division. The quotient is null if only the remainder is asked for.
struct Division {
  Division(const QLInteger& a, const QLInteger& b, QLInteger* q, QLInteger& r) noexcept
      : dividend(a),
        divisor(b),
        quotient(q),
        remainder(r),
        dividendCount(significantCount(a)),
        divisorCount(significantCount(b)),
        dividendNegative(a.IsNegative()),
        quotientNegative(a.IsNegative() != b.IsNegative()) {}

  const QLInteger& dividend;  // may be the remainder
  const QLInteger& divisor;
  QLInteger* const quotient;
  QLInteger& remainder;
  const std::uint32_t dividendCount;
  const std::uint32_t divisorCount;
  const bool dividendNegative;
  const bool quotientNegative;
};

bool divisorIsZero(const Division& d) noexcept {
  return d.divisorCount == 1 && d.divisor.words[0] == 0;
}

int compareMagnitudes(const Division& d) noexcept {
  if (d.dividendCount != d.divisorCount) return d.dividendCount < d.divisorCount ? -1 : 1;
  return CompareWords(d.dividend.words, d.divisor.words, d.dividendCount);
}

// Quotient 0. The remainder is normalised even if the dividend is not, because a loop until the
// remainder is zero must end.
void leaveDividend(const Division& d) {
  d.remainder.Assign(d.dividend);
  d.remainder.Normalise();
  if (!d.remainder.IsNonZero()) d.remainder.negative = 0;
  if (d.quotient != nullptr) d.quotient->Assign(0);
}

// Quotient 1 or -1, remainder 0.
void divideEqual(const Division& d) {
  d.remainder.Assign(0);
  if (d.quotient != nullptr) d.quotient->Assign(d.quotientNegative ? -1 : 1);
}

// The magnitude of the dividend is the larger one, and the divisor is not zero.
void divideLarger(const Division& d) {
  const std::uint64_t diff = detail::bitLengthOf(d.dividend.words, d.dividendCount) -
                             detail::bitLengthOf(d.divisor.words, d.divisorCount);
  // All memory is allocated before the remainder, which may be the dividend, changes.
  const auto scratch = detail::scratchWords(kernel::divideScratch(d.dividendCount, d.divisorCount));
  QLInteger digits(kEmptyHolder);
  if (d.quotient != nullptr) digits.EnsureCount(detail::checkedCount((diff + 32) >> 5));
  d.remainder.Assign(d.dividend);
  d.remainder.Normalise();
  // As a left shift by 32 bits grows it.
  if (diff >= kWordBits) d.remainder.EnsureCount(d.dividendCount + 2);

  kernel::divide(d.quotient != nullptr ? digits.words : nullptr, d.remainder.words, d.dividendCount,
                 d.divisor.words, d.divisorCount, scratch.get());

  d.remainder.count = d.dividendCount;
  d.remainder.negative = 0;
  d.remainder.Normalise();
  if (d.dividendNegative) d.remainder.MakeNegative();
  if (d.quotient != nullptr) {
    digits.Normalise();
    if (d.quotientNegative) digits.MakeNegative();
    d.quotient->Swap(digits);
  }
}

// Divide, and Remainder with a null quotient.
void divideInto(const QLInteger& dividend, const QLInteger& divisor, QLInteger* quotient,
                QLInteger& remainder) {
  const Division division(dividend, divisor, quotient, remainder);
  const int order = compareMagnitudes(division);
  if (divisorIsZero(division) || order < 0) return leaveDividend(division);
  if (order == 0) return divideEqual(division);
  divideLarger(division);
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
