#include "module/entry.h"

#include "module/glue/allocation.h"
#include "module/main_module.h"

void odrxGetAPIVersion(std::uint32_t* major, std::uint32_t* minor, std::uint32_t* majorBuild,
                       std::uint32_t* minorBuild) {
  *major = 21;
  *minor = 8;
  *majorBuild = 0;
  *minorBuild = 0;
}

OdRxModule* odrxCreateModuleObject(HINSTANCE* slot) {
  if (OdRxModule* existing = ULMMainModuleObject::singleton()) return existing;
  const HINSTANCE instance = *slot;
  auto* object = ulm::glue::makeObject<ULMMainModuleObject>(instance);
  ULMMainModuleObject::setSingleton(object);
  *slot = nullptr;
  return object;
}
