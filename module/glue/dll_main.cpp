// The library's entry. The system calls it after the static initialisers and before the destructors
// of static objects.
#include "module/glue/instance.h"
#include "module/glue/translation.h"

namespace {

// An optional export of the library itself: called with 1 after the library is attached, and with 0
// before it is detached.
using AfxDllMain = int(HINSTANCE instance, int attached);
constinit AfxDllMain* afxDllMain = nullptr;

// Failures are ignored: the library starts without a translation.
void startTranslation(HINSTANCE instance) noexcept {
  try {
    ResTranslation_Init(instance);
  } catch (...) {  // NOLINT(bugprone-empty-catch): the result is ignored too
  }
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID /*reserved*/) {
  if (reason == DLL_PROCESS_ATTACH) {
    ulm::glue::setInstance(instance);
    DisableThreadLibraryCalls(instance);
    startTranslation(instance);
    afxDllMain = ulm::glue::procedure<AfxDllMain>(instance, "_QLAfxDllMain");
    if (afxDllMain != nullptr) afxDllMain(instance, 1);
  } else if (reason == DLL_PROCESS_DETACH) {
    if (afxDllMain != nullptr) afxDllMain(instance, 0);
  }
  return TRUE;
}
