// What a host or a test asks of the stand-in core library, and what it can be told.
#pragma once

#include <cstddef>
#include <cstdint>
#include <typeinfo>

#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"

// The .wld names given so far, in order; null beyond the end. Valid until the next Supp_AddWld.
ULM_QLCORE_API const wchar_t* qlcoreWldName(std::size_t index) noexcept;

// Drops the names, so that the memory they took is not counted as somebody's.
ULM_QLCORE_API void qlcoreForgetWlds() noexcept;

// References to keyed sets that are still held by somebody.
ULM_QLCORE_API std::int64_t qlcoreHeldParams() noexcept;

// What Supp_GetACP gives from now on.
ULM_QLCORE_API void qlcoreSetAnsiCodePage(UINT codePage) noexcept;

// Calls of _InitResTranslation less calls of _DeInitResTranslation, and the instance of the last
// one.
ULM_QLCORE_API std::int64_t qlcoreTranslationUsers() noexcept;
ULM_QLCORE_API HINSTANCE qlcoreTranslationInstance() noexcept;
// Whether _InitResTranslation raises an exception of its own, an int.
ULM_QLCORE_API void qlcoreSetTranslationThrows(bool throws) noexcept;

// Makes objects of a class for CreateObjectC: writes an object with a reference, or leaves the
// pointer.
using QlcoreFactory = void (*)(const std::type_info& wanted, void** outObject);
// One class is registered at a time; a null factory takes it away. `className` must stay valid.
ULM_QLCORE_API void qlcoreRegisterClass(const char* className, QlcoreFactory factory) noexcept;
// What CreateObjectC gives from now on where it made an object: 1 at the start.
ULM_QLCORE_API void qlcoreSetFactoryResult(int result) noexcept;
