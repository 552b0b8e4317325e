#include "module/host_lookup.h"

#include <atomic>
#include <typeinfo>

#include "module/glue/instance.h"

namespace {

using ulm::glue::procedure;

using GetAppEntry = IApp*();
using InstanceEntry = HINSTANCE();
using CreateObjectEntry = int(const char* className, void* outer, const std::type_info& wanted,
                              void** outObject);
using FunctionEntry = void*(int selector);
using HostObjectEntry = IHostObject*();

constexpr int kHostObjectSelector = 2;

// Atomic so that two threads may search at the same time. No order is needed: both store the same
// value.
constinit std::atomic<GetAppEntry*> cachedGetApp{nullptr};
constinit std::atomic<CreateObjectEntry*> cachedCreateObject{nullptr};

// If `library` is not null, caches its export `name`. Returns the cached entry, which may be null.
template <class Function>
Function* lookUp(std::atomic<Function*>& cache, HMODULE library, const char* name) {
  if (library != nullptr)
    cache.store(procedure<Function>(library, name), std::memory_order_relaxed);
  return cache.load(std::memory_order_relaxed);
}

// Returns an export of an instance that the host returned. A null instance has no exports; the
// system would search the program instead.
template <class Function>
Function* instanceEntry(HINSTANCE instance, const char* name) {
  return instance != nullptr ? procedure<Function>(instance, name) : nullptr;
}

InstanceEntry* programInstanceEntry() {
  return procedure<InstanceEntry>(GetModuleHandleW(nullptr), "GetMainDllInstance");
}

IApp* createAppByCore() {
  CreateObjectEntry* create = cachedCreateObject.load(std::memory_order_relaxed);
  if (create == nullptr) {
    create = lookUp(cachedCreateObject, GetModuleHandleW(L"qlcore.dll"), "CreateObjectC");
  }
  if (create == nullptr) return nullptr;
  void* app = nullptr;
  create("CLSID_APP", nullptr, typeid(IApp), &app);
  return static_cast<IApp*>(app);
}

}  // namespace

IApp* Host_GetApp() {
  GetAppEntry* getApp = cachedGetApp.load(std::memory_order_relaxed);
  if (getApp == nullptr)
    getApp = lookUp(cachedGetApp, GetModuleHandleW(L"QlHostApp.dll"), "GetApp");
  if (getApp != nullptr) return getApp();
  if (InstanceEntry* mainInstance = programInstanceEntry()) {
    getApp = instanceEntry<GetAppEntry>(mainInstance(), "GetApp");
    cachedGetApp.store(getApp, std::memory_order_relaxed);
    return getApp != nullptr ? getApp() : nullptr;
  }
  return createAppByCore();
}

HINSTANCE Host_GetMainInstance() {
  if (InstanceEntry* mainInstance = programInstanceEntry()) return mainInstance();
  if (HMODULE viewer = GetModuleHandleW(L"qlview.dll")) return viewer;
  const HMODULE hostApp = GetModuleHandleW(L"QlHostApp.dll");
  if (hostApp == nullptr) return nullptr;
  const auto mainInstance = procedure<InstanceEntry>(hostApp, "GetMainDllInstanceEx");
  return mainInstance != nullptr ? mainInstance() : nullptr;
}

IHostObject* Host_GetHostObject() {
  const auto function = instanceEntry<FunctionEntry>(Host_GetMainInstance(), "get_host_funcptr");
  if (function == nullptr) return nullptr;
  const auto hostObject = reinterpret_cast<HostObjectEntry*>(function(kHostObjectSelector));
  return hostObject != nullptr ? hostObject() : nullptr;
}

HWND Host_GetMainWindow() {
  IHostObject* host = Host_GetHostObject();
  return host != nullptr ? static_cast<HWND>(host->mainWindow()) : nullptr;
}
