#include "truetype/reader/glyphs.h"

#include <gmock/gmock.h>

#include <chrono>

#include "tests/support/font_image.h"
#include "tests/support/vector_blocks.h"
#include "truetype/reader/fixed_point.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;
using testing::ElementsAre;

struct At {
  int x, y;
  bool operator==(const At&) const = default;
};
void PrintTo(const At& at, std::ostream* out) { *out << '(' << at.x << ", " << at.y << ')'; }

struct Outline {
  std::int32_t result;
  bool given;
  std::vector<At> at;
  std::vector<std::uint32_t> flags;
};

// Read by all public ways, which must agree.
Outline outlineOf(const OpenFont& font, std::uint32_t glyph) {
  GlyphPoint* points = nullptr;
  Outline outline{getGlyphPoints(font.get(), glyph, &points), points != nullptr, {}, {}};
  const auto held = owned(points);
  for (std::int32_t i = 0; i < outline.result; ++i) {
    outline.at.push_back({points[i].x, points[i].y});
    outline.flags.push_back(points[i].flags);
  }
  std::uint32_t count = 0;
  std::int32_t result = decodeGlyphPoints(font.get(), glyph, nullptr, &count);
  if (result == kCapacityTooSmall) {
    std::vector<GlyphPoint> room(count);
    result = decodeGlyphPoints(font.get(), glyph, room.data(), &count);
    for (std::uint32_t i = 0; i < count; ++i) EXPECT_EQ(room[i].x, outline.at[i].x);
  }
  EXPECT_EQ(result, outline.result);
  EXPECT_EQ(count, outline.result < 0 ? 0u : static_cast<std::uint32_t>(outline.result));
  return outline;
}

// Byte count, composite, points, contours; nothing for null.
std::vector<long long> dataOf(const OpenFont& font, std::uint32_t glyph) {
  const std::unique_ptr<GlyphData, Freed> data(getGlyphData(font.get(), glyph));
  if (data == nullptr) return {};
  const auto bytes = owned(data->data);
  EXPECT_EQ(bytes != nullptr, data->byteCount != 0);
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
  const Outline outline = outlineOf(font, 0);
  EXPECT_THAT(outline.at, ElementsAre(At{0, 0}, At{200, 7}, At{195, -1}, At{-60, -10},
                                      At{-60, 32757}, At{-360, 32757}));
  EXPECT_THAT(outline.flags, ElementsAre(0x31, 0x36, 0x0E, 0x800E, 0x10, 0x8020));
  EXPECT_EQ(outlineOf(font, 1).result, -1);
}

TEST(SimpleGlyph, RepeatsEndWithTheLastPoint) {
  for (const int repeats : {2, 3}) {
    const OpenFont font = fontOf({Bytes().u16({1, 0, 0, 0, 0, 2, 0}).u8(0x38).u8(repeats)});
    EXPECT_EQ(outlineOf(font, 0).result, repeats == 2 ? 3 : 0);
    EXPECT_EQ(outlineOf(font, 0).given, repeats == 2);
    EXPECT_THAT(dataOf(font, 0), ElementsAre(16, 0, repeats == 2 ? 3 : 0, repeats == 2));
  }
}

TEST(SimpleGlyph, DataCutByTheEndOfGlyf) {
  const OpenFont whole = fontOf({kTriangle});
  EXPECT_EQ(outlineOf(whole, 0).result, 3);
  for (std::size_t size = 0; size < kTriangle.size(); ++size) {
    FontImage image;
    image.glyphs({kTriangle}).last("glyf");
    Bytes glyf = kTriangle;
    glyf.resize(size);
    const OpenFont font(image.table("glyf", glyf));  // loca still tells the whole length
    ASSERT_EQ(font.result, FontResultOk);
    EXPECT_EQ(outlineOf(font, 0).result, 0) << size;
    EXPECT_EQ(dataOf(font, 0).at(0), (size + 1) / 2 * 2);
  }
}

TEST(CompositeGlyph, PlacesPoints) {
  for (auto& block : readVectorBlocks(ULM_TEST_DATA "/truetype/placed.txt")) {
    const auto point = block.numbers("Point"), at = block.numbers("At");
    Part part{static_cast<int>(block.numbers("Flags").at(0)), 0, {}};
    for (const auto word : block.numbers("Record")) part.rest.u16({static_cast<int>(word)});
    // A second component shows that the record's length was right.
    const OpenFont font =
        fontOf({simpleGlyph({0}, {{static_cast<int>(point.at(0)), static_cast<int>(point.at(1))}}),
                compositeGlyph({part, moved(0, 1, 1)})});
    const Outline outline = outlineOf(font, 1);
    ASSERT_EQ(outline.result, 2) << block.where();
    EXPECT_EQ(row(outline.at[0].x, outline.at[0].y), at) << block.where();
    EXPECT_EQ(outline.flags[1], 0x8001u);
    block.expectAllUsed();
  }
}

