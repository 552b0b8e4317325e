#include "module/main_module.h"

#include "hostsdk/adapter/qlcore.h"
#include "module/functional_modules.h"
#include "module/product.h"
#include "module/product_identity.h"
#include "module/search_path.h"

bool ULMMainModule::initApp() {
  publishProductIdentity();
  Supp_AddWld(ulm::module::kWldFile);
  addModuleFolderToPath();
  return loadFunctionalModules();
}

void ULMMainModule::uninitApp() {}
