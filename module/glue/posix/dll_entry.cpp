// Calls a library's DllMain at process attach and detach, on a system that does not do so itself.
//
// This source is compiled into each library that has a DllMain. Its object has the default
// initialisation priority, which the linker sorts after every explicit priority. All other static
// initialisers of such a library have an explicit one (module/glue/switch_flags.h). So this object
// is built last and, because destruction is in reverse order, destroyed first.
#include "module/glue/instance.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

namespace {

class DllEntry {
 public:
  DllEntry() : instance_(ulm::glue::moduleHolding(this)) {
    DllMain(instance_, DLL_PROCESS_ATTACH, nullptr);
  }
  ~DllEntry() { DllMain(instance_, DLL_PROCESS_DETACH, nullptr); }
  DllEntry(const DllEntry&) = delete;
  DllEntry& operator=(const DllEntry&) = delete;

 private:
  HINSTANCE instance_;
};

DllEntry dllEntry;

}  // namespace
