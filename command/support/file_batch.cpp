#include "command/support/file_batch.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <random>
#include <stdexcept>
#include <system_error>

#include "command/support/program.h"
#include "command/support/streams.h"

namespace ulm::tools {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const std::string& file, std::error_code reason) {
  throw std::runtime_error((file.empty() ? "''" : file) +
                           ": cannot be written: " + reason.message());
}
[[noreturn]] void failByErrno(const std::string& file) {
  fail(file, std::error_code(errno, std::generic_category()));
}

// Returns true for an output that is written directly: a rename would replace it by a file.
bool isStream(const fs::file_status& status) {
  return fs::is_character_file(status) || fs::is_fifo(status) || fs::is_socket(status);
}

// Returns the absolute name of a file that may not exist yet. The name of a stream is returned
// unchanged, because a link to a pipe does not resolve to a file name.
fs::path absoluteName(const std::string& file) {
  if (file == "-") return file;
  std::error_code error;
  fs::path name = fileNamed(file);
  if (isStream(fs::status(name, error))) return name;
  fs::path resolved = fs::weakly_canonical(fs::absolute(name, error), error);
  if (error) fail(file, error);
  return resolved;
}

void writeStream(const std::string& file, const std::string& content) {
  if (file == "-") {
    std::cout << content;
    return flushStandardOutput();
  }
  errno = 0;
  std::ofstream out(fileNamed(file), std::ios::binary);
  out << content;
  out.close();
  if (!out) failByErrno(file);
}

// Returns an unused name in the folder of `target`. It is short, so that it fits within the limit
// of the file system whenever a long target name does.
fs::path temporaryName(const fs::path& target) {
  std::random_device random;
  char name[40];
  std::snprintf(name, sizeof name, ".ulmira-%08x%08x.tmp", random(), random());
  return target.parent_path() / name;
}

}  // namespace

FileBatch::~FileBatch() {
  for (const File& file : files_) {
    std::error_code ignored;
    if (!file.renamed) {
      fs::remove(file.temporary, ignored);
      if (!file.backup.empty()) fs::remove(file.backup, ignored);
    } else if (file.backup.empty()) {
      fs::remove(file.target, ignored);
    } else {
      fs::rename(file.backup, file.target, ignored);
    }
  }
}

void FileBatch::protect(const std::string& file) {
  std::error_code ignored;
  if (file != "-" && fs::is_regular_file(fileNamed(file), ignored)) {
    protected_.push_back(absoluteName(file));
  }
}

void FileBatch::add(const std::string& name, std::string_view content) {
  const fs::path target = absoluteName(name);
  if (std::find(protected_.begin(), protected_.end(), target) != protected_.end()) {
    throw std::runtime_error(name == "-" ? "standard output: cannot take two outputs"
                                         : name + ": would replace another file of this command");
  }
  protected_.push_back(target);
  std::error_code error;
  const fs::file_status existing = fs::status(target, error);
  if (name == "-" || isStream(existing)) {
    streams_.push_back({name, std::string(content)});
    return;
  }
  if (fs::exists(existing) && !fs::is_regular_file(existing)) {
    throw std::runtime_error(name + ": cannot be written: not a regular file");
  }
  writeTemporary({name, target, temporaryName(target), {}}, content);
  if (fs::exists(existing)) fs::permissions(files_.back().temporary, existing.permissions(), error);
}

void FileBatch::writeTemporary(File file, std::string_view content) {
  struct Close {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
  };
  files_.reserve(files_.size() + 1);  // so that push_back cannot fail after the file is created
  const std::string name = file.name;
  std::unique_ptr<std::FILE, Close> stream(openFresh(file.temporary));
  if (stream == nullptr) failByErrno(name);
  files_.push_back(std::move(file));  // the destructor removes the temporary file from now on
  if (std::fwrite(content.data(), 1, content.size(), stream.get()) != content.size() ||
      !flushToDisk(stream.get()) || std::fclose(stream.release()) != 0) {
    failByErrno(name);
  }
}

void FileBatch::commit() {
  for (File& file : files_) {
    std::error_code error;
    // The rename of the last file is the last step that can fail if there is no stream, so the old
    // content of that file needs no backup.
    const bool lastStep = &file == &files_.back() && streams_.empty();
    if (!lastStep && fs::exists(file.target, error)) {
      file.backup = temporaryName(file.target);
      fs::copy_file(file.target, file.backup, error);
    }
    if (!error) fs::rename(file.temporary, file.target, error);
    if (error) fail(file.name, error);
    file.renamed = true;
  }
  for (const Stream& stream : streams_) writeStream(stream.name, stream.content);
  for (const File& file : files_) {
    std::error_code ignored;
    if (!file.backup.empty()) fs::remove(file.backup, ignored);
  }
  files_.clear();
  streams_.clear();
}

}  // namespace ulm::tools
