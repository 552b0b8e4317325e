// The sample library's file, and copies of it.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace ulm::win32::test {

inline std::filesystem::path sampleFile() {
  return std::filesystem::read_symlink("/proc/self/exe").replace_filename("Win32_Sample.so");
}

inline std::string readFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void writeFile(const std::filesystem::path& file, const std::string& content) {
  std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

// An empty folder for a test of that name.
inline std::filesystem::path emptyFolder(const std::string& name) {
  const std::filesystem::path folder = std::filesystem::temp_directory_path() / name;
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder;
}

}  // namespace ulm::win32::test
