#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "platform/win32/win32.h"
#include "tests/platform/win32/sample_files.h"

namespace {

using namespace ulm::win32::test;

constexpr int kDefault = -5;
constexpr UINT kAbsent = static_cast<UINT>(kDefault);

UINT numberIn(std::string_view content, const wchar_t* section = L"mt",
              const wchar_t* key = L"Key") {
  const TestFolder folder;
  writeFile(folder / "x.ini", std::string(content));
  std::wstring name = L"Z:" + (folder / "x.ini").wstring();
  for (wchar_t& c : name) c = c == L'/' ? L'\\' : c;
  return GetPrivateProfileIntW(section, key, kDefault, name.c_str());
}

TEST(Profile, ReadsNumbers) {
  const struct {
    const char* value;
    UINT expected;
  } cases[] = {{"12", 12},       {"-1", 0xFFFFFFFF},   {" \t+7 \t", 7},   {"12 a;b", 12},
               {"0x1fG", 0x1F},  {"-0xA", 0xFFFFFFF6}, {"0o17", 15},      {"0b102", 2},
               {"0X10", 0},      {"089", 89},          {"4294967297", 1}, {"\"8\"", 8},
               {"' 9'", 9},      {"\"8", 0},           {"''", kAbsent},   {"\"", 0},
               {"   ", kAbsent}, {"- 5", 0},           {"=4", 0}};
  for (const auto& tested : cases) {
    EXPECT_EQ(numberIn("[mt]\nKey=" + std::string(tested.value)), tested.expected) << tested.value;
  }
}

TEST(Profile, FindsTheFirstSectionAndKey) {
  const struct {
    const char* content;
    UINT expected;
  } cases[] = {{"[MT]\r\nOther=1\rkEY=2\r", 2},
               {"  [ mt ] rest\n\n \t Key \t = 3", 3},
               {"[mt]\nKey=4\nKey=5\n", 4},
               {"[mt]\nOther=1\n[mt]\nKey=5", kAbsent},
               {"[a]\nKey=5\n[mt]\nKey=6\n[b]\nKey=7", 6},
               {"Key=5\n[a]\nKey=6", kAbsent},
               {"[mt]\n;Key=5\n  ; Key=5\nKey=8", 8},
               {"[mt]\n#Key=5\nKey\nKey=9", 9},
               {"[mt\nKey=5", kAbsent},
               {"[mt]\n[odd\nKey=10", 10},
               {"[mt]\nKeys=5\n", kAbsent}};
  for (const auto& tested : cases) {
    EXPECT_EQ(numberIn(tested.content), tested.expected) << tested.content;
  }
}

TEST(Profile, ReadsEveryEncoding) {
  const std::u16string text = u"[\u00C4\u20AC]\r\nKey=21\r\n";
  std::string little = "\xFF\xFE", big = "\xFE\xFF";
  for (const char16_t unit : text) {
    const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
    little += {low, high};
    big += {high, low};
  }
  for (const std::string& content : {little, big, little + '\n', std::string("[\xC4\x80]\nKey=21"),
                                     std::string("\xEF\xBB\xBF[\xC3\x84\xE2\x82\xAC]\nKey=21")}) {
    EXPECT_EQ(numberIn(content, L"\u00E4\u20AC"), 21u) << testing::PrintToString(content);
  }
}

TEST(Profile, GivesTheDefaultWithoutAFile) {
  const TestFolder folder;
  writeFile(folder / "x.ini", "[mt]\nKey=1");
  const std::wstring name = (folder / "x.ini").wstring();
  EXPECT_EQ(GetPrivateProfileIntW(L"mt", L"Key", kDefault, name.c_str()), 1u);
  EXPECT_EQ(GetPrivateProfileIntW(nullptr, L"Key", kDefault, name.c_str()), kAbsent);
  EXPECT_EQ(GetPrivateProfileIntW(L"mt", nullptr, kDefault, name.c_str()), kAbsent);
  const std::wstring otherDrive = L"C:" + name;
  for (const wchar_t* bad :
       {L"", L"mt.ini", L"/", L"/dev/zero", L"Z:\\no\\such.ini", L"Z:mt.ini", L"/\xD800",
        otherDrive.c_str(), static_cast<const wchar_t*>(nullptr)}) {
    EXPECT_EQ(GetPrivateProfileIntW(L"mt", L"Key", kDefault, bad), kAbsent);
  }
}

}  // namespace
