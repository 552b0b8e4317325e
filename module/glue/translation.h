// Forwarders to the resource translation of the core library. They look for `qlcore.dll`, and only
// where it is not in the process for `qlsupport.dll`; neither is ever loaded from here. A library
// that was found but lacks the export ends the search. What the core library raises passes on.
#pragma once

#include "hostsdk/adapter/win32.h"

// What the library's entry gives for the instance; 0 where there is none.
int ResTranslation_Init(HINSTANCE instance);
int ResTranslation_DeInit(HINSTANCE instance);

// The untranslated string `number` of the instance, written to `buffer` of `size` characters; gives
// its length. Where the core library has no entry for it, the platform's LoadStringA does the work.
int ResTranslation_LoadString(HINSTANCE instance, UINT number, char* buffer, int size);
