#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "hostsdk/win32/win32.h"
#include "standin/win32/detail/call_log.h"
#include "standin/win32/detail/characters.h"
#include "standin/win32/detail/elf_file.h"
#include "standin/win32/detail/module_list.h"
#include "standin/win32/detail/path.h"
#include "standin/win32/stand_in.h"

namespace {

using ulm::win32::detail::fromAnsi;
using ulm::win32::detail::libraryFault;
using ulm::win32::detail::libraryFile;
using ulm::win32::detail::logCall;
using ulm::win32::detail::Module;
using ulm::win32::detail::moduleAt;
using ulm::win32::detail::moduleNamed;
using ulm::win32::detail::moduleOf;
using ulm::win32::detail::pageSize;
using ulm::win32::detail::windowsPath;

constexpr char kProgramInLog[] = "(program)";
constexpr DWORD kCommitted = 0x1000;
constexpr DWORD kImage = 0x1000000;
// On Windows a name pointer below this asks for an export by its number.
constexpr std::uintptr_t kLowestName = 0x10000;

std::atomic<bool> cutNamesTerminated{false};

// Plain memory: it needs no initialiser, and it can report a failed allocation.
thread_local char loadError[1024];

void setLoadError(const char* reason) noexcept {
  std::snprintf(loadError, sizeof loadError, "%s", reason != nullptr ? reason : "unknown reason");
}

struct CloseUse {
  void operator()(void* use) const noexcept { dlclose(use); }
};
// One use of a library, as the loader counts them.
using LibraryUse = std::unique_ptr<void, CloseUse>;

const link_map* linkMapOf(void* use) noexcept {
  link_map* map = nullptr;
  return dlinfo(use, RTLD_DI_LINKMAP, static_cast<void*>(&map)) == 0 ? map : nullptr;
}

// Adds a use of a listed module. Returns null if the module has been unloaded since it was listed,
// also if another module of the same name has been loaded.
LibraryUse useOf(const Module& module) noexcept {
  LibraryUse use(
      dlopen(module.isProgram ? nullptr : module.linkName.c_str(), RTLD_LAZY | RTLD_NOLOAD));
  const link_map* map = use ? linkMapOf(use.get()) : nullptr;
  if (map == nullptr || map->l_addr != module.bias) return nullptr;
  return use;
}

HMODULE handleOf(const wchar_t* name) {
  const std::optional<Module> module = name != nullptr ? moduleNamed(name) : moduleOf(nullptr);
  return module ? module->handle() : nullptr;
}

// The loader's function. Its declaration promises not to throw, but an initialiser of the opened
// library may throw. A volatile pointer prevents the compiler from relying on the promise.
void* (*volatile openThrowing)(const char*, int) = dlopen;

// Opens a file as a library. The loader counts the use before it runs the initialisers, and keeps
// the count if one throws. In that case this function releases the use, so that the library is
// unloaded, and throws again.
LibraryUse openUse(const char* path) {
  try {
    return LibraryUse(openThrowing(path, RTLD_NOW | RTLD_LOCAL));
  } catch (...) {
    const LibraryUse found(dlopen(path, RTLD_LAZY | RTLD_NOLOAD));
    if (found) dlclose(found.get());
    throw;
  }
}

// Opens a file as a library and keeps the use. Returns null and stores the reason on failure.
HMODULE openLibrary(const char* path) {
  LibraryUse use = openUse(path);
  if (!use) {
    setLoadError(dlerror());
    return nullptr;
  }
  const link_map* map = linkMapOf(use.get());
  const std::optional<Module> module =
      map != nullptr ? moduleAt(reinterpret_cast<std::uintptr_t>(map->l_ld)) : std::nullopt;
  if (!module) {
    setLoadError("the library is in the process, but not in the loader's list");
    return nullptr;
  }
  static_cast<void>(use.release());  // FreeLibrary releases it
  return module->handle();
}

}  // namespace

