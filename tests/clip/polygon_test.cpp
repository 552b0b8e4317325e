// The fixed and the growable polygons beside the model, bit by bit, and as geometry.
#include "clip/polygon.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "clip/growable/polygon_array.h"
#include "platform/odrx/alloc_control.h"
#include "tests/support/clip_model.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ULM_COUNT_MALLOC 0
#elif defined(__has_feature)
#define ULM_COUNT_MALLOC !(__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#elif defined(__GLIBC__)
#define ULM_COUNT_MALLOC 1
#endif
#if ULM_COUNT_MALLOC
static std::size_t mallocCalls = 0;
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* malloc(std::size_t size) {
  ++mallocCalls;
  return __libc_malloc(size);
}
#endif

namespace ulm::clip {
namespace {

using test::ModelPolygon;
using test::PointSource;
using test::sameBits;

// What the two containers have in common, under one set of names.
template <class Real>
struct Fixed {
  using Number = Real;
  using Polygon = BasicClipPolygon<Real>;
  static constexpr bool kGrows = false;
  static Polygon make() { return {}; }
  static BasicClipVertex<Real>& slot(Polygon& p, std::uint32_t i) { return p.vertices[i]; }
  static Polygon* volume(Polygon& f, Polygon& s, Polygon& p, std::uint32_t mask) {
    return clipPolygonToVolume(f, s, p, mask);
  }
  static Polygon* rectangle(Polygon& f, Polygon& s, Polygon& p, std::uint32_t mask) {
    return clipPolygonToRectangle(f, s, p, mask);
  }
  static bool inPlace(Polygon& p) { return clipPolygonInPlace(p); }
  static bool inPlace2D(Polygon& p) { return clipPolygonInPlace2D(p); }
  static std::size_t batch(Polygon* p, std::size_t n, ClipOutcome* o) {
    return clipPolygonsInPlace(p, n, o);
  }
  static constexpr std::uint32_t (*kPass[])(const Polygon&, Polygon&) noexcept = {
      clipPolygonXMin, clipPolygonXMax, clipPolygonYMax,
      clipPolygonYMin, clipPolygonZMax, clipPolygonZMin};
};

template <class Real>
struct Growable {
  using Number = Real;
  using Polygon = BasicClipPolygonArray<Real>;
  static constexpr bool kGrows = true;
  // Long enough that no element is without a value, as the model's are.
  static Polygon make() {
    Polygon polygon(300, false);
    for (std::uint32_t i = 0; i < 300; ++i) polygon.vertices.at(i) = {};
    return polygon;
  }
  static BasicClipVertex<Real>& slot(Polygon& p, std::uint32_t i) { return p.vertices.at(i); }
  static Polygon* volume(Polygon& f, Polygon& s, Polygon& p, std::uint32_t mask) {
    return clipPolygonArrayToVolume(f, s, p, mask);
  }
  static Polygon* rectangle(Polygon& f, Polygon& s, Polygon& p, std::uint32_t mask) {
    return clipPolygonArrayToRectangle(f, s, p, mask);
  }
  static bool inPlace(Polygon& p) { return clipPolygonArrayInPlace(p); }
  static bool inPlace2D(Polygon& p) { return clipPolygonArrayInPlace2D(p); }
  static std::size_t batch(Polygon* p, std::size_t n, ClipOutcome* o) {
    return clipPolygonArraysInPlace(p, n, o);
  }
  static constexpr std::uint32_t (*kPass[])(Polygon&, Polygon&) = {
      clipPolygonArrayXMin, clipPolygonArrayXMax, clipPolygonArrayYMax,
      clipPolygonArrayYMin, clipPolygonArrayZMax, clipPolygonArrayZMin};
};

template <class Container>
class Polygons : public testing::Test {
 protected:
  using Number = typename Container::Number;

  // A polygon and its model with the same vertices.
  struct Pair {
    typename Container::Polygon polygon = Container::make();
    ModelPolygon<Number> model{.grows = Container::kGrows};
  };

  Pair randomPair(std::uint32_t count, std::uint32_t kind, bool trueOutcodes) {
    Pair pair;
    for (std::uint32_t i = 0; i < count; ++i) {
      const auto k = source_.point(kind);
      const std::uint32_t code = trueOutcodes ? test::modelOutcode(k) : source_.below(256);
      pair.model.forWrite(i) = {k, code};
      pair.polygon.vertexForWrite(i) = {k[0], k[1], k[2], k[3], code};
    }
    return pair;
  }

