#include "clip/growable/polygon_array.h"

#include <algorithm>

#include "clip/detail/outcode.h"
#include "clip/detail/planes.h"
#include "clip/detail/polygon_pass.h"
#include "clip/growable/detail/polygon_array_access.h"

namespace ulm::clip {
namespace {

using detail::RectanglePlanes;
using detail::VolumePlanes;

}  // namespace

template <std::floating_point Real>
std::uint32_t clipPolygonArrayXMin(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::XMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonArrayXMax(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::XMax>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonArrayYMin(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::YMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonArrayYMax(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::YMax>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonArrayZMin(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::ZMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonArrayZMax(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::ZMax>(source, destination);
}

template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToVolume(BasicClipPolygonArray<Real>& first,
                                                      BasicClipPolygonArray<Real>& second,
                                                      BasicClipPolygonArray<Real>& source,
                                                      std::uint32_t mask) {
  return detail::clipThrough<VolumePlanes>(first, second, source, mask);
}
template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToRectangle(BasicClipPolygonArray<Real>& first,
                                                         BasicClipPolygonArray<Real>& second,
                                                         BasicClipPolygonArray<Real>& source,
                                                         std::uint32_t mask) {
  return detail::clipThrough<RectanglePlanes>(first, second, source, mask);
}

template <std::floating_point Real>
bool clipPolygonArrayInPlace(BasicClipPolygonArray<Real>& polygon) {
  return detail::clipInPlace<VolumePlanes>(polygon) != ClipOutcome::Gone;
}
template <std::floating_point Real>
bool clipPolygonArrayInPlace2D(BasicClipPolygonArray<Real>& polygon) {
  return detail::clipInPlace<RectanglePlanes>(polygon) != ClipOutcome::Gone;
}

template <std::floating_point Real>
std::size_t clipPolygonArraysInPlace(BasicClipPolygonArray<Real>* polygons,
                                     std::size_t polygonCount, ClipOutcome* outcomes) {
  return detail::clipBatch<VolumePlanes>(polygons, polygonCount, outcomes);
}
template <std::floating_point Real>
std::size_t clipPolygonArraysInPlace2D(BasicClipPolygonArray<Real>* polygons,
                                       std::size_t polygonCount, ClipOutcome* outcomes) {
  return detail::clipBatch<RectanglePlanes>(polygons, polygonCount, outcomes);
}

template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipPolygonArray<Real>& polygon) {
  if (polygon.count == 0) return 0;
  polygon.vertices.at(polygon.count -
                      1);  // checks `count` and detaches, so that all are written or none
  return detail::setOutcodes(polygon.vertices.data(), polygon.count);
}

template <std::floating_point Real>
bool isFinite(const BasicClipPolygonArray<Real>& polygon) {
  const BasicClipVertex<Real>* const vertices =
      detail::PolygonAccess<BasicClipPolygonArray<Real>>::peek(polygon);
  return std::all_of(vertices, vertices + polygon.count,
                     [](const BasicClipVertex<Real>& vertex) { return isFinite(vertex); });
}

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are types
#define ULM_CLIP_INSTANTIATE(Polygon)                                                         \
  template std::uint32_t clipPolygonArrayXMin(Polygon&, Polygon&);                            \
  template std::uint32_t clipPolygonArrayXMax(Polygon&, Polygon&);                            \
  template std::uint32_t clipPolygonArrayYMin(Polygon&, Polygon&);                            \
  template std::uint32_t clipPolygonArrayYMax(Polygon&, Polygon&);                            \
  template std::uint32_t clipPolygonArrayZMin(Polygon&, Polygon&);                            \
  template std::uint32_t clipPolygonArrayZMax(Polygon&, Polygon&);                            \
  template Polygon* clipPolygonArrayToVolume(Polygon&, Polygon&, Polygon&, std::uint32_t);    \
  template Polygon* clipPolygonArrayToRectangle(Polygon&, Polygon&, Polygon&, std::uint32_t); \
  template bool clipPolygonArrayInPlace(Polygon&);                                            \
  template bool clipPolygonArrayInPlace2D(Polygon&);                                          \
  template std::size_t clipPolygonArraysInPlace(Polygon*, std::size_t, ClipOutcome*);         \
  template std::size_t clipPolygonArraysInPlace2D(Polygon*, std::size_t, ClipOutcome*);       \
  template std::uint32_t computeOutcode(Polygon&);                                            \
  template bool isFinite(const Polygon&);
ULM_CLIP_INSTANTIATE(ClipPolygonArray)
ULM_CLIP_INSTANTIATE(ClipPolygonArrayF)
// NOLINTEND(bugprone-macro-parentheses)
#undef ULM_CLIP_INSTANTIATE

}  // namespace ulm::clip
