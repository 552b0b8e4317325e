#include "truetype/reader/names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "tests/support/font_image.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

std::string wide(const std::uint16_t* text) {  // units in hexadecimal
  std::string all;
  char unit[8];
  for (; text != nullptr && *text != 0; ++text) {
    std::snprintf(unit, sizeof unit, "%04x ", *text);
    all += unit;
  }
  return all;
}

std::string utf16(std::initializer_list<int> units) {
  const Bytes bytes = Bytes().u16(units);
  return {bytes.begin(), bytes.end()};
}

struct NamesCase {
  const char* file;
  std::vector<NameEntry> entries;  // sorted
  const char *postScript, *family;
  const char* familyWide;  // null for none
  const char* subfamily;
};

TEST(Names, ChosenAtOpen) {
  const NamesCase cases[] = {
      {"/fonts/serif.bold.ttf", {}, "serif.bold", "serif.bold", nullptr, ""},
      {".hidden", {}, ".hidden", ".hidden", nullptr, ""},
      {"dir.d/file", {}, "file", "file", nullptr, ""},
      {"dir.d/", {}, "", "", nullptr, ""},
      {"C:\\fonts\\a.ttf", {}, "C:\\fonts\\a", "C:\\fonts\\a", nullptr, ""},
      {"a",
       {{0, 0, 0, 1, utf16({0x55})},
        {1, 0, 0, 1, "mac"},
        {1, 0, 0, 2, "macsub"},
        {1, 0, 0, 6, "macps"},
        {3, 1, 1033, 1, utf16({0x57})},
        {3, 1, 1033, 2, utf16({0x58})},
        {3, 1, 1033, 6, utf16({0x57, 0x416})}},
       "W\x16",
       "U",
       "0055 ",
       "macsub"},
      {"a",
       {{1, 0, 0, 1, "mac"}, {1, 0, 0, 6, "macps"}, {3, 1, 1041, 1, utf16({0x4E00})}},
       "macps",
       "mac",
       nullptr,
       ""},
      {"a",
       {{1, 0, 1, 6, "no"}, {3, 1, 1041, 1, utf16({0x4E41, 0x42}) + "x"}, {3, 1, 0x1033, 6, "no"}},
       "a",
       "AB",
       "4e41 0042 ",
       ""},
      {"a",
       {{3, 1, 1033, 1, utf16({0x41})}, {3, 1, 1033, 2, utf16({0x42})}},
       "a",
       "A",
       "0041 ",
       "B"},
  };
  for (const NamesCase& tested : cases) {
    const OpenFont font(FontImage().table("name", nameTable(tested.entries)), tested.file);
    ASSERT_EQ(font.result, FontResultOk);
    EXPECT_STREQ(font->postScriptName, tested.postScript);
    EXPECT_STREQ(font->familyName, tested.family);
    EXPECT_EQ(font->familyNameWide != nullptr, tested.familyWide != nullptr);
    EXPECT_EQ(wide(font->familyNameWide), tested.familyWide == nullptr ? "" : tested.familyWide);
    EXPECT_STREQ(font->subfamilyName, tested.subfamily);
  }
}

TEST(Names, BisectionOnAnyOrder) {
  std::mt19937 random(7);
  for (int count = 0; count < 40; ++count) {
    std::vector<NameEntry> entries;
    for (int i = 0; i < count; ++i) entries.push_back({3, 1, i / 5, i % 5, ""});
    if (count % 2 == 1) std::shuffle(entries.begin(), entries.end(), random);
    const Bytes table = nameTable(entries);
    const auto keyOf = [](const NameEntry& entry) { return entry.languageID << 16 | entry.nameID; };
    for (int language = 0; language < 9; ++language) {
      for (int name = 0; name < 5; ++name) {
        // The search as it is told, with bounds that both move on a hit.
        int low = 0, high = count - 1;
        while (low <= high) {
          const int middle = (low + high) / 2;
          const int stored = keyOf(entries[static_cast<std::size_t>(middle)]);
          const int key = language << 16 | name;
          if (key >= stored) low = middle + 1;
          if (key <= stored) high = middle - 1;
        }
        EXPECT_EQ(
            findNameRecord(table.data(), static_cast<std::uint32_t>(count), 3, 1,
                           static_cast<std::uint16_t>(language), static_cast<std::uint16_t>(name)),
            low - high == 2 ? low - 1 : -1);
      }
    }
  }
}

