// The table of the six planes. The inside tests, the segment and polygon clippers, their drivers
// and the outcodes are all derived from it.
//
// The rounding of the arithmetic in this header is part of the contract. Only sources of the
// library include it, since they are compiled under flags that keep it.
#pragma once

#include <cfloat>
#include <cstdint>

#include "clip/vertex.h"

#if defined(__FAST_MATH__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__)
#error "The clipper's results are exact: it cannot be built with fast arithmetic."
#endif

namespace ulm::clip::detail {

static_assert(FLT_EVAL_METHOD == 0, "each width must compute in its own type");

enum class Axis { X, Y, Z };
enum class Side { Min, Max };

// Returns the coordinate of `p` on axis A.
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

// With NaN the three comparisons differ from each other and from distance(p) < 0. So each is
// written out as the contract gives it, and none is derived from another.
template <ClipPlaneBit Bit, Axis A, Side S>
struct Plane {
  static constexpr std::uint32_t kBit = Bit;
  static constexpr bool kAtMax = S == Side::Max;

  template <class Point>
  static constexpr auto coordinate(const Point& p) noexcept {
    return along<A>(p);
  }

  // For polygons and outcodes: whether `p` is strictly beyond the plane.
  template <class Point>
  static constexpr bool beyond(const Point& p) noexcept {
    if constexpr (S == Side::Min) {
      return -p.w > along<A>(p);
    } else {
      return along<A>(p) > p.w;
    }
  }

  // For segments: whether the start `a` is outside.
  template <class Point>
  static constexpr bool startOutside(const Point& a) noexcept {
    if constexpr (S == Side::Min) {
      return !(along<A>(a) >= -a.w);
    } else {
      return along<A>(a) > a.w;
    }
  }
  // For segments: whether the end `b` is inside.
  template <class Point>
  static constexpr bool endInside(const Point& b) noexcept {
    if constexpr (S == Side::Min) {
      return along<A>(b) >= -b.w;
    } else {
      return b.w >= along<A>(b);
    }
  }

  // The signed distance, in the units of the coordinates; not below 0 inside.
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
  static constexpr std::uint32_t kBits = (Planes::kBit | ...);

  template <class... More>
  using And = PlaneList<Planes..., More...>;

  // Calls `test` with the planes in order until it returns false. Returns whether it never did.
  template <class Test>
  static constexpr bool allOf(Test&& test) {
    return (test(Planes{}) && ...);
  }
};

using XMin = Plane<ClipXMin, Axis::X, Side::Min>;
using XMax = Plane<ClipXMax, Axis::X, Side::Max>;
using YMin = Plane<ClipYMin, Axis::Y, Side::Min>;
using YMax = Plane<ClipYMax, Axis::Y, Side::Max>;
using ZMin = Plane<ClipZMin, Axis::Z, Side::Min>;
using ZMax = Plane<ClipZMax, Axis::Z, Side::Max>;

// The order of the planes is part of the contract.
using RectanglePlanes = PlaneList<XMin, XMax, YMax, YMin>;
using VolumePlanes = RectanglePlanes::And<ZMax, ZMin>;

// Returns the value at t on the way from a to b.
template <class Real>
constexpr Real between(Real a, Real b, Real t) noexcept {
  return (b - a) * t + a;
}

// Returns the parameter t at which the edge from p to q crosses the plane. One of the ends is
// inside and the other is not, so without NaN the denominator is not 0.
template <class Plane, class Point>
constexpr auto crossingOf(const Point& p, const Point& q) noexcept {
  const auto distance = Plane::distance(p);
  return distance / (distance - Plane::distance(q));
}

// Sets the four coordinates of `out`, which may be p or q, to those at t. They are not snapped onto
// the plane.
template <class Out, class Point, class Real>
constexpr void setBetween(Out& out, const Point& p, const Point& q, Real t) noexcept {
  out.x = between(p.x, q.x, t);
  out.y = between(p.y, q.y, t);
  out.z = between(p.z, q.z, t);
  out.w = between(p.w, q.w, t);
}

}  // namespace ulm::clip::detail
