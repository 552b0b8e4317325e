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
// clang-format off
#define ULM_TAKES(...) requires(QLInteger& a, T n) { __VA_ARGS__; }
template <class T>
constexpr std::array kTakes = {
    std::is_constructible_v<QLInteger, T>, std::is_convertible_v<T, QLInteger>,
    ULM_TAKES(a = n), ULM_TAKES(a.Assign(n)), ULM_TAKES(a.Compare(n)),
    ULM_TAKES(a == n), ULM_TAKES(a != n), ULM_TAKES(n == a), ULM_TAKES(n != a),
    ULM_TAKES(a < n), ULM_TAKES(a <= n), ULM_TAKES(n < a), ULM_TAKES(n <= a),
    ULM_TAKES(a > n), ULM_TAKES(a >= n), ULM_TAKES(n > a), ULM_TAKES(n >= a),
    ULM_TAKES(a <=> n), ULM_TAKES(n <=> a),
    ULM_TAKES(a += n), ULM_TAKES(a -= n), ULM_TAKES(a *= n), ULM_TAKES(a %= n),
    ULM_TAKES(a + n), ULM_TAKES(a - n), ULM_TAKES(a * n), ULM_TAKES(a / n),
    ULM_TAKES(n + a), ULM_TAKES(n - a), ULM_TAKES(n * a), ULM_TAKES(n / a),
    ULM_TAKES(Divide(a, n, a, a)), ULM_TAKES(Divide(n, a, a, a)), ULM_TAKES(Remainder(a, n, a)),
    ULM_TAKES(ModPow(a, n, a, a)), ULM_TAKES(NextPrime(n, a))};

// A magnitude may be any 32-bit number. A range of bytes does not borrow a temporary.
template <class T>
concept ComparesAsMagnitude = ULM_TAKES(a.CompareMagnitude(n));
template <class T>
concept IsFromInt64 = ULM_TAKES(a = QLInteger::fromInt64(n));
template <class T>
concept IsFromUint64 = ULM_TAKES(a = QLInteger::fromUint64(n));
#define ULM_LENDS(...) requires(T&& value) { __VA_ARGS__(std::forward<T>(value)); }
template <class T>
concept LendsBytes = ULM_LENDS(bytesLowFirst) && ULM_LENDS(bytesHighFirst);
template <class T>
concept LendsAnyBytes = ULM_LENDS(bytesLowFirst) || ULM_LENDS(bytesHighFirst) ||
                        requires(T&& value) { ByteRange(std::forward<T>(value), true); };

// Counts, shifts and indices take an int.
static_assert(requires(QLInteger& a, int n) {
  QLInteger(n, n); PowerOfTwo(n); a.Reallocate(n, true); a.EnsureCount(n); a.TestBit(n);
  a.SetBit(n, true); a.WordPointer(n); a <<= n; a >>= n; a >> n; IsProbablePrime(a, n, n);
});
#undef ULM_TAKES
#undef ULM_LENDS
// clang-format on

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

static_assert(ComparesAsMagnitude<std::uint16_t> && ComparesAsMagnitude<std::int32_t> &&
              ComparesAsMagnitude<std::uint32_t>);
static_assert(!ComparesAsMagnitude<std::int64_t> && !ComparesAsMagnitude<std::uint64_t> &&
              !ComparesAsMagnitude<double>);

static_assert(IsFromInt64<std::int32_t> && IsFromInt64<std::uint32_t> && IsFromInt64<long long>);
static_assert(!IsFromInt64<std::uint64_t> && !IsFromInt64<double>);
static_assert(IsFromUint64<std::uint32_t> && IsFromUint64<unsigned long long>);
static_assert(!IsFromUint64<std::int32_t> && !IsFromUint64<std::int64_t> && !IsFromUint64<float>);

static_assert(LendsBytes<QLInteger&> && LendsBytes<const QLInteger&>);
static_assert(!LendsAnyBytes<QLInteger> && !LendsAnyBytes<const QLInteger> && !LendsAnyBytes<int>);

}  // namespace
}  // namespace ulm::bignum::test
