// The four debug switches as flags, set once while the library is loaded, before its entry runs.
#pragma once

namespace ulm::glue {

class SwitchFlag {
 public:
  explicit SwitchFlag(bool on) noexcept : on_(on) {}
  explicit operator bool() const noexcept { return on_; }

 private:
  bool on_;
};

extern const SwitchFlag assertFlag;
extern const SwitchFlag addJumpFlag;
extern const SwitchFlag removeJumpFlag;
extern const SwitchFlag defecateFlag;

}  // namespace ulm::glue
