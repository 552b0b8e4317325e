// The compression function of FIPS 180 and 180-1 in the language's own arithmetic, and the choice
// between it and the processor's instructions.
#include <atomic>
#include <utility>

#include "bignum/detail/sha_transform.h"
#include "bignum/sha.h"

namespace ulm::bignum::detail {
namespace {

template <bool Rotate>
void expandSchedule(std::uint32_t (&w)[80]) noexcept {
  for (int t = 16; t < 80; ++t) {
    const std::uint32_t mixed = w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16];
    w[t] = Rotate ? RotateLeft(mixed, 1) : mixed;
  }
}

// One step. Instead of the values the places move: what is a in a step is b in the next.
template <std::size_t T>
void step(std::uint32_t (&v)[5], std::uint32_t word) noexcept {
  const std::uint32_t a = v[(80 - T) % 5];
  std::uint32_t& b = v[(81 - T) % 5];
  const std::uint32_t c = v[(82 - T) % 5];
  const std::uint32_t d = v[(83 - T) % 5];
  std::uint32_t& e = v[(84 - T) % 5];
  if constexpr (T < 20) {
    e += (d ^ (b & (c ^ d))) + 0x5A827999;
  } else if constexpr (T < 40) {
    e += (b ^ c ^ d) + 0x6ED9EBA1;
  } else if constexpr (T < 60) {
    e += ((b & c) | (d & (b | c))) + 0x8F1BBCDC;
  } else {
    e += (b ^ c ^ d) + 0xCA62C1D6;
  }
  e += RotateLeft(a, 5) + word;
  b = RotateLeft(b, 30);
}

template <std::size_t... T>
void allSteps(std::uint32_t (&v)[5], const std::uint32_t (&w)[80],
              std::index_sequence<T...>) noexcept {
  (step<T>(v, w[T]), ...);
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
  allSteps(v, w, std::make_index_sequence<80>());
  for (int i = 0; i < 5; ++i) state[i] += v[i];
}

ShaPath shaPath() noexcept {
  // Threads that come first together find out the same.
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
void transformByInstructions(std::uint32_t (&)[5], const std::uint8_t*, std::size_t, bool,
                             WordOrder) noexcept {}
#endif

}  // namespace ulm::bignum::detail
