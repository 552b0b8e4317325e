// UTF-8 and the system's wide text.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <string>

namespace ulm::tools {

inline std::wstring wideOf(const std::string& text) {
  std::wstring wide(text.size(), L'\0');  // never more units than bytes
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                          static_cast<int>(wide.size()))));
  return wide;
}

inline std::string utf8Of(const std::wstring& wide) {
  std::string text(3 * wide.size(), '\0');
  text.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), text.data(),
                          static_cast<int>(text.size()), nullptr, nullptr)));
  return text;
}

}  // namespace ulm::tools
