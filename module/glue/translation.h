// Forwarders to the resource translation of the core library. They use qlcore.dll if it is in the
// process, otherwise qlsupport.dll; they load neither. If the library that is found lacks the
// export, the other one is not searched. Exceptions of the export pass on.
#pragma once

#include "hostsdk/adapter/win32.h"

// Call the export for the instance and return its result; 0 if there is no export.
int ResTranslation_Init(HINSTANCE instance);
int ResTranslation_DeInit(HINSTANCE instance);

// Loads the untranslated string `number` of the instance into `buffer`, which has `size`
// characters, and returns its length. If there is no export, calls the system's LoadStringA, which
// also states the results for a missing string, a null buffer and a null instance.
int ResTranslation_LoadString(HINSTANCE instance, UINT number, char* buffer, int size);
