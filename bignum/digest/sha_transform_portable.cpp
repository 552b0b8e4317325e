// The compression function of FIPS 180 and 180-1 in portable arithmetic, and the choice between it
// and the instructions of the processor.
#include <atomic>

#include "bignum/digest/detail/sha_transform.h"
#include "bignum/digest/digest.h"

namespace ulm::bignum::detail {
namespace {

template <bool Rotate>
void expandSchedule(std::uint32_t (&w)[80]) noexcept {
  for (int t = 16; t < 80; ++t) {
    const std::uint32_t sum = w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16];
    w[t] = Rotate ? RotateLeft(sum, 1) : sum;
  }
}

// The function and the constant of round `Round`, 0 to 3.
template <int Round>
constexpr std::uint32_t mixed(std::uint32_t b, std::uint32_t c, std::uint32_t d) noexcept {
  if constexpr (Round == 0) return (d ^ (b & (c ^ d))) + 0x5A827999;
  if constexpr (Round == 1) return (b ^ c ^ d) + 0x6ED9EBA1;
  if constexpr (Round == 2) return ((b & c) | (d & (b | c))) + 0x8F1BBCDC;
  if constexpr (Round == 3) return (b ^ c ^ d) + 0xCA62C1D6;
}

// One step. After it e holds what the standards call a, a holds b, and so on.
template <int Round>
[[gnu::always_inline]] inline void step(std::uint32_t a, std::uint32_t& b, std::uint32_t c,
                                        std::uint32_t d, std::uint32_t& e,
                                        std::uint32_t word) noexcept {
  e += word + mixed<Round>(b, c, d) + RotateLeft(a, 5);
  b = RotateLeft(b, 30);
}

// Five steps, after which each variable has its own name again.
template <int Round>
[[gnu::always_inline]] inline void fiveSteps(std::uint32_t (&v)[5],
                                             const std::uint32_t* w) noexcept {
  step<Round>(v[0], v[1], v[2], v[3], v[4], w[0]);
  step<Round>(v[4], v[0], v[1], v[2], v[3], w[1]);
  step<Round>(v[3], v[4], v[0], v[1], v[2], w[2]);
  step<Round>(v[2], v[3], v[4], v[0], v[1], w[3]);
  step<Round>(v[1], v[2], v[3], v[4], v[0], w[4]);
}

template <int Round>
[[gnu::always_inline]] inline void twentySteps(std::uint32_t (&v)[5],
                                               const std::uint32_t* w) noexcept {
  fiveSteps<Round>(v, w);
  fiveSteps<Round>(v, w + 5);
  fiveSteps<Round>(v, w + 10);
  fiveSteps<Round>(v, w + 15);
}

constinit std::atomic<ShaPath> chosenPath{ShaPath::Unknown};

}  // namespace

void transformPortable(std::uint32_t (&state)[5], const std::uint8_t* block, bool rotate) noexcept {
  std::uint32_t w[80];
  for (int t = 0; t < 16; ++t, block += 4) {
    w[t] = std::uint32_t{block[0]} | std::uint32_t{block[1]} << 8 | std::uint32_t{block[2]} << 16 |
           std::uint32_t{block[3]} << 24;
  }
  if (rotate) {
    expandSchedule<true>(w);
  } else {
    expandSchedule<false>(w);
  }
  std::uint32_t v[5] = {state[0], state[1], state[2], state[3], state[4]};
  twentySteps<0>(v, w);
  twentySteps<1>(v, w + 20);
  twentySteps<2>(v, w + 40);
  twentySteps<3>(v, w + 60);
  for (int i = 0; i < 5; ++i) state[i] += v[i];
}

ShaPath shaPath() noexcept {
  // Threads that run this at the same time store the same result.
  ShaPath path = chosenPath.load(std::memory_order_relaxed);
  if (path == ShaPath::Unknown) {
    path = haveShaInstructions() ? ShaPath::Instructions : ShaPath::Portable;
    chosenPath.store(path, std::memory_order_relaxed);
  }
  return path;
}

void setShaPath(ShaPath path) noexcept { chosenPath.store(path, std::memory_order_relaxed); }

#ifndef ULM_SHA_INSTRUCTIONS
bool haveShaInstructions() noexcept { return false; }
void transformByInstructions(std::uint32_t (&)[5], const std::uint8_t*, std::size_t,
                             bool) noexcept {}
#endif

}  // namespace ulm::bignum::detail
