// Opening, the record, single tables.
#include <gtest/gtest.h>

#include <set>

#include "tests/truetype/font_image.h"
#include "truetype/truetype.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

constexpr std::uint32_t tag(const char (&text)[5]) {
  return static_cast<std::uint32_t>(text[0] << 24 | text[1] << 16 | text[2] << 8 | text[3]);
}

Bytes signed32(std::uint32_t signature) {
  Bytes image = FontImage().build();
  return Bytes().u32(signature).add({image.begin() + 4, image.end()});
}
Bytes cut(Bytes image, std::size_t size) {
  image.resize(size);
  return image;
}
Bytes ending(const char* table, const Bytes& bytes) {
  return FontImage().table(table, bytes).last(table).build();
}
const Bytes kSixEntryDirectory = cut(FontImage().build(), 12 + 16 * 6);

constexpr FontResult kOk = FontResultOk, kBad = FontResultBadFormat,
                     kNoFace = FontResultBadFaceIndex;
const struct {
  const char* name;
  Bytes image;
  std::uint32_t face;
  FontResult expected;
} kOpenCases[] = {
    {"Plain", FontImage().build(), 0xFFFFFFFF, kOk},
    {"True", signed32(0x74727565), 7, kOk},
    {"OtherSignature", signed32(0x4F54544F), 0, kBad},
    {"ZeroSignature", signed32(0), 0, kBad},
    {"ThreeBytes", Bytes().u16({1}).u8(0), 0, kBad},
    {"ThirdOfThree", FontImage().collection(3), 2, kOk},
    {"FaceOfOtherSignature", FontImage().collection(1).put16(16, 0x4F54), 0, kOk},
    {"FourthOfThree", FontImage().collection(3), 3, kNoFace},
    {"CollectionTwo", FontImage().collection(1, 0x00020000), 0, kOk},
    {"CollectionThree", FontImage().collection(1, 0x00030000), 0, kBad},
    {"CollectionVersionCut", cut(FontImage().collection(1), 7), 5, kBad},
    {"CollectionFaceFirst", cut(FontImage().collection(3), 12), 3, kNoFace},
    {"CollectionTableCut", cut(FontImage().collection(3), 23), 2, kBad},
    {"FaceOutside", cut(FontImage().collection(3), 24), 2, kBad},
    {"NoTables", Bytes().u32(0x00010000).u16({0, 0, 0, 0}), 0, kBad},
    {"DirectoryOnly", kSixEntryDirectory, 0, kBad},
    {"NoCmap", FontImage().without("cmap").build(), 0, kBad},
    {"NoName", FontImage().without("name").build(), 0, kBad},
    {"LocaTwo", FontImage().patch16("head", 50, 2).build(), 0, kBad},
    {"LocaMinusOne", FontImage().patch16("head", 50, -1).build(), 0, kBad},
    {"NoEm", FontImage().patch16("head", 18, 0).build(), 0, kBad},
    {"EmptyGlyf", FontImage().table("glyf", {}).build(), 0, kOk},
    {"ShortHeadInside", FontImage().lie("head", 0, -54).build(), 0, kOk},
    {"HeadCut", ending("head", Bytes().zeros(51).put16(18, 9)), 0, kBad},
    {"GlyfTooLong", FontImage().last("glyf").lie("glyf", 0, 1).build(), 0, kBad},
    {"GlyfFarAway", FontImage().lie("glyf", 0x7FFFFFFF, 0).build(), 0, kBad},
    {"NameRecordCut", ending("name", Bytes().u16({0, 1, 18}).zeros(11)), 0, kBad},
    {"NameRecordWhole", ending("name", Bytes().u16({0, 1, 18}).zeros(12)), 0, kOk},
    {"NameCountAlone", ending("name", Bytes().u16({0, 0})), 0, kOk},
    {"CmapRecordCut", ending("cmap", Bytes().u16({0, 1}).zeros(7)), 0, kBad},
    {"CmapRecordWhole", ending("cmap", Bytes().u16({0, 1}).zeros(8)), 0, kOk},
};

