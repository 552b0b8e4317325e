// The services of the core library that the module calls, or looks up by name at run time.
#pragma once

#include <cstdint>
#include <typeinfo>

#include "core/iface/iheap.h"
#include "core/iface/iparam.h"
#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"

// An empty keyed set in memory, with one reference for the caller; null where there is no memory.
ULM_QLCORE_API IParam* new_MemParam();

// Takes note of a product's .wld file by its bare name; 1, or 0 for a null or empty name.
ULM_QLCORE_API int Supp_AddWld(const wchar_t* name);

// The code page of narrow text in this process.
ULM_QLCORE_API UINT Supp_GetACP() noexcept;

// The heap number `index`; only 0 is there, any other gives null.
ULM_QLCORE_API IHeap* Mem_DefaultHeap(int index) noexcept;

// Makes an object of a registered class (control.h). Writes *outObject only when it did; 1 or 0.
ULM_QLCORE_API int CreateObjectC(const char* className, void* outer, const std::type_info& wanted,
                                 void** outObject);

// Resource translation: counted per process. LoadString gives what the platform's LoadStringA does.
ULM_QLCORE_API int _InitResTranslation(HINSTANCE instance);
ULM_QLCORE_API int _DeInitResTranslation(HINSTANCE instance);
ULM_QLCORE_API int _LoadStringNotTrans(HINSTANCE instance, UINT number, char* buffer, int size);
