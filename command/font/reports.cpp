// What a font says of itself, of its characters, glyphs and pairs.
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "command/font/font_file.h"
#include "command/font/names.h"
#include "truetype/bytes.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/metrics.h"
#include "truetype/reader/names.h"
#include "truetype/reader/tables.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;

// What is measured in something, by its key; the command prints the unit after the value.
Json unitsOf(const std::vector<std::pair<const char*, std::vector<const char*>>>& keysOfUnits) {
  Json units = Json::object();
  for (const auto& [unit, keys] : keysOfUnits) {
    for (const char* key : keys) units[key] = unit;
  }
  return units;
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
  Json::object_t tables;  // appended to: a search for each key would take quadratic time
  std::unordered_map<std::uint32_t, std::size_t> indexByTag;
  const std::uint8_t* directory = font->image + font->directoryOffset + 12;
  for (std::uint32_t i = 0; i < font->tableCount; ++i) {
    const std::uint8_t* entry = directory + std::size_t{16} * i;
    const Json table{{"offset", readUInt32(entry, 8)}, {"length", readUInt32(entry, 12)}};
    const auto [found, fresh] = indexByTag.try_emplace(readUInt32(entry, 0), tables.size());
    if (!fresh) {
      tables.data()[found->second].second =
          table;  // of a tag that occurs twice, the later entry counts
      continue;
    }
    std::string tag;
    for (std::size_t c = 0; c < 4; ++c) tag += encodeUtf8(entry[c]);
    tables.emplace_back(std::move(tag), table);
  }
  return tables;
}

}  // namespace

void addCharacter(Json& row, char32_t code) {
  row["code"] = code == 0 ? Json() : Json(codeName(code));
  row["character"] = code == 0 ? Json() : Json(encodeUtf8(code));
}

Report infoOf(const FontFile& font, const FontOptions&) {
  constexpr const char* kEm = "thousandths of the em";
  const FontNames names = namesOfFont(font);
  return Json{
      {"family", encodeUtf8(names.family)},
      {"subfamily", encodeUtf8(names.style)},
      {"postScript", encodeUtf8(names.postScript)},
      {"glyphs", font->numGlyphs},
      {"unitsPerEm", font->unitsPerEm},
      {"global", globalsOf(font)},
      {"tables", tablesOf(font)},
      {"cmap",
       {{"type", font->cmapType},
        {"format",
         font->cmapSubtable == nullptr ? Json() : Json(readUInt16(font->cmapSubtable, 0))}}},
      {"kern",
       {{"type", font->kernType}, {"subtables", font->kernType == 0 ? 0 : font->kernTableCount}}},
      {"units", unitsOf({{kEm,
                          {"box", "ascender", "descender", "lineGap", "verticalAscender",
                           "verticalDescender", "typoAscender", "typoDescender", "typoLineGap",
                           "winAscent", "winDescent"}},
                         {"degrees", {"italicAngle"}},
                         {"font units", {"unitsPerEm"}},
                         {"bytes", {"offset", "length"}}})}};
}

Report namesOf(const FontFile& font, const FontOptions&) {
  NameRecord* records = nullptr;
  const std::int32_t count = getNameRecords(font.get(), &records);
  Json names = Json::array();
  for (std::int32_t i = 0; i < count; ++i) {
    const NameRecord& record = records[i];
    names.push_back({{"platform", record.platformID},
                     {"encoding", record.encodingID},
                     {"language", record.languageID},
                     {"name", record.nameID},
                     {"text", encodeUtf8(charactersOf(record))}});
  }
  releaseNameRecords(records, count);
  return Json{{"names", names}};
}

Report mapOf(const FontFile& font, const FontOptions& options) {
  Json::object_t map;  // appended to, as a search for each key would take quadratic time
  std::unordered_set<char32_t> seen;
  for (const std::string& word : options.words) {
    for (const char32_t code : codesOf(word)) {
      if (!seen.insert(code).second) continue;
      const std::uint16_t glyph = font.glyphOf(code);
      map.emplace_back(codeName(code),
                       glyph == 0 && !options.json ? Json("unmapped") : Json(glyph));
    }
  }
  return Json(map);
}

Report metricsOf(const FontFile& font, const FontOptions& options) {
  Json glyphs = Json::array();
  for (const auto& [glyph, code] : glyphsOf(font, options.words)) {
    GlyphMetrics metrics{};
    readGlyphMetrics(font.get(), glyph, &metrics);
    readGlyphBox(font.get(), glyph, &metrics);
    Json row{{"glyph", glyph}};
    addCharacter(row, code);
    row["advanceWidth"] = metrics.advanceWidth;
    row["leftSideBearing"] = metrics.leftSideBearing;
    row["advanceHeight"] = metrics.advanceHeight;
    row["topSideBearing"] = metrics.topSideBearing;
    row["box"] = {metrics.xMin, metrics.yMin, metrics.xMax, metrics.yMax};
    glyphs.push_back(std::move(row));
  }
  return Json{{"glyphs", glyphs}};
}

Report kernOf(const FontFile& font, const FontOptions& options) {
  std::u32string text;
  for (const std::string& word : options.words) text += codesOf(word);
  std::vector<std::uint16_t> glyphs;
  for (const char32_t code : text) glyphs.push_back(font.glyphOf(code));
  Json pairs = Json::array();
  if (!glyphs.empty()) {
    std::vector<KernAdjustment> kerning(glyphs.size());
    getRunKerning(font.get(), glyphs.data(), static_cast<std::int32_t>(glyphs.size()), 0,
                  kerning.data());
    for (std::size_t i = 0; i + 1 < glyphs.size(); ++i) {
      pairs.push_back({{"pair", encodeUtf8(text.substr(i, 2))},
                       {"codes", {codeName(text[i]), codeName(text[i + 1])}},
                       {"left", glyphs[i]},
                       {"right", glyphs[i + 1]},
                       {"x", kerning[i].x},
                       {"y", kerning[i].y}});
    }
  }
  return Json{{"pairs", pairs}};
}

}  // namespace ulm::tools
