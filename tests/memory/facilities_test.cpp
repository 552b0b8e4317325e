// The operations of the facilities that take their memory from the object runtime. The walk of the
// big integers has a sweep for each of its own steps.
#include <array>
#include <memory>
#include <new>

#include "bignum/bytes.h"
#include "bignum/constants.h"
#include "bignum/digest/digest.h"
#include "bignum/rsa/rsa.h"
#include "bignum/text.h"
#include "bignum/words.h"
#include "clip/growable/polygon_array.h"
#include "clip/trace.h"
#include "tests/memory/memory_rows.h"
#include "tests/support/runtime_heap.h"

namespace {

using namespace ulm::test;

TEST(FacilityMemory, Numbers) {
  using namespace ulm::bignum;
  const std::array<std::uint8_t, 200> bytes{1};
  const QLInteger modulus = parseInteger("3233"), exponent(17), large = PowerOfTwo(2000);
  const QLRSADecryptor key(large, exponent);
  const std::string text(30, '7');
  const auto value = [](const char* name, auto operation) {
    return MemoryRow{name, [operation](FailingMemory& memory) {
                       return memory.run([&] { return operation().count != 0; }), true;
                     }};
  };
  static bool handled = false;  // a process's new-handler must not run
  std::set_new_handler([] { handled = true; });
  failEachOf(
      kRuntimeHeap,
      {value("fromBytesLowFirst", [&] { return fromBytesLowFirst(bytes); }),
       value("fromBytesHighFirst", [&] { return fromBytesHighFirst(bytes); }),
       value("parseInteger", [&] { return parseInteger(text.c_str()); }),
       value("fromInt64", [] { return QLInteger::fromInt64(1); }),
       {"AllocateWords",
        [](FailingMemory& memory) {
          Word* words = nullptr;
          memory.run([&] { return (words = AllocateWords(2)) != nullptr; });
          FreeWords(words);
          return true;
        },
        1},
       {"ResizeWords",
        [](FailingMemory& memory) {
          Word* words = AllocateWords(2);
          words[1] = 7;
          memory.run([&] { return (words = ResizeWords(words, 4, 2)) != nullptr; });
          const bool kept = words[1] == 7;
          FreeWords(words);
          return kept;
        },
        1},
       {"QLRSADecryptor",
        [&](FailingMemory& memory) {
          return memory.run([&] { return QLRSADecryptor(modulus, exponent).status == 0; }), true;
        }},
       value("InputBound", [&] { return key.function.InputBound(); }),
       value("MaxInput", [&] { return key.function.MaxInput(); }),
       value("MaxOutput", [&] { return key.function.MaxOutput(); }),
       value("Apply", [&] { return key.function.Apply(large - 2); }),
       {"MaxOutputBits",
        [&](FailingMemory& memory) {
          return memory.run([&] { return key.MaxOutputBits() == 2000; }), true;
        }},
       {"Decrypt",
        [&](FailingMemory& memory) {
          std::array<std::uint8_t, 250> block{3}, output{};
          const bool whole =
              memory.run([&] { return key.Decrypt(output.data(), block.data()) == 27; });
          return key.function.modulus == large && whole == (output[0] == 0xC3);
        }},
       {"CreateSHA1",
        [](FailingMemory& memory) {
          return memory.run(
                     [] { return std::unique_ptr<QLMessageDigest>(CreateSHA1()) != nullptr; }),
                 true;
        },
        1},
       {"CreateSHA0",
        [](FailingMemory& memory) {
          return memory.run(
                     [] { return std::unique_ptr<QLMessageDigest>(CreateSHA0()) != nullptr; }),
                 true;
        },
        1},
       {"new QLSHA",
        [](FailingMemory& memory) {
          return memory.run([] { return std::unique_ptr<QLSHA>(new QLSHA(true)) != nullptr; }),
                 true;
        },
        1}});
  std::set_new_handler(nullptr);
  EXPECT_FALSE(handled);
}

using namespace ulm::clip;

// A triangle that every plane of the rectangle cuts.
const ClipPolygonArray& triangle() {
  static const ClipPolygonArray made = [] {
    ClipPolygonArray polygon(3, true);
    polygon.vertexForWrite(0) = {-3, -2, 0, 1, 0};
    polygon.vertexForWrite(1) = {3, -2, 0, 1, 0};
    polygon.vertexForWrite(2) = {0, 4, 0, 1, 0};
    computeOutcode(polygon);
    return polygon;
  }();
  return made;
}

// A row for an operation on a polygon that shares its vertices. Without memory it raises OdError 9
// and leaves the polygon as it was; the other owner's vertices never change.
template <class Operation>
MemoryRow onShared(const char* name, Operation operation) {
  return {name, [operation](FailingMemory& memory) {
            ClipPolygonArray polygon = triangle();
            std::int32_t code = 9;
            const bool whole = memory.run([&] {
              try {
                operation(polygon);
                return true;
              } catch (const OdError& error) {
                code = error.code();
                return false;
              }
            });
            return code == 9 && triangle().vertices.data()[2].y == 4 &&
                   (whole || (polygon.count == 3 && polygon.vertices.data()[2].y == 4));
          }};
}

TEST(FacilityMemory, Polygons) {
  triangle();  // before the blocks are counted
  failEachOf(
      kRuntimeHeap,
      {onShared("ClipPolygonArray", [](ClipPolygonArray&) { ClipPolygonArray(5, true); }),
       onShared("vertexAt", [](ClipPolygonArray& polygon) { polygon.vertexAt(1); }),
       onShared("vertexForWrite", [](ClipPolygonArray& polygon) { polygon.vertexForWrite(1); }),
       onShared("vertexForWrite, beyond",
                [](ClipPolygonArray& polygon) { polygon.vertexForWrite(99); }),
       onShared("computeOutcode", [](ClipPolygonArray& polygon) { computeOutcode(polygon); }),
       onShared("clipPolygonArrayXMin",
                [](ClipPolygonArray& polygon) {
                  ClipPolygonArray first;
                  clipPolygonArrayXMin(polygon, first);
                }),
       onShared("clipPolygonArrayToVolume",
                [](ClipPolygonArray& polygon) {
                  ClipPolygonArray first, second;
                  clipPolygonArrayToVolume(first, second, polygon, ~0U);
                }),
       onShared("clipPolygonArrayToRectangle",
                [](ClipPolygonArray& polygon) {
                  ClipPolygonArray first, second;
                  clipPolygonArrayToRectangle(first, second, polygon, ~0U);
                }),
       onShared("clipPolygonArrayInPlace",
                [](ClipPolygonArray& polygon) { clipPolygonArrayInPlace(polygon); }),
       onShared("clipPolygonArrayInPlace2D",
                [](ClipPolygonArray& polygon) { clipPolygonArrayInPlace2D(polygon); }),
       onShared("clipPolygonArraysInPlace",
                [](ClipPolygonArray& polygon) {
                  ClipOutcome outcome;
                  clipPolygonArraysInPlace(&polygon, 1, &outcome);
                }),
       onShared("clipPolygonInPlace with a trace", [](ClipPolygonArray& polygon) {
         ClipTrace<ClipPolygonArray> trace;
         clipPolygonInPlace(polygon, trace);
       })});
}

}  // namespace
