#include "clip/segment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/clip/fast_math_user.h"
#include "tests/support/clip_model.h"

namespace ulm::clip {
namespace {

using test::PointSource;
using test::sameBits;

template <class Point>
class Points : public testing::Test {};
using PointTypes = testing::Types<ClipPoint, ClipPointF, ClipVertex, ClipVertexF>;
TYPED_TEST_SUITE(Points, PointTypes);

template <class Point, class Real>
Point pointOf(const std::array<Real, 4>& k) {
  Point p{};
  p.x = k[0], p.y = k[1], p.z = k[2], p.w = k[3];
  return p;
}

template <class Point, class Real>
bool same(const Point& p, const std::array<Real, 4>& k) {
  return sameBits(p.x, k[0]) && sameBits(p.y, k[1]) && sameBits(p.z, k[2]) && sameBits(p.w, k[3]);
}

TYPED_TEST(Points, SegmentsHaveTheBitsOfTheModel) {
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
  PointSource<Real> source(1);
  int lost = 0;
  for (int round = 0; round < 20000; ++round) {
    const auto from = source.point(source.below(3));
    const auto to = source.point(source.below(3));
    for (const auto& clipper : kClippers) {
      auto modelA = from, modelB = to;
      Point a = pointOf<Point>(from), b = pointOf<Point>(to);
      const bool remains = test::modelSegment(clipper.mask, modelA, modelB);
      ASSERT_EQ(clipper.clip(a, b), remains) << round << " mask " << clipper.mask;
      ASSERT_TRUE(same(a, modelA) && same(b, modelB)) << round << " mask " << clipper.mask;
      lost += remains ? 0 : 1;
    }
  }
  EXPECT_GT(lost, 10000);
}

TYPED_TEST(Points, InsideTestsOutcodesAndFiniteness) {
  using Real = decltype(TypeParam::x);
  PointSource<Real> source(2);
  for (int round = 0; round < 20000; ++round) {
    const auto k = source.point(source.below(3));
    const auto p = pointOf<TypeParam>(k);
    const bool flat = k[0] <= k[3] && k[1] <= k[3] && k[0] >= -k[3] && k[1] >= -k[3];
    ASSERT_EQ(isInsideVolume2D(p), flat);
    ASSERT_EQ(isInsideVolume3D(p), flat && k[2] <= k[3] && k[2] >= -k[3]);
    ASSERT_EQ(isFinite(p), std::isfinite(k[0] * 0 + k[1] * 0 + k[2] * 0 + k[3] * 0));
    BasicClipVertex<Real> vertex{k[0], k[1], k[2], k[3], 0xFFFF};
    ASSERT_EQ(computeOutcode(vertex), test::modelOutcode(k));
    ASSERT_EQ(vertex.outcode, test::modelOutcode(k));
  }
}

// What the comparisons decide at the edge, where a derived test would decide otherwise.
TEST(Segment, EdgeCases) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    const char* name;
    ClipPoint a, b;
    bool remains;
    ClipPoint newA, newB;
  } kCases[] = {
      {"OnThePlaneGoingOut", {1, 0, 0, 1}, {2, 0, 0, 1}, true, {1, 0, 0, 1}, {1, 0, 0, 1}},
      {"OutsideToOutside", {-3, 0, 0, 1}, {3, 0, 0, 1}, true, {-1, 0, 0, 1}, {1, 0, 0, 1}},
      {"BehindTheEye", {0, 0, 0, -1}, {0, 0, 0, -1}, false, {0, 0, 0, -1}, {0, 0, 0, -1}},
      {"AllZero", {0, 0, 0, 0}, {0, 0, 0, 0}, true, {0, 0, 0, 0}, {0, 0, 0, 0}},
      // Both ends are beyond y = w, yet x = -w comes first and moves the start.
      {"MovedBeforeRefused", {-3, 2, 0, 1}, {1, 2, 0, 1}, false, {-1, 2, 0, 1}, {1, 2, 0, 1}},
      // The start of a segment is outside a min plane with a NaN, and inside a max plane.
      {"NanStart", {nan, 0, 0, 1}, {nan, 0, 0, 1}, false, {nan, 0, 0, 1}, {nan, 0, 0, 1}},
  };
  for (const auto& tested : kCases) {
    ClipPoint a = tested.a, b = tested.b;
    EXPECT_EQ(clipSegment3D(a, b), tested.remains) << tested.name;
    const auto same = [](const ClipPoint& p, const ClipPoint& q) {
      return sameBits(p.x, q.x) && sameBits(p.y, q.y) && sameBits(p.w, q.w);
    };
    EXPECT_TRUE(same(a, tested.newA) && same(b, tested.newB)) << tested.name;
  }
}

TEST(Segment, OutcodeOfAVertexIsLeftAlone) {
  ClipVertex a{-3, 0, 0, 1, 0xAB};
  ClipVertex b{3, 0, 0, 1, 0xCD};
  EXPECT_TRUE(clipSegment2D(a, b));
  EXPECT_EQ(a.outcode, 0xABU);
  EXPECT_EQ(b.outcode, 0xCDU);
}

TEST(Interpolate, OrderOfOperationsShowsInTheLastBit) {
  EXPECT_EQ(interpolate(0.1, 0.7, 0.3), (0.7 - 0.1) * 0.3 + 0.1);
  // The float form rounds each step to float; through double it would be one ulp off.
  volatile float a = 0.1F, b = 0.7F, t = 0.3F;
  volatile float difference = b - a;
  volatile float product = difference * t;
  volatile float sum = product + a;
  EXPECT_EQ(interpolate(a, b, t), sum);
  // The product first: n / d first would give 1 / 3 * 3 = 1.
  EXPECT_EQ(interpolateRatio(0.0, 3.0, 1.0, 3.0), 1.0);
  EXPECT_EQ(interpolateRatio(0.0, 10.0, 3.0, 10.0), 10.0 * 3.0 / 10.0);
  EXPECT_TRUE(std::isinf(interpolateRatio(0.0, 1e308, 10.0, 100.0)));
}

}  // namespace
}  // namespace ulm::clip