  // Fills all slots of both with the same stale values, and gives both the same stale count.
  void makeStale(Pair& pair) {
    for (std::uint32_t i = 0; i < 32; ++i) {
      const auto k = source_.point(0);
      const std::uint32_t code = source_.below(1U << 31);
      pair.model.slots[i] = {k, code};
      Container::slot(pair.polygon, i) = {k[0], k[1], k[2], k[3], code};
    }
    pair.polygon.count = pair.model.count = Container::kGrows ? 0 : source_.below(60);
  }

  static bool same(typename Container::Polygon& polygon, const ModelPolygon<Number>& model,
                   bool outcodes) {
    if (polygon.count != model.count) return false;
    for (std::uint32_t i = 0; i < model.size(); ++i) {
      const auto& v = polygon.vertexAt(i);
      const auto& m = model.slots[i];
      if (!sameBits(v.x, m.k[0]) || !sameBits(v.y, m.k[1]) || !sameBits(v.z, m.k[2]) ||
          !sameBits(v.w, m.k[3]) || (outcodes && v.outcode != m.outcode)) {
        return false;
      }
    }
    return true;
  }

  PointSource<Number> source_{7};
};
using Containers = testing::Types<Fixed<double>, Fixed<float>, Growable<double>, Growable<float>>;
TYPED_TEST_SUITE(Polygons, Containers);

TYPED_TEST(Polygons, HaveTheBitsOfTheModel) {
  int results = 0;
  for (int round = 0; round < 8000; ++round) {
    auto& source = this->source_;
    const std::uint32_t count = round % 8 == 0 ? source.below(33) : source.below(9);
    auto pair = this->randomPair(count, source.below(3), source.below(4) != 0);
    typename TestFixture::Pair first, second;
    this->makeStale(first);
    this->makeStale(second);

    const std::uint32_t plane = source.below(6);
    ASSERT_EQ(TypeParam::kPass[plane](pair.polygon, first.polygon),
              test::modelPass(test::kModelPlanes[plane], pair.model, first.model));
    ASSERT_TRUE(this->same(first.polygon, first.model, true)) << round;

    const std::uint32_t mask = source.below(2) == 0 ? ~0U : source.below(256);
    const bool flat = source.below(2) == 0;
    auto* const drive = flat ? TypeParam::rectangle : TypeParam::volume;
    auto* const result = drive(first.polygon, second.polygon, pair.polygon, mask);
    auto* const expected =
        test::modelPingPong(first.model, second.model, pair.model, mask & (flat ? 0x33U : 0x77U));
    ASSERT_EQ(result == nullptr, expected == nullptr) << round;
    if (result != nullptr) {
      ASSERT_EQ(result == &first.polygon, expected == &first.model);
      ASSERT_TRUE(this->same(*result, *expected, true)) << round;
      ++results;
    }

    // The outcode of a new vertex is settled in place for the fixed polygons alone.
    const bool remains =
        flat ? TypeParam::inPlace2D(pair.polygon) : TypeParam::inPlace(pair.polygon);
    ASSERT_EQ(remains, test::modelInPlace(pair.model, flat ? 0x33U : 0x77U)) << round;
    ASSERT_TRUE(this->same(pair.polygon, pair.model, !TypeParam::kGrows)) << round;
  }
  EXPECT_GT(results, 1000);
}

TYPED_TEST(Polygons, BatchGivesWhatSingleCallsGive) {
  std::vector<typename TypeParam::Polygon> batch;
  std::vector<ModelPolygon<typename TypeParam::Number>> models;
  for (std::uint32_t i = 0; i < 500; ++i) {
    auto pair = this->randomPair(this->source_.below(7), i % 3, true);
    if (i % 5 == 0) {
      for (std::uint32_t v = 0; v < pair.model.count; ++v) {
        pair.model.slots[v].outcode = pair.polygon.vertexForWrite(v).outcode = 0x08U * (v % 2);
      }
    }
    batch.push_back(pair.polygon);
    models.push_back(pair.model);
  }
  std::vector<ClipOutcome> outcomes(batch.size());
  const std::size_t remaining = TypeParam::batch(batch.data(), batch.size(), outcomes.data());
  std::size_t seen[3] = {};
  for (std::size_t i = 0; i < batch.size(); ++i) {
    std::uint32_t any = 0;
    for (std::uint32_t v = 0; v < models[i].count; ++v) any |= models[i].slots[v].outcode;
    const ClipOutcome expected = !test::modelInPlace(models[i], 0x77) ? ClipOutcome::Gone
                                 : (any & 0x77) == 0                  ? ClipOutcome::Untouched
                                                                      : ClipOutcome::Clipped;
    ASSERT_EQ(outcomes[i], expected) << i;
    ASSERT_TRUE(this->same(batch[i], models[i], false)) << i;
    ++seen[static_cast<std::size_t>(expected)];
  }
  EXPECT_EQ(remaining, batch.size() - seen[2]);
  EXPECT_TRUE(seen[0] > 20 && seen[1] > 20 && seen[2] > 20);
}

// Cutting a polygon by a plane and by the same plane seen from behind gives two parts of its area.
TYPED_TEST(Polygons, ResultsAreRightAsGeometry) {
  using Real = typename TypeParam::Number;
  using Polygon = typename TypeParam::Polygon;
  const double tolerance = std::is_same_v<Real, double> ? 1e-13 : 1e-5;
  const auto area = [](Polygon& p) {
    double sum = 0;
    for (std::uint32_t i = 0; i < p.count; ++i) {
      const auto a = p.vertexAt(i), b = p.vertexAt((i + 1) % p.count);
      sum += double{a.x} * double{b.y} - double{b.x} * double{a.y};
    }
    return sum / 2;
  };
  for (int round = 0; round < 3000; ++round) {
    auto pair = this->randomPair(3 + this->source_.below(8), 0, true);
    Polygon mirrored = TypeParam::make();
    for (std::uint32_t i = 0; i < pair.polygon.count; ++i) {
      auto& v = pair.polygon.vertexForWrite(i);
      v.w = 1;
      mirrored.vertexForWrite(i) = {2 - v.x, v.y, v.z, v.w, 0};  // x = w is its own image
    }
    Polygon near = TypeParam::make(), far = TypeParam::make();
    TypeParam::kPass[1](pair.polygon, near);
    TypeParam::kPass[1](mirrored, far);
    ASSERT_NEAR(area(pair.polygon), area(near) - area(far), 50 * tolerance) << round;

    computeOutcode(pair.polygon);
    if (!TypeParam::inPlace(pair.polygon)) continue;
    ASSERT_LE(3U, pair.polygon.count);
    for (std::uint32_t i = 0; i < pair.polygon.count; ++i) {
      const auto v = pair.polygon.vertexAt(i);
      for (const Real c : {v.x, v.y, v.z}) ASSERT_LE(std::abs(c), v.w + Real(tolerance));
    }
  }
}

// A saw of 32 teeth over y = w: each pass would give more vertices than there are slots.
TEST(FixedPolygon, SaturatesInTheLastSlot) {
  ClipPolygon saw{};
  for (std::uint32_t i = 0; i < 32; ++i) {
    saw.vertexForWrite(i) = {0.01 * i, i % 2 == 0 ? 0.0 : 2.0, 0, 1, i};
  }
  struct {
    ClipPolygon polygon;
    std::uint64_t guard = 0x5A5A5A5A5A5A5A5A;
  } destination{};
  destination.polygon.vertices[31].outcode = 99;
  EXPECT_EQ(clipPolygonYMax(saw, destination.polygon), 32U);
  EXPECT_EQ(destination.polygon.count, 32U);
  EXPECT_EQ(destination.guard, 0x5A5A5A5A5A5A5A5AU);
  // Of the 48 vertices the last is the crossing of the closing edge, from tooth 31 to vertex 0.
  EXPECT_EQ(destination.polygon.vertices[31].x, 0.31 + (0 - 0.31) * 0.5);
  EXPECT_EQ(destination.polygon.vertices[31].outcode, 30U);  // of the vertex written there before
  computeOutcode(saw);
  EXPECT_TRUE(clipPolygonInPlace(saw));
  EXPECT_EQ(saw.count, 32U);
}

TEST(FixedPolygon, AccessorsStayInside) {
  struct {
    ClipPolygonF polygon;
    std::uint64_t guard = 1;
  } held{};
  ClipPolygonF& polygon = held.polygon;
  for (std::uint32_t i = 0; i < 32; ++i) polygon.vertices[i].x = static_cast<float>(i) + 1;
  struct {
    std::uint32_t count, index;
    float read;
    std::uint32_t written, countAfter;
  } const kCases[] = {{0, 0, 0, 0, 1},      {5, 4, 5, 4, 5},     {5, 5, 0, 5, 6},
                      {5, 20, 0, 20, 21},   {31, 31, 0, 31, 32}, {32, 32, 0, 31, 32},
                      {40, 31, 32, 31, 40}, {40, 35, 0, 31, 40}, {~0U, ~0U - 1, 0, 31, ~0U},
                      {3, ~0U, 0, 31, 3}};
  for (const auto& tested : kCases) {
    polygon.count = tested.count;
    EXPECT_EQ(polygon.vertexAt(tested.index).x, tested.read);
    const ClipVertexRefF cursor{tested.index - 7, &polygon};
    EXPECT_EQ(&cursor[7].write(), &polygon.vertices[tested.written]);
    EXPECT_EQ(polygon.count, tested.countAfter);
  }
  polygon.count = 32;
  ClipVertexRefF cursor{1, &polygon};
  EXPECT_EQ((cursor++).read().x, 2.0F);
  EXPECT_EQ((++cursor).read().x, 4.0F);
  EXPECT_EQ(held.guard, 1U);
}

// Where no plane is to run, or there is too little to run it on.
TYPED_TEST(Polygons, NothingToDo) {
  using Polygon = typename TypeParam::Polygon;
  auto pair = this->randomPair(5, 0, true);
  Polygon first = TypeParam::make(), second = TypeParam::make();
  second.count = 2;
  EXPECT_EQ(TypeParam::volume(first, second, pair.polygon, 0xFFFFFF88), &second);
  EXPECT_EQ(TypeParam::rectangle(first, second, pair.polygon, ClipZMax | ClipZMin), &second);
  EXPECT_EQ(second.count, 2U);
  EXPECT_EQ(first.count, 0U);
  for (std::uint32_t i = 0; i < 5; ++i) {
    pair.polygon.vertexForWrite(i).outcode = pair.model.slots[i].outcode = i % 2 != 0 ? 0x44 : 0x80;
  }
  EXPECT_TRUE(TypeParam::inPlace2D(pair.polygon));
  EXPECT_TRUE(this->same(pair.polygon, pair.model, true));
  for (std::uint32_t i = 0; i < 5; ++i) pair.polygon.vertexForWrite(i).outcode |= 0x80;
  EXPECT_FALSE(TypeParam::inPlace2D(pair.polygon));  // a bit shared by all, of no plane

  for (const std::uint32_t count : {0U, 1U}) {
    pair.polygon.count = count;
    first.count = 9;
    EXPECT_EQ(TypeParam::kPass[0](pair.polygon, first), 0U);
    EXPECT_EQ(first.count, 0U);
    EXPECT_EQ(TypeParam::volume(first, second, pair.polygon, ClipYMin), nullptr);
    EXPECT_FALSE(TypeParam::inPlace(pair.polygon));
  }
}

TEST(FixedPolygon, UsesNoHeap) {
  PointSource<double> source(3);
  const auto polygons = std::make_unique<ClipPolygon[]>(64);
  const auto scratch = std::make_unique<ClipPolygon[]>(2);
  const auto trace = std::make_unique<ClipTrace>();
  for (std::uint32_t i = 0; i < 64 * 32; ++i) {
    const auto k = source.point(i % 2);
    polygons[i / 32].vertexForWrite(i % 32) = {k[0], k[1], k[2], k[3], 0};
  }
  ClipOutcome outcomes[64];
  const std::uint64_t before = odrxAllocCounts().calls;
#if ULM_COUNT_MALLOC
  const std::size_t mallocsBefore = mallocCalls;
#endif
  for (std::size_t i = 0; i < 64; ++i) {
    computeOutcode(polygons[i]);
    clipPolygonToVolume(scratch[0], scratch[1], polygons[i], ~0U);
  }
  clipPolygonInPlace(polygons[0], *trace);
  const std::size_t remaining = clipPolygonsInPlace(polygons.get(), 64, outcomes);
#if ULM_COUNT_MALLOC
  EXPECT_EQ(mallocCalls, mallocsBefore);
#endif
  EXPECT_EQ(odrxAllocCounts().calls, before);
  EXPECT_GT(remaining, 5U);
}

}  // namespace
}  // namespace ulm::clip
