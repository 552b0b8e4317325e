// A second clipper, written for the tests alone: slow, plain, sharing nothing with the library but
// the meaning of the operations. Points are x, y, z, w in an array.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace ulm::test {

template <class Real>
using ModelPoint = std::array<Real, 4>;

template <class Real>
struct ModelVertex {
  ModelPoint<Real> k{};
  std::uint32_t outcode = 0;
};

struct ModelPlane {
  std::uint32_t bit;
  std::size_t axis;
  bool atMax;
};
inline constexpr ModelPlane kModelPlanes[] = {{0x01, 0, false}, {0x10, 0, true}, {0x20, 1, true},
                                              {0x02, 1, false}, {0x04, 2, true}, {0x40, 2, false}};

template <class Real>
ModelPoint<Real> modelCrossing(const ModelPlane& plane, const ModelPoint<Real>& p,
                               const ModelPoint<Real>& q) {
  const Real dp = plane.atMax ? p[3] - p[plane.axis] : p[plane.axis] + p[3];
  const Real dq = plane.atMax ? q[3] - q[plane.axis] : q[plane.axis] + q[3];
  const Real span = dp - dq;
  const Real t = dp / span;
  ModelPoint<Real> out;
  for (std::size_t k = 0; k < 4; ++k) {
    const Real difference = q[k] - p[k];
    const Real product = difference * t;
    out[k] = product + p[k];
  }
  return out;
}

template <class Real>
bool modelSegment(std::uint32_t mask, ModelPoint<Real>& a, ModelPoint<Real>& b) {
  for (const ModelPlane& plane : kModelPlanes) {
    if ((mask & plane.bit) == 0) continue;
    const Real ca = a[plane.axis], cb = b[plane.axis];
    const bool aOut = plane.atMax ? ca > a[3] : !(ca >= -a[3]);
    const bool bIn = plane.atMax ? b[3] >= cb : cb >= -b[3];
    if (aOut && !bIn) return false;
    if (aOut) a = modelCrossing(plane, a, b);
    if (!aOut && !bIn) b = modelCrossing(plane, a, b);
  }
  return true;
}

template <class Real>
std::uint32_t modelOutcode(const ModelPoint<Real>& k) {
  std::uint32_t code = 0;
  for (const ModelPlane& plane : kModelPlanes) {
    if (plane.atMax ? k[plane.axis] > k[3] : -k[3] > k[plane.axis]) code |= plane.bit;
  }
  return code;
}

// A polygon with 32 slots, or with as many as are asked for.
template <class Real>
struct ModelPolygon {
  std::vector<ModelVertex<Real>> slots = std::vector<ModelVertex<Real>>(32);
  std::uint32_t count = 0;
  bool grows = false;

  std::uint32_t size() const { return !grows && count > 32 ? 32 : count; }
  ModelVertex<Real>& forWrite(std::uint32_t i) {
    if (!grows && i >= 32) return slots[31];
    if (i >= count) count = i + 1;
    if (i >= slots.size()) slots.resize(i + 1);
    return slots[i];
  }
};

template <class Real>
std::uint32_t modelPass(const ModelPlane& plane, const ModelPolygon<Real>& source,
                        ModelPolygon<Real>& destination) {
  const auto outside = [&](const auto& v) { return (modelOutcode(v.k) & plane.bit) != 0; };
  const std::uint32_t size = source.size();
  std::uint32_t n = 0;
  for (std::uint32_t i = 0; size >= 2 && i <= size; ++i) {
    const ModelVertex<Real>& now = source.slots[i % size];
    if (i != 0 && outside(source.slots[i - 1]) != outside(now)) {
      destination.forWrite(n++).k = modelCrossing(plane, source.slots[i - 1].k, now.k);
    }
    if (i < size && !outside(now)) destination.forWrite(n++) = now;
  }
  return destination.count = !destination.grows && n > 32 ? 32 : n;
}

template <class Real>
ModelPolygon<Real>* modelPingPong(ModelPolygon<Real>& first, ModelPolygon<Real>& second,
                                  const ModelPolygon<Real>& source, std::uint32_t mask) {
  const ModelPolygon<Real>* from = &source;
  ModelPolygon<Real>* last = &second;
  for (const ModelPlane& plane : kModelPlanes) {
    if ((mask & plane.bit) == 0) continue;
    ModelPolygon<Real>* to = last == &first ? &second : &first;
    if (modelPass(plane, *from, *to) < 3) return nullptr;
    from = last = to;
  }
  return last;
}

// 0 untouched, 1 clipped, 2 gone.
template <class Real>
int modelInPlace(ModelPolygon<Real>& polygon, std::uint32_t planes) {
  std::uint32_t any = 0, all = ~0U;
  for (std::uint32_t i = 0; i < polygon.size(); ++i) {
    any |= polygon.slots[i].outcode;
    all &= polygon.slots[i].outcode;
  }
  if (all != 0) return 2;  // so it is without vertices too
  if ((any & planes) == 0) return 0;
  ModelPolygon<Real> first{.grows = polygon.grows}, second{.grows = polygon.grows};
  const ModelPolygon<Real>* result = modelPingPong(first, second, polygon, any & planes);
  if (result != nullptr) polygon = *result;
  return result != nullptr ? 1 : 2;
}

// The same bits, one NaN being as good as another.
template <class Real>
bool sameBits(Real a, Real b) {
  return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}
template <class Vertex, class Real>
bool samePoint(const Vertex& v, const ModelPoint<Real>& k) {
  return sameBits(v.x, k[0]) && sameBits(v.y, k[1]) && sameBits(v.z, k[2]) && sameBits(v.w, k[3]);
}

// Points of one of three kinds: anywhere near the volume, on a grid that hits the planes often, or
// made of the values that go wrong.
template <class Real>
class PointSource {
 public:
  explicit PointSource(std::uint32_t seed) : random_(seed) {}
  std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }
  ModelPoint<Real> point(std::uint32_t kind) {
    ModelPoint<Real> k;
    for (Real& value : k) value = coordinate(kind);
    if (kind != 2 && k[3] < 0 && below(4) != 0) k[3] = -k[3];
    return k;
  }

 private:
  Real coordinate(std::uint32_t kind) {
    using Limits = std::numeric_limits<Real>;
    static constexpr Real kHostile[] = {Limits::quiet_NaN(),
                                        Limits::infinity(),
                                        Limits::max(),
                                        Limits::denorm_min(),
                                        Limits::min(),
                                        0,
                                        1,
                                        Real(0.5),
                                        3};
    const Real sign = below(2) == 0 ? Real(1) : Real(-1);
    if (kind == 2) return sign * kHostile[below(std::size(kHostile))];
    if (kind == 1) return static_cast<Real>(static_cast<int>(below(9)) - 4) / 2;
    return std::uniform_real_distribution<Real>(-2, 2)(random_);
  }

  std::mt19937 random_;
};

}  // namespace ulm::test
