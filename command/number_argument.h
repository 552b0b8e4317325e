// Numbers as users write them: the forms that are read, and the forms of results.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "bignum/integer.h"

namespace ulm::tools {

// The maximum length in bytes of a number in a file or on a line, so that an endless input is
// refused.
inline constexpr std::size_t kMaxNumberBytes = 1 << 24;

// Returns the number of a text, with or without a sign before it:
//   123         in `radix`, which is 2 to 16
//   1Fh 17o 1b  in radix 16, 8 or 2; a b that is a digit of `radix` is one
//   0x1F 0o17 0b1
//   7#66        in the radix before the '#', 2 to 16
//   00:9f:1c    hexadecimal, with white space and colons between the digits
// Throws std::runtime_error for any other text: with the character and its position if one is not a
// digit.
bignum::QLInteger parseNumber(const std::string& text, std::uint32_t radix = 10);

// The form of a result.
enum class NumberForm {
  Mark,    // 1Fh, 17o and 1b; 123; 7#66 in any other radix
  Prefix,  // 0x1F, 0o17 and 0b1; the others as in Mark
  Bare     // digits only
};

// Returns the text of a number in a radix of 2 to 16. parseNumber reads it back; for Bare it needs
// the same radix.
std::string numberText(const bignum::QLInteger& number, std::uint32_t radix, NumberForm form);

}  // namespace ulm::tools
