// Big-endian values into bare bytes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ulm::truetype::detail {

// The caller vouches for the bytes at bytes[offset].
constexpr void put16(std::uint8_t* bytes, std::size_t offset, std::uint32_t value) noexcept {
  bytes[offset] = static_cast<std::uint8_t>(value >> 8);
  bytes[offset + 1] = static_cast<std::uint8_t>(value);
}
constexpr void put32(std::uint8_t* bytes, std::size_t offset, std::uint32_t value) noexcept {
  put16(bytes, offset, value >> 16);
  put16(bytes, offset + 2, value);
}

// Up to the next multiple of 4, as tables lie in a file.
constexpr std::uint64_t padded(std::uint64_t length) noexcept {
  return (length + 3) & ~std::uint64_t{3};
}

}  // namespace ulm::truetype::detail
