// InputFile: a file to read. Any name is safe: only regular files are opened, and opening never
// blocks.
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

  // Returns true if the file is open and contains the bytes [offset, offset + length).
  bool holds(std::uint64_t offset, std::uint64_t length) const noexcept {
    return isOpen() && offset <= size_ && length <= size_ - offset;
  }

  // Returns the bytes [offset, offset + length); nothing if the file does not contain all of them.
  // The length is checked before memory is allocated.
  std::optional<std::string> read(std::uint64_t offset, std::uint64_t length) const;

  // Returns the whole file, also if the system reports no size for it; nothing on an error.
  std::optional<std::string> readAll() const;

 private:
  int descriptor_ = -1;
  std::uint64_t size_ = 0;
};

}  // namespace ulm::win32::detail
