// The host's language-engine manager, from the library qlhostcmd: loads functional modules.
#pragma once

#include <cstdint>

#ifdef _WIN32
#ifdef qlhostcmd_EXPORTS
#define ULM_HOSTCMD_API extern "C" __declspec(dllexport)
#else
#define ULM_HOSTCMD_API extern "C" __declspec(dllimport)
#endif
#else
#define ULM_HOSTCMD_API extern "C" [[gnu::visibility("default")]]
#endif

// The four operations before loadModule are the host's own business; they hold its place in the
// table.
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

// The process's one manager, not the caller's to release; null where there is none.
ULM_HOSTCMD_API hostLangEngineMan* get_hostLangEngineMan();
