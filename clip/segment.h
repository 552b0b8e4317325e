// Segments from `a` to `b` in homogeneous clip space, clipped in place: against one plane, or
// against the planes of the rectangle or the volume in the order of ClipPlaneBit, the result of
// each plane being the input of the next.
//
// An end that moves becomes (b - a) * t + a in each component, with t = d(a) / (d(a) - d(b)) and d
// the distance to the plane, always taken from `a` to `b`. The direction of the segment is kept. Of
// a ClipVertex the coordinates alone are read and written.
//
// False means that nothing is left. One plane alone then leaves the points as they were; after more
// than one an earlier plane may have moved an end, and the points are of no further use.
//
// `a` and `b` are different objects. No function throws, allocates or keeps state.
#pragma once

#include <cstdint>

#include "clip/vertex.h"

namespace ulm::clip {

template <HomogeneousPoint Point>
bool clipSegmentXMin(Point& a, Point& b) noexcept;
template <HomogeneousPoint Point>
bool clipSegmentXMax(Point& a, Point& b) noexcept;
template <HomogeneousPoint Point>
bool clipSegmentYMin(Point& a, Point& b) noexcept;
template <HomogeneousPoint Point>
bool clipSegmentYMax(Point& a, Point& b) noexcept;
template <HomogeneousPoint Point>
bool clipSegmentZMin(Point& a, Point& b) noexcept;
template <HomogeneousPoint Point>
bool clipSegmentZMax(Point& a, Point& b) noexcept;

template <HomogeneousPoint Point>
bool clipSegment2D(Point& a, Point& b) noexcept;
template <HomogeneousPoint Point>
bool clipSegment3D(Point& a, Point& b) noexcept;

// As clipSegment3D over the planes whose ClipPlaneBit is set in `mask`; other bits are ignored.
template <HomogeneousPoint Point>
bool clipSegmentToVolume(Point& a, Point& b, std::uint32_t mask) noexcept;

}  // namespace ulm::clip
