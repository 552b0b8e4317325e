#include "bignum/digest/digest.h"

#include <algorithm>
#include <cstring>

#include "bignum/digest/detail/sha_transform.h"

namespace ulm::bignum {
namespace {

constexpr std::uint32_t kBlockSize = 64;
constexpr std::uint32_t kLengthOffset = 56;  // of the message's length in its last block

// Writes the word as 4 bytes, high byte first.
void storeWord(std::uint8_t* bytes, std::uint32_t word) noexcept {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(word >> (24 - 8 * i));
}

// Transforms sha.block and leaves the bytes of its words reversed.
void transformBlock(QLSHA& sha) noexcept {
  if (detail::shaPath() == detail::ShaPath::Instructions) {
    detail::transformByInstructions(sha.state, sha.block, 1, sha.rotateSchedule != 0);
    // The portable path needs this order. Here it keeps spent objects equal on both paths.
    ReverseWordBytes(sha.block, kBlockSize);
  } else {
    ReverseWordBytes(sha.block, kBlockSize);
    detail::transformPortable(sha.state, sha.block, sha.rotateSchedule != 0);
  }
}

// Transforms `blockCount` blocks of input. The instructions read them without a copy.
void transformInput(QLSHA& sha, const std::uint8_t* bytes, std::uint32_t blockCount) noexcept {
  if (detail::shaPath() == detail::ShaPath::Instructions) {
    detail::transformByInstructions(sha.state, bytes, blockCount, sha.rotateSchedule != 0);
    return;
  }
  for (; blockCount != 0; --blockCount, bytes += kBlockSize) {
    std::memcpy(sha.block, bytes, kBlockSize);
    transformBlock(sha);
  }
}

}  // namespace

QLMessageDigest::~QLMessageDigest() = default;

void QLMessageDigest::Digest(const std::uint8_t* bytes, std::uint32_t length,
                             std::uint8_t* digest) {
  Update(bytes, length);
  Final(digest);
}

QLSHA::QLSHA(bool rotate) : rotateSchedule(rotate ? 1 : 0), block{} { QLSHA::Restart(); }

QLSHA::~QLSHA() = default;

std::uint32_t QLSHA::DigestSize() const { return 20; }

void QLSHA::Restart() {
  state[0] = 0x67452301;
  state[1] = 0xEFCDAB89;
  state[2] = 0x98BADCFE;
  state[3] = 0x10325476;
  state[4] = 0xC3D2E1F0;
  bitCountLow = 0;
  bitCountHigh = 0;
  blockFill = 0;
}

void QLSHA::Update(const std::uint8_t* bytes, std::uint32_t length) {
  if (length == 0) return;  // bytes may be null now
  detail::countBits(bitCountLow, bitCountHigh, length);
  if (blockFill != 0) {
    const std::uint32_t taken = std::min(kBlockSize - blockFill, length);
    std::memcpy(block + blockFill, bytes, taken);
    blockFill += taken;
    if (blockFill < kBlockSize) return;
    transformBlock(*this);
    bytes += taken;
    length -= taken;
  }
  const std::uint32_t blockCount = length / kBlockSize;
  if (blockCount != 0) transformInput(*this, bytes, blockCount);
  blockFill = length % kBlockSize;
  std::memcpy(block, bytes + (length - blockFill), blockFill);
}

void QLSHA::Final(std::uint8_t* digest) {
  // This equals blockFill, but it is an index of the block even in a spent object.
  const std::uint32_t end = (bitCountLow >> 3) & (kBlockSize - 1);
  block[end] = 0x80;
  if (end >= kLengthOffset) {
    std::fill(block + end + 1, block + kBlockSize, std::uint8_t{0});
    transformBlock(*this);
    std::fill(block, block + kLengthOffset, std::uint8_t{0});
  } else {
    std::fill(block + end + 1, block + kLengthOffset, std::uint8_t{0});
  }
  storeWord(block + kLengthOffset, bitCountHigh);
  storeWord(block + kLengthOffset + 4, bitCountLow);
  transformBlock(*this);
  for (const std::uint32_t word : state) {
    storeWord(digest, word);
    digest += 4;
  }
  ReverseWordBytes(state, sizeof state);
}

QLMessageDigest* CreateSHA1() noexcept { return new QLSHA(true); }
QLMessageDigest* CreateSHA0() noexcept { return new QLSHA(false); }

void ReverseWordBytes(void* buffer, std::size_t byteCount) noexcept {
  auto* bytes = static_cast<std::uint8_t*>(buffer);
  for (std::size_t groups = byteCount / 4; groups != 0; --groups, bytes += 4) {
    std::uint32_t word;
    std::memcpy(&word, bytes, 4);
    word = word << 24 | (word & 0xFF00) << 8 | (word >> 8 & 0xFF00) | word >> 24;
    std::memcpy(bytes, &word, 4);
  }
}

}  // namespace ulm::bignum
