// A long walk over eight values, made by an independent program: after each step every value has
// the count, capacity, sign and words that were foretold, those that the step does not change as
// well.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "bignum/integer.h"
#include "bignum/number_theory.h"
#include "tests/bignum/operands.h"
#include "tests/support/vector_blocks.h"

namespace ulm::bignum::test {
namespace {

using ulm::test::VectorBlock;

class Walk {
 public:
  Walk() {
    inPlace("Assign", [](QLInteger& d, const QLInteger& a) { d.Assign(a); });
    inPlace("Add", [](QLInteger& d, const QLInteger& a) { d += a; });
    inPlace("Sub", [](QLInteger& d, const QLInteger& a) { d -= a; });
    inPlace("Mul", [](QLInteger& d, const QLInteger& a) { d *= a; });
    inPlace("Mod", [](QLInteger& d, const QLInteger& a) { d %= a; });
    inPlace("AddMagnitude", [](QLInteger& d, const QLInteger& a) { AddMagnitude(d, a); });
    inPlace("SubtractMagnitude", [](QLInteger& d, const QLInteger& a) { SubtractMagnitude(d, a); });
    withSmall("AssignSmall", [](QLInteger& d, std::int32_t s) { d.Assign(s); });
    withSmall("AddSmall", [](QLInteger& d, std::int32_t s) { s == 1 ? ++d : d += s; });
    withSmall("SubSmall", [](QLInteger& d, std::int32_t s) { s == 1 ? --d : d -= s; });
    withSmall("MulSmall", [](QLInteger& d, std::int32_t s) { d *= s; });
    withSmall("Shl", [](QLInteger& d, std::int32_t s) { d <<= static_cast<std::uint32_t>(s); });
    withSmall("Shr", [](QLInteger& d, std::int32_t s) { d >>= static_cast<std::uint32_t>(s); });
    withSmall("Grow", [](QLInteger& d, std::int32_t s) {
      d.Reallocate(static_cast<std::uint32_t>(s), true);
    });
    fresh("Plus", [](const QLInteger& a, const QLInteger& b) { return a + b; });
    fresh("Minus", [](const QLInteger& a, const QLInteger& b) { return a - b; });
    fresh("Times", [](const QLInteger& a, const QLInteger& b) { return a * b; });
    fresh("Over", [](const QLInteger& a, const QLInteger& b) { return a / b; });
    fresh("Pow", [](const QLInteger& a, const QLInteger& b) { return Pow(a, b); });
    freshSmall("MinusSmall", [](const QLInteger& a, std::int32_t s) { return a - s; });
    freshSmall("TimesSmall", [](const QLInteger& a, std::int32_t s) { return a * s; });
    freshSmall("ShiftedRight", [](const QLInteger& a, std::int32_t s) {
      return a >> static_cast<std::uint32_t>(s);
    });
    steps_["Empty"] = [this](VectorBlock&) { hold(arg(0), QLInteger(kEmptyHolder)); };
    steps_["Set"] = [this](VectorBlock&) {
      hold(arg(0), patterned(static_cast<std::uint32_t>(args_[1]), static_cast<int>(args_[2]),
                             static_cast<std::uint64_t>(args_[3]), args_[4] != 0));
    };
    steps_["Swap"] = [this](VectorBlock&) { arg(0).Swap(arg(1)); };
    steps_["Divide"] = [this](VectorBlock&) { Divide(arg(0), arg(1), arg(2), arg(3)); };
    steps_["Remainder"] = [this](VectorBlock&) { Remainder(arg(0), arg(1), arg(2)); };
    steps_["PowerOfTwo"] = [this](VectorBlock&) {
      hold(arg(0), PowerOfTwo(static_cast<std::uint32_t>(args_[1])));
    };
    steps_["ModPow"] = [this](VectorBlock&) { ModPow(arg(0), arg(1), arg(2), arg(3)); };
    steps_["ExtendedGcd"] = [this](VectorBlock&) {
      EXPECT_TRUE(ExtendedGcd(arg(0), arg(1), arg(2), arg(3), arg(4)));
    };
    steps_["Gcd"] = [this](VectorBlock& block) {
      EXPECT_EQ(Gcd(arg(0), arg(1), arg(2)), block.text("Result") == "1");
    };
    steps_["IntegerSqrt"] = [this](VectorBlock&) { hold(arg(0), IntegerSqrt(arg(1))); };
    steps_["FromText"] = [this](VectorBlock& block) {
      FromText(arg(0), block.text("Text").c_str());
    };
    steps_["ToText"] = [this](VectorBlock& block) {
      const auto radix = static_cast<std::uint32_t>(args_[1]);
      const std::string text = block.text("Text");
      EXPECT_EQ(toText(arg(0), radix), text);
      if (radix == 2 || radix == 8 || radix == 10 || radix == 16) {
        EXPECT_EQ(QLInteger::fromText(text.c_str()), arg(0));
      }
    };
  }

  void run(VectorBlock& block) {
    args_ = block.numbers("Args");
    steps_.at(block.text("Op"))(block);
    for (std::size_t i = 0; i < kRegisters; ++i) {
      expected_[i] = block.find("R" + std::to_string(i)).value_or(expected_[i]);
      ASSERT_EQ(stateOf(registers_[i]), expected_[i]) << "in register " << i;
    }
    block.expectAllUsed();
  }

 private:
  static constexpr std::size_t kRegisters = 8;

  QLInteger& arg(std::size_t i) { return registers_[static_cast<std::size_t>(args_[i])]; }
  static void hold(QLInteger& reg, QLInteger made) { reg.Swap(made); }
  std::int32_t smallArg(std::size_t i) const { return static_cast<std::int32_t>(args_[i]); }

  template <class Operation>
  void inPlace(const char* name, Operation operation) {
    steps_[name] = [this, operation](VectorBlock&) { operation(arg(0), arg(1)); };
  }
  template <class Operation>
  void withSmall(const char* name, Operation operation) {
    steps_[name] = [this, operation](VectorBlock&) { operation(arg(0), smallArg(1)); };
  }
  template <class Operation>
  void fresh(const char* name, Operation operation) {
    steps_[name] = [this, operation](VectorBlock&) { hold(arg(0), operation(arg(1), arg(2))); };
  }
  template <class Operation>
  void freshSmall(const char* name, Operation operation) {
    steps_[name] = [this, operation](VectorBlock&) {
      hold(arg(0), operation(arg(1), smallArg(2)));
    };
  }

  std::map<std::string, std::function<void(VectorBlock&)>> steps_;
  std::vector<long long> args_;
  QLInteger registers_[kRegisters];
  std::vector<std::string> expected_ = std::vector<std::string>(kRegisters, "1 32 +0");
};

TEST(Walk, LeavesTheForetoldStates) {
  Walk walk;
  for (VectorBlock& block : ulm::test::readVectorBlocks(ULM_TEST_DATA "/bignum/walk.txt")) {
    walk.run(block);
    ASSERT_FALSE(HasFailure()) << block.where();
  }
}

}  // namespace
}  // namespace ulm::bignum::test
