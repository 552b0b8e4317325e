// What is the growable polygons' own: sharing, growth, the errors that they raise.
#include "clip/growable/polygon_array.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/odrx/alloc_control.h"

namespace ulm::clip {
namespace {

// A circle of `count` vertices and radius 1.2, out of the volume on four sides.
ClipPolygonArray circle(std::uint32_t count) {
  ClipPolygonArray polygon(count, true);
  for (std::uint32_t i = 0; i < count; ++i) {
    const double angle = 6.283185307179586 * i / count;
    polygon.vertexForWrite(i) = {1.2 * std::cos(angle), 1.2 * std::sin(angle), 0, 1, 0};
  }
  computeOutcode(polygon);
  return polygon;
}

const ClipVertex* bufferOf(const ClipPolygonArray& polygon) { return polygon.vertices.data(); }

template <class Call>
std::int32_t codeRaisedBy(Call&& call) {
  try {
    call();
  } catch (const OdError& error) {
    return error.code();
  }
  return 0;
}

TEST(Growable, AThousandVerticesAndAnOwnerOfTheirOwn) {
  ClipPolygonArray polygon = circle(1000);
  const ClipPolygonArray shared = polygon;
  const ClipVertex* const buffer = bufferOf(shared);
  const ClipVertex third = shared.vertices.at(3);
  ASSERT_TRUE(clipPolygonArrayInPlace(polygon));
  EXPECT_EQ(polygon.count, 260U);  // four arcs, each between two crossings
  EXPECT_TRUE(bufferOf(shared) == buffer && shared.count == 1000);
  EXPECT_EQ(shared.vertices.at(3).x, third.x);
  const ClipVertex* const result = bufferOf(polygon);
  polygon.vertexForWrite(0).x = 0;  // the only owner writes where it is
  EXPECT_EQ(bufferOf(polygon), result);
  EXPECT_LT(polygon.count, polygon.vertices.length());
  EXPECT_EQ(&polygon.vertexAt(polygon.count), &defaultClipVertexArray);
}

TEST(Growable, ReadingDetachesAndSettledCasesDoNot) {
  ClipPolygonArray polygon = circle(8);
  for (std::uint32_t i = 0; i < 8; ++i) polygon.vertexForWrite(i).outcode = 0;
  const ClipPolygonArray shared = polygon;
  const std::uint64_t calls = odrxAllocCounts().calls;
  EXPECT_TRUE(clipPolygonArrayInPlace(polygon) && isFinite(polygon));
  EXPECT_EQ(&polygon.vertexAt(8), &defaultClipVertexArray);
  EXPECT_EQ(odrxAllocCounts().calls, calls);
  ClipVertexRefArray cursor{0, &polygon};
  EXPECT_EQ(cursor[2].read().x, shared.vertices.at(2).x);
  EXPECT_NE(bufferOf(polygon), bufferOf(shared));

  // A destination that shares with its source does not write into it.
  ClipPolygonArray destination = polygon;
  EXPECT_EQ(clipPolygonArrayXMin(polygon, destination), 9U);
  EXPECT_EQ(polygon.vertexAt(4).x, shared.vertices.at(4).x);
  EXPECT_EQ(polygon.count, 8U);
}

TEST(Growable, GrowsAsItIsMadeAndWritten) {
  for (const std::uint32_t size : {~0U, ~0U - 15, ~0U - 16, 107374182U}) {
    EXPECT_EQ(codeRaisedBy([&] { ClipPolygonArray(size, true); }), 9) << size;
  }
  EXPECT_EQ(ClipPolygonArrayF(5, true).count, 5U);
  ClipPolygonArray polygon(3, false);
  EXPECT_EQ(polygon.count, 0U);
  EXPECT_TRUE(polygon.vertices.capacity() == 19 && polygon.vertices.growth() == -50);
  polygon.vertexForWrite(1).x = 1;
  EXPECT_TRUE(polygon.count == 2 && polygon.vertices.length() == 3);
  ClipVertexRefArray{20, &polygon}.write().x = 2;
  EXPECT_TRUE(polygon.count == 21 && polygon.vertices.length() == 21);
  EXPECT_EQ(polygon.vertices.capacity(), 21U);  // half as much again as 3 is less
  polygon.vertexForWrite(21);
  EXPECT_EQ(polygon.vertices.capacity(), 31U);
  EXPECT_EQ(polygon.vertices.at(1).x, 1);
  for (const std::uint32_t index : {~0U, ~0U - 1, 107374181U}) {
    EXPECT_EQ(codeRaisedBy([&] { polygon.vertexForWrite(index); }), 9) << index;
    EXPECT_TRUE(polygon.count == 22 && polygon.vertices.length() == 22);
  }
}

TEST(Growable, ACountAboveTheLengthIsAnInvalidIndex) {
  ClipPolygonArray polygon = circle(8), first, second, empty;
  ClipTraceArray trace;
  for (const std::uint32_t count : {9U, ~0U}) {
    polygon.count = count;
    EXPECT_THROW(clipPolygonArrayInPlace(polygon), OdError_InvalidIndex);
    EXPECT_THROW(clipPolygonArrayInPlace2D(polygon, trace), OdError_InvalidIndex);
    EXPECT_THROW(clipPolygonArrayToVolume(first, second, polygon, ~0U), OdError_InvalidIndex);
    EXPECT_THROW(clipPolygonArrayZMin(polygon, first), OdError_InvalidIndex);
    EXPECT_THROW(computeOutcode(polygon), OdError_InvalidIndex);
    EXPECT_THROW(isFinite(polygon), OdError_InvalidIndex);
    EXPECT_THROW(polygon.vertexAt(8), OdError_InvalidIndex);
    EXPECT_THROW(polygon.vertexForWrite(8), OdError_InvalidIndex);
    EXPECT_EQ(polygon.count, count);
  }
  // With fewer than two vertices no element is read.
  empty.count = 1;
  EXPECT_EQ(clipPolygonArrayToVolume(first, second, empty, ~0U, trace), nullptr);
  empty.count = 2;
  EXPECT_THROW(clipPolygonArrayXMax(empty, first), OdError_InvalidIndex);
}

// Every allocation of a call fails once: OdError 9, the input as it was, nothing left behind.
TEST(Growable, SurvivesEachFailingAllocation) {
  const std::uint64_t liveBefore = odrxAllocCounts().liveBlocks;
  for (const bool traced : {false, true}) {
    const ClipPolygonArray original = circle(40);
    for (std::uint64_t nth = 0;; ++nth) {
      ClipPolygonArray polygon = original;
      ClipTraceArray trace;
      odrxAllocFail(nth, 1);
      const std::int32_t code = codeRaisedBy([&] {
        traced ? clipPolygonArrayInPlace(polygon, trace) : clipPolygonArrayInPlace(polygon);
      });
      odrxAllocFail(0, 0);
      if (code == 0) {  // two scratch polygons, the detached input, the trace
        EXPECT_GE(nth, traced ? 6U : 3U);
        break;
      }
      EXPECT_EQ(code, 9);
      ASSERT_EQ(polygon.count, 40U);
      for (std::uint32_t i = 0; i < 40; ++i) {
        EXPECT_EQ(polygon.vertexAt(i).y, original.vertices.at(i).y);
      }
    }
  }
  EXPECT_EQ(odrxAllocCounts().liveBlocks, liveBefore);
}

}  // namespace
}  // namespace ulm::clip
