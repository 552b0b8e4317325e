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
#include "standin/win32/detail/elf_file.h"
#include "standin/win32/detail/module_list.h"
#include "standin/win32/detail/path.h"
#include "standin/win32/detail/text.h"
#include "standin/win32/stand_in.h"

using namespace ulm::win32::detail;

namespace {

constexpr char kProgramInLog[] = "(program)";
constexpr DWORD kCommitted = 0x1000;
constexpr DWORD kImage = 0x1000000;
// A name pointer below this is Windows' way to ask for an export by its number.
constexpr std::uintptr_t kLowestName = 0x10000;

std::atomic<bool> cutNamesTerminated{false};

// Plain memory, so that it needs neither a start nor an end and a failed allocation can be told.
thread_local char loadError[1024];

void tellLoadError(const char* reason) noexcept {
  std::snprintf(loadError, sizeof loadError, "%s", reason != nullptr ? reason : "unknown reason");
}

struct GiveUseBack {
  void operator()(void* use) const noexcept { dlclose(use); }
};
// A use of a library that the loader counts.
using LibraryUse = std::unique_ptr<void, GiveUseBack>;

const link_map* linkMapOf(void* use) noexcept {
  link_map* map = nullptr;
  return dlinfo(use, RTLD_DI_LINKMAP, static_cast<void*>(&map)) == 0 ? map : nullptr;
}

// One more use of a module that is in the process; null where it has gone since it was listed, even
// if another of the same name came.
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

// The loader's entry, called by a pointer that the compiler cannot see through: its declaration
// promises that nothing is thrown, but an initialiser of the library that is opened may do so.
void* (*volatile openThrowing)(const char*, int) = dlopen;

// Opens a file as a library. The loader counts the use before it runs the initialisers and keeps it
// where one throws; it is given back here, so that the half-made library leaves the process.
LibraryUse openUse(const char* path) {
  try {
    return LibraryUse(openThrowing(path, RTLD_NOW | RTLD_LOCAL));
  } catch (...) {
    const LibraryUse found(dlopen(path, RTLD_LAZY | RTLD_NOLOAD));
    if (found) dlclose(found.get());
    throw;
  }
}

// Opens a file as a library and keeps the use; null with the reason told.
HMODULE openLibrary(const char* path) {
  LibraryUse use = openUse(path);
  if (!use) {
    tellLoadError(dlerror());
    return nullptr;
  }
  const link_map* map = linkMapOf(use.get());
  const std::optional<Module> module =
      map != nullptr ? moduleAt(reinterpret_cast<std::uintptr_t>(map->l_ld)) : std::nullopt;
  if (!module) {
    tellLoadError("the library is in the process, but not in the loader's list");
    return nullptr;
  }
  static_cast<void>(use.release());  // the caller's, until FreeLibrary
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
    const std::optional<Module> asked = moduleOf(module);
    if (!asked) return nullptr;
    const LibraryUse use = useOf(*asked);
    if (!use) return nullptr;
    // The loader searches the module first and then what it links, which does not count.
    void* symbol = dlsym(use.get(), name);
    if (symbol == nullptr) return nullptr;
    const std::optional<Module> holder = moduleAt(reinterpret_cast<std::uintptr_t>(symbol));
    if (!holder || holder->base != asked->base) return nullptr;
    return reinterpret_cast<FARPROC>(symbol);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

DWORD GetModuleFileNameW(HMODULE module, wchar_t* buffer, DWORD size) {
  if (buffer == nullptr || size == 0) return 0;
  try {
    const std::optional<Module> asked = moduleOf(module);
    const std::string file = asked ? asked->fileName() : std::string();
    if (file.empty()) return 0;
    const std::wstring name = windowsPath(file);
    // The terminator is copied where there is room for it too.
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
    const auto asked = reinterpret_cast<std::uintptr_t>(address);
    const std::optional<Module> holder = moduleAt(asked);
    if (!holder) return 0;
    const std::uintptr_t page = asked & ~(pageSize() - 1);
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
    tellLoadError("no file name");
    return nullptr;
  }
  try {
    // A library that is in the process already is meant before any file.
    if (const std::optional<Module> present = moduleNamed(fileName)) {
      const char* link = present->isProgram ? nullptr : present->linkName.c_str();
      return openLibrary(link);
    }
    const std::optional<std::string> path = libraryFile(fileName);
    if (!path) {
      tellLoadError("not a name that a file can have");
      return nullptr;
    }
    if (const char* fault = libraryFault(*path)) {
      tellLoadError(fault);
      return nullptr;
    }
    return openLibrary(path->c_str());
  } catch (const std::bad_alloc&) {
    tellLoadError("out of memory");
  } catch (...) {  // left an initialiser of the library
    tellLoadError("an initialiser of the library threw an exception");
  }
  return nullptr;
}

BOOL FreeLibrary(HMODULE module) {
  if (module == nullptr) return FALSE;
  try {
    const std::optional<Module> asked = moduleOf(module);
    if (!asked) return FALSE;
    if (asked->isProgram) return TRUE;  // it never leaves
    LibraryUse use = useOf(*asked);
    if (!use) return FALSE;
    void* library = use.get();
    use.reset();  // the use that was taken just now; the caller's keeps the library here
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
