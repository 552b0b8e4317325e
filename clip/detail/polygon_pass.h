// One clipping pass and the drivers above it, for both polygon containers and both widths.
//
// A container takes part through a specialisation of PolygonAccess:
//   Source                    what a pass reads from: the polygon, const where reading needs no
//   more countOf(polygon)          the number of vertices peek(polygon)             its vertices,
//   for reading only readable(source)          its vertices, as the container's checked element
//   access gives them slot(polygon, n)          where the n-th vertex of a result goes slotIndex(n)
//   the index of that place close(polygon, n)         ends a result of n vertices; the count to
//   return scratch(polygon)          a polygon for the in-place drivers to work in
// Kernels for special shapes of polygon belong behind clipPass: what is below need not know them.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "clip/detail/planes.h"
#include "clip/polygon.h"
#include "clip/trace.h"

namespace ulm::clip::detail {

template <class Polygon>
struct PolygonAccess;
template <class Polygon>
struct InPlaceAccess;

// The tracer of a call that wants no trace.
struct NoTrace {
  void kept(std::uint32_t, std::uint32_t) noexcept {}
  template <class Real>
  void made(std::uint32_t, std::uint32_t, Real, std::uint32_t) noexcept {}
  void endPass() noexcept {}
};

// Fills a trace. Indices are those of the source and the destination of the pass that runs.
// `Store` gives the trace's container: Origins (put, at), clear, addRecord, finish.
template <class Store>
class Tracer {
 public:
  explicit Tracer(Store store) : store_(store) { store_.clear(); }

  void kept(std::uint32_t source, std::uint32_t destination) {
    to_.put(destination, originOf(source));
  }
  template <class Real>
  void made(std::uint32_t earlier, std::uint32_t later, Real t, std::uint32_t destination) {
    const std::uint32_t record = store_.addRecord({originOf(earlier), originOf(later), t});
    to_.put(destination, kClipRecordOrigin + record);
  }
  void endPass() noexcept {
    std::swap(from_, to_);
    passEnded_ = true;
  }
  void finish(std::uint32_t count) {
    // Without a pass each vertex is its own origin. The last comes first, so that one allocation
    // holds them all.
    for (std::uint32_t i = passEnded_ ? 0 : count; i-- > 0;) from_.put(i, i);
    store_.finish(from_, count);
  }
  void clear() noexcept { store_.clear(); }

 private:
  ClipOrigin originOf(std::uint32_t i) const { return passEnded_ ? from_.at(i) : i; }

  Store store_;
  typename Store::Origins from_;
  typename Store::Origins to_;
  bool passEnded_ = false;  // until then the first pass reads the caller's source itself
};

template <class Plane, class Polygon, class Trace>
std::uint32_t clipPass(typename PolygonAccess<Polygon>::Source& source, Polygon& destination,
                       Trace& trace) {
  using Access = PolygonAccess<Polygon>;
  assert(&source != &destination);
  const std::uint32_t count = Access::countOf(source);
  if (count < 2) return Access::close(destination, 0);

  const auto* const vertices = Access::readable(source);
  typename Access::Writer writer(destination);
  std::uint32_t made = 0;
  const auto keep = [&](std::uint32_t i) {
    writer.slot(made) = vertices[i];
    trace.kept(i, Access::slotIndex(made++));
  };
  const auto cross = [&](std::uint32_t earlier, std::uint32_t later) {
    const auto& p = vertices[earlier];
    const auto& q = vertices[later];
    const auto t = crossingOf<Plane>(p, q);
    placeBetween(writer.slot(made), p, q, t);
    trace.made(earlier, later, t, Access::slotIndex(made++));
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
  return Access::close(destination, made);
}

template <class Plane, class Polygon>
std::uint32_t clipPass(typename PolygonAccess<Polygon>::Source& source, Polygon& destination) {
  NoTrace none;
  return clipPass<Plane>(source, destination, none);
}

// The ping-pong driver.
template <class Planes, class Polygon, class Trace>
Polygon* clipThrough(Polygon& first, Polygon& second,
                     typename PolygonAccess<Polygon>::Source& source, std::uint32_t mask,
                     Trace& trace) {
  typename PolygonAccess<Polygon>::Source* from = &source;
  Polygon* written = &second;
  Polygon* next = &first;
  const bool remains = Planes::every([&](auto plane) {
    if ((mask & plane.bit) == 0) return true;
    if (clipPass<decltype(plane)>(*from, *next, trace) < 3) return false;
    trace.endPass();
    from = written = next;
    next = next == &first ? &second : &first;
    return true;
  });
  return remains ? written : nullptr;
}

template <class Planes, class Polygon>
Polygon* clipThrough(Polygon& first, Polygon& second,
                     typename PolygonAccess<Polygon>::Source& source, std::uint32_t mask) {
  NoTrace none;
  return clipThrough<Planes>(first, second, source, mask, none);
}

template <class Planes, class Polygon, class Store>
Polygon* clipThroughTraced(Polygon& first, Polygon& second,
                           typename PolygonAccess<Polygon>::Source& source, std::uint32_t mask,
                           Store store) {
  Tracer<Store> tracer(store);
  Polygon* const result = clipThrough<Planes>(first, second, source, mask, tracer);
  if (result != nullptr && (mask & Planes::bits) != 0) {
    tracer.finish(result->count);
  } else {
    tracer.clear();
  }
  return result;
}

// The in-place driver. The tests on outcodes come first: they settle the two common cases without
// any work on coordinates.
template <class Planes, class Polygon, class Trace>
ClipOutcome clipInPlace(Polygon& polygon, Trace& trace) {
  using Access = PolygonAccess<Polygon>;
  const std::uint32_t count = Access::countOf(polygon);
  if (count == 0) return ClipOutcome::Gone;
  const auto* const vertices = Access::peek(polygon);
  std::uint32_t any = 0;
  std::uint32_t all = UINT32_MAX;
  for (std::uint32_t i = 0; i < count; ++i) {
    any |= vertices[i].outcode;
    all &= vertices[i].outcode;
  }
  if (all != 0) return ClipOutcome::Gone;
  if ((any & Planes::bits) == 0) return ClipOutcome::Untouched;

  using InPlace = InPlaceAccess<Polygon>;
  typename InPlace::Scratch first = InPlace::scratch(polygon);
  typename InPlace::Scratch second = InPlace::scratch(polygon);
  const auto* const result = clipThrough<Planes>(first, second, polygon, any, trace);
  if (result == nullptr) return ClipOutcome::Gone;
  InPlace::handOver(*result, polygon);
  return ClipOutcome::Clipped;
}

template <class Planes, class Polygon>
ClipOutcome clipInPlace(Polygon& polygon) {
  NoTrace none;
  return clipInPlace<Planes>(polygon, none);
}

template <class Planes, class Polygon, class Store>
bool clipInPlaceTraced(Polygon& polygon, Store store) {
  Tracer<Store> tracer(store);
  const bool remains = clipInPlace<Planes>(polygon, tracer) != ClipOutcome::Gone;
  if (remains) {
    tracer.finish(PolygonAccess<Polygon>::countOf(polygon));
  } else {
    tracer.clear();
  }
  return remains;
}

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
