// Big-endian values in bare bytes, and the library's one way of scaling lengths.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/format/big_endian.h"

namespace ulm::truetype {

// The big-endian number at bytes[offset], at any alignment. The caller vouches that all its bytes
// can be read; the font operations themselves read through the views of format/byte_view.h.
constexpr std::uint16_t readUInt16(const std::uint8_t* bytes, std::size_t offset) noexcept {
  return format::loadBigEndian<std::uint16_t>(bytes + offset);
}
constexpr std::int16_t readInt16(const std::uint8_t* bytes, std::size_t offset) noexcept {
  return format::loadBigEndian<std::int16_t>(bytes + offset);
}
constexpr std::uint32_t readUInt32(const std::uint8_t* bytes, std::size_t offset) noexcept {
  return format::loadBigEndian<std::uint32_t>(bytes + offset);
}
constexpr std::int32_t readInt32(const std::uint8_t* bytes, std::size_t offset) noexcept {
  return format::loadBigEndian<std::int32_t>(bytes + offset);
}

constexpr std::uint16_t swapBytes16(std::uint16_t value) noexcept {
  return static_cast<std::uint16_t>(value << 8 | value >> 8);
}

// value * 1000 in 32 bits that wrap around, then divided by unitsPerEm towards zero; nothing
// rounds. A unitsPerEm of 0 gives 0.
constexpr std::int32_t scaleToThousandths(std::int32_t unitsPerEm, std::int32_t value) noexcept {
  if (unitsPerEm == 0) return 0;
  const auto product = static_cast<std::int32_t>(static_cast<std::uint32_t>(value) * 1000u);
  // In 32 bits the lowest number divided by -1 has no result; here it wraps like the product.
  if (unitsPerEm == -1) return static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(product));
  return product / unitsPerEm;
}

}  // namespace ulm::truetype
