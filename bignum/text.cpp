#include "bignum/text.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "bignum/kernel/methods.h"

namespace ulm::bignum {
namespace {

char upperCased(char character) noexcept {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A')
                                              : character;
}

// The character after the digits; '\0' if there is none.
char radixMark(std::uint32_t radix) noexcept {
  switch (radix) {
    case 2:
      return 'b';
    case 8:
      return 'o';
    case 10:
      return '\0';
    case 16:
      return 'h';
    default:
      return '|';
  }
}

// Appends characters to a buffer by the rule of PutChar.
class TextWriter {
 public:
  TextWriter(char* buffer, std::uint32_t size) noexcept : buffer_(buffer), size_(size) {}
  bool put(char character) noexcept {
    if (!PutChar(character, length_, buffer_, size_)) return false;
    ++length_;
    return true;
  }
  // Writes a terminator after the text, which does not become a part of it.
  bool terminate() noexcept { return PutChar('\0', length_, buffer_, size_); }
  void reverse() noexcept { std::reverse(buffer_, buffer_ + length_); }
  std::uint32_t sizeUsed() const noexcept { return static_cast<std::uint32_t>(length_) + 1; }

 private:
  char* buffer_;
  std::uint32_t size_;
  std::int32_t length_ = 0;
};

// Writes the digits of a value that is not zero, the lowest first. Returns false if they do not
// fit.
bool putDigits(TextWriter& out, const QLInteger& value, std::uint32_t radix) {
  QLInteger rest(value);
  rest.negative = 0;
  QLInteger quotient(kEmptyHolder);
  QLInteger digit(kEmptyHolder);
  while (rest.IsNonZero()) {
    Divide(rest, static_cast<std::int32_t>(radix), quotient, digit);
    if (!out.put(DigitTable[digit.words[0]])) return false;
    rest.Swap(quotient);
  }
  return true;
}

}  // namespace

NumberText scanNumberText(const char* text) noexcept {
  NumberText scanned{*text == '-', 10, text, text + std::strlen(text)};
  if (*text == '-' || *text == '+') ++scanned.first;
  if (scanned.first == scanned.last) return scanned;

  const bool prefixed = scanned.last - scanned.first >= 2 && scanned.first[0] == '0' &&
                        upperCased(scanned.first[1]) == 'X';
  const char mark = upperCased(scanned.last[-1]);
  if (mark == 'H' || mark == 'O' || (mark == 'B' && !prefixed)) {
    scanned.radix = mark == 'H' ? 16 : mark == 'O' ? 8 : 2;
    --scanned.last;
  } else if (prefixed) {
    scanned.radix = 16;
  }
  // Before a last h the prefix could stay: its 0 adds nothing, and x is no digit. It is dropped, so
  // that what remains are the digits.
  if (prefixed && scanned.radix == 16) scanned.first += 2;
  return scanned;
}

void FromText(QLInteger& value, const char* text) {
  const NumberText scanned = scanNumberText(text);
  value.Assign(0);
  if (kernel::readDigits(value, scanned.first, scanned.last, scanned.radix)) {
    if (scanned.negative) value.MakeNegative();
    return;
  }
  for (const char* next = scanned.first; next != scanned.last; ++next) {
    const std::int32_t digit = DigitValue(*next, scanned.radix);
    if (digit < 0) continue;
    value *= scanned.radix;
    value += digit;
  }
  if (scanned.negative) value.MakeNegative();
}

QLInteger parseInteger(const char* text) {
  QLInteger made(kEmptyHolder);
  FromText(made, text);
  return made;
}

std::uint32_t ToText(const QLInteger& value, char* buffer, std::uint32_t size,
                     std::uint32_t radix) {
  if (radix < 2 || radix > 16) {
    if (size > 0) buffer[0] = '\0';
    return size;
  }
  if (value.IsNonZero()) {
    // All that is stored must be at an index below size - 1, counted with a sign.
    const std::int64_t room = static_cast<std::int32_t>(size - 1);
    const std::uint32_t sign = value.IsNegative() ? 1 : 0;
    const char mark = radixMark(radix);
    const std::int64_t beside = std::int64_t{sign} + (mark != '\0' ? 1 : 0) + 1;
    std::size_t length = 0;
    if (kernel::writeDigits(value, radix, buffer + (room > beside ? sign : 0),
                            room > beside ? static_cast<std::size_t>(room - beside) : 0, length)) {
      if (static_cast<std::int64_t>(length) + beside > room) return size;
      if (sign != 0) buffer[0] = '-';
      char* end = buffer + sign + length;
      if (mark != '\0') *end++ = mark;
      *end++ = '\0';
      return static_cast<std::uint32_t>(end - buffer);
    }
  }
  TextWriter out(buffer, size);
  if (!value.IsNonZero()) {
    if (!out.put('0')) return size;
  } else {
    if (!putDigits(out, value, radix)) return size;
    if (value.IsNegative() && !out.put('-')) return size;
    if (!out.terminate()) return size;
    out.reverse();
  }
  const char mark = radixMark(radix);
  if (mark != '\0' && !out.put(mark)) return size;
  if (!out.terminate()) return size;
  return out.sizeUsed();
}

std::int32_t HexToBytes(std::uint8_t* buffer, std::uint32_t size, const char* text) noexcept {
  const std::size_t needed = std::strlen(text) / 2 + std::strlen(text) % 2;
  if (needed > size) return static_cast<std::int32_t>(std::min<std::size_t>(needed, INT32_MAX));
  std::fill_n(buffer, size, std::uint8_t{0});
  std::int32_t completed = 0;
  bool lowHalf = false;
  for (; *text != '\0'; ++text) {
    const std::int32_t digit = DigitValue(*text);
    if (digit < 0) continue;
    const std::int32_t placed = lowHalf ? buffer[completed] | digit : digit << 4;
    buffer[completed] = static_cast<std::uint8_t>(placed);
    if (lowHalf) ++completed;
    lowHalf = !lowHalf;
  }
  return completed;
}

std::uint32_t BytesToHex(char* buffer, std::uint32_t size, const std::uint8_t* bytes,
                         std::uint32_t length) noexcept {
  const std::uint64_t needed = 2 * std::uint64_t{length} + 1;
  if (needed > size) {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(needed, UINT32_MAX));
  }
  for (std::uint32_t i = 0; i < length; ++i) {
    *buffer++ = DigitTable[bytes[i] >> 4];
    *buffer++ = DigitTable[bytes[i] & 15];
  }
  *buffer = '\0';
  return static_cast<std::uint32_t>(needed);
}

std::int32_t DigitValue(char character) noexcept {
  const char upper = upperCased(character);
  if (upper >= '0' && upper <= '9') return upper - '0';
  if (upper >= 'A' && upper <= 'F') return upper - 'A' + 10;
  return -1;
}

std::int32_t DigitValue(char character, std::int32_t radix) noexcept {
  const std::int32_t value = DigitValue(character);
  return value < radix ? value : -1;
}

bool PutChar(char character, std::int32_t index, char* buffer, std::uint32_t size) noexcept {
  if (index >= static_cast<std::int32_t>(size - 1)) return false;
  buffer[index] = character;
  return true;
}

}  // namespace ulm::bignum
