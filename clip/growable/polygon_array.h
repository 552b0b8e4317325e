// Clips polygons of any number of vertices, kept in an OdArray of the object runtime. The functions
// do what those of clip/polygon.h do, with the differences given here.
//
// Every function and accessor that reads or writes vertices can raise
//   OdError_InvalidIndex   `count` is above the length of the array
//   OdError, code 9        no memory, or a buffer that does not fit into 32 bits
// A polygon that was to be clipped in place then holds its input, and nothing leaks. Polygons that
// share a buffer can belong to different threads; one polygon belongs to one call at a time.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "clip/cursor.h"
#include "clip/polygon.h"
#include "clip/vertex.h"
#include "hostsdk/adapter/od_array.h"

namespace ulm::clip {

// What reading a growable polygon returns for a vertex at or above its count.
inline constexpr ClipVertex defaultClipVertexArray{};
inline constexpr ClipVertexF defaultClipVertexArrayF{};

inline constexpr std::uint32_t kClipSpareVertices = 16;  // capacity beyond the length asked for
inline constexpr std::int32_t kClipGrowByHalf = -50;     // growth setting: in percent, negated

// Copies share the vertices until one of them is accessed. `count` is the polygon's own length, at
// most that of the array, which clipping does not shrink. A polygon that was moved from is empty
// and can be used again.
template <std::floating_point Real>
struct BasicClipPolygonArray {
  using Vertex = BasicClipVertex<Real>;
  using Source = BasicClipPolygonArray;  // what clippers read; not const, since reading may detach
  template <class T>
  using Array = OdArray<T>;  // also the type of a trace's lists

  Array<Vertex> vertices;
  std::uint32_t count = 0;

  // Makes an empty polygon without storage. The first vertex that is written makes its array as the
  // constructor below does, so that it grows by half too.
  BasicClipPolygonArray() noexcept = default;
  // Makes an array of length `size` and capacity `size` + 16 that grows by half, its vertices not
  // initialised. `count` becomes `size` if `setCount` is true, otherwise 0. Raises OdError 9.
  BasicClipPolygonArray(std::uint32_t size, bool setCount)
      : vertices(std::uint64_t{size} + kClipSpareVertices, kClipGrowByHalf),
        count(setCount ? size : 0) {
    vertices.resize(size);
  }
  BasicClipPolygonArray(const BasicClipPolygonArray&) noexcept = default;
  BasicClipPolygonArray(BasicClipPolygonArray&& other) noexcept
      : vertices(std::move(other.vertices)), count(std::exchange(other.count, 0)) {}
  BasicClipPolygonArray& operator=(const BasicClipPolygonArray&) noexcept = default;
  BasicClipPolygonArray& operator=(BasicClipPolygonArray&& other) noexcept {
    vertices = std::move(other.vertices);
    count = std::exchange(other.count, 0);
    return *this;
  }
  ~BasicClipPolygonArray() = default;

  // Returns vertex i, or the default vertex if i is not below `count`. The access is the array's
  // writable one, which copies a shared buffer first. The reference is valid until the polygon is
  // used again.
  const Vertex& vertexAt(std::uint32_t i);

  // Returns element i for writing; a shared buffer is copied first. If i is not below `count`,
  // `count` becomes i + 1 and the array grows as needed; the elements in between are not
  // initialised. An array without storage becomes one of capacity i + 17 that grows by half. The
  // index 2^32 - 1 raises OdError 9. After an exception the polygon is unchanged.
  Vertex& vertexForWrite(std::uint32_t i) {
    if (i < count) return vertices.at(i);
    if (i == UINT32_MAX) throw OdError(kOdResultNoMemory);
    if (vertices.capacity() == 0) {
      vertices = OdArray<Vertex>(std::uint64_t{i} + 1 + kClipSpareVertices, kClipGrowByHalf);
    }
    if (i + 1 >= vertices.length()) vertices.resize(i + 1);
    Vertex& slot = vertices.at(i);  // before `count` changes, since it may raise
    count = i + 1;
    return slot;
  }
};
using ClipPolygonArray = BasicClipPolygonArray<double>;
using ClipPolygonArrayF = BasicClipPolygonArray<float>;

using ClipVertexRefArray = BasicClipVertexRef<ClipPolygonArray>;
using ClipVertexRefArrayF = BasicClipVertexRef<ClipPolygonArrayF>;

// The six plane clippers. Each returns the number of vertices in `destination`, without a limit,
// and 0 for a source of fewer than 2 vertices. Reading copies a shared buffer of `source` first;
// its values stay. After an exception the content of `destination` is unspecified.
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

// Clips `source` against the planes of the volume in `mask`. Returns `first` or `second`, or null
// when fewer than 3 vertices remain; `second` unwritten if `mask` contains no plane. After an
// exception the contents of `first` and `second` are unspecified.
template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToVolume(BasicClipPolygonArray<Real>& first,
                                                      BasicClipPolygonArray<Real>& second,
                                                      BasicClipPolygonArray<Real>& source,
                                                      std::uint32_t mask);

// The same with the four planes of the rectangle.
template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToRectangle(BasicClipPolygonArray<Real>& first,
                                                         BasicClipPolygonArray<Real>& second,
                                                         BasicClipPolygonArray<Real>& source,
                                                         std::uint32_t mask);

// Clips `polygon` against the volume, by its outcodes. Returns whether a polygon remains, by the
// rules of clipPolygonInPlace. The tests on outcodes allocate nothing and copy no shared buffer. A
// polygon that was clipped is the only owner of its array, which has a capacity of the former count
// plus kClipSpareVertices, or more, and grows by half; references to former vertices are not valid.
// Its former array may stay if it has this form. The `outcode` of a new vertex is unspecified. Call
// computeOutcode to clip again.
template <std::floating_point Real>
bool clipPolygonArrayInPlace(BasicClipPolygonArray<Real>& polygon);

// The same with the four planes of the rectangle. An outcode bit of a z plane in every vertex still
// refuses the polygon.
template <std::floating_point Real>
bool clipPolygonArrayInPlace2D(BasicClipPolygonArray<Real>& polygon);

// Clips an array of polygons, each as clipPolygonArrayInPlace does. Both pointers are to
// `polygonCount` elements, and may be null only when that is 0; `outcomes` receives the outcome of
// each polygon. Returns the number of polygons that remain. An exception leaves the polygons before
// the one at fault clipped; that one and those after it are unchanged, their outcomes not written.
template <std::floating_point Real>
std::size_t clipPolygonArraysInPlace(BasicClipPolygonArray<Real>* polygons,
                                     std::size_t polygonCount, ClipOutcome* outcomes);

// The same with the four planes of the rectangle.
template <std::floating_point Real>
std::size_t clipPolygonArraysInPlace2D(BasicClipPolygonArray<Real>* polygons,
                                       std::size_t polygonCount, ClipOutcome* outcomes);

// Sets the `outcode` of every vertex below `count`. Returns the OR of all of them. Copies a shared
// buffer first. After an exception the polygon is unchanged.
template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipPolygonArray<Real>& polygon);

// Returns whether all coordinates of all vertices below `count` are finite. Copies no shared
// buffer; raises OdError_InvalidIndex only.
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
