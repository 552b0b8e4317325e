// Fonts in use, compared with FreeType and fontTools: every outline, mapped code, advance and
// kerning pair. Their subsets have the properties of all subsets, and take little memory.
#include <ft2build.h>
#include FT_ADVANCES_H
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <sstream>

#include "command/support/process.h"
#include "fuzz/font_properties.h"
#include "tests/support/c_heap.h"
#include "tests/truetype/font_image.h"
#include "truetype/reader/kerning.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

struct PeerFont {
  const char* name;
  const char* file;
  std::uint32_t face;
  std::size_t pairs;  // at least so many that are kerned
};
void PrintTo(const PeerFont& font, std::ostream* out) { *out << font.name; }
const PeerFont kFonts[] = {
    {"DejaVuSans", "dejavu/DejaVuSans.ttf", 0, 1000},
    {"FreeSerif", "freefont/FreeSerif.ttf", 0, 10000},
    {"LiberationSans", "liberation/LiberationSans-Regular.ttf", 0, 500},
    {"WenQuanYi", "wqy/wqy-microhei.ttc", 0, 0},
    {"WenQuanYiSecondFace", "wqy/wqy-microhei.ttc", 1, 0},
};

struct PeerTest : testing::TestWithParam<PeerFont> {
  void SetUp() override {
    file = std::string("/usr/share/fonts/truetype/") + GetParam().file;
    if (!std::filesystem::exists(file)) GTEST_SKIP() << file << " is not installed";
    std::ifstream stream(file, std::ios::binary);
    image.text({std::istreambuf_iterator<char>(stream), {}});
    font = std::make_unique<OpenFont>(image, GetParam().face);
    ASSERT_EQ(font->result, FontResultOk);
    ours = font->get();
    ASSERT_EQ(FT_Init_FreeType(&library), 0);
    ASSERT_EQ(FT_New_Memory_Face(library, image.data(), static_cast<FT_Long>(image.size()),
                                 static_cast<FT_Long>(GetParam().face), &face),
              0);
  }
  void TearDown() override { FT_Done_FreeType(library); }
  const FT_Outline& outline(FT_UInt glyph, FT_Int32 flags) const {
    EXPECT_EQ(FT_Load_Glyph(face, glyph, flags), 0);
    return face->glyph->outline;
  }

  // Whether some component has more than an offset, and the glyph whose metrics this one takes.
  struct Kind {
    bool scales;
    FT_UInt lender;
  };
  Kind kindOf(FT_UInt glyph) {
    outline(glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_RECURSE);
    std::vector<std::pair<FT_Int, FT_UInt>> parts(face->glyph->num_subglyphs);
    for (FT_UInt i = 0; i < parts.size(); ++i) {
      FT_Int x, y;
      FT_Matrix matrix;
      FT_Get_SubGlyph_Info(face->glyph, i, &parts[i].first, &parts[i].second, &x, &y, &matrix);
    }
    Kind kind{false, glyph};
    for (const auto& [index, flags] : parts) {
      const Kind inner = kindOf(static_cast<FT_UInt>(index));
      kind.scales =
          kind.scales || inner.scales ||
          (flags & (FT_SUBGLYPH_FLAG_SCALE | FT_SUBGLYPH_FLAG_XY_SCALE | FT_SUBGLYPH_FLAG_2X2)) !=
              0;
      if ((flags & FT_SUBGLYPH_FLAG_USE_MY_METRICS) != 0) kind.lender = inner.lender;
    }
    return kind;
  }

  std::string file;
  Bytes image;
  std::unique_ptr<OpenFont> font;
  const TrueTypeFont* ours = nullptr;
  FT_Library library = nullptr;
  FT_Face face = nullptr;
};

TEST_P(PeerTest, OutlinesAndAdvances) {
  ASSERT_EQ(ours->numGlyphs, static_cast<std::uint32_t>(face->num_glyphs));
  for (std::uint32_t glyph = 0; glyph < ours->numGlyphs; ++glyph) {
    SCOPED_TRACE(glyph);
    const Kind kind = kindOf(glyph);
    GlyphMetrics metrics{};
    readGlyphMetrics(ours, glyph, &metrics);
    FT_Fixed advance = 0;
    ASSERT_EQ(FT_Get_Advance(face, glyph, FT_LOAD_NO_SCALE, &advance), 0);
    ASSERT_EQ(metrics.advanceWidth, advance);

    // FreeType moves an outline so that it starts at the left side bearing.
    readGlyphMetrics(ours, kind.lender, &metrics);
    const bool hasBox = readGlyphBox(ours, kind.lender, &metrics);
    const int shift = hasBox ? metrics.leftSideBearing - metrics.xMin : 0;
    const FT_Outline& peer = outline(glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING);
    const std::vector<GlyphPoint> points = pointsOf(ours, glyph);
    ASSERT_EQ(static_cast<int>(points.size()), peer.n_points);
    std::vector<short> ends;
    for (std::size_t i = 0; i < points.size(); ++i) {
      const GlyphPoint& point = points[i];
      ASSERT_EQ(point.flags & 1, static_cast<unsigned>(FT_CURVE_TAG(peer.tags[i]) & 1));
      if ((point.flags & kPointEndsContour) != 0) ends.push_back(static_cast<short>(i));
      if (kind.scales) continue;  // FreeType does not scale their offsets
      ASSERT_EQ(row(point.x + shift, point.y), row(peer.points[i].x, peer.points[i].y));
    }
    ASSERT_EQ(ends, std::vector<short>(peer.contours, peer.contours + peer.n_contours));
  }
}

