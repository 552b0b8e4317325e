#include "tools/support/streams.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <vector>

#include "tools/support/program.h"

namespace ulm::tools {
namespace {

constexpr std::size_t kBlockSize = 1 << 16;

// The length of the UTF-8 character at the start of the text; 0 where it starts with none.
std::size_t utf8Length(std::string_view text) {
  const auto at = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = at(0);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((at(i) & 0xC0) != 0x80) return 0;
  }
  // Overlong forms, surrogates, and what is above U+10FFFF.
  if ((lead == 0xE0 && at(1) < 0xA0) || (lead == 0xED && at(1) >= 0xA0) ||
      (lead == 0xF0 && at(1) < 0x90) || (lead == 0xF4 && at(1) >= 0x90)) {
    return 0;
  }
  return length;
}

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

bool Input::readLine(std::string& line, std::size_t most) {
  line.clear();
  for (bool any = false;; any = true) {
    const std::optional<char> byte = readByte();
    if (!byte && !any) return false;
    if (!byte || *byte == '\n') break;
    if (line.size() == most) {
      throw std::runtime_error(name_ + ": has a line of more than " + std::to_string(most) +
                               " bytes");
    }
    line += *byte;
  }
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return true;
}

std::string Input::readAll(std::uint64_t most) {
  std::string all;
  std::vector<char> block(kBlockSize);
  bool fits = size().value_or(0) <= most;
  for (bool more = true; more && fits;) {
    const std::size_t count = read(block.data(), block.size());
    more = count == block.size();
    fits = count <= most - all.size();
    if (fits) all.append(block.data(), count);
  }
  if (!fits) throw std::runtime_error(name_ + ": has more than " + std::to_string(most) + " bytes");
  return all;
}

void flushStandardOutput() {
  errno = 0;
  if (std::cout.flush()) return;
  // After a write that failed earlier the stream does not try again, and the reason may be lost.
  if (errno == 0) std::fflush(stdout);
  throw std::runtime_error(std::string("standard output: cannot be written") +
                           (errno == 0 ? "" : std::string(": ") + std::strerror(errno)));
}

void printMessage(std::string_view subcommand, std::string_view message) {
  std::cerr << "ulmira" << (subcommand.empty() ? "" : " ") << subcommand << ": "
            << printable(message) << '\n';
}

std::string printable(std::string_view text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string made;
  while (!text.empty()) {
    const std::size_t length = utf8Length(text);
    const auto byte = static_cast<unsigned char>(text[0]);
    // U+0080 to U+009F are control characters too.
    const bool control =
        byte < 0x20 || byte == 0x7F ||
        (byte == 0xC2 && length == 2 && static_cast<unsigned char>(text[1]) < 0xA0);
    if (length != 0 && !control) {
      made += text.substr(0, length);
    } else {
      for (const char escaped : text.substr(0, std::max<std::size_t>(length, 1))) {
        const auto code = static_cast<unsigned char>(escaped);
        made += {'\\', 'x', kDigits[code >> 4], kDigits[code & 15]};
      }
    }
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return made;
}

}  // namespace ulm::tools
