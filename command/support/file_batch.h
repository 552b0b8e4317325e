// Output files that take their places whole and together, or not at all.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace ulm::tools {

// Each file is written under another name in its own folder and takes its place by a rename, so
// that at no moment does its name stand for half of it. Every failure is a runtime_error with the
// file and the reason; what stood at the names before then stands there still, or again, and
// nothing else is left behind.
class FileBatch {
 public:
  FileBatch() = default;
  FileBatch(const FileBatch&) = delete;
  FileBatch& operator=(const FileBatch&) = delete;
  ~FileBatch();

  // A name that none of the files to be written may be, such as one that is read.
  void protect(const std::string& file);
  // Writes the content and sees it to the disk. A symbolic link is followed; what is there and no
  // regular file, and a file that is protected or in the batch already, is refused.
  void add(const std::string& file, std::string_view content);
  // Puts all files in their places, in the order of the calls.
  void commit();

 private:
  struct Entry {
    std::string name;  // as the user calls it
    std::filesystem::path target, temporary;
    std::filesystem::path backup;  // empty where nothing had to be kept
    bool placed = false;
  };
  std::vector<std::filesystem::path> protected_;
  std::vector<Entry> entries_;
};

}  // namespace ulm::tools
