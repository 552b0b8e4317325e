// The module object of the product.
#pragma once

#include "hostsdk/adapter/odrx.h"

// The start and the stop of the product. The class has no state: a start changes only the host and
// the process.
class ULMMainModule : public OdRxModule {
 public:
  // Runs the four steps of the start in order: publishes the product's identity, reports the .wld
  // file to the core library, adds the library's folder to PATH, loads the functional modules.
  // Returns the result of loadFunctionalModules. An exception of a step passes on, and the later
  // steps do not run.
  bool initApp() override;
  // Does nothing: the effects of the start are permanent.
  void uninitApp() override;
};

using ULMMainModuleObject = OdRxWin32Module<ULMMainModule, ULMMainModule>;
