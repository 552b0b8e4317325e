// A second clipper, written for the tests alone: slow, plain, sharing nothing with the library but
// the meaning of the operations. Points are x, y, z, w in an array.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <random>
#include <vector>

namespace ulm::test {

template <class Real>
struct ModelVertex {
  std::array<Real, 4> k{};
  std::uint32_t outcode = 0;
};

struct ModelPlane {
  std::uint32_t bit;
  int axis;
  bool atMax;
};
inline constexpr ModelPlane kModelPlanes[] = {{0x01, 0, false}, {0x10, 0, true}, {0x20, 1, true},
                                              {0x02, 1, false}, {0x04, 2, true}, {0x40, 2, false}};

template <class Real>
Real modelDistance(const ModelPlane& plane, const std::array<Real, 4>& p) {
  const auto axis = static_cast<std::size_t>(plane.axis);
  return plane.atMax ? p[3] - p[axis] : p[axis] + p[3];
}

template <class Real>
std::array<Real, 4> modelCrossing(const ModelPlane& plane, const std::array<Real, 4>& p,
                                  const std::array<Real, 4>& q) {
  const Real dp = modelDistance(plane, p);
  const Real dq = modelDistance(plane, q);
  const Real span = dp - dq;
  const Real t = dp / span;
  std::array<Real, 4> out;
  for (std::size_t k = 0; k < 4; ++k) {
    const Real difference = q[k] - p[k];
    const Real product = difference * t;
    out[k] = product + p[k];
  }
  return out;
}

template <class Real>
bool modelSegment(std::uint32_t mask, std::array<Real, 4>& a, std::array<Real, 4>& b) {
  for (const ModelPlane& plane : kModelPlanes) {
    if ((mask & plane.bit) == 0) continue;
    const auto c = static_cast<std::size_t>(plane.axis);
    const bool aOut = plane.atMax ? a[c] > a[3] : !(a[c] >= -a[3]);
    const bool bIn = plane.atMax ? b[3] >= b[c] : b[c] >= -b[3];
    if (aOut && !bIn) return false;
    if (aOut && bIn)
      a = modelCrossing(plane, a, b);
    else if (!aOut && !bIn)
      b = modelCrossing(plane, a, b);
  }
  return true;
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
  const auto outside = [&](const ModelVertex<Real>& v) {
    const Real c = v.k[static_cast<std::size_t>(plane.axis)];
    return plane.atMax ? c > v.k[3] : -v.k[3] > c;
  };
  const std::uint32_t size = source.size();
  std::uint32_t n = 0;
  for (std::uint32_t i = 0; size >= 2 && i <= size; ++i) {
    const ModelVertex<Real>& now = source.slots[i % size];
    if (i != 0) {
      const ModelVertex<Real>& before = source.slots[i - 1];
      if (outside(before) != outside(now)) {
        destination.forWrite(n++).k = modelCrossing(plane, before.k, now.k);
      }
    }
    if (i < size && !outside(now)) destination.forWrite(n++) = now;
  }
  destination.count = !destination.grows && n > 32 ? 32 : n;
  return destination.count;
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

template <class Real>
bool modelInPlace(ModelPolygon<Real>& polygon, std::uint32_t planes) {
  if (polygon.size() == 0) return false;
  std::uint32_t any = 0;
  std::uint32_t all = ~0U;
  for (std::uint32_t i = 0; i < polygon.size(); ++i) {
    any |= polygon.slots[i].outcode;
    all &= polygon.slots[i].outcode;
  }
  if (all != 0) return false;
  if ((any & planes) == 0) return true;
  ModelPolygon<Real> first{.grows = polygon.grows};
  ModelPolygon<Real> second{.grows = polygon.grows};
  const ModelPolygon<Real>* result = modelPingPong(first, second, polygon, any & planes);
  if (result == nullptr) return false;
  polygon = *result;
  return true;
}

template <class Real>
std::uint32_t modelOutcode(const std::array<Real, 4>& k) {
  std::uint32_t code = 0;
  for (const ModelPlane& plane : kModelPlanes) {
    const Real c = k[static_cast<std::size_t>(plane.axis)];
    if (plane.atMax ? c > k[3] : -k[3] > c) code |= plane.bit;
  }
  return code;
}

// The same bits, one NaN being as good as another.
template <class Real>
bool sameBits(Real a, Real b) {
  return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}

// Points of one of three kinds: anywhere near the volume, on a grid that hits the planes often, or
// made of the values that go wrong.
template <class Real>
class PointSource {
 public:
  explicit PointSource(std::uint32_t seed) : random_(seed) {}

  std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

  std::array<Real, 4> point(std::uint32_t kind) {
    std::array<Real, 4> k;
    for (Real& value : k) value = coordinate(kind);
    if (kind != 2 && k[3] < 0 && below(4) != 0) k[3] = -k[3];
    return k;
  }

 private:
  Real coordinate(std::uint32_t kind) {
    using Limits = std::numeric_limits<Real>;
    static constexpr Real kHostile[] = {Limits::quiet_NaN(),
                                        Limits::infinity(),
                                        -Limits::infinity(),
                                        Real(0),
                                        -Real(0),
                                        Limits::denorm_min(),
                                        -Limits::denorm_min(),
                                        Limits::max(),
                                        -Limits::max(),
                                        Limits::min(),
                                        Real(1),
                                        -Real(1),
                                        Real(0.5),
                                        Real(3)};
    if (kind == 2) return kHostile[below(std::size(kHostile))];
    if (kind == 1) return static_cast<Real>(static_cast<int>(below(9)) - 4) / 2;
    return std::uniform_real_distribution<Real>(-2, 2)(random_);
  }

  std::mt19937 random_;
};

}  // namespace ulm::test
