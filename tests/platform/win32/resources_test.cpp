// Resources of damaged blocks and files: nothing leads outside of them.
#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <vector>

#include "platform/win32/stand_in.h"
#include "tests/platform/win32/sample_files.h"

namespace {

using namespace ulm::win32::test;

using Block = std::vector<unsigned char>;

Block versionOf(const std::wstring& file, DWORD length) {
  Block block(length);
  if (GetFileVersionInfoW(file.c_str(), 0, length, block.data()) == FALSE) block.clear();
  return block;
}

const VS_FIXEDFILEINFO* fixedIn(const Block& block, const wchar_t* subBlock = L"\\") {
  void* value = nullptr;
  UINT length = 0;
  if (VerQueryValueW(block.data(), subBlock, &value, &length) == FALSE) return nullptr;
  EXPECT_EQ(length, sizeof(VS_FIXEDFILEINFO));
  return static_cast<VS_FIXEDFILEINFO*>(value);
}

TEST(VersionResource, CutOrDamagedBlocksAreRefused) {
  DWORD handle = 1;
  ASSERT_EQ(GetFileVersionInfoSizeW(L"Win32_Sample", &handle), 92u);
  EXPECT_EQ(handle, 0u);
  const Block whole = versionOf(L"Win32_Sample", 92);
  const VS_FIXEDFILEINFO* fixed = fixedIn(whole);
  ASSERT_EQ(reinterpret_cast<const unsigned char*>(fixed), whole.data() + 40);
  EXPECT_EQ(fixed->dwSignature, 0xFEEF04BD);
  EXPECT_EQ(fixed->dwFileVersionMS, 1u << 16 | 2u);
  EXPECT_EQ(fixed->dwProductVersionLS, 5798u << 16 | 3294u);
  for (DWORD size = 0; size < whole.size(); ++size) {
    const Block cut = versionOf(L"Win32_Sample", size);
    EXPECT_EQ(cut.empty(), size < 6) << size;
    EXPECT_TRUE(cut.empty() || fixedIn(cut) == nullptr) << size;
  }
  for (const std::size_t place : {2u, 6u, 34u, 40u}) {
    Block damaged = whole;
    damaged[place] ^= 1;
    EXPECT_EQ(fixedIn(damaged), nullptr) << place;
  }
  for (const wchar_t* other : {L"", L"/", L"\\VarFileInfo\\Translation"}) {
    EXPECT_EQ(fixedIn(whole, other), nullptr);
  }
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
    char text[65536];
    const DWORD version = GetFileVersionInfoSizeW(file.wstring().c_str(), nullptr);
    EXPECT_EQ(versionOf(file.wstring(), version).size(), version);
    return version + static_cast<std::size_t>(LoadStringA(copy, 7, text, sizeof text)) +
           static_cast<std::size_t>(LoadStringA(copy, 300, text, sizeof text));
  };
  EXPECT_EQ(bytesFoundIn(whole), 92u + 5u + 5u);
  for (std::size_t size = 0; size < whole.size(); size += size < 128 ? 1 : whole.size() / 97 + 1) {
    EXPECT_EQ(bytesFoundIn(whole.substr(0, size)), 0u) << size;  // the headers' table comes last
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
        EXPECT_LE(bytesFoundIn(damaged), whole.size()) << place;
      }
    }
  }
  EXPECT_EQ(FreeLibrary(copy), TRUE);
  EXPECT_EQ(FreeLibrary(original), TRUE);
}

}  // namespace
