// The sample library's file, and files that a test writes.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "command/support/process.h"
#include "hostsdk/win32/win32.h"
#include "tests/support/system_names.h"

namespace ulm::win32::test {

using ulm::test::windowsName;

inline std::filesystem::path sampleFile() {
  return tools::programFolder() / (std::string("Win32_Sample") + ulm::test::kLibraryEnding);
}

inline std::wstring fileNameOf(HMODULE module) {
  wchar_t name[2048];
  return {name, GetModuleFileNameW(module, name, 2048)};
}

inline void writeFile(const std::filesystem::path& file, const std::string& content) {
  std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

// A folder with a unique name, because other runs may be active. The destructor removes it.
struct TestFolder {
  static inline int made = 0;
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() /
      ("ulm_win32_" + std::to_string(getpid()) + '_' + std::to_string(++made));

  TestFolder() { std::filesystem::create_directories(path); }
  ~TestFolder() { std::filesystem::remove_all(path); }
  TestFolder(const TestFolder&) = delete;
};

}  // namespace ulm::win32::test
