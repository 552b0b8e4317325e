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

}  // namespace ulm::truetype::detail
