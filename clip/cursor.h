// A polygon's cursor: a place in a polygon that is read and written as its accessors do it.
#pragma once

#include <cstdint>

namespace ulm::clip {

// `polygon` is borrowed. An index may lie beyond the count: it is for vertexAt and vertexForWrite
// to settle what is there, and what they raise passes through. Index sums wrap at 32 bits.
template <class Polygon>
struct BasicClipVertexRef {
  using Vertex = typename Polygon::Vertex;

  std::uint32_t index;
  Polygon* polygon;

  const Vertex& read() const { return polygon->vertexAt(index); }
  Vertex& write() const { return polygon->vertexForWrite(index); }

  // The cursor `n` places on, for reading and writing there.
  BasicClipVertexRef operator[](std::uint32_t n) const noexcept { return {index + n, polygon}; }

  BasicClipVertexRef& operator++() noexcept {
    ++index;
    return *this;
  }
  BasicClipVertexRef operator++(int) noexcept { return {index++, polygon}; }
};

}  // namespace ulm::clip
