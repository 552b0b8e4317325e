// `ulmira num`: arithmetic on numbers of any size.
#include <CLI/CLI.hpp>
#include <cmath>
#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bignum/integer.h"
#include "bignum/number_theory.h"
#include "bignum/text.h"
#include "command/commands.h"
#include "command/number_argument.h"
#include "command/support/streams.h"

namespace ulm::tools {
namespace {

using namespace ulm::bignum;

using Operands = std::vector<QLInteger>;
using Texts = std::vector<std::string>;

struct Operation {
  std::size_t operands;
  std::function<Texts(const Operands&, std::uint32_t radix)> run;  // the words of the result line
};

// Returns `number`. Throws if it is 0.
const QLInteger& checkedDivisor(const QLInteger& number) {
  if (!number.IsNonZero()) throw std::runtime_error("division by zero");
  return number;
}

// Returns `number`. Throws if it is negative.
const QLInteger& checkedExponent(const QLInteger& number) {
  if (number.IsNegative()) throw std::runtime_error("the exponent is negative");
  return number;
}

// An operation whose result is one number.
template <class Compute>
Operation numeric(std::size_t operands, Compute compute) {
  return {operands, [compute](const Operands& n, std::uint32_t radix) {
            return Texts{toString(compute(n), radix)};
          }};
}

QLInteger remainderOf(const Operands& n) {
  QLInteger remainder(n[0]);
  remainder %= checkedDivisor(n[1]);
  return remainder;
}

// The maximum length of a power in bits: its decimal text takes about a minute with the wide kernel.
constexpr std::uint32_t kMaxPowerBits = 1u << 26;

// The binary logarithm of the magnitude of a number that is not 0.
double logarithmOf(const QLInteger& number) {
  const std::uint32_t length = number.BitLength();
  const std::uint32_t below = length > 64 ? length - 64 : 0;
  double top = 0;
  for (std::uint32_t bit = length; bit-- > below;) top = 2 * top + (number.TestBit(bit) ? 1 : 0);
  return std::log2(top) + below;
}

QLInteger powerOf(const Operands& n) {
  const QLInteger& exponent = checkedExponent(n[1]);
  // An exponent of more bits is above every product that passes.
  if (n[0].BitLength() > 1 && exponent.IsNonZero() &&
      (exponent.BitLength() > 32 ||
       logarithmOf(n[0]) * std::exp2(logarithmOf(exponent)) >= kMaxPowerBits)) {
    throw std::runtime_error("the power is longer than " + std::to_string(kMaxPowerBits) + " bits");
  }
  return Pow(n[0], exponent);
}

QLInteger modularPower(const Operands& n) {
  QLInteger result;
  ModPow(n[0], checkedExponent(n[1]), checkedDivisor(n[2]), result);
  return result;
}

QLInteger magnitudeOf(const QLInteger& number) {
  QLInteger magnitude(number);
  if (magnitude.IsNegative()) magnitude.Negate();
  return magnitude;
}

// The library's function takes the sign of the divisor from the remainders and stops at operands
// that are not positive. For magnitudes it gives the greatest common divisor. Each factor then gets
// the sign of its operand.
Texts extendedDivisor(const Operands& n, std::uint32_t radix) {
  QLInteger g, x, y;
  ExtendedGcd(magnitudeOf(n[0]), magnitudeOf(n[1]), g, x, y);
  if (n[0].IsNegative()) x.Negate();
  if (n[1].IsNegative()) y.Negate();
  return {toString(g, radix), toString(x, radix), toString(y, radix)};
}

QLInteger commonDivisor(const Operands& n) {
  const QLInteger a = magnitudeOf(n[0]), b = magnitudeOf(n[1]);
  QLInteger divisor;
  return Gcd(a, b, divisor) ? divisor : a + b;  // one of them is 0, which every number divides
}

QLInteger rootOf(const Operands& n) {
  if (n[0].IsNegative()) throw std::runtime_error("the root of a negative number");
  return IntegerSqrt(n[0]);
}

// With all bases in both kinds of test, the primes that are bases are recognised too.
bool passesAllRounds(const QLInteger& number) { return IsProbablePrime(number, 18, 18); }

Texts primality(const Operands& n, std::uint32_t) {
  return {passesAllRounds(n[0]) ? "true" : "false"};
}

// NextPrime tests fewer bases and returns some composites, such as 3215031751.
QLInteger primeFrom(const Operands& n) {
  QLInteger prime;
  NextPrime(n[0], prime);
  while (!passesAllRounds(prime)) NextPrime(prime + QLInteger(1), prime);
  return prime;
}

const std::map<std::string, Operation>& operations() {
  static const std::map<std::string, Operation> table = {
      {"add", numeric(2, [](const Operands& n) { return n[0] + n[1]; })},
      {"sub", numeric(2, [](const Operands& n) { return n[0] - n[1]; })},
      {"mul", numeric(2, [](const Operands& n) { return n[0] * n[1]; })},
      {"div", numeric(2, [](const Operands& n) { return n[0] / checkedDivisor(n[1]); })},
      {"rem", numeric(2, remainderOf)},
      {"pow", numeric(2, powerOf)},
      {"modpow", numeric(3, modularPower)},
      {"gcd", numeric(2, commonDivisor)},
      {"egcd", {2, extendedDivisor}},
      {"sqrt", numeric(1, rootOf)},
      {"isprime", {1, primality}},
      {"nextprime", numeric(1, primeFrom)},
      {"convert", numeric(1, [](const Operands& n) { return n[0]; })}};
  return table;
}

// Reads the numbers of the command line. A '-' is replaced by the numbers of standard input, one a
// line.
Operands readNumbers(const Texts& texts) {
  Operands numbers;
  for (const std::string& text : texts) {
    if (text != "-") {
      numbers.push_back(parseNumber(text));
      continue;
    }
    Input input(text);
    for (std::string line; input.readLine(line, kMaxNumberBytes);) {
      if (!line.empty()) numbers.push_back(parseNumber(line));
    }
  }
  return numbers;
}

void printResults(const std::string& name, std::uint32_t radix, const Texts& texts) {
  const auto found = operations().find(name);
  if (found == operations().end())
    throw CLI::ValidationError("OPERATION", "unknown operation " + name);
  const std::size_t operandCount = found->second.operands;
  const Operands numbers = readNumbers(texts);
  if (numbers.empty() || numbers.size() % operandCount != 0) {
    throw CLI::ValidationError(name, "takes " + std::to_string(operandCount) +
                                         " numbers for each result; the command line has " +
                                         std::to_string(numbers.size()));
  }
  for (auto first = numbers.begin(); first != numbers.end();) {
    const auto last = first + static_cast<std::ptrdiff_t>(operandCount);
    const Texts words = found->second.run(Operands(first, last), radix);
    for (std::size_t i = 0; i < words.size(); ++i) std::cout << (i == 0 ? "" : " ") << words[i];
    std::cout << '\n';
    first = last;
  }
}

// Separates the options after the operation from the numbers. CLI11 would take a negative number
// for an option, so it leaves these arguments unparsed. Returns the numbers.
Texts parseOptions(const Texts& arguments, CLI::Option& radix) {
  Texts numbers;
  bool optionsEnded = false;
  for (auto next = arguments.begin(); next != arguments.end(); ++next) {
    if (!optionsEnded && *next == "--") {
      optionsEnded = true;
    } else if (!optionsEnded && (*next == "-h" || *next == "--help")) {
      throw CLI::CallForHelp();
    } else if (!optionsEnded && (*next == "--radix" || next->rfind("--radix=", 0) == 0)) {
      const bool joined = next->size() > std::strlen("--radix");
      if (!joined && std::next(next) == arguments.end()) {
        throw CLI::ArgumentMismatch::AtLeast("--radix", 1, 0);
      }
      radix.clear();
      radix.add_result(joined ? next->substr(std::strlen("--radix=")) : *++next);
      radix.run_callback();
    } else {
      numbers.push_back(*next);
    }
  }
  return numbers;
}

}  // namespace

void addNumCommand(CLI::App& app, int& /*status*/) {
  CLI::App* num = app.add_subcommand("num", "Arithmetic on numbers of any size");
  std::string names;
  for (const auto& [name, operation] : operations()) names += ' ' + name;
  num->footer(
      "The arguments are OPERATION NUMBER..., where OPERATION is one of:" + names +
      "\nNumbers: decimal, 0x1F or 1Fh, 17o, 101b, with an optional sign. After '--' no argument\n"
      "is an option. '-' reads numbers from standard input, one a line. If there are more numbers\n"
      "than one result needs, each group of numbers gives a line.\n"
      "gcd prints the greatest common divisor, which is never negative; egcd prints that divisor "
      "g\n"
      "and factors x and y with a x + b y = g. isprime prints false for a number that is "
      "certainly\n"
      "not prime, and true for one that passes 18 Fermat and 18 strong tests to fixed bases.\n"
      "nextprime prints the first number at or above its operand that passes the same tests, and\n"
      "3 for 2.");
  const auto radix = std::make_shared<std::uint32_t>(10);
  CLI::Option* radixOption =
      num->add_option("--radix", *radix, "Radix of the results")->check(CLI::Range(2, 16));
  num->prefix_command();
  num->callback([num, radix, radixOption] {
    Texts arguments = num->remaining();
    if (arguments.empty()) throw CLI::RequiredError("OPERATION");
    const std::string name = arguments.front();
    arguments.erase(arguments.begin());
    const Texts numbers = parseOptions(arguments, *radixOption);
    printResults(name, *radix, numbers);
  });
}

}  // namespace ulm::tools
