#include "module/search_path.h"

#include <cwchar>
#include <string_view>

#include "hostsdk/adapter/qlcore.h"
#include "hostsdk/adapter/win32.h"
#include "module/glue/instance.h"

namespace {

constexpr DWORD kNameSize = 2048;  // in characters
constexpr DWORD kPathSize = 8320;

// Returns the folder of this library; empty if the system knows no instance or no complete name. A
// name that was cut is not used, because its start may name another folder.
CXStringW moduleFolder() {
  const HINSTANCE instance = Module_GetInstance();
  if (instance == nullptr) return {};
  wchar_t name[kNameSize + 1] = {};  // some systems cut a long name without a terminator
  const DWORD length = GetModuleFileNameW(instance, name, kNameSize);
  if (length == 0 || length >= kNameSize) return {};
  return ulm::module::folderOf(name);
}

// Joins the parts in `buffer` and adds a terminator. Returns false if they do not fit; the content
// of the buffer is unspecified then.
template <class... Parts>
bool compose(wchar_t (&buffer)[kPathSize], Parts... parts) noexcept {
  std::size_t length = 0;
  const auto append = [&](std::wstring_view part) {
    if (part.size() >= kPathSize - length) return false;
    std::wmemcpy(buffer + length, part.data(), part.size());
    length += part.size();
    return true;
  };
  if (!(append(parts) && ...)) return false;
  buffer[length] = L'\0';
  return true;
}

}  // namespace

CXStringW ulm::module::folderOf(const wchar_t* fileName) {
  CXStringW folder(CXString(fileName).FilePath().text);
  folder.ConcatCopy(L"\\", 1);
  return folder;
}

void addModuleFolderToPath() {
  const CXStringW folder = moduleFolder();
  wchar_t value[kPathSize] = {};
  // Some systems return an empty buffer for a value that does not fit. If this counted as an empty
  // value, the assignment below would destroy the old one.
  if (GetEnvironmentVariableW(L"PATH", value, kPathSize) >= kPathSize) return;
  if (std::wmemchr(value, L'\0', kPathSize) == nullptr) return;
  if (std::wcsstr(value, folder.text) != nullptr) return;
  wchar_t assignment[kPathSize] = {};
  if (compose(assignment, L"PATH=", value, L";", folder.text)) _wputenv(assignment);
}
