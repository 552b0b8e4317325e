// Conversions between UTF-8 and the UTF-16 text of the system.
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

// Returns UTF-16. Bytes that are not UTF-8 become U+FFFD.
inline std::wstring wideOf(const std::string& text) {
  std::wstring wide(text.size(), L'\0');  // UTF-16 never has more units than UTF-8 has bytes
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                          static_cast<int>(wide.size()))));
  return wide;
}

// Returns UTF-8. An unpaired surrogate becomes U+FFFD.
inline std::string utf8Of(const std::wstring& wide) {
  std::string text(3 * wide.size(), '\0');
  text.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_UTF8, 0, wide.data(), static_cast<int>(wide.size()), text.data(),
                          static_cast<int>(text.size()), nullptr, nullptr)));
  return text;
}

}  // namespace ulm::tools
