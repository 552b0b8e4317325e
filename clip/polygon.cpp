#include "clip/polygon.h"

#include "clip/detail/planes.h"
#include "clip/detail/polygon_pass.h"

namespace ulm::clip {
namespace detail {

template <class Real>
struct PolygonAccess<BasicClipPolygon<Real>> {
  using Polygon = BasicClipPolygon<Real>;
  using Vertex = BasicClipVertex<Real>;
  using Source = const Polygon;

  static std::uint32_t countOf(const Polygon& polygon) noexcept {
    return std::min(polygon.count, kClipPolygonCapacity);
  }
  static const Vertex* peek(const Polygon& polygon) noexcept { return polygon.vertices; }
  static const Vertex* readable(const Polygon& source) noexcept { return source.vertices; }
  static std::uint32_t slotIndex(std::uint32_t n) noexcept {
    return std::min(n, kClipPolygonCapacity - 1);
  }
  // As vertexForWrite has it, but for the count, which close sets whatever it was.
  class Writer {
   public:
    explicit Writer(Polygon& polygon) noexcept : slots_(polygon.vertices) {}
    Vertex& slot(std::uint32_t n) const noexcept { return slots_[slotIndex(n)]; }

   private:
    Vertex* slots_;
  };
  static std::uint32_t close(Polygon& polygon, std::uint32_t n) noexcept {
    return polygon.count = std::min(n, kClipPolygonCapacity);
  }
};

// What the in-place drivers work in. Its slots start without values, and `written` of them have got
// one; a new vertex in a slot that had none gets the outcode 0, so that no result depends on what
// the stack held.
template <class Real>
struct ScratchPolygon : BasicClipPolygon<Real> {
  ScratchPolygon() noexcept : written(0) {}  // the rest stays as it is
  std::uint32_t written;
};

template <class Real>
struct PolygonAccess<ScratchPolygon<Real>> : PolygonAccess<BasicClipPolygon<Real>> {
  using Base = PolygonAccess<BasicClipPolygon<Real>>;

  class Writer {
   public:
    explicit Writer(ScratchPolygon<Real>& polygon) noexcept : polygon_(polygon) {}
    BasicClipVertex<Real>& slot(std::uint32_t n) const noexcept {
      const std::uint32_t i = Base::slotIndex(n);
      if (i >= polygon_.written) {
        polygon_.vertices[i].outcode = 0;
        polygon_.written = i + 1;
      }
      return polygon_.vertices[i];
    }

   private:
    ScratchPolygon<Real>& polygon_;
  };
};

template <class Real>
struct InPlaceAccess<BasicClipPolygon<Real>> {
  using Scratch = ScratchPolygon<Real>;
  static Scratch scratch(const BasicClipPolygon<Real>&) noexcept { return {}; }
  // The whole record; slots without a value have nothing to give.
  static void handOver(const Scratch& result, BasicClipPolygon<Real>& polygon) noexcept {
    std::copy_n(result.vertices, result.written, polygon.vertices);
    polygon.count = result.count;
  }
};

}  // namespace detail

namespace {

using detail::RectanglePlanes;
using detail::VolumePlanes;

template <class Real>
struct FixedTrace {
  struct Origins {
    ClipOrigin places[kClipPolygonCapacity] = {};
    void put(std::uint32_t i, ClipOrigin origin) noexcept { places[i] = origin; }
    ClipOrigin at(std::uint32_t i) const noexcept { return places[i]; }
  };

  BasicClipTrace<Real>& trace;

