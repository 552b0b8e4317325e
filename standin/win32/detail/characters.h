// Characters: UTF-8, the ANSI page, and the comparison of names. The locale has no influence.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ulm::win32::detail {

inline constexpr char32_t kReplacement = 0xFFFD;

struct DecodedCharacter {
  char32_t character;  // kReplacement where `valid` is false
  std::size_t length;  // in bytes, at least 1; for invalid bytes the number that Windows skips
  bool valid;
};

// Decodes the first character of `bytes`, which is not empty. Overlong forms, surrogates and values
// above U+10FFFF are invalid.
DecodedCharacter decodeUtf8(std::string_view bytes) noexcept;

// Returns true if a value is a character: not a surrogate, and at most U+10FFFF.
constexpr bool isCharacter(char32_t value) noexcept {
  return value < 0xD800 || (value > 0xDFFF && value <= 0x10FFFF);
}

struct EncodedCharacter {
  char bytes[4];
  std::size_t length;
};
// Encodes a character as UTF-8; any other value as kReplacement.
EncodedCharacter encodeUtf8(char32_t value) noexcept;

// Code page 1252. Its five unassigned bytes are the control characters of the same value, so every
// byte survives the round trip. toAnsi replaces a letter that the page lacks by the nearest letter;
// it returns nothing if there is none.
wchar_t fromAnsi(char byte) noexcept;
std::optional<char> toAnsi(wchar_t character) noexcept;
std::wstring fromAnsi(std::string_view text);

// Decodes UTF-16 units; an unpaired surrogate becomes kReplacement.
std::wstring fromUtf16(std::u16string_view units);

// Convert bytes of the system (file names, the environment) to wide text and back. A byte that is
// not UTF-8 becomes U+DC80..U+DCFF, which valid text never contains, so every name survives the
// round trip.
std::wstring fromSystem(std::string_view bytes);
// Returns nothing if `text` contains a code point that fromSystem never produces.
std::optional<std::string> toSystem(std::wstring_view text);

// Returns the lower-case form of a letter of ASCII or Latin-1; any other character unchanged.
constexpr wchar_t foldCase(wchar_t character) noexcept {
  const bool capital = (character >= L'A' && character <= L'Z') ||
                       (character >= 0xC0 && character <= 0xDE && character != 0xD7);
  return capital ? static_cast<wchar_t>(character + 0x20) : character;
}
bool equalNoCase(std::wstring_view left, std::wstring_view right) noexcept;
bool endsWithNoCase(std::wstring_view text, std::wstring_view ending) noexcept;

}  // namespace ulm::win32::detail
