#include "truetype/reader/fixed_point.h"

namespace ulm::truetype {
namespace {

std::uint32_t magnitude(std::int32_t value) noexcept {
  const auto bits = static_cast<std::uint32_t>(value);
  return value < 0 ? 0u - bits : bits;
}

std::int32_t withSign(std::uint32_t bits, bool negative) noexcept {
  return static_cast<std::int32_t>(negative ? 0u - bits : bits);
}

}  // namespace

std::int32_t fixedMultiply(std::int32_t a, std::int32_t b) noexcept {
  // The low 32 bits of the whole product above its lowest 16 are the sum of the four part products.
  const std::uint64_t product = std::uint64_t{magnitude(a)} * magnitude(b);
  return withSign(static_cast<std::uint32_t>(product >> 16), (a < 0) != (b < 0));
}

std::int32_t fixedDivide(std::int32_t a, std::int32_t b) noexcept {
  std::uint32_t divisor = magnitude(b);
  if (divisor == 0) return 0;
  const std::uint32_t quotient = magnitude(a) / divisor;
  std::uint32_t remainder = magnitude(a) % divisor;
  while (remainder > 0xFFFF) {
    remainder >>= 1;
    divisor >>= 1;
  }
  return withSign((remainder << 16) / divisor + (quotient << 16), (a < 0) != (b < 0));
}

std::int32_t fixedMultiplyDivide(std::int32_t a, std::int32_t b, std::int32_t c) noexcept {
  return fixedDivide(fixedMultiply(a, b), c);
}

}  // namespace ulm::truetype
