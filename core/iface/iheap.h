// A heap of the core library, named where a container is told which heap it belongs to.
#pragma once

#include <cstddef>

class IHeap {
 public:
  virtual void* Allocate(std::size_t bytes) = 0;  // null where there is no memory
  virtual void Free(void* block) = 0;

 protected:
  ~IHeap() = default;
};
