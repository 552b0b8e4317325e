#include "command/font/names.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "command/support/text.h"
#include "truetype/format/byte_view.h"
#include "truetype/format/name.h"
#include "truetype/reader/names.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;

// The characters of the bytes 0x80 to 0xFF in Mac Roman.
constexpr char16_t kMacRoman[128] = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, 0x00E0, 0x00E2, 0x00E4, 0x00E3,
    0x00E5, 0x00E7, 0x00E9, 0x00E8, 0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3,
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, 0x2020, 0x00B0, 0x00A2, 0x00A3,
    0x00A7, 0x2022, 0x00B6, 0x00DF, 0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8,
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, 0x220F, 0x03C0, 0x222B, 0x00AA,
    0x00BA, 0x03A9, 0x00E6, 0x00F8, 0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB,
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, 0x2013, 0x2014, 0x201C, 0x201D,
    0x2018, 0x2019, 0x00F7, 0x25CA, 0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, 0x00CB, 0x00C8, 0x00CD, 0x00CE,
    0x00CF, 0x00CC, 0x00D3, 0x00D4, 0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC,
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7,
};

enum PlatformID : std::uint16_t { PlatformUnicode = 0, PlatformMacintosh = 1, PlatformWindows = 3 };
enum NameID : std::uint16_t { NameFamily = 1, NameStyle = 2, NameFull = 4, NamePostScript = 6 };

constexpr std::uint16_t kEncodingMacRoman = 0, kLanguageMacEnglish = 0;
constexpr std::uint16_t kEncodingWindowsUnicode = 1;
constexpr std::uint16_t kLanguageWindowsEnglish = 1033, kLanguageWindowsJapanese = 1041;

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

std::u32string fromUtf16(const NameRecord& record) {
  using format::Utf16;
  const format::RecordView<Utf16> string(format::ByteView(record.data, record.length));
  std::u32string text;
  // A last byte without its partner is left out.
  for (std::size_t i = 0; string.holdsElement(Utf16::kUnits, i); ++i) {
    const char32_t unit = string.readOrZero(Utf16::kUnits, i);
    const char32_t next = string.readOrZero(Utf16::kUnits, i + 1);
    if (isHighSurrogate(unit) && isLowSurrogate(next)) {
      text += 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00);
      ++i;
    } else {
      text += isHighSurrogate(unit) || isLowSurrogate(unit) ? U'\uFFFD' : unit;
    }
  }
  return text;
}

constexpr std::size_t kMaxNameLength = 255;  // in characters
constexpr std::size_t kMaxPostScriptLength = 63;

bool isAscii(const std::u32string& text) {
  return std::all_of(text.begin(), text.end(), [](char32_t code) { return code < 0x80; });
}

// Returns UTF-16 with the high byte first.
std::vector<std::uint8_t> toUtf16(const std::u32string& text) {
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

// Returns the characters that a PostScript name may contain: printable ASCII without blanks and the
// delimiters of the language.
std::u32string postScriptCharacters(const std::u32string& text) {
  std::u32string part;
  std::copy_if(text.begin(), text.end(), std::back_inserter(part), [](char32_t code) {
    return code > ' ' && code < 0x7F &&
           std::u32string_view(U"[](){}<>/%").find(code) == std::u32string_view::npos;
  });
  return part;
}

// Owns the name records of an open font.
class NameRecords {
 public:
  explicit NameRecords(const FontFile& font) : table_(font->tables[kSlotName]) {
    count_ = getNameRecords(font.get(), &records_);
  }
  NameRecords(const NameRecords&) = delete;
  NameRecords& operator=(const NameRecords&) = delete;
  ~NameRecords() { releaseNameRecords(records_, count_); }

  struct Key {
    std::uint16_t platform, encoding, language;
  };
  // Returns the text of the first key that has a record, or `fallback` if none has.
  std::u32string textOf(std::uint16_t nameID, std::initializer_list<Key> keys,
                        const std::u32string& fallback) const {
    for (const Key& key : keys) {
      const std::int32_t index = findNameRecord(table_, static_cast<std::uint32_t>(count_),
                                                key.platform, key.encoding, key.language, nameID);
      if (index >= 0) return charactersOf(records_[index]);
    }
    return fallback;
  }

 private:
  const std::uint8_t* table_;
  NameRecord* records_ = nullptr;
  std::int32_t count_ = 0;
};

}  // namespace

