#include "core/wide_text.h"

#include <cstddef>

#include "hostsdk/adapter/qlcore.h"
#include "hostsdk/adapter/win32.h"

namespace ulm::core {

WideText& WideText::operator=(const char* narrow) {
  text_.reset();
  if (narrow == nullptr) return *this;
  UINT codePage = Supp_GetACP();
  int size = MultiByteToWideChar(codePage, 0, narrow, -1, nullptr, 0);
  if (size == 0) {
    codePage = CP_ACP;
    size = MultiByteToWideChar(codePage, 0, narrow, -1, nullptr, 0);
  }
  if (size <= 0) return *this;
  const std::size_t bytes = static_cast<std::size_t>(size) * sizeof(wchar_t);
  text_.reset(static_cast<wchar_t*>(glue::allocate(bytes)));
  if (text_ != nullptr && MultiByteToWideChar(codePage, 0, narrow, -1, text_.get(), size) == 0) {
    text_.reset();
  }
  return *this;
}

}  // namespace ulm::core
