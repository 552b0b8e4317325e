#include "clip/growable/polygon_array.h"

#include <algorithm>

#include "clip/detail/planes.h"
#include "clip/detail/polygon_pass.h"

namespace ulm::clip {
namespace detail {

template <class Real>
struct PolygonAccess<BasicClipPolygonArray<Real>> {
  using Polygon = BasicClipPolygonArray<Real>;
  using Vertex = BasicClipVertex<Real>;
  using Source = Polygon;

  static std::uint32_t countOf(const Polygon& polygon) noexcept { return polygon.count; }
  static const Vertex* peek(const Polygon& polygon) {
    if (polygon.count != 0) polygon.vertices.at(polygon.count - 1);
    return polygon.vertices.data();
  }
  // One checked access to the last vertex stands for all: it raises what any of them would, and
  // detaches. The destination is another polygon, so the buffer then stays where it is.
  static const Vertex* readable(Polygon& source) {
    source.vertices.at(source.count - 1);
    return source.vertices.data();
  }
  static std::uint32_t slotIndex(std::uint32_t n) noexcept { return n; }
  // vertexForWrite, asked only where the elements known to be there and our own run out.
  class Writer {
   public:
    explicit Writer(Polygon& polygon) noexcept : polygon_(polygon) {}
    Vertex& slot(std::uint32_t n) {
      if (n >= length_) fetch(n);
      return elements_[n];
    }

   private:
    [[gnu::noinline]] void fetch(std::uint32_t n) {
      polygon_.vertexForWrite(n);
      elements_ = polygon_.vertices.data();
      length_ = polygon_.vertices.length();
    }
    Polygon& polygon_;
    Vertex* elements_ = nullptr;
    std::uint32_t length_ = 0;
  };
  static std::uint32_t close(Polygon& polygon, std::uint32_t n) noexcept {
    return polygon.count = n;
  }
};

template <class Real>
struct InPlaceAccess<BasicClipPolygonArray<Real>> {
  using Scratch = BasicClipPolygonArray<Real>;
  static Scratch scratch(const Scratch& polygon) { return {polygon.count, true}; }
  // By sharing: when the scratch polygons are gone, `polygon` owns the array alone.
  static void handOver(const Scratch& result, Scratch& polygon) noexcept { polygon = result; }
};

}  // namespace detail

namespace {

using detail::RectanglePlanes;
using detail::VolumePlanes;

template <class Real>
struct GrowableTrace {
  struct Origins {
    OdArray<ClipOrigin> places;  // no storage until a vertex is put
    void put(std::uint32_t i, ClipOrigin origin) {
      if (places.capacity() == 0) {
        places = OdArray<ClipOrigin>(std::max(i + 1, kClipSpareVertices), kClipGrowByHalf);
      }
      if (i >= places.length()) places.resize(i + 1);
      places.at(i) = origin;
    }
    ClipOrigin at(std::uint32_t i) const { return places.at(i); }
  };

  BasicClipTraceArray<Real>& trace;