TEST(OpenFontTest, Results) {
  for (const auto& [name, image, face, expected] : kOpenCases) {
    const OpenFont font(image, face);
    EXPECT_EQ(font.result, expected) << name;
    EXPECT_EQ(font.get() != nullptr, expected == FontResultOk) << name;
  }
}

TEST(OpenFontTest, Arguments) {
  TrueTypeFont unused, *font = &unused;
  std::uint8_t image[4] = {};
  EXPECT_EQ(openTrueTypeFont("x", nullptr, 4, 0, &font), FontResultBadArgument);
  EXPECT_EQ(font, nullptr);
  EXPECT_EQ(openTrueTypeFont("x", image, 0, 0, &font), FontResultBadArgument);
  EXPECT_EQ(openTrueTypeFont("x", image, -1, 0, &font), FontResultBadArgument);
}

// Each code has a text of its own; one that is none has a text too.
template <class Result>
void expectTexts(int codes, std::size_t distinct) {
  std::set<std::string> texts;
  for (int code = -1; code <= codes; ++code) texts.insert(resultText(static_cast<Result>(code)));
  EXPECT_EQ(texts.size(), distinct + 1);
  EXPECT_EQ(texts.count(""), 0u);
}
TEST(OpenFontTest, ResultsHaveTexts) {
  expectTexts<FontResult>(9, 5);
  expectTexts<WriterResult>(13, 13);
  EXPECT_STREQ(resultText(FontResultNoMemory), "memory ran out");
  EXPECT_STREQ(resultText(WriterResultNoMemory), "memory ran out");
}

TEST(OpenFontTest, Record) {
  OpenFont font(FontImage().collection(2), 1);
  ASSERT_EQ(font.result, FontResultOk);
  EXPECT_STREQ(font->fileName, "/f/Test.ttf");
  EXPECT_EQ(font->kernTables, nullptr);
  EXPECT_EQ(
      row(font->signature, font->directoryOffset, font->tableCount, font->numGlyphs,
          font->unitsPerEm, font->numberOfHMetrics, font->numOfLongVerMetrics, font->kernType),
      row(0x74746663, 20, 6, 3, 1000, 0, 0, 0));
  font.mutableFont()->signature = 0;
  closeTrueTypeFont(font.mutableFont());
  EXPECT_EQ(font->numGlyphs, 3u);
  font.mutableFont()->signature = 0x74746663;
}

TEST(OpenFontTest, Loca) {
  const struct {
    int maxp;
    std::uint32_t entries;
    int format;
    std::uint32_t glyphs;
  } cases[] = {{100, 51, 0, 50},   {100, 51, 1, 50}, {51, 51, 1, 50},   {50, 51, 0, 50},
               {100, 500, 0, 100}, {9, 1, 1, 0},     {0xFFFF, 9, 0, 8}, {9, 0, 0, 0}};
  for (const auto& [maxp, entries, format, glyphs] : cases) {
    const auto valueOf = [](std::uint32_t i) { return i * 0x9001 & 0xFFFF; };  // anything
    Bytes loca;
    for (std::uint32_t i = 0; i < entries; ++i) {
      format == 0 ? loca.u16({static_cast<int>(valueOf(i))}) : loca.u32(0xFFFF0000u + valueOf(i));
    }
    loca.u8(1);  // half an entry more counts for nothing
    const OpenFont font(FontImage().loca(loca, format).patch16("maxp", 4, maxp));
    ASSERT_EQ(font.result, FontResultOk);
    EXPECT_EQ(font->numGlyphs, glyphs);
    for (std::uint32_t i = 0; i <= glyphs; ++i) {
      const std::uint32_t stored = format == 0 ? 2 * valueOf(i) : 0xFFFF0000u + valueOf(i);
      EXPECT_EQ(font->glyphOffsets[i], entries == 0 ? 0 : stored);
    }
  }
}

