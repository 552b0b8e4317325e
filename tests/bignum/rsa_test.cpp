// Padding, and the RSA classes: answers, the shape of the objects, their ends.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "bignum/rsa.h"
#include "platform/odrx/alloc_control.h"
#include "tests/support/table_place.h"

namespace ulm::bignum::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(ZeroPadding, PadsAndUnpads) {
  const QLZeroPadding padding;
  EXPECT_EQ(padding.PayloadBits(0xFFFFFFFF), 0xFFFFFFFF);
  const struct {
    Bytes input;
    std::uint32_t inputBits, outputBits;
    Bytes output;
  } pads[] = {{{0x41, 0xF2, 0x43}, 12, 32, {0x41, 0xF2, 0, 0}},
              {{0x41, 0x42, 0x43, 0x44}, 32, 12, {0x41, 0x42}},
              {{}, 0, 17, {0, 0, 0}},
              {{0x41}, 8, 0, {}}};
  for (const auto& row : pads) {
    Bytes output(row.output.size(), 0xEE);  // an exact heap block
    padding.Pad(row.input.data(), row.inputBits, output.data(), row.outputBits);
    EXPECT_EQ(output, row.output);
  }
  const struct {
    Bytes input;
    std::uint32_t bits, expected;
    Bytes output;
  } unpads[] = {{{0x41, 0x42, 0, 0}, 32, 16, {0x41, 0x42}},
                {{0x41, 0x42, 0x43, 0x44}, 32, 32, {0x41, 0x42, 0x43, 0x44}},
                {{0, 0, 7}, 19, 19, {0, 0, 7}},
                {{0x41, 0}, 12, 4, {0x41}},
                {{0, 0}, 16, 0, {}},
                {{0, 0}, 12, 0, {}},  // the steps of 8 stop at 0
                {{}, 0, 0, {}}};
  for (const auto& row : unpads) {
    Bytes output(row.output.size());
    EXPECT_EQ(padding.Unpad(row.input.data(), row.bits, output.data()), row.expected);
    EXPECT_EQ(output, row.output);
  }
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
              {3233, 0, {0xE6, 0x0A}, 1, {1}},
              {65537, 1, {0, 0, 1}, 17, {0, 0, 1}},
              {1, 1, {}, 0, {}},
              {0, 3, {}, 0, {}},
              {-33, 3, {}, 0, {}}};
  for (const auto& row : rows) {
    QLRSADecryptor decryptor(row.modulus, row.exponent);
    Bytes output(row.input.size(), 0xEE), expected = row.output;
    expected.resize(output.size(), 0xEE);  // nothing behind the result is written
    EXPECT_EQ(decryptor.Decrypt(output.data(), row.input.data()), row.bits) << row.modulus;
    EXPECT_EQ(output, expected) << row.modulus;
    decryptor.status = 0x80000000;
    EXPECT_EQ(decryptor.Decrypt(nullptr, nullptr), 0u);
  }
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
  using ulm::test::tablePlace;
  using Function = QLTrapdoorFunction;
  const std::size_t places[] = {
      tablePlace(&QLPadding::PayloadBits), tablePlace(&QLPadding::Pad),
      tablePlace(&QLPadding::Unpad),       tablePlace(&QLDecryptor::Decrypt),
      tablePlace(&Function::Apply),        tablePlace(&Function::InputBound),
      tablePlace(&Function::OutputBound),  tablePlace(&Function::MaxInput),
      tablePlace(&Function::MaxOutput)};
  EXPECT_THAT(places, testing::ElementsAre(2, 3, 4, 2, 2, 3, 4, 5, 6));
}

template <class Base, class Object>
void destroyThrough() {
  const std::uint64_t blocks = odrxAllocCounts().liveBlocks;
  std::unique_ptr<Base> base(new Object(3233, 17));
  EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks + 2);  // copies of both numbers
  base.reset();
  EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks);
}

TEST(Rsa, DestructionThroughAnyBase) {
  destroyThrough<QLCrypter, QLRSADecryptor>();
  destroyThrough<QLPadding, QLRSADecryptor>();
  destroyThrough<QLZeroPadding, QLRSADecryptor>();
  destroyThrough<QLRSABase, QLRSADecryptor>();
  destroyThrough<QLDecryptor, QLRSADecryptor>();
  destroyThrough<QLTrapdoorFunction, QLRSAFunction>();
}

}  // namespace
}  // namespace ulm::bignum::test
