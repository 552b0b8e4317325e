// A plain clipper for comparison: a loop over the outline that reads and writes every vertex
// through the two accessors of the polygon. It gives the coordinates that the library gives.
#pragma once

#include <cstdint>

#include "clip/polygon.h"

namespace ulm::bench {

struct PlainPlane {
  std::uint32_t bit;
  int axis;
  bool atMax;
};

template <PlainPlane P, class Polygon>
std::uint32_t plainPass(Polygon& source, Polygon& destination) {
  const auto along = [](const auto& v) { return P.axis == 0 ? v.x : P.axis == 1 ? v.y : v.z; };
  const auto isInside = [&](const auto& v) {
    return !(P.atMax ? along(v) > v.w : -v.w > along(v));
  };
  const auto distance = [&](const auto& v) { return P.atMax ? v.w - along(v) : along(v) + v.w; };
  std::uint32_t n = 0;
  const auto cross = [&](const auto& p, const auto& q) {
    const auto t = distance(p) / (distance(p) - distance(q));
    auto& made = destination.vertexForWrite(n++);
    made.x = (q.x - p.x) * t + p.x;
    made.y = (q.y - p.y) * t + p.y;
    made.z = (q.z - p.z) * t + p.z;
    made.w = (q.w - p.w) * t + p.w;
  };
  const bool firstInside = isInside(source.vertexAt(0));
  if (firstInside) destination.vertexForWrite(n++) = source.vertexAt(0);
  bool previousInside = firstInside;
  for (std::uint32_t i = 1; i < source.count; ++i) {
    const bool inside = isInside(source.vertexAt(i));
    if (inside != previousInside) cross(source.vertexAt(i - 1), source.vertexAt(i));
    if (inside) destination.vertexForWrite(n++) = source.vertexAt(i);
    previousInside = inside;
  }
  if (previousInside != firstInside) cross(source.vertexAt(source.count - 1), source.vertexAt(0));
  return destination.count = std::min(n, clip::kClipPolygonCapacity);
}

// Clips a fixed polygon in place, against the volume.
template <class Real>
bool plainInPlace(clip::BasicClipPolygon<Real>& polygon) {
  using Polygon = clip::BasicClipPolygon<Real>;
  if (polygon.count == 0) return false;
  std::uint32_t any = 0;
  std::uint32_t all = ~0U;
  for (std::uint32_t i = 0; i < polygon.count; ++i) {
    any |= polygon.vertexAt(i).outcode;
    all &= polygon.vertexAt(i).outcode;
  }
  if (all != 0) return false;
  if (any == 0) return true;
  Polygon first, second;
  first.count = second.count = 0;
  Polygon* from = &polygon;
  Polygon* to = &first;
  const auto run = [&]<PlainPlane P>() {
    if ((any & P.bit) == 0) return true;
    if (plainPass<P>(*from, *to) < 3) return false;
    from = to;
    to = to == &first ? &second : &first;
    return true;
  };
  const bool remains = run.template operator()<PlainPlane{clip::ClipXMin, 0, false}>() &&
                       run.template operator()<PlainPlane{clip::ClipXMax, 0, true}>() &&
                       run.template operator()<PlainPlane{clip::ClipYMax, 1, true}>() &&
                       run.template operator()<PlainPlane{clip::ClipYMin, 1, false}>() &&
                       run.template operator()<PlainPlane{clip::ClipZMax, 2, true}>() &&
                       run.template operator()<PlainPlane{clip::ClipZMin, 2, false}>();
  if (remains) polygon = *from;
  return remains;
}

}  // namespace ulm::bench
