// The library's own instance handle.
#pragma once

#include "hostsdk/adapter/win32.h"

// The handle of the library that this code is linked into. Before the library's entry has stored
// it, it is found by the address of this function and stored; null only where the platform knows no
// module at that address. No lock: the entry stores the handle before another thread can come in.
HINSTANCE Module_GetInstance() noexcept;

namespace ulm::glue {

// Stores the handle that the library's entry was given.
void setInstance(HINSTANCE instance) noexcept;

// The module that holds an address; null where the platform knows none there.
HMODULE moduleHolding(const void* address) noexcept;

}  // namespace ulm::glue
