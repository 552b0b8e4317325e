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
#include "truetype/bytes.h"
#include "truetype/reader/glyphs.h"
#include "truetype/reader/metrics.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

struct PeerFont {
  const char* name;
  const char* file;
  bool scalesComponents;  // has composites whose offsets the peer does not scale
};
const PeerFont kFonts[] = {
    {"DejaVuSans", "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", false},
    {"FreeSerif", "/usr/share/fonts/truetype/freefont/FreeSerif.ttf", true},
    {"LiberationSans", "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf", false},
    {"WenQuanYi", "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc", true},
};

// The rule for composites once more, as plainly as it reads, over points in 64 bits: each step cuts
// towards zero, the last one down.
struct Model {
  const TrueTypeFont* font;
  bool scaled = false;       // a matrix other than the identity was met
  std::uint32_t lender = 0;  // the glyph whose metrics the outermost one takes, or that glyph

  std::vector<GlyphPoint> outline(std::uint32_t glyph) {
    const std::uint8_t* bytes = font->tables[kSlotGlyf] + font->glyphOffsets[glyph];
    const bool none = font->glyphOffsets[glyph] == font->glyphOffsets[glyph + 1];
    if (none || readInt16(bytes, 0) >= 0) {
      lender = glyph;
      GlyphPoint* points = nullptr;
      const std::int32_t count = getGlyphPoints(font, glyph, &points);
      const auto held = owned(points);
      return {points, points + count};
    }
    std::vector<GlyphPoint> all;
    std::uint32_t lent = glyph;
    int flags = 0x20;
    for (std::size_t at = 10; (flags & 0x20) != 0;) {
      flags = readUInt16(bytes, at);
      const std::vector<GlyphPoint> part = outline(readUInt16(bytes, at + 2));
      if ((flags & 0x200) != 0) lent = lender;
      std::int64_t e, f, a = 65536, b = 0, c = 0, d = 65536;
      if ((flags & 1) != 0) {
        e = readInt16(bytes, at + 4), f = readInt16(bytes, at + 6), at += 8;
      } else {
        e = bytes[at + 4], f = bytes[at + 5], at += 6;
        if ((flags & 2) != 0) e -= e > 127 ? 256 : 0, f -= f > 127 ? 256 : 0;
      }
      const auto next = [&] { return at += 2, std::int64_t{readInt16(bytes, at - 2)} * 4; };
      if ((flags & 8) != 0) {
        a = d = next();
      } else if ((flags & 0x40) != 0) {
        a = next(), d = next();
      } else if ((flags & 0x80) != 0) {
        a = next(), b = next(), c = next(), d = next();
      }
      scaled = scaled || a != 65536 || b != 0 || c != 0 || d != 65536;
      const auto factor = [](std::int64_t p, std::int64_t q) {
        p = std::abs(p), q = std::abs(q);
        return std::max(p, q) * (std::abs(p - q) <= 33 ? 2 : 1);
      };
      const auto along = [](std::int64_t p, std::int64_t x, std::int64_t q, std::int64_t y,
                            std::int64_t by, std::int64_t move) {
        const std::int64_t sum = p * x * 65536 / by + q * y * 65536 / by + move * 65536;
        return static_cast<std::int16_t>((by * sum / 65536) >> 16);
      };
      const std::int64_t m = factor(a, b), n = factor(c, d);
      for (const GlyphPoint& point : part) {
        all.push_back({point.flags, along(a, point.x, c, point.y, m, e),
                       along(b, point.x, d, point.y, n, f)});
      }
    }
    lender = lent;
    return all;
  }
};

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
  Bytes image;
  FT_Library library = nullptr;
  FT_Face face = nullptr;
};

TEST_P(PeerTest, OutlinesAndAdvances) {
  const OpenFont font(image);
  ASSERT_EQ(font.result, FontResultOk);
  ASSERT_EQ(font->numGlyphs, static_cast<std::uint32_t>(face->num_glyphs));
  std::uint32_t shifted = 0, scaled = 0;
  for (std::uint32_t glyph = 0; glyph < font->numGlyphs; ++glyph) {
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
    Model model{font.get()};
    const std::vector<GlyphPoint> expected = model.outline(glyph);
    scaled += model.scaled ? 1 : 0;
    // The peer moves an outline so that it starts at its left side bearing.
    readGlyphMetrics(font.get(), model.lender, &metrics);
    const bool hasBox = readGlyphBox(font.get(), model.lender, &metrics);
    const int shift = hasBox ? metrics.leftSideBearing - metrics.xMin : 0;
    shifted += shift != 0 && count > 0 ? 1 : 0;
    int contours = 0;
    for (std::int32_t i = 0; i < count; ++i) {
      const GlyphPoint& point = points[static_cast<std::size_t>(i)];
      const GlyphPoint& told = expected[static_cast<std::size_t>(i)];
      ASSERT_TRUE(point.x == told.x && point.y == told.y && point.flags == told.flags) << glyph;
      ASSERT_EQ(point.flags & 1, static_cast<unsigned>(FT_CURVE_TAG(peer.tags[i]) & 1)) << glyph;
      if ((point.flags & kPointEndsContour) != 0) {
        ASSERT_EQ(peer.contours[contours++], i);
      }
      if (model.scaled) continue;
      ASSERT_EQ(point.x + shift, peer.points[i].x) << glyph << ' ' << i;
      ASSERT_EQ(point.y, peer.points[i].y) << glyph << ' ' << i;
    }
  }
  EXPECT_EQ(scaled > 0, GetParam().scalesComponents);
  RecordProperty("shifted", static_cast<int>(shifted));
  RecordProperty("scaled", static_cast<int>(scaled));
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
