// Uses something of each installed library; exits with 0 where all is as it should be.
#include "platform/odrx/alloc.h"

int main() {
  void* block = odrxAlloc(16);
  odrxFree(block);
  return block != nullptr ? 0 : 1;
}
