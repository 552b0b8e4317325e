// Padding and the RSA classes: results, layout, destruction.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "bignum/rsa/rsa.h"
#include "bignum/text.h"
#include "standin/odrx/alloc_control.h"
#include "tests/support/table_place.h"
#include "tests/support/vector_blocks.h"

namespace ulm::bignum::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(const std::string& hex) {
  Bytes bytes((hex.size() + 1) / 2);  // more than there are digits for
  bytes.resize(static_cast<std::size_t>(
      HexToBytes(bytes.data(), static_cast<std::uint32_t>(bytes.size()), hex.c_str())));
  return bytes;
}

// Buffers are heap blocks of the exact sizes.
TEST(Rsa, Blocks) {
  for (auto& block : ulm::test::readVectorBlocks(ULM_TEST_DATA "/bignum/blocks.txt")) {
    const std::string operation = block.text("Op");
    const Bytes input = bytesOf(block.text("In"));
    Bytes expected = bytesOf(block.text("Out"));
    const auto numbers = block.numbers("Bits");
    const auto bits = [&](std::size_t i) { return static_cast<std::uint32_t>(numbers.at(i)); };
    Bytes output(operation == "Decrypt" ? input.size() : expected.size(), 0xEE);
    if (operation == "Pad") {
      QLZeroPadding().Pad(input.data(), bits(0), output.data(), bits(1));
    } else if (operation == "Unpad") {
      EXPECT_EQ(QLZeroPadding().Unpad(input.data(), bits(0), output.data()), bits(1));
    } else {
      std::istringstream key(block.text("Key"));
      std::string modulus, exponent;
      key >> modulus >> exponent;
      QLRSADecryptor decryptor(parseInteger(modulus.c_str()), parseInteger(exponent.c_str()));
      EXPECT_EQ(decryptor.Decrypt(output.data(), input.data()), bits(0)) << block.where();
      expected.resize(output.size(), 0xEE);  // the output after the result does not change
      decryptor.status = 0x80000000;
      EXPECT_EQ(decryptor.Decrypt(nullptr, nullptr), 0u);
    }
    EXPECT_EQ(output, expected) << block.where();
    block.expectAllUsed();
  }
  EXPECT_EQ(QLZeroPadding().PayloadBits(0xFFFFFFFF), 0xFFFFFFFF);
}

TEST(Rsa, FunctionAndBounds) {
  const QLRSABase base(3233, 17);
  EXPECT_EQ(base.function.Apply(65), 2790);
  EXPECT_TRUE(base.function.InputBound() == 3233 && base.function.OutputBound() == 3233);
  EXPECT_TRUE(base.function.MaxInput() == 3232 && base.function.MaxOutput() == 3232);
  EXPECT_TRUE(base.MaxOutputBits() == 12 && base.status == 0);
  EXPECT_EQ(QLRSABase(65536, 3).MaxOutputBits(), 16u);  // the bits of modulus - 1, not of modulus
  struct Odd : QLTrapdoorFunction {                     // the maxima come through the table
    QLInteger Apply(const QLInteger& x) const override { return x; }
    QLInteger InputBound() const override { return 10; }
    QLInteger OutputBound() const override { return 20; }
  } const odd;
  EXPECT_TRUE(odd.MaxInput() == 9 && odd.MaxOutput() == 19);
}

TEST(Rsa, DecryptUnpadsThroughTheTable) {
  struct Marker : QLRSADecryptor {
    using QLRSADecryptor::QLRSADecryptor;
    std::uint32_t Unpad(const std::uint8_t* input, std::uint32_t bits,
                        std::uint8_t*) const override {
      return bits + *input;
    }
  };
  const std::uint8_t input[] = {0xE6, 0x0A};
  EXPECT_EQ(Marker(3233, 2753).Decrypt(nullptr, input), 7u + 0x41u);
}

TEST(Rsa, ShapesAndTables) {
  const QLRSADecryptor object(3233, 17);
  const QLCrypter& crypter = object;
  const QLZeroPadding& padding = object;
  const QLDecryptor& decryptor = object;
  const void* const parts[] = {
      &crypter,         &object.status,           &padding,
      &object.function, &object.function.modulus, &object.function.exponent,
      &decryptor};
  EXPECT_TRUE(std::is_sorted(std::begin(parts), std::end(parts)));
  EXPECT_EQ(parts[0], &object);
  using ulm::test::inTableOrder;
  using Function = QLTrapdoorFunction;
  EXPECT_TRUE(inTableOrder(2, &QLPadding::PayloadBits, &QLPadding::Pad, &QLPadding::Unpad));
  EXPECT_TRUE(inTableOrder(2, &QLDecryptor::Decrypt));
  EXPECT_TRUE(inTableOrder(2, &Function::Apply, &Function::InputBound, &Function::OutputBound,
                           &Function::MaxInput, &Function::MaxOutput));
}

// The storage of a key holds only zeros when it is freed, above the words in use too.
TEST(Rsa, DestructionThroughAnyBase) {
  static std::uint64_t wiped = 0, other = 0;
  const QLInteger modulus = PowerOfTwo(2047), exponent(17);
  const std::uint64_t blocks = odrxAllocCounts().liveBlocks;
  odrxAllocWatchFreed([](void* block, std::uint64_t bytes) {
    const auto* const first = static_cast<const std::uint8_t*>(block);
    ++(std::all_of(first, first + bytes, [](std::uint8_t byte) { return byte == 0; }) ? wiped
                                                                                      : other);
  });
  {
    QLRSADecryptor decryptor(modulus, exponent);
    decryptor.function.modulus.Assign(5);
  }
  odrxAllocWatchFreed(nullptr);
  EXPECT_TRUE(wiped == 2 && other == 0) << wiped << ' ' << other;
  delete static_cast<QLCrypter*>(new QLRSADecryptor(3233, 17));
  delete static_cast<QLPadding*>(new QLRSADecryptor(3233, 17));
  delete static_cast<QLZeroPadding*>(new QLRSADecryptor(3233, 17));
  delete static_cast<QLRSABase*>(new QLRSADecryptor(3233, 17));
  delete static_cast<QLDecryptor*>(new QLRSADecryptor(3233, 17));
  delete static_cast<QLTrapdoorFunction*>(new QLRSAFunction(3233, 17));
  EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks);
}

}  // namespace
}  // namespace ulm::bignum::test
