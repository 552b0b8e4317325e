#include "standin/win32/detail/characters.h"

#include <algorithm>
#include <iterator>

#include "standin/win32/detail/best_fit.h"

namespace ulm::win32::detail {

namespace {

// Bytes 0x80 to 0x9F of code page 1252. Every other byte is the code point of its value.
constexpr wchar_t kAnsiUpper[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// The meaning of the first byte of a character: the number of bytes that follow, its own bits, and
// the range of the second byte, which excludes overlong forms, surrogates and too large values.
struct Lead {
  std::size_t following;
  char32_t bits;
  unsigned char secondLow, secondHigh;
};

std::optional<Lead> leadOf(unsigned char byte) noexcept {
  if (byte >= 0xC2 && byte <= 0xDF) return Lead{1, byte & 0x1Fu, 0x80, 0xBF};
  if (byte >= 0xE0 && byte <= 0xEF) {
    const unsigned char low = byte == 0xE0 ? 0xA0 : 0x80;
    const unsigned char high = byte == 0xED ? 0x9F : 0xBF;
    return Lead{2, byte & 0x0Fu, low, high};
  }
  if (byte >= 0xF0 && byte <= 0xF4) {
    const unsigned char low = byte == 0xF0 ? 0x90 : 0x80;
    const unsigned char high = byte == 0xF4 ? 0x8F : 0xBF;
    return Lead{3, byte & 0x07u, low, high};
  }
  return std::nullopt;
}

void append(std::string& text, char32_t character) {
  const EncodedCharacter encoded = encodeUtf8(character);
  text.append(encoded.bytes, encoded.length);
}

}  // namespace

DecodedCharacter decodeUtf8(std::string_view bytes) noexcept {
  const auto first = static_cast<unsigned char>(bytes[0]);
  if (first < 0x80) return {first, 1, true};
  const std::optional<Lead> lead = leadOf(first);
  if (!lead) return {kReplacement, 1, false};
  char32_t character = lead->bits;
  for (std::size_t i = 1; i <= lead->following; ++i) {
    if (i == bytes.size()) return {kReplacement, i, false};
    const auto byte = static_cast<unsigned char>(bytes[i]);
    const unsigned char low = i == 1 ? lead->secondLow : 0x80;
    const unsigned char high = i == 1 ? lead->secondHigh : 0xBF;
    // Windows skips a second byte outside its range together with the first.
    if (byte < 0x80 || byte > 0xBF) return {kReplacement, i, false};
    if (byte < low || byte > high) return {kReplacement, i + 1, false};
    character = character << 6 | (byte & 0x3Fu);
  }
  return {character, lead->following + 1, true};
}

EncodedCharacter encodeUtf8(char32_t value) noexcept {
  if (!isCharacter(value)) value = kReplacement;
  const auto following = [value](unsigned shift) {
    return static_cast<char>(0x80u | (value >> shift & 0x3Fu));
  };
  if (value < 0x80) return {{static_cast<char>(value)}, 1};
  if (value < 0x800) return {{static_cast<char>(0xC0u | value >> 6), following(0)}, 2};
  if (value < 0x10000) {
    return {{static_cast<char>(0xE0u | value >> 12), following(6), following(0)}, 3};
  }
  return {{static_cast<char>(0xF0u | value >> 18), following(12), following(6), following(0)}, 4};
}

wchar_t fromAnsi(char byte) noexcept {
  const auto value = static_cast<unsigned char>(byte);
  return value >= 0x80 && value < 0xA0 ? kAnsiUpper[value - 0x80] : static_cast<wchar_t>(value);
}

std::optional<char> toAnsi(wchar_t character) noexcept {
  const auto code = static_cast<char32_t>(character);  // wchar_t has a sign on some processors
  if (code < 0x80 || (code >= 0xA0 && code <= 0xFF)) return static_cast<char>(code);
  const auto* found = std::find(std::begin(kAnsiUpper), std::end(kAnsiUpper), character);
  if (found != std::end(kAnsiUpper)) return static_cast<char>(0x80 + (found - kAnsiUpper));
  if (code >= 0xFF01 && code <= 0xFF5E) return static_cast<char>(code - 0xFEE0);
  const auto* fit = std::lower_bound(
      std::begin(kBestFit), std::end(kBestFit), code,
      [](const BestFit& entry, char32_t wanted) { return entry.character < wanted; });
  if (fit == std::end(kBestFit) || fit->character != code) return std::nullopt;
  return static_cast<char>(fit->byte);
}

std::wstring fromAnsi(std::string_view text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (const char byte : text) wide.push_back(fromAnsi(byte));
  return wide;
}

std::wstring fromUtf16(std::u16string_view units) {
  std::wstring wide;
  for (std::size_t i = 0; i < units.size(); ++i) {
    char32_t character = units[i];
    const bool high = character >= 0xD800 && character <= 0xDBFF;
    if (high && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF) {
      character = 0x10000 + ((character & 0x3FF) << 10 | (units[++i] & 0x3FFu));
    } else if (!isCharacter(character)) {
      character = kReplacement;
    }
    wide.push_back(static_cast<wchar_t>(character));
  }
  return wide;
}

std::wstring fromSystem(std::string_view bytes) {
  std::wstring wide;
  while (!bytes.empty()) {
    const DecodedCharacter next = decodeUtf8(bytes);
    if (next.valid) {
      wide.push_back(static_cast<wchar_t>(next.character));
    } else {
      for (const char byte : bytes.substr(0, next.length)) {
        wide.push_back(static_cast<wchar_t>(0xDC00 + static_cast<unsigned char>(byte)));
      }
    }
    bytes.remove_prefix(next.length);
  }
  return wide;
}

std::optional<std::string> toSystem(std::wstring_view text) {
  std::string bytes;
  for (const wchar_t character : text) {
    const auto value = static_cast<char32_t>(character);
    if (value >= 0xDC80 && value <= 0xDCFF) {
      bytes.push_back(static_cast<char>(value - 0xDC00));
    } else if (isCharacter(value)) {
      append(bytes, value);
    } else {
      return std::nullopt;
    }
  }
  return bytes;
}

bool equalNoCase(std::wstring_view left, std::wstring_view right) noexcept {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](wchar_t a, wchar_t b) { return foldCase(a) == foldCase(b); });
}

bool endsWithNoCase(std::wstring_view text, std::wstring_view ending) noexcept {
  return text.size() >= ending.size() &&
         equalNoCase(text.substr(text.size() - ending.size()), ending);
}

}  // namespace ulm::win32::detail
