// Both hashes on both transforms: published answers, a model, and what an object shows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <thread>
#include <tuple>

#include "bignum/detail/sha_transform.h"
#include "bignum/sha.h"
#include "platform/odrx/alloc_control.h"
#include "tests/bignum/sha_model.h"
#include "tests/support/table_place.h"
#include "tests/support/vector_blocks.h"

namespace ulm::bignum::test {
namespace {

using detail::ShaPath;
using Bytes = std::vector<std::uint8_t>;
using Owned = std::unique_ptr<QLMessageDigest>;

std::uint32_t sizeOf(const Bytes& bytes) { return static_cast<std::uint32_t>(bytes.size()); }

Bytes finalOf(QLMessageDigest& digest) {
  Bytes out(20);  // an exact heap block
  digest.Final(out.data());
  return out;
}

std::string hexOf(const Bytes& bytes) {
  std::string hex;
  for (const std::uint8_t byte : bytes) {
    hex += "0123456789abcdef"[byte >> 4];
    hex += "0123456789abcdef"[byte & 15];
  }
  return hex;
}

// Runs on each transform that there is, for each hash.
class Digests : public testing::TestWithParam<std::tuple<ShaPath, bool>> {
 protected:
  void SetUp() override {
    if (path() == ShaPath::Instructions && !detail::haveShaInstructions()) GTEST_SKIP();
    detail::setShaPath(path());
  }
  void TearDown() override { detail::setShaPath(ShaPath::Unknown); }
  ShaPath path() const { return std::get<0>(GetParam()); }
  bool rotate() const { return std::get<1>(GetParam()); }
};

std::string digestsName(const testing::TestParamInfo<Digests::ParamType>& info) {
  return std::string(std::get<1>(info.param) ? "Sha1" : "Sha0") +
         (std::get<0>(info.param) == ShaPath::Portable ? "Portable" : "Instructions");
}
INSTANTIATE_TEST_SUITE_P(Both, Digests,
                         testing::Combine(testing::Values(ShaPath::Portable, ShaPath::Instructions),
                                          testing::Bool()),
                         digestsName);

TEST_P(Digests, PublishedAnswers) {
  int rows = 0;
  for (auto& block : ulm::test::readVectorBlocks(ULM_TEST_DATA "/bignum/digests.txt")) {
    const std::string text = block.text("Text");
    const auto times = block.numbers("Times").at(0);
    const std::string expected = block.text("Digest");
    if ((block.text("Hash") == "sha1") != rotate()) continue;
    block.expectAllUsed();
    Bytes message;
    for (int i = 0; i < times; ++i) message.insert(message.end(), text.begin(), text.end());
    QLSHA sha(rotate());
    sha.Update(message.data(), sizeOf(message));
    EXPECT_EQ(hexOf(finalOf(sha)), expected) << block.where();
    EXPECT_EQ(hexOf(modelDigest(message, rotate())), expected) << block.where();
    ++rows;
  }
  EXPECT_GE(rows, 4);
}

// Each length, cut in two at each place and in slices of each size up to it, at all alignments; one
// object serves for all.
TEST_P(Digests, EverySplitOfEveryLength) {
  QLSHA sha(rotate());
  for (std::size_t length = 0; length <= 300; ++length) {
    const Bytes message = messageOf(length);
    const Bytes expected = modelDigest(message, rotate());
    const std::size_t shift = length % 17;
    Bytes moved(shift + length);  // ends where its block does
    std::copy(message.begin(), message.end(), moved.begin() + static_cast<std::ptrdiff_t>(shift));
    const std::uint8_t* bytes = moved.data() + shift;
    for (std::size_t cut = 0; cut <= length; ++cut) {
      sha.Restart();
      sha.Update(bytes, static_cast<std::uint32_t>(cut));
      ASSERT_EQ(sha.blockFill, cut % 64);
      sha.Update(nullptr, 0);
      sha.Update(bytes + cut, static_cast<std::uint32_t>(length - cut));
      ASSERT_EQ(sha.bitCountLow, 8 * length);
      ASSERT_EQ(finalOf(sha), expected) << length << " cut at " << cut;
    }
    const std::size_t slice = length % 67 + 1;
    sha.Restart();
    for (std::size_t at = 0; at < length; at += slice) {
      sha.Update(bytes + at, static_cast<std::uint32_t>(std::min(slice, length - at)));
    }
    ASSERT_EQ(finalOf(sha), expected) << length << " by " << slice;
    ASSERT_TRUE(std::equal(message.begin(), message.end(), bytes)) << "the input has changed";
  }
}

TEST_P(Digests, CountsBeyond32Bits) {
  const Bytes message = messageOf(67);
  QLSHA sha(rotate());
  sha.bitCountLow = 0xFFFFFE00;  // as after 2^29 - 64 bytes that left the state as it was
  sha.bitCountHigh = 7;
  sha.Update(message.data(), sizeOf(message));
  EXPECT_EQ(sha.bitCountLow, 24u);
  EXPECT_EQ(sha.bitCountHigh, 8u);
  EXPECT_EQ(finalOf(sha), modelDigest(message, rotate(), 0x7FFFFFE00));
}

// What a spent object gives means nothing, but it is the same on both transforms.
TEST_P(Digests, SpentObjectsDoNoHarm) {
  Bytes results[2];
  for (const ShaPath taken : {path(), ShaPath::Portable}) {
    detail::setShaPath(taken);
    for (const std::size_t length : {0u, 3u, 60u, 64u, 150u}) {
      const Bytes message = messageOf(length);
      QLSHA sha(rotate());
      sha.Update(message.data(), sizeOf(message));
      const Bytes first = finalOf(sha);
      for (int i = 0; i < 5; ++i) {  // byte-reversed
        std::uint32_t word = 0;
        for (int k = 3; k >= 0; --k) word = word << 8 | first[static_cast<std::size_t>(4 * i + k)];
        EXPECT_EQ(sha.state[i], word);
      }
      EXPECT_EQ(sha.bitCountLow, 8 * length);
      EXPECT_EQ(sha.blockFill, length % 64);
      finalOf(sha);
      sha.Update(message.data(), sizeOf(message));
      Bytes& result = results[taken == path() ? 0 : 1];
      for (const std::uint8_t byte : finalOf(sha)) result.push_back(byte);
      sha.Restart();
      EXPECT_EQ(sha.rotateSchedule, rotate() ? 1 : 0);
      sha.Update(message.data(), sizeOf(message));
      EXPECT_EQ(finalOf(sha), first);
    }
  }
  if (path() != ShaPath::Portable) {
    EXPECT_EQ(results[0], results[1]);
  }
}

TEST(Digest, CountOfBitsCarries) {
  const std::uint32_t rows[][5] = {{0, 0, 0x1FFFFFFF, 0xFFFFFFF8, 0},
                                   {0, 0, 0x20000000, 0, 1},
                                   {0xFFFFFFF8, 0, 1, 0, 1},
                                   {8, 5, 0xFFFFFFFF, 0, 13},
                                   {0xFFFFFFF8, 3, 0xFFFFFFFF, 0xFFFFFFF0, 11},
                                   {0xFFFFFFF8, 0xFFFFFFFF, 1, 0, 0}};
  for (const auto& [low, high, length, newLow, newHigh] : rows) {
    std::uint32_t l = low, h = high;
    detail::countBits(l, h, length);
    EXPECT_EQ(l, newLow) << length;
    EXPECT_EQ(h, newHigh) << length;
  }
}

TEST(Digest, ShowsItsFieldsInOrder) {
  const QLSHA sha(true);
  EXPECT_TRUE(sha.rotateSchedule == 1 && QLSHA(false).rotateSchedule == 0);
  EXPECT_THAT(sha.state,
              testing::ElementsAre(0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0));
  const void* const fields[] = {
      &sha,       &sha.rotateSchedule, &sha.state, &sha.bitCountLow, &sha.bitCountHigh,
      &sha.block, &sha.blockFill,      &sha + 1};
  EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields)));
  EXPECT_EQ(sizeof sha, sizeof(void*) + 4 + 20 + 8 + 64 + 4 + 4);
  using ulm::test::tablePlace;
  EXPECT_EQ(tablePlace(&QLMessageDigest::DigestSize), 2u);
  EXPECT_EQ(tablePlace(&QLMessageDigest::Restart), 3u);
  EXPECT_EQ(tablePlace(&QLMessageDigest::Update), 4u);
  EXPECT_EQ(tablePlace(&QLMessageDigest::Final), 5u);
  EXPECT_EQ(tablePlace(&QLMessageDigest::Digest), 6u);
}

