// Writes the outputs of one call together, or none of them.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace ulm::tools {

// Each file is written under a temporary name in its own folder and then renamed, so its name never
// refers to half of the content. "-" is standard output. Streams, which are "-", pipes and devices,
// are written after all files are renamed; if that fails, the files are restored. Every failure is
// a std::runtime_error with the file and the reason. After a failure all files have their old
// content and no other file remains.
class FileBatch {
 public:
  FileBatch() = default;
  FileBatch(const FileBatch&) = delete;
  FileBatch& operator=(const FileBatch&) = delete;
  // Restores the files of a batch that was not committed.
  ~FileBatch();

  // Forbids outputs to replace this file, for example because it is an input. Has no effect on "-"
  // and on names of anything but a regular file.
  void protect(const std::string& file);
  // Writes a file's content to a temporary file on the disk; keeps a copy of a stream's content. A
  // symbolic link is followed. A folder, a protected file and a second output to the same file are
  // refused.
  void add(const std::string& name, std::string_view content);
  // Returns true if an added output is a stream.
  bool hasStreams() const { return !streams_.empty(); }
  // Renames all files, in the order of the calls of add(), then writes the streams.
  void commit();

 private:
  struct File {
    std::string name;  // as the user wrote it
    std::filesystem::path target, temporary;
    std::filesystem::path backup;  // empty if there is no old content to restore
    bool renamed = false;
  };
  struct Stream {
    std::string name;
    std::string content;
  };
  // Creates the temporary file and lists the file in files_.
  void writeTemporary(File file, std::string_view content);

  std::vector<std::filesystem::path> protected_;
  std::vector<File> files_;
  std::vector<Stream> streams_;
};

}  // namespace ulm::tools
