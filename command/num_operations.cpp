#include "command/num_operations.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <utility>

#include "bignum/number_theory.h"

namespace ulm::tools {
namespace {

using namespace ulm::bignum;

using Operands = NumOperation::Operands;
using Result = NumOperation::Result;
using Results = std::vector<Result>;

// The maximum lengths of numbers in bits. Longer ones take more than about a minute with the wide
// kernel: the decimal text of a result, Euclid's algorithm, a root, 18 tests of a prime, the tests
// of a gap between primes. The plain kernel takes longer, and has the same limits.
constexpr std::uint32_t kMaxResultBits = 1u << 26;
constexpr std::uint32_t kMaxDivisorBits = 1u << 23;
constexpr std::uint32_t kMaxRootBits = 1u << 24;
constexpr std::uint32_t kMaxTestedBits = 1u << 15;
constexpr std::uint32_t kMaxSearchBits = 1u << 13;

// The same for the exponent of modpow. It is 2^16 for a modulus of 2^16 bits. Each bit of it takes
// a product, whose time grows with the 1.6th power of the modulus's length.
std::uint64_t maxExponentBits(std::uint32_t modulusBits) {
  const auto width = static_cast<int>(std::bit_width(modulusBits - 1));  // at most 2^width bits
  return std::uint64_t{1} << std::max(16 + (16 - width) * 8 / 5, 0);
}

[[noreturn]] void failTooLong(const std::string& what, std::uint64_t most = kMaxResultBits) {
  throw std::runtime_error(what + " is longer than " + std::to_string(most) + " bits");
}

// Throws if the number is longer than `most` bits. Returns it otherwise.
const QLInteger& checkedLength(const QLInteger& number, std::uint64_t most,
                               const std::string& what = "the number") {
  if (number.BitLength() > most) failTooLong(what, most);
  return number;
}

// Returns `number`. Throws if it is 0.
const QLInteger& checkedDivisor(const QLInteger& number) {
  if (!number.IsNonZero()) throw std::runtime_error("division by zero");
  return number;
}

// Returns `number`. Throws if it is negative; `what` names it.
const QLInteger& notNegative(const QLInteger& number, const char* what) {
  if (number.IsNegative()) throw std::runtime_error(std::string(what) + " is negative");
  return number;
}

QLInteger magnitudeOf(QLInteger number) {
  if (number.IsNegative()) number.Negate();
  return number;
}

// Makes an operation of a function with one result.
template <auto Compute>
Results one(const Operands& operands) {
  Results results;
  results.emplace_back(Compute(operands));
  return results;
}

QLInteger sumOf(const Operands& n) { return n[0] + n[1]; }
QLInteger differenceOf(const Operands& n) { return n[0] - n[1]; }
QLInteger productOf(const Operands& n) {
  if (n[0].BitLength() + std::uint64_t{n[1].BitLength()} > kMaxResultBits) {
    failTooLong("the product");
  }
  return n[0] * n[1];
}
QLInteger quotientOf(const Operands& n) { return n[0] / checkedDivisor(n[1]); }
QLInteger lengthOf(const Operands& n) { return QLInteger::fromUint64(n[0].BitLength()); }
QLInteger orderOf(const Operands& n) { return QLInteger(n[0].Compare(n[1])); }
QLInteger numberItself(const Operands& n) { return n[0]; }

QLInteger remainderOf(const Operands& n) {
  QLInteger remainder(n[0]);
  remainder %= checkedDivisor(n[1]);
  return remainder;
}

Results quotientAndRemainder(const Operands& n) {
  QLInteger quotient, remainder;
  Divide(n[0], checkedDivisor(n[1]), quotient, remainder);
  return {std::move(quotient), std::move(remainder)};
}

// The binary logarithm of the magnitude of a number that is not 0.
double logarithmOf(const QLInteger& number) {
  const std::uint32_t length = number.BitLength();
  const std::uint32_t below = length > 64 ? length - 64 : 0;
  double top = 0;
  for (std::uint32_t bit = length; bit-- > below;) top = 2 * top + (number.TestBit(bit) ? 1 : 0);
  return std::log2(top) + below;
}

QLInteger powerOf(const Operands& n) {
  const QLInteger& exponent = notNegative(n[1], "the exponent");
  // An exponent of more bits is above every product that passes.
  if (n[0].BitLength() > 1 && exponent.IsNonZero() &&
      (exponent.BitLength() > 32 ||
       logarithmOf(n[0]) * std::exp2(logarithmOf(exponent)) >= kMaxResultBits)) {
    failTooLong("the power");
  }
  return Pow(n[0], exponent);
}

QLInteger modularPower(const Operands& n) {
  const std::uint32_t bits = checkedDivisor(n[2]).BitLength();
  checkedLength(notNegative(n[1], "the exponent"), maxExponentBits(bits),
                "the exponent to a modulus of " + std::to_string(bits) + " bits");
  QLInteger result;
  ModPow(n[0], n[1], n[2], result);
  return result;
}

// Euclid's first step makes both numbers as short as the shorter one.
void checkShorter(const Operands& n) {
  const bool first = n[0].CompareMagnitude(n[1]) < 0;
  checkedLength(n[first ? 0 : 1], kMaxDivisorBits, "the shorter number");
}

QLInteger commonDivisor(const Operands& n) {
  checkShorter(n);
  const QLInteger a = magnitudeOf(n[0]), b = magnitudeOf(n[1]);
  QLInteger divisor;
  return Gcd(a, b, divisor) ? divisor : a + b;  // one of them is 0, which every number divides
}

QLInteger commonMultiple(const Operands& n) {
  if (!n[0].IsNonZero() || !n[1].IsNonZero()) return {0};
  return magnitudeOf(productOf({n[0] / commonDivisor(n), n[1]}));
}

// The library's function takes the sign of the divisor from the remainders and stops at operands
// that are not positive. For magnitudes it gives the greatest common divisor. Each factor then gets
// the sign of its operand.
Results extendedDivisor(const Operands& n) {
  checkShorter(n);
  QLInteger g, x, y;
  ExtendedGcd(magnitudeOf(n[0]), magnitudeOf(n[1]), g, x, y);
  if (n[0].IsNegative()) x.Negate();
  if (n[1].IsNegative()) y.Negate();
  return {std::move(g), std::move(x), std::move(y)};
}

QLInteger inverseOf(const Operands& n) {
  const QLInteger& modulus = n[1];
  if (!modulus.IsPositive()) throw std::runtime_error("the modulus is below 1");
  checkedLength(modulus, kMaxDivisorBits, "the modulus");
  QLInteger base = remainderOf(n);
  if (base.IsNegative()) base += modulus;
  QLInteger g, x, y;
  ExtendedGcd(base, modulus, g, x, y);
  if (!(g == 1)) {
    throw std::runtime_error(
        "there is no inverse: the number and the modulus have a common divisor");
  }
  x %= modulus;
  if (x.IsNegative()) x += modulus;
  return x;
}

QLInteger rootOf(const Operands& n) {
  if (n[0].IsNegative()) throw std::runtime_error("the root of a negative number");
  return IntegerSqrt(checkedLength(n[0], kMaxRootBits));
}

// Returns a number of 0 to 2^32 - 1.
std::uint32_t smallValue(const QLInteger& number) {
  std::uint32_t value = 0;
  for (std::uint32_t bit = number.BitLength(); bit-- > 0;) value = 2 * value + number.TestBit(bit);
  return value;
}

// Returns a count, and kMaxResultBits for every larger one. Throws if it is negative.
std::uint32_t countOf(const QLInteger& count, const char* what) {
  const bool small = notNegative(count, what) < QLInteger::fromUint64(kMaxResultBits);
  return small ? smallValue(count) : kMaxResultBits;
}

QLInteger shiftedLeft(const Operands& n) {
  const std::uint32_t bits = countOf(n[1], "the number of bits");
  QLInteger result(n[0]);
  if (result.IsNonZero() && bits > kMaxResultBits - std::min(result.BitLength(), kMaxResultBits)) {
    failTooLong("the result");
  }
  result <<= bits;
  return result;
}

QLInteger shiftedRight(const Operands& n) {
  const QLInteger& bits = notNegative(n[1], "the number of bits");
  const bool anyLeft = bits < QLInteger::fromUint64(n[0].BitLength());
  return anyLeft ? n[0] >> smallValue(bits) : QLInteger(0);
}

// Returns the product of 1 to last. Neighbours are multiplied in pairs, so that most products have
// factors of similar length.
QLInteger productUpTo(std::uint32_t last) {
  constexpr std::uint32_t kFactorsOfPart = 16;
  std::vector<QLInteger> parts{QLInteger(1)};
  for (std::uint32_t factor = 1; factor <= last; ++factor) {
    if (factor % kFactorsOfPart == 0) parts.emplace_back(1);
    parts.back() *= static_cast<std::int32_t>(factor);
  }
  while (parts.size() > 1) {
    std::vector<QLInteger> joined;
    for (std::size_t i = 0; i < parts.size(); i += 2) {
      joined.push_back(i + 1 < parts.size() ? parts[i] * parts[i + 1] : std::move(parts[i]));
    }
    parts.swap(joined);
  }
  return parts.front();
}

QLInteger factorialOf(const Operands& n) {
  const std::uint32_t last = countOf(n[0], "the number");
  if (std::lgamma(last + 1.0) >= kMaxResultBits * std::log(2.0)) failTooLong("the factorial");
  return productUpTo(last);
}

// With all bases in both kinds of test, the primes that are bases are recognised too.
bool passesAllRounds(const QLInteger& number) { return IsProbablePrime(number, 18, 18); }

bool primalityOf(const Operands& n) { return passesAllRounds(checkedLength(n[0], kMaxTestedBits)); }

// NextPrime tests fewer bases and returns some composites, such as 3215031751.
QLInteger primeFrom(const Operands& n) {
  QLInteger prime;
  NextPrime(checkedLength(n[0], kMaxSearchBits), prime);
  while (!passesAllRounds(prime)) NextPrime(prime + QLInteger(1), prime);
  return prime;
}

constexpr NumOperation kOperations[] = {
    {"add", "A B", "result", "A + B", one<sumOf>},
    {"sub", "A B", "result", "A - B", one<differenceOf>},
    {"mul", "A B", "result", "A * B", one<productOf>},
    {"div", "A B", "result", "A / B, truncated toward zero", one<quotientOf>},
    {"rem", "A B", "result", "what div leaves, with the sign of A", one<remainderOf>},
    {"divmod", "A B", "quotient remainder", "the results of div and rem", quotientAndRemainder},
    {"pow", "A E", "result", "A to the power E", one<powerOf>},
    {"modpow", "A E M", "result", "A to the power E, then rem by M", one<modularPower>},
    {"modinv", "A M", "result", "X of 0 to M - 1 with A * X = 1 modulo M", one<inverseOf>},
    {"gcd", "A B", "result", "the greatest common divisor, never negative", one<commonDivisor>},
    {"egcd", "A B", "gcd x y", "G, X and Y: gcd, and A * X + B * Y = G", extendedDivisor},
    {"lcm", "A B", "result", "the least common multiple, never negative", one<commonMultiple>},
    {"sqrt", "A", "result", "the square root, rounded down", one<rootOf>},
    {"factorial", "A", "result", "the product of 1 to A", one<factorialOf>},
    {"shl", "A N", "result", "A * 2^N", one<shiftedLeft>},
    {"shr", "A N", "result", "A / 2^N, truncated toward zero", one<shiftedRight>},
    {"bits", "A", "result", "the number of bits of A without its sign", one<lengthOf>},
    {"cmp", "A B", "result", "-1, 0 or 1 for A below, equal to or above B", one<orderOf>},
    {"isprime", "A", "result", "false if A is certainly no prime, else true", one<primalityOf>},
    {"nextprime", "A", "result", "the first number from A up with isprime true; 3 for 2",
     one<primeFrom>},
    {"convert", "A", "result", "A itself", one<numberItself>}};

}  // namespace

std::span<const NumOperation> numOperations() { return kOperations; }

}  // namespace ulm::tools
