// The entry of a library on a system that has none: calls the library's DllMain where Windows
// would.
//
// This source is compiled into each library that has a DllMain. Its one object has the default
// initialisation priority, which the linker places behind every explicit priority, and all other
// static initialisers of such a library carry an explicit one (module/glue/load_order.h). So it is
// built last, at process attach, and, since destruction runs backwards, taken down first, at
// process detach.
#include "hostsdk/adapter/win32.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

namespace {

HINSTANCE libraryOf(const void* address) noexcept {
  MEMORY_BASIC_INFORMATION information{};
  if (VirtualQuery(address, &information, sizeof information) == 0) return nullptr;
  return static_cast<HINSTANCE>(information.AllocationBase);
}

class DllEntry {
 public:
  DllEntry() : instance_(libraryOf(this)) { DllMain(instance_, DLL_PROCESS_ATTACH, nullptr); }
  ~DllEntry() { DllMain(instance_, DLL_PROCESS_DETACH, nullptr); }
  DllEntry(const DllEntry&) = delete;
  DllEntry& operator=(const DllEntry&) = delete;

 private:
  HINSTANCE instance_;
};

DllEntry dllEntry;

}  // namespace
