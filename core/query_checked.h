// The checked query.
#pragma once

#include <typeinfo>

#include "hostsdk/adapter/interfaces.h"
#include "module/glue/exceptions.h"

// Asks `object` for an interface: the pointer with a reference for the caller, or null where it is
// not there. A null object has none. With `raiseIfAbsent` absence is a CXIFaceException with the
// type record of the interface.
template <class Interface>
Interface* Iface_QueryChecked(IQLUnknown* object, bool raiseIfAbsent) {
  void* found = nullptr;
  const bool there = object != nullptr && object->QueryInterface(typeid(Interface), &found) != 0;
  if (!there && raiseIfAbsent) throw CXIFaceException(typeid(Interface));
  return static_cast<Interface*>(found);
}
