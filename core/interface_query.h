// How a caller asks an object for an interface, and how it holds the reference that it gets.
#pragma once

#include <typeinfo>
#include <utility>

#include "hostsdk/adapter/interfaces.h"
#include "module/glue/exceptions.h"

// Owns one reference to an interface object. The constructor takes over the reference that a query
// or a factory returned. The destructor releases it.
template <class Interface>
class IfaceHolder {
 public:
  explicit IfaceHolder(Interface* owned = nullptr) noexcept : pointer_(owned) {}  // null: empty
  IfaceHolder(IfaceHolder&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  // Releases the reference held before, then takes over that of `other`.
  IfaceHolder& operator=(IfaceHolder&& other) noexcept {
    IfaceHolder taken(std::move(other));
    std::swap(pointer_, taken.pointer_);
    return *this;
  }
  ~IfaceHolder() {
    if (pointer_ == nullptr) return;
    pointer_->Release();
    pointer_ = nullptr;
  }

  Interface* get() const noexcept { return pointer_; }         // null if empty
  Interface* operator->() const noexcept { return pointer_; }  // the holder is not empty
  explicit operator bool() const noexcept { return pointer_ != nullptr; }

 private:
  Interface* pointer_;
};

// Asks `object` for an interface.
//   object         may be null: a null object has no interface
//   raiseIfAbsent  if true, a missing interface raises CXIFaceException with its type record
// Returns the interface with a reference for the caller, or null if it is missing. Exceptions of
// the object's QueryInterface pass on.
template <class Interface>
Interface* Iface_QueryChecked(IQLUnknown* object, bool raiseIfAbsent) {
  void* found = nullptr;
  const bool hasIt = object != nullptr && object->QueryInterface(typeid(Interface), &found) != 0;
  if (!hasIt && raiseIfAbsent) throw CXIFaceException(typeid(Interface));
  return static_cast<Interface*>(found);
}
