// Numbers as text and as bytes. Texts are 8-bit characters with a zero behind; nothing depends on a
// locale.
//
// The number text has a sign in front and the radix behind: b for 2, o for 8, h for 16, nothing for
// 10, and | for any other radix of 2 to 16, which has no meaning on reading.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <new>
#include <string>

#include "bignum/integer.h"

namespace ulm::bignum {

inline constexpr char DigitTable[] = "0123456789ABCDEF";

// What a number text says before its digits are read.
struct NumberText {
  bool negative;       // a '-' was in front
  std::int32_t radix;  // 2, 8, 10 or 16
  const char* first;   // the digits and what stands among them: [first, last) of the text
  const char* last;
};

// Reads a '-' or '+' in front, then the radix: a last b, o or h of either case, or a leading 0x or
// 0X, which makes a last b a digit; else 10. The text is borrowed.
NumberText scanNumberText(const char* text) noexcept;

// Reads a number. It has no failure: a character that is no digit of the radix is passed over, and
// what has no digits, the empty text and a lone sign too, is 0. The value may be an empty holder.
// It is assigned 0 first; the capacity of the result is a multiple of 32 words that holds it, and
// not below what the value had with the wide kernel. Throws std::bad_alloc alone. Quadratic time
// with the plain kernel, that of a product with the wide one, but for a factor of the length's
// logarithm.
void FromText(QLInteger& value, const char* text);

// The number that FromText reads, as a fresh value.
QLInteger parseInteger(const char* text);

// Writes the number text, without leading zeros, of the radix 2 to 16. Gives the characters written
// with the terminator, or `size` when the buffer is too small: it never uses the buffer's last
// byte, so a text of L characters needs L + 2. The buffer then holds no usable text. Any other
// radix gives `size` and an empty text, if there is a byte for it. A division for each digit with
// the plain kernel. Throws std::bad_alloc.
std::uint32_t ToText(const QLInteger& value, char* buffer, std::uint32_t size, std::uint32_t radix);

// Returns the text of ToText, in radix 2 to 16; an empty text for any other radix. Throws
// std::bad_alloc when memory is short or the text would be longer than signed 32 bits count. It is
// a template so that the library itself needs nothing of std::string.
template <class Text = std::string>
Text toString(const QLInteger& value, std::uint32_t radix = 10) {
  // In radix 2 each bit is a digit; then a sign, a mark, the terminator and the byte that ToText
  // leaves unused.
  if (value.BitLength() > INT32_MAX - 5) throw std::bad_alloc();
  const std::uint32_t size = value.BitLength() + 5;
  const auto buffer = std::make_unique<char[]>(size);
  ToText(value, buffer.get(), size, radix);
  return Text(buffer.get());
}

// Writes the text of ToText: in radix 16 or 8 where the stream is set to it, else in radix 10.
template <class Traits>
std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                             const QLInteger& value) {
  using Stream = std::basic_ostream<char, Traits>;
  const auto base = out.flags() & Stream::basefield;
  return out << toString(value, base == Stream::hex ? 16 : base == Stream::oct ? 8 : 10);
}

// Reads hexadecimal digits of either case, passing over all else, into bytes: the first digit is
// the high half of byte 0. Zeroes all `size` bytes first. Gives the number of bytes completed; an
// odd last digit stays in the high half of the next. If half the text's length, rounded up, is
// above `size`, gives that and writes nothing.
std::int32_t HexToBytes(std::uint8_t* buffer, std::uint32_t size, const char* text) noexcept;

// Writes two upper-case digits a byte and a terminator; gives the size used, 2 * length + 1. If
// that is above `size`, gives it and writes nothing.
std::uint32_t BytesToHex(char* buffer, std::uint32_t size, const std::uint8_t* bytes,
                         std::uint32_t length) noexcept;

// The value of a digit of either case, -1 for any other character or a value not below the radix.
std::int32_t DigitValue(char character) noexcept;
std::int32_t DigitValue(char character, std::int32_t radix) noexcept;

// Stores the character at `index`, unless that is at or above size - 1, compared as signed numbers:
// then it gives false and writes nothing.
bool PutChar(char character, std::int32_t index, char* buffer, std::uint32_t size) noexcept;

}  // namespace ulm::bignum
