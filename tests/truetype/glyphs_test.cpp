#include "truetype/reader/glyphs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <sstream>

#include "fuzz/font_properties.h"
#include "tests/support/vector_blocks.h"
#include "tests/truetype/font_image.h"
#include "truetype/reader/fixed_point.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;
// An outline: "x,y x,y; x,y;" with a semicolon after the last point of a contour, "empty" for an
// array of none, else the result and no array. It has the properties of all outlines.
std::string outlineOf(const OpenFont& font, std::uint32_t glyph, bool withFlags = false) {
  GlyphPoint* points = nullptr;
  const std::int32_t count = getGlyphPoints(font.get(), glyph, &points);
  const auto held = owned(points);
  EXPECT_EQ(checkOutline(font.get(), glyph), 0);
  if (count <= 0) return points != nullptr ? "empty" : std::to_string(count);
  std::ostringstream shown;
  for (std::int32_t i = 0; i < count; ++i) {
    const GlyphPoint& point = points[i];
    shown << (i == 0 ? "" : " ") << point.x << ',' << point.y;
    if (withFlags) shown << ':' << std::hex << (point.flags & 0x7FFF) << std::dec;
    if ((point.flags & kPointEndsContour) != 0) shown << ';';
  }
  return shown.str();
}

// Byte count, composite, points, contours; nothing for null.
std::vector<long long> countsOf(const OpenFont& font, std::uint32_t glyph) {
  const auto data = glyphOf(font.get(), glyph);
  if (data == nullptr) return {};
  return row(data->byteCount, data->isComposite, data->pointCount, data->contourCount);
}

const Bytes kTriangle = simpleGlyph({2}, {{0, 0}, {100, 0}, {50, 80}});

OpenFont fontOf(const std::vector<Bytes>& glyphs) {
  return OpenFont(FontImage().glyphs(glyphs).last("glyf"));
}

TEST(SimpleGlyph, FlagsRepeatsAndDeltas) {
  // Contour ends out of order; two bytes of instructions; a repeat; each kind of delta.
  Bytes glyph;
  glyph.u16({2, 0, 0, 0, 0, 5, 3, 2, 0xDEAD});
  glyph.u8(0x01 | 0x10 | 0x20);             // the same as before: 0, 0
  glyph.u8(0x02 | 0x10 | 0x04 | 0x20);      // bytes to add
  glyph.u8(0x02 | 0x04 | 0x08).u8(1);       // bytes to subtract, twice
  glyph.u8(0x10).u8(0x20);                  // y a word; x a word
  glyph.u8(200).u8(5).u8(255).u16({-300});  // x
  glyph.u8(7).u8(8).u8(9).u16({0x7FFF});    // y
  const OpenFont font = fontOf({glyph});
  EXPECT_EQ(outlineOf(font, 0, true),
            "0,0:31 200,7:36 195,-1:e -60,-10:e; -60,32757:10 -360,32757:20;");
  EXPECT_EQ(outlineOf(font, 1), "-1");
}

TEST(SimpleGlyph, RepeatsEndWithTheLastPoint) {
  for (const int repeats : {2, 3}) {
    const OpenFont font = fontOf({Bytes().u16({1, 0, 0, 0, 0, 2, 0}).u8(0x38).u8(repeats)});
    EXPECT_EQ(outlineOf(font, 0), repeats == 2 ? "0,0 0,0 0,0;" : "0");
    EXPECT_EQ(countsOf(font, 0), row(16, 0, repeats == 2 ? 3 : 0, repeats == 2));
  }
}

TEST(SimpleGlyph, DataCutByTheEndOfGlyf) {
  for (std::size_t size = 0; size <= kTriangle.size(); ++size) {
    FontImage image;
    image.glyphs({kTriangle}).last("glyf");
    Bytes glyf = kTriangle;
    glyf.resize(size);
    const OpenFont font(image.table("glyf", glyf));  // loca still tells the whole length
    ASSERT_EQ(font.result, FontResultOk);
    EXPECT_EQ(outlineOf(font, 0), size == kTriangle.size() ? "0,0 100,0 50,80;" : "0") << size;
    EXPECT_EQ(countsOf(font, 0).at(0), (size + 1) / 2 * 2);
  }
}

TEST(CompositeGlyph, PlacesPoints) {
  for (auto& block : readVectorBlocks(ULM_TEST_DATA "/truetype/placed.txt")) {
    const auto point = block.numbers("Point"), at = block.numbers("At");
    Part part{static_cast<int>(block.numbers("Flags").at(0)), 0, {}};
    for (const auto word : block.numbers("Record")) part.rest.u16({static_cast<int>(word)});
    // A second component shows that the record's length was right.
    const Bytes one =
        simpleGlyph({0}, {{static_cast<int>(point.at(0)), static_cast<int>(point.at(1))}});
    const OpenFont font =
        fontOf({one, compositeGlyph({part, moved(0, 1, 1)}), compositeGlyph({moved(1, 3, -5)})});
    for (const Point& then : {Point{0, 0}, Point{3, -5}}) {
      const auto along = [](long long place, int move) {
        return std::to_string(static_cast<std::int16_t>(place + move));
      };
      const std::string placed = along(at.at(0), then.x) + ',' + along(at.at(1), then.y) + "; ";
      const std::string outline = outlineOf(font, then.x == 0 ? 1 : 2);
      EXPECT_EQ(outline.substr(0, placed.size()), placed) << block.where();
      EXPECT_EQ(std::count(outline.begin(), outline.end(), ';'), 2) << block.where();
    }
    block.expectAllUsed();
  }
}

