// Products.
#include <algorithm>

#include "bignum/detail/fresh.h"
#include "bignum/detail/storage.h"
#include "bignum/integer.h"
#include "bignum/kernel/kernel.h"

namespace ulm::bignum {
namespace {

// Products of up to so many words are made in the frame where that saves an allocation.
constexpr std::uint32_t kFrameWords = 32;

bool isZero(const QLInteger& value) noexcept { return !value.IsNonZero(); }
bool isOne(const QLInteger& value) noexcept {
  return value.count == 1 && value.words[0] == 1 && value.negative == 0;
}

std::uint32_t productCount(const QLInteger& a, const QLInteger& b) {
  return detail::checkedCount(std::uint64_t{a.count} + b.count);
}

// Normalises a product of n words and gives it its sign.
void finish(QLInteger& product, std::uint32_t n, bool negative) noexcept {
  product.count = n;
  product.negative = 0;
  product.Normalise();
  if (negative) product.MakeNegative();
}

// The product of two values that are neither zero nor +1, in fresh storage.
QLInteger generalProduct(const QLInteger& a, const QLInteger& b) {
  QLInteger product = detail::freshValue(productCount(a, b));
  kernel::multiply(product.words, a.words, a.count, b.words, b.count);
  finish(product, product.count, a.negative != b.negative);
  return product;
}

QLInteger generalProduct(const QLInteger& a, std::int32_t b) {
  QLInteger product(detail::checkedCount(std::uint64_t{a.count} + 1), 0);
  MultiplyAddWord(product.words, a.words, detail::magnitudeOf(b), a.count);
  finish(product, product.count, a.IsNegative() != (b < 0));
  return product;
}

}  // namespace

QLInteger& QLInteger::operator*=(const QLInteger& operand) {
  if (isZero(*this) || isZero(operand)) {
    Assign(0);
  } else if (isOne(*this)) {
    Assign(operand);
  } else if (!isOne(operand)) {
    const std::uint32_t n = productCount(*this, operand);
    if (kernel::kReusesStorage && n <= kFrameWords && capacity == detail::capacityFor(n)) {
      Word product[kFrameWords];
      kernel::multiply(product, words, count, operand.words, operand.count);
      const bool differ = negative != operand.negative;
      std::copy_n(product, n, words);
      finish(*this, n, differ);
    } else {
      QLInteger product = generalProduct(*this, operand);
      Swap(product);
    }
  }
  return *this;
}

QLInteger& QLInteger::operator*=(std::int32_t operand) {
  if (isZero(*this) || operand == 0) {
    Assign(0);
  } else if (isOne(*this)) {
    Assign(operand);
  } else if (operand != 1) {
    QLInteger product = generalProduct(*this, operand);
    Swap(product);
  }
  return *this;
}

QLInteger operator*(const QLInteger& a, const QLInteger& b) {
  if (isZero(a) || isZero(b)) return QLInteger(0);
  if (isOne(a)) return b;
  if (isOne(b)) return a;
  return generalProduct(a, b);
}

QLInteger operator*(const QLInteger& a, std::int32_t b) {
  if (isZero(a) || b == 0) return QLInteger(0);
  if (isOne(a)) return QLInteger(b);
  if (b == 1) return a;
  return generalProduct(a, b);
}

}  // namespace ulm::bignum
