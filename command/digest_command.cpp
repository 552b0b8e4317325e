// `ulmira digest`: checksums of files, in the form that sha1sum writes and reads.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bignum/digest/digest.h"
#include "command/commands.h"
#include "command/digest_list.h"
#include "command/json_text.h"
#include "command/list_argument.h"
#include "command/support/program.h"
#include "command/support/progress.h"
#include "command/support/streams.h"

namespace ulm::tools {
namespace {

constexpr std::size_t kDigestSize = 20;
constexpr std::size_t kReadSize = 1 << 20;
constexpr std::uint64_t kMinProgressSize = 32u << 20;  // smaller files have no progress line
constexpr std::size_t kMaxLineBytes = 1 << 20;         // of a list; file names are far shorter

struct DigestArguments {
  std::string hash;
  std::vector<std::string> files;
  bool json = false;
  bool tag = false;
  bool zero = false;
  bool check = false;
  bool ignoreMissing = false;
  bool quiet = false;
  bool status = false;
  bool strict = false;
  bool warn = false;

  std::string tagName() const { return hash == "sha1" ? "SHA1" : "SHA0"; }
};

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
  std::array<std::uint8_t, kDigestSize> digest;
  digester->Final(digest.data());
  std::string hex;
  for (const std::uint8_t byte : digest) {
    hex += "0123456789abcdef"[byte >> 4];
    hex += "0123456789abcdef"[byte & 15];
  }
  return hex;
}

void printWarning(const std::string& message) { printMessage("digest", message); }

void printDigest(const DigestArguments& arguments, const std::string& name) {
  const std::string hex = digestOf(arguments.hash, name);
  if (arguments.json) {
    std::cout << jsonText({{"file", name}, {"hash", arguments.hash}, {"digest", hex}});
    return;
  }
  const std::string before = arguments.tag ? arguments.tagName() + " (" : hex + "  ";
  const std::string after = arguments.tag ? ") = " + hex : "";
  if (arguments.zero) {
    std::cout << before << name << after << '\0';
  } else {
    std::cout << checksumLine(before, name, after) << '\n';
  }
}

// Checks the files of one list.
class ListCheck {
 public:
  ListCheck(const DigestArguments& arguments, const std::string& list)
      : arguments_(arguments), list_(list), parser_(arguments.tagName()) {}

  // Prints a line for each file, and a warning for each kind of fault. Returns true if the list is
  // in order and all its files have their checksums. Throws std::runtime_error if the list names no
  // file.
  bool run() {
    std::size_t number = 0;
    for (std::string line; list_.readLine(line, kMaxLineBytes);) {
      ++number;
      if (line.empty() || line.front() == '#') continue;
      if (const std::optional<Checksum> checksum = parser_.parse(line)) {
        ++proper_;
        checkFile(*checksum);
      } else {
        ++improper_;
        if (arguments_.warn) {
          printWarning(list_.name() + ": line " + std::to_string(number) +
                       ": improperly formatted " + arguments_.tagName() + " checksum line");
        }
      }
    }
    if (proper_ == 0) {
      throw std::runtime_error(list_.name() + ": no properly formatted checksum lines found");
    }
    if (!arguments_.status) printCounts();
    if (verified_ + different_ + unread_ == 0) {
      throw std::runtime_error(list_.name() + ": no file was verified");
    }
    return unread_ == 0 && different_ == 0 && (improper_ == 0 || !arguments_.strict);
  }

 private:
  void checkFile(const Checksum& checksum) {
    std::error_code ignored;
    if (arguments_.ignoreMissing && checksum.name != "-" &&
        !std::filesystem::exists(fileNamed(checksum.name), ignored)) {
      return;
    }
    try {
      const bool equal = digestOf(arguments_.hash, checksum.name) == checksum.hex;
      ++(equal ? verified_ : different_);
      printVerdict(checksum.name, equal, equal ? "OK" : "FAILED");
    } catch (const std::runtime_error& error) {
      printWarning(error.what());
      ++unread_;
      printVerdict(checksum.name, false, "FAILED open or read");
    }
  }

