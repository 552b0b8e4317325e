// A few numbers of one width side by side, as many as a register of the target holds. Each lane is
// rounded as the same operation on single numbers is, so results do not depend on the number of
// lanes. A target without a register of its own here has one lane.
#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ulm::clip::detail {

template <class Real>
class Lanes {
 public:
  static constexpr std::uint32_t kCount = 1;

  // Lane k is at(k).
  template <class At>
  static Lanes of(At&& at) noexcept {
    return Lanes(at(0U));
  }
  // Negates every lane if `negate` is true.
  Lanes negatedIf(bool negate) const noexcept { return Lanes(negate ? -value_ : value_); }
  // Bit k is whether lane k of `a` is greater than that of `b`.
  friend std::uint32_t whereGreater(Lanes a, Lanes b) noexcept { return a.value_ > b.value_; }
  friend Lanes operator+(Lanes a, Lanes b) noexcept { return Lanes(a.value_ + b.value_); }
  friend Lanes operator-(Lanes a, Lanes b) noexcept { return Lanes(a.value_ - b.value_); }
  friend Lanes operator/(Lanes a, Lanes b) noexcept { return Lanes(a.value_ / b.value_); }
  void store(Real* to) const noexcept { *to = value_; }

 private:
  explicit Lanes(Real value) noexcept : value_(value) {}
  Real value_;
};

#if defined(__SSE2__)

template <>
class Lanes<double> {
 public:
  static constexpr std::uint32_t kCount = 2;

  template <class At>
  static Lanes of(At&& at) noexcept {
    return Lanes(_mm_set_pd(at(1U), at(0U)));
  }
  Lanes negatedIf(bool negate) const noexcept {
    return Lanes(_mm_xor_pd(values_, _mm_set1_pd(negate ? -0.0 : 0.0)));
  }
  friend std::uint32_t whereGreater(Lanes a, Lanes b) noexcept {
    return static_cast<std::uint32_t>(_mm_movemask_pd(_mm_cmplt_pd(b.values_, a.values_)));
  }
  friend Lanes operator+(Lanes a, Lanes b) noexcept {
    return Lanes(_mm_add_pd(a.values_, b.values_));
  }
  friend Lanes operator-(Lanes a, Lanes b) noexcept {
    return Lanes(_mm_sub_pd(a.values_, b.values_));
  }
  friend Lanes operator/(Lanes a, Lanes b) noexcept {
    return Lanes(_mm_div_pd(a.values_, b.values_));
  }
  void store(double* to) const noexcept { _mm_storeu_pd(to, values_); }

 private:
  explicit Lanes(__m128d values) noexcept : values_(values) {}
  __m128d values_;
};

template <>
class Lanes<float> {
 public:
  static constexpr std::uint32_t kCount = 4;

  template <class At>
  static Lanes of(At&& at) noexcept {
    return Lanes(_mm_set_ps(at(3U), at(2U), at(1U), at(0U)));
  }
  Lanes negatedIf(bool negate) const noexcept {
    return Lanes(_mm_xor_ps(values_, _mm_set1_ps(negate ? -0.0F : 0.0F)));
  }
  friend std::uint32_t whereGreater(Lanes a, Lanes b) noexcept {
    return static_cast<std::uint32_t>(_mm_movemask_ps(_mm_cmplt_ps(b.values_, a.values_)));
  }
  friend Lanes operator+(Lanes a, Lanes b) noexcept {
    return Lanes(_mm_add_ps(a.values_, b.values_));
  }
  friend Lanes operator-(Lanes a, Lanes b) noexcept {
    return Lanes(_mm_sub_ps(a.values_, b.values_));
  }
  friend Lanes operator/(Lanes a, Lanes b) noexcept {
    return Lanes(_mm_div_ps(a.values_, b.values_));
  }
  void store(float* to) const noexcept { _mm_storeu_ps(to, values_); }

 private:
  explicit Lanes(__m128 values) noexcept : values_(values) {}
  __m128 values_;
};

#endif

}  // namespace ulm::clip::detail
