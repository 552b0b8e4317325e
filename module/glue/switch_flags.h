// The four debug switches as flags, and the order in which the library's static objects are built.
//
// The order is given by priorities for init_priority: a lower number is built earlier, in whatever
// order the files are linked. The string and heap services are in libraries that this one links, so
// they are ready before all of this.
//   200            the four flags below
//   300            the constants of the big numbers (kConstantsPriority in bignum/constants.h)
//   no priority    the caller of DllMain only: built last, destroyed first
// Every static object that runs code while the library is loaded must have a priority. A test reads
// the finished library and checks this.
#pragma once

namespace ulm::glue {

inline constexpr int kInitSwitchFlags = 200;

class SwitchFlag {
 public:
  explicit SwitchFlag(bool on) noexcept : on_(on) {}
  explicit operator bool() const noexcept { return on_; }

 private:
  bool on_;
};

// Set while the library is loaded, before its entry runs.
extern const SwitchFlag assertFlag;
extern const SwitchFlag addJumpFlag;
extern const SwitchFlag removeJumpFlag;
extern const SwitchFlag defecateFlag;

}  // namespace ulm::glue
