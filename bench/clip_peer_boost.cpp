// Boost.Geometry: intersections with a box.
#include <boost/geometry.hpp>
#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/linestring.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>

#include "bench/clip_harness.h"

namespace ulm::bench {
namespace {

namespace bg = boost::geometry;
using Xy = bg::model::d2::point_xy<double>;
using Line = bg::model::linestring<Xy>;
using Ring = bg::model::polygon<Xy, false>;
const bg::model::box<Xy> kBox(Xy(-1, -1), Xy(1, 1));

class BoostSegments {
 public:
  explicit BoostSegments(const ClipBatch& batch) {
    for (const auto& shape : batch.shapes) {
      lines_.push_back({Xy(shape[0][0], shape[0][1]), Xy(shape[1][0], shape[1][1])});
    }
  }
  std::size_t clip(std::size_t i) {
    made_.clear();
    bg::intersection(kBox, lines_[i], made_);
    return made_.size();
  }

 private:
  std::vector<Line> lines_;
  std::vector<Line> made_;
};

class BoostPolygons {
 public:
  explicit BoostPolygons(const ClipBatch& batch) {
    for (const auto& shape : batch.shapes) {
      Ring ring;
      for (const Point& p : shape) bg::append(ring, Xy(p[0], p[1]));
      bg::correct(ring);
      rings_.push_back(std::move(ring));
    }
  }
  std::size_t clip(std::size_t i) {
    made_.clear();
    bg::intersection(kBox, rings_[i], made_);
    return made_.size();
  }
  double area(std::size_t i) {
    clip(i);
    double sum = 0;
    for (const Ring& ring : made_) sum += bg::area(ring);
    return sum;
  }

 private:
  std::vector<Ring> rings_;
  std::vector<Ring> made_;
};

}  // namespace

void addBoostSegments(const ClipBatch& batch) { addClipPeer<BoostSegments>("boost", batch, -1); }
void addBoostPolygons(const ClipBatch& batch, double expected) {
  addClipPeer<BoostPolygons>("boost", batch, expected);
}

}  // namespace ulm::bench
