// Where a plane cuts an outline. The sides of all vertices are found first, without a branch for
// each. What is called once for a pass is always inlined: its results stay in registers.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "clip/detail/lanes.h"
#include "clip/detail/planes.h"

namespace ulm::clip::detail {

inline constexpr std::uint32_t kMaskBits = 64;

// Returns the vertices beyond the plane as a mask, bit i for vertex i. `count` is 1 to 64. A
// comparison with NaN is false, as in Plane::beyond.
template <class Plane, class Real>
[[gnu::always_inline]] inline std::uint64_t outsideMask(const BasicClipVertex<Real>* vertices,
                                                        std::uint32_t count) noexcept {
  constexpr std::uint32_t kLanes = Lanes<Real>::kCount;
  // With the coordinate negated at a maximum, every plane is -w > c.
  const auto outside = [&](auto&& vertexOf) {
    const auto c = Lanes<Real>::of([&](std::uint32_t k) { return Plane::coordinate(vertexOf(k)); });
    const auto w = Lanes<Real>::of([&](std::uint32_t k) { return vertexOf(k).w; });
    return std::uint64_t{whereGreater(w.negatedIf(true), c.negatedIf(Plane::kAtMax))};
  };
  std::uint64_t mask = 0;
  std::uint32_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    mask |= outside([&](std::uint32_t k) -> const auto& { return vertices[i + k]; }) << i;
  }
  if (i < count) {
    // The lanes left over repeat the last vertex: nothing is read that is not part of the polygon.
    const auto rest = outside([&](std::uint32_t k) -> const auto& {
      return vertices[std::min(i + k, count - 1)];
    });
    mask |= (rest & ((std::uint64_t{1} << (count - i)) - 1)) << i;
  }
  return mask;
}

// How a plane divides an outline.
struct Cut {
  enum Kind : std::uint8_t {
    None,  // all vertices are on the side of the first one
    Run,   // those on the other side are [begin, end)
    Many,  // the outline crosses the plane more than twice
  };
  Kind kind;
  bool firstOutside;
  std::uint32_t begin;
  std::uint32_t end;

  // Returns the number of vertices of the result, unless the kind is Many.
  constexpr std::uint32_t made(std::uint32_t count) const noexcept {
    if (kind == None) return firstOutside ? 0 : count;
    return (firstOutside ? end - begin : count - (end - begin)) + 2;
  }
};

constexpr std::uint32_t lowestBit(std::uint64_t mask) noexcept {
  return static_cast<std::uint32_t>(std::countr_zero(mask));
}

// cutOf for at most 64 vertices.
template <class Plane, class Real>
[[gnu::always_inline]] inline Cut cutOfFew(const BasicClipVertex<Real>* vertices,
                                           std::uint32_t count) noexcept {
  const std::uint64_t outside = outsideMask<Plane>(vertices, count);
  const std::uint64_t all = ~std::uint64_t{0} >> (kMaskBits - count);
  const bool firstOutside = (outside & 1) != 0;
  const std::uint64_t others = firstOutside ? ~outside & all : outside;
  if (others == 0) return {Cut::None, firstOutside, 0, 0};
  const std::uint32_t begin = lowestBit(others);
  const std::uint64_t run = others >> begin;
  return {(run & (run + 1)) == 0 ? Cut::Run : Cut::Many, firstOutside, begin,
          kMaskBits - static_cast<std::uint32_t>(std::countl_zero(others))};
}

// Returns how the plane divides an outline of at least 2 vertices.
template <class Plane, class Real>
Cut cutOf(const BasicClipVertex<Real>* vertices, std::uint32_t count) noexcept {
  if (count <= kMaskBits) return cutOfFew<Plane>(vertices, count);
  Cut cut{};
  std::uint64_t sideBefore = 0;
  std::uint32_t changes = 0;
  std::uint32_t size = 0;
  for (std::uint32_t base = 0; base < count; base += size) {
    size = std::min(kMaskBits, count - base);
    const std::uint64_t outside = outsideMask<Plane>(vertices + base, size);
    if (base == 0) {
      sideBefore = outside & 1;
      cut.firstOutside = sideBefore != 0;
    }
    std::uint64_t changed =
        (outside ^ (outside << 1 | sideBefore)) & ~std::uint64_t{0} >> (kMaskBits - size);
    sideBefore = outside >> (size - 1);
    for (; changed != 0; changed &= changed - 1) {
      if (changes == 2) return {Cut::Many, cut.firstOutside, 0, 0};
      (changes++ == 0 ? cut.begin : cut.end) = base + lowestBit(changed);
    }
  }
  if (changes == 1) cut.end = count;  // the run ends at the edge from the last vertex to the first
  cut.kind = changes == 0 ? Cut::None : Cut::Run;
  return cut;
}

// Sets t[i] to the parameter of the edge from *from[i] to *to[i], for two edges: one division of
// vectors. Lanes left over repeat the second edge, so that no division is new.
template <class Plane, class Real>
void crossingsOf(const BasicClipVertex<Real>* const* from, const BasicClipVertex<Real>* const* to,
                 Real* t) noexcept {
  constexpr std::uint32_t kLanes = Lanes<Real>::kCount;
  for (std::uint32_t first = 0; first < 2; first += kLanes) {
    const auto distances = [&](const BasicClipVertex<Real>* const* ends) {
      const auto vertexOf = [&](std::uint32_t k) { return ends[std::min(first + k, 1U)]; };
      const auto c =
          Lanes<Real>::of([&](std::uint32_t k) { return Plane::coordinate(*vertexOf(k)); });
      const auto w = Lanes<Real>::of([&](std::uint32_t k) { return vertexOf(k)->w; });
      return c.negatedIf(Plane::kAtMax) + w;
    };
    const auto distance = distances(from);
    (distance / (distance - distances(to))).store(t + first);
  }
}

}  // namespace ulm::clip::detail
