// A second clipper for the tests: slow, plain, and without any code of the library. Points are x,
// y, z, w in an array.
#pragma once

#include <algorithm>
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
  const Real sign = plane.atMax ? Real(-1) : Real(1);
  const Real dp = p[3] + sign * p[plane.axis], dq = q[3] + sign * q[plane.axis];
  const Real t = dp / (dp - dq);
  ModelPoint<Real> out;
  for (std::size_t k = 0; k < 4; ++k) out[k] = (q[k] - p[k]) * t + p[k];
  return out;
}

bool modelSegment(std::uint32_t mask, auto& a, auto& b) {
  for (const auto& [bit, axis, atMax] : kModelPlanes) {
    if ((mask & bit) == 0) continue;
    const bool aOut = atMax ? a[axis] > a[3] : !(a[axis] >= -a[3]);
    const bool bIn = atMax ? b[3] >= b[axis] : b[axis] >= -b[3];
    if (aOut && !bIn) return false;
    if (aOut == bIn) (aOut ? a : b) = modelCrossing({bit, axis, atMax}, a, b);
  }
  return true;
}

std::uint32_t modelOutcode(const auto& k) {
  std::uint32_t code = 0;
  for (const auto& [bit, axis, atMax] : kModelPlanes) {
    if (atMax ? k[axis] > k[3] : -k[3] > k[axis]) code |= bit;
  }
  return code;
}

// A polygon with 32 slots, or with as many slots as have been written.
template <class Real>
struct ModelPolygon {
  struct Vertex {
    ModelPoint<Real> k{};
    std::uint32_t outcode = 0;
  };
  std::vector<Vertex> slots = std::vector<Vertex>(32);
  std::uint32_t count = 0;
  bool grows = false;
  std::uint32_t length = 0;  // one more than the highest slot written
  std::uint32_t capacity = 0;

  std::uint32_t atMost(std::uint32_t n) const { return grows ? n : std::min(n, 32U); }
  std::uint32_t size() const { return atMost(count); }
  Vertex& forWrite(std::uint32_t i) {
    if (!grows && i >= 32) return slots[31];
    count = std::max(count, i + 1);
    if (i >= slots.size()) slots.resize(i + 1);
    if (i >= capacity) capacity = capacity == 0 ? i + 17 : std::max(length + length / 2, i + 1);
    length = std::max(length, i + 1);
    return slots[i];
  }
  // The working memory of an in-place driver.
  ModelPolygon scratch() const {
    ModelPolygon made{.grows = grows};
    if (grows) made.length = count, made.capacity = count + 16;
    return made;
  }
  // A growable polygon takes over the array of the result, a fixed one only the slots that were
  // written.
  void adopt(const ModelPolygon& result) {
    const std::size_t taken = grows ? result.slots.size() : result.length;
    slots.resize(std::max(slots.size(), taken));
    std::copy_n(result.slots.begin(), taken, slots.begin());
    count = result.count, length = result.length, capacity = result.capacity;
  }
};

template <class Polygon>
std::uint32_t modelPass(const ModelPlane& plane, const Polygon& source, Polygon& destination) {
  const auto outside = [&](const auto& v) { return (modelOutcode(v.k) & plane.bit) != 0; };
  const std::uint32_t size = source.size();
  std::uint32_t n = 0;
  for (std::uint32_t i = 0; size >= 2 && i <= size; ++i) {
    const auto& now = source.slots[i % size];
    if (i != 0 && outside(source.slots[i - 1]) != outside(now)) {
      destination.forWrite(n++).k = modelCrossing(plane, source.slots[i - 1].k, now.k);
    }
    if (i < size && !outside(now)) destination.forWrite(n++) = now;
  }
  return destination.count = destination.atMost(n);
}

template <class Polygon>
Polygon* modelPingPong(Polygon& first, Polygon& second, const Polygon& source, std::uint32_t mask) {
  const Polygon* from = &source;
  Polygon* last = &second;
  for (const ModelPlane& plane : kModelPlanes) {
    if ((mask & plane.bit) == 0) continue;
    last = last == &first ? &second : &first;
    if (modelPass(plane, *from, *last) < 3) return nullptr;
    from = last;
  }
  return last;
}

// 0 untouched, 1 clipped, 2 gone.
template <class Polygon>
int modelInPlace(Polygon& polygon, std::uint32_t planes) {
  std::uint32_t any = 0, all = ~0U;
  for (std::uint32_t i = 0; i < polygon.size(); ++i) {
    any |= polygon.slots[i].outcode;
    all &= polygon.slots[i].outcode;
  }
  if (all != 0) return 2;  // also for a polygon without vertices
  if ((any & planes) == 0) return 0;
  Polygon first = polygon.scratch(), second = first;
  const Polygon* result = modelPingPong(first, second, polygon, any & planes);
  if (result == nullptr) return 2;
  polygon.adopt(*result);
  return 1;
}

// Compares the bits; all NaN values are equal.
inline bool sameBits(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || std::memcmp(&a, &b, sizeof a) == 0;
}
bool samePoint(const auto& v, const auto& k) {
  return sameBits(v.x, k[0]) && sameBits(v.y, k[1]) && sameBits(v.z, k[2]) && sameBits(v.w, k[3]);
}

// Points of one of four kinds: random ones near the volume, ones on a grid that hits the planes
// often, ones made of special values, or the corners of a convex outline.
template <class Real>
struct PointSource {
  std::mt19937 random;

  std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(random() % limit); }
  std::vector<ModelPoint<Real>> outline(std::uint32_t count, std::uint32_t kind) {
    std::vector<ModelPoint<Real>> points(count);
    std::uniform_real_distribution<Real> middle(-1, 1), radius(Real(0.1), 2), weight(Real(0.5), 2);
    const Real x = middle(random), y = middle(random), size = radius(random),
               slope = middle(random);
    for (std::uint32_t i = 0; i < count; ++i) {
      const Real angle = x + Real(6.283185307179586) * Real(i) / Real(count), w = weight(random);
      const Real px = x + size * std::cos(angle), py = y + size * std::sin(angle);
      points[i] = kind == 3 ? ModelPoint<Real>{px * w, py * w, slope * px * w, w} : point(kind);
    }
    return points;
  }
  ModelPoint<Real> point(std::uint32_t kind) {
    using Limits = std::numeric_limits<Real>;
    const Real hostile[] = {0,
                            Real(0.5),
                            1,
                            3,
                            Real(NAN),
                            Real(INFINITY),
                            Limits::max(),
                            Limits::min(),
                            Limits::denorm_min()};
    ModelPoint<Real> k;
    for (Real& value : k) {
      value = kind == 0   ? std::uniform_real_distribution<Real>(0, 2)(random)
              : kind == 1 ? static_cast<Real>(below(5)) / 2
                          : hostile[below(std::size(hostile))];
      if (below(2) == 0) value = -value;
    }
    if (kind != 2 && k[3] < 0 && below(4) != 0) k[3] = -k[3];
    return k;
  }
};

}  // namespace ulm::test
