// The comparison of interfaces.
#pragma once

#include <cstring>
#include <typeinfo>

// Whether two type records are those of one interface: their decorated names are equal. Each
// library may hold a copy of a record, so the addresses mean nothing.
inline bool Iface_SameRecord(const std::type_info& a, const std::type_info& b) noexcept {
  return std::strcmp(a.name(), b.name()) == 0;
}
