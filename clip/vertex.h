// The vocabulary of the clipper: points in homogeneous clip space, the bits of the six planes,
// interpolation and the tests of single points. No function throws, allocates or keeps state.
//
// The view volume is -w <= x <= w, -w <= y <= w, -w <= z <= w; its rectangle has the limits in x
// and y only. A point on a plane is inside. Nothing divides by w or tests its sign.
//
// Everything exists for 64-bit coordinates and, with F at the end of the type, for 32-bit ones;
// neither width computes in a wider type. All arithmetic is in the library's own sources, which are
// compiled under flags of their own, so the compiler flags of a program that uses it change no bit
// of a result. The program provides the floating-point environment: rounding to nearest, and
// denormal numbers kept. A program linked with -ffast-math or -Ofast flushes them, and then results
// differ.
#pragma once

#include <concepts>
#include <cstdint>

namespace ulm::clip {

// One bit for each plane, listed in the order in which the clippers run the planes. Bit 0x08
// belongs to no plane.
enum ClipPlaneBit : std::uint32_t {
  ClipXMin = 0x01,  // x = -w
  ClipXMax = 0x10,  // x = w
  ClipYMax = 0x20,  // y = w
  ClipYMin = 0x02,  // y = -w
  ClipZMax = 0x04,  // z = w
  ClipZMin = 0x40,  // z = -w
};

// A point (x, y, z, w), in any units.
template <std::floating_point Real>
struct BasicClipPoint {
  Real x;
  Real y;
  Real z;
  Real w;
};
using ClipPoint = BasicClipPoint<double>;
using ClipPointF = BasicClipPoint<float>;

// A point with `outcode`, the ClipPlaneBits of the planes that it is beyond. The caller who fills a
// polygon sets it. The clippers trust it and copy it with its vertex; only computeOutcode computes
// it.
template <std::floating_point Real>
struct BasicClipVertex {
  Real x;
  Real y;
  Real z;
  Real w;
  std::uint32_t outcode;
};
using ClipVertex = BasicClipVertex<double>;
using ClipVertexF = BasicClipVertex<float>;

// What reading a polygon returns for a vertex at or above its count.
inline constexpr ClipVertex defaultClipVertex{};
inline constexpr ClipVertexF defaultClipVertexF{};

// The argument of the functions on points: a point or a vertex, in either width.
template <class Point>
concept HomogeneousPoint = std::same_as<Point, ClipPoint> || std::same_as<Point, ClipPointF> ||
    std::same_as<Point, ClipVertex> || std::same_as<Point, ClipVertexF>;

// Returns (b - a) * t + a, computed in this order, as for each component of a new point.
double interpolate(double a, double b, double t) noexcept;
float interpolate(float a, float b, float t) noexcept;

// Returns (b - a) * n / d + a, computed with the product before the quotient.
double interpolateRatio(double a, double b, double n, double d) noexcept;
float interpolateRatio(float a, float b, float n, float d) noexcept;

// Returns whether x and y are inside. False if x, y or w is NaN. `outcode` is not used.
template <HomogeneousPoint Point>
bool isInsideVolume2D(const Point& p) noexcept;

// Returns whether x, y and z are inside. False if any coordinate is NaN. `outcode` is not used.
template <HomogeneousPoint Point>
bool isInsideVolume3D(const Point& p) noexcept;

// Sets `outcode` to the planes that the vertex is strictly beyond, and returns it. A comparison
// with NaN is false, so a NaN coordinate is beyond no plane. The polygon clippers treat it in the
// same way; isInsideVolume3D does not.
template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipVertex<Real>& vertex) noexcept;

// Returns whether all four coordinates are finite. The clippers accept others too, but their
// results are then seldom useful.
template <HomogeneousPoint Point>
bool isFinite(const Point& p) noexcept;

}  // namespace ulm::clip
