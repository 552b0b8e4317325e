// The types that operations on a small number take. The compiler decides all of it: a row that
// fails does not compile.
#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "bignum/bytes.h"
#include "bignum/integer.h"
#include "bignum/number_theory.h"

namespace ulm::bignum::test {
namespace {

// For each operation on a value and a number, whether the number may be of type T.
template <class T>
constexpr std::array kTakes = {std::is_constructible_v<QLInteger, T>,
                               std::is_convertible_v<T, QLInteger>,
                               requires(QLInteger& a, T n){a = n;
}  // namespace
, requires(QLInteger& a, T n) { a.Assign(n); }
, requires(QLInteger& a, T n) { a == n; }
, requires(QLInteger& a, T n) { n == a; }
, requires(QLInteger& a, T n) { a != n; }
, requires(QLInteger& a, T n) { n != a; }
, requires(QLInteger& a, T n) { a < n; }
, requires(QLInteger& a, T n) { n < a; }
, requires(QLInteger& a, T n) { a <= n; }
, requires(QLInteger& a, T n) { n <= a; }
, requires(QLInteger& a, T n) { a > n; }
, requires(QLInteger& a, T n) { n > a; }
, requires(QLInteger& a, T n) { a >= n; }
, requires(QLInteger& a, T n) { n >= a; }
, requires(QLInteger& a, T n) { a <=> n; }
, requires(QLInteger& a, T n) { n <=> a; }
, requires(QLInteger& a, T n) { a.Compare(n); }
, requires(QLInteger& a, T n) { a += n; }
, requires(QLInteger& a, T n) { a -= n; }
, requires(QLInteger& a, T n) { a *= n; }
, requires(QLInteger& a, T n) { a %= n; }
, requires(QLInteger& a, T n) { a + n; }
, requires(QLInteger& a, T n) { n + a; }
, requires(QLInteger& a, T n) { a - n; }
, requires(QLInteger& a, T n) { n - a; }
, requires(QLInteger& a, T n) { a* n; }
, requires(QLInteger& a, T n) { n* a; }
, requires(QLInteger& a, T n) { a / n; }
, requires(QLInteger& a, T n) { n / a; }
, requires(QLInteger& a, T n) { Divide(a, n, a, a); }
, requires(QLInteger& a, T n) { Divide(n, a, a, a); }
, requires(QLInteger& a, T n) { Remainder(a, n, a); }
, requires(QLInteger& a, T n) { ModPow(a, n, a, a); }
, requires(QLInteger& a, T n) { NextPrime(n, a); }
,
};  // namespace ulm::bignum::test

template <class T, bool Taken>
constexpr bool holdsForAll() {
  for (const bool taken : kTakes<T>) {
    if (taken != Taken) return false;
  }
  return true;
}
template <class... Types>
constexpr bool taken() {
  return (holdsForAll<Types, true>() && ...);
}
template <class... Types>
constexpr bool refused() {
  return (holdsForAll<Types, false>() && ...);
}

enum SignedEnum : std::int32_t {};
enum UnsignedEnum : std::uint32_t {};
struct ConvertsTo64 {
  operator std::int64_t() const;
};

static_assert(taken<bool, char, signed char, unsigned char, char16_t, std::int16_t, std::uint16_t,
                    std::int32_t, SignedEnum>());
static_assert(refused<std::uint32_t, char32_t, std::int64_t, std::uint64_t, long long, std::size_t,
                      UnsignedEnum, ConvertsTo64, float, double, long double>());

// A magnitude may be any 32-bit number.
template <class T>
concept ComparesAsMagnitude = requires(const QLInteger& a, T n) {
  a.CompareMagnitude(n);
};
static_assert(ComparesAsMagnitude<std::uint16_t> && ComparesAsMagnitude<std::int32_t> &&
              ComparesAsMagnitude<std::uint32_t>);
static_assert(!ComparesAsMagnitude<std::int64_t> && !ComparesAsMagnitude<std::uint64_t> &&
              !ComparesAsMagnitude<double>);

template <class T>
concept IsFromInt64 = requires(T n) {
  QLInteger::fromInt64(n);
};
template <class T>
concept IsFromUint64 = requires(T n) {
  QLInteger::fromUint64(n);
};
static_assert(IsFromInt64<std::int32_t> && IsFromInt64<std::uint32_t> && IsFromInt64<long long>);
static_assert(!IsFromInt64<std::uint64_t> && !IsFromInt64<double>);
static_assert(IsFromUint64<std::uint32_t> && IsFromUint64<unsigned long long>);
static_assert(!IsFromUint64<std::int32_t> && !IsFromUint64<std::int64_t> && !IsFromUint64<float>);

// A range of bytes does not borrow a temporary.
template <class T>
concept LendsBytes = requires(T&& value) {
  bytesLowFirst(std::forward<T>(value));
  bytesHighFirst(std::forward<T>(value));
  ByteRange(std::forward<T>(value), true);
};
template <class T>
concept LendsAnyBytes = requires(T&& value) {
  bytesLowFirst(std::forward<T>(value));
}
|| requires(T&& value) { bytesHighFirst(std::forward<T>(value)); }
|| requires(T&& value) { ByteRange(std::forward<T>(value), true); };
static_assert(LendsBytes<QLInteger&> && LendsBytes<const QLInteger&>);
static_assert(!LendsAnyBytes<QLInteger> && !LendsAnyBytes<const QLInteger> && !LendsAnyBytes<int>);

// Counts, shifts and indices take an int.
static_assert(requires(QLInteger & a, int n) {
  QLInteger(n, n);
  PowerOfTwo(n);
  a.Reallocate(n, true);
  a.EnsureCount(n);
  a.TestBit(n);
  a.SetBit(n, true);
  a.WordPointer(n);
  a <<= n;
  a >>= n;
  a >> n;
  IsProbablePrime(a, n, n);
});

}  // namespace
}  // namespace ulm::bignum::test
