// The outputs of one call, written whole and together, or not at all.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace ulm::tools {

// Each file is written under another name in its own folder and gets its own by a rename, so that
// at no moment does its name lead to half of it. "-" is standard output, and like a pipe or
// a device it is written at the end, when all files have their names; where that fails the files
// are taken back. Every failure is a runtime_error with the file and the reason; what was at the
// names before is then there still, or again, and nothing else is left over.
class FileBatch {
 public:
  FileBatch() = default;
  FileBatch(const FileBatch&) = delete;
  FileBatch& operator=(const FileBatch&) = delete;
  ~FileBatch();

  // A file that no output may replace, such as one that is read. "-" and names of no regular file
  // do nothing.
  void protect(const std::string& file);
  // Writes the content of a file and sees it to the disk; keeps a copy of what goes to a stream. A
  // symbolic link is followed. A folder, a file that is protected, and an output that is in the
  // batch already are refused.
  void add(const std::string& file, std::string_view content);
  // Gives all files their names, in the order of the calls, then writes the streams.
  void commit();

 private:
  struct Entry {
    std::string name;  // as the user calls it
    std::filesystem::path target, temporary;
    std::filesystem::path backup;  // empty where nothing had to be kept
    bool placed = false;
  };
  struct Stream {
    std::string name;
    std::string content;
  };
  std::vector<std::filesystem::path> protected_;
  std::vector<Entry> entries_;
  std::vector<Stream> streams_;
};

}  // namespace ulm::tools
