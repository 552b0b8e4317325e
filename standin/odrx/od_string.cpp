#include "hostsdk/odrx/od_string.h"

#include <cstdint>
#include <cwchar>
#include <new>
#include <utility>

#include "hostsdk/odrx/alloc.h"

OdString::OdString(const wchar_t* text, std::size_t length) {
  if (length == 0) return;
  if (length >= SIZE_MAX / sizeof(wchar_t)) throw std::bad_alloc();
  text_ = static_cast<wchar_t*>(odrxAlloc((length + 1) * sizeof(wchar_t)));
  if (text_ == nullptr) throw std::bad_alloc();
  std::wmemcpy(text_, text, length);
  text_[length] = L'\0';
  length_ = length;
}

OdString::OdString(const OdString& other) : OdString(other.c_str(), other.length_) {}

OdString::OdString(OdString&& other) noexcept
    : text_(std::exchange(other.text_, nullptr)), length_(std::exchange(other.length_, 0)) {}

OdString& OdString::operator=(OdString other) noexcept {
  std::swap(text_, other.text_);
  std::swap(length_, other.length_);
  return *this;
}

OdString::~OdString() { odrxFree(text_); }
