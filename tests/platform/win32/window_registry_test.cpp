#include <gtest/gtest.h>

#include "platform/win32/stand_in.h"

namespace {

TEST(Windows, AreFoundByClassUntilTheyClose) {
  EXPECT_EQ(FindWindowW(L"_indebmon", nullptr), nullptr);
  EXPECT_EQ(ulmWin32OpenWindow(nullptr), nullptr);
  const HWND first = ulmWin32OpenWindow(L"_indebmon");
  const HWND second = ulmWin32OpenWindow(L"_INDEBMON");
  const HWND other = ulmWin32OpenWindow(L"other");
  EXPECT_NE(first, second);
  EXPECT_EQ(FindWindowW(L"_InDebMon", nullptr), second);
  EXPECT_EQ(FindWindowW(nullptr, nullptr), other);
  EXPECT_EQ(FindWindowW(L"_indebmon", L"title"), nullptr);
  EXPECT_TRUE(ulmWin32CloseWindow(second));
  EXPECT_FALSE(ulmWin32CloseWindow(second));
  EXPECT_EQ(FindWindowW(L"_indebmon", nullptr), first);
  EXPECT_TRUE(ulmWin32CloseWindow(first));
  EXPECT_TRUE(ulmWin32CloseWindow(other));
  EXPECT_EQ(FindWindowW(L"_indebmon", nullptr), nullptr);
}

TEST(CallLog, KeepsTheOrderOfCalls) {
  ulmWin32LogCall("before");
  ulmWin32StartCallLog();
  FindWindowW(L"_indebmon", nullptr);
  GetPrivateProfileIntW(L"mt", L"JumpArrOnAdd", 0, L"/no/such.ini");
  DisableThreadLibraryCalls(nullptr);
  GetModuleHandleA("qlcore.dll");
  GetModuleHandleW(nullptr);
  GetProcAddress(nullptr, "_QLAfxDllMain");
  ulmWin32LogCall("of a library");
  char text[4];
  LoadStringA(nullptr, 300, text, 4);
  GetEnvironmentVariableW(L"\u00C4", nullptr, 0);
  _wputenv(L"NAME=value");
  GetFileVersionInfoW(L"Z:\\x.dll", 0, 0, nullptr);
  const char* expected =
      "FindWindowW _indebmon\nGetPrivateProfileIntW JumpArrOnAdd\nDisableThreadLibraryCalls\n"
      "GetModuleHandleA qlcore.dll\nGetModuleHandleW (program)\nGetProcAddress _QLAfxDllMain\n"
      "of a library\nLoadStringA 300\nGetEnvironmentVariableW \xC3\x84\n_wputenv NAME\n"
      "GetFileVersionInfoW Z:\\x.dll\n";
  EXPECT_STREQ(ulmWin32CallLog(), expected);
  ulmWin32StopCallLog();
  FindWindowW(L"_indebmon", nullptr);
  EXPECT_STREQ(ulmWin32CallLog(), expected);
  ulmWin32StartCallLog();
  EXPECT_STREQ(ulmWin32CallLog(), "");
  ulmWin32StopCallLog();
}

}  // namespace
