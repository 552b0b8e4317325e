// The environment block beside the process's own, and under several threads.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "platform/win32/win32.h"

namespace {

// The value, read as a caller does who asks for the size first.
std::wstring valueOf(const wchar_t* name) {
  std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'#');
  const auto size = static_cast<DWORD>(value.size());
  value.resize(GetEnvironmentVariableW(name, value.data(), size));
  return value;
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

TEST(Environment, TakesManyThreads) {
  std::vector<std::thread> threads;
  for (int number = 0; number < 4; ++number) {
    threads.emplace_back([name = L"ULM_TEST_THREAD" + std::to_wstring(number)] {
      for (int i = 1; i < 200; ++i) {
        _wputenv((name + L'=' + std::to_wstring(i)).c_str());
        EXPECT_EQ(valueOf(name.c_str()), std::to_wstring(i));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
