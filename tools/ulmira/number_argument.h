// Numbers on the command line, with a user's slips told.
#pragma once

#include <cstddef>
#include <string>

#include "bignum/integer.h"

namespace ulm::tools {

// The most bytes that a number has in a file or on a line: an input without an end is refused.
inline constexpr std::size_t kMostNumberBytes = 1 << 24;

// The number of a text: decimal, 0x1F or 1Fh, 17o, 101b, with a sign in front or none. Throws
// std::runtime_error with one clear line for a text that is anything else.
bignum::QLInteger parseNumber(const std::string& text);

}  // namespace ulm::tools
