// An export of a module as a function of a given type.
#pragma once

#include "hostsdk/adapter/win32.h"

namespace ulm::glue {

// Null where `module` does not export `name`. The caller vouches for the type.
template <class Function>
Function* procedure(HMODULE module, const char* name) noexcept {
  // Through the one function type that compilers let stand for any other.
  return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

}  // namespace ulm::glue
