// How every subcommand reads its input, flushes its output and prints a message. A FileBatch writes
// the outputs of subcommands that can write files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ulm::tools {

// The bytes of a file, or of standard input if the name is "-". Every failure to open or to read,
// a directory included, is a std::runtime_error "NAME: cannot be read: REASON".
class Input {
 public:
  explicit Input(const std::string& file);

  // Returns the name for messages: the file's own, or "standard input".
  const std::string& name() const noexcept { return name_; }
  // Returns the size of a regular file in bytes, and nothing for a pipe or a device.
  std::optional<std::uint64_t> size() const;

  // Reads up to `length` bytes, and fewer only at the end of the input. Returns the number of
  // bytes.
  std::size_t read(void* bytes, std::size_t length);
  // Returns the next byte, or nothing at the end of the input.
  std::optional<char> readByte();
  // Reads a line without its line feed and without a carriage return before that. Returns false at
  // the end of the input. A line longer than `maxLength` bytes is a std::runtime_error with the
  // input's name.
  bool readLine(std::string& line, std::size_t maxLength);
  // Reads the rest of the input. More than `maxSize` bytes are a std::runtime_error with the
  // input's name, so an endless input cannot exhaust the memory.
  std::string readAll(std::uint64_t maxSize);

 private:
  struct Close {
    void operator()(std::FILE* file) const;
  };
  [[noreturn]] void failByErrno() const;

  std::string name_;
  std::unique_ptr<std::FILE, Close> file_;  // standard input is not closed
};

// Flushes std::cout. A failure, in this call or in an earlier write, is a std::runtime_error
// "standard output: cannot be written", with the reason if one is known. The command calls this
// once at its end, for all subcommands.
void flushStandardOutput();

// Prints "ulmira SUBCOMMAND: MESSAGE" as one line on the error stream, or "ulmira: MESSAGE" if
// `subcommand` is empty. The message is made printable. main() prints the exceptions of subcommands
// in this way; a subcommand calls this function only for messages after which it continues.
void printMessage(std::string_view subcommand, std::string_view message);

}  // namespace ulm::tools
