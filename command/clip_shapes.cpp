#include "command/clip_shapes.h"

#include <stdexcept>

#include "clip/growable/polygon_array.h"
#include "clip/segment.h"

namespace ulm::tools {

template <class Real>
std::optional<ClipPoints<Real>> clipPolygon(const ClipPoints<Real>& points, std::uint32_t mask) {
  const auto count = static_cast<std::uint32_t>(points.size());
  if (count != points.size()) throw std::runtime_error("too many vertices in a polygon");
  clip::BasicClipPolygonArray<Real> polygon(count, true);
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto& [x, y, z, w] = points[i];
    clip::BasicClipVertex<Real>& vertex = polygon.vertexForWrite(i);
    vertex = {x, y, z, w, 0};
    vertex.outcode = clip::computeOutcode(vertex) & mask;  // the clipper skips planes without a bit
  }
  if (!clip::clipPolygonArrayInPlace(polygon)) return std::nullopt;
  ClipPoints<Real> clipped;
  clipped.reserve(polygon.count);
  for (std::uint32_t i = 0; i < polygon.count; ++i) {
    const clip::BasicClipVertex<Real>& vertex = polygon.vertexAt(i);
    clipped.push_back({vertex.x, vertex.y, vertex.z, vertex.w});
  }
  return clipped;
}

template <class Real>
std::optional<ClipPoints<Real>> clipSegment(const ClipPoints<Real>& points, std::uint32_t mask) {
  const auto pointOf = [](const std::array<Real, 4>& k) {
    return clip::BasicClipPoint<Real>{k[0], k[1], k[2], k[3]};
  };
  clip::BasicClipPoint<Real> a = pointOf(points.front());
  clip::BasicClipPoint<Real> b = pointOf(points.back());
  if (!clip::clipSegmentToVolume(a, b, mask)) return std::nullopt;
  return ClipPoints<Real>{{a.x, a.y, a.z, a.w}, {b.x, b.y, b.z, b.w}};
}

template std::optional<ClipPoints<double>> clipPolygon(const ClipPoints<double>&, std::uint32_t);
template std::optional<ClipPoints<float>> clipPolygon(const ClipPoints<float>&, std::uint32_t);
template std::optional<ClipPoints<double>> clipSegment(const ClipPoints<double>&, std::uint32_t);
template std::optional<ClipPoints<float>> clipSegment(const ClipPoints<float>&, std::uint32_t);

}  // namespace ulm::tools
