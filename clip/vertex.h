// The vocabulary of the clipper: points in homogeneous clip space, the bits of the six planes, the
// parameter of an intersection and the tests of single points.
//
// The view volume is -w <= x <= w, -w <= y <= w, -w <= z <= w; its rectangle is the part in x and
// y. A point on a plane is inside. Nothing divides by w or looks at its sign.
//
// Everything exists for 64-bit and, with F at the end of the type, for 32-bit coordinates; each
// width computes in itself alone. All arithmetic is in the library's own sources, which are
// compiled under flags of their own, so the compiler flags of a program that uses it change no bit
// of a result. The program provides the floating-point environment: rounding to nearest, and
// denormal numbers kept. A program linked with -ffast-math or -Ofast flushes them, and then results
// differ.
#pragma once

#include <concepts>
#include <cstdint>

namespace ulm::clip {

// One bit for each plane, in the order in which the planes are run. Bit 0x08 belongs to none.
enum ClipPlaneBit : std::uint32_t {
  ClipXMin = 0x01,  // x = -w
  ClipXMax = 0x10,  // x = w
  ClipYMax = 0x20,  // y = w
  ClipYMin = 0x02,  // y = -w
  ClipZMax = 0x04,  // z = w
  ClipZMin = 0x40,  // z = -w
};

template <std::floating_point Real>
struct BasicClipPoint {
  Real x;
  Real y;
  Real z;
  Real w;
};
using ClipPoint = BasicClipPoint<double>;
using ClipPointF = BasicClipPoint<float>;

// `outcode` is the set of planes beyond which the vertex lies. Whoever fills a polygon sets it; the
// clipper trusts it, copies it with its vertex and computes it only in computeOutcode.
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

// Stands for any vertex that is read beyond the count of a polygon.
inline constexpr ClipVertex defaultClipVertex{};
inline constexpr ClipVertexF defaultClipVertexF{};

// What the functions on points take: a bare point or a vertex, in either width.
template <class Point>
concept HomogeneousPoint = std::same_as<Point, ClipPoint> || std::same_as<Point, ClipPointF> ||
    std::same_as<Point, ClipVertex> || std::same_as<Point, ClipVertexF>;

// (b - a) * t + a, in this order: how each component of a new point is made.
double interpolate(double a, double b, double t) noexcept;
float interpolate(float a, float b, float t) noexcept;

// (b - a) * n / d + a, the product first, then the quotient.
double interpolateRatio(double a, double b, double n, double d) noexcept;
float interpolateRatio(float a, float b, float n, float d) noexcept;

// Whether the point lies in the volume, or in its rectangle. False where a coordinate that is
// looked at, or w, is not a number. Outcodes are not used.
template <HomogeneousPoint Point>
bool isInsideVolume2D(const Point& p) noexcept;
template <HomogeneousPoint Point>
bool isInsideVolume3D(const Point& p) noexcept;

// Sets `outcode` to the planes beyond which the vertex strictly lies, and returns it. A comparison
// with what is not a number is false here, so that a NaN is beyond no plane: the polygon clippers
// see it so too, while isInsideVolume3D does not.
template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipVertex<Real>& vertex) noexcept;

// Whether all four coordinates are finite. The clipper takes others as well, but what it makes of
// them is seldom of use.
template <HomogeneousPoint Point>
bool isFinite(const Point& p) noexcept;

}  // namespace ulm::clip
