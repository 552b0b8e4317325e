// Runs of big-endian numbers made the host's, or summed, by the processor's byte shuffles where it
// has them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ulm::truetype::detail {

// `count` numbers of 32 bits, and of 16 bits each doubled. The caller vouches for the bytes, which
// may lie at any alignment, and for room for `count` numbers.
void storeRun32(const std::uint8_t* bytes, std::size_t count, std::uint32_t* out) noexcept;
void storeDoubledRun16(const std::uint8_t* bytes, std::size_t count, std::uint32_t* out) noexcept;

// The sum of `count` numbers of 32 bits, modulo 2^32. The caller vouches for the bytes.
std::uint32_t sumRun32(const std::uint8_t* bytes, std::size_t count) noexcept;

}  // namespace ulm::truetype::detail
