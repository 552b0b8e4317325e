// What the fuzz targets of the clipper know of coordinates.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "clip/vertex.h"
#include "fuzz/input.h"

namespace ulm::fuzz {

// In the order in which the clippers run the planes.
inline constexpr std::uint32_t kPlaneBits[] = {clip::ClipXMin, clip::ClipXMax, clip::ClipYMax,
                                               clip::ClipYMin, clip::ClipZMax, clip::ClipZMin};

// Two NaN count as the same.
inline bool sameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

// A bit of the byte of mask that is of no plane. With it the coordinates come as two bytes
// each: a small number in steps of 1/4096, which the low bits move to its neighbours. So points lie
// on planes, or one rounding away, far more often than in eight or four bytes of any value.
inline constexpr std::uint32_t kSmallCoordinates = 0x80;

template <class Real>
Real coordinate(Input& input, std::uint32_t mask) {
  if ((mask & kSmallCoordinates) == 0) return input.number<Real>();
  const auto bits = static_cast<std::int16_t>(input.u16());
  const Real value = static_cast<Real>(bits / 4) / 4096;
  const int nudge = bits & 3;
  return nudge == 1   ? std::nextafter(value, Real(-100))
         : nudge == 2 ? std::nextafter(value, Real(100))
                      : value;
}

template <class Point>
auto distanceTo(std::uint32_t plane, const Point& p) {
  switch (plane) {
    case clip::ClipXMin:
      return p.w + p.x;
    case clip::ClipXMax:
      return p.w - p.x;
    case clip::ClipYMin:
      return p.w + p.y;
    case clip::ClipYMax:
      return p.w - p.y;
    case clip::ClipZMin:
      return p.w + p.z;
    default:
      return p.w - p.z;
  }
}

// Points that a plane has left are inside it, but for roundings of coordinates as large as those of
// the source. Of coordinates whose products or sums may leave the range of Real nothing is known.
template <class Point>
void requireNearInside(std::uint32_t plane, const std::vector<Point>& source,
                       const std::vector<Point>& left) {
  using Real = decltype(Point::x);
  const Real limit = std::sqrt(std::numeric_limits<Real>::max()) / 16;
  Real largest = 0;
  for (const Point& p : source) {
    for (const Real k : {p.x, p.y, p.z, p.w}) {
      if (!(std::fabs(k) < limit)) return;
      largest = std::max(largest, std::fabs(k));
    }
  }
  const Real slack = 16 * std::numeric_limits<Real>::epsilon() * largest +
                     16 * std::numeric_limits<Real>::denorm_min();
  for (const Point& p : left) {
    require(distanceTo(plane, p) >= -slack, "no vertex is beyond a plane by more than a rounding");
    for (const Real k : {p.x, p.y, p.z, p.w}) {
      require(std::fabs(k) <= largest + slack, "no vertex is outside the extent of its source");
    }
  }
}

}  // namespace ulm::fuzz
