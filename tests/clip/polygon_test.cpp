// The fixed and the growable polygons beside the model, bit by bit, and as geometry.
#include "clip/polygon.h"

#include <gtest/gtest.h>

#include <memory>

#include "clip/growable/polygon_array.h"
#include "platform/odrx/alloc_control.h"
#include "tests/support/clip_model.h"

#ifndef __has_feature
#define __has_feature(name) 0
#endif
static std::size_t mallocCalls = 0;  // stays 0 where a sanitizer has malloc for itself
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && \
    !__has_feature(address_sanitizer) && !__has_feature(thread_sanitizer)
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* malloc(std::size_t size) {
  ++mallocCalls;
  return __libc_malloc(size);
}
#endif

namespace ulm::clip {
namespace {

using test::ModelPolygon;

// What the two containers have in common, under one set of names; the drivers for the volume come
// first, those for the rectangle second.
template <class Real>
struct Fixed {
  using Number = Real;
  using Polygon = BasicClipPolygon<Real>;
  static constexpr bool kGrows = false;
  static constexpr std::uint32_t (*kPass[])(const Polygon&, Polygon&) noexcept = {
      clipPolygonXMin, clipPolygonXMax, clipPolygonYMax,
      clipPolygonYMin, clipPolygonZMax, clipPolygonZMin};
  static constexpr Polygon* (*kDrive[])(Polygon&, Polygon&, const Polygon&,
                                        std::uint32_t) noexcept = {clipPolygonToVolume,
                                                                   clipPolygonToRectangle};
  static constexpr bool (*kInPlace[])(Polygon&) noexcept = {clipPolygonInPlace,
                                                            clipPolygonInPlace2D};
  static constexpr std::size_t (*kBatch[])(Polygon*, std::size_t, ClipOutcome*) noexcept = {
      clipPolygonsInPlace, clipPolygonsInPlace2D};
};

template <class Real>
struct Growable {
  using Number = Real;
  using Polygon = BasicClipPolygonArray<Real>;
  static constexpr bool kGrows = true;
  static constexpr std::uint32_t (*kPass[])(Polygon&, Polygon&) = {
      clipPolygonArrayXMin, clipPolygonArrayXMax, clipPolygonArrayYMax,
      clipPolygonArrayYMin, clipPolygonArrayZMax, clipPolygonArrayZMin};
  static constexpr Polygon* (*kDrive[])(Polygon&, Polygon&, Polygon&, std::uint32_t) = {
      clipPolygonArrayToVolume, clipPolygonArrayToRectangle};
  static constexpr bool (*kInPlace[])(Polygon&) = {clipPolygonArrayInPlace,
                                                   clipPolygonArrayInPlace2D};
  static constexpr std::size_t (*kBatch[])(Polygon*, std::size_t, ClipOutcome*) = {
      clipPolygonArraysInPlace, clipPolygonArraysInPlace2D};
};

// A polygon and its model, with the same vertices in all slots that a test can reach.
template <class Container>
struct Pair {
  using Real = typename Container::Number;
  typename Container::Polygon polygon{};
  ModelPolygon<Real> model{.grows = Container::kGrows};

