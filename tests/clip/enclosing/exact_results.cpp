// Prints one number for the bits of many results of the clipper. The program computes with integers
// alone, so that the flags it is built with cannot change what it passes in.
#include <bit>
#include <cstdint>
#include <cstdio>
#include <random>
#include <type_traits>

#include "clip/growable/polygon_array.h"
#include "clip/polygon.h"
#include "clip/segment.h"

namespace {

using namespace ulm::clip;

std::mt19937_64 random64(1);
std::uint64_t hash = 0xCBF29CE484222325U;  // FNV-1a over whole words

template <class Real>
using Bits = std::conditional_t<sizeof(Real) == 8, std::uint64_t, std::uint32_t>;

template <class Real>
void take(Real value) {
  hash = (hash ^ std::bit_cast<Bits<Real>>(value)) * 0x100000001B3U;
}
void takeVertex(const auto& vertex) {
  take(vertex.x), take(vertex.y), take(vertex.z), take(vertex.w);
}

// Magnitudes from 1/4 to 4, or denormal ones and the smallest that are not.
template <class Real>
Real coordinate(bool isTiny, bool isPositive = false) {
  constexpr int kMantissaBits = sizeof(Real) == 8 ? 52 : 23;
  constexpr unsigned kOne = sizeof(Real) == 8 ? 1023 : 127;
  const std::uint64_t random = random64();
  const std::uint64_t exponent = isTiny ? random % 2 : kOne - 2 + random % 4;
  const std::uint64_t sign = isPositive ? 0 : random >> 63;
  const std::uint64_t mantissa = random >> 5 & ((std::uint64_t{1} << kMantissaBits) - 1);
  return std::bit_cast<Real>(static_cast<Bits<Real>>(sign << (sizeof(Real) * 8 - 1) |
                                                     exponent << kMantissaBits | mantissa));
}

template <class Real>
void clipSome(bool isTiny) {
  BasicClipPolygon<Real> fixed{}, first{}, second{};
  BasicClipPolygonArray<Real> growable;
  for (std::uint32_t i = 0; i < 8; ++i) {
    fixed.vertexForWrite(i) = {coordinate<Real>(isTiny), coordinate<Real>(isTiny),
                               coordinate<Real>(isTiny), coordinate<Real>(isTiny, true), 0};
    growable.vertexForWrite(i) = fixed.vertexAt(i);
  }
  BasicClipVertex<Real> a = fixed.vertexAt(0), b = fixed.vertexAt(1);
  if (clipSegment3D(a, b)) takeVertex(a), takeVertex(b);
  if (!isTiny) take(interpolateRatio(a.x, b.y, a.z, b.w));
  take(interpolate(a.x, b.y, a.z));
  take(computeOutcode(fixed) ^ computeOutcode(growable));

  if (const auto* const result = clipPolygonToRectangle(first, second, fixed, 0x33)) {
    for (std::uint32_t i = 0; i < result->count; ++i) takeVertex(result->vertexAt(i));
  }
  if (clipPolygonInPlace(fixed)) {
    for (std::uint32_t i = 0; i < fixed.count; ++i) takeVertex(fixed.vertexAt(i));
  }
  if (clipPolygonArrayInPlace(growable)) {
    for (std::uint32_t i = 0; i < growable.count; ++i) takeVertex(growable.vertexAt(i));
  }
}

}  // namespace

int main() {
  for (int round = 0; round < 4000; ++round) {
    clipSome<double>(round % 4 == 0);
    clipSome<float>(round % 4 == 0);
  }
  std::printf("%016llx\n", static_cast<unsigned long long>(hash));
  return 0;
}
