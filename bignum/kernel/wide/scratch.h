// Working limbs of an operation: of its own frame where they are few, else those that the caller
// has made.
#pragma once

#include <cstddef>

#include "bignum/kernel/wide/limbs.h"

namespace ulm::bignum::kernel {
inline namespace wide {

inline constexpr std::size_t kFrameLimbs = 640;

// The words to ask of the caller for so many limbs: none where the frame has them.
constexpr std::size_t wordsToAsk(std::size_t limbs) noexcept {
  return limbs <= kFrameLimbs ? 0 : 2 * limbs;
}

class Scratch {
 public:
  // `words` is what the caller made of wordsToAsk; null where that is 0.
  explicit Scratch(Word* words) noexcept
      : next_(words == nullptr ? frame_ : static_cast<Limb*>(static_cast<void*>(words))) {}
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  Limb* take(std::size_t limbs) noexcept {
    Limb* const taken = next_;
    next_ += limbs;
    return taken;
  }

 private:
  Digit frame_[kFrameLimbs];  // not initialised: that would take longer than a short operation
  Limb* next_;
};

}  // namespace wide
}  // namespace ulm::bignum::kernel
