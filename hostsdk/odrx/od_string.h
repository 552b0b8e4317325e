// The object runtime's wide string: the part of it that module objects use.
#pragma once

#include <cstddef>

#include "hostsdk/export.h"

class ULM_ODRX_CLASS OdString {
 public:
  OdString() noexcept = default;
  // Copies `length` characters of `text`, which may be null if the length is 0. This constructor
  // and the copies raise std::bad_alloc if there is no memory.
  OdString(const wchar_t* text, std::size_t length);
  OdString(const OdString& other);
  OdString(OdString&& other) noexcept;
  OdString& operator=(OdString other) noexcept;
  ~OdString();

  // The zero-terminated text, valid until the string changes; never null.
  const wchar_t* c_str() const noexcept { return text_ != nullptr ? text_ : L""; }
  std::size_t getLength() const noexcept { return length_; }

 private:
  wchar_t* text_ = nullptr;  // owned, from odrxAlloc, zero-terminated; null if the string is empty
  std::size_t length_ = 0;
};
