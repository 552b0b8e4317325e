// Modules of the process: the library's own instance handle, and exports of other modules.
#pragma once

#include "hostsdk/adapter/win32.h"

// Returns the instance handle of the library that this code is linked into. If the library's entry
// has not stored the handle yet, the function finds it by its own address and stores it. Returns
// null only if the system knows no module at that address. No lock is needed: the entry stores the
// handle before a second thread can call.
HINSTANCE Module_GetInstance() noexcept;

namespace ulm::glue {

// Stores the handle that the library's entry received.
void setInstance(HINSTANCE instance) noexcept;

// Returns the module that contains an address; null if there is none.
HMODULE moduleHolding(const void* address) noexcept;

// Returns the export `name` of `module` as a function of the given type; null if there is no such
// export. `name` is not null. A null `module` is the program. The caller guarantees the type.
template <class Function>
Function* procedure(HMODULE module, const char* name) noexcept {
  // void(*)() is the intermediate type that -Wcast-function-type accepts.
  return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

}  // namespace ulm::glue
