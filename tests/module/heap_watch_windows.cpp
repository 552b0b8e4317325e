// The run-time library has its own operators, which call free of the C library. This source
// redirects that import to a function of its own.
#include <cstdlib>
#include <cstring>

#include "hostsdk/odrx/alloc.h"
#include "hostsdk/win32/win32.h"
#include "standin/odrx/alloc_control.h"
#include "tests/module/heap_watch.h"

namespace {

int crossings = 0;

void watchedFree(void* block) {
  if (block != nullptr && odrxAllocMade(block)) {
    ++crossings;
    odrxFree(block);
  } else {
    std::free(block);
  }
}

HMODULE runtime() { return GetModuleHandleW(L"libstdc++-6.dll"); }

// Returns the entry in which a library stores the address of an import; null if it has none of the
// name.
void** importSlot(HMODULE library, const char* name) {
  char* const base = reinterpret_cast<char*>(library);
  IMAGE_DOS_HEADER dos;
  std::memcpy(&dos, base, sizeof dos);
  IMAGE_NT_HEADERS headers;
  std::memcpy(&headers, base + dos.e_lfanew, sizeof headers);
  const auto& directory = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  for (DWORD at = directory.VirtualAddress;; at += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
    IMAGE_IMPORT_DESCRIPTOR from;
    std::memcpy(&from, base + at, sizeof from);
    if (from.FirstThunk == 0) return nullptr;
    for (DWORD i = 0;; i += sizeof(ULONGLONG)) {
      ULONGLONG entry;
      std::memcpy(&entry, base + from.OriginalFirstThunk + i, sizeof entry);
      if (entry == 0) break;
      const bool named = (entry & IMAGE_ORDINAL_FLAG64) == 0;
      constexpr std::size_t kHint = sizeof(WORD);  // directly before the name
      if (named && std::strcmp(base + entry + kHint, name) == 0) {
        return static_cast<void**>(static_cast<void*>(base + from.FirstThunk + i));
      }
    }
  }
}

const bool watching = [] {
  void** const slot = importSlot(runtime(), "free");
  if (slot == nullptr) std::abort();
  DWORD before = 0;
  VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
  *slot = reinterpret_cast<void*>(&watchedFree);
  VirtualProtect(slot, sizeof *slot, before, &before);
  return true;
}();

}  // namespace

int ulm::test::heapCrossings() { return watching ? crossings : -1; }

std::size_t ulm::test::heapBytes() {
  HANDLE heaps[64];
  const DWORD count = GetProcessHeaps(64, heaps);
  std::size_t bytes = 0;
  for (DWORD i = 0; i < count && i < 64; ++i) {
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heaps[i], &entry) != FALSE) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData;
    }
  }
  return bytes;
}

void ulm::test::deleteInRuntime(void* block) {
  const auto entry = reinterpret_cast<void (*)()>(GetProcAddress(runtime(), "_ZdlPv"));
  reinterpret_cast<void (*)(void*)>(entry)(block);
}