TEST_P(PeerTest, CharacterMap) {
  for (const FT_CharMap map : std::vector(face->charmaps, face->charmaps + face->num_charmaps)) {
    if (map->platform_id * 16 + map->encoding_id == 0x31) FT_Set_Charmap(face, map);
  }
  ASSERT_EQ(face->charmap->platform_id * 16 + face->charmap->encoding_id, 0x31);
  ASSERT_EQ(ours->cmapType, 11);
  for (std::uint32_t code = 0; code < 0x10000; ++code) {
    ASSERT_EQ(ours->cmapLookup(ours->cmapSubtable, static_cast<std::uint16_t>(code)),
              FT_Get_Char_Index(face, code))
        << code;
  }
}

TEST_P(PeerTest, KerningPairs) {
  const std::string python = ULM_FONTTOOLS_PYTHON;
  if (python.empty()) GTEST_SKIP() << "fontTools is not installed";
  const auto listed = ulm::tools::runProcess(python, {"-c", R"(import sys
from fontTools.ttLib import TTFont
font = TTFont(sys.argv[1], fontNumber=0)
for table in font["kern"].kernTables if "kern" in font else []:
    for (left, right), value in table.kernTable.items():
        print(font.getGlyphID(left), font.getGlyphID(right), value))",
                                                      file});
  ASSERT_EQ(listed.exitCode, 0);
  std::map<std::pair<std::uint32_t, std::uint32_t>, int> pairs;  // the last table wins
  std::istringstream words(listed.output);
  std::uint32_t left, right;
  for (int value; words >> left >> right >> value;) pairs[{left, right}] = value;
  EXPECT_GE(pairs.size(), GetParam().pairs);
  EXPECT_EQ(ours->kernType, pairs.empty() ? 0 : 2);
  std::mt19937 random(2);  // pairs that are not there, for the most
  for (int i = 0; i < 100000; ++i) {
    left = static_cast<std::uint32_t>(random() % ours->numGlyphs);
    pairs.insert({{left, static_cast<std::uint32_t>(random() % ours->numGlyphs)}, 0});
  }
  for (const auto& [pair, value] : pairs) {
    std::int32_t x = 0, y = 0;
    constexpr std::int32_t kUnscaled = 1000;
    getPairKerning(ours->kernType, ours->kernTableCount, ours->kernTables, kUnscaled, 0, pair.first,
                   pair.second, &x, &y);
    ASSERT_EQ(x, value) << pair.first << ' ' << pair.second;
  }
}

TEST_P(PeerTest, SubsetsAreWholeAndTakeLittleMemory) {
  std::vector<std::uint16_t> glyphs, codes;  // every third
  for (std::uint32_t glyph = 0; glyph < ours->numGlyphs; glyph += 3) {
    codes.push_back(static_cast<std::uint16_t>(32 + glyphs.size()));
    glyphs.push_back(static_cast<std::uint16_t>(glyph));
  }
  EXPECT_EQ(checkSubset(ours, glyphs, SubsetKeepOS2), 0);
  const auto subsetOf = [&](const TrueTypeFont* from, std::vector<std::uint16_t>& ids) {
    std::uint8_t* bytes = nullptr;
    std::uint32_t length = 0;
    EXPECT_EQ(
        createTrueTypeSubset(from, &bytes, &length, ids.data(), codes.data(),
                             static_cast<std::int32_t>(codes.size()), 0, nullptr, SubsetKeepOS2),
        WriterResultOk);
    Bytes copy;
    copy.assign(bytes, bytes + length);
    std::free(bytes);
    return copy;
  };
  const std::int64_t start = cHeap.mostBytesHeld = cHeap.bytesHeld;
  const Bytes made = subsetOf(ours, glyphs);
  const std::int64_t peak = cHeap.mostBytesHeld - start;
  EXPECT_EQ(cHeap.bytesHeld, start);

  // A subset of the subset is the same font once more.
  const OpenFont opened(made);
  ASSERT_EQ(opened.result, FontResultOk);
  std::vector<std::uint16_t> again = glyphs;
  EXPECT_EQ(subsetOf(opened.get(), again), made);
  EXPECT_EQ(again, glyphs);
  // At its peak the work holds the glyphs' bytes once, the other tables twice and 200 bytes a
  // glyph.
  const auto length = static_cast<std::int64_t>(made.size());
  EXPECT_GT(peak, length);
  EXPECT_LE(peak, 2 * length - static_cast<std::int64_t>(opened->tableLengths[kSlotGlyf]) +
                      200 * static_cast<long>(opened->numGlyphs));
}

std::string caseName(const testing::TestParamInfo<PeerFont>& tested) { return tested.param.name; }
INSTANTIATE_TEST_SUITE_P(Fonts, PeerTest, testing::ValuesIn(kFonts), caseName);

}  // namespace
