#include "standin/host/host_calls.h"

#include "standin/odrx/alloc_control.h"
#include "standin/qlcore/control.h"

namespace ulm::tools {

std::wstring toWide(const std::string& text) {
  const int size = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.c_str(), -1, nullptr, 0);
  if (size <= 0) {
    std::wstring escaped;
    for (const char byte : text) {
      const auto code = static_cast<unsigned char>(byte);
      escaped += static_cast<wchar_t>(code < 0x80 ? code : 0xDC00 + code);
    }
    return escaped;
  }
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, wide.data(), size);
  wide.pop_back();  // the terminator
  return wide;
}

std::wstring moduleName(HMODULE module) {
  std::wstring name(260, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
    if (length < name.size()) return name.substr(0, length);
    name.resize(2 * name.size());
  }
}

std::wstring environmentVariable(const wchar_t* name) {
  const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
  if (size == 0) return {};
  std::wstring value(size, L'\0');
  value.resize(GetEnvironmentVariableW(name, value.data(), size));
  return value;
}

std::vector<Balance> takeBalance(const HostAppControl* application) {
  qlcoreForgetWlds();
  std::vector<Balance> balance;
  if (application != nullptr) {
    balance.push_back({"IApp", application->heldReferences(HostAppObject::App)});
    balance.push_back({"IAppExterior", application->heldReferences(HostAppObject::Exterior)});
    balance.push_back(
        {"IHostProductInfo", application->heldReferences(HostAppObject::ProductInfo)});
  }
  balance.push_back({"IParam", qlcoreHeldParams()});
  balance.push_back({"memory", static_cast<std::int64_t>(odrxAllocCounts().liveBlocks)});
  return balance;
}

}  // namespace ulm::tools
