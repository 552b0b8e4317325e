// QLInteger: a signed integer of any size, as a sign and a magnitude over 32-bit words.
//
// An operation on one value is a member. An operation that names a destination or has several
// results is a function, and takes what it writes by reference. An operand that is neither a
// destination nor a result does not change.
//
// Storage is part of the interface: each operation states the count and the capacity that it
// leaves. Where it says fresh storage, the destination may keep its own, if that has the same size.
//
// Failure: std::bad_alloc is the only exception. It is thrown when memory runs out or a capacity
// would exceed 2^27 words (2^32 bits). The operands are then unchanged, and a destination holds a
// valid value, which may be its old value or an intermediate one.
//
// Bit lengths and bit indices are 32-bit quantities. 2^27 words can hold one bit more than that
// allows: the caller avoids values of exactly 2^32 bits.
//
// Threads: any number of threads may read a value. A thread that changes a value must be the only
// one that uses it.
#pragma once

#include <compare>
#include <concepts>
#include <cstdint>
#include <utility>

#include "bignum/words.h"

namespace ulm::bignum {

// The argument of the constructor that makes an empty holder.
struct EmptyHolder {};
inline constexpr EmptyHolder kEmptyHolder{};

// A type that converts to Number although Number lacks some of its values: a wider integer or
// floating point. Small operands are signed 32-bit numbers. An operation on one does not compile
// for such a type, because the conversion would change the number silently; fromInt64 and
// fromUint64 take 64-bit numbers. Counts, shifts and indices convert by the rules of the language.
template <class T, class Number>
concept NarrowedTo = std::convertible_to<T, Number> && !requires(T value) {
  Number{value};
};

// Normal form: count is at least 1, and the top word is not zero unless count is 1. Zero has
// count 1, word 0 equal to 0 and negative 0. Every operation requires normal form of its operands
// and leaves its results in it, unless its comment says otherwise. The words from count up to
// capacity have no meaning.
//
// The empty holder (count 0, capacity 0, words null, negative 0) is not a number. It can be copied,
// swapped and destroyed. It can be the destination of Assign and FromText, and an operand that
// receives a result of Divide, Remainder, ModPow, Gcd, ExtendedGcd or NextPrime. No other operation
// takes it. A value that was moved from is an empty
// holder.
class QLInteger {
 public:
  // Anyone may read the fields. Code that writes them keeps the rules above.
  std::uint32_t count;     // words in use
  std::uint32_t capacity;  // words allocated: 0 or a multiple of 32
  Word* words;             // owned, from odrxAlloc; the magnitude, least significant word first
  std::uint8_t negative;   // 1 for a value below zero, else 0

  // 0, with capacity 32.
  QLInteger();
  explicit QLInteger(EmptyHolder) noexcept : count(0), capacity(0), words(nullptr), negative(0) {}
  // The number, with capacity 32. Not explicit, so that small numbers can be operands.
  QLInteger(std::int32_t number);
  template <NarrowedTo<std::int32_t> T>
  QLInteger(T number) = delete;
  // A copy. Its storage has the size for the source's count, whatever the source's capacity.
  QLInteger(const QLInteger& source);
  // Takes over the storage and leaves an empty holder.
  QLInteger(QLInteger&& source) noexcept : QLInteger(kEmptyHolder) { Swap(source); }
  // wordCount words that equal fill, not negative and not normalised; the empty holder for 0 words.
  QLInteger(std::uint32_t wordCount, Word fill);
  ~QLInteger() {
    if (words != nullptr) FreeWords(words);
  }

  // As Assign. There is no assignment by move, since an assignment never shrinks the storage.
  QLInteger& operator=(const QLInteger& source);

  // The number, with capacity 32.
  static QLInteger fromInt64(std::int64_t number);
  static QLInteger fromUint64(std::uint64_t number);
  template <NarrowedTo<std::int64_t> T>
  static QLInteger fromInt64(T number) = delete;
  template <NarrowedTo<std::uint64_t> T>
  static QLInteger fromUint64(T number) = delete;

  // Copies count, sign and words. The storage is replaced only if it is too small. A value can be
  // assigned to itself.
  void Assign(const QLInteger& source);
  // Keeps the storage; an empty holder gets 32 words.
  void Assign(std::int32_t number);
  template <NarrowedTo<std::int32_t> T>
  void Assign(T number) = delete;
  // Exchanges all four fields.
  void Swap(QLInteger& other) noexcept {
    std::swap(count, other.count);
    std::swap(capacity, other.capacity);
    std::swap(words, other.words);
    std::swap(negative, other.negative);
  }

