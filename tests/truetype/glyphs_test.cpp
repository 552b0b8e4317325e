#include "truetype/reader/glyphs.h"

#include <gmock/gmock.h>

#include <chrono>

#include "tests/support/font_image.h"
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
    const std::unique_ptr<GlyphData, Freed> data(getGlyphData(font.get(), 0));
    EXPECT_EQ(data->pointCount, repeats == 2 ? 3 : 0);
    EXPECT_EQ(data->byteCount, 16);
    std::free(data->data);
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
    const std::unique_ptr<GlyphData, Freed> data(getGlyphData(font.get(), 0));
    EXPECT_EQ(data->byteCount, (size + 1) / 2 * 2);
    EXPECT_EQ(data->data != nullptr, size > 0);
    std::free(data->data);
  }
}

// What the rule for placing a point says, in exact arithmetic that has nothing to do with the
// library's: 16.16 values whose last bits are cut towards zero in each step.
At placed(double a, double b, double c, double d, int e, int f, At point) {
  const auto fixed = [](double value) { return static_cast<std::int64_t>(value * 65536); };
  const auto cutTo16 = [](std::int64_t product) { return product / 65536; };
  const auto along = [&](std::int64_t w, int x, std::int64_t v, int y, std::int64_t other,
                         int move) {
    std::int64_t p = w < 0 ? -w : w, q = other < 0 ? -other : other;
    std::int64_t factor = std::max(p, q);
    if (std::max(p, q) - std::min(p, q) <= 33) factor *= 2;
    const std::int64_t sum = cutTo16(w * x * 65536) * 65536 / factor +
                             cutTo16(v * y * 65536) * 65536 / factor + std::int64_t{move} * 65536;
    const std::int64_t product = cutTo16(factor * sum);
    return static_cast<int>(product >> 16);
  };
  return {along(fixed(a), point.x, fixed(c), point.y, fixed(b), e),
          along(fixed(b), point.x, fixed(d), point.y, 0, f)};
}

int f2dot14(double value) { return static_cast<int>(value * 16384); }

struct PlacedCase {
  int flags;
  Bytes rest;
  At point, expected;
};

TEST(CompositeGlyph, PlacesPoints) {
  const int one = f2dot14(1);
  const Bytes unmoved = Bytes().u16({0, 0});
  const PlacedCase cases[] = {
      {0x0003, Bytes().u16({10, -20}), {100, 50}, {110, 30}},
      {0x0001, Bytes().u16({-10, -20}), {100, 50}, {90, 30}},  // words are signed in any case
      {0x0000, Bytes().u8(200).u8(0xFF), {0, 0}, {200, 255}},
      {0x0002, Bytes().u8(200).u8(0xFF), {0, 0}, {-56, -1}},
      {0x000B, Bytes().u16({10, 20, f2dot14(0.5)}), {100, 50}, {55, 35}},
      {0x000B, Bytes().u16({10, 20, one}), {100, 50}, {110, 70}},
      {0x0043, Bytes().u16({3, 4, f2dot14(1.5), f2dot14(0.5)}), {7, 5}, {15, 4}},
      {0x0043, Bytes().u16({3, 4, f2dot14(1.5), f2dot14(0.5)}), {7, -13}, {15, -5}},
      {0x0083, Bytes(unmoved).u16({0, one, -one, 0}), {100, 50}, {-50, 100}},
      {0x00CB,
       Bytes().u16({10, 20, f2dot14(0.5)}),
       {100, 50},
       {55, 35}},  // the single scale counts
      {0x00C3, Bytes().u16({3, 4, f2dot14(1.5), f2dot14(0.5)}), {7, 5}, {15, 4}},
      {0x000B, Bytes().u16({10, 20, 0}), {100, 50}, {10, 20}},
      {0x0083, Bytes().u16({10, 20, 0, 0, one, one}), {3, 5}, {10, 45}},
      {0x0003, Bytes().u16({1, 0}), {32767, -32768}, {-32768, -32768}},
  };
  for (const PlacedCase& tested : cases) {
    // A second component shows that the record's length was right.
    const OpenFont font =
        fontOf({simpleGlyph({0}, {{tested.point.x, tested.point.y}}),
                compositeGlyph({{tested.flags, 0, tested.rest}, moved(0, 1, 1)})});
    const Outline outline = outlineOf(font, 1);
    ASSERT_EQ(outline.result, 2) << tested.flags;
    EXPECT_EQ(outline.at[0], tested.expected) << tested.flags;
    EXPECT_EQ(outline.flags[1], 0x8001u);
  }
}

