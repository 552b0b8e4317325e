#include "standin/win32/detail/path.h"

#include "standin/win32/detail/characters.h"

namespace ulm::win32::detail {

namespace {

constexpr wchar_t kEscapedBackslash = 0xDC5C;
constexpr wchar_t kSeparators[] = {L'\\', L'/', kEscapedBackslash, L'\0'};

constexpr bool isSlash(wchar_t character) noexcept {
  return character == L'\\' || character == L'/';
}

}  // namespace

std::wstring windowsPath(std::string_view systemName) {
  std::wstring name = L"Z:" + fromSystem(systemName);
  for (wchar_t& character : name) {
    if (character == L'\\') {
      character = kEscapedBackslash;
    } else if (character == L'/') {
      character = L'\\';
    }
  }
  return name;
}

std::optional<std::string> systemPath(std::wstring_view name) {
  if (name.size() >= 2 && name[1] == L':') {
    if (foldCase(name[0]) != L'z' || name.size() == 2 || !isSlash(name[2])) return std::nullopt;
    name.remove_prefix(2);
  }
  // Converts the parts between slashes, because toSystem refuses the escaped backslash.
  std::string path;
  while (!name.empty()) {
    const std::size_t end = name.find_first_of(kSeparators);
    const std::optional<std::string> part = toSystem(name.substr(0, end));
    if (!part) return std::nullopt;
    path += *part;
    if (end == std::wstring_view::npos) break;
    path.push_back(isSlash(name[end]) ? '/' : '\\');
    name.remove_prefix(end + 1);
  }
  return path;
}

std::string_view baseName(std::string_view systemName) noexcept {
  return systemName.substr(folderOf(systemName).size());
}

std::string_view folderOf(std::string_view systemName) noexcept {
  const std::size_t slash = systemName.rfind('/');
  return systemName.substr(0, slash == std::string_view::npos ? 0 : slash + 1);
}

}  // namespace ulm::win32::detail
