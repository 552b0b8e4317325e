// Polygons without a limit on their vertices, in an OdArray of the object runtime: the clipper of
// clip/polygon.h once more, with that header's promises where none is told here.
//
// Whatever reads or writes elements can raise
//   OdError_InvalidIndex   `count` is above the length of the array
//   OdError, code 9        no memory, or a buffer that does not fit into 32 bits
// and a polygon that was to be clipped in place then holds its input, and nothing leaks. Polygons
// that share a buffer can belong to different threads; one polygon belongs to one call at a time.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>

#include "clip/cursor.h"
#include "clip/polygon.h"
#include "clip/trace.h"
#include "clip/vertex.h"
#include "hostsdk/adapter/od_array.h"

namespace ulm::clip {

// Stands for any vertex that is read beyond the count of a growable polygon.
inline constexpr ClipVertex defaultClipVertexArray{};
inline constexpr ClipVertexF defaultClipVertexArrayF{};

inline constexpr std::uint32_t kClipSpareVertices = 16;
inline constexpr std::int32_t kClipGrowByHalf = -50;

// Assignment shares the vertices. `count` is the polygon's own length, at most that of the array,
// which clipping does not shrink.
template <std::floating_point Real>
struct BasicClipPolygonArray {
  using Vertex = BasicClipVertex<Real>;

  OdArray<Vertex> vertices;
  std::uint32_t count = 0;

  BasicClipPolygonArray() noexcept = default;
  // An array of length `size`, room for 16 more and growth by half, its vertices not initialised;
  // `count` is `size` or 0.
  BasicClipPolygonArray(std::uint32_t size, bool setCount)
      : vertices(std::uint64_t{size} + kClipSpareVertices, kClipGrowByHalf),
        count(setCount ? size : 0) {
    vertices.resize(size);
  }

  // Vertex i; the default vertex from `count` on. The access is the array's writable one, so a
  // shared buffer is copied first.
  const Vertex& vertexAt(std::uint32_t i);

  // Element i to write to. From `count` on, `count` becomes i + 1 and the array grows as needed;
  // the elements between are not initialised. The last index of all, 2^32 - 1, raises OdError 9.
  Vertex& vertexForWrite(std::uint32_t i) {
    if (i >= count) {
      if (i == UINT32_MAX) throw OdError(kOdResultNoMemory);
      if (i + 1 >= vertices.length()) vertices.resize(i + 1);
      count = i + 1;
    }
    return vertices.at(i);
  }
};
using ClipPolygonArray = BasicClipPolygonArray<double>;
using ClipPolygonArrayF = BasicClipPolygonArray<float>;

using ClipVertexRefArray = BasicClipVertexRef<ClipPolygonArray>;
using ClipVertexRefArrayF = BasicClipVertexRef<ClipPolygonArrayF>;

// The trace of a growable polygon; see clip/trace.h.
template <std::floating_point Real>
struct BasicClipTraceArray {
  OdArray<BasicClipRecord<Real>> records;
  OdArray<ClipOrigin> origins;  // one for each vertex of the result
};
using ClipTraceArray = BasicClipTraceArray<double>;
using ClipTraceArrayF = BasicClipTraceArray<float>;

// Plane clippers: the number of vertices now in `destination`, without a limit. Reading may detach
// the buffer of `source`, whose values do not change by that. After an exception `destination` is
// of no use.
template <std::floating_point Real>
std::uint32_t clipPolygonArrayXMin(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination);
template <std::floating_point Real>
std::uint32_t clipPolygonArrayXMax(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination);
template <std::floating_point Real>
std::uint32_t clipPolygonArrayYMin(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination);
template <std::floating_point Real>
std::uint32_t clipPolygonArrayYMax(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination);
template <std::floating_point Real>
std::uint32_t clipPolygonArrayZMin(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination);
template <std::floating_point Real>
std::uint32_t clipPolygonArrayZMax(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination);

template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToVolume(BasicClipPolygonArray<Real>& first,
                                                      BasicClipPolygonArray<Real>& second,
                                                      BasicClipPolygonArray<Real>& source,
                                                      std::uint32_t mask);
template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToRectangle(BasicClipPolygonArray<Real>& first,
                                                         BasicClipPolygonArray<Real>& second,
                                                         BasicClipPolygonArray<Real>& source,
                                                         std::uint32_t mask);

// The tests on outcodes allocate nothing and detach nothing. A polygon that was clipped takes over
// the array of the result and is its only owner. The `outcode` of a new vertex is whatever the
// element held, which may be anything at all: computeOutcode makes them good.
template <std::floating_point Real>
bool clipPolygonArrayInPlace(BasicClipPolygonArray<Real>& polygon);
template <std::floating_point Real>
bool clipPolygonArrayInPlace2D(BasicClipPolygonArray<Real>& polygon);

// An exception leaves the polygons before the one at fault clipped, that one and those after it as
// they were, and their outcomes not written.
template <std::floating_point Real>
std::size_t clipPolygonArraysInPlace(BasicClipPolygonArray<Real>* polygons,
                                     std::size_t polygonCount, ClipOutcome* outcomes);
template <std::floating_point Real>
std::size_t clipPolygonArraysInPlace2D(BasicClipPolygonArray<Real>* polygons,
                                       std::size_t polygonCount, ClipOutcome* outcomes);

// After an exception `trace` is of no use.
template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToVolume(BasicClipPolygonArray<Real>& first,
                                                      BasicClipPolygonArray<Real>& second,
                                                      BasicClipPolygonArray<Real>& source,
                                                      std::uint32_t mask,
                                                      BasicClipTraceArray<Real>& trace);
template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToRectangle(BasicClipPolygonArray<Real>& first,
                                                         BasicClipPolygonArray<Real>& second,
                                                         BasicClipPolygonArray<Real>& source,
                                                         std::uint32_t mask,
                                                         BasicClipTraceArray<Real>& trace);
template <std::floating_point Real>
bool clipPolygonArrayInPlace(BasicClipPolygonArray<Real>& polygon,
                             BasicClipTraceArray<Real>& trace);
template <std::floating_point Real>
bool clipPolygonArrayInPlace2D(BasicClipPolygonArray<Real>& polygon,
                               BasicClipTraceArray<Real>& trace);

// Detaches a shared buffer first, since it writes.
template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipPolygonArray<Real>& polygon);

template <std::floating_point Real>
bool isFinite(const BasicClipPolygonArray<Real>& polygon);

template <std::floating_point Real>
const BasicClipVertex<Real>& BasicClipPolygonArray<Real>::vertexAt(std::uint32_t i) {
  if (i < count) return vertices.at(i);
  if constexpr (std::same_as<Real, double>) {
    return defaultClipVertexArray;
  } else {
    return defaultClipVertexArrayF;
  }
}

}  // namespace ulm::clip
