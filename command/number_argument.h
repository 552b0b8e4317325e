// Numbers on the command line.
#pragma once

#include <cstddef>
#include <string>

#include "bignum/integer.h"

namespace ulm::tools {

// The maximum length in bytes of a number in a file or on a line, so that an endless input is
// refused.
inline constexpr std::size_t kMaxNumberBytes = 1 << 24;

// Returns the number of a text: decimal, 0x1F or 1Fh, 17o, 101b, with or without a sign before it.
// Throws std::runtime_error for any other text: with the character and its position if one is not a
// digit, which bignum::parseInteger would skip.
bignum::QLInteger parseNumber(const std::string& text);

}  // namespace ulm::tools
