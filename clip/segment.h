// Clips segments from `a` to `b` in homogeneous clip space, in place. No function throws, allocates
// or keeps state.
//
// An end that moves becomes (b - a) * t + a in each component, with t = d(a) / (d(a) - d(b)) and d
// the distance to the plane. t is always taken from `a` to `b`, so the segment keeps its direction.
// Of a ClipVertex only the coordinates are read and written. `a` and `b` must be different objects.
#pragma once

#include <cstdint>

#include "clip/vertex.h"

namespace ulm::clip {

// The six plane clippers. Each returns false, with both points unchanged, when nothing of the
// segment is left, and true otherwise.
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

// Clips against the four planes of the rectangle in the order of ClipPlaneBit; the result of each
// plane is the input of the next. Returns false when nothing is left. An earlier plane may then
// have moved an end, and the points are of no further use.
template <HomogeneousPoint Point>
bool clipSegment2D(Point& a, Point& b) noexcept;

// The same with the six planes of the volume.
template <HomogeneousPoint Point>
bool clipSegment3D(Point& a, Point& b) noexcept;

// The same with the planes whose ClipPlaneBit is set in `mask`; other bits are ignored.
template <HomogeneousPoint Point>
bool clipSegmentToVolume(Point& a, Point& b, std::uint32_t mask) noexcept;

}  // namespace ulm::clip