TEST(FixedPoint, WrapsAndCuts) {
  struct Case {
    std::int32_t a, b, product, quotient;
  };
  for (const Case& tested :
       {Case{0x18000, 0x28000, 0x3C000, 0x9999}, Case{-0x18000, 0x28000, -0x3C000, -0x9999},
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
                compositeGlyph({moved(1, 0, 0), moved(0, 5, 5, 0x0200)}),
                compositeGlyph({moved(9, 0, 0), moved(2, 0, 0), moved(3, 1, 1)}),
                compositeGlyph({moved(9, 0, 0), moved(2, 0, 0)}),
                Bytes().u16({-2, 0, 0, 0, 0})});
  image.longMetrics("hhea", "hmtx", 4, Bytes().u16({500, 1, 600, 2, 700, 3, 800, 4, 5, 6, 7}));
  const OpenFont font(image);
  EXPECT_THAT(outlineOf(font, 3).at, ElementsAre(At{0, 0}, At{1, 0}, At{1, 1}, At{0, 1}, At{5, 5},
                                                 At{105, 5}, At{55, 85}));
  EXPECT_EQ(outlineOf(font, 3).flags[3], 0x8001u);
  EXPECT_EQ(outlineOf(font, 4).at[4], (At{6, 6}));
  EXPECT_EQ(outlineOf(font, 5).result, 0);
  EXPECT_TRUE(outlineOf(font, 5).given);  // an empty array
  EXPECT_EQ(outlineOf(font, 6).result, 0);
  EXPECT_FALSE(outlineOf(font, 6).given);

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
  listDispose(ancestry);
  EXPECT_EQ(readSimpleGlyph(font.get(), 0, &points, &metrics), 3);
  std::free(points);
  EXPECT_EQ(metrics.yMax, 4);
  EXPECT_EQ(readSimpleGlyph(font.get(), 3, &points, &metrics), 0);
  EXPECT_EQ(readSimpleGlyph(font.get(), 2, &points, &metrics), 0);
  EXPECT_EQ(points, nullptr);

  EXPECT_EQ(dataOf(font, 3), row(10 + 2 * 8, 1, 7, 2));
  const std::unique_ptr<GlyphData, Freed> data(getGlyphData(font.get(), 3));
  const auto bytes = owned(data->data);
  EXPECT_EQ(row(data->advanceWidth, data->leftSideBearing, data->glyphIndex), row(800, 4, 3));
}

TEST(GlyphDataTest, Lengths) {
  Bytes odd = kTriangle;  // an odd length, and what follows is no part of it
  odd.back() = 0xEE;
  const OpenFont font = fontOf({odd, Bytes().zeros(65534), Bytes().zeros(65535), {}});
  const std::unique_ptr<GlyphData, Freed> data(getGlyphData(font.get(), 0));
  const auto bytes = owned(data->data);
  EXPECT_EQ(row(data->byteCount, bytes[odd.size() - 1], bytes[odd.size()]),
            row(odd.size() + 1, 0xEE, 0));
  EXPECT_EQ(dataOf(font, 1), row(65534, 0, 0, 0));
  EXPECT_TRUE(dataOf(font, 2).empty() && dataOf(font, 4).empty());
  EXPECT_EQ(dataOf(font, 3), row(0, 0, 0, 0));
  const OpenFont falling(
      FontImage().loca(Bytes().u32(8).u32(4).u32(0x10000000).u32(0x20000000), 1));
  EXPECT_TRUE(dataOf(falling, 0).empty());
  EXPECT_EQ(dataOf(falling, 2), row(0, 0, 0, 0));  // starts outside glyf
}

std::vector<std::uint32_t> components(const OpenFont& font, std::uint32_t glyph) {
  TTList* list = listCreate();
  const std::int32_t count = collectGlyphComponents(font.get(), glyph, list);
  EXPECT_EQ(static_cast<std::uint32_t>(count), listCount(list));
  std::vector<std::uint32_t> found;
  for (const TTListNode* node = list->first; node != nullptr; node = node->next) {
    found.push_back(static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(node->item)));
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
  EXPECT_THAT(components(font, 0), ElementsAre(0));
  EXPECT_THAT(components(font, 1), ElementsAre(1));
  EXPECT_THAT(components(font, 3), ElementsAre(3, 2, 0, 1, 0));
  EXPECT_TRUE(components(font, 6).empty());
  EXPECT_THAT(components(font, 4), ElementsAre(4, 0, 5, 4, 0));
  EXPECT_THAT(outlineOf(font, 4).at,
              ElementsAre(At{1, 0}, At{101, 0}, At{51, 80}, At{2, 0}, At{102, 0}, At{52, 80}));
}

TEST(Components, ChainsCutAtTheEndOfGlyf) {
  // The inner composite has a component, and then says that another follows.
  Bytes cut = compositeGlyph({moved(0, 0, 0, 0x20)});
  const OpenFont font = fontOf({kTriangle, compositeGlyph({moved(0, 0, 0), moved(2, 0, 0)}), cut});
  EXPECT_EQ(outlineOf(font, 2).result, 0);
  EXPECT_FALSE(outlineOf(font, 2).given);
  EXPECT_EQ(outlineOf(font, 1).result, 3);  // the damaged component alone is left out
  EXPECT_THAT(components(font, 1), ElementsAre(1, 0, 2, 0));
}

TEST(Components, DeepChainsAndTowers) {
  constexpr int kDepth = 30000;
  std::vector<Bytes> chain{kTriangle};
  for (int i = 1; i < kDepth; ++i) chain.push_back(compositeGlyph({moved(i - 1, 1, 0)}));
  chain.push_back(compositeGlyph({moved(kDepth - 1, 0, 0), moved(kDepth, 0, 0)}));
  const OpenFont deep = fontOf(chain);
  EXPECT_EQ(outlineOf(deep, kDepth).at[0], (At{kDepth - 1, 0}));
  EXPECT_EQ(components(deep, kDepth).size(), kDepth + 2u);

  std::vector<Bytes> tower{simpleGlyph({0}, {{0, 0}})};
  for (int i = 1; i < 60; ++i)
    tower.push_back(compositeGlyph({moved(i - 1, 0, 0), moved(i - 1, 0, 0)}));
  const OpenFont high = fontOf(tower);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(outlineOf(high, 12).result, 1 << 12);
  EXPECT_EQ(outlineOf(high, 59).result, 0);
  EXPECT_FALSE(outlineOf(high, 59).given);
  EXPECT_EQ(components(high, 59).size(), kMostComponentRecords + 1u);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