HMODULE GetModuleHandleW(const wchar_t* name) {
  try {
    if (name == nullptr) {
      logCall("GetModuleHandleW", kProgramInLog);
    } else {
      logCall("GetModuleHandleW", name);
    }
    return handleOf(name);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

HMODULE GetModuleHandleA(const char* name) {
  logCall("GetModuleHandleA", name != nullptr ? name : kProgramInLog);
  try {
    return handleOf(name != nullptr ? fromAnsi(std::string_view(name)).c_str() : nullptr);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

FARPROC GetProcAddress(HMODULE module, const char* name) {
  if (reinterpret_cast<std::uintptr_t>(name) < kLowestName) return nullptr;
  logCall("GetProcAddress", name);
  try {
    const std::optional<Module> wanted = moduleOf(module);
    if (!wanted) return nullptr;
    const LibraryUse use = useOf(*wanted);
    if (!use) return nullptr;
    // The loader searches the module and then the libraries that it links. Only the module counts.
    void* symbol = dlsym(use.get(), name);
    if (symbol == nullptr) return nullptr;
    const std::optional<Module> holder = moduleAt(reinterpret_cast<std::uintptr_t>(symbol));
    if (!holder || holder->base != wanted->base) return nullptr;
    return reinterpret_cast<FARPROC>(symbol);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

DWORD GetModuleFileNameW(HMODULE module, wchar_t* buffer, DWORD size) {
  if (buffer == nullptr || size == 0) return 0;
  try {
    const std::optional<Module> wanted = moduleOf(module);
    const std::string file = wanted ? wanted->fileName() : std::string();
    if (file.empty()) return 0;
    const std::wstring name = windowsPath(file);
    // Copies the terminator only if there is room for it.
    std::wmemcpy(buffer, name.c_str(), std::min<std::size_t>(name.size() + 1, size));
    if (name.size() >= size && cutNamesTerminated.load(std::memory_order_relaxed)) {
      buffer[size - 1] = L'\0';
    }
    return static_cast<DWORD>(std::min<std::size_t>(name.size(), size));
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* information, SIZE_T length) {
  if (information == nullptr || length < sizeof *information) return 0;
  try {
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    const std::optional<Module> holder = moduleAt(wanted);
    if (!holder) return 0;
    const std::uintptr_t page = wanted & ~(pageSize() - 1);
    *information = {};
    information->BaseAddress = reinterpret_cast<void*>(page);  // NOLINT(performance-no-int-to-ptr)
    information->AllocationBase = holder->handle();
    information->RegionSize = holder->end - page;
    information->State = kCommitted;
    information->Type = kImage;
    return sizeof *information;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

HMODULE LoadLibraryW(const wchar_t* fileName) {
  loadError[0] = '\0';
  if (fileName == nullptr) {
    setLoadError("no file name");
    return nullptr;
  }
  try {
    // A library in the process has priority over any file.
    if (const std::optional<Module> present = moduleNamed(fileName)) {
      const char* link = present->isProgram ? nullptr : present->linkName.c_str();
      return openLibrary(link);
    }
    const std::optional<std::string> path = libraryFile(fileName);
    if (!path) {
      setLoadError("not a name that a file can have");
      return nullptr;
    }
    if (const char* fault = libraryFault(*path)) {
      setLoadError(fault);
      return nullptr;
    }
    return openLibrary(path->c_str());
  } catch (const std::bad_alloc&) {
    setLoadError("out of memory");
  } catch (...) {  // from an initialiser of the library
    setLoadError("an initialiser of the library threw an exception");
  }
  return nullptr;
}

BOOL FreeLibrary(HMODULE module) {
  if (module == nullptr) return FALSE;
  try {
    const std::optional<Module> wanted = moduleOf(module);
    if (!wanted) return FALSE;
    if (wanted->isProgram) return TRUE;  // it is never unloaded
    LibraryUse use = useOf(*wanted);
    if (!use) return FALSE;
    void* library = use.get();
    use.reset();  // the caller's own use still keeps the library loaded
    return dlclose(library) == 0 ? TRUE : FALSE;
  } catch (const std::bad_alloc&) {
    return FALSE;
  }
}

BOOL DisableThreadLibraryCalls(HMODULE module) {
  logCall("DisableThreadLibraryCalls");
  try {
    return module != nullptr && moduleOf(module) ? TRUE : FALSE;
  } catch (const std::bad_alloc&) {
    return FALSE;
  }
}

void ulmWin32TerminateCutNames(bool on) { cutNamesTerminated.store(on, std::memory_order_relaxed); }

const char* ulmWin32LoadError() { return loadError; }
