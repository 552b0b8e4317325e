// An interface of the tests, and the exports of two libraries that implement it and query it. Each
// library has its own type record of it.
#pragma once

#include <typeinfo>

#include "core/iface/iql_unknown.h"
#include "hostsdk/qlcore/strings.h"

class IThing : public IQLUnknown {
 public:
  virtual int Number() = 0;

 protected:
  ~IThing() = default;
};

struct ThingLibrary {
  IQLUnknown* (*make)(int number);      // an object with one reference
  int (*numberOf)(IQLUnknown* object);  // by a checked query for IThing; raises CXIFaceException
  const std::type_info* record;         // the library's own record of IThing
  CXStringW (*string)(UINT number);     // of the library's own resources
};
using ThingLibraryEntry = const ThingLibrary*();