  // Replaces the storage by a zeroed array for wordCount words, rounded up to a multiple of 32; a
  // wordCount below count is as count. With keep, the words in use are copied to it. count does not
  // change.
  void Reallocate(std::uint32_t wordCount, bool keep);
  // Appends zero words until count is n, which can leave normal form; a count of n or more does not
  // change. Storage that is too small is replaced and keeps its content.
  void EnsureCount(std::uint32_t n);
  // EnsureCount of count + 1.
  void AppendZeroWord();
  // Removes zero words from the top while count is above 1. The sign does not change.
  void Normalise() noexcept {
    while (count > 1 && words[count - 1] == 0) --count;
  }

  bool IsNegative() const noexcept { return negative != 0; }
  bool IsNonNegative() const noexcept { return negative == 0; }
  bool IsNonZero() const noexcept { return count != 1 || words[0] != 0; }
  bool IsPositive() const noexcept { return IsNonNegative() && IsNonZero(); }
  // True for an empty holder too.
  bool IsEven() const noexcept { return count == 0 || (words[0] & 1) == 0; }
  // Reverses the sign; zero does not change.
  void Negate() noexcept {
    if (IsNonZero()) negative ^= 1;
  }
  // Makes the sign negative; zero does not change.
  void MakeNegative() noexcept {
    if (IsNonZero()) negative = 1;
  }
  // 0xFFFFFFFF for a negative value, else 0.
  Word SignWord() const noexcept { return IsNegative() ? 0xFFFFFFFFu : 0; }

  // The number of bits of the magnitude: the index of its highest set bit plus 1, or 0 for zero.
  std::uint32_t BitLength() const noexcept;
  // The address of a word. The index is not checked.
  Word* WordPointer(std::int32_t index) noexcept { return words + index; }
  const Word* WordPointer(std::int32_t index) const noexcept { return words + index; }
  // Bit `index` of the magnitude; false for an index of 32 * count or more.
  bool TestBit(std::uint32_t index) const noexcept;
  // Sets or clears bit `index` of the magnitude; an index of 32 * count or more changes nothing.
  // The value neither grows nor is it normalised, so clearing its top bit can leave normal form.
  void SetBit(std::uint32_t index, bool on) noexcept;

  // Returns -1, 0 or 1 for less, equal or greater.
  int Compare(const QLInteger& other) const noexcept;
  int Compare(std::int32_t other) const noexcept;
  template <NarrowedTo<std::int32_t> T>
  int Compare(T other) const = delete;
  // The same for the magnitudes; that of -1 is 1. Any wider integer type or floating point is
  // ambiguous and does not compile.
  int CompareMagnitude(const QLInteger& other) const noexcept;
  int CompareMagnitude(std::uint32_t other) const noexcept;
  int CompareMagnitude(std::int32_t other) const noexcept;

  // The signed sum and difference, by AddMagnitude or SubtractMagnitude and with their storage. The
  // operand may be the value itself.
  QLInteger& operator+=(const QLInteger& operand);
  QLInteger& operator-=(const QLInteger& operand);
  // The same for a small number: a zero word is appended, the magnitude changes in place, and the
  // value is normalised. If the result would reach or cross zero, these are the operations above.
  QLInteger& operator+=(std::int32_t operand);
  QLInteger& operator-=(std::int32_t operand);
  template <NarrowedTo<std::int32_t> T>
  QLInteger& operator+=(T operand) = delete;
  template <NarrowedTo<std::int32_t> T>
  QLInteger& operator-=(T operand) = delete;
  QLInteger& operator++() { return *this += 1; }
  QLInteger& operator--() { return *this -= 1; }
  QLInteger operator++(int);
  QLInteger operator--(int);

  // The product. If a factor is 0 or +1, the result is assigned as by Assign. Any other product is
  // built in fresh storage for count + operand.count words (count + 1 for a small operand), which
  // replaces the old storage. The operand may be the value itself. Quadratic time with the plain
  // kernel.
  QLInteger& operator*=(const QLInteger& operand);
  QLInteger& operator*=(std::int32_t operand);
  template <NarrowedTo<std::int32_t> T>
  QLInteger& operator*=(T operand) = delete;
  // The remainder, as Remainder leaves it in an empty holder; its storage replaces the old storage.
  // The modulus may be the value itself.
  QLInteger& operator%=(const QLInteger& modulus);