  void printVerdict(const std::string& name, bool verified, const char* verdict) const {
    if (arguments_.status || (arguments_.quiet && verified)) return;
    if (arguments_.json) {
      std::cout << jsonText({{"file", name}, {"verified", verified}, {"verdict", verdict}});
    } else {
      std::cout << checksumLine("", name, std::string(": ") + verdict) << '\n';
    }
  }

  void printCounts() const {
    const auto warn = [](std::size_t count, const char* singular, const char* plural) {
      if (count == 0) return;
      printWarning("WARNING: " + std::to_string(count) + ' ' + (count == 1 ? singular : plural));
    };
    warn(improper_, "line is improperly formatted", "lines are improperly formatted");
    warn(unread_, "listed file could not be read", "listed files could not be read");
    warn(different_, "computed checksum did NOT match", "computed checksums did NOT match");
  }

  const DigestArguments& arguments_;
  Input list_;
  ChecksumParser parser_;
  std::size_t proper_ = 0, improper_ = 0;                  // lines
  std::size_t verified_ = 0, different_ = 0, unread_ = 0;  // files
};

// Prints or checks the digests. Continues after a file that cannot be read. Returns the exit code.
int digestFiles(const DigestArguments& arguments) {
  int status = 0;
  for (const std::string& name : arguments.files) {
    try {
      if (!arguments.check) {
        printDigest(arguments, name);
      } else if (!ListCheck(arguments, name).run()) {
        status = 1;
      }
    } catch (const std::runtime_error& error) {
      printWarning(error.what());
      status = 1;
    }
  }
  return status;
}

constexpr const char* kFooter =
    R"(Without --check, a line "CHECKSUM  NAME" is printed for each file, as sha1sum prints it.
A '\' before the line marks a name in which '\', line feed and carriage return are escaped.

EXAMPLES
  ulmira digest sha1 *.ttf >SUMS
  ulmira digest sha1 --check SUMS       OK or FAILED for each file of the list
  ulmira digest sha1 --check --quiet --strict SUMS && echo complete
  head -c 20 disk.img | ulmira digest sha0 --json
)";

}  // namespace

void addDigestCommand(CLI::App& app, int& status) {
  const auto arguments = std::make_shared<DigestArguments>();
  CLI::App* digest = app.add_subcommand("digest", "Print and check checksums of files");
  digest->footer(kFooter);
  digest->add_option("HASH", arguments->hash, "sha1, or sha0 for the first version of SHA")
      ->required()
      ->check(CLI::IsMember({"sha1", "sha0"}));
  addListArgument(*digest, "FILE", arguments->files,
                  "Files; - or no argument reads standard input");
  CLI::Option* const json =
      digest->add_flag("--json", arguments->json, "Print a JSON object for each file, on a line");
  CLI::Option* const tag =
      digest->add_flag("--tag", arguments->tag, "Print lines as SHA1 (NAME) = CHECKSUM");
  CLI::Option* const zero = digest->add_flag("-z,--zero", arguments->zero,
                                             "End each line with a zero byte and escape no name");
  CLI::Option* const check = digest->add_flag("-c,--check", arguments->check,
                                              "Read lists of checksums from the files, check them");
  tag->excludes(check)->excludes(json);
  zero->excludes(check)->excludes(json);
  const auto addForCheck = [&](const char* name, bool& flag, const char* description) {
    digest->add_flag(name, flag, description)->needs(check);
  };
  addForCheck("--ignore-missing", arguments->ignoreMissing, "Skip files that do not exist");
  addForCheck("--quiet", arguments->quiet, "Print no line for a file that is OK");
  addForCheck("--status", arguments->status, "Print no verdict; the exit code is the answer");
  addForCheck("--strict", arguments->strict,
              "Exit code 1 for a list with improperly formatted lines");
  addForCheck("-w,--warn", arguments->warn, "Report each improperly formatted line");
  digest->callback([arguments, &status] {
    if (arguments->files.empty()) arguments->files.emplace_back("-");
    status = digestFiles(*arguments);
  });
}

}  // namespace ulm::tools
