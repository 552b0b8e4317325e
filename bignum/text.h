// Numbers as text, and bytes as hexadecimal text. Texts are zero-terminated strings of 8-bit
// characters; no operation depends on a locale. A text or buffer may be null only where its size is
// given and 0.
//
// A number text has its sign before the digits and its radix after them: b for 2, o for 8, h for 16
// and nothing for 10. Any other radix of 2 to 16 is written as |, which has no meaning on reading.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <new>
#include <string>

#include "bignum/integer.h"

namespace ulm::bignum {

// The digits, each at the index of its value. On reading, lower case counts too.
inline constexpr char DigitTable[] = "0123456789ABCDEF";

// A number text without its sign and its radix.
struct NumberText {
  bool negative;       // the text starts with '-'
  std::int32_t radix;  // 2, 8, 10 or 16
  const char* first;   // the remaining characters, digits or not: [first, last) of the text
  const char* last;
};

// Splits a number text. A '-' or '+' at the start is the sign. A last character b, o or h of either
// case is the radix, and so is 0x or 0X at the start, after which a last b is a digit; without
// either the radix is 10. The result points into the text.
NumberText scanNumberText(const char* text) noexcept;

// Reads a number text into value, which may be an empty holder. Reading cannot fail: characters
// that are not digits of the radix are skipped, and a text without digits is 0. value is assigned 0
// first. The capacity of the result is a multiple of 32 words that holds it and depends on the
// kernel. Throws std::bad_alloc. Quadratic time with the plain kernel.
void FromText(QLInteger& value, const char* text);

// Returns the number that FromText reads, as a fresh value.
QLInteger parseInteger(const char* text);

// Writes the number text of the radix, without leading zeros. The last byte of the buffer is never
// used, so a text of L characters needs a size of L + 2, at most 2^31.
// Returns the characters written with the terminator, which is below `size`. Returns `size` if the
// buffer is too small; its content is then no usable text. Returns `size`, with an empty text if
// there is a byte for it, if the radix is not 2 to 16. Throws std::bad_alloc. It takes one division
// for each digit with the plain kernel.
std::uint32_t ToText(const QLInteger& value, char* buffer, std::uint32_t size, std::uint32_t radix);

// Returns the text of ToText; an empty text if the radix is not 2 to 16. Throws std::bad_alloc if
// memory runs out or the value has more than 2^31 - 6 bits, since ToText could not count them. It
// is a template so that the library itself contains no std::string code.
template <class Text = std::string>
Text toString(const QLInteger& value, std::uint32_t radix = 10) {
  // In radix 2 each bit is a digit. A sign, a mark, the terminator and the byte that ToText leaves
  // unused come to them.
  if (value.BitLength() > INT32_MAX - 5) throw std::bad_alloc();
  const std::uint32_t size = value.BitLength() + 5;
  const auto buffer = std::make_unique<char[]>(size);
  ToText(value, buffer.get(), size, radix);
  return Text(buffer.get());
}

// Writes the text of ToText: in radix 16 or 8 if the stream is set to it, else in radix 10. A
// template for the same reason.
template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                             const QLInteger& value) {
  using Stream = std::basic_ostream<char, Traits>;
  const auto base = out.flags() & Stream::basefield;
  return out << toString(value, base == Stream::hex ? 16 : base == Stream::oct ? 8 : 10);
}

// Reads hexadecimal digits of either case into bytes, skipping all other characters. The first
// digit of a pair is the high half of its byte, and the first pair is byte 0. All `size` bytes are
// zeroed first. Returns the number of completed bytes; the next byte holds an odd last digit in its
// high half. If half the length of the text, rounded up, is above `size`, writes nothing and
// returns that half, at most 2^31 - 1.
std::int32_t HexToBytes(std::uint8_t* buffer, std::uint32_t size, const char* text) noexcept;

// Writes two upper-case digits for each byte, the high half first, and a terminator. Returns the
// size used, 2 * length + 1. If that is above `size`, writes nothing and returns it, at most
// 2^32 - 1.
std::uint32_t BytesToHex(char* buffer, std::uint32_t size, const std::uint8_t* bytes,
                         std::uint32_t length) noexcept;

// Returns the index of the character in DigitTable, in either case; -1 for any other character, and
// for an index at or above the radix.
std::int32_t DigitValue(char character) noexcept;
std::int32_t DigitValue(char character, std::int32_t radix) noexcept;

// Stores the character at buffer[index] and returns true. If the index is at or above size - 1, as
// signed numbers, writes nothing and returns false. The index is not below 0.
bool PutChar(char character, std::int32_t index, char* buffer, std::uint32_t size) noexcept;

}  // namespace ulm::bignum
