// Runs of big-endian numbers made the host's, or summed, by the processor's byte shuffles where it
// has them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "truetype/format/byte_view.h"

namespace ulm::truetype::detail {

// The first `count` numbers of 32 bits, and of 16 bits each doubled. `out` takes `count` numbers.
// False, with nothing stored, where they are not all there.
bool storeRun32(format::ByteView bytes, std::size_t count, std::uint32_t* out) noexcept;
bool storeDoubledRun16(format::ByteView bytes, std::size_t count, std::uint32_t* out) noexcept;

// The sum of all whole numbers of 32 bits in `bytes`, modulo 2^32.
std::uint32_t sumRun32(format::ByteView bytes) noexcept;

}  // namespace ulm::truetype::detail
