// The outcodes of vertices: all six comparisons of a vertex at once where the target has vectors of
// 16 bytes.
#pragma once

#include <cstdint>

#include "clip/detail/planes.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ulm::clip::detail {

#if defined(__SSE2__)

// Both return, in lanes of 32 bits that are all ones or all zeros, XMin, YMin, ZMax and a lane of
// no meaning in `low`, and XMax, YMax, ZMin and another in `high`. These are the bits of an outcode
// in the order of their values: the lanes of no meaning are 0x08 and 0x80.
struct Sides {
  __m128i low;
  __m128i high;
};
inline Sides sidesOf(const ClipVertexF& vertex) noexcept {
  // z is negated, so that both of its comparisons are of the other kind: -z < -w is z > w.
  const __m128 p = _mm_xor_ps(_mm_loadu_ps(&vertex.x), _mm_set_ps(0, -0.0F, 0, 0));
  const __m128 w = _mm_set1_ps(vertex.w);
  const __m128 minusW = _mm_xor_ps(w, _mm_set1_ps(-0.0F));
  return {_mm_castps_si128(_mm_cmplt_ps(p, minusW)), _mm_castps_si128(_mm_cmplt_ps(w, p))};
}
inline Sides sidesOf(const ClipVertex& vertex) noexcept {
  const __m128d xy = _mm_loadu_pd(&vertex.x);
  const __m128d w = _mm_set1_pd(vertex.w);
  const __m128d minusW = _mm_xor_pd(w, _mm_set1_pd(-0.0));
  const __m128d z = _mm_xor_pd(_mm_set1_pd(vertex.z), _mm_set_pd(-0.0, 0));  // z, -z
  const __m128 min = _mm_castpd_ps(_mm_cmplt_pd(xy, minusW));
  const __m128 max = _mm_castpd_ps(_mm_cmplt_pd(w, xy));
  const __m128 maxZMinZ = _mm_castpd_ps(_mm_cmplt_pd(w, z));
  return {_mm_castps_si128(_mm_shuffle_ps(min, maxZMinZ, _MM_SHUFFLE(0, 0, 2, 0))),
          _mm_castps_si128(_mm_shuffle_ps(max, maxZMinZ, _MM_SHUFFLE(2, 2, 2, 0)))};
}

template <class Real>
std::uint32_t outcodeOf(const BasicClipVertex<Real>& vertex) noexcept {
  const Sides sides = sidesOf(vertex);
  const __m128i words = _mm_packs_epi32(sides.low, sides.high);
  const int bytes = _mm_movemask_epi8(_mm_packs_epi16(words, words));
  return static_cast<std::uint32_t>(bytes) & VolumePlanes::kBits;
}

#else

template <class Real>
std::uint32_t outcodeOf(const BasicClipVertex<Real>& vertex) noexcept {
  std::uint32_t outcode = 0;
  VolumePlanes::allOf([&](auto plane) {
    outcode |= plane.beyond(vertex) ? plane.kBit : 0U;
    return true;
  });
  return outcode;
}

#endif

// Sets the outcodes of `count` vertices. Returns the OR of all of them.
template <class Real>
std::uint32_t setOutcodes(BasicClipVertex<Real>* vertices, std::uint32_t count) noexcept {
  std::uint32_t any = 0;
  for (std::uint32_t i = 0; i < count; ++i) any |= vertices[i].outcode = outcodeOf(vertices[i]);
  return any;
}

}  // namespace ulm::clip::detail
