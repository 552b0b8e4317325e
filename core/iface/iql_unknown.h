// The base of all interfaces that cross a library boundary.
//
// An interface is a class of pure virtual operations whose order is fixed. The type record of the
// class (std::type_info) identifies it. Two records describe the same interface if their decorated
// names are equal; addresses are not compared, because each library may hold its own copy of a
// record. The count of an object need not be atomic: one thread at a time uses an object.
#pragma once

#include <cstdint>
#include <typeinfo>

class IQLUnknown {
 public:
  // Adds a reference and returns the new count.
  virtual std::uint32_t AddRef() = 0;
  // Releases a reference and returns the new count. At 0 the object may already be destroyed.
  virtual std::uint32_t Release() = 0;
  // Asks for the interface with the type record `wanted`. If the object has it, returns 1 and
  // stores it in *outObject with a reference for the caller; otherwise returns 0 and stores null.
  // With a null `outObject` the result is the same, and no reference is taken.
  virtual std::int32_t QueryInterface(const std::type_info& wanted, void** outObject) = 0;

 protected:
  ~IQLUnknown() = default;  // only Release destroys an object
};
