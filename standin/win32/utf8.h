// Text as UTF-8, by the system's own conversion.
#pragma once

#include <string>

#include "hostsdk/win32/win32.h"

namespace ulm::win32 {

// Returns `text`, which is not null, as UTF-8; empty if the system cannot convert it.
inline std::string toUtf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 0) return {};
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
  utf8.pop_back();  // the terminator
  return utf8;
}

}  // namespace ulm::win32
