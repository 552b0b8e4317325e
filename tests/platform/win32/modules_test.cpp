// What modules tell of themselves: their addresses, and names of any length and of any bytes.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/win32/stand_in.h"
#include "tests/platform/win32/sample_files.h"

namespace {

using namespace ulm::win32::test;

const HMODULE kNoModule = reinterpret_cast<HMODULE>(8);

TEST(Modules, CutTheirNames) {
  const std::wstring full = fileNameOf(nullptr);
  for (std::size_t size = 0; size <= full.size() + 2; ++size) {
    std::wstring buffer(full.size() + 3, L'#');
    const DWORD length = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(size));
    EXPECT_EQ(length, std::min(size, full.size()));
    std::wstring expected = full.substr(0, size);
    if (size > full.size()) expected.push_back(L'\0');
    expected.resize(buffer.size(), L'#');
    EXPECT_EQ(buffer, expected);
  }
  EXPECT_EQ(fileNameOf(kNoModule), L"");
}

TEST(Modules, AnswerForTheirAddresses) {
  const HMODULE sample = LoadLibraryW(L"Win32_Sample");
  const auto address = reinterpret_cast<std::uintptr_t>(GetProcAddress(sample, "sampleAnswer"));
  const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const std::uintptr_t page = address & ~(pageSize - 1);
  MEMORY_BASIC_INFORMATION information{};
  const auto query = [&](std::uintptr_t asked, std::size_t size) {
    return VirtualQuery(reinterpret_cast<const void*>(asked), &information, size);
  };
  EXPECT_EQ(query(address, sizeof information), sizeof information);
  EXPECT_EQ(information.AllocationBase, sample);
  EXPECT_EQ(information.BaseAddress, reinterpret_cast<void*>(page));
  EXPECT_EQ(query(page + information.RegionSize - 1, sizeof information), sizeof information);
  EXPECT_EQ(information.AllocationBase, sample);
  EXPECT_EQ(information.RegionSize, pageSize);
  EXPECT_EQ(query(address, sizeof information - 1), 0u);
  EXPECT_EQ(query(reinterpret_cast<std::uintptr_t>(&page), sizeof information), 0u);  // the stack
  EXPECT_EQ(GetProcAddress(kNoModule, "sampleAnswer"), nullptr);
  EXPECT_EQ(GetProcAddress(sample, reinterpret_cast<const char*>(1)), nullptr);
  EXPECT_EQ(DisableThreadLibraryCalls(kNoModule), FALSE);
  EXPECT_EQ(FreeLibrary(sample), TRUE);
}

// Loaded by the loader itself and under a relative name, after which the process moves on.
TEST(Modules, KeepNamesThatAreNotText) {
  const TestFolder folder;
  std::filesystem::copy_file(sampleFile(), folder.path / "a\xE9\\b\xC3\xA9.so");
  const HMODULE original = LoadLibraryW(L"Win32_Sample");  // brings what the copy links, too
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path);
  void* use = dlopen("./a\xE9\\b\xC3\xA9.so", RTLD_NOW);
  std::filesystem::current_path(before);
  ASSERT_NE(use, nullptr) << dlerror();
  const std::wstring name = windowsName(folder.path) + L"\\a\xDCE9\xDC5C" + L"b\xE9.so";
  const HMODULE module = GetModuleHandleW(name.c_str());
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(fileNameOf(module), name);
  EXPECT_NE(GetProcAddress(module, "sampleAnswer"), nullptr);
  EXPECT_EQ(GetFileVersionInfoSizeW(name.c_str(), nullptr), 92u);
  dlclose(use);
  EXPECT_EQ(GetModuleHandleW(name.c_str()), nullptr);
  EXPECT_EQ(FreeLibrary(LoadLibraryW(name.c_str())), TRUE) << ulmWin32LoadError();
  EXPECT_EQ(FreeLibrary(original), TRUE);
}

}  // namespace
