// The product's one module object.
#pragma once

#include "hostsdk/adapter/odrx.h"

// Its start and stop. It has no state: what a start does stands outside it, and nothing here reads
// whether a start succeeded.
class ULMMainModule : public OdRxModule {
 public:
  // Publishes the product's identity, gives the core library the product's .wld file, puts the
  // library's folder on PATH and hands over the functional modules; gives what the last step gives.
  // An exception of the first three steps passes on.
  bool initApp() override;
  void uninitApp() override;  // nothing that the start did is undone
};

using ULMMainModuleObject = OdRxWin32Module<ULMMainModule, ULMMainModule>;