TEST(FixedPoint, WrapsAndCuts) {
  struct Case {
    std::int32_t a, b, product, quotient;
  };
  for (const Case& tested :
       {Case{0x18000, 0x28000, 0x3C000, 0x9999}, Case{-0x18000, 0x28000, -0x3C000, -0x9999},
        Case{0x18000, -0x28000, -0x3C000, -0x9999}, Case{-0x18000, -0x28000, 0x3C000, 0x9999},
        Case{1, 1, 0, 0x10000}, Case{INT32_MIN, 0x10000, INT32_MIN, INT32_MIN},
        Case{0x7FFFFFFF, 0x7FFFFFFF, static_cast<std::int32_t>(0xFFFF0000u), 0x10000},
        Case{0x20000, 0x30001, 0x60002, 0xAAAA}, Case{5, 0, 0, 0}}) {
    EXPECT_EQ(fixedMultiply(tested.a, tested.b), tested.product) << tested.a;
    EXPECT_EQ(fixedDivide(tested.a, tested.b), tested.quotient) << tested.a;
  }
  EXPECT_EQ(fixedMultiplyDivide(0x30000, 0x40000, 0x60000), 0x20000);
}

TEST(CompositeGlyph, ComponentsAndMetrics) {
  const Bytes quad = simpleGlyph({3}, {{0, 0}, {1, 0}, {1, 1}, {0, 1}});
  FontImage image;
  image.glyphs({kTriangle,
                quad,
                {},
                compositeGlyph({moved(0, 5, 5, 0x0200), moved(1, 0, 0)}),
                compositeGlyph({moved(9, 0, 0), moved(2, 0, 0), moved(3, 1, 1)}),
                compositeGlyph({moved(9, 0, 0, 0x0200), moved(2, 0, 0)}),
                Bytes().u16({-2, 0, 0, 0, 0})});
  image.longMetrics("hhea", "hmtx", 4, Bytes().u16({500, 1, 600, 2, 700, 3, 800, 4, 5, 6, 7}));
  const OpenFont font(image);
  EXPECT_EQ(outlineOf(font, 3), "5,5 105,5 55,85; 0,0 1,0 1,1 0,1;");
  EXPECT_EQ(outlineOf(font, 4), "6,6 106,6 56,86; 1,1 2,1 2,2 1,2;");
  EXPECT_EQ(outlineOf(font, 5), "empty");
  EXPECT_EQ(outlineOf(font, 6), "0");

  GlyphMetrics metrics = {};
  GlyphPoint* points = nullptr;
  TTList* ancestry = listCreate();
  EXPECT_EQ(readCompositeGlyph(font.get(), 3, &points, &metrics, ancestry), 7);
  std::free(points);
  EXPECT_EQ(metrics.advanceWidth, 500);  // lent by glyph 0
  EXPECT_EQ(metrics.yMax, 8);            // the box is its own
  EXPECT_EQ(listCount(ancestry), 0u);
  listAppend(ancestry, reinterpret_cast<void*>(std::uintptr_t{0}));
  EXPECT_EQ(readCompositeGlyph(font.get(), 3, &points, nullptr, ancestry), 4);  // 0 is an ancestor
  std::free(points);
  EXPECT_EQ(readCompositeGlyph(font.get(), 5, &points, &metrics, ancestry), 0);
  std::free(points);
  EXPECT_EQ(metrics.leftSideBearing, 6);  // its own: no glyph lends any
  listDispose(ancestry);
  EXPECT_EQ(readSimpleGlyph(font.get(), 0, &points, &metrics), 3);
  std::free(points);
  EXPECT_EQ(metrics.yMax, 4);
  EXPECT_EQ(readSimpleGlyph(font.get(), 3, &points, &metrics), 0);
  EXPECT_EQ(readSimpleGlyph(font.get(), 2, &points, &metrics), 0);
  EXPECT_EQ(points, nullptr);

  EXPECT_EQ(countsOf(font, 3), row(10 + 2 * 8, 1, 7, 2));
  const auto data = glyphOf(font.get(), 3);
  EXPECT_EQ(row(data->advanceWidth, data->leftSideBearing, data->glyphIndex), row(800, 4, 3));
}

