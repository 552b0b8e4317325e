// QLInteger: a signed integer of any size, a sign and a magnitude over 32-bit words.
//
// Operations that belong to one value are its members; those that name a destination or several
// results are functions, and take by reference what they write. Operands that an operation does not
// name as its destination or result stay unchanged.
//
// The storage is part of the promise: each operation tells the count and capacity it leaves.
// Failure: the one exception is std::bad_alloc, when memory is short or a capacity would exceed
// 2^27 words (2^32 bits). The operands are then unchanged, and a destination holds a valid value:
// its old one or one on the way. Threads: any number may read a value; one that changes it must
// have it to itself. BitLength and bit indices are 32-bit quantities: a value of exactly 2^32 bits,
// which a product or a filled array of 2^27 words can be, is for the caller to avoid.
#pragma once

#include <compare>
#include <concepts>
#include <cstdint>

#include "bignum/words.h"

namespace ulm::bignum {

// Asks for a value that holds no number yet.
struct EmptyHolder {};
inline constexpr EmptyHolder kEmptyHolder{};

// A type that converts to Number although not each of its values is one: a wider integer, floating
// point. Small operands are signed 32-bit numbers, and an operation on one does not compile for
// such a type, since the conversion would change the number silently. Wider ones go through
// fromInt64 and fromUint64. Counts, shifts and indices convert as the language does.
template <class T, class Number>
concept NarrowedTo = std::convertible_to<T, Number> && !requires(T value) {
  Number{value};
};

// Normal form: count is at least 1, and the top word is not zero unless count is 1. Zero is count 1
// with word 0 zero and negative 0. Every operation leaves normal form and asks it of its operands,
// but for those that say otherwise. Words from count up to capacity mean nothing.
//
// The empty holder (count 0, capacity 0, words null, negative 0) is no number: it can be copied,
// swapped and destroyed, and be the destination of Assign, the result of Divide, Remainder, ModPow
// and FromText, and nothing else. A value that was moved from is one.
class QLInteger {
 public:
  // The value, to be read by anyone; written only by those who keep the rules above.
  std::uint32_t count;     // words in use
  std::uint32_t capacity;  // words allocated: 0 or a multiple of 32
  Word* words;             // owned, from odrxAlloc; the magnitude, least significant word first
  std::uint8_t negative;   // 1 below zero, else 0

  QLInteger();  // 0, capacity 32
  explicit QLInteger(EmptyHolder) noexcept;
  QLInteger(std::int32_t number);  // capacity 32; not explicit, so that small numbers are operands
  template <NarrowedTo<std::int32_t> T>
  QLInteger(T number) = delete;
  // Storage is sized to the source's count, not to its capacity.
  QLInteger(const QLInteger& source);
  QLInteger(QLInteger&& source) noexcept;
  // wordCount words, each equal to fill, not normalised; the empty holder for 0 words.
  QLInteger(std::uint32_t wordCount, Word fill);
  ~QLInteger();

  // As Assign. There is no assignment by move: assignment keeps storage, it never shrinks it.
  QLInteger& operator=(const QLInteger& source);

  // Numbers of 64 bits; capacity 32.
  static QLInteger fromInt64(std::int64_t number);
  static QLInteger fromUint64(std::uint64_t number);
  template <NarrowedTo<std::int64_t> T>
  static QLInteger fromInt64(T number) = delete;
  template <NarrowedTo<std::uint64_t> T>
  static QLInteger fromUint64(T number) = delete;

  // Copies count, sign and words. Storage is replaced, without its content, only if it is too
  // small.
  void Assign(const QLInteger& source);
  // Reuses the storage; 32 words if there is none.
  void Assign(std::int32_t number);
  template <NarrowedTo<std::int32_t> T>
  void Assign(T number) = delete;
  void Swap(QLInteger& other) noexcept;  // all four fields

  // Storage by hand. None of these but Normalise takes words off, and they may leave zero top
  // words.
  //
  // A fresh zeroed array for wordCount words, rounded up to a multiple of 32; with keep it gets the
  // words in use. Only to grow: below count words it is as for count. count does not change.
  void Reallocate(std::uint32_t wordCount, bool keep);
  // Appends zero words until count is n; storage grows only if it must, keeping its content.
  void EnsureCount(std::uint32_t n);
  void AppendZeroWord();
  // Takes off zero top words while count is above 1. The sign stays as it is.
  void Normalise() noexcept;

  bool IsNegative() const noexcept { return negative != 0; }
  bool IsNonNegative() const noexcept { return negative == 0; }
  bool IsNonZero() const noexcept { return count != 1 || words[0] != 0; }
  bool IsPositive() const noexcept { return IsNonNegative() && IsNonZero(); }
  bool IsEven() const noexcept { return count == 0 || (words[0] & 1) == 0; }
  void Negate() noexcept;        // zero stays as it is
  void MakeNegative() noexcept;  // zero stays as it is
  Word SignWord() const noexcept { return IsNegative() ? 0xFFFFFFFFu : 0; }

  // 0 for zero, else the position of the highest set bit, counted from 1.
  std::uint32_t BitLength() const noexcept;
  // The address of a word; no bound is looked at.
  Word* WordPointer(std::int32_t index) noexcept { return words + index; }
  const Word* WordPointer(std::int32_t index) const noexcept { return words + index; }
  // Bits of the magnitude. One at or above 32 * count is clear, and setting it changes nothing; the
  // value neither grows nor is it normalised, so clearing the top bit can leave normal form.
  bool TestBit(std::uint32_t index) const noexcept;
  void SetBit(std::uint32_t index, bool on) noexcept;

