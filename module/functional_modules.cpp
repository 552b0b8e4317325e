#include "module/functional_modules.h"

#include "hostsdk/adapter/hostcmd.h"
#include "module/glue/exceptions.h"

bool loadFunctionalModules() {
  try {
    hostLangEngineMan* manager = get_hostLangEngineMan();
    if (manager == nullptr) return false;
    for (const ulm::module::FunctionalModule& row : ulm::module::kFunctionalModules) {
      manager->loadModule(row.file, row.engine, ulm::module::kLoadNumber);
    }
    return true;
  } catch (const CXException&) {
    return false;
  }
}
