#include "bignum/text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "bignum/integer.h"
#include "tests/bignum/operands.h"

namespace ulm::bignum::test {
namespace {

TEST(Text, ReadsWhatItCan) {
  const std::pair<const char*, std::int32_t> cases[] = {{"-0x1F", -31},
                                                        {"1Fh", 31},
                                                        {"1fH", 31},
                                                        {"0x12h", 18},
                                                        {"101b", 5},
                                                        {"17o", 15},
                                                        {"0x17o", 15},
                                                        {"0x1B", 27},
                                                        {"0X1b", 27},
                                                        {"1B", 1},
                                                        {"+42", 42},
                                                        {"12a4", 124},
                                                        {"-+5", -5},
                                                        {"1,000", 1000},
                                                        {"129b", 1},
                                                        {"-0", 0},
                                                        {"h", 0},
                                                        {"0x", 0},
                                                        {"", 0},
                                                        {"-", 0},
                                                        {"+", 0},
                                                        {"b", 0},
                                                        {"xo", 0},
                                                        {"0b", 0},
                                                        {"0xh", 0},
                                                        {"0018", 18},
                                                        {"0xO", 0},
                                                        {"\xE4"
                                                         "5",
                                                         5},
                                                        {"-B", 0}};
  for (const auto& [text, number] : cases) {
    QLInteger value = patterned(33, 1, 0, true);
    FromText(value, text);
    EXPECT_EQ(value, number) << text;
    EXPECT_TRUE(isNormal(value)) << text;
    EXPECT_EQ(value.capacity, number == 0 ? 64u : value.capacity) << text;
  }
}

TEST(Text, WritesWithMarksAndLeavesTheLastByte) {
  const struct {
    std::int32_t value;
    std::uint32_t radix;
    const char* text;
  } cases[] = {{255, 16, "FFh"}, {255, 10, "255"},   {5, 2, "101b"},
               {8, 8, "10o"},    {-255, 16, "-FFh"}, {0, 10, "0"},
               {0, 16, "0h"},    {5, 3, "12|"},      {-80, 15, "-55|"}};
  for (const auto& tested : cases) {
    SCOPED_TRACE(tested.text);
    const auto length = static_cast<std::uint32_t>(std::strlen(tested.text));
    for (std::uint32_t size = 0; size < 10; ++size) {
      std::string buffer(size + 1, '#');
      const std::uint32_t used = ToText(tested.value, buffer.data(), size, tested.radix);
      EXPECT_EQ(used, size < length + 2 ? size : length + 1);
      EXPECT_EQ(buffer[size == 0 ? 0 : size - 1], '#');  // never uses the last byte
      if (used == size) continue;
      EXPECT_STREQ(buffer.c_str(), tested.text);
    }
  }
  for (const std::uint32_t radix : {0u, 1u, 17u, 0x80000000u}) {
    char buffer[] = "##";
    EXPECT_EQ(ToText(7, buffer, 0, radix), 0u);
    EXPECT_EQ(buffer[0], '#');
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
  } magnitudes[] = {
      {-1, 6, "01000000FFFF"}, {0x0102, 1, "02"}, {7, 5, "0700000000"}, {-2, 4, "02000000"}};
  for (const auto& tested : magnitudes) {
    std::uint8_t bytes[8] = {};
    ToBytes(tested.value, bytes, tested.size);
    char hex[17];
    EXPECT_EQ(BytesToHex(hex, 17, bytes, tested.size), 2 * tested.size + 1);
    EXPECT_STREQ(hex, tested.hex);
  }
  const struct {
    const char* text;
    std::uint32_t size;
    std::int32_t result;
    const char* hex;
  } texts[] = {{"0aF", 2, 1, "0AF0"}, {"12 34", 3, 2, "123400"}, {"12 34", 2, 3, "EEEE"},
               {"", 0, 0, ""},        {"xyz!", 2, 0, "0000"},    {"fF", 1, 1, "FF"}};
  for (const auto& tested : texts) {
    std::uint8_t bytes[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    EXPECT_EQ(HexToBytes(bytes, tested.size, tested.text), tested.result) << tested.text;
    char hex[9];
    BytesToHex(hex, 9, bytes, tested.size);
    EXPECT_STREQ(hex, tested.hex);
    EXPECT_EQ(bytes[tested.size], 0xEE);
  }
  char hex[] = "#";
  const std::uint8_t byte = 0x5C;
  EXPECT_EQ(BytesToHex(hex, 2, &byte, 1), 3u);
  EXPECT_EQ(hex[0], '#');
  EXPECT_EQ(BytesToHex(hex, 1, nullptr, 0), 1u);
  EXPECT_STREQ(hex, "");
}

TEST(Text, DigitsHaveValuesBelowTheirRadix) {
  const std::string digits = "0123456789ABCDEF";
  for (int c = -128; c < 128; ++c) {
    const auto position = digits.find(static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c));
    const int value = c == 0 || position == std::string::npos ? -1 : static_cast<int>(position);
    EXPECT_EQ(DigitValue(static_cast<char>(c)), value) << c;
    EXPECT_EQ(DigitValue(static_cast<char>(c), 8), value < 8 ? value : -1) << c;
  }
}

}  // namespace
}  // namespace ulm::bignum::test