TEST(GlyphDataTest, Lengths) {
  Bytes odd = kTriangle;  // an odd length, and what follows is no part of it
  odd.back() = 0xEE;
  const OpenFont font = fontOf({odd, Bytes().zeros(65534).put16(0, 128), Bytes().zeros(65535), {}});
  const auto data = glyphOf(font.get(), 0);
  EXPECT_EQ(row(data->byteCount, data->data[odd.size() - 1], data->data[odd.size()]),
            row(odd.size() + 1, 0xEE, 0));
  EXPECT_EQ(countsOf(font, 1), row(65534, 0, 1, 1));  // 128 contours end with the one point
  EXPECT_TRUE(countsOf(font, 2).empty() && countsOf(font, 4).empty());
  EXPECT_EQ(countsOf(font, 3), row(0, 0, 0, 0));
  const OpenFont falling(
      FontImage().loca(Bytes().u32(8).u32(4).u32(0x10000000).u32(0x20000000), 1));
  EXPECT_TRUE(countsOf(falling, 0).empty());
  EXPECT_EQ(countsOf(falling, 2), row(0, 0, 0, 0));  // starts outside glyf
}

std::vector<long long> components(const OpenFont& font, std::uint32_t glyph) {
  TTList* list = listCreate();
  const std::int32_t count = collectGlyphComponents(font.get(), glyph, list);
  EXPECT_EQ(static_cast<std::uint32_t>(count), listCount(list));
  std::vector<long long> found;
  for (const TTListNode* node = list->first; node != nullptr; node = node->next) {
    found.push_back(static_cast<long long>(reinterpret_cast<std::uintptr_t>(node->item)));
  }
  listDispose(list);
  return found;
}

TEST(Components, ListAndCycles) {
  const Bytes scaled = Bytes().u16({1, 1, 0x4000});
  const OpenFont font = fontOf({kTriangle,
                                {},
                                compositeGlyph({{0x000B, 0, scaled}, moved(1, 0, 0)}),
                                compositeGlyph({moved(2, 0, 0), moved(9, 0, 0), moved(0, 0, 0)}),
                                compositeGlyph({moved(0, 1, 0), moved(5, 0, 0)}),
                                compositeGlyph({moved(4, 0, 0), moved(0, 2, 0)})});
  const std::vector<long long> expected[] = {
      row(0), row(1), row(2, 0, 1), row(3, 2, 0, 1, 0), row(4, 0, 5, 4, 0), row(5, 4, 0, 5, 0), {}};
  for (std::uint32_t glyph = 0; glyph < 7; ++glyph) {
    EXPECT_EQ(components(font, glyph), expected[glyph]) << glyph;
  }
  EXPECT_EQ(outlineOf(font, 4), "1,0 101,0 51,80; 2,0 102,0 52,80;");
}

TEST(Components, ChainsCutAtTheEndOfGlyf) {
  // The inner composite has a component, and then says that another follows.
  const Bytes cut = compositeGlyph({moved(0, 0, 0, 0x20)});
  const OpenFont font = fontOf({kTriangle, compositeGlyph({moved(0, 0, 0), moved(2, 0, 0)}), cut});
  EXPECT_EQ(outlineOf(font, 2), "0");
  EXPECT_EQ(countsOf(font, 2), row(cut.size(), 1, 0, 0));
  EXPECT_EQ(outlineOf(font, 1), "0,0 100,0 50,80;");  // the damaged component alone is left out
  EXPECT_EQ(components(font, 1), row(1, 0, 2, 0));
}

TEST(Components, DeepChainsAndTowers) {
  constexpr int kDepth = 30000;
  std::vector<Bytes> chain{kTriangle};
  for (int i = 1; i < kDepth; ++i) chain.push_back(compositeGlyph({moved(i - 1, 1, 0)}));
  chain.push_back(compositeGlyph({moved(kDepth - 1, 0, 0), moved(kDepth, 0, 0)}));
  const OpenFont deep = fontOf(chain);
  EXPECT_EQ(outlineOf(deep, kDepth), "29999,0 30099,0 30049,80;");
  EXPECT_EQ(components(deep, kDepth).size(), kDepth + 2u);

  const OpenFont high = fontOf(doublings(simpleGlyph({0}, {{0, 0}}), 59));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(countsOf(high, 12), row(26, 1, 1 << 12, 1 << 12));
  EXPECT_EQ(outlineOf(high, 59), "0");
  EXPECT_EQ(countsOf(high, 59), row(26, 1, 0, 0));
  EXPECT_EQ(components(high, 59).size(), kMaxComponentRecords + 1u);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));

  // As many points as the counts of a font can name, under moves of any depth and many matrices.
  Bytes most = Bytes().u16({1, 0, 0, 0, 0, 0xFFFE, 0});
  for (int i = 0; i < 256; ++i) most.u8(0x39).u8(i < 255 ? 255 : 254);
  std::vector<Bytes> nested{most.u8(0)};
  for (int i = 1; i < 220; ++i) {
    const Part turned{0x0083, i - 1, Bytes().u16({0, 0, 0, 0x4000, -0x4000, 0})};
    nested.push_back(compositeGlyph({i <= 16 ? turned : moved(i - 1, 1, 0)}));
  }
  const OpenFont full = fontOf(nested);
  const auto points = pointsOf(full.get(), 219);
  ASSERT_EQ(points.size(), 0xFFFFu);
  EXPECT_EQ(row(points[0].x, points[0xFFFE].x), row(203, 203));
  EXPECT_EQ(countsOf(full, 219), row(18, 1, 0xFFFF, 1));
}

}  // namespace
