// One clipping pass and the drivers that run it, for both polygon containers and both widths.
//
// A container takes part through a specialisation of PolygonAccess:
//   Scratch                what an in-place driver works in
//   countOf(polygon)       the number of vertices that can be read
//   peek(polygon)          its vertices; raises if `count` is wrong, copies no shared buffer
//   readable(source)       the vertices of a source of at least one, as checked access gives them
//   slotIndex(n)           the index of the slot that vertex n of a result is written to
//   Writer(destination)    slot(n) is that slot, made if needed
//   kGrows                 whether a result can have any number of vertices; if it can:
//     slotsFor(destination, n)
//                          the first of n slots, made as a Writer makes them
//   finish(polygon, n)     ends a result of n vertices; returns its count
//   scratchFor(polygon)    a scratch polygon for clipping `polygon` in place
//   clipQuickly<Planes>(polygon, mask)
//                          clips in place with the result of the in-place driver below, or returns
//                          nothing and leaves the vertices as they are
//   handOver(result, polygon)
//                          makes a scratch polygon's result that of `polygon`
// Whether and how an access throws is up to the container.
#pragma once

#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>

#include "clip/detail/cut_outline.h"
#include "clip/detail/planes.h"
#include "clip/polygon.h"

namespace ulm::clip::detail {

template <class Polygon>
struct PolygonAccess;

// Receives the origins of vertices in a call without a trace, and compiles to nothing.
struct NoTracer {
  void keep(std::uint32_t, std::uint32_t) noexcept {}
  template <class Real>
  void cross(std::uint32_t, std::uint32_t, Real, std::uint32_t) noexcept {}
  void endPass() noexcept {}
};

// Up to this number of vertices a pass goes from one vertex to the next: the processor goes on with
// the side that it predicts, while it would have to wait for a mask of all sides.
inline constexpr std::uint32_t kShortOutline = 32;

template <class Tracer>
inline constexpr bool kIsUntraced = std::same_as<std::remove_cvref_t<Tracer>, NoTracer>;

// Clips `source` against one plane into `destination`, another polygon. Returns the vertices in
// `destination`. This is the definition of a pass, one vertex after the other.
template <class Plane, class Polygon, class Tracer>
std::uint32_t clipPassInTurn(typename Polygon::Source& source, Polygon& destination,
                             Tracer& tracer) {
  using Access = PolygonAccess<Polygon>;
  const std::uint32_t count = Access::countOf(source);
  const auto* const vertices = Access::readable(source);
  typename Access::Writer writer(destination);
  std::uint32_t written = 0;
  const auto keep = [&](std::uint32_t i) {
    writer.slot(written) = vertices[i];
    tracer.keep(i, Access::slotIndex(written++));
  };
  const auto cross = [&](std::uint32_t earlier, std::uint32_t later) {
    const auto& p = vertices[earlier];
    const auto& q = vertices[later];
    const auto t = crossingOf<Plane>(p, q);
    setBetween(writer.slot(written), p, q, t);
    tracer.cross(earlier, later, t, Access::slotIndex(written++));
  };

  const bool firstInside = !Plane::beyond(vertices[0]);
  if (firstInside) keep(0);
  bool previousInside = firstInside;
  for (std::uint32_t i = 1; i < count; ++i) {
    const bool inside = !Plane::beyond(vertices[i]);
    if (inside != previousInside) cross(i - 1, i);
    if (inside) keep(i);
    previousInside = inside;
  }
  if (previousInside != firstInside) cross(count - 1, 0);
  return Access::finish(destination, written);
}

// The same, and faster for a long outline that the plane crosses at most twice, as it does every
// convex one: the kept vertices are copied in runs.
template <class Plane, class Polygon, class Tracer = NoTracer>
std::uint32_t clipPass(typename Polygon::Source& source, Polygon& destination,
                       Tracer&& tracer = NoTracer()) {
  using Access = PolygonAccess<Polygon>;
  assert(&source != &destination);
  const std::uint32_t count = Access::countOf(source);
  if (count < 2) return Access::finish(destination, 0);
  if constexpr (Access::kGrows && kIsUntraced<Tracer>) {
    if (count > kShortOutline) {
      const auto* const vertices = Access::readable(source);
      const Cut cut = cutOf<Plane>(vertices, count);
      if (cut.kind != Cut::Many) {
        const std::uint32_t made = cut.made(count);
        writeCut<Plane>(vertices, count, cut, Access::slotsFor(destination, made),
                        NewOutcodes::Kept);
        return Access::finish(destination, made);
      }
    }
  }
  return clipPassInTurn<Plane>(source, destination, tracer);
}

// The ping-pong driver: runs the planes in `mask`. Returns the polygon written last, `second` if no
// plane ran, or null when a plane leaves fewer than 3 vertices.
template <class Planes, class Polygon, class Tracer = NoTracer>
Polygon* clipThrough(Polygon& first, Polygon& second, typename Polygon::Source& source,
                     std::uint32_t mask, Tracer&& tracer = NoTracer()) {
  typename Polygon::Source* from = &source;
  Polygon* written = &second;
  Polygon* next = &first;
  const bool remains = Planes::allOf([&](auto plane) {
    if ((mask & plane.kBit) == 0) return true;
    if (clipPass<decltype(plane)>(*from, *next, tracer) < 3) return false;
    tracer.endPass();
    from = written = next;
    next = next == &first ? &second : &first;
    return true;
  });
  return remains ? written : nullptr;
}

// The in-place driver. The tests on outcodes come first: they decide the two common cases without
// any work on coordinates.
template <class Planes, class Polygon, class Tracer = NoTracer>
ClipOutcome clipInPlace(Polygon& polygon, Tracer&& tracer = NoTracer()) {
  using Access = PolygonAccess<Polygon>;
  using Vertex = typename Polygon::Vertex;
  const std::uint32_t count = Access::countOf(polygon);
  if (count == 0) return ClipOutcome::Gone;
  const Vertex* const vertices = Access::peek(polygon);
  std::uint32_t any = 0;
  std::uint32_t all = UINT32_MAX;
  for (std::uint32_t i = 0; i < count; ++i) {
    std::uint32_t outcode = vertices[i].outcode;
    // Compilers gather outcodes from separate vertices into vectors, which takes longer.
    __asm__("" : "+r"(outcode));
    any |= outcode;
    all &= outcode;
  }
  if (all != 0) return ClipOutcome::Gone;
  if ((any & Planes::kBits) == 0) return ClipOutcome::Untouched;

  if constexpr (kIsUntraced<Tracer>) {
    const std::optional<ClipOutcome> outcome =
        Access::template clipQuickly<Planes>(polygon, any & Planes::kBits);
    if (outcome) return *outcome;
  }

  typename Access::Scratch first = Access::scratchFor(polygon);
  typename Access::Scratch second = Access::scratchFor(polygon);
  const auto* const result = clipThrough<Planes>(first, second, polygon, any, tracer);
  if (result == nullptr) return ClipOutcome::Gone;
  Access::handOver(*result, polygon);
  return ClipOutcome::Clipped;
}

// Clips each polygon in place. Returns how many remain.
template <class Planes, class Polygon>
std::size_t clipBatch(Polygon* polygons, std::size_t polygonCount, ClipOutcome* outcomes) {
  std::size_t remaining = 0;
  for (std::size_t i = 0; i < polygonCount; ++i) {
    outcomes[i] = clipInPlace<Planes>(polygons[i]);
    remaining += outcomes[i] == ClipOutcome::Gone ? 0U : 1U;
  }
  return remaining;
}

}  // namespace ulm::clip::detail
