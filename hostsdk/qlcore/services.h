// The services of the core library that the module calls or finds by name at run time.
#pragma once

#include <cstdint>
#include <typeinfo>

#include "core/iface/iheap.h"
#include "core/iface/iparam.h"
#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"

// Returns an empty keyed set in memory with one reference for the caller; null if there is no
// memory.
ULM_QLCORE_API IParam* new_MemParam();

// Records a product's .wld file, given by its bare name. Returns 1, or 0 if the name is null or
// empty.
ULM_QLCORE_API int Supp_AddWld(const wchar_t* name);

// Returns the code page of narrow text in this process.
ULM_QLCORE_API UINT Supp_GetACP() noexcept;

// Returns the heap with that index. There is only heap 0; any other index returns null.
ULM_QLCORE_API IHeap* Mem_DefaultHeap(int index) noexcept;

// Creates an object of a registered class.
//   className  may be null, which names no class
//   outer      ignored; may be null
//   wanted     the type record of the interface that the caller wants
//   outObject  receives the object with a reference for the caller. Unchanged if there is none. May
//              be null, then no object is created
// Returns 1 if an object was created, otherwise 0.
ULM_QLCORE_API int CreateObjectC(const char* className, void* outer, const std::type_info& wanted,
                                 void** outObject);

// Resource translation. The first two count users per process and return 1. _LoadStringNotTrans
// returns what the system's LoadStringA returns for the same arguments.
ULM_QLCORE_API int _InitResTranslation(HINSTANCE instance);
ULM_QLCORE_API int _DeInitResTranslation(HINSTANCE instance);
ULM_QLCORE_API int _LoadStringNotTrans(HINSTANCE instance, UINT number, char* buffer, int size);
