// AGG: its segment clipper, which uses the algorithm of Liang and Barsky, and the polygon clipper
// of its vertex generator.
#include <agg2/agg_clip_liang_barsky.h>
#include <agg2/agg_vpgen_clip_polygon.h>

#include "bench/clip_harness.h"

namespace ulm::bench {
namespace {

class AggSegments {
 public:
  explicit AggSegments(const ClipBatch& batch) : batch_(batch) {}
  unsigned clip(std::size_t i) {
    double x1 = batch_.shapes[i][0][0], y1 = batch_.shapes[i][0][1];
    double x2 = batch_.shapes[i][1][0], y2 = batch_.shapes[i][1][1];
    const unsigned how = agg::clip_line_segment(&x1, &y1, &x2, &y2, agg::rect_d(-1, -1, 1, 1));
    benchmark::DoNotOptimize(x1);
    benchmark::DoNotOptimize(x2);
    return how;
  }

 private:
  const ClipBatch& batch_;
};

class AggPolygons {
 public:
  explicit AggPolygons(const ClipBatch& batch) : batch_(batch) { clipper_.clip_box(-1, -1, 1, 1); }
  std::size_t clip(std::size_t i) {
    const std::vector<Point>& shape = batch_.shapes[i];
    made_.clear();
    clipper_.reset();
    clipper_.move_to(shape[0][0], shape[0][1]);
    take();
    for (std::size_t v = 1; v < shape.size(); ++v) {
      clipper_.line_to(shape[v][0], shape[v][1]);
      take();
    }
    clipper_.line_to(shape[0][0], shape[0][1]);
    take();
    return made_.size();
  }
  double area(std::size_t i) {
    clip(i);
    return areaOf(
        made_.size(), [&](std::size_t v) { return made_[v][0]; },
        [&](std::size_t v) { return made_[v][1]; });
  }

 private:
  void take() {
    double x = 0, y = 0;
    while (clipper_.vertex(&x, &y) != agg::path_cmd_stop) made_.push_back({x, y});
  }
  const ClipBatch& batch_;
  agg::vpgen_clip_polygon clipper_;
  std::vector<std::array<double, 2>> made_;
};

}  // namespace

void addAggSegments(const ClipBatch& batch) { addClipPeer<AggSegments>("agg", batch, -1); }
void addAggPolygons(const ClipBatch& batch, double expected) {
  addClipPeer<AggPolygons>("agg", batch, expected);
}

}  // namespace ulm::bench
