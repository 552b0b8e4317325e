// Reads any bytes as a polygon. The fixed and the growable clipper must agree after each plane
// while 32 vertices are enough, and must not access anything outside their records for any
// coordinates.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "clip/growable/polygon_array.h"
#include "clip/polygon.h"
#include "clip/trace.h"

namespace {

using namespace ulm::clip;

void require(bool holds) {
  if (!holds) std::abort();
}

bool sameBits(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (a != a && b != b);
}

bool same(const ClipPolygon& fixed, ClipPolygonArray& growable) {
  bool equal = fixed.count == growable.count;
  for (std::uint32_t i = 0; equal && i < fixed.count; ++i) {
    const ClipVertex& a = fixed.vertexAt(i);
    const ClipVertex& b = growable.vertexAt(i);
    equal = sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z) && sameBits(a.w, b.w);
  }
  return equal;
}

}  // namespace

// An input is a byte of mask, a byte of stale count, and the bytes of coordinates.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > 16384) return 0;
  const std::uint32_t mask = data[0];
  const auto count = static_cast<std::uint32_t>((size - 2) / (4 * sizeof(double)));
  ClipPolygon fixed{};
  ClipPolygonArray growable(count, true);
  for (std::uint32_t i = 0; i < count; ++i) {
    double k[4];
    std::memcpy(k, data + 2 + i * sizeof k, sizeof k);
    growable.vertexForWrite(i) = fixed.vertexForWrite(i) = {k[0], k[1], k[2], k[3], 0};
  }
  computeOutcode(growable);
  computeOutcode(fixed);

  ClipPolygon first{}, second{};
  first.count = data[1];
  ClipPolygonArray firstArray, secondArray;
  if (count <= 32) {
    constexpr std::uint32_t (*kFixed[])(const ClipPolygon&, ClipPolygon&) noexcept = {
        clipPolygonXMin, clipPolygonXMax, clipPolygonYMax,
        clipPolygonYMin, clipPolygonZMax, clipPolygonZMin};
    constexpr std::uint32_t (*kGrowable[])(ClipPolygonArray&, ClipPolygonArray&) = {
        clipPolygonArrayXMin, clipPolygonArrayXMax, clipPolygonArrayYMax,
        clipPolygonArrayYMin, clipPolygonArrayZMax, clipPolygonArrayZMin};
    ClipPolygon now = fixed;
    ClipPolygonArray nowArray = growable;
    for (std::size_t plane = 0; plane < 6; ++plane) {
      const std::uint32_t left = kFixed[plane](now, first);
      const std::uint32_t leftArray = kGrowable[plane](nowArray, firstArray);
      require(left == (leftArray < 32 ? leftArray : 32));
      if (leftArray > 32) break;
      require(same(first, firstArray));
      now = first;
      nowArray = firstArray;
    }
  }

  const ClipPolygon* const result = clipPolygonToVolume(first, second, fixed, mask);
  require(result == nullptr || result->count <= 32);
  ClipPolygonArray* const resultArray =
      clipPolygonArrayToVolume(firstArray, secondArray, growable, mask);
  require(resultArray == nullptr || resultArray->count <= resultArray->vertices.length());

  ClipTrace<ClipPolygon> trace;
  ClipTrace<ClipPolygonArray> traceArray;
  if (clipPolygonInPlace(fixed, trace)) require(trace.origins().size() == fixed.count);
  if (clipPolygonInPlace(growable, traceArray)) {
    require(traceArray.origins().size() == growable.count);
  }
  require(trace.records().size() <= kClipTraceCapacity);
  return 0;
}
