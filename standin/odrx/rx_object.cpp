#include "hostsdk/odrx/rx_object.h"

namespace {

constexpr OdRxClass kObjectClass("OdRxObject", nullptr);
constexpr OdRxClass kModuleClass("OdRxModule", &kObjectClass);

}  // namespace

OdRxObject::~OdRxObject() = default;

OdRxObject* OdRxObject::queryX(const OdRxClass* wanted) const {
  if (!isA()->isDerivedFrom(wanted)) return nullptr;
  auto* object = const_cast<OdRxObject*>(this);  // the runtime returns writable objects
  object->addRef();
  return object;
}

OdRxObject* OdRxObject::x(const OdRxClass* /*wanted*/) const { return nullptr; }
const OdRxClass* OdRxObject::isA() const { return desc(); }
std::int32_t OdRxObject::numRefs() const { return 1; }
OdRxObject* OdRxObject::clone() const { return nullptr; }
void OdRxObject::copyFrom(const OdRxObject* /*source*/) {}
int OdRxObject::comparedTo(const OdRxObject* other) const { return isEqualTo(other) ? 0 : 1; }
bool OdRxObject::isEqualTo(const OdRxObject* other) const { return this == other; }
const OdRxClass* OdRxObject::desc() noexcept { return &kObjectClass; }

OdRxModule::~OdRxModule() = default;
OdRxObject* OdRxModule::queryX(const OdRxClass* wanted) const { return OdRxObject::queryX(wanted); }
const OdRxClass* OdRxModule::isA() const { return desc(); }
const OdRxClass* OdRxModule::desc() noexcept { return &kModuleClass; }
