#include "truetype/reader/names.h"

#include <gtest/gtest.h>

#include "tests/truetype/font_image.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

std::u16string wide(const std::uint16_t* text) {
  std::u16string units;
  for (; text != nullptr && *text != 0; ++text) units.push_back(static_cast<char16_t>(*text));
  return units;
}

std::string utf16(const std::u16string& units) {
  Bytes bytes;
  for (const char16_t unit : units) bytes.u16({unit});
  return {bytes.begin(), bytes.end()};
}

TEST(Names, ChosenAtOpen) {
  const struct {
    const char* file;
    std::vector<NameEntry> records;
    const char *postScript, *family;
    std::u16string familyWide;  // empty for none
    const char* subfamily;
  } cases[] = {
      {"/fonts/serif.bold.ttf", {}, "serif.bold", "serif.bold", u"", ""},
      {".hidden", {}, ".hidden", ".hidden", u"", ""},
      {"dir.d/file", {}, "file", "file", u"", ""},
      {"dir.d/", {}, "", "", u"", ""},
      {"C:\\fonts\\a.ttf", {}, "C:\\fonts\\a", "C:\\fonts\\a", u"", ""},
      {"a",
       {{0, 0, 0, 1, utf16(u"U")},
        {1, 0, 0, 1, "mac"},
        {1, 0, 0, 2, "macsub"},
        {1, 0, 0, 6, "macps"},
        {3, 1, 1033, 1, utf16(u"W")},
        {3, 1, 1033, 2, utf16(u"X")},
        {3, 1, 1033, 6, utf16(u"W\u0416")}},
       "W\x16",
       "U",
       u"U",
       "macsub"},
      {"a",
       {{1, 0, 0, 1, "mac"}, {1, 0, 0, 6, "macps"}, {3, 1, 1041, 1, utf16(u"\u4E00")}},
       "macps",
       "mac",
       u"",
       ""},
      {"a",
       {{1, 0, 1, 6, "no"}, {3, 1, 1041, 1, utf16(u"\u4E41B")}, {3, 1, 4147, 6, utf16(u"no")}},
       "a",
       "AB",
       u"\u4E41B",
       ""},
      {"a", {{3, 1, 1033, 1, utf16(u"A")}, {3, 1, 1033, 2, utf16(u"B")}}, "a", "A", u"A", "B"},
  };
  for (const auto& [file, records, postScript, family, familyWide, subfamily] : cases) {
    const OpenFont font(FontImage().table("name", nameTable(records)), file);
    ASSERT_EQ(font.result, FontResultOk);
    EXPECT_STREQ(font->postScriptName, postScript);
    EXPECT_STREQ(font->familyName, family);
    EXPECT_EQ(font->familyNameWide != nullptr, !familyWide.empty());
    EXPECT_EQ(wide(font->familyNameWide), familyWide);
    EXPECT_STREQ(font->subfamilyName, subfamily);
  }
}

// Each of the four IDs counts. Of equal records, and of records in no order, the one that a
// bisection meets is found.
TEST(Names, FoundByTheirIDs) {
  constexpr int kRows[][5] = {{0, 3, 0, 2, 0},  {1, 0, 0, 6, 1}, {1, 0, 0, 6, 1}, {1, 0, 7, 6, 3},
                              {3, 1, 2, 1, -1}, {3, 1, 0, 1, 5}, {3, 1, 2, 4, 6}};
  std::vector<NameEntry> entries;
  for (const auto& ids : kRows) entries.push_back({ids[0], ids[1], ids[2], ids[3], ""});
  const Bytes table = nameTable(entries);
  for (const auto& ids : kRows) {
    for (int other = 0; other <= 4; ++other) {  // with each ID changed, and with none
      const auto id = [&](int i) {
        return static_cast<std::uint16_t>(ids[i] + (i == other ? 8 : 0));
      };
      EXPECT_EQ(findNameRecord(table.data(), 7, id(0), id(1), id(2), id(3)),
                other == 4 ? ids[4] : -1)
          << ids[0] << ' ' << ids[2] << ' ' << ids[3];
    }
  }
}

