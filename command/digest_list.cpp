#include "command/digest_list.h"

#include <algorithm>
#include <iterator>

#include "bignum/text.h"

namespace ulm::tools {
namespace {

constexpr std::size_t kHexDigits = 40;

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

bool isBlank(char character) { return character == ' ' || character == '\t'; }

std::string_view withoutBlanks(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  return text;
}

// Returns the digits in lower case; nothing if the text is not as many digits as a checksum has.
std::optional<std::string> hexOf(std::string_view text) {
  if (text.size() != kHexDigits) return std::nullopt;
  std::string hex;
  for (const char digit : text) {
    const std::int32_t value = bignum::DigitValue(digit, 16);
    if (value < 0) return std::nullopt;
    hex += "0123456789abcdef"[value];
  }
  return hex;
}

}  // namespace

std::string checksumLine(std::string_view before, const std::string& name, std::string_view after) {
  const std::string text = escapeName(name);
  return (text == name ? "" : "\\") + std::string(before).append(text).append(after);
}

std::optional<Checksum> ChecksumParser::parse(std::string_view line) {
  line = withoutBlanks(line);
  const bool escaped = !line.empty() && line.front() == '\\';
  if (escaped) line.remove_prefix(1);
  std::optional<Checksum> checksum = line.substr(0, tag_.size()) == tag_
                                         ? parseTagged(line.substr(tag_.size()))
                                         : parsePlain(line);
  if (checksum && escaped) {
    const std::optional<std::string> name = unescapeName(checksum->name);
    if (!name) return std::nullopt;
    checksum->name = *name;
  }
  // No file has such a name, and the system would read only its start.
  if (checksum && checksum->name.find('\0') != std::string::npos) return std::nullopt;
  return checksum;
}

std::optional<Checksum> ChecksumParser::parseTagged(std::string_view line) const {
  if (!line.empty() && line.front() == ' ') line.remove_prefix(1);
  const std::size_t end = line.rfind(')');
  if (line.empty() || line.front() != '(' || end == std::string_view::npos) return std::nullopt;
  const std::string_view name = line.substr(1, end - 1);
  line = withoutBlanks(line.substr(end + 1));
  if (line.empty() || line.front() != '=') return std::nullopt;
  const std::optional<std::string> hex = hexOf(withoutBlanks(line.substr(1)));
  if (!hex) return std::nullopt;
  return Checksum{*hex, std::string(name)};
}

std::optional<Checksum> ChecksumParser::parsePlain(std::string_view line) {
  const std::optional<std::string> hex = hexOf(line.substr(0, kHexDigits));
  if (!hex || line.size() < kHexDigits + 2 || !isBlank(line[kHexDigits])) return std::nullopt;
  std::string_view name = line.substr(kHexDigits + 1);
  const bool hasKind = name.size() > 1 && (name.front() == ' ' || name.front() == '*');
  if (!hasKind && separator_ == Separator::BlankAndKind) return std::nullopt;
  if (separator_ == Separator::Unknown) {
    separator_ = hasKind ? Separator::BlankAndKind : Separator::Blank;
  }
  if (separator_ == Separator::BlankAndKind) name.remove_prefix(1);
  return Checksum{*hex, std::string(name)};
}

}  // namespace ulm::tools
