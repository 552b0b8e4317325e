// Clipper. It computes with integers, and 2^24 of them are one unit.
#include <polyclipping/clipper.hpp>

#include "bench/clip_harness.h"

namespace ulm::bench {
namespace {

namespace cl = ClipperLib;
constexpr double kUnit = 16777216;

class ClipperPolygons {
 public:
  explicit ClipperPolygons(const ClipBatch& batch) {
    for (const auto& shape : batch.shapes) {
      cl::Path path;
      for (const Point& p : shape) {
        path.emplace_back(static_cast<cl::cInt>(p[0] * kUnit), static_cast<cl::cInt>(p[1] * kUnit));
      }
      paths_.push_back(std::move(path));
    }
    const auto unit = static_cast<cl::cInt>(kUnit);
    box_ = {{-unit, -unit}, {unit, -unit}, {unit, unit}, {-unit, unit}};
  }
  std::size_t clip(std::size_t i) {
    cl::Clipper clipper;
    clipper.AddPath(paths_[i], cl::ptSubject, true);
    clipper.AddPath(box_, cl::ptClip, true);
    clipper.Execute(cl::ctIntersection, made_);
    return made_.size();
  }
  double area(std::size_t i) {
    clip(i);
    double sum = 0;
    for (const cl::Path& path : made_) sum += cl::Area(path);
    return sum / kUnit / kUnit;
  }

 private:
  std::vector<cl::Path> paths_;
  cl::Path box_;
  cl::Paths made_;
};

}  // namespace

void addClipperPolygons(const ClipBatch& batch, double expected) {
  addClipPeer<ClipperPolygons>("clipper", batch, expected);
}

}  // namespace ulm::bench