TEST(OpenFontTest, OptionalTablesThatLeaveTheImageAreAbsent) {
  const OpenFont font(FontImage()
                          .longMetrics("hhea", "hmtx", 3, Bytes().zeros(12))
                          .lie("hmtx", 0, 1000)
                          .also("vhea", Bytes().zeros(35)));
  ASSERT_EQ(font.result, FontResultOk);
  EXPECT_EQ(font->numberOfHMetrics, 3u);
  for (const std::int32_t slot : {kSlotHmtx, kSlotVhea}) {
    EXPECT_EQ(tableBySlot(font.get(), slot), nullptr);
    EXPECT_EQ(tableLengthBySlot(font.get(), slot), 0u);
  }
}

TEST(Tables, FindAndCopy) {
  FontImage image;
  image.also("zzzz", Bytes().text("first")).also("zzzz", Bytes().text("second"));
  image.also("none", {}).also("post", {}).also("GSUB", Bytes().u8(1)).also("GSUB", Bytes().u8(2));
  image.also("away", Bytes().u8(0)).lie("away", 0, 1);
  // What a copy of the table holds; no copy for null.
  const std::pair<std::uint32_t, const char*> cases[] = {
      {tag("zzzz"), "first"}, {tag("GSUB"), "\x02"},  {tag("none"), ""},     {tag("post"), nullptr},
      {tag("kern"), nullptr}, {tag("away"), nullptr}, {tag("gone"), nullptr}};
  for (const std::size_t faces : {0u, 2u}) {
    const OpenFont font(image.collection(faces), 1);
    ASSERT_EQ(font.result, FontResultOk);
    for (const auto& [wanted, bytes] : cases) {
      std::uint32_t length = 99;
      const auto copy = owned(copyTableByTag(font.get(), wanted, &length));
      EXPECT_EQ(findTableByTag(font.get(), wanted) != nullptr, bytes != nullptr) << wanted;
      EXPECT_EQ(copy != nullptr, bytes != nullptr);
      EXPECT_EQ(std::string(copy.get(), copy.get() + length), bytes == nullptr ? "" : bytes);
    }
    EXPECT_EQ(findTableByTag(font.get(), tag("cmap")), tableBySlot(font.get(), 7));
    EXPECT_EQ(tableLengthBySlot(font.get(), 2), 54u);
  }
}

TEST(Tables, Slots) {
  const char tags[17][5] = {"maxp", "glyf", "head", "loca", "name", "hhea", "hmtx", "cmap", "vhea",
                            "vmtx", "OS/2", "post", "kern", "cvt ", "prep", "fpgm", "GSUB"};
  for (int slot = 0; slot < 17; ++slot) EXPECT_EQ(tableSlotForTag(tag(tags[slot])), slot);
  EXPECT_EQ(tableSlotForTag(tag("cvt\0")), -1);
}

TEST(Values, ReadAndScale) {
  const std::uint8_t bytes[] = {9, 0xFE, 0xDC, 0xBA, 0x98};
  EXPECT_EQ(row(readUInt16(bytes, 1), readInt16(bytes, 1), readUInt32(bytes, 1),
                readInt32(bytes, 1), swapBytes16(0x1234)),
            row(0xFEDC, -0x124, 0xFEDCBA98u, 0xFEDCBA98u - (1LL << 32), 0x3412));
  const std::int32_t cases[][3] = {{2048, -600, -292},         {2048, 2048, 1000}, {2048, -1, 0},
                                   {1000, -77, -77},           {1, 4294968, 704},  {0, 5, 0},
                                   {-1, 0x10000000, INT32_MIN}};
  for (const auto& [em, value, scaled] : cases) EXPECT_EQ(scaleToThousandths(em, value), scaled);
}

}  // namespace
