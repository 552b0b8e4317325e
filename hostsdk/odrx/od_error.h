// The exceptions of the object runtime. Each has a result code.
#pragma once

#include <cstdint>
#include <exception>

#include "hostsdk/export.h"

// The result codes. Their numbers are fixed.
inline constexpr std::int32_t kOdResultNoMemory = 9;
inline constexpr std::int32_t kOdResultInvalidIndex = 10;

class ULM_ODRX_CLASS OdError : public std::exception {
 public:
  explicit OdError(std::int32_t code) noexcept : code_(code) {}
  OdError(const OdError&) noexcept = default;
  OdError& operator=(const OdError&) noexcept = default;
  ~OdError() override;

  std::int32_t code() const noexcept { return code_; }
  // Returns a short description of the code.
  const char* what() const noexcept override;

 private:
  std::int32_t code_;
};

// An index is not below the length of its array.
class ULM_ODRX_CLASS OdError_InvalidIndex : public OdError {
 public:
  OdError_InvalidIndex() noexcept : OdError(kOdResultInvalidIndex) {}
  OdError_InvalidIndex(const OdError_InvalidIndex&) noexcept = default;
  OdError_InvalidIndex& operator=(const OdError_InvalidIndex&) noexcept = default;
  ~OdError_InvalidIndex() override;
};
