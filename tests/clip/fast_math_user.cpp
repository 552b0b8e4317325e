// A user's source, built with -ffast-math: what it calls must not feel it.
#include "tests/clip/fast_math_user.h"

#include "clip/segment.h"

namespace ulm::test {

template <class Point>
bool clipSegmentUnderFastMath(Point& a, Point& b) {
  return clip::clipSegment3D(a, b);
}
template bool clipSegmentUnderFastMath(clip::ClipPoint&, clip::ClipPoint&);
template bool clipSegmentUnderFastMath(clip::ClipPointF&, clip::ClipPointF&);
template bool clipSegmentUnderFastMath(clip::ClipVertex&, clip::ClipVertex&);
template bool clipSegmentUnderFastMath(clip::ClipVertexF&, clip::ClipVertexF&);

}  // namespace ulm::test
