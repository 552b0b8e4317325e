#include "command/font/subset_css.h"

#include <cstdio>
#include <filesystem>

#include "command/support/program.h"
#include "command/support/text.h"
#include "truetype/reader/global_info.h"

namespace ulm::tools {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kItalic = 1u << 0, kOblique = 1u << 9;  // bits of the selection flags

// Returns a CSS string. Quotation marks, backslashes and controls are escaped by their number.
std::string cssString(std::string_view text) {
  std::string quoted = "\"";
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte >= 0x20 && byte != 0x7F && byte != '"' && byte != '\\') {
      quoted += character;
      continue;
    }
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\%x ", unsigned{byte});
    quoted += escape;
  }
  return quoted + '"';
}

// Returns a relative URL from the folder of `from` to the file `to`.
std::string relativeUrl(const std::string& to, const std::string& from) {
  const fs::path folder = from == "-" ? fs::path() : fileNamed(from).parent_path();
  std::error_code ignored;
  fs::path relative = fs::proximate(fileNamed(to), folder.empty() ? "." : folder, ignored);
  if (relative.empty()) relative = fileNamed(to).filename();
  const std::u8string name = relative.generic_u8string();
  constexpr std::string_view kPlain = "-._~/";
  std::string url;
  for (const char8_t unit : name) {
    const auto byte = static_cast<unsigned char>(unit);
    const bool letter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
    if (letter || (byte >= '0' && byte <= '9') ||
        kPlain.find(static_cast<char>(byte)) != std::string_view::npos) {
      url += static_cast<char>(byte);
      continue;
    }
    char escape[4];
    std::snprintf(escape, sizeof escape, "%%%02X", unsigned{byte});
    url += escape;
  }
  return url;
}

// Returns the codes of the plan as U+41-5A, U+61. Code 0 is not a character.
std::string unicodeRange(const SubsetPlan& plan) {
  std::string range;
  for (std::size_t i = 1; i < plan.codes.size();) {
    std::size_t next = i + 1;
    while (next < plan.codes.size() && plan.codes[next] == plan.codes[next - 1] + 1) ++next;
    char text[16];
    const unsigned first = plan.codes[i], last = plan.codes[next - 1];
    std::snprintf(text, sizeof text, first == last ? "U+%X" : "U+%X-%X", first, last);
    range += (range.empty() ? "" : ", ") + std::string(text);
    i = next;
  }
  return range;
}

const char* stretchOf(std::uint32_t width) {
  constexpr const char* kWidths[] = {"50%",    "62.5%", "75%",  "87.5%", "100%",
                                     "112.5%", "125%",  "150%", "200%"};
  return width >= 1 && width <= 9 ? kWidths[width - 1] : "100%";
}

}  // namespace

std::string fontFaceRule(const FontFile& source, const SubsetPlan& plan, std::string_view family,
                         const std::string& fontName, const std::string& cssName, bool woff2) {
  truetype::GlobalFontInfo info;
  getGlobalFontInfo(source.get(), &info);
  const bool italic = (info.selection & kItalic) != 0, oblique = (info.selection & kOblique) != 0;
  const bool hasWeight = info.weight >= 1 && info.weight <= 1000;
  const std::string range = unicodeRange(plan);
  return "@font-face {\n  font-family: " + cssString(family) + ";\n  font-style: " +
         (oblique  ? "oblique"
          : italic ? "italic"
                   : "normal") +
         ";\n  font-weight: " + std::to_string(hasWeight ? info.weight : 400) +
         ";\n  font-stretch: " + stretchOf(info.width) + ";\n  src: url(" +
         cssString(relativeUrl(fontName, cssName)) + ") format(" +
         (woff2 ? "\"woff2\"" : "\"truetype\"") + ");\n" +
         (range.empty() ? "" : "  unicode-range: " + range + ";\n") + "}\n";
}

}  // namespace ulm::tools
