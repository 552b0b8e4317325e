// Quotients and remainders.
#include "bignum/detail/fresh.h"
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

// The words that the remainder has after it was assigned the dividend and grew as by a left shift
// of 32 bits, if the quotient has more than 32.
std::uint32_t remainderCapacity(const Division& d, std::uint64_t diff) {
  std::uint32_t capacity = d.remainder.capacity;
  if (capacity < d.dividend.count) capacity = detail::capacityFor(d.dividend.count);
  const std::uint64_t grown = std::uint64_t{d.dividendCount} + 2;
  if (diff >= kWordBits && capacity < grown) capacity = detail::capacityFor(grown);
  return capacity;
}

// Whether the quotient, of n words, can be written where the old one is.
bool quotientFits(const Division& d, std::uint32_t n) {
  return kernel::kReusesStorage && d.quotient->capacity == detail::capacityFor(n) &&
         d.quotient != &d.dividend && d.quotient != &d.divisor && d.quotient != &d.remainder;
}

// The magnitude of the dividend is the larger one, and the divisor is not zero.
void divideLarger(const Division& d) {
  const std::uint64_t diff = detail::bitLengthOf(d.dividend.words, d.dividendCount) -
                             detail::bitLengthOf(d.divisor.words, d.divisorCount);
  // All memory is allocated before the remainder, which may be the dividend, changes.
  QLInteger digits(kEmptyHolder), rest(kEmptyHolder);
  Word* digitWords = nullptr;
  const std::uint32_t digitCount = detail::checkedCount((diff + 32) >> 5);
  if (d.quotient != nullptr) {
    if (quotientFits(d, digitCount)) {
      digitWords = d.quotient->words;
    } else {
      QLInteger fresh = detail::freshValue(digitCount);
      digits.Swap(fresh);
      digitWords = digits.words;
    }
  }
  const std::uint32_t capacity = remainderCapacity(d, diff);
  if (capacity != d.remainder.capacity) rest.EnsureCount(capacity);
  Word* const restWords = rest.words != nullptr ? rest.words : d.remainder.words;

  kernel::divide(digitWords, restWords, d.dividend.words, d.dividendCount, d.divisor.words,
                 d.divisorCount);

  if (rest.words != nullptr) d.remainder.Swap(rest);
  d.remainder.count = d.divisorCount;
  d.remainder.negative = 0;
  d.remainder.Normalise();
  if (d.dividendNegative) d.remainder.MakeNegative();
  if (d.quotient != nullptr) {
    if (digits.words != nullptr) d.quotient->Swap(digits);
    d.quotient->count = digitCount;
    d.quotient->negative = 0;
    d.quotient->Normalise();
    if (d.quotientNegative) d.quotient->MakeNegative();
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
