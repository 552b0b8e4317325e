// Arithmetic on signed 16.16 numbers: magnitudes in 32 bits that wrap around, the sign set at the
// end. Nothing rounds.
#pragma once

#include <cstdint>

namespace ulm::truetype {

std::int32_t fixedMultiply(std::int32_t a, std::int32_t b) noexcept;
// A divisor of 0 gives 0. Remainder and divisor are halved together until the remainder fits into
// 16 bits, so that some quotients lose their last bits.
std::int32_t fixedDivide(std::int32_t a, std::int32_t b) noexcept;
// fixedDivide(fixedMultiply(a, b), c).
std::int32_t fixedMultiplyDivide(std::int32_t a, std::int32_t b, std::int32_t c) noexcept;

}  // namespace ulm::truetype
