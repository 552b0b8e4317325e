// Arithmetic on signed 16.16 numbers: magnitudes in 32 bits that wrap around, the sign set at the
// end. Nothing rounds.
#pragma once

#include <cstdint>

namespace ulm::truetype {

std::int32_t fixedMultiply(std::int32_t a, std::int32_t b) noexcept;
// A divisor of 0 gives 0. Remainder and divisor are halved together until the remainder fits into
// 16 bits, which costs the last bits of some quotients.
std::int32_t fixedDivide(std::int32_t a, std::int32_t b) noexcept;
// a * b / c, in these two steps.
std::int32_t fixedMultiplyDivide(std::int32_t a, std::int32_t b, std::int32_t c) noexcept;

}  // namespace ulm::truetype
