// Clips polygons of at most 32 vertices against the planes of the view volume, with one
// Sutherland-Hodgman pass for each plane. No function allocates, throws or keeps state. Different
// polygons can be clipped by different threads; one polygon belongs to one call at a time.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>

#include "clip/cursor.h"
#include "clip/vertex.h"

namespace ulm::clip {

inline constexpr std::uint32_t kClipPolygonCapacity = 32;

// A plain value, copied whole. The outline is closed by an edge from the last vertex to the first.
// Every function treats a `count` above 32 as 32.
template <std::floating_point Real>
struct BasicClipPolygon {
  using Vertex = BasicClipVertex<Real>;
  using Source = const BasicClipPolygon;  // what clippers read

  Vertex vertices[kClipPolygonCapacity];
  std::uint32_t count;

  // Returns vertex i, or the default vertex if i is not below `count`.
  const Vertex& vertexAt(std::uint32_t i) const noexcept;

  // Returns slot i for writing, and raises `count` to i + 1 if it is lower. For an i of 32 or more
  // it returns the last slot and leaves `count`, so a writer stays inside the record and the last
  // such write wins.
  Vertex& vertexForWrite(std::uint32_t i) noexcept {
    if (i >= kClipPolygonCapacity) return vertices[kClipPolygonCapacity - 1];
    count = std::max(count, i + 1);
    return vertices[i];
  }
};
using ClipPolygon = BasicClipPolygon<double>;
using ClipPolygonF = BasicClipPolygon<float>;

using ClipVertexRef = BasicClipVertexRef<ClipPolygon>;
using ClipVertexRefF = BasicClipVertexRef<ClipPolygonF>;

// The outcome of clipping a polygon in place.
enum class ClipOutcome : std::uint8_t {
  Untouched,  // the polygon remains; no plane ran and nothing was written
  Clipped,    // the result has replaced the polygon
  Gone,       // fewer than 3 vertices remain, or all are beyond one plane; nothing was written
};

// The six plane clippers. Each clips `source` against one plane into `destination`, which is
// another polygon and may hold anything before. Returns the number of vertices in `destination`, at
// most 32, and 0 for a source of fewer than 2 vertices. Kept vertices are copied with their
// `outcode`. New ones get x, y, z and w, and keep the `outcode` that their slot held. All vertices
// after the 32nd are written to the last slot.
template <std::floating_point Real>
std::uint32_t clipPolygonXMin(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept;
template <std::floating_point Real>
std::uint32_t clipPolygonXMax(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept;
template <std::floating_point Real>
std::uint32_t clipPolygonYMin(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept;
template <std::floating_point Real>
std::uint32_t clipPolygonYMax(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept;
template <std::floating_point Real>
std::uint32_t clipPolygonZMin(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept;
template <std::floating_point Real>
std::uint32_t clipPolygonZMax(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept;

// Clips `source` against the planes of the volume whose ClipPlaneBit is set in `mask`; other bits
// are ignored. The passes write `first` and `second` alternately; the three polygons must be
// different. Returns the one of the two that holds the result, or null when fewer than 3 vertices
// remain. If `mask` contains no plane it writes nothing and returns `second`. Outcodes are not
// read.
template <std::floating_point Real>
BasicClipPolygon<Real>* clipPolygonToVolume(BasicClipPolygon<Real>& first,
                                            BasicClipPolygon<Real>& second,
                                            const BasicClipPolygon<Real>& source,
                                            std::uint32_t mask) noexcept;

// The same with the four planes of the rectangle.
template <std::floating_point Real>
BasicClipPolygon<Real>* clipPolygonToRectangle(BasicClipPolygon<Real>& first,
                                               BasicClipPolygon<Real>& second,
                                               const BasicClipPolygon<Real>& source,
                                               std::uint32_t mask) noexcept;

// Clips `polygon` against the volume, by its outcodes, which are trusted. Returns whether a polygon
// remains; after false `polygon` is unchanged.
//   count is 0                     false
//   a bit is in all the outcodes   false, whether the bit belongs to a plane or not
//   no outcode has a plane's bit   true, `polygon` is unchanged
//   otherwise                      the planes that are in any outcode run and decide
// The result replaces `polygon`; slots that no pass wrote keep their value. The `outcode` of a new
// vertex is 0, or what an earlier pass left in its slot. Call computeOutcode to clip again.
template <std::floating_point Real>
bool clipPolygonInPlace(BasicClipPolygon<Real>& polygon) noexcept;

// The same with the four planes of the rectangle. An outcode bit of a z plane in every vertex still
// refuses the polygon.
template <std::floating_point Real>
bool clipPolygonInPlace2D(BasicClipPolygon<Real>& polygon) noexcept;

// Clips an array of polygons, each as clipPolygonInPlace does. Both pointers are to `polygonCount`
// elements, and may be null only when that is 0; `outcomes` receives the outcome of each polygon.
// Returns the number of polygons that remain.
template <std::floating_point Real>
std::size_t clipPolygonsInPlace(BasicClipPolygon<Real>* polygons, std::size_t polygonCount,
                                ClipOutcome* outcomes) noexcept;

// The same with the four planes of the rectangle.
template <std::floating_point Real>
std::size_t clipPolygonsInPlace2D(BasicClipPolygon<Real>* polygons, std::size_t polygonCount,
                                  ClipOutcome* outcomes) noexcept;

// Sets the `outcode` of every vertex below `count`. Returns the OR of all of them.
template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipPolygon<Real>& polygon) noexcept;

// Returns whether all coordinates of all vertices below `count` are finite.
template <std::floating_point Real>
bool isFinite(const BasicClipPolygon<Real>& polygon) noexcept;

template <std::floating_point Real>
const BasicClipVertex<Real>& BasicClipPolygon<Real>::vertexAt(std::uint32_t i) const noexcept {
  if (i < std::min(count, kClipPolygonCapacity)) return vertices[i];
  if constexpr (std::same_as<Real, double>) {
    return defaultClipVertex;
  } else {
    return defaultClipVertexF;
  }
}

}  // namespace ulm::clip
