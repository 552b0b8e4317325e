// The log of calls that stand_in.h controls. While it is off, a call costs one relaxed load.
#pragma once

#include <atomic>

namespace ulm::win32::detail {

extern constinit std::atomic<bool> callLogIsOn;

void writeCall(const char* function, const char* argument) noexcept;
void writeCall(const char* function, const wchar_t* argument) noexcept;

// Adds "FUNCTION ARGUMENT", or "FUNCTION" for a null argument, if the log is on.
template <class Character>
void logCall(const char* function, const Character* argument) noexcept {
  if (callLogIsOn.load(std::memory_order_relaxed)) writeCall(function, argument);
}
inline void logCall(const char* function) noexcept {
  logCall(function, static_cast<const char*>(nullptr));
}

}  // namespace ulm::win32::detail
