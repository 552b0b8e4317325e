// Clips a triangle with a colour at each vertex, and prints the remaining polygon.
#include <cstdio>
#include <vector>

#include "clip/polygon.h"
#include "clip/trace.h"

int main() {
  using namespace ulm::clip;

  // In homogeneous clip space, which is the result of a projection. The corner at x = 3 is outside.
  ClipPolygon triangle{};
  triangle.vertexForWrite(0) = {-0.5, -0.5, 0, 1, 0};
  triangle.vertexForWrite(1) = {3.0, 0.0, 0, 1, 0};
  triangle.vertexForWrite(2) = {-0.5, 0.5, 0, 1, 0};
  std::vector<double> red = {0.0, 1.0, 0.5};  // a colour for each vertex

  if (!isFinite(triangle)) return 1;
  computeOutcode(triangle);  // the clipper reads the outcodes, so they are computed first
  ClipTrace<ClipPolygon> trace;
  if (!clipPolygonInPlace(triangle, trace)) {
    std::puts("nothing is left");
    return 0;
  }

  // Each record is one new vertex: its colour is interpolated between the two ends of its edge.
  const auto sourceCount = static_cast<std::uint32_t>(red.size());
  const auto indexOf = [&](ClipOrigin origin) {
    return origin < kClipRecordOrigin ? origin : origin - kClipRecordOrigin + sourceCount;
  };
  for (const ClipRecord& record : trace.records()) {
    red.push_back(interpolate(red[indexOf(record.earlier)], red[indexOf(record.later)], record.t));
  }

  for (std::uint32_t i = 0; i < triangle.count; ++i) {
    const ClipVertex& vertex = triangle.vertexAt(i);
    std::printf("%6.3f %6.3f %6.3f %6.3f  red %.3f\n", vertex.x, vertex.y, vertex.z, vertex.w,
                red[indexOf(trace.origins()[i])]);
  }
  return 0;
}
