#include "clip/segment.h"

#include <gtest/gtest.h>

#include "tests/clip/fast_math_user.h"
#include "tests/support/clip_model.h"

namespace ulm::clip {
namespace {

template <class Point>
class Points : public testing::Test {};
using PointTypes = testing::Types<ClipPoint, ClipPointF, ClipVertex, ClipVertexF>;
TYPED_TEST_SUITE(Points, PointTypes);

template <class Point, class Real>
Point pointOf(const test::ModelPoint<Real>& k) {
  Point p{};
  p.x = k[0], p.y = k[1], p.z = k[2], p.w = k[3];
  return p;
}

TYPED_TEST(Points, HaveTheBitsOfTheModel) {
  using Point = TypeParam;
  using Real = decltype(Point::x);
  struct {
    bool (*clip)(Point&, Point&);
    std::uint32_t mask;
  } const kClippers[] = {
      {clipSegmentXMin<Point>, ClipXMin},
      {clipSegmentXMax<Point>, ClipXMax},
      {clipSegmentYMin<Point>, ClipYMin},
      {clipSegmentYMax<Point>, ClipYMax},
      {clipSegmentZMin<Point>, ClipZMin},
      {clipSegmentZMax<Point>, ClipZMax},
      {clipSegment2D<Point>, 0x33},
      {clipSegment3D<Point>, 0x77},
      {[](Point& a, Point& b) { return clipSegmentToVolume(a, b, ~0x32U); }, 0x45},
      {test::clipSegmentUnderFastMath<Point>, 0x77}};
  test::PointSource<Real> source(1);
  int lost = 0;
  for (int round = 0; round < 20000; ++round) {
    const auto from = source.point(source.below(3)), to = source.point(source.below(3));
    for (const auto& clipper : kClippers) {
      auto modelA = from, modelB = to;
      Point a = pointOf<Point>(from), b = pointOf<Point>(to);
      const bool remains = test::modelSegment(clipper.mask, modelA, modelB);
      ASSERT_EQ(clipper.clip(a, b), remains) << round << " mask " << clipper.mask;
      // After false too: planes before the one that refused have moved the ends.
      ASSERT_TRUE(test::samePoint(a, modelA) && test::samePoint(b, modelB)) << round;
      lost += remains ? 0 : 1;
    }
    const Point p = pointOf<Point>(from);
    const auto& [x, y, z, w] = from;
    const bool flat = x <= w && y <= w && x >= -w && y >= -w;
    ASSERT_EQ(isInsideVolume2D(p), flat);
    ASSERT_EQ(isInsideVolume3D(p), flat && z <= w && z >= -w);
    ASSERT_EQ(isFinite(p), std::isfinite(x * 0 + y * 0 + z * 0 + w * 0));
    BasicClipVertex<Real> vertex{x, y, z, w, 0xFFFF};
    ASSERT_EQ(computeOutcode(vertex), test::modelOutcode(from));
    ASSERT_EQ(vertex.outcode, test::modelOutcode(from));
  }
  EXPECT_GT(lost, 10000);
}

TEST(Segment, EdgeCases) {
  const struct {
    ClipVertex a, b;
    bool remains;
    test::ModelPoint<double> newA, newB;
  } kCases[] = {{{1, 0, 0, 1, 7}, {2, 0, 0, 1, 8}, true, {1, 0, 0, 1}, {1, 0, 0, 1}},
                {{-3, 0, 0, 1, 7}, {3, 0, 0, 1, 8}, true, {-1, 0, 0, 1}, {1, 0, 0, 1}},
                {{0, 0, 0, -1, 7}, {0, 0, 0, -1, 8}, false, {0, 0, 0, -1}, {0, 0, 0, -1}},
                {{0, 0, 0, 0, 7}, {0, 0, 0, 0, 8}, true, {0, 0, 0, 0}, {0, 0, 0, 0}},
                {{-3, 2, 0, 1, 7}, {1, 2, 0, 1, 8}, false, {-1, 2, 0, 1}, {1, 2, 0, 1}}};
  for (auto [a, b, remains, newA, newB] : kCases) {
    EXPECT_EQ(clipSegment3D(a, b), remains);
    EXPECT_TRUE(test::samePoint(a, newA) && test::samePoint(b, newB));
    EXPECT_TRUE(a.outcode == 7 && b.outcode == 8);
  }
}

TEST(Interpolate, KeepsTheOrderOfOperations) {
  EXPECT_EQ(interpolate(0.1, 0.7, 0.3), (0.7 - 0.1) * 0.3 + 0.1);
  EXPECT_EQ(interpolateRatio(0.0F, 10.0F, 3.0F, 10.0F), 3.0F);
  EXPECT_TRUE(std::isinf(interpolateRatio(0.0, 1e308, 10.0, 100.0)));  // the product comes first
}

}  // namespace
}  // namespace ulm::clip
