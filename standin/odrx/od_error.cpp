#include "hostsdk/odrx/od_error.h"

// The destructors are defined here, so that each class has one type record in the process, which
// all libraries that throw or catch use.
OdError::~OdError() = default;
OdError_InvalidIndex::~OdError_InvalidIndex() = default;

const char* OdError::what() const noexcept {
  switch (code_) {
    case kOdResultNoMemory:
      return "out of memory";
    case kOdResultInvalidIndex:
      return "index not below the length of the array";
    default:
      return "error of the object runtime";
  }
}
