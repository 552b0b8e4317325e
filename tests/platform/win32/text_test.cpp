#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/win32/win32.h"

namespace {

using namespace std::string_literals;

int sizeOf(std::string_view text) { return static_cast<int>(text.size()); }
int sizeOf(std::wstring_view text) { return static_cast<int>(text.size()); }

struct DecodeCase {
  UINT page;
  std::string bytes;
  std::wstring wide;
  bool valid = true;
};

TEST(MultiByteToWideChar, DecodesAndTellsBadBytes) {
  const DecodeCase cases[] = {
      {CP_ACP, "a\x80\x81\xFF", L"a\x20AC\x81\xFF"},
      {1252, "\xC3\xA9", L"\xC3\xA9"},
      {CP_UTF8, "z\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", L"z\xE9\x20AC\x1F600"},
      {CP_UTF8, "\xEF\xBF\xBF\xF4\x8F\xBF\xBF\xED\x9F\xBF"s + '\0',
       L"\xFFFF\x10FFFF\xD7FF"s + L'\0'},
      {CP_UTF8, "a\x80z", L"a\xFFFDz", false},                            // nothing to follow
      {CP_UTF8, "\xC0\xAF\xC1\xBF", L"\xFFFD\xFFFD\xFFFD\xFFFD", false},  // overlong
      {CP_UTF8, "\xE0\x9F\xBF", L"\xFFFD\xFFFD\xFFFD", false},
      {CP_UTF8, "\xED\xA0\x80", L"\xFFFD\xFFFD\xFFFD", false},  // a surrogate
      {CP_UTF8, "\xF4\x90\x80\x80", L"\xFFFD\xFFFD\xFFFD\xFFFD", false},
      {CP_UTF8, "\xF0\x9F\x98", L"\xFFFD", false},  // cut off
      {CP_UTF8, "\xE2\x82z\xFF", L"\xFFFDz\xFFFD", false}};
  for (const DecodeCase& tested : cases) {
    SCOPED_TRACE(testing::PrintToString(tested.bytes));
    const int needed = sizeOf(tested.wide);
    const auto decode = [&](DWORD flags, wchar_t* target, int size) {
      return MultiByteToWideChar(tested.page, flags, tested.bytes.data(), sizeOf(tested.bytes),
                                 target, size);
    };
    EXPECT_EQ(decode(0, nullptr, 0), needed);
    std::wstring wide(tested.wide.size(), L'#');
    EXPECT_EQ(decode(0, wide.data(), needed), needed);
    EXPECT_EQ(wide, tested.wide);
    EXPECT_EQ(decode(MB_ERR_INVALID_CHARS, nullptr, 0), tested.valid ? needed : 0);
    if (needed > 1) {
      EXPECT_EQ(decode(0, wide.data(), needed - 1), 0);
    }
    if (!tested.valid) continue;
    std::string back(tested.bytes.size(), '#');
    const auto encode = [&](char* target, int size) {
      return WideCharToMultiByte(tested.page, 0, wide.data(), needed, target, size, nullptr,
                                 nullptr);
    };
    EXPECT_EQ(encode(nullptr, 0), sizeOf(tested.bytes));
    EXPECT_EQ(encode(back.data(), sizeOf(back)), sizeOf(back));
    EXPECT_EQ(back, tested.bytes);
    if (sizeOf(back) > 1) {
      EXPECT_EQ(encode(back.data(), sizeOf(back) - 1), 0);
    }
  }
}

TEST(MultiByteToWideChar, EveryAnsiByteComesBack) {
  for (int value = 0; value < 256; ++value) {
    const char byte = static_cast<char>(value);
    wchar_t wide = 0;
    char back = static_cast<char>(~byte);
    BOOL substituted = TRUE;
    EXPECT_EQ(MultiByteToWideChar(1252, MB_ERR_INVALID_CHARS, &byte, 1, &wide, 1), 1);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, &wide, 1, &back, 1, nullptr, &substituted), 1);
    EXPECT_EQ(back, byte) << value;
    EXPECT_EQ(substituted, FALSE) << value;
  }
}

TEST(WideCharToMultiByte, SubstitutesWhatThePageLacks) {
  char bytes[8] = {};
  BOOL substituted = FALSE;
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"a\x80\x100", -1, bytes, 8, nullptr, &substituted), 4);
  EXPECT_STREQ(bytes, "a??");
  EXPECT_EQ(substituted, TRUE);
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"\x1F600!", 2, bytes, 8, "_", nullptr), 2);
  EXPECT_EQ(bytes, "_!?"s);
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"\xD800", -1, bytes, 8, nullptr, nullptr), 4);
  EXPECT_STREQ(bytes, "\xEF\xBF\xBD");
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"a", -1, bytes, 8, "_", nullptr), 0);
}

TEST(CodePages, RefuseWhatTheyCannotTake) {
  wchar_t wide[4] = {};
  char bytes[4] = {};
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "ab", -1, wide, 4), 3);  // with the terminator
  EXPECT_EQ(MultiByteToWideChar(437, 0, "a", 1, wide, 4), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 1, "a", 1, wide, 4), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", 0, wide, 4), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", -2, wide, 4), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, nullptr, 1, wide, 4), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", 1, wide, -1), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", 1, nullptr, 1), 0);
  EXPECT_EQ(WideCharToMultiByte(437, 0, L"a", 1, bytes, 4, nullptr, nullptr), 0);
  EXPECT_EQ(WideCharToMultiByte(1252, 0, nullptr, -1, bytes, 4, nullptr, nullptr), 0);
  EXPECT_EQ(GetACP(), 1252u);
}

TEST(lstrcpynW, CutsAndTerminates) {
  const struct {
    int size;
    const wchar_t* expected;
  } cases[] = {{-1, L"####"}, {0, L"####"}, {1, L""}, {3, L"ab"}, {4, L"abc"}, {5, L"abc"}};
  for (const auto& tested : cases) {
    wchar_t target[] = L"####";
    EXPECT_EQ(lstrcpynW(target, L"abc", tested.size), target);
    EXPECT_STREQ(target, tested.expected) << tested.size;
    EXPECT_EQ(lstrcpynW(target, nullptr, tested.size), nullptr);
  }
}

}  // namespace
