// Uses something of each installed library; exits with 0 where all is as it should be.
#include "bignum/integer.h"
#include "clip/growable/polygon_array.h"
#include "clip/segment.h"
#include "hostsdk/odrx/alloc.h"
#include "truetype/reader/open.h"

int main() {
  void* block = odrxAlloc(16);
  odrxFree(block);
  const bool product = ulm::bignum::QLInteger(6) * 7 == 42;
  ulm::clip::ClipPoint a{-2, 0, 0, 1};
  ulm::clip::ClipPoint b{2, 0, 0, 1};
  const bool clipped = ulm::clip::clipSegment3D(a, b) && a.x == -1 && b.x == 1;
  ulm::clip::ClipPolygonArray polygon(3, true);
  ulm::truetype::TrueTypeFont* font = nullptr;
  const bool refused = ulm::truetype::openTrueTypeFont("none", nullptr, 0, 0, &font) ==
                       ulm::truetype::FontResultBadArgument;
  return block != nullptr && product && clipped && polygon.count == 3 && refused ? 0 : 1;
}
