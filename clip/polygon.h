// Polygons of at most 32 vertices, clipped against the planes of the view volume, one
// Sutherland-Hodgman pass a plane. Nothing here allocates, throws or keeps state; one record must
// not be used by two calls at a time.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>

#include "clip/cursor.h"
#include "clip/vertex.h"

namespace ulm::clip {

inline constexpr std::uint32_t kClipPolygonCapacity = 32;

// A plain value, copied whole. The outline is closed from the last vertex to the first. A `count`
// above 32 makes no more slots: vertices from 32 on do not exist for any function.
template <std::floating_point Real>
struct BasicClipPolygon {
  using Vertex = BasicClipVertex<Real>;
  using Source = const BasicClipPolygon;  // what clippers read

  Vertex vertices[kClipPolygonCapacity];
  std::uint32_t count;

  // Vertex i; the default vertex from `count` on.
  const Vertex& vertexAt(std::uint32_t i) const noexcept;

  // Slot i to write to, `count` raised to i + 1 where it is not above i. From 32 on the last slot,
  // and `count` stays: a writer never leaves the record, and the last such write wins.
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

// What became of a polygon that was clipped in place.
enum class ClipOutcome : std::uint8_t {
  Untouched,  // remains as it was; no plane ran
  Clipped,    // remains, its record written anew
  Gone,       // fewer than 3 vertices were left, or all lie beyond one plane; the record as it was
};

// Plane clippers: `source` into `destination`, another record, whatever that held before. Returns
// the number of vertices now in `destination`, at most 32; of a source of fewer than 2 vertices
// none is left. Kept vertices are copied with their `outcode`; new ones get x, y, z and w, and the
// `outcode` that the slot held stays. Vertices beyond 32 all go to the last slot.
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

// Runs the planes of the volume, or of its rectangle, whose ClipPlaneBit is set in `mask`, writing
// `first` and `second`, two other records, in turn. Returns the one that holds the result, or null
// when fewer than 3 vertices remain. A mask that names no plane writes nothing and gives `second`
// as it stands. Outcodes are not looked at.
template <std::floating_point Real>
BasicClipPolygon<Real>* clipPolygonToVolume(BasicClipPolygon<Real>& first,
                                            BasicClipPolygon<Real>& second,
                                            const BasicClipPolygon<Real>& source,
                                            std::uint32_t mask) noexcept;
template <std::floating_point Real>
BasicClipPolygon<Real>* clipPolygonToRectangle(BasicClipPolygon<Real>& first,
                                               BasicClipPolygon<Real>& second,
                                               const BasicClipPolygon<Real>& source,
                                               std::uint32_t mask) noexcept;

// Clips by the outcodes, which are trusted: a bit that all vertices share refuses the polygon, and
// the planes that run are those that some vertex names. True when a polygon remains; after false
// `polygon` is as it was. Where no plane is to run the polygon stays as it is too, with true,
// unless it has no vertex. The test of the shared bit is over the whole word, for the rectangle as
// well. The result replaces the record; slots that no plane wrote to have no value in it and stay
// as they were. The `outcode` of a new vertex is 0, or what an earlier plane left in its slot:
// computeOutcode makes them good.
template <std::floating_point Real>
bool clipPolygonInPlace(BasicClipPolygon<Real>& polygon) noexcept;
template <std::floating_point Real>
bool clipPolygonInPlace2D(BasicClipPolygon<Real>& polygon) noexcept;

// The same for `polygonCount` polygons in a row, with the outcome of each in `outcomes`. Returns
// how many remain.
template <std::floating_point Real>
std::size_t clipPolygonsInPlace(BasicClipPolygon<Real>* polygons, std::size_t polygonCount,
                                ClipOutcome* outcomes) noexcept;
template <std::floating_point Real>
std::size_t clipPolygonsInPlace2D(BasicClipPolygon<Real>* polygons, std::size_t polygonCount,
                                  ClipOutcome* outcomes) noexcept;

// Sets the `outcode` of every vertex in use, and returns the OR of all.
template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipPolygon<Real>& polygon) noexcept;

// Whether all coordinates of all vertices in use are finite.
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
