// Big-endian numbers in bare bytes: the one load and the one store of the font library.
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace ulm::truetype::format {

// A type that a font's number can have: an integer of 1, 2, 4 or 8 bytes.
template <class T>
concept Number =
    std::integral<T> && !std::same_as<T, bool> && std::has_single_bit(sizeof(T)) && sizeof(T) <= 8;

// The number at `at`, which may have any alignment. The caller vouches for sizeof(T) bytes.
// Written out per size, since compilers then make one load of it.
template <Number T>
constexpr T loadBigEndian(const std::uint8_t* at) noexcept {
  if constexpr (sizeof(T) == 1) {
    return static_cast<T>(at[0]);
  } else if constexpr (sizeof(T) == 2) {
    return static_cast<T>(std::uint32_t{at[0]} << 8 | std::uint32_t{at[1]});
  } else if constexpr (sizeof(T) == 4) {
    return static_cast<T>(std::uint32_t{at[0]} << 24 | std::uint32_t{at[1]} << 16 |
                          std::uint32_t{at[2]} << 8 | std::uint32_t{at[3]});
  } else {
    return static_cast<T>(std::uint64_t{loadBigEndian<std::uint32_t>(at)} << 32 |
                          loadBigEndian<std::uint32_t>(at + 4));
  }
}

// Stores `value` at `at`. The caller vouches for sizeof(T) bytes.
template <Number T>
constexpr void storeBigEndian(std::uint8_t* at, T value) noexcept {
  const auto bits = static_cast<std::make_unsigned_t<T>>(value);
  if constexpr (sizeof(T) == 1) {
    at[0] = bits;
  } else if constexpr (sizeof(T) == 2) {
    at[0] = static_cast<std::uint8_t>(bits >> 8);
    at[1] = static_cast<std::uint8_t>(bits);
  } else {
    using Half = std::conditional_t<sizeof(T) == 4, std::uint16_t, std::uint32_t>;
    storeBigEndian<Half>(at, static_cast<Half>(bits >> 8 * sizeof(Half)));
    storeBigEndian<Half>(at + sizeof(Half), static_cast<Half>(bits));
  }
}

}  // namespace ulm::truetype::format
