// The host's application object and the two of its interfaces that the module asks for.
#pragma once

#include "core/iface/iql_unknown.h"

class IParam;

// The application. The module calls only its IQLUnknown operations.
class IApp : public IQLUnknown {
 protected:
  ~IApp() = default;
};

// The object by which the application offers further interfaces to add-ons. The module only queries
// it.
class IAppExterior : public IQLUnknown {
 protected:
  ~IAppExterior() = default;
};

// Receives the identities of products. The seven operations before publishRecord belong to the host
// and are never called by the module; they fix the index of publishRecord in the table.
class IHostProductInfo : public IQLUnknown {
 public:
  virtual std::int32_t hostOperation1() = 0;
  virtual std::int32_t hostOperation2() = 0;
  virtual std::int32_t hostOperation3() = 0;
  virtual std::int32_t hostOperation4() = 0;
  virtual std::int32_t hostOperation5() = 0;
  virtual std::int32_t hostOperation6() = 0;
  virtual std::int32_t hostOperation7() = 0;

  // Receives a product's record. The caller owns the texts and its reference to the record; none is
  // null. The host copies what it keeps, or takes a reference of its own. The module ignores the
  // result. May raise CXException.
  virtual std::int32_t publishRecord(const char* vendor, const char* product, IParam* record) = 0;

 protected:
  ~IHostProductInfo() = default;
};
