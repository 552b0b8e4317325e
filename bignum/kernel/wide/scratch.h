// Working limbs of an operation: of its own frame where they are few, else those that the caller
// has made.
#pragma once

#include <cstddef>

#include "bignum/detail/storage.h"
#include "bignum/integer.h"
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
  explicit Scratch(Word* words) noexcept : next_(words == nullptr ? frame_ : limbsAt(words)) {}
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  Limb* take(std::size_t limbs) noexcept {
    Limb* const taken = next_;
    next_ += limbs;
    return taken;
  }

 private:
  Limb frame_[kFrameLimbs];  // not initialised: that would take longer than a short operation
  Limb* next_;
};

// The same for operations that allocate by themselves.
class OwnScratch {
 public:
  explicit OwnScratch(std::size_t limbs)
      : heap_(detail::scratchWords(wordsToAsk(limbs))), limbs_(heap_.get()) {}
  Limb* take(std::size_t limbs) noexcept { return limbs_.take(limbs); }

 private:
  detail::WordsHolder heap_;
  Scratch limbs_;
};

// Gives a value storage for so many words, without its content, unless it has that already.
inline void makeRoom(QLInteger& value, std::size_t words) {
  if (value.capacity >= words) return;
  value.Reallocate(detail::checkedCount(words), false);
  value.Assign(0);
}

// Sets a value that has room for them to the number of n limbs, not negative. n may be 0.
inline void setLimbs(QLInteger& value, const Limb* limbs, std::size_t n) noexcept {
  n = significant(limbs, n);
  if (n == 0) {
    value.words[0] = 0;
    value.count = 1;
  } else {
    const std::size_t words = 2 * n - (Digit{limbs[n - 1]} >> kWordBits == 0 ? 1 : 0);
    wordsOfLimbs(value.words, limbs, words);
    value.count = static_cast<std::uint32_t>(words);
  }
  value.negative = 0;
}

}  // namespace wide
}  // namespace ulm::bignum::kernel
