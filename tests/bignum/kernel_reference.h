// The steps of the walk as the library with the plain kernel does them, from a library of its own:
// a program that links another kernel can hold it to these.
#pragma once

#include "tests/bignum/walk_steps.h"

namespace ulm::bignum::test {

[[gnu::visibility("default")]] const std::map<std::string, Step>& referenceSteps();

}  // namespace ulm::bignum::test
