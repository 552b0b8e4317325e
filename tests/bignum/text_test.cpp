#include "bignum/text.h"

#include <gtest/gtest.h>

#include <string>

#include "bignum/integer.h"

namespace ulm::bignum::test {
namespace {

TEST(Text, WritesWithMarksAndKeepsToTheBuffer) {
  for (const std::int32_t value : {0, 5, -255}) {
    for (std::uint32_t radix = 2; radix <= 16; ++radix) {
      const std::string text = toString(value, radix);
      for (std::uint32_t size = 0; size < text.size() + 5; ++size) {
        std::string buffer(size + 1, '#');
        const std::uint32_t used = ToText(value, buffer.data(), size, radix);
        EXPECT_EQ(used, size < text.size() + 2 ? size : text.size() + 1) << text;
        EXPECT_EQ(buffer[size == 0 ? 0 : size - 1], '#') << text;
        EXPECT_TRUE(used == size || buffer.c_str() == text) << text;
      }
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
  const std::uint8_t byte = 0x5C;
  EXPECT_EQ(BytesToHex(buffer, 2, &byte, 1), 3u);
  EXPECT_STREQ(buffer, "#");
  EXPECT_FALSE(PutChar('x', 0, buffer, 0x80000001));  // size - 1 is below zero as a signed number
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
