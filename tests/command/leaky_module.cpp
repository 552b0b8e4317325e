// A module that does not release what it took: a record, memory, and a reference to itself.
#include "hostsdk/export.h"
#include "hostsdk/odrx/alloc.h"
#include "hostsdk/odrx/win32_module.h"
#include "hostsdk/qlcore/services.h"
#include "module/glue/instance.h"

namespace {

IParam* kept = nullptr;

class LeakyModule : public OdRxModule {
 public:
  bool initApp() override {
    kept = new_MemParam();
    wchar_t name[2048] = {};
    GetModuleFileNameW(Module_GetInstance(), name, 2047);
    LoadLibraryW(name);
    return true;
  }
  void uninitApp() override {}
};

}  // namespace

extern "C" ULM_EXPORT void odrxGetAPIVersion(std::uint32_t* a, std::uint32_t* b, std::uint32_t* c,
                                             std::uint32_t* d) {
  *a = *b = *c = *d = 1;
}

extern "C" ULM_EXPORT OdRxModule* odrxCreateModuleObject(HINSTANCE* slot) {
  using Object = OdRxWin32Module<LeakyModule, LeakyModule>;
  return ::new (odrxAlloc(sizeof(Object))) Object(*slot);
}
