// The access of the passes and drivers in clip/detail/polygon_pass.h to a growable polygon.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>

#include "clip/detail/polygon_pass.h"
#include "clip/growable/polygon_array.h"

namespace ulm::clip::detail {

template <class Real>
struct PolygonAccess<BasicClipPolygonArray<Real>> {
  using Polygon = BasicClipPolygonArray<Real>;
  using Vertex = BasicClipVertex<Real>;
  using Scratch = Polygon;

  static std::uint32_t countOf(const Polygon& polygon) noexcept { return polygon.count; }
  static const Vertex* peek(const Polygon& polygon) {
    if (polygon.count != 0) polygon.vertices.at(polygon.count - 1);
    return polygon.vertices.data();
  }
  // One checked access to the last vertex replaces all others: it raises what any of them would,
  // and detaches. The destination is another polygon, so writing it does not move this buffer.
  static const Vertex* readable(Polygon& source) {
    source.vertices.at(source.count - 1);
    return source.vertices.data();
  }

  static std::uint32_t slotIndex(std::uint32_t n) noexcept { return n; }
  // Calls vertexForWrite once for all the elements that exist, and again when they run out.
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
  static constexpr bool kGrows = true;
  // The array grows in the steps in which it would grow for one vertex after the other.
  static Vertex* slotsFor(Polygon& destination, std::uint32_t n) {
    if (n == 0) return nullptr;
    OdArray<Vertex>& vertices = destination.vertices;
    destination.vertexForWrite(0);
    if (n > vertices.length()) destination.vertexForWrite(vertices.length());
    while (n > vertices.length()) {
      const std::uint32_t capacity = vertices.capacity();
      vertices.resize(vertices.length() < capacity ? std::min(n, capacity) : capacity + 1);
    }
    return vertices.data();
  }
  static std::uint32_t finish(Polygon& polygon, std::uint32_t n) noexcept {
    return polygon.count = n;
  }

  static Scratch scratchFor(const Polygon& polygon) { return {polygon.count, true}; }
  // Shares the array: when the scratch polygons are destroyed, `polygon` is its only owner.
  static void handOver(const Scratch& result, Polygon& polygon) noexcept { polygon = result; }

  // Passes write to the stack if vertices are few, else to one scratch polygon, in which later
  // passes replace the result of earlier ones. Returns nothing where a pass makes more vertices
  // than a scratch polygon has capacity for, or an outline of many crosses a plane more than twice.
  template <class Planes>
  static std::optional<ClipOutcome> clipQuickly(Polygon& polygon, std::uint32_t mask) {
    InPlace run(polygon, mask);
    Planes::allOf([&](auto plane) {
      return (mask & plane.kBit) == 0 || run.template pass<decltype(plane)>();
    });
    return run.outcome;
  }

  // The state between the passes of such a call.
  struct InPlace {
    static constexpr std::uint32_t kFew = 48;

    InPlace(Polygon& clipped, std::uint32_t mask)
        : polygon(clipped),
          planes(mask),
          originalCount(clipped.count),
          count(clipped.count),
          lengths{clipped.count, clipped.count},
          source(readable(clipped)),
          from(source) {}

    Polygon& polygon;
    std::uint32_t planes;  // those that have not run
    std::uint32_t originalCount;
    std::uint32_t count;  // of the next pass's source
    // The lengths that two scratch polygons have, whose passes alternate; the result has the length
    // of the one that the last pass writes.
    std::uint32_t lengths[2];
    std::uint32_t turn = 0;
    const Vertex* source;
    const Vertex* from;  // the next pass's source
    Polygon scratch;
    std::optional<ClipOutcome> outcome;
    Vertex stack[2][(kFew + kClipSpareVertices) * 3 / 2];  // a pass makes three of two at most

    // Returns whether another pass follows.
    template <class Plane>
    bool pass() {
      planes &= ~Plane::kBit;
      const std::uint64_t capacity = std::uint64_t{originalCount} + kClipSpareVertices;
      const bool isFew = originalCount <= kFew;
      const bool isFirst = from == source;
      const Cut cut = cutOf<Plane>(from, count);
      std::uint32_t made = cut.made(count);
      const Vertex* ready = nullptr;  // the result, if it is written already
      if (cut.kind == Cut::Many) {
        if (!isFew) return false;
        Vertex* const unused = stack[from == stack[0] ? 1 : 0];
        made = writeInTurn<Plane>(from, count, unused);
        ready = unused;
      }
      if (made > capacity) return false;
      if (made < 3) {
        outcome = ClipOutcome::Gone;
        return false;
      }
      lengths[turn] = std::max(lengths[turn], made);

      Vertex* to = stack[from == stack[1] ? 1 : 0];
      if (planes == 0) {
        // A buffer of the capacity and growth that a result has serves again.
        const bool serves = (isFew || isFirst) && polygon.vertices.capacity() == capacity &&
                            polygon.vertices.growth() == kClipGrowByHalf;
        if (!serves && scratch.count == 0) scratch = Polygon(originalCount, true);
        if (!serves) polygon.vertices.swap(scratch.vertices);  // the source's stays alive
        polygon.vertices.resize(lengths[turn]);
        to = polygon.vertices.data();
        polygon.count = made;
        outcome = ClipOutcome::Clipped;
      } else if (!isFew) {
        if (scratch.count == 0) scratch = Polygon(originalCount, true);
        to = scratch.vertices.data();
      }
      if (ready == nullptr) {
        writeCut<Plane>(from, count, cut, to, NewOutcodes::Zero);
        ready = to;
      } else if (planes == 0) {
        std::copy_n(ready, made, to);
      }
      if (planes == 0) return false;
      turn ^= 1;
      from = ready;
      count = made;
      return true;
    }
  };

  template <class T>
  static void startList(OdArray<T>& list, std::uint32_t n) {
    if (n == 0 || list.capacity() != 0) return;
    list = OdArray<T>(std::max(n, kClipSpareVertices), kClipGrowByHalf);
  }
};

}  // namespace ulm::clip::detail