std::u32string charactersOf(const NameRecord& record) {
  if (record.platformID == PlatformUnicode || record.platformID == PlatformWindows)
    return fromUtf16(record);
  const bool macRoman =
      record.platformID == PlatformMacintosh && record.encodingID == kEncodingMacRoman;
  std::u32string text;
  for (std::size_t i = 0; i < record.length; ++i) {
    const std::uint8_t byte = record.data[i];
    text += macRoman && byte >= 0x80 ? char32_t{kMacRoman[byte - 0x80]} : char32_t{byte};
  }
  return text;
}

// The keys and their order are the same as in the library's readFontNames.
FontNames fontNames(const FontFile& font) {
  constexpr NameRecords::Key kUnicode{PlatformUnicode, 0, 0};
  constexpr NameRecords::Key kMacEnglish{PlatformMacintosh, kEncodingMacRoman, kLanguageMacEnglish};
  constexpr NameRecords::Key kWindowsEnglish{PlatformWindows, kEncodingWindowsUnicode,
                                             kLanguageWindowsEnglish};
  constexpr NameRecords::Key kWindowsJapanese{PlatformWindows, kEncodingWindowsUnicode,
                                              kLanguageWindowsJapanese};
  const NameRecords records(font);
  FontNames names;
  names.postScript = records.textOf(NamePostScript, {kWindowsEnglish, kMacEnglish},
                                    decodeFileName(font->postScriptName));
  names.family = records.textOf(
      NameFamily, {kUnicode, kWindowsEnglish, kMacEnglish, kWindowsJapanese}, names.postScript);
  names.style = records.textOf(NameStyle, {kMacEnglish, kWindowsEnglish}, {});
  return names;
}

FamilyNames::FamilyNames(const std::string& family, const std::u32string& style) {
  const std::u32string name = decodeUtf8(family);
  if (name.empty() || name.size() > kMaxNameLength ||
      std::any_of(name.begin(), name.end(), [](char32_t code) { return code < ' '; })) {
    throw std::runtime_error("--name: a family has 1 to 255 characters and no control characters");
  }
  std::u32string cleanStyle = style;
  std::erase_if(cleanStyle, [](char32_t code) { return code < ' '; });
  cleanStyle.resize(std::min(cleanStyle.size(), kMaxNameLength));
  if (cleanStyle.empty()) cleanStyle = U"Regular";
  const bool regular = cleanStyle == U"Regular";
  std::u32string postScript = postScriptCharacters(name);
  if (postScript.empty()) postScript = U"TrueTypeSubset";
  if (!regular) postScript += U'-' + postScriptCharacters(cleanStyle);
  add(NameFamily, name);
  add(NameStyle, cleanStyle);
  add(NameFull, regular ? name : name + U' ' + cleanStyle);
  add(NamePostScript, postScript.substr(0, kMaxPostScriptLength));
  // The addresses of the strings are final only after the last string is added.
  for (std::size_t i = 0; i < records_.size(); ++i) records_[i].data = strings_[i].data();
}

void FamilyNames::add(std::uint16_t nameID, const std::u32string& text) {
  const auto addRecord = [&](std::uint16_t platform, std::uint16_t encoding, std::uint16_t language,
                             std::vector<std::uint8_t> bytes) {
    records_.push_back(
        {platform, encoding, language, nameID, static_cast<std::uint16_t>(bytes.size()), nullptr});
    strings_.push_back(std::move(bytes));
  };
  if (isAscii(text))
    addRecord(PlatformMacintosh, kEncodingMacRoman, kLanguageMacEnglish,
              {text.begin(), text.end()});
  addRecord(PlatformWindows, kEncodingWindowsUnicode, kLanguageWindowsEnglish, toUtf16(text));
}

}  // namespace ulm::tools
