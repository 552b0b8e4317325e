#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "hostsdk/win32/win32.h"
#include "standin/win32/detail/call_log.h"
#include "standin/win32/detail/characters.h"
#include "standin/win32/detail/file.h"
#include "standin/win32/detail/path.h"

namespace {

using ulm::win32::detail::foldCase;
using ulm::win32::detail::fromAnsi;
using ulm::win32::detail::fromSystem;
using ulm::win32::detail::fromUtf16;
using ulm::win32::detail::InputFile;
using ulm::win32::detail::logCall;
using ulm::win32::detail::systemPath;

// --- From bytes to lines ---

std::wstring decodeUtf16(std::string_view bytes, bool bigEndian) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {  // an odd byte at the end is dropped
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    units.push_back(static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first));
  }
  return fromUtf16(units);
}

// Decodes the bytes of a file, according to the byte order mark at the start.
std::wstring decode(std::string_view bytes) {
  const auto startsWith = [bytes](std::string_view mark) {
    return bytes.substr(0, mark.size()) == mark;
  };
  if (startsWith("\xFF\xFE")) return decodeUtf16(bytes.substr(2), false);
  if (startsWith("\xFE\xFF")) return decodeUtf16(bytes.substr(2), true);
  if (startsWith("\xEF\xBB\xBF")) return fromSystem(bytes.substr(3));
  return fromAnsi(bytes);
}

constexpr std::size_t kMaxFileName = 260;  // with the terminator
constexpr std::wstring_view kBlanks = L" \t\v\f";

std::wstring_view trimmed(std::wstring_view text) noexcept {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::wstring_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

// Takes the next line, without the blanks around it; nothing at the end. A single CR ends a line
// too.
std::optional<std::wstring_view> takeLine(std::wstring_view& rest) noexcept {
  if (rest.empty()) return std::nullopt;
  const std::wstring_view line = rest.substr(0, rest.find_first_of(L"\r\n"));
  rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
  return trimmed(line);
}

// --- From lines to the value ---

// Compares names without the case of ASCII letters.
bool sameName(std::wstring_view left, std::wstring_view right) noexcept {
  const auto fold = [](wchar_t character) {
    return character < 0x80 ? foldCase(character) : character;
  };
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [=](wchar_t a, wchar_t b) { return fold(a) == fold(b); });
}

// Returns the name in "[name]"; text after the bracket is ignored. Nothing for any other line.
std::optional<std::wstring_view> sectionName(std::wstring_view line) noexcept {
  if (line.empty() || line.front() != L'[') return std::nullopt;
  const std::size_t end = line.find(L']');
  if (end == std::wstring_view::npos) return std::nullopt;
  return trimmed(line.substr(1, end - 1));
}

std::wstring_view withoutQuotes(std::wstring_view value) noexcept {
  const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                      (value.front() == L'"' || value.front() == L'\'');
  return quoted ? value.substr(1, value.size() - 2) : value;
}

std::optional<std::wstring_view> findValue(std::wstring_view text, std::wstring_view section,
                                           std::wstring_view key) noexcept {
  bool inside = false;
  while (const std::optional<std::wstring_view> line = takeLine(text)) {
    if (line->empty() || line->front() == L';') continue;
    if (const std::optional<std::wstring_view> name = sectionName(*line)) {
      if (inside) return std::nullopt;  // only the first section of the name counts
      inside = sameName(*name, section);
      continue;
    }
    if (!inside) continue;
    const std::size_t sign = std::min(line->find(L'='), line->size());
    if (sameName(trimmed(line->substr(0, sign)), key)) {
      return withoutQuotes(trimmed(line->substr(std::min(sign + 1, line->size()))));
    }
  }
  return std::nullopt;
}

// --- From the value to the number ---

std::uint32_t digitValue(wchar_t character) noexcept {
  if (character >= L'0' && character <= L'9') return static_cast<std::uint32_t>(character - L'0');
  const wchar_t letter = foldCase(character);
  if (letter >= L'a' && letter <= L'f') return static_cast<std::uint32_t>(letter - L'a' + 10);
  return UINT32_MAX;
}

std::uint32_t takeBase(std::wstring_view& digits) noexcept {
  if (digits.size() < 2 || digits[0] != L'0') return 10;
  const std::uint32_t base = digits[1] == L'x'   ? 16
                             : digits[1] == L'o' ? 8
                             : digits[1] == L'b' ? 2
                                                 : 10;
  if (base != 10) digits.remove_prefix(2);
  return base;
}

UINT toNumber(std::wstring_view value) noexcept {
  value = trimmed(value);  // there may be blanks inside the quotes
  bool negative = false;
  if (!value.empty() && (value.front() == L'-' || value.front() == L'+')) {
    negative = value.front() == L'-';
    value.remove_prefix(1);
  }
  const std::uint32_t base = takeBase(value);
  std::uint32_t number = 0;  // wraps, as on Windows
  for (const wchar_t character : value) {
    const std::uint32_t digit = digitValue(character);
    if (digit >= base) break;
    number = number * base + digit;
  }
  return negative ? 0u - number : number;
}

}  // namespace

UINT GetPrivateProfileIntW(const wchar_t* section, const wchar_t* key, int defaultValue,
                           const wchar_t* fileName) {
  const auto absent = static_cast<UINT>(defaultValue);
  if (section == nullptr || key == nullptr || fileName == nullptr) return absent;
  logCall("GetPrivateProfileIntW", key);
  if (std::wcslen(fileName) >= kMaxFileName) return absent;
  try {
    const std::optional<std::string> path = systemPath(fileName);
    if (!path || path->find('/') == std::string::npos) return absent;
    const std::optional<std::string> bytes = InputFile(path->c_str()).readAll();
    if (!bytes) return absent;
    const std::wstring text = decode(*bytes);
    const std::optional<std::wstring_view> value = findValue(text, trimmed(section), trimmed(key));
    return value && !value->empty() ? toNumber(*value) : absent;
  } catch (const std::bad_alloc&) {
    return absent;
  }
}
