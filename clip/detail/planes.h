// The six planes, said once. The inside tests, the segment and polygon clippers, their drivers and
// the outcodes all follow from this table.
//
// This header holds arithmetic whose rounding is promised, so only the library's sources include
// it, under the flags that the library is built with.
#pragma once

#include <cfloat>
#include <cstdint>

#include "clip/vertex.h"

#if defined(__FAST_MATH__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__)
#error "The clipper's results are exact: it cannot be built with fast arithmetic."
#endif

namespace ulm::clip::detail {

static_assert(FLT_EVAL_METHOD == 0, "each width must compute in itself, without wider results");

enum class Axis { X, Y, Z };
enum class Side { Min, Max };

template <Axis A, class Point>
constexpr auto along(const Point& p) noexcept {
  if constexpr (A == Axis::X) {
    return p.x;
  } else if constexpr (A == Axis::Y) {
    return p.y;
  } else {
    return p.z;
  }
}

// With a NaN the three comparisons part, and all of them part from distance(p) < 0; so each is
// spelled as it is promised and none is derived from another.
template <ClipPlaneBit Bit, Axis A, Side S>
struct Plane {
  static constexpr std::uint32_t bit = Bit;

  // Polygons and outcodes: strictly beyond the plane.
  template <class Point>
  static constexpr bool beyond(const Point& p) noexcept {
    if constexpr (S == Side::Min) {
      return -p.w > along<A>(p);
    } else {
      return along<A>(p) > p.w;
    }
  }

  // Segments: the start `a` and the end `b`.
  template <class Point>
  static constexpr bool startOutside(const Point& a) noexcept {
    if constexpr (S == Side::Min) {
      return !(along<A>(a) >= -a.w);
    } else {
      return along<A>(a) > a.w;
    }
  }
  template <class Point>
  static constexpr bool endInside(const Point& b) noexcept {
    if constexpr (S == Side::Min) {
      return along<A>(b) >= -b.w;
    } else {
      return b.w >= along<A>(b);
    }
  }

  // Signed, in the units of the coordinates; not below 0 inside.
  template <class Point>
  static constexpr auto distance(const Point& p) noexcept {
    if constexpr (S == Side::Min) {
      return along<A>(p) + p.w;
    } else {
      return p.w - along<A>(p);
    }
  }
};

template <class... Planes>
struct PlaneList {
  static constexpr std::uint32_t bits = (Planes::bit | ...);

  template <class... More>
  using And = PlaneList<Planes..., More...>;

  // Visits the planes in order until `visit` gives false; whether it never did.
  template <class Visit>
  static constexpr bool every(Visit&& visit) {
    return (visit(Planes{}) && ...);
  }
};

using XMin = Plane<ClipXMin, Axis::X, Side::Min>;
using XMax = Plane<ClipXMax, Axis::X, Side::Max>;
using YMin = Plane<ClipYMin, Axis::Y, Side::Min>;
using YMax = Plane<ClipYMax, Axis::Y, Side::Max>;
using ZMin = Plane<ClipZMin, Axis::Z, Side::Min>;
using ZMax = Plane<ClipZMax, Axis::Z, Side::Max>;

// The order is the contract.
using RectanglePlanes = PlaneList<XMin, XMax, YMax, YMin>;
using VolumePlanes = RectanglePlanes::And<ZMax, ZMin>;

template <class Real>
constexpr Real between(Real a, Real b, Real t) noexcept {
  return (b - a) * t + a;
}

// Where the edge from p to q, one of them inside and the other not, meets the plane. One division
// for a crossing; the sides differ, so without a NaN the denominator is not 0.
template <class Plane, class Point>
constexpr auto crossingOf(const Point& p, const Point& q) noexcept {
  const auto distance = Plane::distance(p);
  return distance / (distance - Plane::distance(q));
}

// Gives `out`, which may be p or q, the four coordinates at t. The result is not snapped onto the
// plane.
template <class Point, class Real>
constexpr void setBetween(Point& out, const Point& p, const Point& q, Real t) noexcept {
  out.x = between(p.x, q.x, t);
  out.y = between(p.y, q.y, t);
  out.z = between(p.z, q.z, t);
  out.w = between(p.w, q.w, t);
}

}  // namespace ulm::clip::detail
