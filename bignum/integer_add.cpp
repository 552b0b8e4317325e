// Sums and differences.
#include <algorithm>

#include "bignum/integer.h"

namespace ulm::bignum {
namespace {

// Adds delta, whose absolute value is at most 2^32, to the magnitude. The result is not below zero.
// The carry is signed: after the first word it is 0, 1 or -1.
void addToMagnitude(QLInteger& value, std::int64_t delta) {
  value.AppendZeroWord();
  std::int64_t carry = delta;
  for (std::uint32_t i = 0; i < value.count && carry != 0; ++i) {
    const std::int64_t sum = std::int64_t{value.words[i]} + carry;
    value.words[i] = static_cast<Word>(sum);
    carry = sum >> kWordBits;
  }
  value.Normalise();
}

// Whether adding delta to the magnitude gives zero or less. The value may have zero words at its
// top.
bool reachesZero(const QLInteger& value, std::int64_t delta) noexcept {
  const Word* const words = value.words;
  const bool oneWord =
      std::all_of(words + 1, words + value.count, [](Word word) { return word == 0; });
  return delta <= 0 && oneWord && words[0] <= static_cast<std::uint64_t>(-delta);
}

// value += operand, or value -= operand with `subtract`. An operand with the other sign changes sum
// and difference into each other.
QLInteger& addSigned(QLInteger& value, const QLInteger& operand, bool subtract) {
  const bool wasNegative = value.IsNegative();
  if ((wasNegative == operand.IsNegative()) != subtract) {
    AddMagnitude(value, operand);
    if (wasNegative) value.MakeNegative();
  } else {
    SubtractMagnitude(value, operand);
    if (wasNegative) value.Negate();
  }
  return value;
}

// The same for a small operand.
QLInteger& addSmall(QLInteger& value, std::int32_t operand, bool subtract) {
  const std::int64_t delta =
      value.IsNegative() != subtract ? -std::int64_t{operand} : std::int64_t{operand};
  if (reachesZero(value, delta)) {
    // The signed operation requires normal form.
    value.Normalise();
    if (!value.IsNonZero()) value.negative = 0;
    return addSigned(value, QLInteger(operand), subtract);
  }
  addToMagnitude(value, delta);
  return value;
}

}  // namespace

void AddMagnitude(QLInteger& destination, const QLInteger& operand) {
  if (&destination == &operand) {
    destination <<= 1;
    return;
  }
  // A zero word at the top takes the carry.
  if (destination.count < operand.count) {
    destination.EnsureCount(operand.count + 1);
  } else {
    destination.AppendZeroWord();
  }
  const Word carry = AddWords(destination.words, operand.words, operand.count);
  AddWord(destination.words + operand.count, carry, destination.count - operand.count);
  destination.negative = 0;
  destination.Normalise();
}

void SubtractMagnitude(QLInteger& destination, const QLInteger& operand) {
  const int order = destination.CompareMagnitude(operand);
  if (order == 0) {
    destination.Assign(0);
  } else if (order > 0) {
    const Word borrow = SubtractWords(destination.words, operand.words, operand.count);
    SubtractWord(destination.words + operand.count, borrow, destination.count - operand.count);
    destination.negative = 0;
  } else {
    QLInteger difference(operand);
    const Word borrow = SubtractWords(difference.words, destination.words, destination.count);
    SubtractWord(difference.words + destination.count, borrow,
                 difference.count - destination.count);
    difference.negative = 1;
    destination.Swap(difference);
  }
  destination.Normalise();
}

QLInteger& QLInteger::operator+=(const QLInteger& operand) {
  return addSigned(*this, operand, false);
}

QLInteger& QLInteger::operator-=(const QLInteger& operand) {
  return addSigned(*this, operand, true);
}

QLInteger& QLInteger::operator+=(std::int32_t operand) { return addSmall(*this, operand, false); }

QLInteger& QLInteger::operator-=(std::int32_t operand) { return addSmall(*this, operand, true); }

QLInteger QLInteger::operator++(int) {
  QLInteger before(*this);
  ++*this;
  return before;
}

QLInteger QLInteger::operator--(int) {
  QLInteger before(*this);
  --*this;
  return before;
}

QLInteger operator+(const QLInteger& a, const QLInteger& b) {
  QLInteger sum(a);
  sum += b;
  return sum;
}

QLInteger operator-(const QLInteger& a, const QLInteger& b) {
  QLInteger difference(a);
  difference -= b;
  return difference;
}

QLInteger operator-(const QLInteger& a, std::int32_t b) {
  QLInteger difference(a);
  difference -= b;
  return difference;
}

}  // namespace ulm::bignum
