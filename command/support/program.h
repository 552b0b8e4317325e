// What a program has from the system it runs on: its arguments, its streams and its files. Text is
// UTF-8 on every system, and a stream carries the same bytes.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ulm::tools {

// The arguments of main as UTF-8, in its own form. Made at the start of main; makes the standard
// streams carry bytes as they are, too.
class ProgramArguments {
 public:
  ProgramArguments(int argc, char** argv);
  ProgramArguments(const ProgramArguments&) = delete;
  ProgramArguments& operator=(const ProgramArguments&) = delete;

  int count() const noexcept { return static_cast<int>(texts_.size()); }
  char** values() noexcept { return pointers_.data(); }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;  // with a null behind the last
};

// A file name from its text, and the text of one.
inline std::filesystem::path fileNamed(const std::string& text) {
  return {std::u8string(text.begin(), text.end())};
}
inline std::string textOf(const std::filesystem::path& name) {
  const std::u8string text = name.u8string();
  return {text.begin(), text.end()};
}

// Opens a file to read its bytes; null with errno set where that fails.
std::FILE* openToRead(const std::string& name);

// Makes a file that was not there, to write bytes; null with errno set where that fails.
std::FILE* openFresh(const std::filesystem::path& name);

// Sees what was written to the disk; false with errno set where that fails.
bool flushToDisk(std::FILE* file);

// The size of a regular file; nothing for a pipe and whatever else may be open.
std::optional<std::uint64_t> regularSize(std::FILE* file);

// Whether the error stream is a terminal that people read.
bool errorStreamIsTerminal();

// The standard output as it was handed over, to be closed by the caller; from then on what a
// library prints goes to the error stream, so that a report stands alone. std::runtime_error where
// there is none.
std::FILE* takeStandardOutput();

}  // namespace ulm::tools
