#include "command/font/reports.h"

#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "command/font/names.h"
#include "command/support/text.h"
#include "truetype/bytes.h"
#include "truetype/format/byte_view.h"
#include "truetype/format/cmap.h"
#include "truetype/format/directory.h"
#include "truetype/reader/kerning.h"
#include "truetype/reader/metrics.h"
#include "truetype/reader/names.h"
#include "truetype/reader/tables.h"

namespace ulm::tools {
namespace {

using namespace ulm::truetype;
using format::OffsetTable, format::TableEntry;

// Returns the member "units" of a report: the unit of a value by the value's key.
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
  Json::object_t tables;  // appended to, since a search for each key would take quadratic time
  std::unordered_map<std::uint32_t, std::size_t> indexByTag;
  const std::uint8_t* directory = font->image + font->directoryOffset;
  for (std::uint32_t i = 0; i < font->tableCount; ++i) {
    // The directory is in the image, because the font could be opened.
    const auto entry =
        format::FixedView<TableEntry>::vouched(directory + OffsetTable::kTables.at(i));
    const Json table{{"offset", entry.get(TableEntry::kOffset)},
                     {"length", entry.get(TableEntry::kLength)}};
    const std::uint32_t tag = entry.get(TableEntry::kTag);
    const auto [found, fresh] = indexByTag.try_emplace(tag, tables.size());
    if (!fresh) {
      tables.data()[found->second].second = table;  // the last of two equal tags is used
      continue;
    }
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8) name += encodeUtf8(tag >> shift & 0xFF);
    tables.emplace_back(std::move(name), table);
  }
  return tables;
}

}  // namespace

Json fontInfo(const FontFile& font) {
  constexpr const char* kEm = "thousandths of the em";
  const FontNames names = fontNames(font);
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
         font->cmapSubtable == nullptr
             ? Json()
             : Json(readUInt16(font->cmapSubtable, format::CmapSubtable::kFormat.kOffset))}}},
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

Json nameList(const FontFile& font) {
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

Json characterMap(const FontFile& font, const std::vector<std::string>& arguments,
                  const Json& unmapped) {
  Json::object_t map;  // appended to, since a search for each key would take quadratic time
  std::unordered_set<char32_t> seen;
  for (const std::string& argument : arguments) {
    for (const char32_t code : charactersOfArgument(argument)) {
      if (!seen.insert(code).second) continue;
      const std::uint16_t glyph = font.glyphOf(code);
      map.emplace_back(codeName(code), glyph == 0 ? unmapped : Json(glyph));
    }
  }
  return Json(map);
}

Json glyphMetrics(const FontFile& font, const std::vector<std::string>& arguments) {
  Json glyphs = Json::array();
  for (const auto& [glyph, code] : glyphsOfArguments(font, arguments)) {
    GlyphMetrics metrics{};
    readGlyphMetrics(font.get(), glyph, &metrics);
    readGlyphBox(font.get(), glyph, &metrics);
    Json values{{"glyph", glyph}};
    addCharacter(values, code);
    values["advanceWidth"] = metrics.advanceWidth;
    values["leftSideBearing"] = metrics.leftSideBearing;
    values["advanceHeight"] = metrics.advanceHeight;
    values["topSideBearing"] = metrics.topSideBearing;
    values["box"] = {metrics.xMin, metrics.yMin, metrics.xMax, metrics.yMax};
    glyphs.push_back(std::move(values));
  }
  return Json{{"glyphs", glyphs}};
}

Json pairKerning(const FontFile& font, const std::vector<std::string>& arguments) {
  std::u32string text;
  for (const std::string& argument : arguments) text += charactersOfArgument(argument);
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
