#include "module/search_path.h"

#include <cwchar>
#include <string_view>

#include "hostsdk/adapter/qlcore.h"
#include "hostsdk/adapter/win32.h"
#include "module/glue/instance.h"

namespace {

constexpr DWORD kNameSize = 2048;  // in characters
constexpr DWORD kPathSize = 8320;

// The folder of this library; empty where the platform knows no instance or no whole name of it.
// What a cut name starts with may be somebody else's folder.
CXStringW moduleFolder() {
  const HINSTANCE instance = Module_GetInstance();
  if (instance == nullptr) return {};
  wchar_t name[kNameSize + 1] = {};  // a cut name may come without a terminator
  const DWORD length = GetModuleFileNameW(instance, name, kNameSize);
  if (length == 0 || length >= kNameSize) return {};
  return ulm::module::folderOf(name);
}

// Writes the parts one behind the other, with a terminator. False, with nothing of use written,
// where they do not fit.
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
  // A value that does not fit comes back empty on some systems: taken for no value, it would be
  // lost.
  if (GetEnvironmentVariableW(L"PATH", value, kPathSize) >= kPathSize) return;
  if (std::wmemchr(value, L'\0', kPathSize) == nullptr) return;
  if (std::wcsstr(value, folder.text) != nullptr) return;
  wchar_t assignment[kPathSize] = {};
  if (compose(assignment, L"PATH=", value, L";", folder.text)) _wputenv(assignment);
}
