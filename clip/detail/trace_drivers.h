// The definitions of the drivers with a trace, which both containers instantiate. In addition to
// the members that clip/detail/polygon_pass.h lists, they use one more of PolygonAccess:
//   startList(list, n)     gives a list without storage a capacity of at least n
#pragma once

#include <cstdint>
#include <utility>

#include "clip/detail/planes.h"
#include "clip/detail/polygon_pass.h"
#include "clip/trace.h"

namespace ulm::clip {
namespace detail {

// Fills a trace while passes run. Indices are those of the source and the destination of the
// current pass.
template <class Polygon>
class TraceWriter {
 public:
  explicit TraceWriter(ClipTrace<Polygon>& trace) noexcept : trace_(trace) { finishEmpty(); }

  void keep(std::uint32_t source, std::uint32_t destination) { put(destination, originOf(source)); }
  template <class Real>
  void cross(std::uint32_t earlier, std::uint32_t later, Real t, std::uint32_t destination) {
    auto& records = trace_.records_;
    PolygonAccess<Polygon>::startList(records, 1);
    records.append({originOf(earlier), originOf(later), t});
    put(destination, kClipRecordOrigin + records.length() - 1);
  }
  void endPass() noexcept {
    std::swap(from_, to_);
    passEnded_ = true;
  }

  // Ends the trace of a result of `count` vertices.
  void finish(std::uint32_t count) {
    PolygonAccess<Polygon>::startList(from_, count);
    from_.resize(count);
    for (std::uint32_t i = passEnded_ ? count : 0; i < count; ++i) from_.at(i) = i;
    trace_.origins_ = std::move(from_);
  }
  void finishEmpty() noexcept {
    trace_.records_ = {};
    trace_.origins_ = {};
  }

 private:
  using Origins = decltype(ClipTrace<Polygon>::origins_);

  // Until a pass has ended, the source of the pass is the caller's.
  ClipOrigin originOf(std::uint32_t i) const { return passEnded_ ? from_.at(i) : i; }
  void put(std::uint32_t i, ClipOrigin origin) {
    PolygonAccess<Polygon>::startList(to_, 1);
    if (i >= to_.length()) to_.resize(i + 1);
    to_.at(i) = origin;
  }

  ClipTrace<Polygon>& trace_;
  Origins from_;  // of the source's vertices
  Origins to_;    // of the destination's
  bool passEnded_ = false;
};

template <class Planes, class Polygon>
Polygon* clipThroughTraced(Polygon& first, Polygon& second, typename Polygon::Source& source,
                           std::uint32_t mask, ClipTrace<Polygon>& trace) {
  TraceWriter<Polygon> writer(trace);
  Polygon* const result = clipThrough<Planes>(first, second, source, mask, writer);
  if (result != nullptr && (mask & Planes::kBits) != 0) {
    writer.finish(result->count);
  } else {
    writer.finishEmpty();
  }
  return result;
}

template <class Planes, class Polygon>
bool clipInPlaceTraced(Polygon& polygon, ClipTrace<Polygon>& trace) {
  TraceWriter<Polygon> writer(trace);
  const bool remains = clipInPlace<Planes>(polygon, writer) != ClipOutcome::Gone;
  if (remains) {
    writer.finish(PolygonAccess<Polygon>::countOf(polygon));
  } else {
    writer.finishEmpty();
  }
  return remains;
}

}  // namespace detail

template <class Polygon>
Polygon* clipPolygonToVolume(Polygon& first, Polygon& second, typename Polygon::Source& source,
                             std::uint32_t mask,
                             ClipTrace<Polygon>& trace) noexcept(detail::kNeverThrows<Polygon>) {
  return detail::clipThroughTraced<detail::VolumePlanes>(first, second, source, mask, trace);
}
template <class Polygon>
Polygon* clipPolygonToRectangle(Polygon& first, Polygon& second, typename Polygon::Source& source,
                                std::uint32_t mask,
                                ClipTrace<Polygon>& trace) noexcept(detail::kNeverThrows<Polygon>) {
  return detail::clipThroughTraced<detail::RectanglePlanes>(first, second, source, mask, trace);
}
template <class Polygon>
bool clipPolygonInPlace(Polygon& polygon,
                        ClipTrace<Polygon>& trace) noexcept(detail::kNeverThrows<Polygon>) {
  return detail::clipInPlaceTraced<detail::VolumePlanes>(polygon, trace);
}
template <class Polygon>
bool clipPolygonInPlace2D(Polygon& polygon,
                          ClipTrace<Polygon>& trace) noexcept(detail::kNeverThrows<Polygon>) {
  return detail::clipInPlaceTraced<detail::RectanglePlanes>(polygon, trace);
}

}  // namespace ulm::clip

// Instantiates the drivers for one type of polygon, within the namespace ulm::clip.
// NOLINTBEGIN(bugprone-macro-parentheses): the argument is a type
#define ULM_CLIP_INSTANTIATE_TRACED(Polygon)                                                    \
  template Polygon* clipPolygonToVolume(Polygon&, Polygon&, Polygon::Source&, std::uint32_t,    \
                                        ClipTrace<Polygon>&);                                   \
  template Polygon* clipPolygonToRectangle(Polygon&, Polygon&, Polygon::Source&, std::uint32_t, \
                                           ClipTrace<Polygon>&);                                \
  template bool clipPolygonInPlace(Polygon&, ClipTrace<Polygon>&);                              \
  template bool clipPolygonInPlace2D(Polygon&, ClipTrace<Polygon>&);
// NOLINTEND(bugprone-macro-parentheses)