TEST(CompositeGlyph, MatricesAsTheRuleSays) {
  for (const double a : {0.75, -1.25, 0.5}) {
    for (const double b : {0.75, 0.25, -0.5}) {
      for (const double d : {1.5, -0.25, 0.5}) {
        for (const At point : {At{1000, -777}, At{-3, 7}, At{1999, 1}}) {
          Bytes rest = Bytes().u16({-7, 9, f2dot14(a), f2dot14(b), f2dot14(-b), f2dot14(d)});
          const OpenFont font =
              fontOf({simpleGlyph({0}, {{point.x, point.y}}), compositeGlyph({{0x0083, 0, rest}})});
          // The rows' factors come from (a, b) and (c, d); the model takes them one by one.
          const At x = placed(a, b, -b, d, -7, 9, point);
          EXPECT_EQ(outlineOf(font, 1).at[0].x, x.x) << a << ' ' << b << ' ' << d;
          const At y = placed(d, -b, b, a, 9, -7, {point.y, point.x});
          EXPECT_EQ(outlineOf(font, 1).at[0].y, y.x) << a << ' ' << b << ' ' << d;
        }
      }
    }
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

  const std::unique_ptr<GlyphData, Freed> data(getGlyphData(font.get(), 3));
  EXPECT_EQ(data->isComposite, 1);
  EXPECT_EQ(data->pointCount, 7);
  EXPECT_EQ(data->contourCount, 2);
  EXPECT_EQ(data->advanceWidth, 800);
  EXPECT_EQ(data->leftSideBearing, 4);
  EXPECT_EQ(data->glyphIndex, 3u);
  std::free(data->data);
}

TEST(GlyphDataTest, Lengths) {
  Bytes odd = kTriangle;  // an odd length, and what follows is no part of it
  odd.back() = 0xEE;
  const std::size_t length = odd.size();
  ASSERT_EQ(length % 2, 1u);
  const OpenFont font = fontOf({odd, Bytes().zeros(65534), Bytes().zeros(65535), {}});
  std::unique_ptr<GlyphData, Freed> data(getGlyphData(font.get(), 0));
  EXPECT_EQ(data->byteCount, length + 1);
  EXPECT_EQ(data->data[length - 1], 0xEE);
  EXPECT_EQ(data->data[length], 0);
  std::free(data->data);
  data.reset(getGlyphData(font.get(), 1));
  EXPECT_EQ(data->byteCount, 65534);
  std::free(data->data);
  EXPECT_EQ(getGlyphData(font.get(), 2), nullptr);
  data.reset(getGlyphData(font.get(), 3));
  EXPECT_EQ(data->data, nullptr);
  EXPECT_EQ(data->byteCount, 0);
  EXPECT_EQ(getGlyphData(font.get(), 4), nullptr);
  const OpenFont falling(
      FontImage().loca(Bytes().u32(8).u32(4).u32(0x10000000).u32(0x20000000), 1));
  EXPECT_EQ(getGlyphData(falling.get(), 0), nullptr);
  data.reset(getGlyphData(falling.get(), 2));  // starts outside glyf
  EXPECT_EQ(data->byteCount, 0);
  EXPECT_EQ(outlineOf(falling, 2).result, 0);
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
