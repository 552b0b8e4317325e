// The language's allocation operators, for this library alone: its export list keeps them inside,
// so that the host and the language's own library go on with theirs. A block never crosses over:
// the library holds no standard type whose storage is made inside the language's library.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "module/glue/allocation.h"

namespace {

using ulm::glue::allocate;

// What odrxAlloc aligns to. A stricter block starts later in a larger one, whose own start stands
// in the word before it.
constexpr std::size_t kPlainAlignment = 16;

void* allocateAligned(std::size_t bytes, std::align_val_t wanted) {
  const auto alignment = static_cast<std::size_t>(wanted);
  if (alignment <= kPlainAlignment) return allocate(bytes);
  const std::size_t extra = alignment + sizeof(void*);
  // A size that would wrap is more than there can be: it fails by the same rule.
  void* whole = allocate(bytes > SIZE_MAX - extra ? SIZE_MAX : bytes + extra);
  if (whole == nullptr) return nullptr;
  void* block = static_cast<void**>(whole) + 1;
  std::size_t room = bytes + alignment;
  block = std::align(alignment, bytes, block, room);  // there is room by the size of the whole
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
