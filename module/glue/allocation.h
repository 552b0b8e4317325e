// The allocation rule of the library, and safe ways to make objects under it.
//
// All memory goes through odrxAlloc and odrxFree. When odrxAlloc fails, std::bad_alloc is raised,
// unless the process has a new-handler: then that is called once, there is no second attempt, and
// null is given back. A plain `new T` under this rule would run a constructor on null, so objects
// are made with makeObject.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

#include "hostsdk/adapter/alloc.h"

namespace ulm::glue {

// `bytes` bytes under the rule above. Null for a size above 0 means: the new-handler has been
// called.
void* allocate(std::size_t bytes);

// Gives back what odrxAlloc or allocate gave.
struct OdrxDeleter {
  void operator()(void* memory) const noexcept { odrxFree(memory); }
};
template <class T>
using OdrxMemory = std::unique_ptr<T, OdrxDeleter>;  // for T without a destructor to run

// A T in memory from allocate, or null where there is none after a new-handler. T carries a class
// operator delete over odrxFree, so that `delete` pairs in every program.
template <class T, class... Arguments>
T* makeObject(Arguments&&... arguments) {
  OdrxMemory<void> memory(allocate(sizeof(T)));
  if (memory == nullptr) return nullptr;
  T* object = ::new (memory.get()) T(std::forward<Arguments>(arguments)...);
  static_cast<void>(memory.release());  // the object owns its memory now
  return object;
}

}  // namespace ulm::glue
