// Opening, the record, single tables.
#include "truetype/reader/open.h"

#include <gtest/gtest.h>

#include <ostream>

#include "tests/support/font_image.h"
#include "truetype/bytes.h"
#include "truetype/reader/tables.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

constexpr std::uint32_t tag(const char (&text)[5]) {
  return static_cast<std::uint32_t>(text[0] << 24 | text[1] << 16 | text[2] << 8 | text[3]);
}

struct OpenCase {
  const char* name;
  Bytes image;
  std::uint32_t face;
  FontResult expected;
};
void PrintTo(const OpenCase& tested, std::ostream* out) { *out << tested.name; }

Bytes signed32(std::uint32_t signature) {
  Bytes image = FontImage().build();
  return Bytes().u32(signature).add({image.begin() + 4, image.end()});
}
Bytes cut(Bytes image, std::size_t size) {
  image.resize(size);
  return image;
}
const Bytes kSixEntryDirectory = cut(FontImage().build(), 12 + 16 * 6);

const OpenCase kOpenCases[] = {
    {"Plain", FontImage().build(), 0xFFFFFFFF, FontResultOk},
    {"True", signed32(0x74727565), 7, FontResultOk},
    {"OtherSignature", signed32(0x4F54544F), 0, FontResultBadFormat},
    {"ZeroSignature", signed32(0), 0, FontResultBadFormat},
    {"ThreeBytes", Bytes().u16({1}).u8(0), 0, FontResultBadFormat},
    {"ThirdOfThree", FontImage().collection(3), 2, FontResultOk},
    {"FourthOfThree", FontImage().collection(3), 3, FontResultBadFaceIndex},
    {"CollectionTwo", FontImage().collection(1, 0x00020000), 0, FontResultOk},
    {"CollectionThree", FontImage().collection(1, 0x00030000), 0, FontResultBadFormat},
    {"CollectionVersionCut", cut(FontImage().collection(1), 7), 5, FontResultBadFormat},
    {"CollectionFaceFirst", cut(FontImage().collection(3), 12), 3, FontResultBadFaceIndex},
    {"CollectionTableCut", cut(FontImage().collection(3), 23), 2, FontResultBadFormat},
    {"FaceOutside", cut(FontImage().collection(3), 24), 2, FontResultBadFormat},
    {"NoTables", Bytes().u32(0x00010000).u16({0, 0, 0, 0}), 0, FontResultBadFormat},
    {"DirectoryOnly", kSixEntryDirectory, 0, FontResultBadFormat},
    {"NoCmap", FontImage().without("cmap").build(), 0, FontResultBadFormat},
    {"NoName", FontImage().without("name").build(), 0, FontResultBadFormat},
    {"LocaTwo", FontImage().patch16("head", 50, 2).build(), 0, FontResultBadFormat},
    {"LocaMinusOne", FontImage().patch16("head", 50, -1).build(), 0, FontResultBadFormat},
    {"NoEm", FontImage().patch16("head", 18, 0).build(), 0, FontResultBadFormat},
    {"EmptyGlyf", FontImage().table("glyf", {}).build(), 0, FontResultOk},
    {"ShortHeadInside", FontImage().lie("head", 0, -54).build(), 0, FontResultOk},
    {"HeadCut", FontImage().table("head", Bytes().zeros(51).put16(18, 9)).last("head").build(), 0,
     FontResultBadFormat},
    {"GlyfTooLong", FontImage().last("glyf").lie("glyf", 0, 1).build(), 0, FontResultBadFormat},
    {"GlyfFarAway", FontImage().lie("glyf", 0x7FFFFFFF, 0).build(), 0, FontResultBadFormat},
    {"NameRecordsCut", FontImage().patch16("name", 2, 300).last("name").build(), 0,
     FontResultBadFormat},
    {"CmapRecordsCut", FontImage().patch16("cmap", 2, 300).last("cmap").build(), 0,
     FontResultBadFormat},
};

struct Opening : testing::TestWithParam<OpenCase> {};
TEST_P(Opening, Result) {
  const OpenFont font(GetParam().image, GetParam().face);
  EXPECT_EQ(font.result, GetParam().expected);
  EXPECT_EQ(font.get() != nullptr, GetParam().expected == FontResultOk);
}
std::string caseName(const testing::TestParamInfo<OpenCase>& tested) { return tested.param.name; }
INSTANTIATE_TEST_SUITE_P(Cases, Opening, testing::ValuesIn(kOpenCases), caseName);

TEST(OpenFontTest, Arguments) {
  TrueTypeFont unused, *font = &unused;
  std::uint8_t image[4] = {};
  EXPECT_EQ(openTrueTypeFont("x", nullptr, 4, 0, &font), FontResultBadArgument);
  EXPECT_EQ(font, nullptr);
  EXPECT_EQ(openTrueTypeFont("x", image, 0, 0, &font), FontResultBadArgument);
  EXPECT_EQ(openTrueTypeFont("x", image, -1, 0, &font), FontResultBadArgument);
}

