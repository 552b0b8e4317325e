#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "platform/win32/win32.h"

namespace {

// The value, read as a caller does who asks for the size first.
std::wstring valueOf(const wchar_t* name) {
  const DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
  std::wstring value(size, L'#');
  if (size != 0) value.resize(GetEnvironmentVariableW(name, value.data(), size));
  return value;
}

TEST(Environment, StartsAsACopyAndNeverWritesBack) {
  const std::string real = std::getenv("PATH");
  EXPECT_EQ(valueOf(L"PATH"), std::wstring(real.begin(), real.end()));
  EXPECT_EQ(_wputenv((L"Path=" + valueOf(L"PATH") + L";Z:\\x\\").c_str()), 0);
  EXPECT_EQ(valueOf(L"pAtH"), std::wstring(real.begin(), real.end()) + L";Z:\\x\\");
  EXPECT_EQ(std::getenv("PATH"), real);
  ASSERT_EQ(setenv("ULM_TEST_REAL", "1", 1), 0);
  EXPECT_EQ(GetEnvironmentVariableW(L"ULM_TEST_REAL", nullptr, 0), 0u);
}

TEST(Environment, WritesWhatFitsAndTellsWhatIsNeeded) {
  ASSERT_EQ(_wputenv(L"ULM_TEST_FIT=abc"), 0);
  const struct {
    DWORD size, result;
    const wchar_t* left;
  } cases[] = {{0, 4, L"####"}, {1, 4, L""}, {3, 4, L""}, {4, 3, L"abc"}, {5, 3, L"abc"}};
  for (const auto& tested : cases) {
    wchar_t buffer[] = L"####";
    EXPECT_EQ(GetEnvironmentVariableW(L"ULM_TEST_FIT", buffer, tested.size), tested.result);
    EXPECT_STREQ(buffer, tested.left) << tested.size;
  }
  wchar_t buffer[] = L"##";
  for (const wchar_t* absent : {L"ULM_TEST_ABSENT", L"", L"ULM_TEST_FIT=abc"}) {
    EXPECT_EQ(GetEnvironmentVariableW(absent, buffer, 2), 0u);
    EXPECT_STREQ(buffer, L"##");
  }
}

TEST(Environment, SetsReplacesAndRemoves) {
  EXPECT_EQ(_wputenv(L"ULM_TEST_\u00C9T\u00C9=one=1"), 0);
  EXPECT_EQ(valueOf(L"ulm_test_\u00E9t\u00E9"), L"one=1");
  EXPECT_EQ(_wputenv(L"ulm_test_\u00E9t\u00E9=two"), 0);
  EXPECT_EQ(valueOf(L"ULM_TEST_\u00C9T\u00C9"), L"two");
  EXPECT_EQ(_wputenv(L"Ulm_Test_\u00C9t\u00E9="), 0);
  EXPECT_EQ(GetEnvironmentVariableW(L"ULM_TEST_\u00C9T\u00C9", nullptr, 0), 0u);
  EXPECT_EQ(_wputenv(L"ULM_TEST_ABSENT="), 0);
  for (const wchar_t* bad : {L"", L"NAME", L"=x", L"="}) EXPECT_EQ(_wputenv(bad), -1);
  EXPECT_EQ(_wputenv(nullptr), -1);
}

TEST(Environment, TakesManyThreads) {
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([number] {
      const std::wstring name = L"ULM_TEST_THREAD" + std::to_wstring(number);
      for (int i = 1; i < 200; ++i) {
        _wputenv((name + L'=' + std::to_wstring(i)).c_str());
        EXPECT_EQ(valueOf(name.c_str()), std::to_wstring(i));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