TEST(Names, RecordsAndTexts) {
  const Bytes table =
      nameTable({{1, 0, 0, 3, "q"}, {1, 0, 0, 4, ""}, {3, 1, 2, 6, utf16(u"A") + "z"}});
  FontImage image;
  image.table("name", table).last("name");
  const OpenFont font(image);
  NameRecord* records = nullptr;
  ASSERT_EQ(getNameRecords(font.get(), &records), 3);
  EXPECT_TRUE(records[1].data == nullptr && records[1].nameID == 4);
  const NameRecord& last = records[2];
  EXPECT_EQ(row(last.platformID, last.encodingID, last.languageID, last.nameID), row(3, 1, 2, 6));
  EXPECT_EQ(std::string(last.data, last.data + last.length), std::string("\0Az", 3));
  releaseNameRecords(records, 3);

  std::uint16_t* units = nullptr;
  EXPECT_STREQ(owned(nameRecordText(table.data(), 2, 1, &units)).get(), "A");
  EXPECT_EQ(wide(owned(units).get()), u"A");
  const auto bytes = owned(nameRecordText(table.data(), 2, 0, &units));
  EXPECT_EQ(std::string(bytes.get(), 4), std::string("\0Az\0", 4));
  EXPECT_EQ(units, nullptr);

  // A string that leaves the image is empty, also for the analysis of open.
  const OpenFont longer(image.patch16("name", 6 + 24 + 8, 4));
  ASSERT_EQ(getNameRecords(longer.get(), &records), 3);
  EXPECT_TRUE(records[2].data == nullptr && records[2].length == 0);
  releaseNameRecords(records, 3);
  releaseNameRecords(nullptr, 0);

  // Strings that share their bytes, up to the bound and beyond it.
  for (const int rest : {256, 257}) {
    Bytes shared = Bytes().u16({0, 257, 6 + 12 * 257});
    for (int i = 0; i < 257; ++i) shared.u16({1, 0, 0, 1, i < 256 ? 0xFFFF : rest, 0});
    const OpenFont many(FontImage().table("name", shared.zeros(0xFFFF)));
    const std::int32_t count = getNameRecords(many.get(), &records);
    EXPECT_EQ(row(count, records != nullptr), rest == 256 ? row(257, 1) : row(0, 0));
    releaseNameRecords(records, count);
  }

  const OpenFont none{FontImage()};
  EXPECT_EQ(getNameRecords(none.get(), &records), 0);
  EXPECT_EQ(records, nullptr);
}

// An OS/2 table whose 16-bit word at byte 2 n is 100 + n.
Bytes countingTable(int words) {
  Bytes table;
  for (int i = 0; i < words; ++i) table.u16({100 + i});
  return table;
}

TEST(GlobalInfo, FieldsOfAllTables) {
  FontImage image;
  image.patch16("head", 18, 2048).patch16("head", 36, -600).patch16("head", 38, -601);
  image.patch16("head", 40, 5).patch16("head", 42, 2048);
  image.table("hhea", countingTable(18)).table("vhea", countingTable(18));
  image.table("OS/2", countingTable(39)).table("post", countingTable(8));
  const OpenFont font(image);
  ASSERT_EQ(font.result, FontResultOk);
  GlobalFontInfo info;
  getGlobalFontInfo(font.get(), &info);
  EXPECT_TRUE(info.family == font->familyName && info.familyWide == nullptr &&
              info.postScript == font->postScriptName && info.subfamily == font->subfamilyName);
  EXPECT_EQ(row(info.weight, info.width, info.typeFlags, info.selection, info.pitch,
                info.italicAngle, info.symbolEncoded, info.unicodeRangesValid,
                info.unicodeRanges[0], info.unicodeRanges[3], info.panose[0], info.panose[9]),
            row(102, 103, 104, 131, 106 << 16 | 107, 102 << 16 | 103, 0, 1, 121 << 16 | 122,
                127 << 16 | 128, 0, 120));
  const auto scaled = [](int word) { return (100 + word) * 1000 / 2048; };
  EXPECT_EQ(row(info.xMin, info.yMin, info.xMax, info.yMax), row(-292, -293, 2, 1000));
  EXPECT_EQ(row(info.ascender, info.descender, info.lineGap, info.verticalAscender,
                info.verticalDescender, info.typoAscender, info.typoDescender, info.typoLineGap,
                info.winAscent, info.winDescent),
            row(scaled(2), scaled(3), scaled(4), scaled(2), scaled(3), scaled(34), scaled(35),
                scaled(36), scaled(37), scaled(38)));
}

TEST(GlobalInfo, WhatIsMissingIsZero) {
  struct Case {
    FontImage image;
    unsigned weight;
    int typo, win, ranges, symbol;
  };
  Bytes os2 = countingTable(39);
  os2.put16(74, 0xFFFF).put16(76, 0xFFFF);
  const Bytes symbol = cmapTable({{3, 0, cmapFormat4({{-1, -1, 1, 0}})}});
  for (const Case& tested :
       {Case{FontImage(), 0, 0, 0, 0, 0},
        Case{FontImage().table("OS/2", os2), 102, 134, 65535, 1, 0},
        Case{FontImage().table("OS/2", os2).lie("OS/2", 0, -10), 102, 0, 0, 1, 0},
        Case{FontImage().table("OS/2", os2).lie("OS/2", 0, -9), 102, 134, 65535, 1, 0},
        Case{FontImage().table("OS/2", os2).table("cmap", symbol), 102, 134, 65535, 0, 1},
        Case{FontImage().table("OS/2", countingTable(20)), 102, 0, 0, 1, 0}}) {
    const OpenFont font(tested.image);
    GlobalFontInfo info;
    getGlobalFontInfo(font.get(), &info);
    EXPECT_EQ(row(info.weight, info.typoAscender, info.winAscent, info.winDescent,
                  info.unicodeRangesValid, info.symbolEncoded, info.ascender, info.italicAngle),
              row(tested.weight, tested.typo, tested.win, tested.win, tested.ranges, tested.symbol,
                  0, 0));
  }
  EXPECT_STREQ(unicodeRangeNames[69], "Specials");
}

}  // namespace