  Pair(test::PointSource<Real>& source, std::uint32_t count, std::uint32_t kind, bool trueCodes) {
    for (std::uint32_t i = 0; i < count; ++i) {
      const auto k = source.point(kind);
      const std::uint32_t code = trueCodes ? test::modelOutcode(k) : source.below(256);
      model.forWrite(i) = {k, code};
      polygon.vertexForWrite(i) = {k[0], k[1], k[2], k[3], code};
    }
  }
  bool same(bool outcodes) {
    bool equal = polygon.count == model.count;
    for (std::uint32_t i = 0; equal && i < model.size(); ++i) {
      const auto& v = polygon.vertexAt(i);
      equal = test::samePoint(v, model.slots[i].k) &&
              (!outcodes || v.outcode == model.slots[i].outcode);
    }
    return equal;
  }
};

template <class Container>
class Polygons : public testing::Test {};
using Containers = testing::Types<Fixed<double>, Fixed<float>, Growable<double>, Growable<float>>;
TYPED_TEST_SUITE(Polygons, Containers);

TYPED_TEST(Polygons, HaveTheBitsOfTheModel) {
  test::PointSource<typename TypeParam::Number> source(7);
  int outcomes[3] = {}, results = 0;
  for (int round = 0; round < 8000; ++round) {
    const std::uint32_t count = source.below(round % 8 == 0 ? 33 : 9);
    Pair<TypeParam> tested(source, count, source.below(3), source.below(4) != 0);
    // Stale destinations: full of values, a fixed one with any count.
    Pair<TypeParam> first(source, TypeParam::kGrows ? 250 : 32, 0, false), second = first;
    first.polygon.count = first.model.count = TypeParam::kGrows ? 0 : source.below(60);

    const std::uint32_t plane = source.below(6);
    ASSERT_EQ(TypeParam::kPass[plane](tested.polygon, first.polygon),
              test::modelPass(test::kModelPlanes[plane], tested.model, first.model));
    ASSERT_TRUE(first.same(true)) << round;

    const std::uint32_t flat = source.below(2), planes = flat != 0 ? 0x33 : 0x77;
    const std::uint32_t mask = source.below(2) == 0 ? ~0U : source.below(256);
    auto* result = TypeParam::kDrive[flat](first.polygon, second.polygon, tested.polygon, mask);
    auto* expected = test::modelPingPong(first.model, second.model, tested.model, mask & planes);
    ASSERT_EQ(result == nullptr, expected == nullptr) << round;
    if (result != nullptr) {
      ASSERT_EQ(result == &first.polygon, expected == &first.model);
      ASSERT_TRUE((expected == &first.model ? first : second).same(true)) << round;
      ++results;
    }

    auto copy = tested.polygon;
    ClipOutcome outcome{};
    const int expectedOutcome = test::modelInPlace(tested.model, planes);
    ASSERT_EQ(TypeParam::kInPlace[flat](tested.polygon), expectedOutcome != 2) << round;
    // The outcode of a new vertex is settled for the fixed polygons alone.
    ASSERT_TRUE(tested.same(!TypeParam::kGrows)) << round;
    ASSERT_EQ(TypeParam::kBatch[flat](&copy, 1, &outcome), expectedOutcome != 2 ? 1U : 0U);
    ASSERT_EQ(static_cast<int>(outcome), expectedOutcome);
    std::swap(tested.polygon, copy);
    ASSERT_TRUE(tested.same(!TypeParam::kGrows)) << round;
    ++outcomes[expectedOutcome];
  }
  EXPECT_TRUE(results > 1000 && outcomes[0] > 50 && outcomes[1] > 500 && outcomes[2] > 500);
}

// Cutting by a plane and by the same plane seen from behind gives the two parts of the area, and
// what is left lies inside.
TYPED_TEST(Polygons, ResultsAreRightAsGeometry) {
  using Real = typename TypeParam::Number;
  test::PointSource<Real> source(8);
  const double tolerance = std::is_same_v<Real, double> ? 1e-13 : 1e-5;
  const auto area = [](auto& p) {
    double sum = 0;
    for (std::uint32_t i = 0; i < p.count; ++i) {
      const auto a = p.vertexAt(i), b = p.vertexAt((i + 1) % p.count);
      sum += double{a.x} * double{b.y} - double{b.x} * double{a.y};
    }
    return sum / 2;
  };
  for (int round = 0; round < 2000; ++round) {
    Pair<TypeParam> tested(source, 3 + source.below(8), 0, true);
    for (std::uint32_t i = 0; i < tested.polygon.count; ++i) tested.polygon.vertexForWrite(i).w = 1;
    auto mirrored = tested.polygon;  // x = w is its own image
    for (std::uint32_t i = 0; i < mirrored.count; ++i) {
      mirrored.vertexForWrite(i).x = 2 - mirrored.vertexForWrite(i).x;
    }
    typename TypeParam::Polygon near{}, far{};
    TypeParam::kPass[1](tested.polygon, near);
    TypeParam::kPass[1](mirrored, far);
    ASSERT_NEAR(area(tested.polygon), area(near) - area(far), 50 * tolerance) << round;

    computeOutcode(tested.polygon);
    if (!TypeParam::kInPlace[0](tested.polygon)) continue;
    for (std::uint32_t i = 0; i < tested.polygon.count; ++i) {
      const auto v = tested.polygon.vertexAt(i);
      for (const Real c : {v.x, v.y, v.z}) ASSERT_LE(std::abs(c), v.w + Real(tolerance));
    }
  }
}

// A saw of 32 teeth over y = w: 48 vertices for 32 slots.
TEST(FixedPolygon, SaturatesInTheLastSlot) {
  struct {
    ClipPolygon saw{}, cut{};
    std::uint64_t guard = 0x5A5A;
  } held;
  for (std::uint32_t i = 0; i < 32; ++i) {
    held.saw.vertexForWrite(i) = {0.01 * i, i % 2 == 0 ? 0.0 : 2.0, 0, 1, i};
  }
  EXPECT_EQ(clipPolygonYMax(held.saw, held.cut), 32U);
  EXPECT_EQ(held.cut.count, 32U);
  // Last comes the crossing of the closing edge, with the outcode of what was there before.
  EXPECT_EQ(held.cut.vertices[31].x, 0.31 + (0 - 0.31) * 0.5);
  EXPECT_EQ(held.cut.vertices[31].outcode, 30U);
  EXPECT_EQ(held.guard, 0x5A5AU);
}

TEST(FixedPolygon, AccessorsStayInside) {
  ClipPolygonF polygon{};
  for (std::uint32_t i = 0; i < 32; ++i) polygon.vertices[i].x = static_cast<float>(i) + 1;
  const struct {
    std::uint32_t count, index;
    float read;
    std::uint32_t written, countAfter;
  } kCases[] = {
      {0, 0, 0, 0, 1},     {5, 4, 5, 4, 5},      {5, 20, 0, 20, 21},  {31, 31, 0, 31, 32},
      {32, 32, 0, 31, 32}, {40, 31, 32, 31, 40}, {40, 35, 0, 31, 40}, {~0U, ~0U - 1, 0, 31, ~0U},
      {3, ~0U, 0, 31, 3}};
  for (const auto& tested : kCases) {
    polygon.count = tested.count;
    const ClipVertexRefF cursor{tested.index - 7, &polygon};
    EXPECT_EQ(cursor[7].read().x, tested.read);
    EXPECT_EQ(&cursor[7].write(), &polygon.vertices[tested.written]);
    EXPECT_EQ(polygon.count, tested.countAfter);
  }
  polygon.count = 32;
  ClipVertexRefF cursor{1, &polygon};
  EXPECT_EQ((cursor++).read().x, 2.0F);
  EXPECT_EQ((++cursor).read().x, 4.0F);
}

TEST(FixedPolygon, UsesNoHeap) {
  test::PointSource<double> source(3);
  const auto polygons = std::make_unique<ClipPolygon[]>(64);
  const auto trace = std::make_unique<ClipTrace>();
  ClipPolygon first, second;
  for (std::uint32_t i = 0; i < 64 * 8; ++i) {
    const auto k = source.point(i % 2);
    polygons[i / 8].vertexForWrite(i % 8) = {k[0], k[1], k[2], k[3], 0};
  }
  ClipOutcome outcomes[64];
  const std::uint64_t odrxBefore = odrxAllocCounts().calls;
  const std::size_t mallocBefore = mallocCalls;
  for (std::size_t i = 0; i < 64; ++i) {
    computeOutcode(polygons[i]);
    clipPolygonToVolume(first, second, polygons[i], ~0U, *trace);
  }
  const std::size_t remaining = clipPolygonsInPlace(polygons.get(), 64, outcomes);
  EXPECT_EQ(mallocCalls, mallocBefore);
  EXPECT_EQ(odrxAllocCounts().calls, odrxBefore);
  EXPECT_GT(remaining, 5U);
}

}  // namespace
}  // namespace ulm::clip
