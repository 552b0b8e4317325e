// The allocation operators of the language, for this library only. The library does not export
// them, so the host and the C++ run-time library keep their own. No block is allocated by one and
// freed by the other: this library uses no standard type whose storage is managed inside the
// run-time library.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "module/glue/allocation.h"

namespace {

using ulm::glue::allocate;

// The alignment of odrxAlloc. A block with a stricter alignment is part of a larger block from
// odrxAlloc; the word before it holds the address of the larger block.
constexpr std::size_t kPlainAlignment = 16;

void* allocateAligned(std::size_t bytes, std::align_val_t wanted) {
  const auto alignment = static_cast<std::size_t>(wanted);
  if (alignment <= kPlainAlignment) return allocate(bytes);
  const std::size_t extra = alignment + sizeof(void*);
  // If the sum would overflow, ask for SIZE_MAX, so that the request fails through the normal path.
  void* whole = allocate(bytes > SIZE_MAX - extra ? SIZE_MAX : bytes + extra);
  if (whole == nullptr) return nullptr;
  void* block = static_cast<void**>(whole) + 1;
  std::size_t capacity = bytes + alignment;
  block =
      std::align(alignment, bytes, block, capacity);  // cannot fail: the whole block has the room
  static_cast<void**>(block)[-1] = whole;
  return block;
}

void freeAligned(void* block, std::align_val_t alignment) noexcept {
  const bool plain = static_cast<std::size_t>(alignment) <= kPlainAlignment;
  odrxFree(block == nullptr || plain ? block : static_cast<void**>(block)[-1]);
}

template <class Allocate>
void* orNull(Allocate allocation) noexcept {
  try {
    return allocation();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

void* operator new(std::size_t bytes) { return allocate(bytes); }
void* operator new[](std::size_t bytes) { return allocate(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return orNull([=] { return allocate(bytes); });
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
  return orNull([=] { return allocate(bytes); });
}
void* operator new(std::size_t bytes, std::align_val_t alignment) {
  return allocateAligned(bytes, alignment);
}
void* operator new[](std::size_t bytes, std::align_val_t alignment) {
  return allocateAligned(bytes, alignment);
}
void* operator new(std::size_t bytes, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  return orNull([=] { return allocateAligned(bytes, alignment); });
}
void* operator new[](std::size_t bytes, std::align_val_t alignment,
                     const std::nothrow_t&) noexcept {
  return orNull([=] { return allocateAligned(bytes, alignment); });
}

void operator delete(void* block) noexcept { odrxFree(block); }
void operator delete[](void* block) noexcept { odrxFree(block); }
void operator delete(void* block, std::size_t) noexcept { odrxFree(block); }
void operator delete[](void* block, std::size_t) noexcept { odrxFree(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { odrxFree(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { odrxFree(block); }
void operator delete(void* block, std::align_val_t alignment) noexcept {
  freeAligned(block, alignment);
}
void operator delete[](void* block, std::align_val_t alignment) noexcept {
  freeAligned(block, alignment);
}
void operator delete(void* block, std::size_t, std::align_val_t alignment) noexcept {
  freeAligned(block, alignment);
}
void operator delete[](void* block, std::size_t, std::align_val_t alignment) noexcept {
  freeAligned(block, alignment);
}
void operator delete(void* block, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  freeAligned(block, alignment);
}
void operator delete[](void* block, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  freeAligned(block, alignment);
}
