#include "hostsdk/hostcmd/hostcmd.h"

#include <list>
#include <string>

#include "core/iface/app.h"
#include "module/glue/exceptions.h"
#include "standin/hostcmd/control.h"
#include "standin/win32/stand_in.h"

namespace {

struct Load {
  std::wstring file;
  std::wstring engine;
  std::int32_t number;
};

// The host's thread makes all calls, one at a time, so nothing is locked.
std::list<Load> loads;  // a list, because the addresses of its texts must not change
bool present = true;
int result = 1;
std::size_t throwIndex = 0;
HostcmdThrow throwWhat = HostcmdThrow::Nothing;

void raise(HostcmdThrow what) {
  switch (what) {
    case HostcmdThrow::Nothing:
      return;
    case HostcmdThrow::CXExceptionCode7:
      throw CXException(7);
    case HostcmdThrow::IFaceException:
      throw CXIFaceException(typeid(IApp));
    case HostcmdThrow::ForeignInt:
      throw 7;
  }
}

class RecordingManager final : public hostLangEngineMan {
 public:
  int hostOperation1() override { return 0; }
  int hostOperation2() override { return 0; }
  int hostOperation3() override { return 0; }
  int hostOperation4() override { return 0; }

  int loadModule(const wchar_t* file, const wchar_t* engine, std::int32_t number) override {
    ulmWin32LogCall("loadModule");
    const std::size_t index = loads.size();
    loads.push_back({file, engine, number});
    if (index == throwIndex) raise(throwWhat);
    return result;
  }
};
RecordingManager manager;

}  // namespace

hostLangEngineMan* get_hostLangEngineMan() {
  if (throwIndex == kHostcmdThrowAtGet) raise(throwWhat);
  return present ? &manager : nullptr;
}

std::size_t hostcmdLoadCount() noexcept { return loads.size(); }
HostcmdLoad hostcmdLoad(std::size_t index) noexcept {
  if (index >= loads.size()) return {nullptr, nullptr, 0};
  auto load = loads.begin();
  std::advance(load, static_cast<std::ptrdiff_t>(index));
  return {load->file.c_str(), load->engine.c_str(), load->number};
}
void hostcmdSetPresent(bool isPresent) noexcept { present = isPresent; }
void hostcmdThrowAt(std::size_t index, HostcmdThrow what) noexcept {
  throwIndex = index;
  throwWhat = what;
}
void hostcmdSetResult(int newResult) noexcept { result = newResult; }
