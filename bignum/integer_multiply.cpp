// Products.
#include "bignum/detail/storage.h"
#include "bignum/integer.h"
#include "bignum/kernel/kernel.h"

namespace ulm::bignum {
namespace {

// The product of two values that are neither zero nor +1, in fresh storage.
QLInteger generalProduct(const QLInteger& a, const QLInteger& b) {
  QLInteger product(detail::checkedCount(std::uint64_t{a.count} + b.count), 0);
  const auto scratch = detail::scratchWords(kernel::multiplyScratch(a.count, b.count));
  kernel::multiply(product.words, a.words, a.count, b.words, b.count, scratch.get());
  product.Normalise();
  if (a.negative != b.negative) product.MakeNegative();
  return product;
}

QLInteger generalProduct(const QLInteger& a, std::int32_t b) {
  QLInteger product(detail::checkedCount(std::uint64_t{a.count} + 1), 0);
  MultiplyAddWord(product.words, a.words, detail::magnitudeOf(b), a.count);
  product.Normalise();
  if (a.IsNegative() != (b < 0)) product.MakeNegative();
  return product;
}

}  // namespace

QLInteger& QLInteger::operator*=(const QLInteger& operand) {
  if (!IsNonZero() || !operand.IsNonZero()) {
    Assign(0);
  } else if (*this == 1) {
    Assign(operand);
  } else if (!(operand == 1)) {
    QLInteger product = generalProduct(*this, operand);
    Swap(product);
  }
  return *this;
}

QLInteger& QLInteger::operator*=(std::int32_t operand) {
  if (!IsNonZero() || operand == 0) {
    Assign(0);
  } else if (*this == 1) {
    Assign(operand);
  } else if (operand != 1) {
    QLInteger product = generalProduct(*this, operand);
    Swap(product);
  }
  return *this;
}

QLInteger operator*(const QLInteger& a, const QLInteger& b) {
  if (!a.IsNonZero() || !b.IsNonZero()) return QLInteger(0);
  if (a == 1) return b;
  if (b == 1) return a;
  return generalProduct(a, b);
}

QLInteger operator*(const QLInteger& a, std::int32_t b) {
  if (!a.IsNonZero() || b == 0) return QLInteger(0);
  if (a == 1) return QLInteger(b);
  if (b == 1) return a;
  return generalProduct(a, b);
}

}  // namespace ulm::bignum
