// `ulmira digest`: checksums of files, in the form that sha1sum writes and reads.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <chrono>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bignum/digest/digest.h"
#include "bignum/text.h"
#include "command/commands.h"
#include "command/support/program.h"
#include "command/support/streams.h"
#include "command/support/text.h"

namespace ulm::tools {
namespace {

constexpr std::size_t kReadSize = 1 << 20;
constexpr std::uint64_t kLargeSize = 32u << 20;  // from here on people are told how far it is
constexpr std::size_t kHexDigits = 40;
constexpr std::size_t kMostLineBytes = 1 << 20;  // of a list; a file's name is far shorter

using Digester = std::unique_ptr<bignum::QLMessageDigest>;

Digester makeDigester(const std::string& hash) {
  Digester made(hash == "sha1" ? bignum::CreateSHA1() : bignum::CreateSHA0());
  if (made == nullptr) throw std::bad_alloc();
  return made;
}

// A line on the error stream, if that is a terminal, which comes and goes while a large file is
// read.
class Progress {
 public:
  explicit Progress(const Input& input)
      : name_(printable(input.name())),
        onTerminal_(errorStreamIsTerminal()),
        size_(input.size().value_or(0)) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() {
    if (shown_) std::cerr << "\r\x1b[K" << std::flush;
  }

  void add(std::size_t bytes) {
    done_ += bytes;
    if (!onTerminal_ || std::max(size_, done_) < kLargeSize) return;
    const auto now = std::chrono::steady_clock::now();
    if (shown_ && now - last_ < std::chrono::milliseconds(200)) return;
    last_ = now;
    shown_ = true;
    std::cerr << '\r' << name_ << ": ";
    if (size_ >= done_) {
      std::cerr << done_ * 100 / size_ << " %";
    } else {  // of a pipe nobody knows the size
      std::cerr << (done_ >> 20) << " MiB";
    }
    std::cerr << "\x1b[K" << std::flush;
  }

