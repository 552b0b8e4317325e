// The origins of a clipped polygon's vertices, for callers that carry attributes along: colours,
// texture coordinates, normals. Clipping without a trace does not need this header.
//
// Every vertex that a plane makes adds a record, in the order of making. The two ends of its edge
// are vertices of the source or earlier records. So one walk over the records, which computes
// `interpolate(earlier, later, t)` for each, gives every attribute of the result; a coordinate
// carried along in this way has exactly the bits that the clipper computes.
#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <span>
#include <utility>

#include "clip/polygon.h"

namespace ulm::clip {

// Below kClipRecordOrigin the index of a vertex of the source; from there on kClipRecordOrigin plus
// the index of a record.
using ClipOrigin = std::uint32_t;
inline constexpr ClipOrigin kClipRecordOrigin = 0x80000000U;

// The vertex at `t` on the edge from `earlier` to `later`, in the outline's direction.
template <std::floating_point Real>
struct BasicClipRecord {
  ClipOrigin earlier;
  ClipOrigin later;
  Real t;
};
using ClipRecord = BasicClipRecord<double>;
using ClipRecordF = BasicClipRecord<float>;

// The maximum number of records for a fixed polygon: six planes, each with at most one crossing an
// edge.
inline constexpr std::uint32_t kClipTraceCapacity = 6 * kClipPolygonCapacity;

namespace detail {

template <class Polygon>
class TraceWriter;

// A list of at most Capacity elements in the object itself. It has the operations of the growable
// polygons' array that a trace needs. Copying takes the elements in use alone.
template <class T, std::uint32_t Capacity>
class FixedList {
 public:
  FixedList() noexcept : length_(0) {}
  FixedList(const FixedList& other) noexcept { *this = other; }
  FixedList& operator=(const FixedList& other) noexcept {
    length_ = other.length_;
    std::copy_n(other.elements_, length_, elements_);
    return *this;
  }
  ~FixedList() = default;

  std::uint32_t length() const noexcept { return length_; }
  const T* data() const noexcept { return elements_; }
  const T& at(std::uint32_t i) const noexcept { return elements_[i]; }
  T& at(std::uint32_t i) noexcept { return elements_[i]; }
  void resize(std::uint32_t length) noexcept { length_ = length; }
  void append(const T& value) noexcept { elements_[length_++] = value; }

 private:
  T elements_[Capacity];  // the first length_ are initialised
  std::uint32_t length_;
};

// A trace keeps its lists in arrays of the kind that the polygon keeps its vertices in.
template <class Polygon, class T, std::uint32_t Capacity>
struct TraceList {
  using Type = FixedList<T, Capacity>;
};
template <class Polygon, class T, std::uint32_t Capacity>
requires requires { typename Polygon::template Array<T>; }
struct TraceList<Polygon, T, Capacity> {
  using Type = typename Polygon::template Array<T>;
};

// False for growable polygons, whose accessors can throw.
template <class Polygon>
inline constexpr bool kNeverThrows = noexcept(std::declval<Polygon&>().vertexForWrite(0));

}  // namespace detail

// The trace of a polygon of type Polygon: ClipTrace<ClipPolygon>, ClipTrace<ClipPolygonArray>, in
// either width. Every call replaces its content. A vertex that a later plane cut off, or that was
// overwritten in the last slot of a fixed polygon, leaves its record.
template <class Polygon>
class ClipTrace {
 public:
  using Record = BasicClipRecord<decltype(Polygon::Vertex::x)>;

  // Both spans are valid until the trace is used again.
  std::span<const Record> records() const noexcept { return {records_.data(), records_.length()}; }
  // The origin of each vertex of the result.
  std::span<const ClipOrigin> origins() const noexcept {
    return {origins_.data(), origins_.length()};
  }

 private:
  friend detail::TraceWriter<Polygon>;

  typename detail::TraceList<Polygon, Record, kClipTraceCapacity>::Type records_;
  typename detail::TraceList<Polygon, ClipOrigin, kClipPolygonCapacity>::Type origins_;
};

// The drivers of clip/polygon.h and clip/growable/polygon_array.h with a trace, under one name for
// both containers: the same arguments, results and errors. `trace` receives the origins of the
// result's vertices. It is empty when nothing remains, and when a ping-pong driver runs no plane. A
// polygon that an in-place driver leaves untouched has its own vertices as origins.
//
// The trace of a growable polygon allocates when it has something to hold: nothing for a polygon
// that its outcodes refuse, one array for an untouched one. After an exception its content is
// unspecified.
template <class Polygon>
Polygon* clipPolygonToVolume(Polygon& first, Polygon& second, typename Polygon::Source& source,
                             std::uint32_t mask,
                             ClipTrace<Polygon>& trace) noexcept(detail::kNeverThrows<Polygon>);
template <class Polygon>
Polygon* clipPolygonToRectangle(Polygon& first, Polygon& second, typename Polygon::Source& source,
                                std::uint32_t mask,
                                ClipTrace<Polygon>& trace) noexcept(detail::kNeverThrows<Polygon>);
template <class Polygon>
bool clipPolygonInPlace(Polygon& polygon,
                        ClipTrace<Polygon>& trace) noexcept(detail::kNeverThrows<Polygon>);
template <class Polygon>
bool clipPolygonInPlace2D(Polygon& polygon,
                          ClipTrace<Polygon>& trace) noexcept(detail::kNeverThrows<Polygon>);

}  // namespace ulm::clip
