// What a host or a test asks of the stand-in manager, and what it can be told.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hostsdk/hostcmd/hostcmd.h"

struct HostcmdLoad {
  const wchar_t* file;
  const wchar_t* engine;
  std::int32_t number;
};

// How many calls of loadModule have been made, and each of them; the texts live as long as the
// library.
ULM_HOSTCMD_API std::size_t hostcmdLoadCount() noexcept;
ULM_HOSTCMD_API HostcmdLoad hostcmdLoad(std::size_t index) noexcept;

// Whether get_hostLangEngineMan gives the manager (the start) or null.
ULM_HOSTCMD_API void hostcmdSetPresent(bool present) noexcept;

enum class HostcmdThrow { Nothing, CXExceptionCode7, IFaceException, ForeignInt };

// In the place of an index: get_hostLangEngineMan itself.
inline constexpr std::size_t kHostcmdThrowAtGet = static_cast<std::size_t>(-1);

// Makes the call with that index, counted from the library's start, raise an exception once it has
// been noted.
ULM_HOSTCMD_API void hostcmdThrowAt(std::size_t index, HostcmdThrow what) noexcept;

// What loadModule gives from now on: 1 at the start.
ULM_HOSTCMD_API void hostcmdSetResult(int result) noexcept;
