// Padding, and the RSA classes: answers, the shape of the objects, memory.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <thread>
#include <type_traits>
#include <vector>

#include "bignum/rsa.h"
#include "platform/odrx/alloc_control.h"
#include "tests/bignum/operands.h"
#include "tests/support/table_place.h"

namespace ulm::bignum::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(ZeroPadding, Pads) {
  const struct {
    Bytes input;
    std::uint32_t inputBits, outputBits;
    Bytes output;
  } rows[] = {{{0x41, 0xF2, 0x43}, 12, 32, {0x41, 0xF2, 0, 0}},
              {{0x41, 0x42, 0x43, 0x44}, 32, 12, {0x41, 0x42}},
              {{0x41}, 8, 9, {0x41, 0}},
              {{}, 0, 17, {0, 0, 0}},
              {{0x41}, 8, 0, {}}};
  const QLZeroPadding padding;
  for (const auto& row : rows) {
    Bytes output(row.output.size(), 0xEE);  // an exact heap block
    padding.Pad(row.input.data(), row.inputBits, output.data(), row.outputBits);
    EXPECT_EQ(output, row.output);
  }
  for (const std::uint32_t bits : {0u, 2048u, 0xFFFFFFFFu}) {
    EXPECT_EQ(padding.PayloadBits(bits), bits);
  }
}

TEST(ZeroPadding, Unpads) {
  const struct {
    Bytes input;
    std::uint32_t bits, expected;
    Bytes output;
  } rows[] = {{{0x41, 0x42, 0, 0}, 32, 16, {0x41, 0x42}},
              {{0x41, 0x42, 0x43, 0x44}, 32, 32, {0x41, 0x42, 0x43, 0x44}},
              {{0, 0, 7}, 19, 19, {0, 0, 7}},
              {{0x41, 0}, 12, 4, {0x41}},
              {{0, 0}, 16, 0, {}},
              {{0, 0}, 12, 0, {}},  // the steps of 8 stop at 0
              {{0}, 1, 0, {}},
              {{}, 0, 0, {}}};
  const QLZeroPadding padding;
  for (const auto& row : rows) {
    Bytes output(row.output.size());
    EXPECT_EQ(padding.Unpad(row.input.data(), row.bits, output.data()), row.expected);
    EXPECT_EQ(output, row.output);
    Bytes same = row.input;
    EXPECT_EQ(padding.Unpad(same.data(), row.bits, same.data()), row.expected);
    EXPECT_EQ(same, row.input);
  }
}

TEST(Rsa, FunctionAndBounds) {
  const QLRSABase base(3233, 17);
  const QLRSAFunction& function = base.function;
  EXPECT_EQ(function.Apply(65), 2790);
  EXPECT_EQ(function.InputBound(), 3233);
  EXPECT_EQ(function.OutputBound(), 3233);
  EXPECT_EQ(function.MaxInput(), 3232);
  EXPECT_EQ(function.MaxOutput(), 3232);
  EXPECT_EQ(base.MaxOutputBits(), 12u);
  EXPECT_EQ(base.status, 0u);
  EXPECT_EQ(QLRSABase(65536, 3).MaxOutputBits(), 16u);  // the bits of modulus - 1, not of modulus

  struct Odd : QLTrapdoorFunction {  // the maxima come through the table
    QLInteger Apply(const QLInteger& x) const override { return x; }
    QLInteger InputBound() const override { return 10; }
    QLInteger OutputBound() const override { return 20; }
  } const odd;
  EXPECT_EQ(odd.MaxInput(), 9);
  EXPECT_EQ(odd.MaxOutput(), 19);
}

TEST(Rsa, Decrypts) {
  const struct {
    std::int32_t modulus, exponent;
    Bytes input;
    std::uint32_t bits;
    Bytes output;
  } rows[] = {{3233, 2753, {0xE6, 0x0A}, 7, {0x41}},
              {3233, 2753, {0, 0}, 0, {}},
              {3233, 2753, {0xA1, 0x0C}, 0, {}},  // the modulus itself
              {33, 3, {0xFF}, 5, {0x1E}},
              {33, 3, {0x18}, 5, {0x1E}},
              {33, 1, {0xFF}, 5, {0x18}},  // reduced, so that it fits the output
              {2, 1, {0xFF}, 1, {1}},
              {2, 5, {0}, 0, {}},
              {3233, 0, {0xE6, 0x0A}, 1, {1}},
              {65537, 1, {0, 0, 1}, 0x11, {0, 0, 1}},
              {1, 1, {}, 0, {}},
              {0, 3, {}, 0, {}},
              {-33, 3, {}, 0, {}}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.modulus);
    const QLRSADecryptor decryptor(row.modulus, row.exponent);
    Bytes output(row.input.size(), 0xEE);
    EXPECT_EQ(decryptor.Decrypt(output.data(), row.input.data()), row.bits);
    Bytes expected = row.output;
    expected.resize(output.size(), 0xEE);  // nothing behind the result is written
    EXPECT_EQ(output, expected);
  }
  QLRSADecryptor refusing(3233, 2753);
  refusing.status = 0x80000000;
  EXPECT_EQ(refusing.Decrypt(nullptr, nullptr), 0u);
}

