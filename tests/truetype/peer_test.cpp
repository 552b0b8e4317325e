// Fonts in use, beside FreeType, HarfBuzz and fontTools: every outline, mapped code, advance and
// kerning pair, and of subsets, that a character has in the new font what it had in the source.
#include <ft2build.h>
#include FT_ADVANCES_H
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include <gtest/gtest.h>
#include <hb-ot.h>
#include <hb.h>

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

// One font image in both peers.
class Peers {
 public:
  Peers(const Bytes& image, std::uint32_t index) {
    EXPECT_EQ(FT_Init_FreeType(&library_), 0);
    const auto size = static_cast<unsigned>(image.size());
    EXPECT_EQ(FT_New_Memory_Face(library_, image.data(), size, static_cast<FT_Long>(index), &face),
              0);
    hb_blob_t* blob = hb_blob_create(reinterpret_cast<const char*>(image.data()), size,
                                     HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    hb_face_t* made = hb_face_create(blob, index);
    font = hb_font_create(made);
    hb_face_destroy(made);
    hb_blob_destroy(blob);
  }
  Peers(const Peers&) = delete;
  Peers& operator=(const Peers&) = delete;
  ~Peers() {
    hb_font_destroy(font);
    FT_Done_FreeType(library_);
  }
  const FT_Outline& outline(FT_UInt glyph, long flags) const {
    EXPECT_EQ(FT_Load_Glyph(face, glyph, static_cast<FT_Int32>(flags)), 0);
    return face->glyph->outline;
  }
  // All that a rasterizer and a shaper go by, in font units and as the hints make it for 16 pixels.
  std::vector<long> look(FT_UInt glyph) const {
    hb_glyph_extents_t box{};
    hb_font_get_glyph_extents(font, glyph, &box);
    std::vector<long> seen{hb_font_get_glyph_h_advance(font, glyph), box.x_bearing, box.y_bearing,
                           box.width, box.height};
    EXPECT_EQ(FT_Set_Pixel_Sizes(face, 0, 16), 0);
    for (const auto flags : {FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING, FT_LOAD_NO_AUTOHINT}) {
      const FT_Outline& loaded = outline(glyph, flags);
      const FT_Glyph_Metrics& metrics = face->glyph->metrics;
      seen.insert(seen.end(), {metrics.horiAdvance, metrics.horiBearingX});
      seen.insert(seen.end(), loaded.contours, loaded.contours + loaded.n_contours);
      for (int i = 0; i < loaded.n_points; ++i) {
        const FT_Vector point = loaded.points[i];
        seen.insert(seen.end(), {FT_CURVE_TAG(loaded.tags[i]), point.x, point.y});
      }
    }
    return seen;
  }
  FT_Face face = nullptr;
  hb_font_t* font = nullptr;

 private:
  FT_Library library_ = nullptr;
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
    peers = std::make_unique<Peers>(image, GetParam().face);
    face = peers->face;
  }

  // Whether some component has more than an offset, and the glyph whose metrics this one takes.
  struct Kind {
    bool scales;
    FT_UInt lender;
  };
  Kind kindOf(FT_UInt glyph) {
    peers->outline(glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_RECURSE);
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

  // The codes and glyphs of a subset: all composites, or alphabets and Chinese.
  struct Chosen {
    std::vector<std::uint16_t> codes{0}, glyphs{0};
  };
  Chosen choose(bool composites) const {
    Chosen chosen;
    const auto take = [&](std::uint32_t code, std::uint32_t glyph) {
      chosen.codes.push_back(static_cast<std::uint16_t>(code));
      chosen.glyphs.push_back(static_cast<std::uint16_t>(glyph));
    };
    for (std::uint32_t glyph = 1; composites && glyph < ours->numGlyphs; ++glyph) {
      const std::uint32_t start = ours->glyphOffsets[glyph];
      if (start == ours->glyphOffsets[glyph + 1]) continue;
      if (readInt16(ours->tables[kSlotGlyf], start) < 0) take(glyph, glyph);
    }
    for (std::uint16_t code = 0x20; !composites && code < 0xA000; ++code) {
      if (code == 0x530) code = 0x4E00;
      const std::uint16_t glyph = ours->cmapLookup(ours->cmapSubtable, code);
      if (glyph != 0) take(code, glyph);
    }
    EXPECT_TRUE(composites || chosen.codes.size() > 300);
    return chosen;
  }

  std::string file;
  Bytes image;
  std::unique_ptr<OpenFont> font;
  std::unique_ptr<Peers> peers;
  const TrueTypeFont* ours = nullptr;
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
    const FT_Outline& peer = peers->outline(glyph, FT_LOAD_NO_SCALE | FT_LOAD_NO_HINTING);
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

TEST_P(PeerTest, SubsetsHaveTheSourcesCharacters) {
  const auto subsetOf = [](const TrueTypeFont* from, Chosen& chosen) {
    std::uint8_t* bytes = nullptr;
    std::uint32_t length = 0;
    EXPECT_EQ(createTrueTypeSubset(from, &bytes, &length, chosen.glyphs.data(), chosen.codes.data(),
                                   static_cast<std::int32_t>(chosen.codes.size()), 0, nullptr,
                                   SubsetKeepOS2),
              WriterResultOk);
    EXPECT_EQ(checkFile(bytes, length), 0);
    Bytes copy;
    copy.assign(bytes, bytes + length);
    std::free(bytes);
    return copy;
  };
  for (const bool composites : {false, true}) {
    const Chosen before = choose(composites);
    Chosen chosen = before;
    const std::int64_t start = cHeap.mostBytesHeld = cHeap.bytesHeld;
    const Bytes made = subsetOf(ours, chosen);
    const std::int64_t peak = cHeap.mostBytesHeld - start;
    EXPECT_EQ(cHeap.bytesHeld, start);

    // A subset of the subset is the same font once more.
    const OpenFont opened(made);
    ASSERT_EQ(opened.result, FontResultOk);
    Chosen again = chosen;
    EXPECT_EQ(subsetOf(opened.get(), again), made);
    EXPECT_EQ(again.glyphs, chosen.glyphs);
    // At its peak the work holds the glyphs' bytes once, the other tables twice and 200 bytes a
    // glyph.
    const auto length = static_cast<std::int64_t>(made.size());
    EXPECT_GT(peak, length);
    EXPECT_LE(peak, 2 * length - static_cast<std::int64_t>(opened->tableLengths[kSlotGlyf]) +
                        200 * static_cast<long>(opened->numGlyphs));

    const Peers fresh(made, 0);
    ASSERT_NE(fresh.face, nullptr);
    EXPECT_EQ(row(fresh.face->units_per_EM, fresh.face->ascender),
              row(face->units_per_EM, face->ascender));
    for (std::size_t i = 0; i < chosen.codes.size(); ++i) {
      hb_codepoint_t shaped = 0;
      hb_font_get_nominal_glyph(fresh.font, chosen.codes[i], &shaped);
      ASSERT_EQ(shaped, chosen.glyphs[i]) << chosen.codes[i];
      ASSERT_EQ(FT_Get_Char_Index(fresh.face, chosen.codes[i]), shaped) << chosen.codes[i];
      ASSERT_EQ(fresh.look(shaped), peers->look(before.glyphs[i])) << chosen.codes[i];
    }
  }
}

std::string caseName(const testing::TestParamInfo<PeerFont>& tested) { return tested.param.name; }
INSTANTIATE_TEST_SUITE_P(Fonts, PeerTest, testing::ValuesIn(kFonts), caseName);

}  // namespace
