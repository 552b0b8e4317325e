// What only growable polygons have: sharing, growth and exceptions.
#include "clip/growable/polygon_array.h"

#include <gtest/gtest.h>

#include <cmath>

#include "clip/trace.h"
#include "standin/odrx/alloc_control.h"

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

TEST(Growable, SharesUntilItReadsOrClips) {
  ClipPolygonArray polygon = circle(1000);
  const ClipPolygonArray shared = polygon;
  const ClipVertex* const buffer = bufferOf(shared);
  ASSERT_TRUE(clipPolygonArrayInPlace(polygon));
  EXPECT_EQ(polygon.count, 260U);  // four arcs, each between two crossings
  EXPECT_TRUE(bufferOf(shared) == buffer && shared.count == 1000);
  const ClipVertex* const result = bufferOf(polygon);
  for (std::uint32_t i = 0; i < 260; ++i) polygon.vertexForWrite(i).outcode = 0;
  EXPECT_EQ(bufferOf(polygon), result);  // the only owner writes where it is

  const ClipPolygonArray settled = polygon;
  const std::uint64_t calls = odrxAllocCounts().calls;
  EXPECT_TRUE(clipPolygonArrayInPlace(polygon) && isFinite(polygon));
  EXPECT_EQ(&polygon.vertexAt(260), &defaultClipVertexArray);
  EXPECT_EQ(odrxAllocCounts().calls, calls);
  EXPECT_EQ((ClipVertexRefArray{2, &polygon}.read().x), settled.vertices.at(2).x);
  EXPECT_NE(bufferOf(polygon), bufferOf(settled));

  // A destination that shares with its source does not write into it.
  ClipPolygonArray source = circle(8), destination = source;
  EXPECT_EQ(clipPolygonArrayXMin(source, destination), 9U);
  EXPECT_TRUE(source.count == 8 && source.vertexAt(4).x == -1.2);
}

TEST(Growable, GrowsAsItIsMadeAndWritten) {
  for (const std::uint32_t size : {~0U, ~0U - 16, 107374182U}) {
    EXPECT_EQ(codeRaisedBy([&] { ClipPolygonArray(size, true); }), 9) << size;
  }
  EXPECT_EQ(ClipPolygonArrayF(5, true).count, 5U);
  ClipPolygonArray polygon(3, false), empty, source = circle(8), assigned = source;
  ClipPolygonArray moved = std::move(source);
  moved = std::move(assigned);
  EXPECT_TRUE(moved.count == 8 && source.count == 0 && assigned.count == 0);
  EXPECT_EQ(&source.vertexAt(0), &defaultClipVertexArray);
  const struct {
    ClipPolygonArray& polygon;
    std::uint32_t index, count, length, capacity;  // the last three after the write
  } kWrites[] = {{polygon, 1, 2, 3, 19},    {polygon, 20, 21, 21, 21},
                 {polygon, 21, 22, 22, 31},  // half as much again as 3 is less
                 {empty, 0, 1, 1, 17},      {empty, 17, 18, 18, 18},
                 {empty, 18, 19, 19, 27},   {source, 9, 10, 10, 26},
                 {assigned, 2, 3, 3, 19}};
  for (const auto& [written, index, count, length, capacity] : kWrites) {
    written.vertexForWrite(index).x = index;
    EXPECT_TRUE(written.count == count && written.vertices.length() == length) << index;
    EXPECT_TRUE(written.vertices.capacity() == capacity && written.vertices.growth() == -50);
  }
  EXPECT_TRUE(polygon.vertices.at(1).x == 1 && polygon.vertices.at(20).x == 20);
  for (const std::uint32_t index : {~0U, ~0U - 1, 107374181U}) {
    EXPECT_EQ(codeRaisedBy([&] { polygon.vertexForWrite(index); }), 9) << index;
    EXPECT_TRUE(polygon.count == 22 && polygon.vertices.length() == 22);
  }
}

// The tests on outcodes allocate and detach nothing. A trace then holds the origins of an untouched
// polygon, in one allocation, and nothing for a refused one.
TEST(Growable, OutcodesSettleWithoutMemory) {
  const struct {
    std::uint32_t count, outcode;
    bool remains;
    std::uint64_t calls;  // of a traced call; one without a trace makes none
  } kCases[] = {
      {1000, 0, true, 1}, {1000, 0x08, false, 0}, {1000, 0x41, false, 0}, {0, 0, false, 0}};
  for (const auto& [count, outcode, remains, calls] : kCases) {
    ClipPolygonArray polygon = circle(1000);
    for (std::uint32_t i = 0; i < 1000; ++i) polygon.vertexForWrite(i).outcode = outcode;
    polygon.count = count;
    const ClipPolygonArray shared = polygon;
    ClipTrace<ClipPolygonArray> trace;
    const std::uint64_t before = odrxAllocCounts().calls;
    EXPECT_EQ(clipPolygonArrayInPlace(polygon), remains);
    EXPECT_EQ(odrxAllocCounts().calls, before) << outcode;
    EXPECT_EQ(clipPolygonInPlace2D(polygon, trace), remains);
    EXPECT_EQ(odrxAllocCounts().calls - before, calls) << outcode;
    EXPECT_EQ(trace.origins().size(), remains ? count : 0);
    EXPECT_EQ(bufferOf(polygon), bufferOf(shared));
  }
}

// Scratch polygons without storage of their own grow by half too: the number of reallocations is
// logarithmic.
TEST(Growable, ScratchPolygonsMayStartEmpty) {
  ClipPolygonArray source = circle(100000), second = source, first;
  const ClipPolygonArray taken = std::move(second);
  const std::uint64_t calls = odrxAllocCounts().calls;
  ClipPolygonArray* const result = clipPolygonArrayToVolume(first, second, source, ~0U);
  EXPECT_LT(odrxAllocCounts().calls - calls, 60U);
  ASSERT_EQ(result, &second);
  EXPECT_EQ(result->count, 25436U);
  // From 17 by half each time, as for one vertex after the other.
  EXPECT_TRUE(first.vertices.capacity() == 120723 && second.vertices.capacity() == 80482);
  EXPECT_EQ(taken.count, 100000U);
}

TEST(Growable, ACountAboveTheLengthIsAnInvalidIndex) {
  ClipPolygonArray polygon = circle(8), first, second;
  for (const std::uint32_t count : {9U, ~0U}) {
    polygon.count = count;
    EXPECT_THROW(clipPolygonArrayInPlace2D(polygon), OdError_InvalidIndex);
    EXPECT_THROW(clipPolygonArrayToVolume(first, second, polygon, ~0U), OdError_InvalidIndex);
    EXPECT_THROW(computeOutcode(polygon), OdError_InvalidIndex);
    EXPECT_THROW(isFinite(polygon), OdError_InvalidIndex);
    EXPECT_THROW(polygon.vertexAt(8), OdError_InvalidIndex);
    EXPECT_THROW(polygon.vertexForWrite(8), OdError_InvalidIndex);
    EXPECT_EQ(polygon.count, count);
  }
  first.count = 1;  // with fewer than two vertices no element is read
  EXPECT_EQ(clipPolygonArrayToVolume(polygon, second, first, ~0U), nullptr);
}

}  // namespace
}  // namespace ulm::clip
