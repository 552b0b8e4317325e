// What a font says of itself, of its characters, glyphs and pairs.
#include <stdexcept>

#include "command/font/font_file.h"
#include "truetype/bytes.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/metrics.h"
#include "truetype/reader/names.h"
#include "truetype/reader/tables.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;

// The bytes of the record as text: 16-bit units on the Unicode and Windows platforms, else Latin-1.
std::string textOf(const NameRecord& record) {
  std::string text;
  const bool wide = record.platformID == 0 || record.platformID == 3;
  for (std::size_t i = 0; i + (wide ? 1 : 0) < record.length; i += wide ? 2 : 1) {
    char32_t code = wide ? readUInt16(record.data, i) : record.data[i];
    if (code >= 0xD800 && code < 0xDC00 && i + 3 < record.length) {
      const char32_t low = readUInt16(record.data, i + 2);
      if (low >= 0xDC00 && low < 0xE000) {
        code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        i += 2;
      }
    }
    text += encodeUtf8(code >= 0xD800 && code < 0xE000 ? U'\uFFFD' : code);
  }
  return text;
}

// Bytes of a narrow name as they are, where they are ASCII.
std::string narrow(const char* text) {
  std::string made;
  for (; *text != '\0'; ++text) made += encodeUtf8(static_cast<unsigned char>(*text));
  return made;
}

Json globalsOf(const FontFile& font) {
  GlobalFontInfo info;
  getGlobalFontInfo(font.get(), &info);
  Json ranges = Json::array();
  for (std::size_t bit = 0; bit < kUnicodeRangeNameCount; ++bit) {
    if ((info.unicodeRanges[bit / 32] >> bit % 32 & 1) != 0)
      ranges.push_back(unicodeRangeNames[bit]);
  }
  return {{"weight", info.weight},
          {"width", info.width},
          {"pitch", info.pitch},
          {"italicAngle", static_cast<double>(info.italicAngle) / 65536},
          {"selection", info.selection},
          {"box", {info.xMin, info.yMin, info.xMax, info.yMax}},
          {"ascender", info.ascender},
          {"descender", info.descender},
          {"lineGap", info.lineGap},
          {"verticalAscender", info.verticalAscender},
          {"verticalDescender", info.verticalDescender},
          {"typoAscender", info.typoAscender},
          {"typoDescender", info.typoDescender},
          {"typoLineGap", info.typoLineGap},
          {"winAscent", info.winAscent},
          {"winDescent", info.winDescent},
          {"symbolEncoded", info.symbolEncoded != 0},
          {"unicodeRanges", ranges},
          {"panose", info.panose},
          {"typeFlags", info.typeFlags}};
}

Json tablesOf(const FontFile& font) {
  Json tables = Json::object();
  const std::uint8_t* directory = font->image + font->directoryOffset + 12;
  for (std::uint32_t i = 0; i < font->tableCount; ++i) {
    const std::uint8_t* entry = directory + std::size_t{16} * i;
    std::string tag;
    for (std::size_t c = 0; c < 4; ++c) tag += encodeUtf8(entry[c]);
    tables[tag] = {{"offset", readUInt32(entry, 8)}, {"length", readUInt32(entry, 12)}};
  }
  return tables;
}

// Text as it stands, or U+XXXX for one character.
std::u32string codesOf(const std::string& word) {
  if (word.size() < 3 || word.compare(0, 2, "U+") != 0) return decodeUtf8(word);
  std::size_t used = 0;
  unsigned long code = 0;
  const std::string digits = word.substr(2);
  if (digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos &&
      digits.size() <= 6) {
    code = std::stoul(digits, &used, 16);
  }
  if (used != digits.size() || code > 0x10FFFF) throw std::runtime_error(word + ": no character");
  return {static_cast<char32_t>(code)};
}

}  // namespace

Json infoOf(const FontFile& font, const FontOptions&) {
  return {
      {"family", narrow(font->familyName)},
      {"subfamily", narrow(font->subfamilyName)},
      {"postScript", narrow(font->postScriptName)},
      {"glyphs", font->numGlyphs},
      {"unitsPerEm", font->unitsPerEm},
      {"global", globalsOf(font)},
      {"tables", tablesOf(font)},
      {"cmap",
       {{"type", font->cmapType},
        {"format",
         font->cmapSubtable == nullptr ? Json() : Json(readUInt16(font->cmapSubtable, 0))}}},
      {"kern",
       {{"type", font->kernType}, {"subtables", font->kernType == 0 ? 0 : font->kernTableCount}}}};
}

Json namesOf(const FontFile& font, const FontOptions&) {
  NameRecord* records = nullptr;
  const std::int32_t count = getNameRecords(font.get(), &records);
  Json names = Json::array();
  for (std::int32_t i = 0; i < count; ++i) {
    const NameRecord& record = records[i];
    names.push_back({{"platform", record.platformID},
                     {"encoding", record.encodingID},
                     {"language", record.languageID},
                     {"name", record.nameID},
                     {"text", textOf(record)}});
  }
  releaseNameRecords(records, count);
  return {{"names", names}};
}

Json mapOf(const FontFile& font, const FontOptions& options) {
  Json map = Json::object();
  for (const std::string& word : options.words) {
    for (const char32_t code : codesOf(word)) {
      const std::uint16_t glyph = font.glyphOf(code);
      map[codeName(code)] = glyph == 0 && !options.json ? Json("unmapped") : Json(glyph);
    }
  }
  return map;
}

Json metricsOf(const FontFile& font, const FontOptions& options) {
  Json glyphs = Json::array();
  for (const std::uint32_t glyph : options.glyphs) {
    font.requireGlyph(glyph);
    GlyphMetrics metrics{};
    readGlyphMetrics(font.get(), glyph, &metrics);
    readGlyphBox(font.get(), glyph, &metrics);
    glyphs.push_back({{"glyph", glyph},
                      {"advanceWidth", metrics.advanceWidth},
                      {"leftSideBearing", metrics.leftSideBearing},
                      {"advanceHeight", metrics.advanceHeight},
                      {"topSideBearing", metrics.topSideBearing},
                      {"box", {metrics.xMin, metrics.yMin, metrics.xMax, metrics.yMax}}});
  }
  return {{"glyphs", glyphs}};
}

Json kernOf(const FontFile& font, const FontOptions& options) {
  std::vector<std::uint16_t> glyphs;
  for (const char32_t code : decodeUtf8(options.text)) glyphs.push_back(font.glyphOf(code));
  Json pairs = Json::array();
  if (!glyphs.empty()) {
    std::vector<KernAdjustment> kerning(glyphs.size());
    getRunKerning(font.get(), glyphs.data(), static_cast<std::int32_t>(glyphs.size()), 0,
                  kerning.data());
    for (std::size_t i = 0; i + 1 < glyphs.size(); ++i) {
      pairs.push_back({{"left", glyphs[i]},
                       {"right", glyphs[i + 1]},
                       {"x", kerning[i].x},
                       {"y", kerning[i].y}});
    }
  }
  return {{"pairs", pairs}};
}

}  // namespace ulm::tools
