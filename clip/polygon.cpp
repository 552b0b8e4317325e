#include "clip/polygon.h"

#include "clip/detail/fixed_polygon.h"
#include "clip/detail/outcode.h"
#include "clip/detail/planes.h"
#include "clip/detail/polygon_pass.h"

namespace ulm::clip {
namespace {

using detail::RectanglePlanes;
using detail::VolumePlanes;

}  // namespace

template <std::floating_point Real>
std::uint32_t clipPolygonXMin(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::XMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonXMax(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::XMax>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonYMin(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::YMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonYMax(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::YMax>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonZMin(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::ZMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonZMax(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::ZMax>(source, destination);
}

template <std::floating_point Real>
BasicClipPolygon<Real>* clipPolygonToVolume(BasicClipPolygon<Real>& first,
                                            BasicClipPolygon<Real>& second,
                                            const BasicClipPolygon<Real>& source,
                                            std::uint32_t mask) noexcept {
  return detail::clipThrough<VolumePlanes>(first, second, source, mask);
}
template <std::floating_point Real>
BasicClipPolygon<Real>* clipPolygonToRectangle(BasicClipPolygon<Real>& first,
                                               BasicClipPolygon<Real>& second,
                                               const BasicClipPolygon<Real>& source,
                                               std::uint32_t mask) noexcept {
  return detail::clipThrough<RectanglePlanes>(first, second, source, mask);
}

template <std::floating_point Real>
bool clipPolygonInPlace(BasicClipPolygon<Real>& polygon) noexcept {
  return detail::clipInPlace<VolumePlanes>(polygon) != ClipOutcome::Gone;
}
template <std::floating_point Real>
bool clipPolygonInPlace2D(BasicClipPolygon<Real>& polygon) noexcept {
  return detail::clipInPlace<RectanglePlanes>(polygon) != ClipOutcome::Gone;
}

template <std::floating_point Real>
std::size_t clipPolygonsInPlace(BasicClipPolygon<Real>* polygons, std::size_t polygonCount,
                                ClipOutcome* outcomes) noexcept {
  return detail::clipBatch<VolumePlanes>(polygons, polygonCount, outcomes);
}
template <std::floating_point Real>
std::size_t clipPolygonsInPlace2D(BasicClipPolygon<Real>* polygons, std::size_t polygonCount,
                                  ClipOutcome* outcomes) noexcept {
  return detail::clipBatch<RectanglePlanes>(polygons, polygonCount, outcomes);
}

template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipPolygon<Real>& polygon) noexcept {
  const std::uint32_t count = detail::PolygonAccess<BasicClipPolygon<Real>>::countOf(polygon);
  return detail::setOutcodes(polygon.vertices, count);
}

template <std::floating_point Real>
bool isFinite(const BasicClipPolygon<Real>& polygon) noexcept {
  const std::uint32_t count = detail::PolygonAccess<BasicClipPolygon<Real>>::countOf(polygon);
  return std::all_of(polygon.vertices, polygon.vertices + count,
                     [](const BasicClipVertex<Real>& vertex) { return isFinite(vertex); });
}

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are types
#define ULM_CLIP_INSTANTIATE(Polygon)                                                       \
  template std::uint32_t clipPolygonXMin(const Polygon&, Polygon&) noexcept;                \
  template std::uint32_t clipPolygonXMax(const Polygon&, Polygon&) noexcept;                \
  template std::uint32_t clipPolygonYMin(const Polygon&, Polygon&) noexcept;                \
  template std::uint32_t clipPolygonYMax(const Polygon&, Polygon&) noexcept;                \
  template std::uint32_t clipPolygonZMin(const Polygon&, Polygon&) noexcept;                \
  template std::uint32_t clipPolygonZMax(const Polygon&, Polygon&) noexcept;                \
  template Polygon* clipPolygonToVolume(Polygon&, Polygon&, const Polygon&,                 \
                                        std::uint32_t) noexcept;                            \
  template Polygon* clipPolygonToRectangle(Polygon&, Polygon&, const Polygon&,              \
                                           std::uint32_t) noexcept;                         \
  template bool clipPolygonInPlace(Polygon&) noexcept;                                      \
  template bool clipPolygonInPlace2D(Polygon&) noexcept;                                    \
  template std::size_t clipPolygonsInPlace(Polygon*, std::size_t, ClipOutcome*) noexcept;   \
  template std::size_t clipPolygonsInPlace2D(Polygon*, std::size_t, ClipOutcome*) noexcept; \
  template std::uint32_t computeOutcode(Polygon&) noexcept;                                 \
  template bool isFinite(const Polygon&) noexcept;
ULM_CLIP_INSTANTIATE(ClipPolygon)
ULM_CLIP_INSTANTIATE(ClipPolygonF)
// NOLINTEND(bugprone-macro-parentheses)
#undef ULM_CLIP_INSTANTIATE

}  // namespace ulm::clip
