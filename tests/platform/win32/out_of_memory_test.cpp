// Every call with its n-th allocation failing, for each n. This program's operator new is the
// layer's too.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>

#include "platform/win32/stand_in.h"
#include "tests/platform/win32/sample_files.h"

namespace {

constexpr int kNever = -1;
thread_local int allocationsLeft = kNever;

}  // namespace

void* operator new(std::size_t size) {
  if (allocationsLeft == 0) throw std::bad_alloc();
  if (allocationsLeft > 0) --allocationsLeft;
  void* block = std::malloc(size != 0 ? size : 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace {

template <class Value>
std::int64_t number(Value* pointer) {
  return pointer != nullptr ? 1 : 0;
}

struct Call {
  const char* name;
  std::function<std::int64_t()> run;
  std::int64_t failure;
};

using namespace ulm::win32::test;

TEST(OutOfMemory, GivesTheFailureResult) {
  wchar_t wide[512];
  char narrow[64];
  MEMORY_BASIC_INFORMATION information;
  const TestFolder folder;
  writeFile(folder.path / "out_of_memory.ini", "[section of the file]\nkey of the section = 5");
  const std::wstring profile = (folder.path / "out_of_memory.ini").wstring();
  const Call calls[] = {
      {"_wputenv", [] { return _wputenv(L"ULM_NAME_THAT_IS_LONG=a value that is long too"); }, -1},
      {"GetModuleHandleW", [] { return number(GetModuleHandleW(L"ulmwin32.dll")); }, 0},
      {"LoadLibraryW", [] { return number(LoadLibraryW(L"Win32_Sample.dll")); }, 0},
      {"GetModuleHandleA", [] { return number(GetModuleHandleA("win32_sample.dll")); }, 0},
      {"GetModuleFileNameW", [&] { return GetModuleFileNameW(nullptr, wide, 512); }, 0},
      {"VirtualQuery",
       [&] {
         return VirtualQuery(GetModuleHandleW(L"ulmwin32"), &information, sizeof information);
       },
       0},
      {"GetProcAddress",
       [] { return number(GetProcAddress(GetModuleHandleW(L"Win32_Sample"), "sampleAnswer")); }, 0},
      {"LoadStringA", [&] { return LoadStringA(GetModuleHandleW(L"Win32_Sample"), 7, narrow, 64); },
       0},
      {"GetFileVersionInfoW",
       [&] { return GetFileVersionInfoW(L"Win32_Sample", 0, sizeof wide, wide); }, 0},
      {"FreeLibrary", [] { return FreeLibrary(GetModuleHandleW(L"Win32_Sample")); }, 0},
      {"GetPrivateProfileIntW",
       [&] {
         return GetPrivateProfileIntW(L"section of the file", L"key of the section", 3,
                                      profile.c_str());
       },
       3},
      {"ulmWin32OpenWindow", [] { return number(ulmWin32OpenWindow(L"a window's long class")); },
       0}};
  for (const Call& tested : calls) {
    std::int64_t result = tested.failure;
    int failures = 0;
    for (; result == tested.failure && failures < 1000; ++failures) {
      allocationsLeft = failures;
      result = tested.run();
      allocationsLeft = kNever;
    }
    EXPECT_GT(failures, 1) << tested.name << " asks for no memory";
    EXPECT_LT(failures, 1000) << tested.name;
  }
  EXPECT_EQ(GetModuleHandleW(L"Win32_Sample"), nullptr) << "a failed load kept a use";
  EXPECT_EQ(GetEnvironmentVariableW(L"ULM_NAME_THAT_IS_LONG", wide, 512), 24u);
}

}  // namespace
