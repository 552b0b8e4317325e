#include "bignum/integer.h"

namespace ulm::bignum {
namespace {

// Adds delta, at most 2^32 either way, to the magnitude, which does not reach below zero by it. The
// carry is signed: 0, 1 or -1 after the first word.
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

// Whether adding delta to the magnitude gives zero or less.
bool reachesZero(const QLInteger& value, std::int64_t delta) noexcept {
  return delta < 0 && value.CompareMagnitude(static_cast<std::uint32_t>(-delta)) <= 0;
}

}  // namespace

void AddMagnitude(QLInteger& destination, const QLInteger& operand) {
  if (&destination == &operand) {
    destination <<= 1;
    return;
  }
  // There is always a spare word on top, so no carry can be lost.
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
  const bool wasNegative = IsNegative();
  if (wasNegative == operand.IsNegative()) {
    AddMagnitude(*this, operand);
    if (wasNegative) MakeNegative();
  } else {
    SubtractMagnitude(*this, operand);
    if (wasNegative) Negate();
  }
  return *this;
}

QLInteger& QLInteger::operator-=(const QLInteger& operand) {
  const bool wasNegative = IsNegative();
  if (wasNegative == operand.IsNegative()) {
    SubtractMagnitude(*this, operand);
    if (wasNegative) Negate();
  } else {
    AddMagnitude(*this, operand);
    if (wasNegative) MakeNegative();
  }
  return *this;
}

QLInteger& QLInteger::operator+=(std::int32_t operand) {
  const std::int64_t delta = IsNegative() ? -std::int64_t{operand} : std::int64_t{operand};
  if (reachesZero(*this, delta)) return *this += QLInteger(operand);
  addToMagnitude(*this, delta);
  return *this;
}

QLInteger& QLInteger::operator-=(std::int32_t operand) {
  const std::int64_t delta = IsNegative() ? std::int64_t{operand} : -std::int64_t{operand};
  if (reachesZero(*this, delta)) return *this -= QLInteger(operand);
  addToMagnitude(*this, delta);
  return *this;
}

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
