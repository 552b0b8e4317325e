// Every call with a failure of its n-th allocation, for each n. The layer uses this program's
// operator new.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>

#include "standin/win32/stand_in.h"
#include "tests/standin/win32/sample_files.h"

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

using namespace ulm::win32::test;

TEST(OutOfMemory, GivesTheFailureResult) {
  wchar_t wide[512];
  char narrow[64];
  MEMORY_BASIC_INFORMATION information;
  const TestFolder folder;
  writeFile(folder.path / "x.ini", "[section]\nkey = 5");
  const std::wstring profile = (folder.path / "x.ini").wstring();
  const auto sample = [] { return GetModuleHandleW(L"Win32_Sample"); };
  // True if the call did not return its failure result.
  const std::function<bool()> calls[] = {
      [] { return _wputenv(L"ULM_NAME_THAT_IS_LONG=a value that is long too") != -1; },
      [] { return GetModuleHandleW(L"ulmwin32.dll") != nullptr; },
      [] { return LoadLibraryW(L"Win32_Sample.dll") != nullptr; },
      [] { return GetModuleHandleA("win32_sample.dll") != nullptr; },
      [&] { return GetModuleFileNameW(nullptr, wide, 512) != 0; },
      [&] { return VirtualQuery(sample(), &information, sizeof information) != 0; },
      [&] { return GetProcAddress(sample(), "sampleAnswer") != nullptr; },
      [&] { return LoadStringA(sample(), 7, narrow, 64) != 0; },
      [&] { return GetFileVersionInfoW(L"Win32_Sample", 0, sizeof wide, wide) != FALSE; },
      [&] { return FreeLibrary(sample()) != FALSE; },
      [&] { return GetPrivateProfileIntW(L"section", L"key", 3, profile.c_str()) != 3; },
      [] { return ulmWin32OpenWindow(L"a window's long class") != nullptr; }};
  for (const auto& call : calls) {
    bool succeeded = false;
    int failures = 0;
    for (; !succeeded && failures < 1000; ++failures) {
      allocationsLeft = failures;
      succeeded = call();
      allocationsLeft = kNever;
    }
    EXPECT_TRUE(succeeded && failures > 1) << "call " << &call - calls << ": " << failures;
  }
  EXPECT_EQ(sample(), nullptr) << "a failed load kept a use";
  EXPECT_EQ(GetEnvironmentVariableW(L"ULM_NAME_THAT_IS_LONG", wide, 512), 24u);
}

}  // namespace
