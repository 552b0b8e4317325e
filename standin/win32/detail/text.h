// Characters: UTF-8, the ANSI page, and the comparison of names. Nothing here looks at a locale.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ulm::win32::detail {

inline constexpr char32_t kReplacement = 0xFFFD;

struct DecodedCharacter {
  char32_t character;  // kReplacement where `valid` is false
  std::size_t length;  // bytes taken, at least 1; of bad bytes the run that Windows takes for one
  bool valid;
};

// The first character of `bytes`, which may not be empty. Overlong forms, surrogates and values
// above U+10FFFF are not text.
DecodedCharacter decodeUtf8(std::string_view bytes) noexcept;

// Whether a code point can stand in text: no surrogate, and at most U+10FFFF.
constexpr bool isCharacter(char32_t value) noexcept {
  return value < 0xD800 || (value > 0xDFFF && value <= 0x10FFFF);
}

struct EncodedCharacter {
  char bytes[4];
  std::size_t length;
};
// The UTF-8 form of a character; of anything else that of kReplacement.
EncodedCharacter encodeUtf8(char32_t value) noexcept;

// Code page 1252. Its five unused bytes stand for the control characters of the same value, so that
// every byte comes back. A letter that the page lacks becomes the nearest that it has; nothing
// where there is none.
wchar_t fromAnsi(char byte) noexcept;
std::optional<char> toAnsi(wchar_t character) noexcept;
std::wstring fromAnsi(std::string_view text);

// UTF-16 units; a surrogate without its other half becomes kReplacement.
std::wstring fromUtf16(std::u16string_view units);

// Bytes of the system (file names, the environment) as wide text and back. A byte that is not UTF-8
// becomes U+DC80..U+DCFF, which no text holds, so every name survives the round trip.
std::wstring fromSystem(std::string_view bytes);
// Nothing where `text` holds a code point that fromSystem never makes.
std::optional<std::string> toSystem(std::wstring_view text);

// Letters of ASCII and Latin-1 in small form; every other character as it is.
constexpr wchar_t foldCase(wchar_t character) noexcept {
  const bool capital = (character >= L'A' && character <= L'Z') ||
                       (character >= 0xC0 && character <= 0xDE && character != 0xD7);
  return capital ? static_cast<wchar_t>(character + 0x20) : character;
}
bool equalNoCase(std::wstring_view left, std::wstring_view right) noexcept;
bool endsWithNoCase(std::wstring_view text, std::wstring_view ending) noexcept;

}  // namespace ulm::win32::detail
