#include "command/support/text.h"

#include <cstddef>
#include <stdexcept>

namespace ulm::tools {
namespace {

bool isSurrogate(char32_t character) { return character >= 0xD800 && character < 0xE000; }

struct DecodedCharacter {
  char32_t character = 0;
  std::size_t length = 0;  // in bytes; 0 if the text does not start with a character
};

// Decodes the first character of a text that is not empty.
DecodedCharacter decodeFirst(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return {lead, 1};
  if (lead < 0xC2 || lead > 0xF4) return {};
  const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  if (text.size() < length) return {};
  char32_t character = lead & (0x7Fu >> length);
  for (const char next : text.substr(1, length - 1)) {
    if ((next & 0xC0) != 0x80) return {};
    character = character << 6 | (static_cast<unsigned char>(next) & 0x3Fu);
  }
  constexpr char32_t kMinimumByLength[] = {0, 0, 0x80, 0x800, 0x10000};
  if (character < kMinimumByLength[length] || character > 0x10FFFF || isSurrogate(character)) {
    return {};
  }
  return {character, length};
}

bool isControl(char32_t character) {
  return character < 0x20 || (character >= 0x7F && character < 0xA0);
}

}  // namespace

std::u32string decodeUtf8(std::string_view text) {
  std::u32string characters;
  while (!text.empty()) {
    const DecodedCharacter first = decodeFirst(text);
    if (first.length == 0) throw std::runtime_error("the text is not UTF-8");
    characters.push_back(first.character);
    text.remove_prefix(first.length);
  }
  return characters;
}

std::u32string decodeFileName(std::string_view name) {
  try {
    return decodeUtf8(name);
  } catch (const std::runtime_error&) {
    std::u32string characters;
    for (const char byte : name) characters += static_cast<unsigned char>(byte);
    return characters;
  }
}

std::string encodeUtf8(char32_t character) {
  if (isSurrogate(character)) character = U'\uFFFD';
  std::string text;
  const auto add = [&text](char32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (character < 0x80) {
    add(character);
  } else if (character < 0x800) {
    add(0xC0 | character >> 6);
    add(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    add(0xE0 | character >> 12);
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
  } else {
    add(0xF0 | character >> 18);
    add(0x80 | (character >> 12 & 0x3F));
    add(0x80 | (character >> 6 & 0x3F));
    add(0x80 | (character & 0x3F));
  }
  return text;
}

std::string encodeUtf8(std::u32string_view text) {
  std::string bytes;
  for (const char32_t character : text) bytes += encodeUtf8(character);
  return bytes;
}

std::string printable(std::string_view text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string shown;
  while (!text.empty()) {
    const DecodedCharacter first = decodeFirst(text);
    const std::size_t length = first.length == 0 ? 1 : first.length;
    if (first.length != 0 && !isControl(first.character)) {
      shown += text.substr(0, length);
    } else {
      for (const char escaped : text.substr(0, length)) {
        const auto byte = static_cast<unsigned char>(escaped);
        shown += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
      }
    }
    text.remove_prefix(length);
  }
  return shown;
}

}  // namespace ulm::tools
