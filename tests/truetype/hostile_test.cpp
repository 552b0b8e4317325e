// Damaged fonts: whatever the bytes say, reading ends and stays inside the image, which lies in a
// heap block of its exact size, and so does making a subset, which keeps what is whole.
#include <gtest/gtest.h>

#include <random>

#include "tests/support/font_image.h"
#include "tests/truetype/exercise.h"
#include "tests/truetype/rich_font.h"
#include "tests/truetype/subset_check.h"

namespace {

using namespace ulm::test;
using namespace ulm::truetype;

void exercise(const Bytes& image, std::uint32_t face = 0) {
  const OpenFont font(image, face);
  EXPECT_EQ(font.get() != nullptr, font.result == FontResultOk);
  if (font.get() != nullptr) {
    EXPECT_EQ(exerciseFont(font.get(), 64), 0);
    EXPECT_EQ(checkSubset(font.get(), {0, 4, 1, 3, 9}, SubsetKeepOS2), 0);
  }
}

TEST(Hostile, EveryTruncation) {
  for (const Bytes& whole : {richFont().build(), richFont().collection(2)}) {
    for (std::size_t size = 0; size < whole.size(); ++size) {
      Bytes image = whole;
      image.resize(size);
      exercise(image, 1);
    }
    const OpenFont font(whole, 1);
    EXPECT_EQ(font.result, FontResultOk);
  }
}

TEST(Hostile, EveryByteChanged) {
  const Bytes whole = richFont().build();
  for (std::size_t place = 0; place < whole.size(); ++place) {
    for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
      Bytes image = whole;
      image[place] = static_cast<std::uint8_t>(value);
      exercise(image);
    }
  }
}

TEST(Hostile, RandomMutations) {
  std::mt19937 random(20);
  const Bytes whole = richFont().build();
  for (int round = 0; round < 1000; ++round) {
    Bytes image = whole;
    for (unsigned changes = 1 + random() % 8; changes > 0; --changes) {
      image[random() % image.size()] = static_cast<std::uint8_t>(random());
    }
    exercise(image);
  }
}

}  // namespace
