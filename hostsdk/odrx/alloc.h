// The object runtime's allocator, from the library TD_Alloc_qld. The module and the facilities that
// share the host's heap allocate and free all their memory here. Every function is thread-safe.
#pragma once

#include <cstddef>

#include "hostsdk/export.h"

// Returns a block of `bytes` bytes, aligned to 16 bytes; null if there is no memory. A size of 0
// returns a block too, which must be freed.
ULM_ODRX_API void* odrxAlloc(std::size_t bytes) noexcept;

// Returns a block of `newBytes` bytes with the first min(oldBytes, newBytes) bytes of `block`, and
// frees `block`. Returns null if there is no memory; `block` stays valid then. With a null `block`
// it does the same as odrxAlloc. `oldBytes` must not exceed the size with which `block` was
// allocated.
ULM_ODRX_API void* odrxRealloc(void* block, std::size_t newBytes, std::size_t oldBytes) noexcept;

// Frees a block; null is allowed. A block that is not from odrxAlloc, or is already free, ends the
// process with a message, so that mixed heaps are never missed.
ULM_ODRX_API void odrxFree(void* block) noexcept;
