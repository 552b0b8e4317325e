// The clipper in both widths and both containers next to its peers, in one run.
#include <dlfcn.h>

#include <deque>

#include "bench/clip_harness.h"
#include "clip/growable/polygon_array.h"
#include "clip/polygon.h"
#include "clip/segment.h"

namespace ulm::bench {
namespace {

constexpr std::size_t kShapes = 2000;

double uniform(std::mt19937& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

// Regular polygons at random angles, with a small slope in z.
std::vector<Point> disc(std::mt19937& random, double x, double y, double radius,
                        std::uint32_t count) {
  const double turn = uniform(random, 0, 6.3);
  std::vector<Point> points;
  for (std::uint32_t i = 0; i < count; ++i) {
    const double angle = turn + 6.283185307179586 * i / count;
    const double px = x + radius * std::cos(angle);
    const double py = y + radius * std::sin(angle);
    points.push_back({px, py, 0.2 * px - 0.1 * py, 1});
  }
  return points;
}

// An outline of random vertices, which may cross itself and each plane many times.
std::vector<Point> tangle(std::mt19937& random, std::uint32_t count) {
  std::vector<Point> points;
  for (std::uint32_t i = 0; i < count; ++i) {
    points.push_back(
        {uniform(random, -1.5, 1.5), uniform(random, -1.5, 1.5), uniform(random, -1.1, 1.1), 1});
  }
  return points;
}

ClipBatch polygons(const std::string& group, const std::string& kind, std::uint32_t count) {
  ClipBatch batch{group + "/" + kind + "/" + std::to_string(count), {}, group == "rectangle"};
  std::mt19937 random(count);
  for (std::size_t i = 0; i < std::max<std::size_t>(kShapes / (1 + count / 16), 50); ++i) {
    const double shift = uniform(random, -0.05, 0.05);
    if (kind == "inside") {
      batch.shapes.push_back(disc(random, shift, shift, 0.7, count));
    } else if (kind == "one") {
      batch.shapes.push_back(disc(random, 1 + shift, shift, 0.6, count));
    } else if (kind == "several") {
      batch.shapes.push_back(disc(random, shift, shift, 1.25, count));
    } else if (kind == "tangle") {
      batch.shapes.push_back(
          tangle(random, 3 + static_cast<std::uint32_t>(random() % (count - 2))));
    } else {
      batch.shapes.push_back(disc(random, uniform(random, -1.6, 1.6), uniform(random, -1.6, 1.6),
                                  uniform(random, 0.1, 1.5),
                                  3 + static_cast<std::uint32_t>(random() % (count - 2))));
    }
  }
  return batch;
}

ClipBatch segments(bool flat) {
  ClipBatch batch{flat ? "rectangle/segments/2" : "volume/segments/2", {}, flat};
  std::mt19937 random(9);
  for (std::size_t i = 0; i < kShapes; ++i) {
    const auto end = [&] {
      return Point{uniform(random, -2, 2), uniform(random, -2, 2), uniform(random, -1, 1), 1};
    };
    batch.shapes.push_back({end(), end()});
  }
  return batch;
}

template <class Real, bool Flat>
class OurSegments {
 public:
  explicit OurSegments(const ClipBatch& batch) {
    const auto pointOf = [](const Point& p) {
      return clip::BasicClipPoint<Real>{Real(p[0]), Real(p[1]), Real(p[2]), Real(p[3])};
    };
    for (const auto& shape : batch.shapes) ends_.push_back({pointOf(shape[0]), pointOf(shape[1])});
  }
  int clip(std::size_t i) {
    auto [a, b] = ends_[i];
    const bool remains = Flat ? clip::clipSegment2D(a, b) : clip::clipSegment3D(a, b);
    benchmark::DoNotOptimize(a);
    benchmark::DoNotOptimize(b);
    return remains ? 2 : 0;
  }

 private:
  std::vector<std::array<clip::BasicClipPoint<Real>, 2>> ends_;
};

// The outcodes are computed in each call, because a peer has to examine the coordinates too.
template <class Real, bool Flat>
class Fixed {
 public:
  explicit Fixed(const ClipBatch& batch) {
    for (const auto& shape : batch.shapes) {
      clip::BasicClipPolygon<Real>& polygon = polygons_.emplace_back();
      for (std::uint32_t i = 0; i < shape.size(); ++i) {
        const Point& p = shape[i];
        polygon.vertexForWrite(i) = {Real(p[0]), Real(p[1]), Real(p[2]), Real(p[3]), 0};
      }
    }
  }
  clip::BasicClipPolygon<Real>* result(std::size_t i) {
    clip::BasicClipPolygon<Real>& source = polygons_[i];
    const std::uint32_t mask = clip::computeOutcode(source) & (Flat ? 0x33U : 0x77U);
    if (mask == 0) return &source;
    return Flat ? clip::clipPolygonToRectangle(first_, second_, source, mask)
                : clip::clipPolygonToVolume(first_, second_, source, mask);
  }
  std::uint32_t clip(std::size_t i) {
    const auto* const polygon = result(i);
    return polygon == nullptr ? 0 : polygon->count;
  }
  double area(std::size_t i) {
    const auto* const polygon = result(i);
    if (polygon == nullptr) return 0;
    return areaOf(
        polygon->count, [&](std::size_t v) { return polygon->vertices[v].x; },
        [&](std::size_t v) { return polygon->vertices[v].y; });
  }

 protected:
  std::deque<clip::BasicClipPolygon<Real>> polygons_;
  clip::BasicClipPolygon<Real> first_{};
  clip::BasicClipPolygon<Real> second_{};
};

template <class Real, bool Flat>
class FixedInPlace : public Fixed<Real, Flat> {
 public:
  using Fixed<Real, Flat>::Fixed;
  std::uint32_t clip(std::size_t i) {
    this->first_ = this->polygons_[i];
    clip::computeOutcode(this->first_);
    const bool remains =
        Flat ? clip::clipPolygonInPlace2D(this->first_) : clip::clipPolygonInPlace(this->first_);
    return remains ? this->first_.count : 0;
  }
};

template <class Real, bool Flat>
class Growable {
 public:
  explicit Growable(const ClipBatch& batch) {
    for (const auto& shape : batch.shapes) {
      clip::BasicClipPolygonArray<Real> polygon(static_cast<std::uint32_t>(shape.size()), true);
      for (std::uint32_t i = 0; i < shape.size(); ++i) {
        const Point& p = shape[i];
        polygon.vertexForWrite(i) = {Real(p[0]), Real(p[1]), Real(p[2]), Real(p[3]), 0};
      }
      polygons_.push_back(std::move(polygon));
    }
  }
  clip::BasicClipPolygonArray<Real>* result(std::size_t i) {
    clip::BasicClipPolygonArray<Real>& source = polygons_[i];
    const std::uint32_t mask = clip::computeOutcode(source) & (Flat ? 0x33U : 0x77U);
    if (mask == 0) return &source;
    return Flat ? clip::clipPolygonArrayToRectangle(first_, second_, source, mask)
                : clip::clipPolygonArrayToVolume(first_, second_, source, mask);
  }
  std::uint32_t clip(std::size_t i) {
    const auto* const polygon = result(i);
    return polygon == nullptr ? 0 : polygon->count;
  }
  double area(std::size_t i) {
    const auto* const polygon = result(i);
    if (polygon == nullptr) return 0;
    const auto* const vertices = std::as_const(polygon->vertices).data();
    return areaOf(
        polygon->count, [&](std::size_t v) { return vertices[v].x; },
        [&](std::size_t v) { return vertices[v].y; });
  }

 protected:
  std::vector<clip::BasicClipPolygonArray<Real>> polygons_;
  clip::BasicClipPolygonArray<Real> first_{0, false};
  clip::BasicClipPolygonArray<Real> second_{0, false};
};

template <class Real, bool Flat>
class GrowableInPlace : public Growable<Real, Flat> {
 public:
  using Growable<Real, Flat>::Growable;
  std::uint32_t clip(std::size_t i) {
    clip::computeOutcode(this->polygons_[i]);
    clip::BasicClipPolygonArray<Real> polygon = this->polygons_[i];
    const bool remains =
        Flat ? clip::clipPolygonArrayInPlace2D(polygon) : clip::clipPolygonArrayInPlace(polygon);
    return remains ? polygon.count : 0;
  }
};

// Bullet's face clipper, from the module of its width.
class Bullet {
 public:
  Bullet(const ClipBatch& batch, const char* path) : library_(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
    if (library_ == nullptr) throw std::runtime_error(dlerror());
    make_ = reinterpret_cast<decltype(make_)>(dlsym(library_, "peerMake"));
    clip_ = reinterpret_cast<decltype(clip_)>(dlsym(library_, "peerClip"));
    area_ = reinterpret_cast<decltype(area_)>(dlsym(library_, "peerArea"));
    free_ = reinterpret_cast<decltype(free_)>(dlsym(library_, "peerFree"));
    made_ = make_(batch);
  }
  Bullet(const Bullet&) = delete;
  Bullet& operator=(const Bullet&) = delete;
  ~Bullet() { free_(made_); }
  int clip(std::size_t i) { return clip_(made_, i); }
  double area(std::size_t i) { return area_(made_, i); }

 private:
  void* library_;
  void* made_;
  void* (*make_)(const ClipBatch&);
  int (*clip_)(void*, std::size_t);
  double (*area_)(void*, std::size_t);
  void (*free_)(void*);
};
#ifdef ULM_PEER_BULLET
struct Bullet32 : Bullet {
  explicit Bullet32(const ClipBatch& batch) : Bullet(batch, ULM_PEER_BULLET) {}
};
#endif
#ifdef ULM_PEER_BULLET_float64
struct Bullet64 : Bullet {
  explicit Bullet64(const ClipBatch& batch) : Bullet(batch, ULM_PEER_BULLET_float64) {}
};
#endif

template <class Real, bool Flat>
void addOurs(const ClipBatch& batch, bool fixed, double expected, const std::string& width) {
  if (fixed) {
    addClipPeer<Fixed<Real, Flat>>("ulmira_fixed" + width, batch, expected);
    addClipPeer<FixedInPlace<Real, Flat>>("ulmira_fixed_in_place" + width, batch, expected);
  }
  addClipPeer<Growable<Real, Flat>>("ulmira_growable" + width, batch, expected);
  addClipPeer<GrowableInPlace<Real, Flat>>("ulmira_growable_in_place" + width, batch, expected);
}

template <bool Flat>
void addPolygons(const ClipBatch& batch, bool fixed) {
  Growable<double, Flat> reference(batch);
  double expected = 0;
  for (std::size_t i = 0; i < batch.shapes.size(); ++i) expected += std::abs(reference.area(i));
  addOurs<double, Flat>(batch, fixed, expected, "64");
  addOurs<float, Flat>(batch, fixed, expected, "32");
#ifdef ULM_PEER_BULLET_float64
  addClipPeer<Bullet64>("bullet64", batch, expected);
#endif
#ifdef ULM_PEER_BULLET
  addClipPeer<Bullet32>("bullet32", batch, expected);
#endif
  if constexpr (Flat) {
#ifdef ULM_PEER_AGG
    addAggPolygons(batch, expected);
#endif
#ifdef ULM_PEER_BOOST
    addBoostPolygons(batch, expected);
#endif
#ifdef ULM_PEER_CGAL
    addCgalTriangles(batch, expected);
#endif
#ifdef ULM_PEER_CLIPPER
    addClipperPolygons(batch, expected);
#endif
  }
}

template <bool Flat>
void addSegments(const ClipBatch& batch) {
  addClipPeer<OurSegments<double, Flat>>("ulmira64", batch, -1);
  addClipPeer<OurSegments<float, Flat>>("ulmira32", batch, -1);
  if constexpr (Flat) {
#ifdef ULM_PEER_AGG
    addAggSegments(batch);
#endif
#ifdef ULM_PEER_BOOST
    addBoostSegments(batch);
#endif
#ifdef ULM_PEER_CGAL
    addCgalSegments(batch);
#endif
  }
}

}  // namespace
}  // namespace ulm::bench

int main(int argc, char** argv) {
  using namespace ulm::bench;
  std::deque<ClipBatch> batches;
  addSegments<true>(batches.emplace_back(segments(true)));
  addSegments<false>(batches.emplace_back(segments(false)));
  for (const char* kind : {"inside", "one", "several", "mixture"}) {
    for (const std::uint32_t count : {3U, 8U, 24U, 100U, 1000U}) {
      const bool fixed = count <= 24;  // leaves capacity for the vertices that the planes add
      addPolygons<false>(batches.emplace_back(polygons("volume", kind, count)), fixed);
      addPolygons<true>(batches.emplace_back(polygons("rectangle", kind, count)), fixed);
    }
  }
  const std::pair<const char*, std::uint32_t> kInPlace[] = {
      {"one", 3},      {"one", 30},     {"one", 1000}, {"several", 3}, {"several", 24},
      {"mixture", 12}, {"mixture", 24}, {"tangle", 3}, {"tangle", 12}};
  for (const auto& [kind, count] : kInPlace) {
    addInPlace(batches.emplace_back(polygons("in_place", kind, count)));
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
