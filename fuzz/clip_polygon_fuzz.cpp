// Reads any bytes as a polygon of either width. The fixed and the growable clipper must agree after
// each plane while 32 vertices are enough, and must not access anything outside their records for
// any coordinates. An input is a byte of mask, a byte of stale count, and the bytes of coordinates.
#include "clip/growable/polygon_array.h"
#include "clip/polygon.h"
#include "clip/trace.h"
#include "fuzz/clip_rounding.h"

namespace {

using namespace ulm::clip;
using namespace ulm::fuzz;

template <class Real>
bool same(const BasicClipPolygon<Real>& fixed, BasicClipPolygonArray<Real>& growable) {
  bool equal = fixed.count == growable.count;
  for (std::uint32_t i = 0; equal && i < fixed.count; ++i) {
    const BasicClipVertex<Real>& a = fixed.vertexAt(i);
    const BasicClipVertex<Real>& b = growable.vertexAt(i);
    equal = sameBits(a.x, b.x) && sameBits(a.y, b.y) && sameBits(a.z, b.z) && sameBits(a.w, b.w);
  }
  return equal;
}

template <class Real>
std::vector<BasicClipVertex<Real>> verticesOf(BasicClipPolygonArray<Real>& polygon) {
  const BasicClipVertex<Real>* const first = polygon.vertices.data();
  return {first, first + polygon.count};
}

template <class Real>
void check(Input input) {
  using Fixed = BasicClipPolygon<Real>;
  using Growable = BasicClipPolygonArray<Real>;
  const std::uint32_t mask = input.u8();
  Fixed first{}, second{};
  first.count = input.u8();
  const Bytes bytes = input.takeRest();
  const auto count = static_cast<std::uint32_t>(
      bytes.size() / (4 * ((mask & kSmallCoordinates) != 0 ? 2 : sizeof(Real))));
  Input coordinates(bytes.data(), bytes.size());
  Fixed fixed{};
  Growable growable(count, true);
  for (std::uint32_t i = 0; i < count; ++i) {
    BasicClipVertex<Real> vertex{};
    for (Real* k : {&vertex.x, &vertex.y, &vertex.z, &vertex.w}) {
      *k = coordinate<Real>(coordinates, mask);
    }
    growable.vertexForWrite(i) = fixed.vertexForWrite(i) = vertex;
  }
  computeOutcode(growable);
  computeOutcode(fixed);

  Growable firstArray, secondArray;
  constexpr std::uint32_t (*kFixed[])(const Fixed&, Fixed&) noexcept = {
      clipPolygonXMin, clipPolygonXMax, clipPolygonYMax,
      clipPolygonYMin, clipPolygonZMax, clipPolygonZMin};
  constexpr std::uint32_t (*kGrowable[])(Growable&, Growable&) = {
      clipPolygonArrayXMin, clipPolygonArrayXMax, clipPolygonArrayYMax,
      clipPolygonArrayYMin, clipPolygonArrayZMax, clipPolygonArrayZMin};
  Fixed now = fixed;
  Growable nowArray = growable;
  bool fits = count <= 32;
  for (std::size_t plane = 0; plane < 6; ++plane) {
    const std::uint32_t leftArray = kGrowable[plane](nowArray, firstArray);
    requireNearInside(kPlaneBits[plane], verticesOf(nowArray), verticesOf(firstArray));
    if (fits) {
      require(kFixed[plane](now, first) == (leftArray < 32 ? leftArray : 32), "the same number");
      fits = leftArray <= 32;
      require(!fits || same(first, firstArray), "the same bits");
      now = first;
    }
    nowArray = firstArray;
  }

  const Fixed* const result = clipPolygonToVolume(first, second, fixed, mask);
  require(result == nullptr || result->count <= 32, "a fixed polygon has 32 vertices at most");
  Growable* const resultArray = clipPolygonArrayToVolume(firstArray, secondArray, growable, mask);
  require(resultArray == nullptr || resultArray->count <= resultArray->vertices.length(),
          "a count is within its array");

  ClipTrace<Fixed> trace;
  ClipTrace<Growable> traceArray;
  Fixed traced = fixed;
  Growable tracedArray = growable;
  const bool remains = clipPolygonInPlace(traced, trace);
  require(remains == clipPolygonInPlace(fixed), "a trace changes nothing");
  if (remains) require(trace.origins().size() == traced.count, "an origin for each vertex");
  require(trace.records().size() <= kClipTraceCapacity, "records");
  const bool remainsArray = clipPolygonInPlace(tracedArray, traceArray);
  require(remainsArray == clipPolygonArrayInPlace(growable), "a trace changes nothing");
  if (remainsArray) {
    require(traceArray.origins().size() == tracedArray.count, "an origin for each vertex");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2 || size > 16384) return 0;
  check<double>(Input(data, size));
  check<float>(Input(data, size));
  return 0;
}
