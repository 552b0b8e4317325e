// UTF-8 text: decoding, encoding, and a form that is safe to print on a terminal.
#pragma once

#include <string>
#include <string_view>

namespace ulm::tools {

// Returns the characters of UTF-8 text. Overlong forms, surrogates and characters above U+10FFFF
// are not UTF-8: std::runtime_error "the text is not UTF-8".
std::u32string decodeUtf8(std::string_view text);

// Returns the characters of a file name. A name that is not UTF-8 is read as Latin-1, a character
// for each byte, so that every name has a text.
std::u32string decodeFileName(std::string_view name);

// Returns UTF-8. A surrogate becomes U+FFFD. No character may be above U+10FFFF.
std::string encodeUtf8(char32_t character);
std::string encodeUtf8(std::u32string_view text);

// Returns the text with each control character, and each byte that is not part of UTF-8, as \xNN.
// The result cannot end a line or send a terminal a command.
std::string printable(std::string_view text);

}  // namespace ulm::tools
