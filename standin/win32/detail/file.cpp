#include "standin/win32/detail/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace ulm::win32::detail {

namespace {

// Reads `length` bytes at `offset`. Returns their number, which is smaller only at the end of the
// file; -1 on an error.
ssize_t readAt(int descriptor, char* target, std::size_t length, std::uint64_t offset) noexcept {
  std::size_t done = 0;
  while (done < length) {
    const ssize_t got =
        pread(descriptor, target + done, length - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return static_cast<ssize_t>(done);
}

}  // namespace

InputFile::InputFile(const char* path) noexcept
    : descriptor_(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
  if (descriptor_ < 0) return;
  struct stat status {};
  if (fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode)) {
    size_ = static_cast<std::uint64_t>(status.st_size);
    return;
  }
  close(descriptor_);
  descriptor_ = -1;
}

InputFile::~InputFile() {
  if (descriptor_ >= 0) close(descriptor_);
}

std::optional<std::string> InputFile::read(std::uint64_t offset, std::uint64_t length) const {
  if (!holds(offset, length)) return std::nullopt;
  std::string bytes(static_cast<std::size_t>(length), '\0');
  const ssize_t got = readAt(descriptor_, bytes.data(), bytes.size(), offset);
  if (got != static_cast<ssize_t>(bytes.size())) return std::nullopt;
  return bytes;
}

std::optional<std::string> InputFile::readAll() const {
  if (!isOpen()) return std::nullopt;
  constexpr std::size_t kStep = 16384;
  std::string bytes;
  for (;;) {
    const std::size_t before = bytes.size();
    bytes.resize(before + kStep);
    const ssize_t got = readAt(descriptor_, bytes.data() + before, kStep, before);
    if (got < 0) return std::nullopt;
    bytes.resize(before + static_cast<std::size_t>(got));
    if (static_cast<std::size_t>(got) < kStep) return bytes;
  }
}

}  // namespace ulm::win32::detail