  void clear() noexcept {
    trace.records = {};
    trace.origins = {};
  }
  std::uint32_t addRecord(const BasicClipRecord<Real>& record) {
    if (trace.records.length() == 0)
      trace.records = OdArray<BasicClipRecord<Real>>(kClipSpareVertices, kClipGrowByHalf);
    trace.records.append(record);
    return trace.records.length() - 1;
  }
  void finish(Origins& origins, std::uint32_t count) {
    origins.places.resize(count);
    trace.origins = origins.places;
  }
};

}  // namespace

template <std::floating_point Real>
std::uint32_t clipPolygonArrayXMin(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::XMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonArrayXMax(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::XMax>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonArrayYMin(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::YMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonArrayYMax(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::YMax>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonArrayZMin(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::ZMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonArrayZMax(BasicClipPolygonArray<Real>& source,
                                   BasicClipPolygonArray<Real>& destination) {
  return detail::clipPass<detail::ZMax>(source, destination);
}

template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToVolume(BasicClipPolygonArray<Real>& first,
                                                      BasicClipPolygonArray<Real>& second,
                                                      BasicClipPolygonArray<Real>& source,
                                                      std::uint32_t mask) {
  return detail::clipThrough<VolumePlanes>(first, second, source, mask);
}
template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToRectangle(BasicClipPolygonArray<Real>& first,
                                                         BasicClipPolygonArray<Real>& second,
                                                         BasicClipPolygonArray<Real>& source,
                                                         std::uint32_t mask) {
  return detail::clipThrough<RectanglePlanes>(first, second, source, mask);
}

template <std::floating_point Real>
bool clipPolygonArrayInPlace(BasicClipPolygonArray<Real>& polygon) {
  return detail::clipInPlace<VolumePlanes>(polygon) != ClipOutcome::Gone;
}
template <std::floating_point Real>
bool clipPolygonArrayInPlace2D(BasicClipPolygonArray<Real>& polygon) {
  return detail::clipInPlace<RectanglePlanes>(polygon) != ClipOutcome::Gone;
}

template <std::floating_point Real>
std::size_t clipPolygonArraysInPlace(BasicClipPolygonArray<Real>* polygons,
                                     std::size_t polygonCount, ClipOutcome* outcomes) {
  return detail::clipBatch<VolumePlanes>(polygons, polygonCount, outcomes);
}
template <std::floating_point Real>
std::size_t clipPolygonArraysInPlace2D(BasicClipPolygonArray<Real>* polygons,
                                       std::size_t polygonCount, ClipOutcome* outcomes) {
  return detail::clipBatch<RectanglePlanes>(polygons, polygonCount, outcomes);
}

template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToVolume(BasicClipPolygonArray<Real>& first,
                                                      BasicClipPolygonArray<Real>& second,
                                                      BasicClipPolygonArray<Real>& source,
                                                      std::uint32_t mask,
                                                      BasicClipTraceArray<Real>& trace) {
  return detail::clipThroughTraced<VolumePlanes>(first, second, source, mask,
                                                 GrowableTrace<Real>{trace});
}
template <std::floating_point Real>
BasicClipPolygonArray<Real>* clipPolygonArrayToRectangle(BasicClipPolygonArray<Real>& first,
                                                         BasicClipPolygonArray<Real>& second,
                                                         BasicClipPolygonArray<Real>& source,
                                                         std::uint32_t mask,
                                                         BasicClipTraceArray<Real>& trace) {
  return detail::clipThroughTraced<RectanglePlanes>(first, second, source, mask,
                                                    GrowableTrace<Real>{trace});
}
template <std::floating_point Real>
bool clipPolygonArrayInPlace(BasicClipPolygonArray<Real>& polygon,
                             BasicClipTraceArray<Real>& trace) {
  return detail::clipInPlaceTraced<VolumePlanes>(polygon, GrowableTrace<Real>{trace});
}
template <std::floating_point Real>
bool clipPolygonArrayInPlace2D(BasicClipPolygonArray<Real>& polygon,
                               BasicClipTraceArray<Real>& trace) {
  return detail::clipInPlaceTraced<RectanglePlanes>(polygon, GrowableTrace<Real>{trace});
}

template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipPolygonArray<Real>& polygon) {
  detail::PolygonAccess<BasicClipPolygonArray<Real>>::peek(polygon);  // all or none is written
  std::uint32_t any = 0;
  for (std::uint32_t i = 0; i < polygon.count; ++i) any |= computeOutcode(polygon.vertices.at(i));
  return any;
}

template <std::floating_point Real>
bool isFinite(const BasicClipPolygonArray<Real>& polygon) {
  const BasicClipVertex<Real>* const vertices =
      detail::PolygonAccess<BasicClipPolygonArray<Real>>::peek(polygon);
  return std::all_of(vertices, vertices + polygon.count,
                     [](const BasicClipVertex<Real>& vertex) { return isFinite(vertex); });
}

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are types
#define ULM_CLIP_INSTANTIATE(Polygon, Trace)                                                       \
  template std::uint32_t clipPolygonArrayXMin(Polygon&, Polygon&);                                 \
  template std::uint32_t clipPolygonArrayXMax(Polygon&, Polygon&);                                 \
  template std::uint32_t clipPolygonArrayYMin(Polygon&, Polygon&);                                 \
  template std::uint32_t clipPolygonArrayYMax(Polygon&, Polygon&);                                 \
  template std::uint32_t clipPolygonArrayZMin(Polygon&, Polygon&);                                 \
  template std::uint32_t clipPolygonArrayZMax(Polygon&, Polygon&);                                 \
  template Polygon* clipPolygonArrayToVolume(Polygon&, Polygon&, Polygon&, std::uint32_t);         \
  template Polygon* clipPolygonArrayToRectangle(Polygon&, Polygon&, Polygon&, std::uint32_t);      \
  template bool clipPolygonArrayInPlace(Polygon&);                                                 \
  template bool clipPolygonArrayInPlace2D(Polygon&);                                               \
  template std::size_t clipPolygonArraysInPlace(Polygon*, std::size_t, ClipOutcome*);              \
  template std::size_t clipPolygonArraysInPlace2D(Polygon*, std::size_t, ClipOutcome*);            \
  template Polygon* clipPolygonArrayToVolume(Polygon&, Polygon&, Polygon&, std::uint32_t, Trace&); \
  template Polygon* clipPolygonArrayToRectangle(Polygon&, Polygon&, Polygon&, std::uint32_t,       \
                                                Trace&);                                           \
  template bool clipPolygonArrayInPlace(Polygon&, Trace&);                                         \
  template bool clipPolygonArrayInPlace2D(Polygon&, Trace&);                                       \
  template std::uint32_t computeOutcode(Polygon&);                                                 \
  template bool isFinite(const Polygon&);
ULM_CLIP_INSTANTIATE(ClipPolygonArray, ClipTraceArray)
ULM_CLIP_INSTANTIATE(ClipPolygonArrayF, ClipTraceArrayF)
// NOLINTEND(bugprone-macro-parentheses)
#undef ULM_CLIP_INSTANTIATE

}  // namespace ulm::clip
