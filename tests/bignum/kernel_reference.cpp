#include "tests/bignum/kernel_reference.h"

namespace ulm::bignum::test {

const std::map<std::string, Step>& referenceSteps() { return walkSteps(); }

}  // namespace ulm::bignum::test
