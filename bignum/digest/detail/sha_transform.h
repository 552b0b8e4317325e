// The transforms beneath QLSHA, and which of them is taken.
#pragma once

#include <cstddef>
#include <cstdint>

namespace ulm::bignum::detail {

// The compression function on one block of 16 words, each low byte first. It reads and writes
// nothing but the state and the block.
void transformPortable(std::uint32_t (&state)[5], const std::uint8_t* block, bool rotate) noexcept;

// The same on `blockCount` blocks one behind the other, as a message has them: each word high byte
// first. By the processor's SHA instructions; only where haveShaInstructions().
void transformByInstructions(std::uint32_t (&state)[5], const std::uint8_t* blocks,
                             std::size_t blockCount, bool rotate) noexcept;

// Whether they are built in and the processor has them. Asks the processor each time, which can be
// slow.
bool haveShaInstructions() noexcept;

// The transform that objects take: found out at the first use in the process, or set. Setting is
// for tests; any thread may do so, but two paths in one message are pointless, not harmful.
enum class ShaPath : std::uint8_t { Unknown, Portable, Instructions };
ShaPath shaPath() noexcept;
void setShaPath(ShaPath path) noexcept;

// Adds `length` bytes to a count of bits.
inline void countBits(std::uint32_t& low, std::uint32_t& high, std::uint32_t length) noexcept {
  const std::uint32_t bits = length << 3;  // modulo 2^32
  low += bits;
  high += (length >> 29) + (low < bits ? 1u : 0u);
}

}  // namespace ulm::bignum::detail
