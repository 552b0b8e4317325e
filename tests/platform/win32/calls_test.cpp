// The calls whose cases are plain data: the rows of tests/data/platform.
#include <gtest/gtest.h>

#include "platform/win32/stand_in.h"
#include "tests/platform/win32/sample_files.h"
#include "tests/support/call_rows.h"

extern "C" [[gnu::visibility("default")]] int ulmTestProgramExport() { return 5; }

namespace {

using namespace ulm::test;
using namespace ulm::win32::test;

const TestFolder& scratch() {
  static const TestFolder folder;
  return folder;
}

Answer nameOf(HMODULE module) {
  return module != nullptr ? Answer(shown(fileNameOf(module))) : Answer("none");
}

Answer load(const Arguments& a) {
  const HMODULE module = LoadLibraryW(a[1]);
  EXPECT_EQ(module == nullptr, *ulmWin32LoadError() != '\0');
  return nameOf(module);
}

// What the export gives, all of them being functions without arguments.
Answer callExport(const Arguments& a) {
  const FARPROC found = GetProcAddress(GetModuleHandleW(a[1]), a[2]);
  return found != nullptr ? Answer(found()) : Answer("none");
}

Answer profile(const Arguments& a) {
  writeFile(scratch().path / "x.ini", a[2].bytes);
  const std::wstring file = (scratch().path / "x.ini").wstring();
  return static_cast<int>(GetPrivateProfileIntW(a[1], L"Key", -5, file.c_str()));
}

// What a call gives that is asked for the size first.
template <class Character, class Call>
std::basic_string<Character> sized(const Call& call) {
  const int size = call(nullptr, 0);
  std::basic_string<Character> made(static_cast<std::size_t>(size), '#');
  EXPECT_EQ(call(made.data(), size), size);
  EXPECT_TRUE(size < 2 || call(made.data(), size - 1) == 0);
  return made;
}

// Bytes as wide text; they must come back, or be refused where that is asked for.
Answer decode(const Arguments& a) {
  const std::string& bytes = a[2].bytes;
  const auto decoded = [&](DWORD flags) {
    return sized<wchar_t>([&](wchar_t* target, int room) {
      return MultiByteToWideChar(a[1], flags, bytes.data(), static_cast<int>(bytes.size()), target,
                                 room);
    });
  };
  const std::wstring wide = decoded(0);
  if (decoded(MB_ERR_INVALID_CHARS) != wide) return shown(wide) + " refused";
  const std::string back = sized<char>([&](char* target, int room) {
    return WideCharToMultiByte(a[1], 0, wide.data(), static_cast<int>(wide.size()), target, room,
                               nullptr, nullptr);
  });
  EXPECT_EQ(back, bytes);
  return shown(wide);
}

Answer encode(const Arguments& a) {
  BOOL used = -1;
  BOOL* const outUsed = a[1].written != "65001" ? &used : nullptr;
  const Answer bytes = filled<char>(a[4], [&](char* target, int room) {
    return WideCharToMultiByte(a[1], 0, a[2], a[3], target, room, a[5], outUsed);
  });
  return bytes.written + (used == TRUE ? " used" : used == FALSE ? " unused" : "");
}

Answer callLog(const Arguments& a) {
  if (a[1].written == "start") ulmWin32StartCallLog();
  if (a[1].written == "stop") ulmWin32StopCallLog();
  if (a[1].written == "add") ulmWin32LogCall(a[2]);
  return '"' + shown(std::string(ulmWin32CallLog())) + '"';
}

const Calls kCalls = {
    {"_wputenv", [](auto& a) { return _wputenv(a[1]); }},
    {"GetEnvironmentVariableW",
     [](auto& a) {
       return filled<wchar_t>(a[2], [&](wchar_t* buffer, DWORD size) {
         return GetEnvironmentVariableW(a[1], buffer, size);
       });
     }},
    {"profile", profile},
    {"GetPrivateProfileIntW",
     [](auto& a) { return static_cast<int>(GetPrivateProfileIntW(a[1], a[2], -5, a[3])); }},
    {"decode", decode},
    {"encode", encode},
    {"MultiByteToWideChar",
     [](auto& a) {
       return filled<wchar_t>(a[5], [&](wchar_t* target, int room) {
         return MultiByteToWideChar(a[1], a[2], a[3], a[4], target, room);
       });
     }},
    {"lstrcpynW",
     [](auto& a) {
       return filled<wchar_t>(a[2], [&](wchar_t* target, int size) {
         return lstrcpynW(target, a[1], size) == target;
       });
     }},
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
    {"LoadStringA",
     [](auto& a) {
       return filled<char>(a[3], [&](char* buffer, int size) {
         return LoadStringA(GetModuleHandleW(a[1]), a[2], buffer, size);
       });
     }},
    {"LoadStringW",
     [](auto& a) {
       return filled<wchar_t>(a[3], [&](wchar_t* buffer, int size) {
         return LoadStringW(GetModuleHandleW(a[1]), a[2], buffer, size);
       });
     }},
    {"GetFileVersionInfoSizeW", [](auto& a) { return GetFileVersionInfoSizeW(a[1], nullptr); }},
    {"open", [](auto& a) { return reinterpret_cast<std::intptr_t>(ulmWin32OpenWindow(a[1])); }},
    {"close",
     [](auto& a) { return ulmWin32CloseWindow(reinterpret_cast<HWND>(std::intptr_t{a[1]})); }},
    {"FindWindowW",
     [](auto& a) { return reinterpret_cast<std::intptr_t>(FindWindowW(a[1], a[2])); }},
    {"log", callLog}};

class CallRows : public testing::TestWithParam<const char*> {};

TEST_P(CallRows, AnswerAsWritten) {
  const std::wstring bin = windowsName(sampleFile().parent_path());
  const std::wstring folder = windowsName(scratch().path).substr(2);
  runCallRows(ULM_TEST_DATA "/platform/" + std::string(GetParam()) + ".txt", kCalls,
              {{"$bin", shown(bin)}, {"$tmp", shown(folder)}});
}

INSTANTIATE_TEST_SUITE_P(Files, CallRows,
                         testing::Values("environment", "modules", "profile", "strings", "text",
                                         "windows"),
                         [](const auto& file) { return std::string(file.param); });

}  // namespace
