// Origins of vertices: a coordinate that is carried along by a trace, as a caller would carry a
// colour, comes out with the clipper's own bits.
#include "clip/trace.h"

#include <gtest/gtest.h>

#include <span>
#include <vector>

#include "clip/growable/polygon_array.h"
#include "clip/polygon.h"
#include "tests/support/clip_model.h"

namespace ulm::clip {
namespace {

template <class Real>
void check(std::span<const BasicClipRecord<Real>> records, std::span<const ClipOrigin> origins,
           std::vector<Real> y, auto* result) {
  ASSERT_EQ(origins.size(), result != nullptr ? result->count : 0U);
  const std::size_t sources = y.size();
  const auto at = [&](ClipOrigin origin) {
    return y.at(origin < kClipRecordOrigin ? origin : origin - kClipRecordOrigin + sources);
  };
  for (const auto& [earlier, later, t] : records) {
    y.push_back(interpolate(at(earlier), at(later), t));
  }
  for (std::uint32_t i = 0; i < origins.size(); ++i) {
    ASSERT_TRUE(test::sameBits(at(origins[i]), result->vertexAt(i).y));
  }
}
template <class Real>
void check(const BasicClipTrace<Real>& trace, const std::vector<Real>& y, auto* result) {
  ASSERT_LE(trace.recordCount, kClipTraceCapacity);
  check<Real>({trace.records, trace.recordCount}, {trace.origins, trace.originCount}, y, result);
}
template <class Real>
void check(const BasicClipTraceArray<Real>& trace, const std::vector<Real>& y, auto* result) {
  check<Real>({trace.records.data(), trace.records.length()},
              {trace.origins.data(), trace.origins.length()}, y, result);
}

template <class Real>
class Trace : public testing::Test {};
using Widths = testing::Types<double, float>;
TYPED_TEST_SUITE(Trace, Widths);

TYPED_TEST(Trace, CarriesACoordinateToItsOwnBits) {
  test::PointSource<TypeParam> source(11);
  for (int round = 0; round < 4000; ++round) {
    const std::uint32_t count = source.below(round % 9 == 0 ? 33 : 8);
    BasicClipPolygon<TypeParam> fixed{}, first{}, second{};
    BasicClipPolygonArray<TypeParam> growable(count, true), firstArray, secondArray;
    std::vector<TypeParam> y;
    for (std::uint32_t i = 0; i < count; ++i) {
      const auto k = source.point(round % 3 == 0 ? 1 : 0);
      growable.vertexForWrite(i) = fixed.vertexForWrite(i) = {k[0], k[1], k[2], k[3], 0};
      y.push_back(k[1]);
    }
    computeOutcode(fixed);
    computeOutcode(growable);
    BasicClipTrace<TypeParam> trace;
    BasicClipTraceArray<TypeParam> array;
    const bool flat = source.below(2) == 0;
    check(trace, y,
          flat ? clipPolygonToRectangle(first, second, fixed, ~0U, trace)
               : clipPolygonToVolume(first, second, fixed, ~0U, trace));
    check(array, y,
          flat ? clipPolygonArrayToRectangle(firstArray, secondArray, growable, ~0U, array)
               : clipPolygonArrayToVolume(firstArray, secondArray, growable, ~0U, array));
    const bool left = flat ? clipPolygonInPlace2D(fixed, trace) : clipPolygonInPlace(fixed, trace);
    check(trace, y, left ? &fixed : nullptr);
    const bool leftArray = flat ? clipPolygonArrayInPlace2D(growable, array)
                                : clipPolygonArrayInPlace(growable, array);
    check(array, y, leftArray ? &growable : nullptr);
    if (this->HasFatalFailure()) return;
  }
}

TEST(TraceOf, ACornerCutOff) {
  ClipPolygon triangle{{{0, -0.5, 0, 1, 0}, {3, 0, 0, 1, ClipXMax}, {0, 0.5, 0, 1, 0}}, 3};
  ClipTrace trace;
  ASSERT_TRUE(clipPolygonInPlace(triangle, trace));
  ASSERT_EQ(trace.recordCount, 2U);
  EXPECT_TRUE(trace.records[0].earlier == 0 && trace.records[0].later == 1);
  EXPECT_EQ(trace.records[0].t, 1.0 / 3.0);
  EXPECT_TRUE(trace.records[1].earlier == 1 && trace.records[1].later == 2);
  const ClipOrigin expected[] = {0, kClipRecordOrigin, kClipRecordOrigin + 1, 2};
  EXPECT_TRUE(std::equal(expected, expected + 4, trace.origins, trace.origins + trace.originCount));
}

}  // namespace
}  // namespace ulm::clip
