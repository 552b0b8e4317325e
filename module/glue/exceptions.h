// The exceptions that cross library boundaries. They are thrown by value and caught by reference. A
// handler in one library recognises the exception of another by the decorated name of its class, so
// the classes are in the global namespace.
#pragma once

#include <cstdint>
#include <typeinfo>

#include "hostsdk/adapter/win32.h"

// An exception with a code and the handle of the library that raised it, which is the library that
// the constructor is linked into. The order of the virtual operations is fixed.
class CXException {
 public:
  explicit CXException(std::uint32_t code) noexcept;
  CXException(const CXException&) noexcept = default;
  CXException& operator=(const CXException&) noexcept = default;
  virtual ~CXException();
  virtual std::uint32_t GetCode() const noexcept;
  virtual void Reserved() const noexcept;  // keeps its entry in the table; does nothing

  HINSTANCE GetModule() const noexcept { return module_; }  // null if the system knows none

 private:
  std::uint32_t code_;
  HINSTANCE module_;
};

// A requested interface is missing.
class CXIFaceException : public CXException {
 public:
  static constexpr std::uint32_t kCode = 10;

  // `wanted` is the type record of the missing interface. It is not copied: it must outlive the
  // exception, and it exists as long as its library is loaded.
  explicit CXIFaceException(const std::type_info& wanted) noexcept;
  CXIFaceException(const CXIFaceException&) noexcept = default;
  CXIFaceException& operator=(const CXIFaceException&) noexcept = default;
  ~CXIFaceException() override;
  void Reserved() const noexcept override;

  const std::type_info& GetInterface() const noexcept { return *wanted_; }

 private:
  const std::type_info* wanted_;
};
