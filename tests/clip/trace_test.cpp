// Origins of vertices: attributes carried along by a trace come out as the clipper's own numbers.
#include "clip/trace.h"

#include <gtest/gtest.h>

#include <vector>

#include "clip/growable/polygon_array.h"
#include "clip/polygon.h"
#include "tests/support/clip_model.h"

namespace ulm::clip {
namespace {

using test::PointSource;
using test::sameBits;

// What a caller does with a trace: all attributes of the source, then one a record.
template <class Real, class RecordAt, class OriginAt>
std::vector<Real> carry(std::vector<Real> attributes, std::uint32_t recordCount, RecordAt recordAt,
                        std::uint32_t originCount, OriginAt originAt) {
  const auto sourceCount = static_cast<std::uint32_t>(attributes.size());
  const auto place = [&](ClipOrigin origin) {
    return origin < kClipRecordOrigin ? origin : origin - kClipRecordOrigin + sourceCount;
  };
  for (std::uint32_t i = 0; i < recordCount; ++i) {
    const BasicClipRecord<Real> record = recordAt(i);
    EXPECT_LT(place(record.earlier), attributes.size());
    EXPECT_LT(place(record.later), attributes.size());
    attributes.push_back(interpolate(attributes.at(place(record.earlier)),
                                     attributes.at(place(record.later)), record.t));
  }
  std::vector<Real> carried;
  for (std::uint32_t i = 0; i < originCount; ++i) {
    carried.push_back(attributes.at(place(originAt(i))));
  }
  return carried;
}

template <class Real>
class Trace : public testing::Test {
 protected:
  void check(bool remains, const std::vector<Real>& carried, auto& polygon) {
    ASSERT_EQ(carried.size(), remains ? polygon.count : 0);
    for (std::uint32_t i = 0; i < carried.size(); ++i) {
      ASSERT_TRUE(sameBits(carried[i], polygon.vertexAt(i).y));
    }
  }
};
using Widths = testing::Types<double, float>;
TYPED_TEST_SUITE(Trace, Widths);

TYPED_TEST(Trace, CarriesACoordinateToItsOwnBits) {
  using Real = TypeParam;
  PointSource<Real> source(11);
  int remaining = 0;
  for (int round = 0; round < 4000; ++round) {
    const std::uint32_t count = source.below(round % 9 == 0 ? 33 : 8);
    const bool flat = source.below(2) == 0;
    const bool inPlace = source.below(2) == 0;
    BasicClipPolygon<Real> fixed{}, first{}, second{};
    BasicClipPolygonArray<Real> growable(count, true), firstArray(0, false), secondArray(2, false);
    std::vector<Real> y;
    for (std::uint32_t i = 0; i < count; ++i) {
      const auto k = source.point(round % 3 == 0 ? 1 : 0);
      growable.vertexForWrite(i) = fixed.vertexForWrite(i) = {k[0], k[1], k[2], k[3], 0};
      y.push_back(k[1]);
    }
    computeOutcode(fixed);
    computeOutcode(growable);

    BasicClipTrace<Real> trace;
    BasicClipTraceArray<Real> traceArray;
    auto* result = &fixed;
    auto* resultArray = &growable;
    if (inPlace) {
      if (!(flat ? clipPolygonInPlace2D(fixed, trace) : clipPolygonInPlace(fixed, trace))) {
        result = nullptr;
      }
      if (!(flat ? clipPolygonArrayInPlace2D(growable, traceArray)
                 : clipPolygonArrayInPlace(growable, traceArray))) {
        resultArray = nullptr;
      }
    } else {
      result = flat ? clipPolygonToRectangle(first, second, fixed, ~0U, trace)
                    : clipPolygonToVolume(first, second, fixed, ~0U, trace);
      resultArray =
          flat ? clipPolygonArrayToRectangle(firstArray, secondArray, growable, ~0U, traceArray)
               : clipPolygonArrayToVolume(firstArray, secondArray, growable, ~0U, traceArray);
    }
    ASSERT_LE(trace.recordCount, kClipTraceCapacity);
    const auto carried = carry(
        y, trace.recordCount, [&](std::uint32_t i) { return trace.records[i]; }, trace.originCount,
        [&](std::uint32_t i) { return trace.origins[i]; });
    const auto carriedArray = carry(
        y, traceArray.records.length(),
        [&](std::uint32_t i) { return std::as_const(traceArray.records).at(i); },
        traceArray.origins.length(),
        [&](std::uint32_t i) { return std::as_const(traceArray.origins).at(i); });
    ASSERT_NO_FATAL_FAILURE(this->check(result != nullptr, carried, *(result ? result : &fixed)));
    ASSERT_NO_FATAL_FAILURE(this->check(resultArray != nullptr, carriedArray,
                                        *(resultArray ? resultArray : &growable)));
    ASSERT_TRUE(result != nullptr || trace.recordCount == 0);
    remaining += result != nullptr ? 1 : 0;
  }
  EXPECT_GT(remaining, 500);
}

// A triangle with a corner off x = w: its two new vertices, and who their parents are.
TEST(TraceOf, ACornerCutOff) {
  ClipPolygon triangle{{{0, -0.5, 0, 1, 0}, {3, 0, 0, 1, ClipXMax}, {0, 0.5, 0, 1, 0}}, 3};
  ClipTrace trace;
  ASSERT_TRUE(clipPolygonInPlace(triangle, trace));
  ASSERT_EQ(trace.recordCount, 2U);
  EXPECT_EQ(trace.records[0].earlier, 0U);
  EXPECT_EQ(trace.records[0].later, 1U);
  EXPECT_EQ(trace.records[0].t, 1.0 / 3.0);
  EXPECT_EQ(trace.records[1].earlier, 1U);
  EXPECT_EQ(trace.records[1].later, 2U);
  ASSERT_EQ(trace.originCount, 4U);
  const ClipOrigin expected[] = {0, kClipRecordOrigin, kClipRecordOrigin + 1, 2};
  EXPECT_TRUE(std::equal(expected, expected + 4, trace.origins));
}

}  // namespace
}  // namespace ulm::clip
