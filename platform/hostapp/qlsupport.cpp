// The second place for the translation exports, for hosts without the core library.
#include "platform/win32/win32.h"

#ifdef _WIN32
#define ULM_QLSUPPORT_API extern "C" __declspec(dllexport)
#else
#define ULM_QLSUPPORT_API extern "C" [[gnu::visibility("default")]]
#endif

// Each result tells these apart from the core library's.
ULM_QLSUPPORT_API int _InitResTranslation(HINSTANCE /*instance*/) { return 2; }
ULM_QLSUPPORT_API int _DeInitResTranslation(HINSTANCE /*instance*/) { return 2; }
ULM_QLSUPPORT_API int _LoadStringNotTrans(HINSTANCE instance, UINT number, char* buffer, int size) {
  return LoadStringA(instance, number, buffer, size);
}
