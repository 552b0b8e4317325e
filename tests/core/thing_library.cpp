#include "core/cql_unknown_impl.h"
#include "core/interface_query.h"
#include "core/string_number.h"
#include "hostsdk/export.h"
#include "module/glue/allocation.h"
#include "tests/core/thing.h"

namespace {

class Thing final : public CQLUnknownImpl<IThing> {
 public:
  explicit Thing(int number) noexcept : number_(number) {}
  int Number() override { return number_; }

 private:
  int number_;
};

const ThingLibrary kLibrary = {
    [](int number) -> IQLUnknown* { return ulm::glue::makeObject<Thing>(number); },
    [](IQLUnknown* object) {
      const IfaceHolder<IThing> thing(Iface_QueryChecked<IThing>(object, true));
      return thing->Number();
    },
    &typeid(IThing), [](UINT number) { return CXStringW(number); }};

}  // namespace

extern "C" ULM_EXPORT const ThingLibrary* thingLibrary() { return &kLibrary; }
