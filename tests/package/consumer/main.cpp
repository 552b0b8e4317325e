// Uses something of each installed library; exits with 0 where all is as it should be.
#include "bignum/integer.h"
#include "platform/odrx/alloc.h"

int main() {
  void* block = odrxAlloc(16);
  odrxFree(block);
  const bool product = ulm::bignum::QLInteger(6) * 7 == 42;
  return block != nullptr && product ? 0 : 1;
}
