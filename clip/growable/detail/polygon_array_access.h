// The access of the passes and drivers in clip/detail/polygon_pass.h to a growable polygon.
#pragma once

#include <algorithm>
#include <cstdint>

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
  static std::uint32_t finish(Polygon& polygon, std::uint32_t n) noexcept {
    return polygon.count = n;
  }

  static Scratch scratchFor(const Polygon& polygon) { return {polygon.count, true}; }
  // Shares the array: when the scratch polygons are destroyed, `polygon` is its only owner.
  static void handOver(const Scratch& result, Polygon& polygon) noexcept { polygon = result; }

  template <class T>
  static void startList(OdArray<T>& list, std::uint32_t n) {
    if (n == 0 || list.capacity() != 0) return;
    list = OdArray<T>(std::max(n, kClipSpareVertices), kClipGrowByHalf);
  }
};

}  // namespace ulm::clip::detail
