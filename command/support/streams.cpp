#include "command/support/streams.h"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <vector>

#include "command/support/program.h"
#include "command/support/text.h"

namespace ulm::tools {
namespace {

constexpr std::size_t kBlockSize = 1 << 16;

}  // namespace

void Input::Close::operator()(std::FILE* file) const {
  if (file != stdin) std::fclose(file);
}

Input::Input(const std::string& file)
    : name_(file == "-"    ? "standard input"
            : file.empty() ? "''"
                           : file),
      file_(file == "-" ? stdin : openToRead(file)) {
  if (file_ == nullptr) failByErrno();
}

void Input::failByErrno() const {
  throw std::runtime_error(name_ + ": cannot be read: " + std::strerror(errno));
}

std::optional<std::uint64_t> Input::size() const { return regularSize(file_.get()); }

std::size_t Input::read(void* bytes, std::size_t length) {
  const std::size_t count = std::fread(bytes, 1, length, file_.get());
  if (count < length && std::ferror(file_.get()) != 0) failByErrno();
  return count;
}

std::optional<char> Input::readByte() {
  const int byte = std::fgetc(file_.get());
  if (byte != EOF) return static_cast<char>(byte);
  if (std::ferror(file_.get()) != 0) failByErrno();
  return std::nullopt;
}

bool Input::readLine(std::string& line, std::size_t maxLength) {
  line.clear();
  for (bool started = false;; started = true) {
    const std::optional<char> byte = readByte();
    if (!byte && !started) return false;
    if (!byte || *byte == '\n') break;
    if (line.size() == maxLength) {
      throw std::runtime_error(name_ + ": has a line of more than " + std::to_string(maxLength) +
                               " bytes");
    }
    line += *byte;
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

std::string Input::readAll(std::uint64_t maxSize) {
  std::string all;
  std::vector<char> block(kBlockSize);
  bool fits = size().value_or(0) <= maxSize;
  for (bool atEnd = false; !atEnd && fits;) {
    const std::size_t count = read(block.data(), block.size());
    atEnd = count < block.size();
    fits = count <= maxSize - all.size();
    if (fits) all.append(block.data(), count);
  }
  if (!fits)
    throw std::runtime_error(name_ + ": has more than " + std::to_string(maxSize) + " bytes");
  return all;
}

void flushStandardOutput() {
  errno = 0;
  if (std::cout.flush()) return;
  // After an earlier failed write std::cout does not write again, so errno can be 0. The flush
  // below may find the reason.
  if (errno == 0) std::fflush(stdout);
  throw std::runtime_error(std::string("standard output: cannot be written") +
                           (errno == 0 ? "" : std::string(": ") + std::strerror(errno)));
}

void printMessage(std::string_view subcommand, std::string_view message) {
  std::cerr << "ulmira" << (subcommand.empty() ? "" : " ") << subcommand << ": "
            << printable(message) << '\n';
}

}  // namespace ulm::tools
