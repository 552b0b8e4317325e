// The compression function of QLSHA in two forms, and the choice between them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ulm::bignum::detail {

// The compression function on one block of 16 words, each with its low byte first. `rotate` selects
// SHA-1.
void transformPortable(std::uint32_t (&state)[5], const std::uint8_t* block, bool rotate) noexcept;

// The same on `blockCount` consecutive blocks of a message, each word with its high byte first, by
// the SHA instructions of the processor. It requires haveShaInstructions().
void transformByInstructions(std::uint32_t (&state)[5], const std::uint8_t* blocks,
                             std::size_t blockCount, bool rotate) noexcept;

// Whether the build contains the instructions and the processor has them. It asks the processor
// each time, which can be slow.
bool haveShaInstructions() noexcept;

// The form that objects use. The first use in the process determines it; Unknown means that this
// has not happened. Tests set it. Any thread may do so: the two forms can alternate within a
// message.
enum class ShaPath : std::uint8_t { Unknown, Portable, Instructions };
ShaPath shaPath() noexcept;
void setShaPath(ShaPath path) noexcept;

// Adds `length` bytes to a count of bits modulo 2^64.
inline void countBits(std::uint32_t& low, std::uint32_t& high, std::uint32_t length) noexcept {
  const std::uint32_t bits = length << 3;  // modulo 2^32
  low += bits;
  high += (length >> 29) + (low < bits ? 1u : 0u);
}

}  // namespace ulm::bignum::detail