// Decrypt unpads through the table.
TEST(Rsa, SubclassesUnpad) {
  struct Marker : QLRSADecryptor {
    using QLRSADecryptor::QLRSADecryptor;
    std::uint32_t Unpad(const std::uint8_t* input, std::uint32_t bits,
                        std::uint8_t* output) const override {
      *output = static_cast<std::uint8_t>(*input + 1);
      return bits + 100;
    }
  };
  const Marker marker(3233, 2753);
  const Bytes input = {0xE6, 0x0A};
  std::uint8_t output = 0;
  EXPECT_EQ(marker.Decrypt(&output, input.data()), 107u);
  EXPECT_EQ(output, 0x42);
}

TEST(Rsa, ShapesAndTables) {
  static_assert(std::is_base_of_v<QLTrapdoorFunction, QLRSAFunction>);
  static_assert(std::is_convertible_v<QLRSADecryptor*, QLPadding*>);
  const QLRSADecryptor decryptor(3233, 17);
  const auto address = [](const auto& part) { return reinterpret_cast<std::uintptr_t>(&part); };
  const std::uintptr_t parts[] = {address(decryptor),
                                  address(decryptor.status),
                                  address(static_cast<const QLZeroPadding&>(decryptor)),
                                  address(decryptor.function),
                                  address(decryptor.function.modulus),
                                  address(decryptor.function.exponent),
                                  address(static_cast<const QLDecryptor&>(decryptor))};
  EXPECT_TRUE(std::is_sorted(std::begin(parts), std::end(parts)));
  EXPECT_EQ(parts[0], address(static_cast<const QLCrypter&>(decryptor)));
  EXPECT_NE(dynamic_cast<const QLDecryptor*>(static_cast<const QLPadding*>(&decryptor)), nullptr);
  using ulm::test::tablePlace;
  EXPECT_EQ(tablePlace(&QLPadding::PayloadBits), 2u);
  EXPECT_EQ(tablePlace(&QLPadding::Pad), 3u);
  EXPECT_EQ(tablePlace(&QLPadding::Unpad), 4u);
  EXPECT_EQ(tablePlace(&QLDecryptor::Decrypt), 2u);
  EXPECT_EQ(tablePlace(&QLTrapdoorFunction::Apply), 2u);
  EXPECT_EQ(tablePlace(&QLTrapdoorFunction::InputBound), 3u);
  EXPECT_EQ(tablePlace(&QLTrapdoorFunction::OutputBound), 4u);
  EXPECT_EQ(tablePlace(&QLTrapdoorFunction::MaxInput), 5u);
  EXPECT_EQ(tablePlace(&QLTrapdoorFunction::MaxOutput), 6u);
}

template <class Base>
void destroyThrough() {
  const std::uint64_t blocks = odrxAllocCounts().liveBlocks;
  std::unique_ptr<Base> base(new QLRSADecryptor(3233, 17));
  EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks + 2);  // copies of both numbers
  base.reset();
  EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks);
}

TEST(Rsa, DestructionThroughAnyBase) {
  destroyThrough<QLCrypter>();
  destroyThrough<QLPadding>();
  destroyThrough<QLZeroPadding>();
  destroyThrough<QLRSABase>();
  destroyThrough<QLDecryptor>();
  const std::uint64_t blocks = odrxAllocCounts().liveBlocks;
  std::unique_ptr<QLTrapdoorFunction>(new QLRSAFunction(3233, 17)).reset();
  EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks);
}

TEST(Rsa, EachFailedAllocationLeavesNothing) {
  const QLInteger modulus = patterned(40, 0, 7, false);
  const Bytes input(160, 0xA5);
  const Bytes untouched(160, 0xEE);
  const std::uint64_t blocks = odrxAllocCounts().liveBlocks;
  bool failed = true;
  std::uint64_t served = 0;
  for (; failed; ++served) {
    Bytes output = untouched;
    failed = false;
    odrxAllocFail(served, 1);
    try {
      QLRSADecryptor(modulus, 5).Decrypt(output.data(), input.data());
    } catch (const std::bad_alloc&) {
      failed = true;
    }
    odrxAllocFail(0, 0);
    EXPECT_EQ(failed, output == untouched);
    ASSERT_EQ(odrxAllocCounts().liveBlocks, blocks) << "after " << served;
  }
  EXPECT_GT(served, 5u);
}

TEST(Rsa, ThreadsShareAKey) {
  const QLRSADecryptor decryptor(3233, 2753);
  std::uint32_t bits[4];
  std::vector<std::thread> threads;
  for (std::uint32_t& result : bits) {
    threads.emplace_back([&] {
      const Bytes input = {0xE6, 0x0A};
      Bytes output(2);
      result = decryptor.Decrypt(output.data(), input.data());
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::uint32_t result : bits) EXPECT_EQ(result, 7u);
}

}  // namespace
}  // namespace ulm::bignum::test
