// The library's entry, called by the platform behind the static initialisers and before the
// destructors.
#include "module/glue/instance.h"
#include "module/glue/procedure.h"
#include "module/glue/translation.h"

namespace {

// An entry that a library of this make may export to be told of its own coming and going.
using AfxDllMain = int(HINSTANCE instance, int attached);
constinit AfxDllMain* afxDllMain = nullptr;

// A library comes up whatever becomes of its translation.
void startTranslation(HINSTANCE instance) noexcept {
  try {
    ResTranslation_Init(instance);
  } catch (...) {  // NOLINT(bugprone-empty-catch): the result would not be looked at either
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
