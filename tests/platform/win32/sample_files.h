// The sample library's file, and files that a test makes.
#pragma once

#include <unistd.h>

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

// A folder of this process's own, which goes with the object: other runs may be under way.
class TestFolder {
 public:
  TestFolder()
      : path_(std::filesystem::temp_directory_path() / ("ulm_win32_" + std::to_string(getpid()))) {
    std::filesystem::create_directories(path_);
  }
  ~TestFolder() { std::filesystem::remove_all(path_); }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

}  // namespace ulm::win32::test
