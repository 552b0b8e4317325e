// The in-place drivers of fixed and growable polygons, with outcodes given, next to a plain loop
// through the accessors. Every iteration clips fresh copies, made outside the measurement.
#include <cstring>
#include <utility>

#include "bench/clip_harness.h"
#include "bench/clip_plain.h"
#include "clip/growable/polygon_array.h"
#include "clip/polygon.h"

namespace ulm::bench {
namespace {

// Gives every vertex a w of its own, which leaves the projected shape as it is.
template <class Polygon>
void fill(Polygon& polygon, const std::vector<Point>& shape) {
  using Real = decltype(Polygon::Vertex::x);
  std::mt19937 random(static_cast<std::uint32_t>(shape.size()));
  for (std::uint32_t i = 0; i < shape.size(); ++i) {
    const double w = std::uniform_real_distribution<double>(0.5, 2)(random);
    polygon.vertexForWrite(i) = {Real(shape[i][0] * w), Real(shape[i][1] * w),
                                 Real(shape[i][2] * w), Real(w), 0};
  }
  clip::computeOutcode(polygon);
}

template <class Real>
bool same(const clip::BasicClipPolygon<Real>& a, const clip::BasicClipPolygon<Real>& b) {
  bool equal = a.count == b.count;
  for (std::uint32_t i = 0; equal && i < a.count; ++i) {
    equal = std::memcmp(&a.vertices[i], &b.vertices[i], 4 * sizeof(Real)) == 0;
  }
  return equal;
}

template <class Real>
class FixedCopies {
 public:
  explicit FixedCopies(const ClipBatch& batch) : originals_(batch.shapes.size()) {
    for (std::size_t i = 0; i < originals_.size(); ++i) fill(originals_[i], batch.shapes[i]);
    copies_ = originals_;
    outcomes_.resize(originals_.size());
  }
  void prepare(const std::vector<std::uint32_t>& order) {
    for (std::size_t i = 0; i < order.size(); ++i) copies_[i] = originals_[order[i]];
  }
  // Clips every shape by the library and by the plain loop, and compares.
  bool isRight() {
    for (const auto& original : originals_) {
      auto ours = original, plain = original;
      const bool remains = clip::clipPolygonInPlace(ours);
      if (plainInPlace(plain) != remains || !same(ours, plain)) return false;
    }
    return true;
  }

 protected:
  std::vector<clip::BasicClipPolygon<Real>> originals_;
  std::vector<clip::BasicClipPolygon<Real>> copies_;
  std::vector<clip::ClipOutcome> outcomes_;
};

template <class Real>
struct OursInPlace : FixedCopies<Real> {
  using FixedCopies<Real>::FixedCopies;
  bool clip(std::size_t i) { return clip::clipPolygonInPlace(this->copies_[i]); }
};
template <class Real>
struct PlainInPlace : FixedCopies<Real> {
  using FixedCopies<Real>::FixedCopies;
  bool clip(std::size_t i) { return plainInPlace(this->copies_[i]); }
};
template <class Real>
struct OursBatch : FixedCopies<Real> {
  using FixedCopies<Real>::FixedCopies;
  std::size_t clipAll() {
    return clip::clipPolygonsInPlace(this->copies_.data(), this->copies_.size(),
                                     this->outcomes_.data());
  }
};

template <class Real>
class GrowableCopies {
 public:
  explicit GrowableCopies(const ClipBatch& batch) {
    for (const auto& shape : batch.shapes) {
      fill(originals_.emplace_back(static_cast<std::uint32_t>(shape.size()), true), shape);
    }
    copies_ = originals_;
  }
  // The copies share no buffer.
  void prepare(const std::vector<std::uint32_t>& order) {
    for (std::size_t i = 0; i < order.size(); ++i) {
      auto& original = originals_[order[i]];
      copies_[i] = clip::BasicClipPolygonArray<Real>(original.count, true);
      std::copy_n(std::as_const(original.vertices).data(), original.count,
                  copies_[i].vertices.data());
    }
  }
  bool clip(std::size_t i) { return clip::clipPolygonArrayInPlace(copies_[i]); }

 private:
  std::vector<clip::BasicClipPolygonArray<Real>> originals_;
  std::vector<clip::BasicClipPolygonArray<Real>> copies_;
};

template <class Real>
void addWidth(const ClipBatch& batch, const std::string& width) {
  const auto fits = [](const auto& shape) { return shape.size() <= clip::kClipPolygonCapacity; };
  if (std::all_of(batch.shapes.begin(), batch.shapes.end(), fits)) {
    addClipPeer<OursInPlace<Real>>("ulmira" + width, batch, -1);
    addClipPeer<OursBatch<Real>>("ulmira_batch" + width, batch, -1);
    addClipPeer<PlainInPlace<Real>>("plain" + width, batch, -1);
  }
  addClipPeer<GrowableCopies<Real>>("ulmira_growable" + width, batch, -1);
}

}  // namespace

void addInPlace(const ClipBatch& batch) {
  addWidth<float>(batch, "32");
  addWidth<double>(batch, "64");
}

}  // namespace ulm::bench
