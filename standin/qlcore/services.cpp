#include "hostsdk/qlcore/services.h"

#include <cstring>
#include <cwchar>
#include <utility>
#include <vector>

#include "hostsdk/odrx/alloc.h"
#include "hostsdk/qlcore/strings.h"
#include "standin/qlcore/control.h"
#include "standin/win32/stand_in.h"

namespace {

class DefaultHeap final : public IHeap {
 public:
  void* Allocate(std::size_t bytes) override { return odrxAlloc(bytes); }
  void Free(void* block) override { odrxFree(block); }
};

// The host's thread makes all calls, one at a time, so nothing is locked.
DefaultHeap defaultHeap;
std::vector<CXStringW> wldNames;
UINT ansiCodePage = GetACP();
std::int64_t translationUsers = 0;
HINSTANCE translationInstance = nullptr;
bool translationThrows = false;
const char* registeredClass = nullptr;
QlcoreFactory registeredFactory = nullptr;
int factoryResult = 1;

}  // namespace

int Supp_AddWld(const wchar_t* name) {
  if (name == nullptr || *name == L'\0') return 0;
  ulmWin32LogCall("Supp_AddWld");
  CXStringW copy;
  copy.AssignCopy(name, static_cast<int>(std::wcslen(name)));
  wldNames.push_back(std::move(copy));
  return 1;
}

UINT Supp_GetACP() noexcept { return ansiCodePage; }

IHeap* Mem_DefaultHeap(int index) noexcept { return index == 0 ? &defaultHeap : nullptr; }

int CreateObjectC(const char* className, void* /*outer*/, const std::type_info& wanted,
                  void** outObject) {
  if (registeredFactory == nullptr || className == nullptr || outObject == nullptr) return 0;
  if (std::strcmp(className, registeredClass) != 0) return 0;
  void* object = nullptr;
  registeredFactory(wanted, &object);
  if (object == nullptr) return 0;
  *outObject = object;
  return factoryResult;
}

int _InitResTranslation(HINSTANCE instance) {
  ulmWin32LogCall("_InitResTranslation");
  if (translationThrows) throw 7;
  ++translationUsers;
  translationInstance = instance;
  return 1;
}

int _DeInitResTranslation(HINSTANCE instance) {
  --translationUsers;
  translationInstance = instance;
  return 1;
}

int _LoadStringNotTrans(HINSTANCE instance, UINT number, char* buffer, int size) {
  return LoadStringA(instance, number, buffer, size);
}

const wchar_t* qlcoreWldName(std::size_t index) noexcept {
  return index < wldNames.size() ? wldNames[index].text : nullptr;
}
void qlcoreForgetWlds() noexcept {
  wldNames.clear();
  wldNames.shrink_to_fit();
}
void qlcoreSetAnsiCodePage(UINT codePage) noexcept { ansiCodePage = codePage; }
std::int64_t qlcoreTranslationUsers() noexcept { return translationUsers; }
HINSTANCE qlcoreTranslationInstance() noexcept { return translationInstance; }
void qlcoreSetTranslationThrows(bool throws) noexcept { translationThrows = throws; }
void qlcoreRegisterClass(const char* className, QlcoreFactory factory) noexcept {
  registeredClass = className;
  registeredFactory = className != nullptr ? factory : nullptr;
}
void qlcoreSetFactoryResult(int result) noexcept { factoryResult = result; }