  // -1, 0 or 1. Signs first, then magnitudes: the larger count, then words from the top down.
  int Compare(const QLInteger& other) const noexcept;
  int Compare(std::int32_t other) const noexcept;
  template <NarrowedTo<std::int32_t> T>
  int Compare(T other) const = delete;
  // A negative number counts with its own magnitude: |-1| is 1. A wider type is ambiguous.
  int CompareMagnitude(const QLInteger& other) const noexcept;
  int CompareMagnitude(std::uint32_t other) const noexcept;
  int CompareMagnitude(std::int32_t other) const noexcept;

  // Signed sums: AddMagnitude or SubtractMagnitude, by the signs, with their storage. The operand
  // may be the value itself.
  QLInteger& operator+=(const QLInteger& operand);
  QLInteger& operator-=(const QLInteger& operand);
  // These append a zero word, work on the magnitude in place and normalise. Where the result
  // reaches or crosses zero they are the operations above.
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

  // Products. A zero, and a product by +1, is assigned to the value as Assign does. Any other is
  // built in fresh storage for count + operand.count words (count + 1 for the small operand), which
  // replaces the old. The operand may be the value itself. Quadratic time with the plain kernel.
  QLInteger& operator*=(const QLInteger& operand);
  QLInteger& operator*=(std::int32_t operand);
  template <NarrowedTo<std::int32_t> T>
  QLInteger& operator*=(T operand) = delete;
  // The remainder, in storage made fresh by Remainder below.
  QLInteger& operator%=(const QLInteger& modulus);

  // On the magnitude; the sign stays. Zero and a shift by 0 change nothing. count grows, before it
  // is normalised, to ((bits + 31 + 32 * count) >> 5) + 1, and storage with it.
  QLInteger& operator<<=(std::uint32_t bits);
  // Truncates towards zero, in place.
  QLInteger& operator>>=(std::uint32_t bits);
};

// 2 to the power `bit`, in (bit + 32) >> 5 words. Throws std::bad_alloc for a `bit` of 2^32 - 1
// too.
QLInteger PowerOfTwo(std::uint32_t bit);

// The destination's magnitude plus the operand's, not negative. First the destination gets one zero
// word, or operand.count + 1 words where it has fewer words than the operand. With one object for
// both it is shifted left by one bit instead, and keeps its sign.
void AddMagnitude(QLInteger& destination, const QLInteger& operand);
// The destination's magnitude less the operand's, with the sign that this has. In place, unless the
// operand's magnitude is the larger: then in fresh storage sized to operand.count.
void SubtractMagnitude(QLInteger& destination, const QLInteger& operand);

// Truncating division: dividend = quotient * divisor + remainder, |remainder| < |divisor|, and the
// remainder has the sign of the dividend. A divisor of zero gives quotient 0 and the dividend as
// remainder, so that the first of these still holds.
//   remainder  is assigned the dividend and worked on in place; if the dividend is 32 bits or more
//              longer than the divisor its storage grows as for a left shift by 32 bits. It may be
//              the dividend itself
//   quotient   gets fresh storage for ((difference of the bit lengths) + 32) >> 5 words;
//              0, 1 and -1 are assigned
// No two of the operands may be one object but dividend and remainder. Quadratic time.
void Divide(const QLInteger& dividend, const QLInteger& divisor, QLInteger& quotient,
            QLInteger& remainder);
void Divide(const QLInteger& dividend, std::int32_t divisor, QLInteger& quotient,
            QLInteger& remainder);
template <NarrowedTo<std::int32_t> T>
void Divide(const QLInteger& dividend, T divisor, QLInteger& quotient,
            QLInteger& remainder) = delete;
void Remainder(const QLInteger& dividend, const QLInteger& divisor, QLInteger& remainder);

// Fresh values: a copy of the first operand, then the operation that changes it; a product is built
// as for *=, with 32 words for a product of zero, and sized to count for a copy.
QLInteger operator+(const QLInteger& a, const QLInteger& b);
QLInteger operator-(const QLInteger& a, const QLInteger& b);
QLInteger operator-(const QLInteger& a, std::int32_t b);
QLInteger operator*(const QLInteger& a, const QLInteger& b);
QLInteger operator*(const QLInteger& a, std::int32_t b);
QLInteger operator/(const QLInteger& a, const QLInteger& b);
QLInteger operator>>(const QLInteger& a, std::uint32_t bits);
// The operations that have no overload for a small number refuse such a type by the constructor.
template <NarrowedTo<std::int32_t> T>
QLInteger operator-(const QLInteger& a, T b) = delete;
template <NarrowedTo<std::int32_t> T>
QLInteger operator*(const QLInteger& a, T b) = delete;

// Equal: the same count, sign and words.
bool operator==(const QLInteger& a, const QLInteger& b) noexcept;
bool operator==(const QLInteger& a, std::int32_t b) noexcept;
inline bool operator<(const QLInteger& a, const QLInteger& b) noexcept { return a.Compare(b) < 0; }
inline bool operator<(const QLInteger& a, std::int32_t b) noexcept { return a.Compare(b) < 0; }
inline bool operator<=(const QLInteger& a, std::int32_t b) noexcept { return a.Compare(b) <= 0; }
template <NarrowedTo<std::int32_t> T>
bool operator==(const QLInteger& a, T b) = delete;

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
