// The base of all interfaces that cross a library boundary.
//
// An interface is a class of pure operations; the order of its operations is its contract. It is
// told by the run-time type record of its class, and two records mean one interface when their
// decorated names are equal: each library may hold its own copy of a record, so that addresses say
// nothing. The count of an object may be plain: an object belongs to one thread at a time.
#pragma once

#include <cstdint>
#include <typeinfo>

class IQLUnknown {
 public:
  // Takes one more reference; gives the new count.
  virtual std::uint32_t AddRef() = 0;
  // Gives one reference back, after which the object may be gone; gives the new count.
  virtual std::uint32_t Release() = 0;
  // Gives 1 and, in *outObject, the object with a reference for the caller, when the object has the
  // interface; else 0 and null. With a null `outObject` it only answers and takes no reference.
  virtual std::int32_t QueryInterface(const std::type_info& wanted, void** outObject) = 0;

 protected:
  ~IQLUnknown() = default;  // objects go away by Release alone
};
