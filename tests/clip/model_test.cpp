// Compares segments, fixed and growable polygons and their traces with the model, bit by bit.
#include "clip/polygon.h"

#include <gtest/gtest.h>

#include <span>
#include <vector>

#include "clip/growable/polygon_array.h"
#include "clip/segment.h"
#include "clip/trace.h"
#include "tests/clip/clip_model.h"

namespace ulm::clip {
namespace {

template <class Point>
class Points : public testing::Test {};
using PointTypes = testing::Types<ClipPoint, ClipPointF, ClipVertex, ClipVertexF>;
TYPED_TEST_SUITE(Points, PointTypes);

TYPED_TEST(Points, HaveTheBitsOfTheModel) {
  using Point = TypeParam;
  using Real = decltype(Point::x);
  bool (*const kClippers[])(Point&, Point&) = {
      clipSegmentXMin,
      clipSegmentXMax,
      clipSegmentYMax,
      clipSegmentYMin,
      clipSegmentZMax,
      clipSegmentZMin,
      clipSegment2D,
      clipSegment3D,
      [](Point& a, Point& b) { return clipSegmentToVolume(a, b, ~0x32U); }};
  const std::uint32_t kMasks[] = {0x01, 0x10, 0x20, 0x02, 0x04, 0x40, 0x33, 0x77, 0x45};
  test::PointSource<Real> source{std::mt19937(1)};
  int lost = 0;
  for (int round = 0; round < 20000; ++round) {
    const auto from = source.point(source.below(3)), to = source.point(source.below(3));
    Point p{}, q{};
    p.x = from[0], p.y = from[1], p.z = from[2], p.w = from[3];
    q.x = to[0], q.y = to[1], q.z = to[2], q.w = to[3];
    for (std::size_t i = 0; i < std::size(kMasks); ++i) {
      auto modelA = from, modelB = to;
      Point a = p, b = q;
      const bool remains = test::modelSegment(kMasks[i], modelA, modelB);
      ASSERT_EQ(kClippers[i](a, b), remains) << round << " mask " << kMasks[i];
      // After false too: planes before the one that refused have moved the ends.
      ASSERT_TRUE(test::samePoint(a, modelA) && test::samePoint(b, modelB)) << round;
      lost += remains ? 0 : 1;
    }
    const auto& [x, y, z, w] = from;
    const bool flat = x <= w && y <= w && x >= -w && y >= -w;
    ASSERT_EQ(isInsideVolume2D(p), flat);
    ASSERT_EQ(isInsideVolume3D(p), flat && z <= w && z >= -w);
    ASSERT_EQ(isFinite(p), std::isfinite(x * 0 + y * 0 + z * 0 + w * 0));
    BasicClipVertex<Real> vertex{x, y, z, w, 0xFFFF};
    ASSERT_EQ(computeOutcode(vertex), vertex.outcode);
    ASSERT_EQ(vertex.outcode, test::modelOutcode(from));
  }
  EXPECT_GT(lost, 10000);
}

TEST(Interpolate, KeepsTheOrderOfOperations) {
  EXPECT_EQ(interpolate(0.1, 0.7, 0.3), (0.7 - 0.1) * 0.3 + 0.1);
  EXPECT_EQ(interpolateRatio(0.0F, 10.0F, 3.0F, 10.0F), 3.0F);
  EXPECT_TRUE(std::isinf(interpolateRatio(0.0, 1e308, 10.0, 100.0)));     // the product comes first
  EXPECT_TRUE(std::isinf(interpolateRatio(0.0F, 1e38F, 10.0F, 100.0F)));  // and is not widened
}

// The functions that the two containers have in common, under one set of names; the drivers for the
// volume come first, those for the rectangle second.
#define ULM_CONTAINER(Name, PolygonOf, From, clip, grows)                                         \
  template <class Real>                                                                           \
  struct Name {                                                                                   \
    using Number = Real;                                                                          \
    using Polygon = PolygonOf<Real>;                                                              \
    using Trace = ClipTrace<Polygon>;                                                             \
    static constexpr bool kGrows = grows;                                                         \
    static constexpr std::uint32_t (*kPass[])(From Polygon&, Polygon&) = {                        \
        clip##XMin, clip##XMax, clip##YMax, clip##YMin, clip##ZMax, clip##ZMin};                  \
    static constexpr Polygon* (*kDrive[])(Polygon&, Polygon&, From Polygon&, std::uint32_t) = {   \
        clip##ToVolume, clip##ToRectangle};                                                       \
    static constexpr Polygon* (*kDriveTraced[])(Polygon&, Polygon&, From Polygon&, std::uint32_t, \
                                                Trace&) = {clipPolygonToVolume,                   \
                                                           clipPolygonToRectangle};               \
    static constexpr bool (*kInPlace[])(Polygon&) = {clip##InPlace, clip##InPlace2D};             \
    static constexpr bool (*kInPlaceTraced[])(Polygon&, Trace&) = {clipPolygonInPlace,            \
                                                                   clipPolygonInPlace2D};         \
    static constexpr std::size_t (*kBatch[])(Polygon*, std::size_t, ClipOutcome*) = {             \
        clip##sInPlace, clip##sInPlace2D};                                                        \
  };
ULM_CONTAINER(Fixed, BasicClipPolygon, const, clipPolygon, false)
ULM_CONTAINER(Growable, BasicClipPolygonArray, , clipPolygonArray, true)
#undef ULM_CONTAINER

// A polygon and its model, with the same vertices in all slots that a test can reach.
template <class Container>
struct Pair {
  using Real = typename Container::Number;
  typename Container::Polygon polygon{};
  test::ModelPolygon<Real> model{.grows = Container::kGrows};

  // Outcodes are true ones, or any below `codeLimit` where that is not 0.
  Pair(test::PointSource<Real>& source, std::uint32_t count, std::uint32_t kind,
       std::uint32_t codeLimit) {
    const auto points = source.outline(count, kind);
    for (std::uint32_t i = 0; i < count; ++i) {
      const auto& k = points[i];
      const std::uint32_t code = codeLimit == 0 ? test::modelOutcode(k) : source.below(codeLimit);
      model.forWrite(i) = {k, code};
      polygon.vertexForWrite(i) = {k[0], k[1], k[2], k[3], code};
    }
  }
  // Count and vertices; every slot of a fixed polygon, the length and capacity of a growable one.
  bool same(bool outcodes) {
    const auto* vertices = [&] {
      if constexpr (Container::kGrows) {
        return std::as_const(polygon.vertices).data();
      } else {
        return polygon.vertices;
      }
    }();
    for (std::uint32_t i = 0; i < (Container::kGrows ? model.count : 32); ++i) {
      const auto& v = vertices[i];
      const auto& [k, outcode] = model.slots[i];
      if (!test::samePoint(v, k) || (outcodes && v.outcode != outcode)) return false;
    }
    if constexpr (Container::kGrows) {
      if (polygon.vertices.length() != model.length) return false;
      if (polygon.vertices.capacity() != model.capacity) return false;
    }
    return polygon.count == model.count;
  }
};

// A coordinate that is carried along by a trace, as a caller would carry a colour, comes out with
// the clipper's own bits: `y` are those of the source.
template <class Polygon, class Real>
void checkTrace(const ClipTrace<Polygon>& trace, std::vector<Real> y, Polygon* result,
                std::uint32_t size) {
  if constexpr (detail::kNeverThrows<Polygon>) {
    ASSERT_LE(trace.records().size(), kClipTraceCapacity);
  }
  const std::span<const ClipOrigin> origins = trace.origins();
  ASSERT_EQ(origins.size(), result != nullptr ? size : 0U);
  const std::size_t sources = y.size();
  const auto at = [&](ClipOrigin origin) {
    return y.at(origin < kClipRecordOrigin ? origin : origin - kClipRecordOrigin + sources);
  };
  for (const auto& [earlier, later, t] : trace.records()) {
    y.push_back(interpolate(at(earlier), at(later), t));
  }
  for (std::uint32_t i = 0; i < origins.size(); ++i) {
    ASSERT_TRUE(test::sameBits(at(origins[i]), result->vertexAt(i).y));
  }
}

template <class Container>
class Polygons : public testing::Test {};
using Containers = testing::Types<Fixed<double>, Fixed<float>, Growable<double>, Growable<float>>;
TYPED_TEST_SUITE(Polygons, Containers);

TYPED_TEST(Polygons, HaveTheBitsOfTheModel) {
  using Clip = TypeParam;
  test::PointSource<typename Clip::Number> source{std::mt19937(7)};
  typename Clip::Trace driven{}, placed{};
  int outcomes[3] = {}, results = 0;
  for (int round = 0; round < 8000 && !this->HasFailure(); ++round) {
    SCOPED_TRACE(round);
    // A fixed polygon with a count above 32 has 32 vertices.
    const bool overfull = !Clip::kGrows && round % 16 == 1;
    const std::uint32_t kind = source.below(4);
    const std::uint32_t most = !Clip::kGrows ? 33 : kind == 3 ? 200 : 100;
    const std::uint32_t count = overfull ? 32 : source.below(round % 8 == 0 ? most : 9);
    const std::uint32_t kCodeLimits[] = {0, 0, 0, 0, 0, 256, 256, 1};
    Pair<Clip> tested(source, count, kind, kCodeLimits[source.below(8)]);
    // Stale destinations: full of values, a fixed one with any count.
    Pair<Clip> cut(source, Clip::kGrows ? 250 : 32, 0, 256), first = cut, second = cut;
    cut.polygon.count = cut.model.count = Clip::kGrows ? 0 : source.below(60);
    if (overfull) tested.polygon.count = tested.model.count = round < 2000 ? 36 : ~0U;
    auto batch = tested.polygon, coded = tested.polygon;
    std::vector<typename Clip::Number> y;
    std::uint32_t any = 0;
    bool finite = true;
    for (std::uint32_t i = 0; i < count; ++i) {
      const auto& k = tested.model.slots[i].k;
      y.push_back(k[1]);
      any |= test::modelOutcode(k);
      for (const auto value : k) finite = finite && std::isfinite(value);
    }
    ASSERT_EQ(computeOutcode(coded), any);
    ASSERT_EQ(isFinite(coded), finite);
    for (std::uint32_t i = 0; i < count; ++i) {
      ASSERT_EQ(coded.vertexAt(i).outcode, test::modelOutcode(tested.model.slots[i].k));
    }
    const std::uint32_t plane = source.below(6);
    const std::uint32_t flat = source.below(2), planes = flat != 0 ? 0x33 : 0x77;
    const std::uint32_t mask = source.below(2) == 0 ? ~0U : source.below(256);
    const bool traced = source.below(2) == 0;
    ClipOutcome outcome{};

    const std::uint32_t made = Clip::kPass[plane](tested.polygon, cut.polygon);
    auto* const result =
        traced
            ? Clip::kDriveTraced[flat](first.polygon, second.polygon, tested.polygon, mask, driven)
            : Clip::kDrive[flat](first.polygon, second.polygon, tested.polygon, mask);
    const bool remains = traced ? Clip::kInPlaceTraced[flat](tested.polygon, placed)
                                : Clip::kInPlace[flat](tested.polygon);
    const std::size_t remaining = Clip::kBatch[flat](&batch, 1, &outcome);

    ASSERT_EQ(made, test::modelPass(test::kModelPlanes[plane], tested.model, cut.model));
    ASSERT_TRUE(cut.same(true));
    auto* const expected =
        test::modelPingPong(first.model, second.model, tested.model, mask & planes);
    ASSERT_EQ(result == nullptr, expected == nullptr);
    const std::uint32_t drivenSize = result != nullptr ? result->count : 0;
    if (result != nullptr) {
      ASSERT_EQ(result == &first.polygon, expected == &first.model);
      ASSERT_TRUE((expected == &first.model ? first : second).same(true));
      ++results;
    }
    const int expectedOutcome = test::modelInPlace(tested.model, planes);
    ASSERT_EQ(remains, expectedOutcome != 2);
    // The outcode of a new vertex is settled for the fixed polygons alone.
    ASSERT_TRUE(tested.same(!Clip::kGrows));
    if (traced) {
      checkTrace(driven, y, (mask & planes) != 0 ? result : nullptr, drivenSize);
      checkTrace(placed, y, remains ? &tested.polygon : nullptr, tested.model.size());
    }
    ASSERT_EQ(remaining, remains ? 1U : 0U);
    ASSERT_EQ(static_cast<int>(outcome), expectedOutcome);
    std::swap(tested.polygon, batch);
    ASSERT_TRUE(tested.same(!Clip::kGrows));
    ++outcomes[expectedOutcome];
  }
  EXPECT_TRUE(results > 1000 && outcomes[0] > 50 && outcomes[1] > 500 && outcomes[2] > 500);
}

TEST(FixedPolygon, AccessorsStayInside) {
  ClipPolygonF polygon{};
  for (std::uint32_t i = 0; i < 32; ++i) polygon.vertices[i].x = static_cast<float>(i) + 1;
  for (const std::uint32_t count : {0U, 5U, 31U, 32U, 40U, ~0U}) {
    for (const std::uint32_t index : {0U, 4U, 20U, 31U, 32U, 35U, ~0U - 1, ~0U}) {
      polygon.count = count;
      ClipVertexRefF cursor{index - 7, &polygon};
      const bool isThere = index < count && index < 32;
      EXPECT_EQ(cursor[7].read().x, isThere ? static_cast<float>(index) + 1 : 0) << index;
      EXPECT_EQ(&cursor[7].write(), &polygon.vertices[std::min(index, 31U)]);
      EXPECT_EQ(polygon.count, index < 32 ? std::max(count, index + 1) : count);
      EXPECT_TRUE((cursor++).index == index - 7 && (++cursor).index == index - 5);
    }
  }
}

TEST(Segments, LeaveOutcodesAlone) {
  ClipVertex a{-2, 0, 0, 1, 7};
  ClipVertex b{2, 0, 0, 1, 9};
  EXPECT_TRUE(clipSegment3D(a, b) && a.x == -1 && b.x == 1);
  EXPECT_TRUE(a.outcode == 7 && b.outcode == 9);
}

}  // namespace
}  // namespace ulm::clip