TEST(OpenFontTest, Record) {
  OpenFont font(FontImage().collection(2), 1);
  ASSERT_EQ(font.result, FontResultOk);
  EXPECT_EQ(font->signature, 0x74746663u);
  EXPECT_STREQ(font->fileName, "/f/Test.ttf");
  EXPECT_EQ(font->directoryOffset, 20u);
  EXPECT_EQ(font->tableCount, 6u);
  EXPECT_EQ(font->numGlyphs, 3u);
  EXPECT_EQ(font->unitsPerEm, 1000);
  EXPECT_EQ(font->numberOfHMetrics, 0u);
  EXPECT_EQ(font->numOfLongVerMetrics, 0u);
  EXPECT_EQ(font->kernType, 0);
  EXPECT_EQ(font->kernTables, nullptr);
  font.mutableFont()->signature = 0;
  closeTrueTypeFont(font.mutableFont());
  EXPECT_EQ(font->numGlyphs, 3u);
  font.mutableFont()->signature = 0x74746663;
}

TEST(OpenFontTest, Loca) {
  struct Case {
    int maxp;
    std::size_t entries;
    int format;
    std::uint32_t glyphs;
  };
  for (const Case& tested : {Case{100, 51, 0, 50}, Case{100, 51, 1, 50}, Case{100, 500, 0, 100},
                             Case{9, 1, 1, 0}, Case{9, 0, 0, 0}, Case{0xFFFF, 9, 0, 8}}) {
    Bytes loca;
    for (std::size_t i = 0; i < tested.entries; ++i) {
      const int value = static_cast<int>((i * 0x9001) & 0xFFFF);  // neither rising nor inside glyf
      tested.format == 0 ? loca.u16({value}) : loca.u32(0xFFFF0000u + static_cast<unsigned>(value));
    }
    loca.u8(1);  // half an entry more counts for nothing
    const OpenFont font(FontImage().loca(loca, tested.format).patch16("maxp", 4, tested.maxp));
    ASSERT_EQ(font.result, FontResultOk);
    EXPECT_EQ(font->numGlyphs, tested.glyphs);
    for (std::uint32_t i = 0; i <= tested.glyphs && tested.entries > 0; ++i) {
      const std::uint32_t value = (i * 0x9001) & 0xFFFF;
      EXPECT_EQ(font->glyphOffsets[i], tested.format == 0 ? 2 * value : 0xFFFF0000u + value);
    }
    if (tested.entries == 0) {
      EXPECT_EQ(font->glyphOffsets[0], 0u);
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
  EXPECT_EQ(tableBySlot(font.get(), kSlotHmtx), nullptr);
  EXPECT_EQ(tableLengthBySlot(font.get(), kSlotHmtx), 0u);
  EXPECT_EQ(tableBySlot(font.get(), kSlotVhea), nullptr);
  EXPECT_EQ(tableLengthBySlot(font.get(), kSlotVhea), 0u);
}

TEST(Tables, FindAndCopy) {
  FontImage image;
  image.also("zzzz", Bytes().text("first")).also("zzzz", Bytes().text("second"));
  image.also("none", {}).also("post", {}).also("GSUB", Bytes().u8(1)).also("GSUB", Bytes().u8(2));
  image.also("away", Bytes().u8(0)).lie("away", 0, 1);
  const OpenFont font(image);
  ASSERT_EQ(font.result, FontResultOk);
  struct Case {
    std::uint32_t tag;
    bool found;
    std::string copy;
  };
  for (const Case& tested :
       {Case{tag("zzzz"), true, "first"}, Case{tag("GSUB"), true, "\x02"},
        Case{tag("none"), true, ""}, Case{tag("post"), false, ""}, Case{tag("kern"), false, ""},
        Case{tag("away"), false, ""}, Case{tag("gone"), false, ""}}) {
    std::uint32_t length = 99;
    const auto copy = owned(copyTableByTag(font.get(), tested.tag, &length));
    EXPECT_EQ(findTableByTag(font.get(), tested.tag) != nullptr, tested.found) << tested.tag;
    EXPECT_EQ(copy != nullptr, tested.found);
    EXPECT_EQ(std::string(copy.get(), copy.get() + length), tested.copy);
  }
  EXPECT_EQ(findTableByTag(font.get(), tag("cmap")), tableBySlot(font.get(), 7));
  EXPECT_EQ(tableLengthBySlot(font.get(), 2), 54u);
}

TEST(Tables, Slots) {
  const char tags[17][5] = {"maxp", "glyf", "head", "loca", "name", "hhea", "hmtx", "cmap", "vhea",
                            "vmtx", "OS/2", "post", "kern", "cvt ", "prep", "fpgm", "GSUB"};
  for (int slot = 0; slot < 17; ++slot) EXPECT_EQ(tableSlotForTag(tag(tags[slot])), slot);
  EXPECT_EQ(tableSlotForTag(tag("cvt\0")), -1);
}

TEST(Values, ReadAndScale) {
  const std::uint8_t bytes[] = {9, 0xFE, 0xDC, 0xBA, 0x98};
  EXPECT_EQ(readUInt16(bytes, 1), 0xFEDC);
  EXPECT_EQ(readInt16(bytes, 1), -0x124);
  EXPECT_EQ(readUInt32(bytes, 1), 0xFEDCBA98u);
  EXPECT_EQ(readInt32(bytes, 1), static_cast<std::int32_t>(0xFEDCBA98u));
  EXPECT_EQ(swapBytes16(0x1234), 0x3412);
  struct Case {
    std::int32_t em, value, scaled;
  };
  for (const Case& tested :
       {Case{2048, -600, -292}, Case{2048, 2048, 1000}, Case{2048, -1, 0}, Case{1000, -77, -77},
        Case{1, 4294968, 704}, Case{0, 5, 0}, Case{-1, 0x10000000, INT32_MIN}}) {
    EXPECT_EQ(scaleToThousandths(tested.em, tested.value), tested.scaled) << tested.value;
  }
}

}  // namespace