  // Shifts the magnitude left; the sign does not change. Zero, and a shift by 0, change nothing.
  // Before it is normalised, count grows to ((bits + 31 + 32 * count) >> 5) + 1.
  QLInteger& operator<<=(std::uint32_t bits);
  // Shifts the magnitude right in place, which truncates toward zero.
  QLInteger& operator>>=(std::uint32_t bits);
};

// 2 to the power `bit`, in (bit + 32) >> 5 words. Throws std::bad_alloc for a `bit` of 2^32 - 1
// too.
QLInteger PowerOfTwo(std::uint32_t bit);

// The sum of both magnitudes, not negative. The destination first grows by one zero word, or to
// operand.count + 1 words if it has fewer words than the operand. If both are one object, it is
// shifted left by one bit instead and keeps its sign.
void AddMagnitude(QLInteger& destination, const QLInteger& operand);
// The destination's magnitude less the operand's, with the sign of this difference. It is computed
// in place, except that an operand with the larger magnitude makes fresh storage for operand.count
// words. Both may be one object.
void SubtractMagnitude(QLInteger& destination, const QLInteger& operand);

// Truncating division: dividend = quotient * divisor + remainder, |remainder| < |divisor|, and the
// remainder has the sign of the dividend. A divisor of zero gives quotient 0 and the dividend as
// remainder, so that the first equation still holds.
//   remainder  is assigned the dividend, then changed in place; its storage grows as for a left
//              shift by 32 bits if the dividend is at least 32 bits longer than the divisor
//   quotient   gets fresh storage for ((difference of the bit lengths) + 32) >> 5 words if the
//              dividend has the larger magnitude; otherwise 0, 1 or -1 is assigned to it
// The remainder may be the dividend. No other two operands may be one object. Quadratic time.
void Divide(const QLInteger& dividend, const QLInteger& divisor, QLInteger& quotient,
            QLInteger& remainder);
void Divide(const QLInteger& dividend, std::int32_t divisor, QLInteger& quotient,
            QLInteger& remainder);
template <NarrowedTo<std::int32_t> T>
void Divide(const QLInteger& dividend, T divisor, QLInteger& quotient,
            QLInteger& remainder) = delete;
// Divide without the quotient.
void Remainder(const QLInteger& dividend, const QLInteger& divisor, QLInteger& remainder);

// Fresh values: a copy of the first operand, changed by the operation. A product has the storage
// that *= builds; a product of zero has 32 words, and one by +1 is a copy.
QLInteger operator+(const QLInteger& a, const QLInteger& b);
QLInteger operator-(const QLInteger& a, const QLInteger& b);
QLInteger operator-(const QLInteger& a, std::int32_t b);
QLInteger operator*(const QLInteger& a, const QLInteger& b);
QLInteger operator*(const QLInteger& a, std::int32_t b);
QLInteger operator/(const QLInteger& a, const QLInteger& b);
QLInteger operator>>(const QLInteger& a, std::uint32_t bits);
// Operations without an overload for a small number refuse such types through the constructor.
template <NarrowedTo<std::int32_t> T>
QLInteger operator-(const QLInteger& a, T b) = delete;
template <NarrowedTo<std::int32_t> T>
QLInteger operator*(const QLInteger& a, T b) = delete;

// Equal: the same count, sign and words.
bool operator==(const QLInteger& a, const QLInteger& b) noexcept;
bool operator==(const QLInteger& a, std::int32_t b) noexcept;
template <NarrowedTo<std::int32_t> T>
bool operator==(const QLInteger& a, T b) = delete;

// The order of Compare.
inline bool operator<(const QLInteger& a, const QLInteger& b) noexcept { return a.Compare(b) < 0; }
inline bool operator<(const QLInteger& a, std::int32_t b) noexcept { return a.Compare(b) < 0; }
inline bool operator<=(const QLInteger& a, std::int32_t b) noexcept { return a.Compare(b) <= 0; }
inline std::strong_ordering operator<=>(const QLInteger& a, const QLInteger& b) noexcept {
  return a.Compare(b) <=> 0;
}
inline std::strong_ordering operator<=>(const QLInteger& a, std::int32_t b) noexcept {
  return a.Compare(b) <=> 0;
}
template <NarrowedTo<std::int32_t> T>
std::strong_ordering operator<=>(const QLInteger& a, T b) = delete;

inline void swap(QLInteger& a, QLInteger& b) noexcept { a.Swap(b); }

}  // namespace ulm::bignum
