// WideText: wide text converted from narrow text.
#pragma once

#include "module/glue/allocation.h"

namespace ulm::core {

// Owns wide text in memory from odrxAlloc, converted from narrow text. The conversion uses the code
// page of the core library (Supp_GetACP), or the system's ANSI page if the first one cannot be
// used. The text is null if `narrow` is null, and if neither page can convert it. If memory runs
// out, the conversion raises std::bad_alloc, or leaves a null text if the process has a new-handler
// (see allocation.h).
class WideText {
 public:
  explicit WideText(const char* narrow = nullptr) { *this = narrow; }
  // Frees the old text before the conversion.
  WideText& operator=(const char* narrow);

  // The text, terminated by a zero; null as described above.
  const wchar_t* get() const noexcept { return text_.get(); }

 private:
  glue::OdrxMemory<wchar_t> text_;
};

}  // namespace ulm::core
