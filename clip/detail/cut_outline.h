// Writes what a cut leaves of an outline. Kept vertices are copied in runs.
#pragma once

#include <algorithm>
#include <cstdint>

#include "clip/detail/cut.h"
#include "clip/detail/planes.h"

namespace ulm::clip::detail {

// What a new vertex has for an outcode: what its slot held, or 0.
enum class NewOutcodes : std::uint8_t { Kept, Zero };

// Moves vertices, which may overlap their target. A loop is faster than a call for a few.
template <class Vertex>
[[gnu::always_inline]] inline void moveVertices(const Vertex* from, std::uint32_t count,
                                                Vertex* to) noexcept {
  if (count > 32) {
    if (to < from) {
      std::copy(from, from + count, to);
    } else if (to > from) {
      std::copy_backward(from, from + count, to + count);
    }
  } else if (to < from) {
    for (std::uint32_t i = 0; i < count; ++i) to[i] = from[i];
  } else if (to > from) {
    for (std::uint32_t i = count; i-- != 0;) to[i] = from[i];
  }
}

template <class Real>
BasicClipPoint<Real> pointBetween(const BasicClipVertex<Real>& p, const BasicClipVertex<Real>& q,
                                  Real t) noexcept {
  BasicClipPoint<Real> made;
  setBetween(made, p, q, t);
  return made;
}

// For Cut::Run. The result may replace the source: everything is read before it is overwritten.
template <class Plane, class Real>
[[gnu::always_inline]] inline void writeRun(const BasicClipVertex<Real>* source,
                                            std::uint32_t count, const Cut& cut,
                                            BasicClipVertex<Real>* to,
                                            NewOutcodes outcodes) noexcept {
  using Vertex = BasicClipVertex<Real>;
  const Vertex* const from[2] = {source + cut.begin - 1, source + cut.end - 1};
  const Vertex* const ends[2] = {source + cut.begin, source + (cut.end == count ? 0 : cut.end)};
  Real t[4];  // of which two are used
  crossingsOf<Plane, Real>(from, ends, t);
  const BasicClipPoint<Real> first = pointBetween(*from[0], *ends[0], t[0]);
  const BasicClipPoint<Real> second = pointBetween(*from[1], *ends[1], t[1]);

  // Either the vertices before and after the run remain, or the run itself.
  const std::uint32_t headSize = cut.firstOutside ? 0 : cut.begin;
  const std::uint32_t tail = cut.firstOutside ? cut.begin : cut.end;
  const std::uint32_t tailSize = (cut.firstOutside ? cut.end : count) - tail;
  const std::uint32_t tailTo = headSize + (cut.firstOutside ? 1U : 2U);
  moveVertices(source + tail, tailSize, to + tailTo);
  moveVertices(source, headSize, to);
  const auto put = [&](std::uint32_t slot, const BasicClipPoint<Real>& p) {
    to[slot] = {p.x, p.y, p.z, p.w, outcodes == NewOutcodes::Kept ? to[slot].outcode : 0};
  };
  put(headSize, first);
  put(cut.firstOutside ? tailTo + tailSize : headSize + 1, second);
}

// Writes what a plane leaves of any outline, one vertex after the other, and returns how many: at
// most three for two of the source. `to` is not the source. New vertices get the outcode 0.
template <class Plane, class Real>
std::uint32_t writeInTurn(const BasicClipVertex<Real>* source, std::uint32_t count,
                          BasicClipVertex<Real>* to) noexcept {
  std::uint32_t written = 0;
  const BasicClipVertex<Real>* before = source + count - 1;
  bool insideBefore = !Plane::beyond(*before);
  const auto cross = [&](const BasicClipVertex<Real>& q) {
    const auto p = pointBetween(*before, q, crossingOf<Plane>(*before, q));
    to[written++] = {p.x, p.y, p.z, p.w, 0};
  };
  const bool lastInside = insideBefore;
  for (std::uint32_t i = 0; i < count; ++i) {
    const bool inside = !Plane::beyond(source[i]);
    if (i != 0 && inside != insideBefore) cross(source[i]);
    if (inside) to[written++] = source[i];
    before = source + i;
    insideBefore = inside;
  }
  if (lastInside == Plane::beyond(source[0])) cross(source[0]);
  return written;
}

// Writes what Cut::None or Cut::Run leaves, to slots that may be the source's.
template <class Plane, class Real>
[[gnu::always_inline]] inline void writeCut(const BasicClipVertex<Real>* source,
                                            std::uint32_t count, const Cut& cut,
                                            BasicClipVertex<Real>* to,
                                            NewOutcodes outcodes) noexcept {
  if (cut.kind == Cut::Run) {
    writeRun<Plane>(source, count, cut, to, outcodes);
  } else if (to != source) {
    std::copy_n(source, cut.made(count), to);
  }
}

}  // namespace ulm::clip::detail
