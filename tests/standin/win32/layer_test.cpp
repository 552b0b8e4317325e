// Functions of the layer that Windows does not have: names of any bytes, resources of damaged
// files, and an environment block separate from that of the process.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "standin/win32/stand_in.h"
#include "tests/standin/win32/sample_files.h"

namespace {

using namespace ulm::win32::test;

// The loader itself loads the library under a relative name; then the working directory changes.
TEST(Modules, KeepNamesThatAreNotText) {
  const TestFolder folder;
  std::filesystem::copy_file(sampleFile(), folder.path / "a\xE9\\b\xC3\xA9.so");
  const HMODULE original =
      LoadLibraryW(L"Win32_Sample");  // loads the library that the copy links, too
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

// A copy of the sample library, whose file is replaced several times.
struct DamagedFile : testing::Test {
  void replace(const std::string& content) {
    std::filesystem::remove(file);
    writeFile(file, content);
  }
  ~DamagedFile() override { EXPECT_EQ(FreeLibrary(original), TRUE); }

  const TestFolder folder;
  const std::filesystem::path file = folder.path / "damaged.so";
  std::ifstream stream{sampleFile(), std::ios::binary};
  const std::string whole{std::istreambuf_iterator<char>(stream), {}};
  const HMODULE original =
      LoadLibraryW(L"Win32_Sample");  // loads the library that the copy links, too
};

// The system's loader would map what the headers describe, and end the process if the file is
// shorter.
TEST_F(DamagedFile, IsNotLoaded) {
  const auto loadError = [&](const std::string& content) {
    replace(content);
    const HMODULE module = LoadLibraryW(file.wstring().c_str());
    const std::string error = ulmWin32LoadError();
    EXPECT_EQ(FreeLibrary(module) == TRUE, error.empty());
    return error;
  };
  EXPECT_EQ(loadError(whole), "");
  for (std::size_t size = 64; size < whole.size(); size += size < 1024 ? 1 : whole.size() / 97) {
    EXPECT_NE(loadError(whole.substr(0, size)).find("incomplete"), std::string::npos) << size;
  }
  // Without the section table only the segments show that the file is truncated.
  std::string bare = whole;
  bare.replace(40, 8, 8, '\0').replace(60, 2, 2, '\0');
  EXPECT_EQ(loadError(bare), "");
  EXPECT_NE(loadError(bare.substr(0, 8192)).find("incomplete"), std::string::npos);
  for (const std::size_t offset : {4u, 5u, 18u, 19u}) {  // class, byte order, machine
    std::string foreign = whole;
    foreign[offset] = static_cast<char>(foreign[offset] ^ 3);
    EXPECT_NE(loadError(foreign).find("another architecture"), std::string::npos) << offset;
  }
}

// The library stays loaded, so that its strings are loaded too.
TEST_F(DamagedFile, IsSafeToNameForResources) {
  writeFile(file, whole);
  const HMODULE copy = LoadLibraryW(file.wstring().c_str());
  ASSERT_NE(copy, nullptr) << ulmWin32LoadError();
  const auto bytesFoundIn = [&](const std::string& content) {
    replace(content);
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
    EXPECT_EQ(bytesFoundIn(whole.substr(0, size)), 0)
        << size;  // the table of section headers is last
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
  EXPECT_EQ(FreeLibrary(copy), TRUE);
}

std::wstring valueOf(const wchar_t* name) {
  wchar_t value[32768];
  return {value, GetEnvironmentVariableW(name, value, 32768)};
}

TEST(Environment, StartsAsACopyAndNeverWritesBack) {
  const std::string real = std::getenv("PATH");
  const std::wstring wide(real.begin(), real.end());
  EXPECT_EQ(valueOf(L"PATH"), wide);
  EXPECT_EQ(_wputenv((L"Path=" + wide + L";Z:\\x\\").c_str()), 0);
  EXPECT_EQ(valueOf(L"pAtH"), wide + L";Z:\\x\\");
  EXPECT_EQ(std::getenv("PATH"), real);
  ASSERT_EQ(setenv("ULM_TEST_REAL", "1", 1), 0);
  EXPECT_EQ(valueOf(L"ULM_TEST_REAL"), L"");
}

}  // namespace
