// A program's arguments, standard streams and files, in the same form on every system: text is
// UTF-8, and streams carry bytes unchanged.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ulm::tools {

// The arguments of main, converted to UTF-8. main creates one object before it does anything else:
// the constructor also prepares the standard streams. It stops the conversion of line ends, and
// makes sure that a stream which the caller closed is not replaced by the next opened file.
class ProgramArguments {
 public:
  ProgramArguments(int argc, char** argv);
  ProgramArguments(const ProgramArguments&) = delete;
  ProgramArguments& operator=(const ProgramArguments&) = delete;

  // The same as main's argc and argv; the values live as long as the object.
  int count() const noexcept { return static_cast<int>(texts_.size()); }
  char** values() noexcept { return pointers_.data(); }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;  // a null pointer follows the last
};

// Returns the path of a file name in UTF-8.
inline std::filesystem::path fileNamed(const std::string& text) {
  return {std::u8string(text.begin(), text.end())};
}

// Returns the file name of a path in UTF-8.
inline std::string textOf(const std::filesystem::path& name) {
  const std::u8string text = name.u8string();
  return {text.begin(), text.end()};
}

// Opens a file for reading bytes. Returns null with errno set on failure. The caller closes it.
std::FILE* openToRead(const std::string& name);

// Creates a file for writing bytes. Returns null with errno set on failure, which includes a file
// of that name that already exists. The caller closes it.
std::FILE* openFresh(const std::filesystem::path& name);

// Writes all buffered data of the file to the disk. Returns false with errno set on failure.
bool flushToDisk(std::FILE* file);

// Returns the size of a regular file in bytes, and nothing for a pipe, a device or a directory.
std::optional<std::uint64_t> regularSize(std::FILE* file);

// Returns true if the error stream is a terminal.
bool errorStreamIsTerminal();

// Discards what is written to the error stream while the object lives, for libraries that print
// there. Does nothing if the system refuses. One object may live at a time.
class SilencedErrorStream {
 public:
  SilencedErrorStream();
  SilencedErrorStream(const SilencedErrorStream&) = delete;
  SilencedErrorStream& operator=(const SilencedErrorStream&) = delete;
  ~SilencedErrorStream();

 private:
  int own_;  // a duplicate of the descriptor; -1 if nothing is discarded
};

// Returns a stream to the standard output, which the caller closes, and redirects standard output
// to the error stream, so that text which a library prints cannot mix with a report. Throws
// std::runtime_error if standard output is closed.
std::FILE* takeStandardOutput();

}  // namespace ulm::tools
