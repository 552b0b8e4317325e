#include "hostsdk/odrx/od_error.h"

// The destructors stand here so that each class has one type record in the process, whichever
// library throws and whichever catches.
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
