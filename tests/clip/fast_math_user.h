#pragma once

namespace ulm::test {

template <class Point>
bool clipSegmentUnderFastMath(Point& a, Point& b);

}  // namespace ulm::test
