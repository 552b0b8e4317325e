// The access of the passes and drivers in clip/detail/polygon_pass.h to a polygon of 32 vertices.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <optional>

#include "clip/detail/polygon_pass.h"
#include "clip/polygon.h"

namespace ulm::clip::detail {

// The scratch polygon of the in-place drivers. Its slots start uninitialised; the first `written`
// have been assigned. A new vertex in a slot that was not gets the outcode 0, so that no result
// depends on what the stack held.
template <class Real>
struct ScratchPolygon : BasicClipPolygon<Real> {
  ScratchPolygon() noexcept : written(0) {}
  std::uint32_t written;
};

template <class Real>
struct PolygonAccess<BasicClipPolygon<Real>> {
  using Polygon = BasicClipPolygon<Real>;
  using Vertex = BasicClipVertex<Real>;
  using Scratch = ScratchPolygon<Real>;

  static std::uint32_t countOf(const Polygon& polygon) noexcept {
    return std::min(polygon.count, kClipPolygonCapacity);
  }
  static const Vertex* peek(const Polygon& polygon) noexcept { return polygon.vertices; }
  static const Vertex* readable(const Polygon& source) noexcept { return source.vertices; }

  static std::uint32_t slotIndex(std::uint32_t n) noexcept {
    return std::min(n, kClipPolygonCapacity - 1);
  }
  // Writes as vertexForWrite does, except that it leaves `count` to finish.
  class Writer {
   public:
    explicit Writer(Polygon& polygon) noexcept : slots_(polygon.vertices) {}
    Vertex& slot(std::uint32_t n) const noexcept { return slots_[slotIndex(n)]; }

   private:
    Vertex* slots_;
  };
  static constexpr bool kGrows = false;
  static std::uint32_t finish(Polygon& polygon, std::uint32_t n) noexcept {
    return polygon.count = std::min(n, kClipPolygonCapacity);
  }

  static Scratch scratchFor(const Polygon&) noexcept { return {}; }
  // Copies the whole record except slots that were never assigned.
  static void handOver(const Scratch& result, Polygon& polygon) noexcept {
    std::copy_n(result.vertices, result.written, polygon.vertices);
    polygon.count = result.count;
  }

  // With one plane to run, the result of a long outline can be written where the source is.
  template <class Planes>
  static std::optional<ClipOutcome> clipQuickly(Polygon& polygon, std::uint32_t mask) noexcept {
    constexpr std::uint32_t kLong = 17;  // below it a copy takes less time than the mask
    std::optional<ClipOutcome> outcome;
    const std::uint32_t count = countOf(polygon);
    if (count < kLong || !std::has_single_bit(mask)) return outcome;
    Planes::allOf([&](auto plane) {
      if (mask != plane.kBit) return true;
      const Cut cut = cutOfFew<decltype(plane)>(polygon.vertices, count);
      const std::uint32_t made = cut.made(count);
      if (cut.kind == Cut::Many || made > kClipPolygonCapacity) return false;
      if (made < 3) {
        outcome = ClipOutcome::Gone;
        return false;
      }
      writeCut<decltype(plane)>(polygon.vertices, count, cut, polygon.vertices, NewOutcodes::Zero);
      polygon.count = made;
      outcome = ClipOutcome::Clipped;
      return false;
    });
    return outcome;
  }

  template <class List>
  static void startList(List&, std::uint32_t) noexcept {}  // its capacity is fixed
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

}  // namespace ulm::clip::detail
