// The host's language-engine manager, which loads functional modules.
#pragma once

#include <cstdint>

// The four operations before loadModule belong to the host and are never called by the module; they
// fix its index in the table.
class hostLangEngineMan {
 public:
  virtual int hostOperation1() = 0;
  virtual int hostOperation2() = 0;
  virtual int hostOperation3() = 0;
  virtual int hostOperation4() = 0;

  // Makes the engine load a module.
  //   file    bare file name; not null
  //   engine  name of the engine; not null
  //   number  passed on to the engine
  // The module ignores the result. May raise CXException.
  virtual int loadModule(const wchar_t* file, const wchar_t* engine, std::int32_t number) = 0;

 protected:
  ~hostLangEngineMan() = default;
};
