#include "clip/segment.h"

#include "clip/detail/planes.h"

namespace ulm::clip {
namespace {

template <class Plane, class Point>
bool clipAgainst(Point& a, Point& b) noexcept {
  const bool aOutside = Plane::startOutside(a);
  const bool bInside = Plane::endInside(b);
  if (aOutside != bInside) return bInside;  // both ends are on the same side
  detail::setBetween(aOutside ? a : b, a, b, detail::crossingOf<Plane>(a, b));
  return true;
}

// A plane that both ends are beyond does not refuse the segment early: the planes before it move
// the ends first, and rounding may move one of them to the inside.
template <class Planes, class Point>
bool clipThrough(Point& a, Point& b) noexcept {
  return Planes::allOf([&](auto plane) { return clipAgainst<decltype(plane)>(a, b); });
}

}  // namespace

template <HomogeneousPoint Point>
bool clipSegmentXMin(Point& a, Point& b) noexcept {
  return clipAgainst<detail::XMin>(a, b);
}
template <HomogeneousPoint Point>
bool clipSegmentXMax(Point& a, Point& b) noexcept {
  return clipAgainst<detail::XMax>(a, b);
}
template <HomogeneousPoint Point>
bool clipSegmentYMin(Point& a, Point& b) noexcept {
  return clipAgainst<detail::YMin>(a, b);
}
template <HomogeneousPoint Point>
bool clipSegmentYMax(Point& a, Point& b) noexcept {
  return clipAgainst<detail::YMax>(a, b);
}
template <HomogeneousPoint Point>
bool clipSegmentZMin(Point& a, Point& b) noexcept {
  return clipAgainst<detail::ZMin>(a, b);
}
template <HomogeneousPoint Point>
bool clipSegmentZMax(Point& a, Point& b) noexcept {
  return clipAgainst<detail::ZMax>(a, b);
}

template <HomogeneousPoint Point>
bool clipSegment2D(Point& a, Point& b) noexcept {
  return clipThrough<detail::RectanglePlanes>(a, b);
}
template <HomogeneousPoint Point>
bool clipSegment3D(Point& a, Point& b) noexcept {
  return clipThrough<detail::VolumePlanes>(a, b);
}

template <HomogeneousPoint Point>
bool clipSegmentToVolume(Point& a, Point& b, std::uint32_t mask) noexcept {
  return detail::VolumePlanes::allOf(
      [&](auto plane) { return (mask & plane.kBit) == 0 || clipAgainst<decltype(plane)>(a, b); });
}

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are types
#define ULM_CLIP_INSTANTIATE(Point)                       \
  template bool clipSegmentXMin(Point&, Point&) noexcept; \
  template bool clipSegmentXMax(Point&, Point&) noexcept; \
  template bool clipSegmentYMin(Point&, Point&) noexcept; \
  template bool clipSegmentYMax(Point&, Point&) noexcept; \
  template bool clipSegmentZMin(Point&, Point&) noexcept; \
  template bool clipSegmentZMax(Point&, Point&) noexcept; \
  template bool clipSegment2D(Point&, Point&) noexcept;   \
  template bool clipSegment3D(Point&, Point&) noexcept;   \
  template bool clipSegmentToVolume(Point&, Point&, std::uint32_t) noexcept;
ULM_CLIP_INSTANTIATE(ClipPoint)
ULM_CLIP_INSTANTIATE(ClipPointF)
ULM_CLIP_INSTANTIATE(ClipVertex)
ULM_CLIP_INSTANTIATE(ClipVertexF)
// NOLINTEND(bugprone-macro-parentheses)
#undef ULM_CLIP_INSTANTIATE

}  // namespace ulm::clip
