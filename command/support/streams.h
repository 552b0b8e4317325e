// How every subcommand reads its input, ends its output and prints a message. Outputs that go to
// files, or to files and standard output together, are written by a FileBatch.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ulm::tools {

// The bytes of a file, or of standard input where the name is "-". Every failure to open or to
// read, a directory included, is a std::runtime_error "NAME: cannot be read: REASON".
class Input {
 public:
  explicit Input(const std::string& file);

  // The name in messages: the file's own, or "standard input".
  const std::string& name() const noexcept { return name_; }
  // The size of a regular file; nothing for a pipe or a device.
  std::optional<std::uint64_t> size() const;

  // Reads up to `length` bytes, and fewer only at the end of the input. Returns their number.
  std::size_t read(void* bytes, std::size_t length);
  // The next byte; nothing at the end.
  std::optional<char> readByte();
  // Reads a line without its line feed and a carriage return before that. Returns false at the end
  // of the input. A line of more than `most` bytes is a std::runtime_error with the input's name.
  bool readLine(std::string& line, std::size_t most);
  // All that is left. More than `most` bytes are a std::runtime_error with the input's name, so
  // that an input without an end cannot use up the memory.
  std::string readAll(std::uint64_t most);

 private:
  struct Close {
    void operator()(std::FILE* file) const;
  };
  [[noreturn]] void failByErrno() const;

  std::string name_;
  std::unique_ptr<std::FILE, Close> file_;  // standard input is borrowed
};

// Hands what std::cout holds to the system. A failure, now or in an earlier write, is a
// std::runtime_error "standard output: cannot be written", with the reason where there is one.
// The command calls it once at its end, for all subcommands.
void flushStandardOutput();

// Prints "ulmira SUBCOMMAND: MESSAGE" as one line on the error stream, or "ulmira: MESSAGE" where
// the subcommand is empty. The message is made printable. Exceptions that leave a subcommand are
// printed so by the command itself; a subcommand calls this for warnings alone.
void printMessage(std::string_view subcommand, std::string_view message);

// The text with control characters, and bytes that are no UTF-8, as \xNN. It cannot end a line or
// steer a terminal.
std::string printable(std::string_view text);

}  // namespace ulm::tools
