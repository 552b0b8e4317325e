// The operations of `ulmira num`.
#pragma once

#include <span>
#include <variant>
#include <vector>

#include "bignum/integer.h"

namespace ulm::tools {

struct NumOperation {
  using Operands = std::vector<bignum::QLInteger>;
  using Result = std::variant<bignum::QLInteger, bool>;

  const char* name;
  const char* operands;     // their names, separated by blanks
  const char* results;      // their names, separated by blanks
  const char* description;  // of the results, for the help
  // Takes as many operands and returns as many results as there are names. Throws
  // std::runtime_error for operands without a result, and for a result above the maximum length.
  std::vector<Result> (*run)(const Operands& operands);
};

// Returns all operations, in the order of the help.
std::span<const NumOperation> numOperations();

}  // namespace ulm::tools
