// Both hashes on both transforms: published answers, all lengths and splits, and the fields of an
// object.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "bignum/digest/detail/sha_transform.h"
#include "bignum/digest/digest.h"
#include "bignum/text.h"
#include "standin/odrx/alloc_control.h"
#include "tests/support/table_place.h"
#include "tests/support/vector_blocks.h"

namespace ulm::bignum::test {
namespace {

using detail::ShaPath;
using Bytes = std::vector<std::uint8_t>;

// Bytes without a period that blocks or words could hide.
Bytes messageOf(std::size_t length) {
  Bytes message(length);
  std::uint32_t mixed = 1;
  for (std::uint8_t& byte : message) {
    mixed = mixed * 1664525 + 1013904223;
    byte = static_cast<std::uint8_t>(mixed >> 24);
  }
  return message;
}

Bytes bytesOf(const char* hex) {
  Bytes bytes(20);
  EXPECT_EQ(HexToBytes(bytes.data(), 20, hex), 20);
  return bytes;
}

// In one call, with heap blocks of the exact sizes.
Bytes digestOf(QLSHA& sha, const Bytes& message) {
  Bytes digest(20);
  sha.Digest(message.data(), static_cast<std::uint32_t>(message.size()), digest.data());
  return digest;
}

// Each hash on each transform that the processor can run.
class Digests : public testing::TestWithParam<std::tuple<ShaPath, bool>> {
 protected:
  void SetUp() override {
    if (path == ShaPath::Instructions && !detail::haveShaInstructions()) GTEST_SKIP();
    detail::setShaPath(path);
  }
  void TearDown() override { detail::setShaPath(ShaPath::Unknown); }
  const ShaPath path = std::get<0>(GetParam());
  const bool rotate = std::get<1>(GetParam());
  QLSHA sha{rotate};
  // An answer of another program (tests/data/bignum/README.md) for the hash under test.
  Bytes answer(const char* sha0, const char* sha1) const { return bytesOf(rotate ? sha1 : sha0); }
};
INSTANTIATE_TEST_SUITE_P(Both, Digests,
                         testing::Combine(testing::Values(ShaPath::Portable, ShaPath::Instructions),
                                          testing::Bool()));

TEST_P(Digests, PublishedAnswers) {
  for (auto& block : ulm::test::readVectorBlocks(ULM_TEST_DATA "/bignum/digests.txt")) {
    const std::string text = block.text("Text");
    Bytes message;
    for (auto times = block.numbers("Times").at(0); times > 0; --times) {
      message.insert(message.end(), text.begin(), text.end());
    }
    if ((block.text("Hash") == "sha1") != rotate) continue;
    sha.Restart();
    EXPECT_EQ(digestOf(sha, message), bytesOf(block.text("Digest").c_str())) << block.where();
  }
}

// Each length, cut at each index and in slices, at all alignments, with one object.
TEST_P(Digests, EverySplitOfEveryLength) {
  Bytes all;
  for (std::uint32_t length = 0; length <= 300; ++length) {
    const Bytes message = messageOf(length);
    const Bytes expected = digestOf(*std::make_unique<QLSHA>(rotate), message);
    all.insert(all.end(), expected.begin(), expected.end());
    Bytes moved(length % 17 + length), digest(20);  // ends at the end of its heap block
    std::copy(message.begin(), message.end(), moved.end() - static_cast<std::ptrdiff_t>(length));
    const std::uint8_t* bytes = moved.data() + length % 17;
    for (std::uint32_t cut = 0; cut <= length; ++cut) {
      sha.Restart();
      sha.Update(bytes, cut);
      sha.Update(nullptr, 0);
      ASSERT_EQ(sha.blockFill, cut % 64);
      sha.Digest(bytes + cut, length - cut, digest.data());
      ASSERT_EQ(digest, expected) << length << " cut at " << cut;
    }
    const std::uint32_t slice = length % 67 + 1;
    sha.Restart();
    for (std::uint32_t at = 0; at < length; at += slice) {
      sha.Update(bytes + at, std::min(slice, length - at));
    }
    sha.Final(digest.data());
    ASSERT_EQ(digest, expected) << length << " by " << slice;
  }
  sha.Restart();
  EXPECT_EQ(digestOf(sha, all), answer("bebd9a802e35f1f8311a4e71e1fdb203b39790a8",
                                       "82fa681882e216468817eb177e7bd316f8cdcbfe"));
}

TEST_P(Digests, CountsBeyond32Bits) {
  sha.bitCountLow = 0xFFFFFE00;  // as after 2^29 - 64 bytes that did not change the state
  sha.bitCountHigh = 7;
  EXPECT_EQ(digestOf(sha, messageOf(67)), answer("a5671d88447236513dec576eee4338e796f0faf2",
                                                 "dec41b1907e66e74333de28b5ed84d7e223b5f4c"));
  EXPECT_TRUE(sha.bitCountLow == 24 && sha.bitCountHigh == 8);
  sha.Restart();
  EXPECT_TRUE(sha.bitCountLow == 0 && sha.bitCountHigh == 0);

  std::uint32_t rows[][5] = {{0, 0, 0x1FFFFFFF, 0xFFFFFFF8, 0},
                             {0, 0, 0x20000000, 0, 1},
                             {8, 5, 0xFFFFFFFF, 0, 13},
                             {0xFFFFFFF8, 3, 0xFFFFFFFF, 0xFFFFFFF0, 11},
                             {0xFFFFFFF8, 0xFFFFFFFF, 1, 0, 0}};
  for (auto& [low, high, length, newLow, newHigh] : rows) {
    detail::countBits(low, high, length);
    EXPECT_TRUE(low == newLow && high == newHigh) << length;
  }
}

// The digests of a spent object have no meaning, but they are the same on both transforms.
TEST_P(Digests, SpentObjectsDoNoHarm) {
  for (const std::uint32_t length : {0u, 3u, 60u, 64u, 150u}) {
    const Bytes message = messageOf(length);
    Bytes results[2];
    for (const ShaPath taken : {path, ShaPath::Portable}) {
      detail::setShaPath(taken);
      sha.Restart();
      const Bytes first = digestOf(sha, message);
      EXPECT_TRUE(sha.bitCountLow == 8 * length && sha.blockFill == length % 64);
      ReverseWordBytes(sha.state, 20);
      for (std::size_t i = 0; i < 20; ++i) {  // H0 is the first word, each with its high byte first
        EXPECT_EQ(first[i], sha.state[i / 4] >> (24 - i % 4 * 8) & 0xFF);
      }
      digestOf(sha, {});
      results[taken == path ? 0 : 1] = digestOf(sha, message);
    }
    if (path != ShaPath::Portable) {
      EXPECT_EQ(results[0], results[1]);
    }
  }
  EXPECT_EQ(sha.rotateSchedule, rotate ? 1 : 0);
}

TEST(Digest, FieldsAndTable) {
  const QLSHA sha(true);
  EXPECT_THAT(sha.state,
              testing::ElementsAre(0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0));
  const void* const fields[] = {
      &sha,       &sha.rotateSchedule, &sha.state, &sha.bitCountLow, &sha.bitCountHigh,
      &sha.block, &sha.blockFill,      &sha + 1};
  EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields)));
  const std::size_t fieldBytes = sizeof(void*) + 4 + 20 + 8 + 64 + 4;
  EXPECT_EQ(sizeof sha, (fieldBytes + alignof(QLSHA) - 1) / alignof(QLSHA) * alignof(QLSHA));
  using Table = QLMessageDigest;
  EXPECT_TRUE(ulm::test::inTableOrder(2, &Table::DigestSize, &Table::Restart, &Table::Update,
                                      &Table::Final, &Table::Digest));
}

