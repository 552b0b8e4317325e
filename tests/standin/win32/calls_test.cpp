// The rows of tests/data/standin, run against the layer or against Windows itself; the environment
// block with several threads; and the names of modules, cut to any length, and their addresses.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "hostsdk/export.h"
#include "standin/win32/stand_in.h"
#include "tests/standin/win32/call_rows.h"
#include "tests/standin/win32/sample_files.h"

extern "C" ULM_EXPORT int ulmTestProgramExport() { return 5; }

namespace {

using namespace ulm::test;
using namespace ulm::win32::test;

const TestFolder& scratch() {
  static const TestFolder folder;
  return folder;
}

Answer nameOf(HMODULE module) { return module != nullptr ? shown(fileNameOf(module)) : "none"; }

Answer load(const Arguments& a) {
  const HMODULE module = LoadLibraryW(a[1]);
  // On Windows the text is that of the last error of any call.
  if (kOnLayer || module == nullptr) {
    EXPECT_EQ(module == nullptr, *ulmWin32LoadError() != '\0');
  }
  return nameOf(module);
}

// Returns the result of an export; all exports are functions without arguments.
Answer callExport(const Arguments& a) {
  const FARPROC found = GetProcAddress(GetModuleHandleW(a[1]), a[2]);
  return found != nullptr ? std::to_string(found()) : "none";
}

Answer profile(const Arguments& a) {
  writeFile(scratch().path / "x.ini", a[2].bytes);
  const std::wstring file = (scratch().path / "x.ini").wstring();
  return static_cast<int>(GetPrivateProfileIntW(a[1], L"Key", -5, file.c_str()));
}

Answer defaultUsed(const Arguments& a) {
  BOOL used = -1;
  WideCharToMultiByte(a[1], 0, a[2], -1, nullptr, 0, nullptr, &used);
  return used;
}

// Returns the values of a version block of that length after one bit of one byte has changed.
Answer version(const Arguments& a) {
  std::vector<char> block(DWORD{a[2]});
  if (GetFileVersionInfoW(a[1], 0, a[2], block.data()) == FALSE) return "refused";
  if (a.size() > 4) block[std::size_t{a[4]}] ^= 1;
  void* value = nullptr;
  UINT length = 0;
  if (VerQueryValueW(block.data(), a[3], &value, &length) == FALSE) return "none";
  return shown(std::string(static_cast<const char*>(value), length));
}

std::vector<HWND> opened;  // in the order of opening

// The number of a window, from 1; 0 for none.
Answer numberOf(HWND window) {
  const auto at = std::find(opened.begin(), opened.end(), window);
  if (window == nullptr) return 0;
  return at != opened.end() ? Answer(at - opened.begin() + 1) : "foreign";
}

Answer callLog(const Arguments& a) {
  if (a[1].written == "start") ulmWin32StartCallLog();
  if (a[1].written == "stop") ulmWin32StopCallLog();
  if (a[1].written == "add") ulmWin32LogCall(a[2]);
  return '"' + shown(std::string(ulmWin32CallLog())) + '"';
}

const Calls kCalls = {
    {"_wputenv", [](auto& a) { return _wputenv(a[1]); }},
    {"GetEnvironmentVariableW", fills<wchar_t>([](auto& a, wchar_t* buffer, int size) {
       return GetEnvironmentVariableW(a[1], buffer, static_cast<DWORD>(size));
     })},
    {"profile", profile},
    {"GetPrivateProfileIntW",
     [](auto& a) { return static_cast<int>(GetPrivateProfileIntW(a[1], a[2], -5, a[3])); }},
    {"MultiByteToWideChar", fills<wchar_t>([](auto& a, wchar_t* target, int room) {
       return MultiByteToWideChar(a[1], a[2], a[3], a[4], target, room);
     })},
    {"WideCharToMultiByte", fills<char>([](auto& a, char* target, int room) {
       return WideCharToMultiByte(a[1], 0, a[2], a[3], target, room, a[4], nullptr);
     })},
    {"default used", defaultUsed},
    {"lstrcpynW", fills<wchar_t>([](auto& a, wchar_t* target, int size) {
       return lstrcpynW(target, a[1], size) == target;
     })},
    {"GetACP", [](auto&) { return GetACP(); }},
    {"LoadLibraryW", load},
    {"error tells",
     [](auto& a) {
       return std::string(ulmWin32LoadError()).find(a[1].bytes) != std::string::npos;
     }},
    {"FreeLibrary", [](auto& a) { return FreeLibrary(GetModuleHandleW(a[1])); }},
    {"GetModuleHandleW", [](auto& a) { return nameOf(GetModuleHandleW(a[1])); }},
    {"GetModuleHandleA", [](auto& a) { return nameOf(GetModuleHandleA(a[1])); }},
    {"export", callExport},
    {"DisableThreadLibraryCalls",
     [](auto& a) { return DisableThreadLibraryCalls(GetModuleHandleW(a[1])); }},
    {"LoadStringA", fills<char>([](auto& a, char* buffer, int size) {
       return LoadStringA(GetModuleHandleW(a[1]), a[2], buffer, size);
     })},
    {"LoadStringW", fills<wchar_t>([](auto& a, wchar_t* buffer, int size) {
       return LoadStringW(GetModuleHandleW(a[1]), a[2], buffer, size);
     })},
    {"GetFileVersionInfoSizeW", [](auto& a) { return GetFileVersionInfoSizeW(a[1], nullptr); }},
    {"version", version},
    {"open",
     [](auto& a) {
       const HWND made = ulmWin32OpenWindow(a[1]);
       if (made != nullptr) opened.push_back(made);
       return numberOf(made);
     }},
    {"close",
     [](auto& a) {
       const std::size_t number = a[1];
       return ulmWin32CloseWindow(opened.at(number - 1));
     }},
    {"FindWindowW", [](auto& a) { return numberOf(FindWindowW(a[1], a[2])); }},
    {"log", callLog}};

class CallRows : public testing::TestWithParam<const char*> {};

TEST_P(CallRows, AnswerAsWritten) {
  runCallRows(ULM_TEST_DATA "/standin/" + std::string(GetParam()) + ".txt", kCalls,
              {{"$bin", shown(windowsName(sampleFile().parent_path()))},
               {"$drive", shown(windowsName(scratch().path).substr(0, 2))},
               {"$tmp", shown(windowsName(scratch().path).substr(2))},
               {"$dll", kLibraryEnding},
               {"$exe", kProgramEnding}});
}

INSTANTIATE_TEST_SUITE_P(Files, CallRows,
                         testing::Values("environment", "modules", "profile", "resources", "text",
                                         "windows"),
                         [](const auto& file) { return std::string(file.param); });

std::wstring valueOf(const wchar_t* name) {
  wchar_t value[32768];
  return {value, GetEnvironmentVariableW(name, value, 32768)};
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
  constexpr std::uintptr_t pageSize = 4096;
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
  EXPECT_EQ(query(address, sizeof information - 1), 0u);
  // The stack belongs to no module.
  const bool known = query(reinterpret_cast<std::uintptr_t>(&page)) != 0;
  EXPECT_TRUE(!known || information.AllocationBase != sample);
  EXPECT_EQ(GetProcAddress(kNoModule, "sampleAnswer"), nullptr);
  EXPECT_EQ(GetProcAddress(sample, reinterpret_cast<const char*>(0xFFFF)), nullptr);
  EXPECT_EQ(DisableThreadLibraryCalls(kNoModule), FALSE);
  EXPECT_EQ(FreeLibrary(sample), TRUE);
}

}  // namespace
