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

// What is written as it comes, since a rename would replace it by a file.
bool isStream(const fs::file_status& status) {
  return fs::is_character_file(status) || fs::is_fifo(status) || fs::is_socket(status);
}

// The full name of a file, whether or not the file exists. A stream keeps the name it was given:
// links to a pipe lead to no file name.
fs::path placeOf(const std::string& file) {
  if (file == "-") return file;
  std::error_code error;
  fs::path name = fileNamed(file);
  if (isStream(fs::status(name, error))) return name;
  fs::path place = fs::weakly_canonical(fs::absolute(name, error), error);
  if (error) fail(file, error);
  return place;
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

// Short, so that it fits where the file's own name does.
fs::path freshName(const fs::path& target) {
  std::random_device random;
  char name[40];
  std::snprintf(name, sizeof name, ".ulmira-%08x%08x.tmp", random(), random());
  return target.parent_path() / name;
}

}  // namespace

FileBatch::~FileBatch() {
  for (const Entry& entry : entries_) {
    std::error_code ignored;
    if (!entry.placed) {
      fs::remove(entry.temporary, ignored);
      if (!entry.backup.empty()) fs::remove(entry.backup, ignored);
    } else if (entry.backup.empty()) {
      fs::remove(entry.target, ignored);
    } else {
      fs::rename(entry.backup, entry.target, ignored);
    }
  }
}

void FileBatch::protect(const std::string& file) {
  std::error_code ignored;
  if (file != "-" && fs::is_regular_file(fileNamed(file), ignored)) {
    protected_.push_back(placeOf(file));
  }
}

void FileBatch::add(const std::string& file, std::string_view content) {
  const fs::path target = placeOf(file);
  if (std::find(protected_.begin(), protected_.end(), target) != protected_.end()) {
    throw std::runtime_error(file == "-" ? "standard output: cannot take two outputs"
                                         : file + ": would replace another file of this command");
  }
  protected_.push_back(target);
  std::error_code error;
  const fs::file_status there = fs::status(target, error);
  if (file == "-" || isStream(there)) {
    streams_.push_back({file, std::string(content)});
    return;
  }
  if (fs::exists(there) && !fs::is_regular_file(there)) {
    throw std::runtime_error(file + ": cannot be written: not a regular file");
  }
  entries_.reserve(entries_.size() + 1);
  Entry entry{file, target, freshName(target), {}};
  struct Close {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
  };
  std::unique_ptr<std::FILE, Close> stream(openFresh(entry.temporary));
  if (stream == nullptr) failByErrno(file);
  entries_.push_back(std::move(entry));  // from here on removed with the batch
  if (std::fwrite(content.data(), 1, content.size(), stream.get()) != content.size() ||
      !flushToDisk(stream.get()) || std::fclose(stream.release()) != 0) {
    failByErrno(file);
  }
  if (fs::exists(there)) fs::permissions(entries_.back().temporary, there.permissions(), error);
}

void FileBatch::commit() {
  for (Entry& entry : entries_) {
    std::error_code error;
    // Nothing can fail any more once the last file has its name and no stream is to be written.
    const bool last = &entry == &entries_.back() && streams_.empty();
    if (!last && fs::exists(entry.target, error)) {
      entry.backup = freshName(entry.target);
      fs::copy_file(entry.target, entry.backup, error);
    }
    if (!error) fs::rename(entry.temporary, entry.target, error);
    if (error) fail(entry.name, error);
    entry.placed = true;
  }
  for (const Stream& stream : streams_) writeStream(stream.name, stream.content);
  for (const Entry& entry : entries_) {
    std::error_code ignored;
    if (!entry.backup.empty()) fs::remove(entry.backup, ignored);
  }
  entries_.clear();
  streams_.clear();
}

}  // namespace ulm::tools
