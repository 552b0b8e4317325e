// A file in memory, which the emulated system opens by its name.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "fuzz/input.h"

namespace ulm::fuzz {

class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("input", 0)) {
    require(descriptor_ >= 0, "there are files in memory");
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() { close(descriptor_); }

  void set(const std::string& content) const {
    require(ftruncate(descriptor_, 0) == 0 && pwrite(descriptor_, content.data(), content.size(),
                                                     0) == static_cast<ssize_t>(content.size()),
            "a file in memory is written");
  }
  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }
  std::wstring windowsName() const {
    return L"Z:\\proc\\self\\fd\\" + std::to_wstring(descriptor_);
  }

 private:
  int descriptor_;
};

}  // namespace ulm::fuzz
