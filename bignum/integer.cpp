// Storage, construction, sign, bits, order and shifts.
#include "bignum/integer.h"

#include <algorithm>
#include <bit>
#include <new>

#include "bignum/detail/fresh.h"
#include "bignum/detail/storage.h"

namespace ulm::bignum {
namespace {

int threeWay(std::uint32_t a, std::uint32_t b) noexcept { return a < b ? -1 : a > b ? 1 : 0; }

// The order of two values with these signs, whose magnitudes compare as `magnitudes`.
int signedOrder(bool aNegative, bool bNegative, int magnitudes) noexcept {
  if (aNegative != bNegative) return aNegative ? -1 : 1;
  return aNegative ? -magnitudes : magnitudes;
}

}  // namespace

QLInteger::QLInteger() : QLInteger(0) {}

QLInteger::QLInteger(std::int32_t number) : QLInteger(kEmptyHolder) { Assign(number); }

QLInteger::QLInteger(const QLInteger& source) : QLInteger(kEmptyHolder) { Assign(source); }

QLInteger::QLInteger(std::uint32_t wordCount, Word fill) : QLInteger(kEmptyHolder) {
  EnsureCount(wordCount);
  std::fill_n(words, count, fill);
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): Assign checks for it
QLInteger& QLInteger::operator=(const QLInteger& source) {
  Assign(source);
  return *this;
}

QLInteger QLInteger::fromInt64(std::int64_t number) {
  const auto bits = static_cast<std::uint64_t>(number);
  QLInteger made = fromUint64(number < 0 ? 0 - bits : bits);
  if (number < 0) made.MakeNegative();
  return made;
}

QLInteger QLInteger::fromUint64(std::uint64_t number) {
  QLInteger made(2, 0);
  made.words[0] = static_cast<Word>(number);
  made.words[1] = static_cast<Word>(number >> kWordBits);
  made.Normalise();
  return made;
}

void QLInteger::Assign(const QLInteger& source) {
  if (this == &source) return;
  if (capacity < source.count) Reallocate(source.count, false);
  count = source.count;
  negative = source.negative;
  std::copy_n(source.words, count, words);
}

void QLInteger::Assign(std::int32_t number) {
  if (capacity == 0) Reallocate(1, false);
  count = 1;
  words[0] = detail::magnitudeOf(number);
  negative = static_cast<std::uint8_t>(number < 0);
}

void QLInteger::Reallocate(std::uint32_t wordCount, bool keep) {
  const std::uint32_t newCapacity = detail::capacityFor(std::max(wordCount, count));
  if (keep) {
    words = ResizeWords(words, newCapacity, count);
  } else {
    Word* fresh = AllocateWords(newCapacity);
    FreeWords(words);
    words = fresh;
  }
  capacity = newCapacity;
}

void QLInteger::EnsureCount(std::uint32_t n) {
  if (count >= n) return;
  if (capacity < n) Reallocate(n, true);
  std::fill(words + count, words + n, Word{0});  // they may hold old digits
  count = n;
}

void QLInteger::AppendZeroWord() { EnsureCount(count + 1); }

std::uint32_t QLInteger::BitLength() const noexcept {
  if (!IsNonZero()) return 0;
  return kWordBits * (count - 1) + static_cast<std::uint32_t>(std::bit_width(words[count - 1]));
}

bool QLInteger::TestBit(std::uint32_t index) const noexcept {
  const std::uint32_t word = index / kWordBits;
  return word < count && ((words[word] >> (index % kWordBits)) & 1) != 0;
}

void QLInteger::SetBit(std::uint32_t index, bool on) noexcept {
  const std::uint32_t word = index / kWordBits;
  if (word >= count) return;
  const Word mask = Word{1} << (index % kWordBits);
  words[word] = on ? words[word] | mask : words[word] & ~mask;
}

int QLInteger::Compare(const QLInteger& other) const noexcept {
  return signedOrder(IsNegative(), other.IsNegative(), CompareMagnitude(other));
}

int QLInteger::Compare(std::int32_t other) const noexcept {
  return signedOrder(IsNegative(), other < 0, CompareMagnitude(detail::magnitudeOf(other)));
}

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
  const std::uint32_t wholeWords = bits / kWordBits;
  if (wholeWords >= count) {
    Assign(0);
    return *this;
  }
  ShiftRightWords(words, count, wholeWords);
  ShiftRightBits(words, count - wholeWords, bits % kWordBits);
  Normalise();
  if (!IsNonZero()) negative = 0;
  return *this;
}

QLInteger PowerOfTwo(std::uint32_t bit) {
  if (bit == UINT32_MAX) throw std::bad_alloc();  // its BitLength would be 2^32
  QLInteger power(bit / kWordBits + 1, 0);        // (bit + 32) >> 5; that sum could wrap
  power.SetBit(bit, true);
  return power;
}

QLInteger operator>>(const QLInteger& a, std::uint32_t bits) {
  QLInteger shifted(a);
  shifted >>= bits;
  return shifted;
}

bool operator==(const QLInteger& a, const QLInteger& b) noexcept {
  return a.count == b.count && a.negative == b.negative && EqualWords(a.words, b.words, a.count);
}

bool operator==(const QLInteger& a, std::int32_t b) noexcept {
  return a.count == 1 && a.IsNegative() == (b < 0) && a.words[0] == detail::magnitudeOf(b);
}

}  // namespace ulm::bignum
