// The names of modules, cut to any length, and their addresses.
#include <gtest/gtest.h>

#include <algorithm>

#include "standin/win32/stand_in.h"
#include "tests/standin/win32/sample_files.h"

namespace {

using namespace ulm::win32::test;

const HMODULE kNoModule = reinterpret_cast<HMODULE>(8);

TEST(Modules, CutTheirNames) {
  const std::wstring full = fileNameOf(nullptr);
  for (std::size_t size = 0; size <= full.size() + 2; ++size) {
    std::wstring buffer(full.size() + 3, L'#');
    const DWORD length = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(size));
    EXPECT_EQ(length, std::min(size, full.size()));
    std::wstring expected = (full + L'\0').substr(0, size);
    expected.resize(buffer.size(), L'#');
    EXPECT_EQ(buffer, expected);
  }
  EXPECT_EQ(fileNameOf(kNoModule), L"");
}

TEST(Modules, AnswerForTheirAddresses) {
  const HMODULE sample = LoadLibraryW(L"Win32_Sample");
  const auto address = reinterpret_cast<std::uintptr_t>(GetProcAddress(sample, "sampleAnswer"));
  constexpr std::uintptr_t pageSize = 4096;
  const std::uintptr_t page = address & ~(pageSize - 1);
  MEMORY_BASIC_INFORMATION information{};
  const auto query = [&](std::uintptr_t asked, std::size_t size = sizeof information) {
    return VirtualQuery(reinterpret_cast<const void*>(asked), &information, size);
  };
  EXPECT_EQ(query(address), sizeof information);
  EXPECT_EQ(information.AllocationBase, sample);
  EXPECT_EQ(information.BaseAddress, reinterpret_cast<void*>(page));
  EXPECT_EQ(query(page + information.RegionSize - 1), sizeof information);
  EXPECT_EQ(information.AllocationBase, sample);
  EXPECT_EQ(query(address, sizeof information - 1), 0u);
  // The stack belongs to no module.
  const bool known = query(reinterpret_cast<std::uintptr_t>(&page)) != 0;
  EXPECT_TRUE(!known || information.AllocationBase != sample);
  EXPECT_EQ(GetProcAddress(kNoModule, "sampleAnswer"), nullptr);
  EXPECT_EQ(GetProcAddress(sample, reinterpret_cast<const char*>(0xFFFF)), nullptr);
  EXPECT_EQ(DisableThreadLibraryCalls(kNoModule), FALSE);
  EXPECT_EQ(FreeLibrary(sample), TRUE);
}

}  // namespace
