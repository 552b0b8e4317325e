// A source of its own, because call_log.cpp is built on Windows too, where no wide argument is
// logged.
#include <new>
#include <optional>
#include <string>

#include "standin/win32/detail/call_log.h"
#include "standin/win32/detail/characters.h"

namespace ulm::win32::detail {

void writeCall(const char* function, const wchar_t* argument) noexcept {
  if (argument == nullptr) return writeCall(function, static_cast<const char*>(nullptr));
  try {
    const std::optional<std::string> text = toSystem(argument);
    writeCall(function, text ? text->c_str() : "(not text)");
  } catch (const std::bad_alloc&) {
  }
}

}  // namespace ulm::win32::detail
