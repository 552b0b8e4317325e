#include "module/glue/translation.h"

#include "module/glue/instance.h"

namespace {

using InstanceEntry = int(HINSTANCE instance);
using LoadStringEntry = int(HINSTANCE instance, UINT number, char* buffer, int size);

template <class Function>
Function* translationEntry(const char* name) noexcept {
  HMODULE library = GetModuleHandleA("qlcore.dll");
  if (library == nullptr) library = GetModuleHandleA("qlsupport.dll");
  return library != nullptr ? ulm::glue::procedure<Function>(library, name) : nullptr;
}

}  // namespace

int ResTranslation_Init(HINSTANCE instance) {
  const auto entry = translationEntry<InstanceEntry>("_InitResTranslation");
  return entry != nullptr ? entry(instance) : 0;
}

int ResTranslation_DeInit(HINSTANCE instance) {
  const auto entry = translationEntry<InstanceEntry>("_DeInitResTranslation");
  return entry != nullptr ? entry(instance) : 0;
}

int ResTranslation_LoadString(HINSTANCE instance, UINT number, char* buffer, int size) {
  const auto entry = translationEntry<LoadStringEntry>("_LoadStringNotTrans");
  if (entry != nullptr) return entry(instance, number, buffer, size);
  return LoadStringA(instance, number, buffer, size);
}