TEST(Names, RecordsAndTexts) {
  const Bytes table = nameTable({{1, 0, 0, 4, ""}, {3, 1, 2, 6, utf16({0x41}) + "z"}});
  FontImage image;
  image.table("name", table).last("name");
  const OpenFont font(image);
  NameRecord* records = nullptr;
  ASSERT_EQ(getNameRecords(font.get(), &records), 2);
  EXPECT_EQ(records[0].data, nullptr);
  EXPECT_EQ(records[0].nameID, 4);
  EXPECT_EQ(records[1].platformID << 12 | records[1].encodingID << 8 | records[1].languageID << 4 |
                records[1].nameID,
            0x3126);
  EXPECT_EQ(std::string(records[1].data, records[1].data + records[1].length),
            std::string("\0Az", 3));
  releaseNameRecords(records, 2);

  std::uint16_t* units = nullptr;
  EXPECT_STREQ(owned(nameRecordText(table.data(), 1, 1, &units)).get(), "A");
  EXPECT_EQ(wide(owned(units).get()), "0041 ");
  const auto bytes = owned(nameRecordText(table.data(), 1, 0, &units));
  EXPECT_EQ(std::string(bytes.get(), 4), std::string("\0Az\0", 4));
  EXPECT_EQ(units, nullptr);

  // A string that leaves the image is empty, also for the analysis of open.
  const OpenFont longer(image.patch16("name", 6 + 12 + 8, 4));
  ASSERT_EQ(getNameRecords(longer.get(), &records), 2);
  EXPECT_EQ(records[1].length, 0);
  EXPECT_EQ(records[1].data, nullptr);
  releaseNameRecords(records, 2);
  releaseNameRecords(nullptr, 0);

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
  image.patch16("head", 18, 2048).patch16("head", 36, -600).patch16("head", 42, 2048);
  image.table("hhea", countingTable(18)).table("vhea", countingTable(18));
  image.table("OS/2", countingTable(39)).table("post", countingTable(8));
  const OpenFont font(image);
  ASSERT_EQ(font.result, FontResultOk);
  GlobalFontInfo info;
  getGlobalFontInfo(font.get(), &info);
  const auto scaled = [](int word) { return (100 + word) * 1000 / 2048; };
  EXPECT_EQ(info.family, font->familyName);
  EXPECT_EQ(info.familyWide, nullptr);
  EXPECT_EQ(info.postScript, font->postScriptName);
  EXPECT_EQ(info.subfamily, font->subfamilyName);
  EXPECT_EQ(info.weight, 102u);
  EXPECT_EQ(info.width, 103u);
  EXPECT_EQ(info.typeFlags, 104);
  EXPECT_EQ(info.selection, 131);
  EXPECT_EQ(info.pitch, 106u << 16 | 107);
  EXPECT_EQ(info.italicAngle, 102 << 16 | 103);
  EXPECT_EQ(info.xMin, -292);
  EXPECT_EQ(info.yMax, 1000);
  EXPECT_EQ(info.ascender, scaled(2));
  EXPECT_EQ(info.lineGap, scaled(4));
  EXPECT_EQ(info.verticalDescender, scaled(3));
  EXPECT_EQ(info.typoAscender, scaled(34));
  EXPECT_EQ(info.typoLineGap, scaled(36));
  EXPECT_EQ(info.winDescent, scaled(38));
  EXPECT_EQ(info.symbolEncoded, 0);
  EXPECT_EQ(info.unicodeRangesValid, 1);
  EXPECT_EQ(info.unicodeRanges[3], 127u << 16 | 128);
  EXPECT_EQ(info.panose[0] << 8 | info.panose[9], 120);
}

TEST(GlobalInfo, WhatIsMissingIsZero) {
  struct Case {
    FontImage image;
    unsigned weight;
    int typo, win, ranges, symbol;
  };
  Bytes os2 = countingTable(39);
  os2.put16(74, 0xFFFF);
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
    EXPECT_EQ(info.weight, tested.weight);
    EXPECT_EQ(info.typoAscender, tested.typo);
    EXPECT_EQ(info.winAscent, tested.win);
    EXPECT_EQ(info.unicodeRangesValid, tested.ranges);
    EXPECT_EQ(info.symbolEncoded, tested.symbol);
    EXPECT_EQ(info.ascender, 0);
    EXPECT_EQ(info.italicAngle, 0);
  }
  EXPECT_STREQ(unicodeRangeNames[69], "Specials");
}

}  // namespace
