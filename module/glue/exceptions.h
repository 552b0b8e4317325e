// The exceptions that cross libraries. Thrown by value, caught by reference. A handler in one
// library finds the exception of another by the decorated name of its class, so the names are
// global.
#pragma once

#include <cstdint>
#include <typeinfo>

#include "hostsdk/adapter/win32.h"

// A code, and the library that raised it: the one that this constructor is linked into. The order
// of the virtual operations is fixed.
class CXException {
 public:
  explicit CXException(std::uint32_t code) noexcept;
  CXException(const CXException&) noexcept = default;
  CXException& operator=(const CXException&) noexcept = default;
  virtual ~CXException();
  virtual std::uint32_t GetCode() const noexcept;
  virtual void Reserved() const noexcept;  // holds its place in the table; does nothing

  HINSTANCE GetModule() const noexcept { return module_; }

 private:
  std::uint32_t code_;
  HINSTANCE module_;
};

// An interface that was asked for is not there.
class CXIFaceException : public CXException {
 public:
  static constexpr std::uint32_t kCode = 10;

  // `wanted` is the type record of the missing interface; records live as long as their library.
  explicit CXIFaceException(const std::type_info& wanted) noexcept;
  CXIFaceException(const CXIFaceException&) noexcept = default;
  CXIFaceException& operator=(const CXIFaceException&) noexcept = default;
  ~CXIFaceException() override;
  void Reserved() const noexcept override;

  const std::type_info& GetInterface() const noexcept { return *wanted_; }

 private:
  const std::type_info* wanted_;
};
