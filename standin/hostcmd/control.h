// Controls of the stand-in language-engine manager for hosts and tests.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hostsdk/hostcmd/hostcmd.h"

// The arguments of one call of loadModule.
struct HostcmdLoad {
  const wchar_t* file;
  const wchar_t* engine;
  std::int32_t number;
};

// Return the number of calls of loadModule and the arguments of one of them, by index; null texts
// if the index is not below the number. The texts are valid as long as the library is loaded.
ULM_HOSTCMD_API std::size_t hostcmdLoadCount() noexcept;
ULM_HOSTCMD_API HostcmdLoad hostcmdLoad(std::size_t index) noexcept;

// Sets whether get_hostLangEngineMan returns the manager, as at the start, or null.
ULM_HOSTCMD_API void hostcmdSetPresent(bool present) noexcept;

enum class HostcmdThrow { Nothing, CXExceptionCode7, IFaceException, ForeignInt };

// Used as an index, selects get_hostLangEngineMan itself.
inline constexpr std::size_t kHostcmdThrowAtGet = static_cast<std::size_t>(-1);

// Makes the call of loadModule with that index raise an exception after it has been recorded. The
// index counts from the load of the library.
ULM_HOSTCMD_API void hostcmdThrowAt(std::size_t index, HostcmdThrow what) noexcept;

// Sets the result of loadModule: 1 at the start.
ULM_HOSTCMD_API void hostcmdSetResult(int result) noexcept;
