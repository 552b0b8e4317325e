// What modules tell of themselves: their addresses, names of any length and of any bytes, and
// resources of damaged files.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <vector>

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
    std::wstring expected = (full + L'\0').substr(0, size);
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
  const auto query = [&](std::uintptr_t asked, std::size_t size = sizeof information) {
    return VirtualQuery(reinterpret_cast<const void*>(asked), &information, size);
  };
  EXPECT_EQ(query(address), sizeof information);
  EXPECT_EQ(information.AllocationBase, sample);
  EXPECT_EQ(information.BaseAddress, reinterpret_cast<void*>(page));
  EXPECT_EQ(query(page + information.RegionSize - 1), sizeof information);
  EXPECT_EQ(information.AllocationBase, sample);
  EXPECT_EQ(information.RegionSize, pageSize);
  EXPECT_EQ(query(address, sizeof information - 1), 0u);
  EXPECT_EQ(query(reinterpret_cast<std::uintptr_t>(&page)), 0u);  // the stack
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
  EXPECT_EQ(fileNameOf(module), name);
  EXPECT_NE(GetProcAddress(module, "sampleAnswer"), nullptr);
  EXPECT_EQ(GetFileVersionInfoSizeW(name.c_str(), nullptr), 92u);
  dlclose(use);
  EXPECT_EQ(GetModuleHandleW(name.c_str()), nullptr);
  EXPECT_EQ(FreeLibrary(LoadLibraryW(name.c_str())), TRUE) << ulmWin32LoadError();
  EXPECT_EQ(FreeLibrary(original), TRUE);
}

// The library stays loaded from a file that is replaced again and again, so that its strings are
// asked for too.
TEST(Resources, AnyFileIsSafeToName) {
  const TestFolder folder;
  const std::filesystem::path file = folder.path / "damaged.so";
  std::ifstream stream(sampleFile(), std::ios::binary);
  const std::string whole{std::istreambuf_iterator<char>(stream), {}};
  writeFile(file, whole);
  const HMODULE original = LoadLibraryW(L"Win32_Sample");  // brings what the copy links, too
  const HMODULE copy = LoadLibraryW(file.wstring().c_str());
  ASSERT_NE(copy, nullptr) << ulmWin32LoadError();
  const auto bytesFoundIn = [&](const std::string& content) {
    std::filesystem::remove(file);
    writeFile(file, content);
    const std::wstring name = file.wstring();
    DWORD handle = 1;
    std::vector<char> block(GetFileVersionInfoSizeW(name.c_str(), &handle));
    EXPECT_EQ(handle, 0u);
    const auto size = static_cast<DWORD>(block.size());
    EXPECT_EQ(GetFileVersionInfoW(name.c_str(), 0, size, block.data()) == TRUE, size != 0);
    char text[65536];
    return static_cast<int>(size) + LoadStringA(copy, 7, text, sizeof text) +
           LoadStringA(copy, 300, text, sizeof text);
  };
  EXPECT_EQ(bytesFoundIn(whole), 92 + 5 + 5);
  for (std::size_t size = 0; size < whole.size(); size += size < 128 ? 1 : whole.size() / 97 + 1) {
    EXPECT_EQ(bytesFoundIn(whole.substr(0, size)), 0) << size;  // the headers' table comes last
  }
  std::uint64_t table = 0;
  std::memcpy(&table, whole.data() + 40, sizeof table);
  const std::size_t plain = whole.find(std::string("P\0l\0a\0i\0n\0", 10));
  const std::pair<std::size_t, std::size_t> places[] = {
      {0, 64}, {table, whole.size()}, {plain - 4, plain + 40}};
  for (const auto& [begin, end] : places) {
    ASSERT_LE(end, whole.size());
    for (std::size_t place = begin; place < end; ++place) {
      for (const char value : {'\0', '\x7F', '\xFF'}) {
        std::string damaged = whole;
        damaged[place] = value;
        EXPECT_LE(bytesFoundIn(damaged), 3 * 65536) << place;
      }
    }
  }
  EXPECT_TRUE(FreeLibrary(copy) == TRUE && FreeLibrary(original) == TRUE);
}

}  // namespace
