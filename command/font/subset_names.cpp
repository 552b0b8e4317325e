// The name records of a new font's family.
#include <algorithm>
#include <stdexcept>

#include "command/font/subset.h"

namespace ulm::tools {
namespace {

constexpr std::size_t kMostNameCharacters = 255;
constexpr std::size_t kMostPostScriptCharacters = 63;

bool isAscii(const std::u32string& text) {
  return std::all_of(text.begin(), text.end(), [](char32_t code) { return code < 0x80; });
}

std::vector<std::uint8_t> wideBytes(const std::u32string& text) {
  std::vector<std::uint8_t> bytes;
  const auto add = [&bytes](char32_t unit) {
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
    bytes.push_back(static_cast<std::uint8_t>(unit));
  };
  for (const char32_t code : text) {
    if (code > 0xFFFF) add(0xD800 + ((code - 0x10000) >> 10));
    add(code > 0xFFFF ? 0xDC00 + (code & 0x3FF) : code);
  }
  return bytes;
}

// A PostScript name is printable ASCII without blanks and the language's delimiters.
std::u32string postScriptPart(const std::u32string& text) {
  std::u32string part;
  std::copy_if(text.begin(), text.end(), std::back_inserter(part), [](char32_t code) {
    return code > ' ' && code < 0x7F &&
           std::u32string_view(U"[](){}<>/%").find(code) == std::u32string_view::npos;
  });
  return part;
}

}  // namespace

FamilyNames::FamilyNames(const std::string& family, const std::u32string& style) {
  const std::u32string name = decodeUtf8(family);
  if (name.empty() || name.size() > kMostNameCharacters ||
      std::any_of(name.begin(), name.end(), [](char32_t code) { return code < ' '; })) {
    throw std::runtime_error("--name: a family has 1 to 255 characters, none of them a control");
  }
  std::u32string shownStyle = style;
  std::erase_if(shownStyle, [](char32_t code) { return code < ' '; });
  shownStyle.resize(std::min(shownStyle.size(), kMostNameCharacters));
  if (shownStyle.empty()) shownStyle = U"Regular";
  const bool regular = shownStyle == U"Regular";
  std::u32string postScript = postScriptPart(name);
  if (postScript.empty()) postScript = U"TrueTypeSubset";
  if (!regular) postScript += U'-' + postScriptPart(shownStyle);
  add(1, name);
  add(2, shownStyle);
  add(4, regular ? name : name + U' ' + shownStyle);
  add(6, postScript.substr(0, kMostPostScriptCharacters));
  // Only now that no more strings come do they stay where they are.
  for (std::size_t i = 0; i < records_.size(); ++i) records_[i].data = strings_[i].data();
}

void FamilyNames::add(std::uint16_t nameID, const std::u32string& text) {
  const auto addRecord = [&](std::uint16_t platform, std::uint16_t encoding, std::uint16_t language,
                             std::vector<std::uint8_t> bytes) {
    records_.push_back(
        {platform, encoding, language, nameID, static_cast<std::uint16_t>(bytes.size()), nullptr});
    strings_.push_back(std::move(bytes));
  };
  if (isAscii(text)) addRecord(1, 0, 0, {text.begin(), text.end()});
  addRecord(3, 1, 0x0409, wideBytes(text));
}

}  // namespace ulm::tools