// Digest goes on with what the object holds, through the operations of the subclass.
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

  const Bytes message = messageOf(100);
  const Owned sha(CreateSHA1());
  Bytes digest(sha->DigestSize());
  sha->Update(message.data(), 30);
  sha->Digest(message.data() + 30, 70, digest.data());
  EXPECT_EQ(digest, modelDigest(message, true));
}

TEST(Digest, FactoriesUseTheRuntimesMemory) {
  const std::uint64_t blocks = odrxAllocCounts().liveBlocks;
  for (const auto create : {CreateSHA1, CreateSHA0}) {
    {
      const Owned made(create());
      EXPECT_EQ(static_cast<QLSHA&>(*made).rotateSchedule, create == CreateSHA1 ? 1 : 0);
      EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks + 1);
      const Bytes message = messageOf(1000);
      const std::uint64_t calls = odrxAllocCounts().calls;
      made->Update(message.data(), sizeOf(message));
      EXPECT_EQ(odrxAllocCounts().calls, calls);
    }
    EXPECT_EQ(odrxAllocCounts().liveBlocks, blocks);
    static bool called = false;
    const auto old = std::set_new_handler([] { called = true; });
    odrxAllocFail(0, 1);
    EXPECT_EQ(create(), nullptr);
    std::set_new_handler(old);
    EXPECT_FALSE(called);
  }
}

TEST(Digest, Words) {
  EXPECT_EQ(RotateLeft(0x80000001, 0), 0x80000001);
  EXPECT_EQ(RotateLeft(0x80000001, 1), 3u);
  EXPECT_EQ(RotateLeft(0x80000001, 31), 0xC0000000);
  EXPECT_EQ(RotateLeft(0x80000001, 33), 3u);
  Bytes bytes = {9, 1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12};
  ReverseWordBytes(bytes.data() + 1, 11);
  EXPECT_EQ(bytes, (Bytes{9, 4, 3, 2, 1, 8, 7, 6, 5, 10, 11, 12}));
  ReverseWordBytes(nullptr, 0);
}

// The first use of all finds the transform out, in whatever thread.
TEST(Digest, ThreadsHaveObjectsOfTheirOwn) {
  detail::setShaPath(ShaPath::Unknown);
  const Bytes message = messageOf(5000);
  Bytes results[4];
  std::vector<std::thread> threads;
  for (Bytes& result : results) {
    threads.emplace_back([&] {
      QLSHA sha(true);
      sha.Update(message.data(), sizeOf(message));
      result = finalOf(sha);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const Bytes& result : results) EXPECT_EQ(result, modelDigest(message, true));
}

}  // namespace
}  // namespace ulm::bignum::test