// Digest calls the operations of the subclass and does not restart.
TEST(Digest, DigestIsUpdateAndFinal) {
  struct Recorder : QLMessageDigest {
    std::string calls;
    std::uint32_t DigestSize() const override { return 1; }
    void Restart() override { calls += "restart "; }
    void Update(const std::uint8_t* bytes, std::uint32_t length) override {
      calls += "update " + std::to_string(bytes[0] + length) + ' ';
    }
    void Final(std::uint8_t* digest) override { calls += "final " + std::to_string(*digest); }
  } recorder;
  std::uint8_t bytes[] = {5}, out[] = {7};
  recorder.Digest(bytes, 10, out);
  EXPECT_EQ(recorder.calls, "update 15 final 7");
}

TEST(Digest, FactoriesUseTheRuntimesMemory) {
  const std::uint64_t blocks = odrxAllocCounts().liveBlocks;
  for (const auto create : {CreateSHA1, CreateSHA0}) {
    std::unique_ptr<QLMessageDigest> made(create());
    EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks + 1);
    EXPECT_EQ(static_cast<QLSHA&>(*made).rotateSchedule, create == CreateSHA1 ? 1 : 0);
    EXPECT_EQ(made->DigestSize(), 20u);
    made.reset();
    EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks);
    made.reset(new (std::nothrow) QLSHA(true));
    EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks + 1);
  }
}

TEST(Digest, WordsTurned) {
  EXPECT_EQ(RotateLeft(0x80000001, 0), 0x80000001);
  EXPECT_EQ(RotateLeft(0x80000001, 31), 0xC0000000);
  EXPECT_EQ(RotateLeft(0x80000001, 33), 3u);
  Bytes bytes = {9, 1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12};
  ReverseWordBytes(bytes.data() + 1, 11);
  EXPECT_EQ(bytes, (Bytes{9, 4, 3, 2, 1, 8, 7, 6, 5, 10, 11, 12}));
}

// The first use in the process determines the transform, in any thread.
TEST(Digest, ThreadsHaveObjectsOfTheirOwn) {
  detail::setShaPath(ShaPath::Unknown);
  Bytes results[4];
  std::vector<std::thread> threads;
  for (Bytes& result : results) {
    threads.emplace_back([&] {
      QLSHA sha(true);
      result = digestOf(sha, messageOf(5000));
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_THAT(results, testing::Each(bytesOf("e12f2d8294f1b7b417c7754cf7a10ad533347e7c")));
}

}  // namespace
}  // namespace ulm::bignum::test
