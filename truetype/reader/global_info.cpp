#include <cstring>
#include <iterator>

#include "truetype/bytes.h"
#include "truetype/detail/font_views.h"
#include "truetype/format/head.h"
#include "truetype/format/hhea.h"
#include "truetype/format/os2.h"
#include "truetype/format/post.h"
#include "truetype/reader/names.h"

namespace ulm::truetype {
namespace {

using detail::RecordView;
using format::Head, format::Hhea, format::Os2, format::Post, format::Vhea;

constexpr std::int32_t kSymbolMap = 10, kUnicodeMap = 11;

// A field of a table in thousandths of the em; 0 where the image ends before it.
template <class Table, class Field>
std::int32_t scaled(const TrueTypeFont& font, RecordView<Table> table, Field field) noexcept {
  return scaleToThousandths(font.unitsPerEm, table.readOrZero(field));
}

void readOs2(const TrueTypeFont& font, GlobalFontInfo& info) noexcept {
  const auto os2 = detail::tableOf<Os2>(font);
  info.weight = os2.readOrZero(Os2::kWeightClass);
  info.width = os2.readOrZero(Os2::kWidthClass);
  info.selection = os2.readOrZero(Os2::kSelection);
  // A table of just that size is one without the last five metrics.
  if (font.tableLengths[kSlotOs2] > Os2::kShortSize) {
    info.typoAscender = scaled(font, os2, Os2::kTypoAscender);
    info.typoDescender = scaled(font, os2, Os2::kTypoDescender);
    info.typoLineGap = scaled(font, os2, Os2::kTypoLineGap);
    info.winAscent = scaled(font, os2, Os2::kWinAscent);
    info.winDescent = scaled(font, os2, Os2::kWinDescent);
  }
  if (font.cmapType == kUnicodeMap) {
    info.unicodeRangesValid = 1;
    for (std::size_t i = 0; i < std::size(info.unicodeRanges); ++i) {
      info.unicodeRanges[i] = os2.readOrZero(Os2::kUnicodeRanges, i);
    }
  }
  for (std::size_t i = 0; i < std::size(info.panose); ++i) {
    info.panose[i] = os2.readOrZero(Os2::kPanose, i);
  }
  info.typeFlags = os2.readOrZero(Os2::kType);
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
  const auto post = detail::tableOf<Post>(*font);
  info.pitch = post.readOrZero(Post::kIsFixedPitch);
  info.italicAngle = post.readOrZero(Post::kItalicAngle);
  const auto head = detail::tableOf<Head>(*font);
  info.xMin = scaled(*font, head, Head::kXMin);
  info.yMin = scaled(*font, head, Head::kYMin);
  info.xMax = scaled(*font, head, Head::kXMax);
  info.yMax = scaled(*font, head, Head::kYMax);
  const auto hhea = detail::tableOf<Hhea>(*font);
  info.ascender = scaled(*font, hhea, Hhea::kAscender);
  info.descender = scaled(*font, hhea, Hhea::kDescender);
  info.lineGap = scaled(*font, hhea, Hhea::kLineGap);
  const auto vhea = detail::tableOf<Vhea>(*font);
  info.verticalAscender = scaled(*font, vhea, Vhea::kAscender);
  info.verticalDescender = scaled(*font, vhea, Vhea::kDescender);
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
