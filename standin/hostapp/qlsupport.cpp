// The translation exports for hosts without the core library.
#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"

// The result 2 distinguishes these from the core library's, which return 1.
extern "C" ULM_EXPORT int _InitResTranslation(HINSTANCE /*instance*/) { return 2; }
extern "C" ULM_EXPORT int _DeInitResTranslation(HINSTANCE /*instance*/) { return 2; }
extern "C" ULM_EXPORT int _LoadStringNotTrans(HINSTANCE instance, UINT number, char* buffer,
                                              int size) {
  return LoadStringA(instance, number, buffer, size);
}