  void clear() noexcept { trace.recordCount = trace.originCount = 0; }
  std::uint32_t addRecord(const BasicClipRecord<Real>& record) noexcept {
    trace.records[trace.recordCount] = record;
    return trace.recordCount++;
  }
  void finish(const Origins& origins, std::uint32_t count) noexcept {
    std::copy_n(origins.places, count, trace.origins);
    trace.originCount = count;
  }
};

}  // namespace

template <std::floating_point Real>
std::uint32_t clipPolygonXMin(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::XMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonXMax(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::XMax>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonYMin(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::YMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonYMax(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::YMax>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonZMin(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::ZMin>(source, destination);
}
template <std::floating_point Real>
std::uint32_t clipPolygonZMax(const BasicClipPolygon<Real>& source,
                              BasicClipPolygon<Real>& destination) noexcept {
  return detail::clipPass<detail::ZMax>(source, destination);
}

template <std::floating_point Real>
BasicClipPolygon<Real>* clipPolygonToVolume(BasicClipPolygon<Real>& first,
                                            BasicClipPolygon<Real>& second,
                                            const BasicClipPolygon<Real>& source,
                                            std::uint32_t mask) noexcept {
  return detail::clipThrough<VolumePlanes>(first, second, source, mask);
}
template <std::floating_point Real>
BasicClipPolygon<Real>* clipPolygonToRectangle(BasicClipPolygon<Real>& first,
                                               BasicClipPolygon<Real>& second,
                                               const BasicClipPolygon<Real>& source,
                                               std::uint32_t mask) noexcept {
  return detail::clipThrough<RectanglePlanes>(first, second, source, mask);
}

template <std::floating_point Real>
bool clipPolygonInPlace(BasicClipPolygon<Real>& polygon) noexcept {
  return detail::clipInPlace<VolumePlanes>(polygon) != ClipOutcome::Gone;
}
template <std::floating_point Real>
bool clipPolygonInPlace2D(BasicClipPolygon<Real>& polygon) noexcept {
  return detail::clipInPlace<RectanglePlanes>(polygon) != ClipOutcome::Gone;
}

template <std::floating_point Real>
std::size_t clipPolygonsInPlace(BasicClipPolygon<Real>* polygons, std::size_t polygonCount,
                                ClipOutcome* outcomes) noexcept {
  return detail::clipBatch<VolumePlanes>(polygons, polygonCount, outcomes);
}
template <std::floating_point Real>
std::size_t clipPolygonsInPlace2D(BasicClipPolygon<Real>* polygons, std::size_t polygonCount,
                                  ClipOutcome* outcomes) noexcept {
  return detail::clipBatch<RectanglePlanes>(polygons, polygonCount, outcomes);
}

template <std::floating_point Real>
BasicClipPolygon<Real>* clipPolygonToVolume(BasicClipPolygon<Real>& first,
                                            BasicClipPolygon<Real>& second,
                                            const BasicClipPolygon<Real>& source,
                                            std::uint32_t mask,
                                            BasicClipTrace<Real>& trace) noexcept {
  return detail::clipThroughTraced<VolumePlanes>(first, second, source, mask,
                                                 FixedTrace<Real>{trace});
}
template <std::floating_point Real>
BasicClipPolygon<Real>* clipPolygonToRectangle(BasicClipPolygon<Real>& first,
                                               BasicClipPolygon<Real>& second,
                                               const BasicClipPolygon<Real>& source,
                                               std::uint32_t mask,
                                               BasicClipTrace<Real>& trace) noexcept {
  return detail::clipThroughTraced<RectanglePlanes>(first, second, source, mask,
                                                    FixedTrace<Real>{trace});
}
template <std::floating_point Real>
bool clipPolygonInPlace(BasicClipPolygon<Real>& polygon, BasicClipTrace<Real>& trace) noexcept {
  return detail::clipInPlaceTraced<VolumePlanes>(polygon, FixedTrace<Real>{trace});
}
template <std::floating_point Real>
bool clipPolygonInPlace2D(BasicClipPolygon<Real>& polygon, BasicClipTrace<Real>& trace) noexcept {
  return detail::clipInPlaceTraced<RectanglePlanes>(polygon, FixedTrace<Real>{trace});
}

template <std::floating_point Real>
std::uint32_t computeOutcode(BasicClipPolygon<Real>& polygon) noexcept {
  const std::uint32_t count = detail::PolygonAccess<BasicClipPolygon<Real>>::countOf(polygon);
  std::uint32_t any = 0;
  for (std::uint32_t i = 0; i < count; ++i) any |= computeOutcode(polygon.vertices[i]);
  return any;
}

template <std::floating_point Real>
bool isFinite(const BasicClipPolygon<Real>& polygon) noexcept {
  const std::uint32_t count = detail::PolygonAccess<BasicClipPolygon<Real>>::countOf(polygon);
  return std::all_of(polygon.vertices, polygon.vertices + count,
                     [](const BasicClipVertex<Real>& vertex) { return isFinite(vertex); });
}

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are types
#define ULM_CLIP_INSTANTIATE(Polygon, Trace)                                                  \
  template std::uint32_t clipPolygonXMin(const Polygon&, Polygon&) noexcept;                  \
  template std::uint32_t clipPolygonXMax(const Polygon&, Polygon&) noexcept;                  \
  template std::uint32_t clipPolygonYMin(const Polygon&, Polygon&) noexcept;                  \
  template std::uint32_t clipPolygonYMax(const Polygon&, Polygon&) noexcept;                  \
  template std::uint32_t clipPolygonZMin(const Polygon&, Polygon&) noexcept;                  \
  template std::uint32_t clipPolygonZMax(const Polygon&, Polygon&) noexcept;                  \
  template Polygon* clipPolygonToVolume(Polygon&, Polygon&, const Polygon&,                   \
                                        std::uint32_t) noexcept;                              \
  template Polygon* clipPolygonToRectangle(Polygon&, Polygon&, const Polygon&,                \
                                           std::uint32_t) noexcept;                           \
  template bool clipPolygonInPlace(Polygon&) noexcept;                                        \
  template bool clipPolygonInPlace2D(Polygon&) noexcept;                                      \
  template std::size_t clipPolygonsInPlace(Polygon*, std::size_t, ClipOutcome*) noexcept;     \
  template std::size_t clipPolygonsInPlace2D(Polygon*, std::size_t, ClipOutcome*) noexcept;   \
  template Polygon* clipPolygonToVolume(Polygon&, Polygon&, const Polygon&, std::uint32_t,    \
                                        Trace&) noexcept;                                     \
  template Polygon* clipPolygonToRectangle(Polygon&, Polygon&, const Polygon&, std::uint32_t, \
                                           Trace&) noexcept;                                  \
  template bool clipPolygonInPlace(Polygon&, Trace&) noexcept;                                \
  template bool clipPolygonInPlace2D(Polygon&, Trace&) noexcept;                              \
  template std::uint32_t computeOutcode(Polygon&) noexcept;                                   \
  template bool isFinite(const Polygon&) noexcept;
ULM_CLIP_INSTANTIATE(ClipPolygon, ClipTrace)
ULM_CLIP_INSTANTIATE(ClipPolygonF, ClipTraceF)
// NOLINTEND(bugprone-macro-parentheses)
#undef ULM_CLIP_INSTANTIATE

}  // namespace ulm::clip
