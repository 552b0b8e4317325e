// The cursor of a polygon: an index that is read and written through the polygon's accessors.
#pragma once

#include <cstdint>

namespace ulm::clip {

// `polygon` is borrowed and must not be null when the cursor is read or written. `index` may be at
// or above the count; vertexAt and vertexForWrite define what that means, and their exceptions pass
// through. Sums of indices wrap at 32 bits.
template <class Polygon>
struct BasicClipVertexRef {
  using Vertex = typename Polygon::Vertex;

  std::uint32_t index;
  Polygon* polygon;

  // Returns polygon->vertexAt(index).
  const Vertex& read() const { return polygon->vertexAt(index); }
  // Returns polygon->vertexForWrite(index).
  Vertex& write() const { return polygon->vertexForWrite(index); }

  // Returns the cursor for index + n.
  BasicClipVertexRef operator[](std::uint32_t n) const noexcept { return {index + n, polygon}; }

  BasicClipVertexRef& operator++() noexcept {
    ++index;
    return *this;
  }
  BasicClipVertexRef operator++(int) noexcept { return {index++, polygon}; }
};

}  // namespace ulm::clip
