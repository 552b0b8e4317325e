#include "command/font/names.h"

#include <initializer_list>

#include "truetype/bytes.h"
#include "truetype/reader/names.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;

// Mac Roman from 0x80 on.
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

enum Platform : std::uint16_t { kUnicode = 0, kMacintosh = 1, kWindows = 3 };

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

std::u32string fromUtf16(const NameRecord& record) {
  std::u32string text;
  for (std::size_t i = 0; i + 1 < record.length; i += 2) {
    const char32_t unit = readUInt16(record.data, i);
    const char32_t next = i + 3 < record.length ? readUInt16(record.data, i + 2) : 0;
    if (isHighSurrogate(unit) && isLowSurrogate(next)) {
      text += 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00);
      i += 2;
    } else {
      text += isHighSurrogate(unit) || isLowSurrogate(unit) ? U'\uFFFD' : unit;
    }
  }
  return text;
}

// The name records of an open font.
class Records {
 public:
  explicit Records(const FontFile& font) : table_(font->tables[kSlotName]) {
    count_ = getNameRecords(font.get(), &records_);
  }
  Records(const Records&) = delete;
  Records& operator=(const Records&) = delete;
  ~Records() { releaseNameRecords(records_, count_); }

  struct Key {
    std::uint16_t platform, encoding, language;
  };
  // The text of the first key that has a record; `otherwise` where none has.
  std::u32string textOf(std::uint16_t nameID, std::initializer_list<Key> keys,
                        const std::u32string& otherwise) const {
    for (const Key& key : keys) {
      const std::int32_t index = findNameRecord(table_, static_cast<std::uint32_t>(count_),
                                                key.platform, key.encoding, key.language, nameID);
      if (index >= 0) return charactersOf(records_[index]);
    }
    return otherwise;
  }

 private:
  const std::uint8_t* table_;
  NameRecord* records_ = nullptr;
  std::int32_t count_ = 0;
};

}  // namespace

std::u32string charactersOf(const NameRecord& record) {
  if (record.platformID == kUnicode || record.platformID == kWindows) return fromUtf16(record);
  const bool macRoman = record.platformID == kMacintosh && record.encodingID == 0;
  std::u32string text;
  for (std::size_t i = 0; i < record.length; ++i) {
    const std::uint8_t byte = record.data[i];
    text += macRoman && byte >= 0x80 ? char32_t{kMacRoman[byte - 0x80]} : char32_t{byte};
  }
  return text;
}

// The keys and their order are those of the library's readFontNames.
FontNames namesOfFont(const FontFile& font) {
  constexpr std::uint16_t kFamilyName = 1, kStyleName = 2, kPostScriptName = 6;
  constexpr Records::Key kAnyUnicode{kUnicode, 0, 0}, kMacEnglish{kMacintosh, 0, 0},
      kWindowsEnglish{kWindows, 1, 1033}, kWindowsJapanese{kWindows, 1, 1041};
  const Records records(font);
  FontNames names;
  names.postScript = records.textOf(kPostScriptName, {kWindowsEnglish, kMacEnglish},
                                    decodeFileName(font->postScriptName));
  names.family = records.textOf(
      kFamilyName, {kAnyUnicode, kWindowsEnglish, kMacEnglish, kWindowsJapanese}, names.postScript);
  names.style = records.textOf(kStyleName, {kMacEnglish, kWindowsEnglish}, {});
  return names;
}

}  // namespace ulm::tools
