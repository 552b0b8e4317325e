// The object runtime's wide string, as far as module objects hand it out.
#pragma once

#include <cstddef>

#include "hostsdk/export.h"

class ULM_ODRX_CLASS OdString {
 public:
  OdString() noexcept = default;
  // Copies `length` characters. std::bad_alloc where there is no memory.
  OdString(const wchar_t* text, std::size_t length);
  OdString(const OdString& other);
  OdString(OdString&& other) noexcept;
  OdString& operator=(OdString other) noexcept;
  ~OdString();

  const wchar_t* c_str() const noexcept { return text_ != nullptr ? text_ : L""; }
  std::size_t getLength() const noexcept { return length_; }

 private:
  wchar_t* text_ = nullptr;  // owned, from odrxAlloc, terminated; null when empty
  std::size_t length_ = 0;
};
