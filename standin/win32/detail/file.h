// A file that is read. Whatever a caller names is safe to open: only regular files are, and no call
// waits for one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace ulm::win32::detail {

class InputFile {
 public:
  explicit InputFile(const char* path) noexcept;
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  bool isOpen() const noexcept { return descriptor_ >= 0; }

  // Whether the file has the bytes [offset, offset + length).
  bool holds(std::uint64_t offset, std::uint64_t length) const noexcept {
    return isOpen() && offset <= size_ && length <= size_ - offset;
  }

  // The bytes [offset, offset + length); nothing where the file does not hold them all. A length
  // above the file's size is refused before memory is asked for.
  std::optional<std::string> read(std::uint64_t offset, std::uint64_t length) const;

  // Everything to the end of the file, also of one whose size the system does not tell.
  std::optional<std::string> readAll() const;

 private:
  int descriptor_ = -1;
  std::uint64_t size_ = 0;
};

}  // namespace ulm::win32::detail
