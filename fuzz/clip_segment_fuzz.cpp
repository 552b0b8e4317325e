// Segments of both widths. An input is a mask and the bytes of the coordinates of two points.
#include <bit>
#include <cmath>

#include "clip/segment.h"
#include "fuzz/clip_rounding.h"
#include "fuzz/input.h"

namespace {

using namespace ulm::clip;
using namespace ulm::fuzz;

template <class Point>
struct Ends {
  Point a, b;
};

template <class Real>
BasicClipVertex<Real> vertexOf(const BasicClipPoint<Real>& p) {
  return {p.x, p.y, p.z, p.w, 0xABCD};
}
template <class Point, class Other>
bool same(const Point& p, const Other& q) {
  return sameBits(p.x, q.x) && sameBits(p.y, q.y) && sameBits(p.z, q.z) && sameBits(p.w, q.w);
}

template <class Real>
void check(Input input) {
  using Point = BasicClipPoint<Real>;
  using Vertex = BasicClipVertex<Real>;
  const std::uint32_t mask = input.u8();
  const auto point = [&] {
    Point made;
    for (Real* k : {&made.x, &made.y, &made.z, &made.w}) *k = coordinate<Real>(input, mask);
    return made;
  };
  const Ends<Point> ends{point(), point()};
  constexpr bool (*kPlanes[])(Point&, Point&) noexcept = {clipSegmentXMin, clipSegmentXMax,
                                                          clipSegmentYMax, clipSegmentYMin,
                                                          clipSegmentZMax, clipSegmentZMin};
  Ends<Point> byPlane = ends, byMask = ends, whole = ends;
  bool left = true, leftMasked = true;
  for (std::size_t plane = 0; plane < 6; ++plane) {
    Ends<Point> one = ends;
    const bool remains = kPlanes[plane](one.a, one.b);
    if (!remains) require(same(one.a, ends.a) && same(one.b, ends.b), "a refusal writes nothing");
    if (remains) requireNearInside<Point>(kPlaneBits[plane], {ends.a, ends.b}, {one.a, one.b});
    left = left && kPlanes[plane](byPlane.a, byPlane.b);
    if ((mask & kPlaneBits[plane]) != 0) {
      leftMasked = leftMasked && kPlanes[plane](byMask.a, byMask.b);
    }
  }
  require(clipSegment3D(whole.a, whole.b) == left, "the volume is its six planes");
  if (left) require(same(whole.a, byPlane.a) && same(whole.b, byPlane.b), "bits of the six planes");
  Ends<Vertex> vertices{vertexOf(ends.a), vertexOf(ends.b)};
  require(clipSegmentToVolume(vertices.a, vertices.b, mask) == leftMasked, "a mask is its planes");
  if (leftMasked) {
    require(same(vertices.a, byMask.a) && same(vertices.b, byMask.b), "a vertex is as a point");
  }
  require(vertices.a.outcode == 0xABCD && vertices.b.outcode == 0xABCD, "outcodes stay");
  if (isInsideVolume3D(ends.a) && isInsideVolume3D(ends.b)) {
    require(left && same(whole.a, ends.a) && same(whole.b, ends.b), "what is inside stays");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 256) return 0;
  check<double>(Input(data, size));
  check<float>(Input(data, size));
  return 0;
}
