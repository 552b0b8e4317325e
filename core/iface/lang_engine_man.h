// The host's language-engine manager, which loads functional modules.
#pragma once

#include <cstdint>

// The four operations before loadModule belong to the host and are not called from here; they keep
// its slot in the table.
class hostLangEngineMan {
 public:
  virtual int hostOperation1() = 0;
  virtual int hostOperation2() = 0;
  virtual int hostOperation3() = 0;
  virtual int hostOperation4() = 0;

  // Has the engine load a module by its bare file name. May raise CXException.
  virtual int loadModule(const wchar_t* file, const wchar_t* engine, std::int32_t number) = 0;

 protected:
  ~hostLangEngineMan() = default;
};
