// Lists of checksums, in the forms that sha1sum writes and reads.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ulm::tools {

struct Checksum {
  std::string hex;  // 40 digits in lower case
  std::string name;
};

// Returns a line with a file name between two texts. Characters of the name that would break the
// line are escaped, and a '\' at the start marks such a line.
std::string checksumLine(std::string_view before, const std::string& name, std::string_view after);

// Parses the lines of one list.
class ChecksumParser {
 public:
  // `tag` is the name of the hash in lines with a tag.
  explicit ChecksumParser(std::string tag) : tag_(std::move(tag)) {}

  // Takes "HEX  NAME", "HEX *NAME", "HEX NAME" and "TAG (NAME) = HEX", after blanks and with
  // escapes. The first line without a tag decides whether a blank and a '*' after the first blank
  // belong to the names of the list. Returns nothing if the line is improperly formatted.
  std::optional<Checksum> parse(std::string_view line);

 private:
  enum class Separator { Unknown, Blank, BlankAndKind };

  std::optional<Checksum> parseTagged(std::string_view line) const;
  std::optional<Checksum> parsePlain(std::string_view line);

  const std::string tag_;
  Separator separator_ = Separator::Unknown;
};

}  // namespace ulm::tools
