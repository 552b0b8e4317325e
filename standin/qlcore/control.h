// Controls of the stand-in core library for hosts and tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <typeinfo>

#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"

// Returns the .wld name with that index, in the order of the calls of Supp_AddWld; null if the
// index is not below their number. Valid until the next Supp_AddWld.
ULM_QLCORE_API const wchar_t* qlcoreWldName(std::size_t index) noexcept;

// Forgets the names and frees their memory, so that it does not count as a leak.
ULM_QLCORE_API void qlcoreForgetWlds() noexcept;

// Returns the number of references to keyed sets that have not been released.
ULM_QLCORE_API std::int64_t qlcoreHeldParams() noexcept;

// Sets the result of Supp_GetACP.
ULM_QLCORE_API void qlcoreSetAnsiCodePage(UINT codePage) noexcept;

// Return the number of calls of _InitResTranslation minus that of _DeInitResTranslation, and the
// instance of the last call of either.
ULM_QLCORE_API std::int64_t qlcoreTranslationUsers() noexcept;
ULM_QLCORE_API HINSTANCE qlcoreTranslationInstance() noexcept;
// If `throws`, _InitResTranslation raises an int. Off at the start.
ULM_QLCORE_API void qlcoreSetTranslationThrows(bool throws) noexcept;

// Creates an object for CreateObjectC: stores it with one reference, or leaves *outObject
// unchanged.
using QlcoreFactory = void (*)(const std::type_info& wanted, void** outObject);
// Registers a class in place of the one before; a null factory or name registers none. `className`
// must stay valid.
ULM_QLCORE_API void qlcoreRegisterClass(const char* className, QlcoreFactory factory) noexcept;
// Sets the result of CreateObjectC after it created an object: 1 at the start.
ULM_QLCORE_API void qlcoreSetFactoryResult(int result) noexcept;
