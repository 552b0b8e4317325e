// How an object answers a query: by the type record of the interface.
#pragma once

#include <cstdint>
#include <cstring>
#include <typeinfo>

#include "hostsdk/adapter/interfaces.h"

// Returns true if both records describe the same interface, that is, if their decorated names are
// equal. Each library may hold its own copy of a record, so the addresses are not compared.
inline bool Iface_SameRecord(const std::type_info& a, const std::type_info& b) noexcept {
  return std::strcmp(a.name(), b.name()) == 0;
}

namespace ulm::core {

// The body of IQLUnknown::QueryInterface for an object that implements `Interface` and IQLUnknown.
//   object     the object that answers; not null
//   wanted     the type record of the requested interface
//   outObject  receives `object` with a reference for the caller, or null; may be null, then no
//              reference is taken
// Returns 1 if the object has the interface, otherwise 0.
template <class Interface>
std::int32_t answerQuery(Interface* object, const std::type_info& wanted, void** outObject) {
  const bool known =
      Iface_SameRecord(wanted, typeid(IQLUnknown)) || Iface_SameRecord(wanted, typeid(Interface));
  if (outObject != nullptr) {
    *outObject = known ? object : nullptr;
    if (known) object->AddRef();
  }
  return known ? 1 : 0;
}

}  // namespace ulm::core
