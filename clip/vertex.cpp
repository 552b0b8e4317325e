#include "clip/vertex.h"

#include <cmath>

#include "clip/detail/outcode.h"
#include "clip/detail/planes.h"

namespace ulm::clip {
namespace {

// A point is inside unless some plane would treat it as the outer start of a segment. This differs
// from !beyond for NaN.
template <class Planes, class Point>
bool isInside(const Point& p) noexcept {
  return Planes::allOf([&](auto plane) { return !plane.startOutside(p); });
}

}  // namespace

double interpolate(double a, double b, double t) noexcept { return detail::between(a, b, t); }
float interpolate(float a, float b, float t) noexcept { return detail::between(a, b, t); }

double interpolateRatio(double a, double b, double n, double d) noexcept {
  return (b - a) * n / d + a;
}
float interpolateRatio(float a, float b, float n, float d) noexcept { return (b - a) * n / d + a; }

template <HomogeneousPoint Point>
bool isInsideVolume2D(const Point& p) noexcept {
  return isInside<detail::RectanglePlanes>(p);
}

template <HomogeneousPoint Point>
bool isInsideVolume3D(const Point& p) noexcept {
  return isInside<detail::VolumePlanes>(p);
}

template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipVertex<Real>& vertex) noexcept {
  return vertex.outcode = detail::outcodeOf(vertex);
}

template <HomogeneousPoint Point>
bool isFinite(const Point& p) noexcept {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z) && std::isfinite(p.w);
}

#define ULM_CLIP_INSTANTIATE(Point)                      \
  template bool isInsideVolume2D(const Point&) noexcept; \
  template bool isInsideVolume3D(const Point&) noexcept; \
  template bool isFinite(const Point&) noexcept;
ULM_CLIP_INSTANTIATE(ClipPoint)
ULM_CLIP_INSTANTIATE(ClipPointF)
ULM_CLIP_INSTANTIATE(ClipVertex)
ULM_CLIP_INSTANTIATE(ClipVertexF)
#undef ULM_CLIP_INSTANTIATE

template std::uint32_t computeOutcode(ClipVertex&) noexcept;
template std::uint32_t computeOutcode(ClipVertexF&) noexcept;

}  // namespace ulm::clip
