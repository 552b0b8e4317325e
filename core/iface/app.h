// The host's application object and the two of its interfaces that the module asks for.
#pragma once

#include "core/iface/iql_unknown.h"

class IParam;

// The application. Only its IQLUnknown operations are used from here.
class IApp : public IQLUnknown {
 protected:
  ~IApp() = default;
};

// What the application offers to add-ons: a place to ask for further interfaces.
class IAppExterior : public IQLUnknown {
 protected:
  ~IAppExterior() = default;
};

// Takes the identities of products. The seven operations before publishRecord are the host's own
// business; they hold its place in the table.
class IHostProductInfo : public IQLUnknown {
 public:
  virtual std::int32_t hostOperation1() = 0;
  virtual std::int32_t hostOperation2() = 0;
  virtual std::int32_t hostOperation3() = 0;
  virtual std::int32_t hostOperation4() = 0;
  virtual std::int32_t hostOperation5() = 0;
  virtual std::int32_t hostOperation6() = 0;
  virtual std::int32_t hostOperation7() = 0;

  // Takes a product's record. The texts and the record are the caller's; what the host wants to
  // keep it copies, or holds by a reference of its own.
  virtual std::int32_t publishRecord(const char* vendor, const char* product, IParam* record) = 0;

 protected:
  ~IHostProductInfo() = default;
};
