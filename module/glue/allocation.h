// The allocation rule of the library, and safe ways to make objects under it.
//
// All memory comes from odrxAlloc and is freed by odrxFree. If odrxAlloc fails and the process has
// no new-handler, the library raises std::bad_alloc. If there is a new-handler, the library calls
// it once, does not try again and returns null. Under this rule a plain `new T` would run a
// constructor on null, so objects are created with makeObject.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

#include "hostsdk/adapter/alloc.h"

namespace ulm::glue {

// Returns a block of `bytes` bytes under the rule above. For a size above 0, null means that the
// new-handler has been called. For a size of 0 the result is that of odrxAlloc.
void* allocate(std::size_t bytes);

// Frees memory from odrxAlloc or allocate; null is allowed.
struct OdrxDeleter {
  void operator()(void* memory) const noexcept { odrxFree(memory); }
};
template <class T>
using OdrxMemory = std::unique_ptr<T, OdrxDeleter>;  // T has no destructor that must run

// Creates a T in memory from allocate. Returns null if allocate does; raises what allocate and the
// constructor raise, and leaks nothing then. T needs an operator delete of its own that calls
// odrxFree, so that `delete` uses the right heap in every program.
template <class T, class... Arguments>
T* makeObject(Arguments&&... arguments) {
  OdrxMemory<void> memory(allocate(sizeof(T)));
  if (memory == nullptr) return nullptr;
  T* object = ::new (memory.get()) T(std::forward<Arguments>(arguments)...);
  static_cast<void>(memory.release());  // the object owns its memory now
  return object;
}

}  // namespace ulm::glue
