// Small factors of consecutive odd numbers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bignum/detail/storage.h"
#include "bignum/integer.h"

namespace ulm::bignum::kernel {
inline namespace wide {

class Screen {
 public:
  // For numbers of n limbs. Longer ones have a longer search and longer tests: they pay for more
  // primes. These are below 2^20.
  explicit Screen(std::size_t n);

  // The odd numbers that are looked at together.
  std::uint32_t length() const noexcept { return length_; }
  // Looks for factors of start, start + 2, start + 4 and so on. start is odd, and its numbers are
  // above the primes.
  void look(const QLInteger& start) noexcept;
  // A small prime factor of start + 2 i, its least one if that is below 14; 0 if none was found.
  std::uint32_t factor(std::uint32_t i) const noexcept { return factors_[i]; }

 private:
  static constexpr std::uint32_t kMostLength = 4096;

  // Notes a prime as a factor of every number that it divides; rest is start modulo p.
  void mark(std::uint32_t p, std::uint32_t rest) noexcept;

  std::uint32_t length_;
  std::uint32_t primeCount_ = 0;
  detail::WordsHolder primes_;  // the odd ones, the least one first
  std::uint32_t factors_[kMostLength];
};

}  // namespace wide
}  // namespace ulm::bignum::kernel