 private:
  const std::string name_;
  const bool onTerminal_;
  const std::uint64_t size_;  // 0 where nobody knows it
  bool shown_ = false;
  std::uint64_t done_ = 0;
  std::chrono::steady_clock::time_point last_;
};

// The digest of a file, or of standard input for "-", as hexadecimal digits.
std::string digestOf(const std::string& hash, const std::string& name) {
  Input input(name);
  const Digester digester = makeDigester(hash);
  Progress progress(input);
  std::vector<std::uint8_t> bytes(kReadSize);
  for (bool more = true; more;) {
    const std::size_t length = input.read(bytes.data(), bytes.size());
    more = length == bytes.size();
    digester->Update(bytes.data(), static_cast<std::uint32_t>(length));
    progress.add(length);
  }
  std::array<std::uint8_t, kHexDigits / 2> digest;
  digester->Final(digest.data());
  std::string hex;
  for (const std::uint8_t byte : digest) {
    hex += "0123456789abcdef"[byte >> 4];
    hex += "0123456789abcdef"[byte & 15];
  }
  return hex;
}

// The characters that would break a line of checksums, and what stands for each behind a '\'.
constexpr const char* kEscaped[] = {"\\\\", "\nn", "\rr"};

std::string escaped(const std::string& name) {
  std::string text;
  for (const char character : name) {
    const auto found = std::find_if(std::begin(kEscaped), std::end(kEscaped),
                                    [=](const char* pair) { return pair[0] == character; });
    text +=
        found == std::end(kEscaped) ? std::string(1, character) : std::string{'\\', (*found)[1]};
  }
  return text;
}

std::optional<std::string> unescaped(const std::string& text) {
  std::string name;
  for (auto next = text.begin(); next != text.end(); ++next) {
    if (*next != '\\') {
      name += *next;
      continue;
    }
    if (++next == text.end()) return std::nullopt;
    const auto found = std::find_if(std::begin(kEscaped), std::end(kEscaped),
                                    [=](const char* pair) { return pair[1] == *next; });
    if (found == std::end(kEscaped)) return std::nullopt;
    name += (*found)[0];
  }
  return name;
}

// As it stands in a line: a '\' in front of all tells that the name is escaped.
std::string lineOf(const std::string& lead, const std::string& name, const std::string& tail) {
  const std::string text = escaped(name);
  return (text == name ? "" : "\\") + lead + text + tail + '\n';
}

struct Checksum {
  std::string hex;
  std::string name;
};

std::optional<Checksum> parseChecksum(std::string line) {
  const bool nameEscaped = !line.empty() && line.front() == '\\';
  if (nameEscaped) line.erase(0, 1);
  if (line.size() <= kHexDigits + 2) return std::nullopt;
  Checksum read{line.substr(0, kHexDigits), line.substr(kHexDigits + 2)};
  for (char& digit : read.hex) {
    if (bignum::DigitValue(digit, 16) < 0) return std::nullopt;
    if (digit >= 'A' && digit <= 'F') digit = static_cast<char>(digit - 'A' + 'a');
  }
  if (line[kHexDigits] != ' ') return std::nullopt;
  if (line[kHexDigits + 1] != ' ' && line[kHexDigits + 1] != '*') return std::nullopt;
  if (nameEscaped) {
    const std::optional<std::string> name = unescaped(read.name);
    if (!name) return std::nullopt;
    read.name = *name;
  }
  return read;
}

void complain(const std::string& message) { printMessage("digest", message); }

void warnOfCount(std::size_t count, const char* one, const char* many) {
  if (count == 0) return;
  complain("WARNING: " + std::to_string(count) + ' ' + (count == 1 ? one : many));
}

// Whether each file of a list of checksums is there and has its checksum.
bool checkList(const std::string& hash, const std::string& listName) {
  Input list(listName);
  std::size_t proper = 0, improper = 0, unread = 0, different = 0;
  for (std::string line; list.readLine(line, kMostLineBytes);) {
    if (line.empty() || line.front() == '#') continue;
    const std::optional<Checksum> checksum = parseChecksum(line);
    if (!checksum) {
      ++improper;
      continue;
    }
    ++proper;
    const char* verdict = ": OK";
    try {
      if (digestOf(hash, checksum->name) != checksum->hex) {
        verdict = ": FAILED";
        ++different;
      }
    } catch (const std::runtime_error& error) {
      complain(error.what());
      verdict = ": FAILED open or read";
      ++unread;
    }
    std::cout << lineOf("", checksum->name, verdict);
  }
  if (proper == 0)
    throw std::runtime_error(list.name() + ": no properly formatted checksum lines found");
  warnOfCount(improper, "line is improperly formatted", "lines are improperly formatted");
  warnOfCount(unread, "listed file could not be read", "listed files could not be read");
  warnOfCount(different, "computed checksum did NOT match", "computed checksums did NOT match");
  return unread == 0 && different == 0;
}

// Goes on to the next file where one cannot be read, and gives the exit code.
int digestFiles(const std::string& hash, bool check, const std::vector<std::string>& names) {
  int status = 0;
  for (const std::string& name : names) {
    try {
      if (!check) {
        std::cout << lineOf(digestOf(hash, name) + "  ", name, "");
      } else if (!checkList(hash, name)) {
        status = 1;
      }
    } catch (const std::runtime_error& error) {
      complain(error.what());
      status = 1;
    }
  }
  return status;
}

}  // namespace

void addDigestCommand(CLI::App& app, int& status) {
  struct Arguments {
    std::string hash;
    bool check = false;
    std::vector<std::string> files;
  };
  const auto given = std::make_shared<Arguments>();
  CLI::App* digest = app.add_subcommand("digest", "Checksums of files, written and checked");
  digest->add_option("HASH", given->hash, "sha1, or sha0 for the first SHA")
      ->required()
      ->check(CLI::IsMember({"sha1", "sha0"}));
  digest->add_option("FILE", given->files, "Files; none, or -, is standard input");
  digest->add_flag("-c,--check", given->check, "Read checksums from the files and check them");
  digest->callback([given, &status] {
    if (given->files.empty()) given->files.emplace_back("-");
    status = digestFiles(given->hash, given->check, given->files);
  });
}

}  // namespace ulm::tools
