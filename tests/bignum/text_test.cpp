#include "bignum/text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "bignum/integer.h"

namespace ulm::bignum::test {
namespace {

TEST(Text, WritesWithMarksAndLeavesTheLastByte) {
  const struct {
    std::int32_t value;
    std::uint32_t radix;
    const char* text;
  } cases[] = {{255, 16, "FFh"}, {255, 10, "255"},   {5, 2, "101b"}, {8, 8, "10o"},    {0, 10, "0"},
               {0, 16, "0h"},    {-255, 16, "-FFh"}, {5, 3, "12|"},  {-80, 15, "-55|"}};
  for (const auto& tested : cases) {
    const auto length = static_cast<std::uint32_t>(std::strlen(tested.text));
    for (std::uint32_t size = 0; size < 10; ++size) {
      std::string buffer(size + 1, '#');
      const std::uint32_t used = ToText(tested.value, buffer.data(), size, tested.radix);
      EXPECT_EQ(used, size < length + 2 ? size : length + 1) << tested.text;
      EXPECT_EQ(buffer[size == 0 ? 0 : size - 1], '#') << tested.text;
      EXPECT_TRUE(used == size || buffer.c_str() == std::string(tested.text)) << tested.text;
    }
  }
  for (const std::uint32_t radix : {0u, 1u, 17u, 0x80000000u}) {
    char buffer[] = "##";
    EXPECT_EQ(ToText(7, buffer, 0, radix), 0u);
    EXPECT_STREQ(buffer, "##");
    EXPECT_EQ(ToText(7, buffer, 2, radix), 2u);
    EXPECT_STREQ(buffer, "");
  }
  char buffer[] = "#";
  EXPECT_FALSE(PutChar('x', 0, buffer, 0));
  EXPECT_FALSE(PutChar('x', 0, buffer, 0x80000001));  // size - 1 is below zero as a signed number
  EXPECT_TRUE(PutChar('x', 0, buffer, 2));
}

TEST(Text, MovesMagnitudesAndHexadecimalBytes) {
  const struct {
    std::int32_t value;
    std::uint32_t size;
    const char* hex;
  } values[] = {{-1, 6, "01000000FFFF"}, {258, 1, "02"}, {7, 5, "0700000000"}, {-2, 4, "02000000"}};
  char hex[17] = "#";
  std::uint8_t bytes[8] = {0x5C};
  EXPECT_EQ(BytesToHex(hex, 2, bytes, 1), 3u);
  EXPECT_STREQ(hex, "#");
  for (const auto& tested : values) {
    ToBytes(tested.value, bytes, tested.size);
    EXPECT_EQ(BytesToHex(hex, 2 * tested.size + 1, bytes, tested.size), 2 * tested.size + 1);
    EXPECT_STREQ(hex, tested.hex);
  }
  EXPECT_EQ(BytesToHex(hex, 1, nullptr, 0), 1u);
  EXPECT_STREQ(hex, "");
  const struct {
    const char* text;
    std::uint32_t size;
    std::int32_t result;
    const char* hex;  // of the buffer of 4, which held EE
  } texts[] = {{"0aF", 2, 1, "0AF0EEEE"}, {"12 34", 3, 2, "123400EE"}, {"12 34", 2, 3, "EEEEEEEE"},
               {"", 0, 0, "EEEEEEEE"},    {"xyz!", 2, 0, "0000EEEE"},  {"fF", 1, 1, "FFEEEEEE"}};
  for (const auto& tested : texts) {
    std::fill_n(bytes, 4, std::uint8_t{0xEE});
    EXPECT_EQ(HexToBytes(bytes, tested.size, tested.text), tested.result) << tested.text;
    BytesToHex(hex, 9, bytes, 4);
    EXPECT_STREQ(hex, tested.hex);
  }
}

TEST(Text, DigitsHaveValuesBelowTheirRadix) {
  const std::string digits = "0123456789ABCDEF";
  for (int c = -128; c < 128; ++c) {
    const auto position = digits.find(static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c));
    const int value = position == std::string::npos ? -1 : static_cast<int>(position);
    EXPECT_EQ(DigitValue(static_cast<char>(c)), value) << c;
    EXPECT_EQ(DigitValue(static_cast<char>(c), 8), value < 8 ? value : -1) << c;
  }
}

}  // namespace
}  // namespace ulm::bignum::test
