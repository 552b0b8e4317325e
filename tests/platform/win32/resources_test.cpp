#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/win32/stand_in.h"
#include "tests/platform/win32/sample_files.h"

namespace {

using namespace ulm::win32::test;

std::vector<unsigned char> versionOf(const std::wstring& file) {
  DWORD handle = 1;
  std::vector<unsigned char> block(GetFileVersionInfoSizeW(file.c_str(), &handle));
  EXPECT_EQ(handle, 0u);
  const auto size = static_cast<DWORD>(block.size());
  EXPECT_EQ(GetFileVersionInfoW(file.c_str(), 0, size, block.data()), size != 0 ? TRUE : FALSE);
  return block;
}

bool queryFixed(const std::vector<unsigned char>& block, VS_FIXEDFILEINFO& fixed,
                const wchar_t* subBlock = L"\\") {
  void* value = nullptr;
  UINT length = 0;
  if (VerQueryValueW(block.data(), subBlock, &value, &length) == FALSE) return false;
  EXPECT_EQ(length, sizeof fixed);
  EXPECT_EQ(static_cast<unsigned char*>(value) - block.data(), 40);
  std::memcpy(&fixed, value, sizeof fixed);
  return true;
}

TEST(VersionResource, IsReadFromTheFile) {
  VS_FIXEDFILEINFO fixed{};
  for (const std::wstring& name : {std::wstring(L"Win32_Sample.dll"), sampleFile().wstring()}) {
    ASSERT_TRUE(queryFixed(versionOf(name), fixed));
    EXPECT_EQ(fixed.dwSignature, 0xFEEF04BD);
    EXPECT_EQ(fixed.dwFileVersionMS, 1u << 16 | 2u);
    EXPECT_EQ(fixed.dwProductVersionLS, 5798u << 16 | 3294u);
  }
  EXPECT_TRUE(versionOf(L"Win32_Sample_Base.dll").empty());
  EXPECT_TRUE(versionOf(L"no_such.dll").empty());
}

TEST(VersionResource, CutOrDamagedBlocksAreRefused) {
  const std::vector<unsigned char> whole = versionOf(L"Win32_Sample");
  ASSERT_EQ(whole.size(), 92u);
  VS_FIXEDFILEINFO fixed{};
  for (DWORD size = 0; size < whole.size(); ++size) {
    std::vector<unsigned char> cut(size);
    const BOOL copied = GetFileVersionInfoW(L"Win32_Sample", 0, size, cut.data());
    EXPECT_EQ(copied, size >= 6 ? TRUE : FALSE);
    EXPECT_FALSE(copied == TRUE && queryFixed(cut, fixed));
  }
  for (const std::size_t place : {2u, 6u, 34u, 40u}) {
    std::vector<unsigned char> damaged = whole;
    damaged[place] ^= 1;
    EXPECT_FALSE(queryFixed(damaged, fixed)) << place;
  }
  for (const wchar_t* other : {L"", L"/", L"\\VarFileInfo\\Translation"}) {
    EXPECT_FALSE(queryFixed(whole, fixed, other));
  }
}

TEST(StringResource, IsCutAndTerminated) {
  const HMODULE sample = LoadLibraryW(L"Win32_Sample");
  ASSERT_NE(sample, nullptr);
  const struct {
    UINT number;
    int size;
    int result;
    const char* text;
  } cases[] = {{7, 16, 5, "Plain"}, {7, 6, 5, "Plain"},  {7, 5, 4, "Plai"},        {7, 1, 0, ""},
               {7, 0, -1, "#"},     {7, -1, -1, "#"},    {300, 16, 5, "\x80 ? ?"}, {8, 16, 0, ""},
               {0, 16, 0, ""},      {0x10007, 16, 0, ""}};
  for (const auto& tested : cases) {
    char text[] = "################";
    if (tested.size < 1) text[1] = '\0';
    EXPECT_EQ(LoadStringA(sample, tested.number, text, tested.size), tested.result);
    EXPECT_STREQ(text, tested.text) << tested.number << ' ' << tested.size;
  }
  wchar_t wide[16] = L"#";
  EXPECT_EQ(LoadStringW(sample, 7, wide, 0), 0);
  EXPECT_STREQ(wide, L"#");
  EXPECT_EQ(LoadStringW(sample, 300, wide, 16), 5);
  EXPECT_STREQ(wide, L"\x20AC \x416 \x1F600");
  EXPECT_EQ(LoadStringW(sample, 7, wide, 3), 2);
  EXPECT_STREQ(wide, L"Pl");
  EXPECT_EQ(LoadStringW(nullptr, 7, wide, 16), 0);  // the program has no strings
  EXPECT_STREQ(wide, L"");
  EXPECT_EQ(FreeLibrary(sample), TRUE);
}

// Neither a short file nor one with wild numbers in its headers leads outside of it. The library
// stays loaded from a file that is replaced again and again, so that its strings are asked for too.
TEST(Resources, AnyFileIsSafeToName) {
  const TestFolder folder;
  const std::filesystem::path file = folder / "damaged.so";
  const std::string whole = readFile(sampleFile());
  writeFile(file, whole);
  const HMODULE original = LoadLibraryW(L"Win32_Sample");  // brings what the copy links, too
  const HMODULE copy = LoadLibraryW(file.wstring().c_str());
  ASSERT_NE(copy, nullptr) << ulmWin32LoadError();
  const auto bytesFoundIn = [&](const std::string& content) {
    std::filesystem::remove(file);
    writeFile(file, content);
    char text[65536];
    return versionOf(file.wstring()).size() +
           static_cast<std::size_t>(LoadStringA(copy, 7, text, sizeof text)) +
           static_cast<std::size_t>(LoadStringA(copy, 300, text, sizeof text));
  };
  EXPECT_EQ(bytesFoundIn(whole), 92u + 5u + 5u);
  for (std::size_t size = 0; size < whole.size(); size += size < 128 ? 1 : whole.size() / 97 + 1) {
    EXPECT_EQ(bytesFoundIn(whole.substr(0, size)), 0u) << size;  // the headers' table comes last
  }
  const auto sweep = [&](std::size_t begin, std::size_t end) {
    ASSERT_LE(end, whole.size());
    for (std::size_t place = begin; place < end; ++place) {
      for (const char value : {'\0', '\x7F', '\xFF'}) {
        std::string damaged = whole;
        damaged[place] = value;
        EXPECT_LE(bytesFoundIn(damaged), whole.size()) << place;
      }
    }
  };
  std::uint64_t table = 0;
  std::memcpy(&table, whole.data() + 40, sizeof table);
  sweep(0, 64);
  sweep(table, whole.size());
  const std::size_t plain = whole.find(std::string("P\0l\0a\0i\0n\0", 10));
  sweep(plain - 4, plain + 40);
  EXPECT_EQ(FreeLibrary(copy), TRUE);
  EXPECT_EQ(FreeLibrary(original), TRUE);
}

}  // namespace
