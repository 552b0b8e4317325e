// The calls of the emulated system when memory runs out. The layer uses this program's operator
// new.
#include <cstdlib>
#include <new>

#include "standin/win32/stand_in.h"
#include "tests/memory/memory_rows.h"
#include "tests/standin/win32/sample_files.h"

namespace {

using namespace ulm::test;
using namespace ulm::win32::test;

std::uint64_t asked = 0, live = 0, failFirst = 0, failEnd = 0;

const Heap kLanguageHeap = {"heap of new", [] { return asked; }, [] { return live; },
                            [](std::uint64_t after, std::uint64_t count) {
                              failFirst = asked + after;
                              failEnd =
                                  count > UINT64_MAX - failFirst ? UINT64_MAX : failFirst + count;
                            }};

}  // namespace

// Not inlined, since the compiler would warn of blocks of new that free takes.
[[gnu::noinline]] void* operator new(std::size_t size) {
  const std::uint64_t number = asked++;
  void* block =
      number >= failFirst && number < failEnd ? nullptr : std::malloc(size != 0 ? size : 1);
  if (block == nullptr) throw std::bad_alloc();
  ++live;
  return block;
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
  live -= block != nullptr ? 1 : 0;
  std::free(block);
}
void operator delete(void* block, std::size_t) noexcept { operator delete(block); }

namespace {

HMODULE sample() { return GetModuleHandleW(L"Win32_Sample"); }

// A module whose record cannot be made is passed over, so a call on another one still succeeds.
constexpr bool kSpare = true;

// A row for a call on the sample library, which is loaded for it.
template <class Call>
MemoryRow onSample(const char* name, Call call) {
  return {name, [call](FailingMemory& memory) {
            const HMODULE library = LoadLibraryW(L"Win32_Sample.dll");
            memory.run([&] { return call(library); }, kSpare);
            while (sample() != nullptr && FreeLibrary(library) != FALSE) {
            }
            return sample() == nullptr;  // no failure keeps a use
          }};
}

TEST(SystemMemory, CallsReturnTheirFailure) {
  const TestFolder folder;
  writeFile(folder.path / "x.ini", "[section]\nkey = 5");
  const std::wstring profile = (folder.path / "x.ini").wstring();
  static wchar_t wide[512];
  // What the layer keeps for its own life is made before the first count.
  _wputenv(L"ULM_SAMPLE=left");
  _wputenv(L"ULM_NAME_THAT_IS_LONG=a value that is as long as it needs to be here");
  ulmWin32OpenWindow(L"a window's long class");
  ulmWin32CloseWindow(ulmWin32OpenWindow(L"another window's long class"));
  const std::vector<MemoryRow> rows = {
      {"_wputenv",
       [](FailingMemory& memory) {
         const bool whole = memory.run([] {
           return _wputenv(L"ULM_NAME_THAT_IS_LONG=another value that is long too") != -1;
         });
         GetEnvironmentVariableW(L"ULM_NAME_THAT_IS_LONG", wide, 512);
         _wputenv(L"ULM_NAME_THAT_IS_LONG=a value that is as long as it needs to be here");
         return (wide[1] == L'n') == whole;
       }},
      {"LoadLibraryW",
       [](FailingMemory& memory) {
         HMODULE library = nullptr;
         const bool whole = memory.run(
             [&] { return (library = LoadLibraryW(L"Win32_Sample.dll")) != nullptr; }, kSpare);
         const bool right = (sample() != nullptr) == whole;
         if (library != nullptr) FreeLibrary(library);
         _wputenv(L"ULM_SAMPLE=left");  // what its initialisers may have failed to store
         return right;
       }},
      onSample("GetModuleHandleW",
               [](HMODULE) { return GetModuleHandleW(L"win32_sample.dll") != nullptr; }),
      onSample("GetModuleHandleA",
               [](HMODULE) { return GetModuleHandleA("win32_sample.dll") != nullptr; }),
      onSample("GetModuleFileNameW",
               [](HMODULE library) { return GetModuleFileNameW(library, wide, 512) != 0; }),
      onSample("VirtualQuery",
               [](HMODULE library) {
                 MEMORY_BASIC_INFORMATION information;
                 return VirtualQuery(library, &information, sizeof information) != 0;
               }),
      onSample("GetProcAddress",
               [](HMODULE library) { return GetProcAddress(library, "sampleAnswer") != nullptr; }),
      onSample("LoadStringA",
               [](HMODULE library) {
                 char narrow[64];
                 return LoadStringA(library, 7, narrow, 64) != 0;
               }),
      onSample("GetFileVersionInfoW",
               [](HMODULE) {
                 return GetFileVersionInfoW(L"Win32_Sample", 0, sizeof wide, wide) != FALSE;
               }),
      onSample("FreeLibrary", [](HMODULE library) { return FreeLibrary(library) != FALSE; }),
      {"GetPrivateProfileIntW",
       [&](FailingMemory& memory) {
         UINT value = 0;
         const bool whole = memory.run([&] {
           return (value = GetPrivateProfileIntW(L"section", L"key", 3, profile.c_str())) == 5;
         });
         return value == (whole ? 5u : 3u);
       }},
      {"ulmWin32OpenWindow", [](FailingMemory& memory) {
         HWND window = nullptr;
         memory.run(
             [&] { return (window = ulmWin32OpenWindow(L"a window's long class")) != nullptr; });
         ulmWin32CloseWindow(window);
         return true;
       }}};
  failEachOf(kLanguageHeap, rows);
}

}  // namespace
