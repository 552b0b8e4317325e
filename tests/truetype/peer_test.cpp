// Fonts in use, beside FreeType: every outline, mapped code and advance.
#include <ft2build.h>
#include FT_ADVANCES_H
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/support/font_image.h"
#include "truetype/reader/glyphs.h"
#include "truetype/reader/metrics.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

struct PeerFont {
  const char* name;
  const char* file;
  bool scalesComponents;  // has composites whose offsets the peer does not scale; the points of
                          // these are not compared
};
const PeerFont kFonts[] = {
    {"DejaVuSans", "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", false},
    {"FreeSerif", "/usr/share/fonts/truetype/freefont/FreeSerif.ttf", true},
    {"LiberationSans", "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf", false},
    {"WenQuanYi", "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc", true},
};

constexpr FT_UInt kScales =
    FT_SUBGLYPH_FLAG_SCALE | FT_SUBGLYPH_FLAG_XY_SCALE | FT_SUBGLYPH_FLAG_2X2;

struct PeerTest : testing::TestWithParam<PeerFont> {
  void SetUp() override {
    if (!std::filesystem::exists(GetParam().file)) {
      GTEST_SKIP() << GetParam().file << " is not installed";
    }
    std::ifstream stream(GetParam().file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    image.add({bytes.begin(), bytes.end()});
    ASSERT_EQ(FT_Init_FreeType(&library), 0);
    ASSERT_EQ(
        FT_New_Memory_Face(library, image.data(), static_cast<FT_Long>(image.size()), 0, &face), 0);
  }
  void TearDown() override {
    if (face != nullptr) FT_Done_Face(face);
    if (library != nullptr) FT_Done_FreeType(library);
  }
  // What the peer says of a composite's components, and theirs.
  void look(FT_UInt glyph) {
    lender = glyph;
    ASSERT_EQ(FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_RECURSE), 0);
    struct Part {
      FT_Int index;
      FT_UInt flags;
    };
    std::vector<Part> parts(face->glyph->num_subglyphs);
    for (FT_UInt i = 0; i < parts.size(); ++i) {
      FT_Int x, y;
      FT_Matrix matrix;
      ASSERT_EQ(
          FT_Get_SubGlyph_Info(face->glyph, i, &parts[i].index, &parts[i].flags, &x, &y, &matrix),
          0);
    }
    FT_UInt lent = glyph;
    for (const Part& part : parts) {
      scaled = scaled || (part.flags & kScales) != 0;
      look(static_cast<FT_UInt>(part.index));
      if ((part.flags & FT_SUBGLYPH_FLAG_USE_MY_METRICS) != 0) lent = lender;
    }
    lender = lent;
  }
  bool scaled = false;  // some component has more than an offset
  FT_UInt lender = 0;   // the glyph whose metrics the outermost one takes, or that glyph
  Bytes image;
  FT_Library library = nullptr;
  FT_Face face = nullptr;
};

TEST_P(PeerTest, OutlinesAndAdvances) {
  const OpenFont font(image);
  ASSERT_EQ(font.result, FontResultOk);
  ASSERT_EQ(font->numGlyphs, static_cast<std::uint32_t>(face->num_glyphs));
  std::uint32_t scaledGlyphs = 0;
  for (std::uint32_t glyph = 0; glyph < font->numGlyphs; ++glyph) {
    scaled = false;
    look(glyph);
    scaledGlyphs += scaled ? 1 : 0;
    ASSERT_EQ(FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING), 0);
    const FT_Outline& peer = face->glyph->outline;
    GlyphMetrics metrics{};
    readGlyphMetrics(font.get(), glyph, &metrics);
    FT_Fixed advance = 0;
    ASSERT_EQ(FT_Get_Advance(face, glyph, FT_LOAD_NO_SCALE, &advance), 0);
    ASSERT_EQ(metrics.advanceWidth, advance) << glyph;
    GlyphPoint* given = nullptr;
    const std::int32_t count = getGlyphPoints(font.get(), glyph, &given);
    const auto points = owned(given);
    ASSERT_EQ(count, peer.n_points) << glyph;
    // The peer moves an outline so that it starts at its left side bearing.
    readGlyphMetrics(font.get(), lender, &metrics);
    const bool hasBox = readGlyphBox(font.get(), lender, &metrics);
    const int shift = hasBox ? metrics.leftSideBearing - metrics.xMin : 0;
    int contours = 0;
    for (std::int32_t i = 0; i < count; ++i) {
      const GlyphPoint& point = points[static_cast<std::size_t>(i)];
      ASSERT_EQ(point.flags & 1, static_cast<unsigned>(FT_CURVE_TAG(peer.tags[i]) & 1)) << glyph;
      if ((point.flags & kPointEndsContour) != 0) {
        ASSERT_EQ(peer.contours[contours++], i);
      }
      if (scaled) continue;
      ASSERT_EQ(point.x + shift, peer.points[i].x) << glyph << ' ' << i;
      ASSERT_EQ(point.y, peer.points[i].y) << glyph << ' ' << i;
    }
  }
  EXPECT_EQ(scaledGlyphs > 0, GetParam().scalesComponents);
}

TEST_P(PeerTest, CharacterMap) {
  const OpenFont font(image);
  for (int i = 0; i < face->num_charmaps; ++i) {
    const FT_CharMap map = face->charmaps[i];
    if (map->platform_id == 3 && map->encoding_id == 1) {
      ASSERT_EQ(FT_Set_Charmap(face, map), 0);
    }
  }
  ASSERT_EQ(face->charmap->platform_id * 16 + face->charmap->encoding_id, 0x31);
  ASSERT_EQ(font->cmapType, 11);
  for (std::uint32_t code = 0; code < 0x10000; ++code) {
    ASSERT_EQ(font->cmapLookup(font->cmapSubtable, static_cast<std::uint16_t>(code)),
              FT_Get_Char_Index(face, code))
        << code;
  }
}

std::string caseName(const testing::TestParamInfo<PeerFont>& tested) { return tested.param.name; }
INSTANTIATE_TEST_SUITE_P(Fonts, PeerTest, testing::ValuesIn(kFonts), caseName);

}  // namespace
