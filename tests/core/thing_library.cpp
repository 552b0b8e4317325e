#include "core/cql_unknown_impl.h"
#include "core/iface_holder.h"
#include "core/query_checked.h"
#include "module/glue/allocation.h"
#include "tests/core/thing.h"

namespace {

int live = 0;

class Thing final : public CQLUnknownImpl<IThing> {
 public:
  explicit Thing(int number) noexcept : number_(number) { ++live; }
  ~Thing() override { --live; }
  int Number() override { return number_; }
  int Twice() override { return 2 * number_; }

 private:
  int number_;
};

const ThingLibrary kLibrary = {
    [](int number) -> IQLUnknown* { return ulm::glue::makeObject<Thing>(number); },
    [](IQLUnknown* object) {
      const IfaceHolder<IThing> thing(Iface_QueryChecked<IThing>(object, true));
      return thing->Number();
    },
    [](IQLUnknown* object) {
      const IfaceHolder<IMissing> missing(Iface_QueryChecked<IMissing>(object, true));
    },
    &typeid(IThing), [] { return live; }};

}  // namespace

extern "C" [[gnu::visibility("default")]] const ThingLibrary* thingLibrary() { return &kLibrary; }
