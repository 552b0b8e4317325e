// Narrow text made wide.
#pragma once

#include "module/glue/allocation.h"

namespace ulm::core {

// Owns wide text made from narrow text in memory from odrxAlloc. The narrow text is taken in the
// code page of the core library (`Supp_GetACP`); where that page cannot be used, in the system's
// ANSI page. A null narrow text is a null wide text. Where memory runs out, std::bad_alloc, or a
// null text after a new-handler (see allocation.h).
class WideText {
 public:
  explicit WideText(const char* narrow = nullptr) { *this = narrow; }
  WideText& operator=(const char* narrow);  // the old text is freed first

  const wchar_t* get() const noexcept { return text_.get(); }

 private:
  glue::OdrxMemory<wchar_t> text_;
};

}  // namespace ulm::core
