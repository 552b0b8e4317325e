// A library that comes only if the environment block says so: else its second initialiser throws,
// and what its first one made has to go again.
#include "platform/win32/win32.h"

namespace {

struct Made {
  ~Made() { _wputenv(L"ULM_THROWING_MADE=gone"); }
};
struct Throwing {
  Throwing() {
    if (GetEnvironmentVariableW(L"ULM_THROWING_MAY_COME", nullptr, 0) == 0) throw 1;
  }
};
[[gnu::init_priority(101)]] Made made;
[[gnu::init_priority(102)]] Throwing throwing;

}  // namespace
