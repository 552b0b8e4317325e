// A heap of the core library. A container reports the heap that it was created with.
#pragma once

#include <cstddef>

class IHeap {
 public:
  // Returns a block of `bytes` bytes, or null if there is no memory.
  virtual void* Allocate(std::size_t bytes) = 0;
  // Frees a block of this heap; null is allowed.
  virtual void Free(void* block) = 0;

 protected:
  ~IHeap() = default;
};
