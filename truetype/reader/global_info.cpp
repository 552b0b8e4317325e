#include <cstring>

#include "truetype/detail/byte_view.h"
#include "truetype/reader/names.h"

namespace ulm::truetype {
namespace {

using detail::ByteView;

constexpr std::int32_t kSymbolMap = 10, kUnicodeMap = 11;
// An OS/2 table has to be longer than this for its last five metrics to count.
constexpr std::uint32_t kOs2WithoutMetrics = 68;

// Scaled values of one table.
struct Scaled {
  ByteView table;
  std::int32_t unitsPerEm;
  std::int32_t of(std::size_t offset) const noexcept {
    return scaleToThousandths(unitsPerEm, table.readOrZero<std::int16_t>(offset));
  }
  std::int32_t ofUnsigned(std::size_t offset) const noexcept {
    return scaleToThousandths(unitsPerEm, table.readOrZero<std::uint16_t>(offset));
  }
};

void readOs2(const TrueTypeFont& font, GlobalFontInfo& info) noexcept {
  const ByteView os2 = detail::tableView(font, kSlotOs2);
  info.weight = os2.readOrZero<std::uint16_t>(4);
  info.width = os2.readOrZero<std::uint16_t>(6);
  info.selection = os2.readOrZero<std::uint16_t>(62);
  if (font.tableLengths[kSlotOs2] > kOs2WithoutMetrics) {
    const Scaled scaled{os2, font.unitsPerEm};
    info.typoAscender = scaled.of(68);
    info.typoDescender = scaled.of(70);
    info.typoLineGap = scaled.of(72);
    info.winAscent = scaled.ofUnsigned(74);
    info.winDescent = scaled.ofUnsigned(76);
  }
  if (font.cmapType == kUnicodeMap) {
    info.unicodeRangesValid = 1;
    for (std::size_t i = 0; i < 4; ++i) {
      info.unicodeRanges[i] = os2.readOrZero<std::uint32_t>(42 + 4 * i);
    }
  }
  for (std::size_t i = 0; i < 10; ++i) info.panose[i] = os2.readOrZero<std::uint8_t>(32 + i);
  info.typeFlags = os2.readOrZero<std::uint16_t>(8);
}

}  // namespace

void getGlobalFontInfo(const TrueTypeFont* font, GlobalFontInfo* outInfo) noexcept {
  GlobalFontInfo& info = *outInfo;
  std::memset(&info, 0, sizeof info);
  info.family = font->familyName;
  info.familyWide = font->familyNameWide;
  info.subfamily = font->subfamilyName;
  info.postScript = font->postScriptName;
  info.symbolEncoded = font->cmapType == kSymbolMap ? 1 : 0;

  // An absent table reads as zeros, which is what its fields are to be.
  if (font->tables[kSlotOs2] != nullptr) readOs2(*font, info);
  const ByteView post = detail::tableView(*font, kSlotPost);
  info.pitch = post.readOrZero<std::uint32_t>(12);
  info.italicAngle = post.readOrZero<std::int32_t>(4);
  const Scaled head{detail::tableView(*font, kSlotHead), font->unitsPerEm};
  info.xMin = head.of(36);
  info.yMin = head.of(38);
  info.xMax = head.of(40);
  info.yMax = head.of(42);
  const Scaled hhea{detail::tableView(*font, kSlotHhea), font->unitsPerEm};
  info.ascender = hhea.of(4);
  info.descender = hhea.of(6);
  info.lineGap = hhea.of(8);
  const Scaled vhea{detail::tableView(*font, kSlotVhea), font->unitsPerEm};
  info.verticalAscender = vhea.of(4);
  info.verticalDescender = vhea.of(6);
}

const char* const unicodeRangeNames[kUnicodeRangeNameCount] = {
    "Basic Latin",
    "Latin-1 Supplement",
    "Latin Extended-A",
    "Latin Extended-B",
    "IPA Extensions",
    "Spacing Modifier Letters",
    "Combining Diacritical Marks",
    "Basic Greek",
    "Greek Symbols And Coptic",
    "Cyrillic",
    "Armenian",
    "Basic Hebrew",
    "Hebrew Extended (A and B blocks combined)",
    "Basic Arabic",
    "Arabic Extended",
    "Devanagari",
    "Bengali",
    "Gurmukhi",
    "Gujarati",
    "Oriya",
    "Tamil",
    "Telugu",
    "Kannada",
    "Malayalam",
    "Thai",
    "Lao",
    "Basic Georgian",
    "Georgian Extended",
    "Hangul Jamo",
    "Latin Extended Additional",
    "Greek Extended",
    "General Punctuation",
    "Superscripts And Subscripts",
    "Currency Symbols",
    "Combining Diacritical Marks For Symbols",
    "Letterlike Symbols",
    "Number Forms",
    "Arrows",
    "Mathematical Operators",
    "Miscellaneous Technical",
    "Control Pictures",
    "Optical Character Recognition",
    "Enclosed Alphanumerics",
    "Box Drawing",
    "Block Elements",
    "Geometric Shapes",
    "Miscellaneous Symbols",
    "Dingbats",
    "CJK Symbols And Punctuation",
    "Hiragana",
    "Katakana",
    "Bopomofo",
    "Hangul Compatibility Jamo",
    "CJK Miscellaneous",
    "Enclosed CJK Letters And Months",
    "CJK Compatibility",
    "Hangul",
    "Reserved for Unicode SubRanges",
    "Reserved for Unicode SubRanges",
    "CJK Unified Ideographs",
    "Private Use Area",
    "CJK Compatibility Ideographs",
    "Alphabetic Presentation Forms",
    "Arabic Presentation Forms-A",
    "Combining Half Marks",
    "CJK Compatibility Forms",
    "Small Form Variants",
    "Arabic Presentation Forms-B",
    "Halfwidth And Fullwidth Forms",
    "Specials",
    "Reserved for Unicode SubRanges",
};

}  // namespace ulm::truetype
