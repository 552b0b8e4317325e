// Parts of the module, called in the test's process: the end of a module object, and the folder
// that goes to PATH.
#include <gtest/gtest.h>

#include "hostsdk/odrx/win32_module.h"
#include "module/glue/allocation.h"
#include "module/glue/instance.h"
#include "module/search_path.h"

namespace {

// Sees, while it is destroyed, what a caller of the library would find.
class Observer : public OdRxModule {
 public:
  ~Observer() override;
  bool initApp() override { return true; }
  void uninitApp() override {}
};
using ObserverObject = OdRxWin32Module<Observer, Observer>;
Observer* foundAtTheEnd = nullptr;
Observer::~Observer() { foundAtTheEnd = ObserverObject::singleton(); }

TEST(ModuleObject, IsForgottenBeforeItIsDestroyed) {
  auto* object = ulm::glue::makeObject<ObserverObject>(nullptr);
  ObserverObject::setSingleton(object);
  foundAtTheEnd = object;
  object->finalRelease();
  EXPECT_EQ(foundAtTheEnd, nullptr);
}

TEST(ModuleFolder, OfAFile) {
  const wchar_t* const cases[][2] = {{L"Z:\\a\\b\\ULM_Main.dll", L"Z:\\a\\b\\"},
                                     {L"Z:\\ULM_Main.dll", L"Z:\\"}};
  for (const auto& [file, folder] : cases) EXPECT_STREQ(ulm::module::folderOf(file).text, folder);
}

TEST(ModuleFolder, LeavesPathAloneWithoutAFileName) {
  _wputenv(L"PATH=/bin");
  ulm::glue::setInstance(reinterpret_cast<HINSTANCE>(8));  // no module, so it has no file
  addModuleFolderToPath();
  ulm::glue::setInstance(nullptr);
  wchar_t value[16] = {};
  GetEnvironmentVariableW(L"PATH", value, 16);
  EXPECT_STREQ(value, L"/bin");
}

}  // namespace
