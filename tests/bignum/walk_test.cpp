// Runs the steps of a long walk over eight values, which an independent program has computed, and
// of a short one, which was written by hand. After each step all eight values have the expected
// count, capacity, sign and words. Each step also runs with each of its allocations failing.
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "bignum/integer.h"
#include "bignum/text.h"
#include "tests/bignum/operands.h"
#include "tests/bignum/walk_steps.h"
#include "tests/support/runtime_heap.h"
#include "tests/support/vector_blocks.h"

namespace ulm::bignum::test {
namespace {

// Runs the step on copies of the values with each of its allocations failing in turn. Only values
// that the step changes may then differ from before.
void failEachOfStep(Walk& walk, Step step, const bool (&changes)[8]) {
  QLInteger kept[8];
  for (int i = 0; i < 8; ++i) {
    kept[i].Swap(walk.registers[i]);
    QLInteger(kEmptyHolder).Swap(walk.registers[i]);
  }
  const auto call = [&](ulm::test::FailingMemory& memory) {
    for (int i = 0; i < 8; ++i) {
      QLInteger copy(kept[i]);
      if (copy.capacity < kept[i].capacity) copy.Reallocate(kept[i].capacity, true);
      copy.Swap(walk.registers[i]);
    }
    const bool whole = memory.run([&] {
      walk.run(step);
      return walk.result != "bad_alloc";
    });
    bool intact = true;
    for (int i = 0; i < 8; ++i) {
      if (!whole) {
        const std::string state = stateOf(walk.registers[i]);
        intact = intact && (state == stateOf(kept[i]) ||
                            (changes[i] && (state == "0 0 +" || isNormal(walk.registers[i]))));
      }
      QLInteger(kEmptyHolder).Swap(walk.registers[i]);
    }
    return intact;
  };
  EXPECT_EQ(failEachAllocation(ulm::test::kRuntimeHeap, call, true).fault, "");
  for (int i = 0; i < 8; ++i) kept[i].Swap(walk.registers[i]);
}

// Gives a value the capacity of an expected state if its own is left open and keeps the rules,
// since the next steps start from there.
void takeExpectedCapacity(QLInteger& value, const std::string& state) {
  std::uint32_t count = 0, capacity = 0;
  std::istringstream(state) >> count >> capacity;
  if (!isNormal(value) || capacity == value.capacity || capacity < value.count) return;
  QLInteger fresh(kEmptyHolder);
  fresh.Reallocate(capacity, false);
  fresh.Assign(value);
  value.Swap(fresh);
}

TEST(Walk, LeavesTheExpectedStates) {
  Walk walk;
  std::string expected[8];
  for (const char* file : {ULM_TEST_WALK, ULM_TEST_DATA "/bignum/edges.txt"}) {
    for (ulm::test::VectorBlock& block : ulm::test::readVectorBlocks(file)) {
      const std::string name = block.text("Op");
      const Step step = walkSteps().at(name);
      walk.args = block.numbers("Args");
      walk.text = block.find("Text").value_or("");
      std::istringstream in(block.find("In").value_or(""));
      std::string text;
      for (int i = 0; in >> text; ++i) {
        QLInteger fresh = parseInteger(text.c_str());
        fresh.Swap(walk.registers[i]);
      }
      const auto out = block.find("Out");
      bool changes[8];
      for (int i = 0; i < 8; ++i) {
        const auto state = block.find("R" + std::to_string(i));
        changes[i] = state || out;
        expected[i] = state.value_or(stateOf(walk.registers[i]));
      }

      failEachOfStep(walk, step, changes);
      walk.run(step);
      EXPECT_EQ(walk.result, block.find("Result").value_or(""));
      std::istringstream values(out.value_or(""));
      for (int i = 0; i < 8; ++i) {
        if (ULM_TEST_OPEN_CAPACITY && leavesCapacityOpen(name)) {
          takeExpectedCapacity(walk.registers[i], expected[i]);
        }
        if (values >> text) {
          EXPECT_EQ(toString(walk.registers[i]), text) << "in register " << i;
          EXPECT_TRUE(isNormal(walk.registers[i]));
        } else {
          EXPECT_EQ(stateOf(walk.registers[i]), expected[i]) << "in register " << i;
        }
      }
      block.expectAllUsed();
      ASSERT_FALSE(HasFailure()) << block.where();
    }
  }
}

}  // namespace
}  // namespace ulm::bignum::test
