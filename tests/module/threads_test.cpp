// The libraries in many threads, while one further thread loads, starts, stops and unloads the
// module, which has copies of the same libraries. Each thread compares its results with those of
// one thread alone; the thread sanitizer watches what they share.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "bignum/constants.h"
#include "bignum/digest/digest.h"
#include "bignum/number_theory.h"
#include "bignum/text.h"
#include "clip/growable/polygon_array.h"
#include "fuzz/font_properties.h"
#include "standin/host/module_run.h"
#include "tests/support/system_names.h"
#include "tests/truetype/rich_font.h"

namespace {

// With the constants that all threads read.
std::string numbers() {
  using namespace ulm::bignum;
  QLInteger power, prime, inverse, x, y;
  for (const QLInteger& witness : PrimeWitnesses) {
    ModPow(witness, PowerOfTwo(61) - One, PowerOfTwo(89) - One, power);
    inverse += power;
  }
  NextPrime(inverse, prime);
  ExtendedGcd(prime, Two, power, x, y);
  std::string text = toString(prime) + toString(x, 16);
  const std::unique_ptr<QLMessageDigest> digest(CreateSHA1());
  std::uint8_t bytes[20];
  digest->Digest(reinterpret_cast<const std::uint8_t*>(text.data()),
                 static_cast<std::uint32_t>(text.size()), bytes);
  return text.append(bytes, bytes + 20);
}

// From a buffer that all threads share: each detaches its copy.
std::string clipped(const ulm::clip::ClipPolygonArray& shared) {
  ulm::clip::ClipPolygonArray polygon = shared, first, second;
  ulm::clip::clipPolygonArrayInPlace(polygon);
  ulm::clip::ClipPolygonArray source = shared;
  const auto* const result = clipPolygonArrayToVolume(first, second, source, ~0U);
  std::string bits;
  for (const ulm::clip::ClipPolygonArray* each : {&std::as_const(polygon), result}) {
    for (std::uint32_t i = 0; i < each->count; ++i) {
      const ulm::clip::ClipVertex& vertex = each->vertices.data()[i];
      bits.append(reinterpret_cast<const char*>(&vertex), 4 * sizeof(double));
    }
  }
  return bits;
}

TEST(Threads, WorkWhileTheModuleComesAndGoes) {
  const ulm::test::OpenFont font(ulm::test::richFont());
  ulm::clip::ClipPolygonArray polygon(300, true);
  for (std::uint32_t i = 0; i < 300; ++i) {
    const double at = i < 150 ? i : 300.0 - i;
    polygon.vertexForWrite(i) = {at / 50 - 1.5, i % 2 == 0 ? 1.5 : -1.25, i < 150 ? 0 : 2.0, 1, 0};
  }
  computeOutcode(polygon);

  const std::string number = numbers(), bits = clipped(polygon);
  const std::function<bool()> works[] = {
      [&] { return ulm::test::checkReading(font.get(), 9) == 0; },
      [&] {
        return ulm::test::checkSubset(font.get(), {0, 4, 1, 3, 9}, 3) == 0;
      },
      [&] { return numbers() == number; }, [&] { return clipped(polygon) == bits; }};
  std::atomic<bool> done{false};
  std::atomic<int> wrong{0}, rounds{0};
  std::vector<std::thread> threads;
  for (int copies = 0; copies < 2; ++copies) {
    for (const auto& work : works) {
      threads.emplace_back([&] {
        do {
          wrong += work() ? 0 : 1;
          ++rounds;
        } while (!done);
      });
    }
  }
  for (std::size_t run = 1; run <= 20; ++run) {
    try {
      const ulm::tools::RunReport report =
          ulm::tools::runModule({std::string("ULM_Main") + ulm::test::kLibraryEnding, {}});
      // The engine manager of this process remembers the loads of all runs.
      EXPECT_TRUE(report.started && report.loads.size() == 12 * run && report.record);
    } catch (const ulm::tools::RunError& error) {
      ADD_FAILURE() << error.what();
    }
  }
  done = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_GE(rounds, 8);
}

}  // namespace
