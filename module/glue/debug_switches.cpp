#include "module/glue/debug_switches.h"

#include <cwchar>

#include "module/glue/allocation.h"
#include "module/glue/instance.h"

namespace {

constexpr int kNameSize = 2048;  // in characters
constexpr wchar_t kSection[] = L"mt";

constinit std::uint32_t switchMask = 0;
constinit bool maskRead = false;
constinit std::int32_t assertState = 0;  // 0 undecided, 1 on, -1 off

struct SwitchKey {
  const wchar_t* key;
  std::uint32_t bit;
};
constexpr SwitchKey kSwitchKeys[] = {{L"JumpArrOnAdd", kSwitchJumpArrOnAdd},
                                     {L"JumpArrOnRemove", kSwitchJumpArrOnRemove},
                                     {L"DefecateMem", kSwitchDefecateMem}};

// Writes the full name of the profile file to `name`, which has kNameSize characters. Returns false
// if the system knows no name of the module, or the name has no folder.
bool profileName(HMODULE module, wchar_t* name) noexcept {
  if (GetModuleFileNameW(module, name, kNameSize) == 0) return false;
  name[kNameSize - 1] = L'\0';  // some systems cut a long name without a terminator
  wchar_t* backslash = std::wcsrchr(name, L'\\');
  if (backslash == nullptr) return false;
  wchar_t* file = backslash + 1;
  lstrcpynW(file, L"mt.ini", kNameSize - static_cast<int>(file - name));
  return true;
}

bool switchedOn(const wchar_t* key, const wchar_t* profile) noexcept {
  return GetPrivateProfileIntW(kSection, key, 0, profile) != 0;
}

}  // namespace

std::uint32_t DebugSwitches_Read() noexcept {
  if (maskRead) return switchMask;
  maskRead = true;
  const HMODULE module = ulm::glue::moduleHolding(&maskRead);
  if (module == nullptr) return 0;
  wchar_t profile[kNameSize] = {};
  if (!profileName(module, profile)) return 0;
  for (const SwitchKey& key : kSwitchKeys) {
    if (switchedOn(key.key, profile)) switchMask |= key.bit;
  }
  return switchMask;
}

bool DebugSwitches_AssertEnabled() {
  if (assertState != 0) return assertState > 0;
  assertState = -1;  // remains if a step below fails or raises an exception
  if (FindWindowW(L"_indebmon", nullptr) == nullptr) return false;
  const HMODULE module = ulm::glue::moduleHolding(&assertState);
  if (module == nullptr) return false;
  const ulm::glue::OdrxMemory<wchar_t> profile(
      static_cast<wchar_t*>(ulm::glue::allocate(kNameSize * sizeof(wchar_t))));
  if (profile == nullptr) return false;
  profile.get()[0] = L'\0';
  if (!profileName(module, profile.get())) return false;
  if (!switchedOn(L"mqlassert", profile.get())) return false;
  assertState = 1;
  return true;
}
