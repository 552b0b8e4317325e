// The object runtime's allocator, from the library TD_Alloc_qld. All memory of the module and of
// the facilities that share the host's heap comes from here and goes back here.
#pragma once

#include <cstddef>

#include "hostsdk/export.h"

// `bytes` bytes, aligned for any type of the language up to 16 bytes; null where there is no
// memory. A size of 0 gives a block of its own as well. Any thread may call.
ULM_ODRX_API void* odrxAlloc(std::size_t bytes) noexcept;

// A block of `newBytes` with the first min(oldBytes, newBytes) bytes of `block`, which is gone;
// null where there is no memory, and then `block` stays. A null block is as odrxAlloc. `oldBytes`
// may not be above the size that the block was made with.
ULM_ODRX_API void* odrxRealloc(void* block, std::size_t newBytes, std::size_t oldBytes) noexcept;

// Gives a block back; null is allowed. A block that is not from odrxAlloc, or was given back
// before, ends the process with a message: such a mix of heaps must never go by unseen.
ULM_ODRX_API void odrxFree(void* block) noexcept;
