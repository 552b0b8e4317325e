// `ulmira digest`: checksums of files, in the form that sha1sum writes and reads.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
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
#include "command/support/progress.h"
#include "command/support/streams.h"

namespace ulm::tools {
namespace {

constexpr std::size_t kReadSize = 1 << 20;
constexpr std::uint64_t kMinProgressSize = 32u << 20;  // smaller files have no progress line
constexpr std::size_t kHexDigits = 40;
constexpr std::size_t kMaxLineBytes = 1 << 20;  // of a list; file names are far shorter

using Digester = std::unique_ptr<bignum::QLMessageDigest>;

Digester makeDigester(const std::string& hash) {
  Digester digester(hash == "sha1" ? bignum::CreateSHA1() : bignum::CreateSHA0());
  if (digester == nullptr) throw std::bad_alloc();
  return digester;
}

// Shows how much of a large input is read.
void showRead(Progress& progress, std::uint64_t read, std::uint64_t size) {
  if (std::max(size, read) < kMinProgressSize || !progress.due()) return;
  // The size of a pipe is unknown, and is 0 here.
  progress.show(size >= read ? std::to_string(read * 100 / size) + " %"
                             : std::to_string(read >> 20) + " MiB");
}

// Returns the digest of a file, or of standard input for "-", as hexadecimal digits.
std::string digestOf(const std::string& hash, const std::string& name) {
  Input input(name);
  const Digester digester = makeDigester(hash);
  Progress progress(input.name());
  const std::uint64_t size = input.size().value_or(0);
  std::uint64_t read = 0;
  std::vector<std::uint8_t> bytes(kReadSize);
  for (bool atEnd = false; !atEnd;) {
    const std::size_t length = input.read(bytes.data(), bytes.size());
    atEnd = length < bytes.size();
    digester->Update(bytes.data(), static_cast<std::uint32_t>(length));
    showRead(progress, read += length, size);
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

// The characters that would break a line of checksums, each with the letter that follows '\' in its
// escape.
constexpr const char* kEscaped[] = {"\\\\", "\nn", "\rr"};

std::string escapeName(const std::string& name) {
  std::string text;
  for (const char character : name) {
    const auto found = std::find_if(std::begin(kEscaped), std::end(kEscaped),
                                    [=](const char* pair) { return pair[0] == character; });
    text +=
        found == std::end(kEscaped) ? std::string(1, character) : std::string{'\\', (*found)[1]};
  }
  return text;
}

// Returns nothing if the text is not a valid escaped name.
std::optional<std::string> unescapeName(const std::string& text) {
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

// Returns a line with a file name between two texts. A '\' at the start of the line marks an
// escaped name.
std::string lineOf(const std::string& before, const std::string& name, const std::string& after) {
  const std::string text = escapeName(name);
  return (text == name ? "" : "\\") + before + text + after + '\n';
}

struct Checksum {
  std::string hex;
  std::string name;
};

// Parses a line of a list. Returns nothing if it is improperly formatted.
std::optional<Checksum> parseChecksum(std::string line) {
  const bool nameEscaped = !line.empty() && line.front() == '\\';
  if (nameEscaped) line.erase(0, 1);
  if (line.size() <= kHexDigits + 2) return std::nullopt;
  Checksum checksum{line.substr(0, kHexDigits), line.substr(kHexDigits + 2)};
  for (char& digit : checksum.hex) {
    if (bignum::DigitValue(digit, 16) < 0) return std::nullopt;
    if (digit >= 'A' && digit <= 'F') digit = static_cast<char>(digit - 'A' + 'a');
  }
  if (line[kHexDigits] != ' ') return std::nullopt;
  if (line[kHexDigits + 1] != ' ' && line[kHexDigits + 1] != '*') return std::nullopt;
  if (nameEscaped) {
    const std::optional<std::string> name = unescapeName(checksum.name);
    if (!name) return std::nullopt;
    checksum.name = *name;
  }
  return checksum;
}

void printWarning(const std::string& message) { printMessage("digest", message); }

void warnOfCount(std::size_t count, const char* singular, const char* plural) {
  if (count == 0) return;
  printWarning("WARNING: " + std::to_string(count) + ' ' + (count == 1 ? singular : plural));
}

// Checks the files of a list of checksums and prints a line for each. Returns true if all could be
// read and have their checksums.
bool checkList(const std::string& hash, const std::string& listName) {
  Input list(listName);
  std::size_t proper = 0, improper = 0, unread = 0, different = 0;
  for (std::string line; list.readLine(line, kMaxLineBytes);) {
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
      printWarning(error.what());
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

// Prints or checks the digests. Continues after a file that cannot be read. Returns the exit code.
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
      printWarning(error.what());
      status = 1;
    }
  }
  return status;
}

}  // namespace

void addDigestCommand(CLI::App& app, int& status) {
  struct DigestArguments {
    std::string hash;
    bool check = false;
    std::vector<std::string> files;
  };
  const auto arguments = std::make_shared<DigestArguments>();
  CLI::App* digest = app.add_subcommand("digest", "Print and check checksums of files");
  digest->add_option("HASH", arguments->hash, "sha1, or sha0 for the first version of SHA")
      ->required()
      ->check(CLI::IsMember({"sha1", "sha0"}));
  digest->add_option("FILE", arguments->files, "Files; - or no argument reads standard input");
  digest->add_flag("-c,--check", arguments->check, "Read checksums from the files and check them");
  digest->callback([arguments, &status] {
    if (arguments->files.empty()) arguments->files.emplace_back("-");
    status = digestFiles(arguments->hash, arguments->check, arguments->files);
  });
}

}  // namespace ulm::tools
