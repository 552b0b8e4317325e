// The icon in the library's resources, read by Windows.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "hostsdk/win32/win32.h"

namespace {

// One image of a group, in the layout of the resource.
#pragma pack(push, 2)
struct GroupEntry {
  std::uint8_t width, height, colours, reserved;  // 0 means 256
  std::uint16_t planes, bits;
  std::uint32_t bytes;
  std::uint16_t number;  // of the image's resource
};
#pragma pack(pop)
static_assert(sizeof(GroupEntry) == 14);
constexpr std::size_t kGroupHeader = 6;

std::vector<char> resource(HMODULE library, const wchar_t* name, const wchar_t* type) {
  const HRSRC found = FindResourceW(library, name, type);
  if (found == nullptr) return {};
  const auto* bytes = static_cast<const char*>(LockResource(LoadResource(library, found)));
  return {bytes, bytes + SizeofResource(library, found)};
}

int countName(HMODULE, const wchar_t*, wchar_t* name, LONG_PTR count) {
  const bool named = !IS_INTRESOURCE(name) && std::wcscmp(name, L"C_MAIN_LOGO") == 0;
  *reinterpret_cast<int*>(count) += named ? 1 : 100;
  return TRUE;
}

TEST(Icon, OneGroupOfTenImages) {
  const HMODULE library = LoadLibraryW(L"ULM_Main.dll");
  int groups = 0;
  EnumResourceNamesW(library, MAKEINTRESOURCEW(14), countName, reinterpret_cast<LONG_PTR>(&groups));
  EXPECT_EQ(groups, 1);
  const std::vector<char> group = resource(library, L"C_MAIN_LOGO", MAKEINTRESOURCEW(14));
  const int sizes[] = {256, 128, 96, 64, 48, 40, 32, 24, 20, 16};
  ASSERT_EQ(group.size(), kGroupHeader + std::size(sizes) * sizeof(GroupEntry));
  for (std::size_t i = 0; i < std::size(sizes); ++i) {
    GroupEntry entry;
    std::memcpy(&entry, group.data() + kGroupHeader + i * sizeof entry, sizeof entry);
    EXPECT_TRUE(entry.width == sizes[i] % 256 && entry.height == sizes[i] % 256) << i;
    EXPECT_EQ(entry.bits, 32);
    std::vector<char> image =
        resource(library, MAKEINTRESOURCEW(entry.number), MAKEINTRESOURCEW(3));
    ASSERT_EQ(image.size(), entry.bytes) << i;
    const HICON icon = CreateIconFromResourceEx(reinterpret_cast<BYTE*>(image.data()), entry.bytes,
                                                TRUE, 0x00030000, sizes[i], sizes[i], 0);
    ICONINFO about{};
    BITMAP colours{};
    ASSERT_TRUE(icon != nullptr && GetIconInfo(icon, &about) != FALSE) << i;
    GetObjectW(about.hbmColor, sizeof colours, &colours);
    EXPECT_TRUE(colours.bmWidth == sizes[i] && colours.bmHeight == sizes[i]) << i;
    DestroyIcon(icon);
  }
  FreeLibrary(library);
}

}  // namespace
