// Each operation with each of its allocations failing in turn: std::bad_alloc, inputs unchanged,
// destinations valid, nothing lost.
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <thread>
#include <vector>

#include "bignum/constants.h"
#include "bignum/integer.h"
#include "bignum/number_theory.h"
#include "bignum/rsa.h"
#include "platform/odrx/alloc_control.h"
#include "tests/bignum/operands.h"

namespace ulm::bignum::test {
namespace {

// in: read only; out: destinations, at the start -3, a value of 32 words, and an empty holder.
using Operation = std::function<void(const QLInteger (&in)[4], QLInteger (&out)[3])>;
#define ULM_CASE(...)                                                                         \
  {                                                                                           \
#__VA_ARGS__,                                                                             \
        [](const QLInteger(&in)[4], QLInteger(&out)[3]) { (void)in, (void)out, __VA_ARGS__; } \
  }
const std::pair<const char*, Operation> kOperations[] = {
    ULM_CASE(QLInteger()),
    ULM_CASE(QLInteger(in[0])),
    ULM_CASE(out[0].Assign(in[0])),
    ULM_CASE(out[2].Assign(7)),
    ULM_CASE(out[1].EnsureCount(33)),
    ULM_CASE(out[1].Reallocate(65, false)),
    ULM_CASE(out[0] += in[0]),
    ULM_CASE(out[0] -= in[0]),
    ULM_CASE(out[1] += 1),
    ULM_CASE(out[0] -= -5),
    ULM_CASE(out[1] += out[1]),
    ULM_CASE(out[1] *= in[0]),
    ULM_CASE(out[1] *= 3),
    ULM_CASE(out[1] %= in[1]),
    ULM_CASE(out[1] <<= 33),
    ULM_CASE(in[0] + in[1]),
    ULM_CASE(in[0] * in[1]),
    ULM_CASE(in[0] / in[1]),
    ULM_CASE(Divide(in[0], in[1], out[0], out[1])),
    ULM_CASE(Divide(out[1], in[1], out[0], out[1])),
    ULM_CASE(Divide(in[0], 5, out[0], out[2])),
    ULM_CASE(Remainder(out[1], in[1], out[1])),
    ULM_CASE(PowerOfTwo(3000)),
    ULM_CASE(Pow(in[1], in[3])),
    ULM_CASE(ModPow(in[0], in[3], in[1], out[2])),
    ULM_CASE(Gcd(in[0], in[1], out[0])),
    ULM_CASE(ExtendedGcd(in[0], in[1], out[0], out[1], out[2])),
    ULM_CASE(IntegerSqrt(in[2])),
    ULM_CASE(IsProbablePrime(in[3], 1, 1)),
    ULM_CASE(NextPrime(in[3], out[1])),
    ULM_CASE(FromText(out[2], "-123456789012345678901234567890")),
    ULM_CASE([&] {
      std::uint8_t block[12] = {5};
      QLRSADecryptor(in[1], in[3]).Decrypt(block, block);
    }()),
    ULM_CASE([&] {
      char text[64];
      ToText(in[3], text, 64, 3);
    }())};
#undef ULM_CASE

TEST(Memory, EachFailedAllocationLeavesValidValues) {
  for (const auto& [name, operation] : kOperations) {
    SCOPED_TRACE(name);
    bool failed = true;
    for (std::uint64_t served = 0; failed; ++served) {
      const std::uint64_t blocks = odrxAllocCounts().liveBlocks;
      {
        const QLInteger in[4] = {patterned(64, 0, 1, true), patterned(3, 0, 2, false),
                                 patterned(64, 1, 3, false), QLInteger(11)};
        const std::string before =
            stateOf(in[0]) + stateOf(in[1]) + stateOf(in[2]) + stateOf(in[3]);
        QLInteger out[3] = {QLInteger(-3), patterned(32, 0, 4, false), QLInteger(kEmptyHolder)};
        failed = false;
        odrxAllocFail(served, 1);
        try {
          operation(in, out);
        } catch (const std::bad_alloc&) {
          failed = true;
        }
        odrxAllocFail(0, 0);
        EXPECT_EQ(stateOf(in[0]) + stateOf(in[1]) + stateOf(in[2]) + stateOf(in[3]), before);
        if (failed) {
          for (const QLInteger& value : out) {
            EXPECT_TRUE(isNormal(value) || stateOf(value) == "0 0 +") << stateOf(value);
          }
        }
        EXPECT_TRUE(failed || served > 0) << "nothing was allocated";
      }
      ASSERT_EQ(odrxAllocCounts().liveBlocks, blocks) << "after " << served;
    }
  }
}

// The runtime's allocator is asked itself, so a new-handler has no say.
TEST(Memory, NewHandlerIsNotCalled) {
  static bool called = false;
  const auto old = std::set_new_handler([] { called = true; });
  odrxAllocFail(0, 1);
  EXPECT_THROW(QLInteger(), std::bad_alloc);
  std::set_new_handler(old);
  EXPECT_FALSE(called);
}

TEST(Memory, ThreadsShareValuesTheyRead) {
  const QLInteger base = patterned(20, 0, 5, false);
  const QLInteger modulus = patterned(12, 0, 6, false);
  std::vector<std::thread> threads;
  QLInteger results[4];
  for (QLInteger& result : results) {
    threads.emplace_back([&] { ModPow(base, PrimeWitnesses[17], modulus, result); });
  }
  for (std::thread& thread : threads) thread.join();
  for (const QLInteger& result : results) EXPECT_EQ(result, results[0]);
}

}  // namespace
}  // namespace ulm::bignum::test
