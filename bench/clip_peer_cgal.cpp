// CGAL, in plain doubles: segments and triangles against a rectangle.
#include <CGAL/Polygon_2.h>
#include <CGAL/Simple_cartesian.h>
#include <CGAL/intersections.h>

#include "bench/clip_harness.h"

namespace ulm::bench {
namespace {

using Kernel = CGAL::Simple_cartesian<double>;
const Kernel::Iso_rectangle_2 kRectangle(Kernel::Point_2(-1, -1), Kernel::Point_2(1, 1));

Kernel::Point_2 pointOf(const Point& p) { return {p[0], p[1]}; }

class CgalSegments {
 public:
  explicit CgalSegments(const ClipBatch& batch) {
    for (const auto& shape : batch.shapes) {
      segments_.emplace_back(pointOf(shape[0]), pointOf(shape[1]));
    }
  }
  bool clip(std::size_t i) {
    const auto made = CGAL::intersection(segments_[i], kRectangle);
    return made.has_value();
  }

 private:
  std::vector<Kernel::Segment_2> segments_;
};

class CgalTriangles {
 public:
  explicit CgalTriangles(const ClipBatch& batch) {
    for (const auto& shape : batch.shapes) {
      triangles_.emplace_back(pointOf(shape[0]), pointOf(shape[1]), pointOf(shape[2]));
    }
  }
  bool clip(std::size_t i) {
    const auto made = CGAL::intersection(triangles_[i], kRectangle);
    return made.has_value();
  }
  double area(std::size_t i) {
    const auto made = CGAL::intersection(triangles_[i], kRectangle);
    if (!made) return 0;
    if (const auto* triangle = boost::get<Kernel::Triangle_2>(&*made)) return triangle->area();
    if (const auto* points = boost::get<std::vector<Kernel::Point_2>>(&*made)) {
      return areaOf(
          points->size(), [&](std::size_t v) { return (*points)[v].x(); },
          [&](std::size_t v) { return (*points)[v].y(); });
    }
    return 0;
  }

 private:
  std::vector<Kernel::Triangle_2> triangles_;
};

}  // namespace

void addCgalSegments(const ClipBatch& batch) { addClipPeer<CgalSegments>("cgal", batch, -1); }
void addCgalTriangles(const ClipBatch& batch, double expected) {
  for (const auto& shape : batch.shapes) {
    if (shape.size() != 3) return;
  }
  addClipPeer<CgalTriangles>("cgal", batch, expected);
}

}  // namespace ulm::bench
