// A host process for the real library. It runs the steps of its arguments and prints their effects.
#ifndef _WIN32
#include <malloc.h>
#endif

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "hostsdk/win32/win32.h"
#include "module/entry.h"
#include "module/glue/exceptions.h"
#include "module/glue/instance.h"
#include "standin/host/host_calls.h"
#include "standin/hostapp/control.h"
#include "standin/hostcmd/control.h"
#include "standin/odrx/alloc_control.h"
#include "standin/qlcore/control.h"
#include "standin/win32/stand_in.h"
#include "standin/win32/utf8.h"
#include "tests/module/main_variant.h"
#include "tests/module/script.h"
#include "tests/support/runtime_heap.h"
#include "tests/support/system_names.h"

namespace {

using namespace ulm::tools;  // the helpers of a host
using ulm::glue::procedure;
using ulm::test::say;
using ulm::win32::toUtf8;

HMODULE library = nullptr;
OdRxModule* object = nullptr;
HINSTANCE slot = nullptr;
const HostAppControl* application = nullptr;
int handlerCalls = 0;
std::vector<Balance> marked;

// The folder of the library in the form that PATH contains.
std::wstring folderText() {
  const std::wstring path = moduleName(library);
  return path.substr(0, path.rfind(L'\\') + 1);
}

bool balanced() { return takeBalance(application) == marked; }

// The result of a call, or its exception.
template <class Call>
std::string outcome(Call call) {
  try {
    return call();
  } catch (const CXException& error) {
    return "CXException " + std::to_string(error.GetCode());
  } catch (const std::bad_alloc&) {
    return "bad_alloc";
  } catch (int number) {
    return "int " + std::to_string(number);
  }
}

std::string create() {
  slot = slot == nullptr ? library : slot;
  OdRxModule* const before = object;
  const std::string made = outcome([before]() -> std::string {
    object = procedure<decltype(odrxCreateModuleObject)>(library, "odrxCreateModuleObject")(&slot);
    return object == nullptr ? "null object" : object == before ? "same object" : "fresh object";
  });
  return made + (slot == nullptr ? ", slot cleared" : ", slot kept") +
         (object != nullptr ? ", " + std::to_string(object->numRefs()) + " references" : "");
}

std::string init() {
  return outcome([] { return std::string(object->initApp() ? "true" : "false"); });
}

// Makes the n-th allocation of a call fail, for each n, until the call succeeds. Prints the
// different outcomes and the last one. None may leak.
std::string sweep(std::string (*call)(), void (*undo)()) {
  std::vector<std::string> outcomes;
  std::string last;
  ulm::test::failEachAllocation(ulm::test::kRuntimeHeap, [&](ulm::test::FailingMemory& memory) {
    _wputenv(L"PATH=/start");
    if (!last.empty() && std::find(outcomes.begin(), outcomes.end(), last) == outcomes.end())
      outcomes.push_back(last);
    memory.run([&] { return !(last = call()).empty(); });
    undo();
    if (!balanced()) last += " unbalanced";
    return true;
  });
  std::string text;
  for (const std::string& each : outcomes) text += each + " | ";
  return text + "whole: " + last;
}

void printRecord() {
  if (application->recordCount() < 0) return say("no record");
  for (std::size_t i = 0; i < static_cast<std::size_t>(application->recordCount()); ++i) {
    say(application->recordKey(i), '=', application->recordValue(i), " tag ",
        application->recordTag(i));
  }
}

// The version and the build in the record.
void printVersion() {
  std::string version = "none", build = "none";
  for (std::size_t i = 0; application->recordKey(i) != nullptr; ++i) {
    const std::string_view key = application->recordKey(i);
    if (key == "ProductVersion") version = '"' + std::string(application->recordValue(i)) + '"';
    if (key == "ProductBuild") build = '"' + std::string(application->recordValue(i)) + '"';
  }
  say("version ", version, " build ", build);
}

void printLoads() {
  for (std::size_t i = 0; i < hostcmdLoadCount(); ++i) {
    const HostcmdLoad load = hostcmdLoad(i);
    say(toUtf8(load.file), ' ', toUtf8(load.engine), ' ', load.number);
  }
}

void load(const std::string& file) {
  library = LoadLibraryW(toWide(file).c_str());
  if (library != nullptr) return;
  // Windows has no message of its own for an exception.
  say("not loaded", ulm::test::kOnLayer ? std::string(": ") + ulmWin32LoadError() : "");
}

void unload() {
  const std::wstring path = moduleName(library);
  FreeLibrary(library);
  ulmWin32StopCallLog();
  say(GetModuleHandleW(path.c_str()) == nullptr ? "gone" : "still there");
}

// The log, with the library's folder as {folder}.
void printLog() {
  static const std::string folder = toUtf8(folderText().c_str());  // while it is loaded
  std::string log = ulmWin32CallLog();
  const std::size_t at = log.find(folder);
  if (at != std::string::npos) log.replace(at, folder.size(), "{folder}");
  std::cout << log;
}

std::wstring keptPath;  // the result of fillPath

// PATH in a form that does not depend on the library's folder.
void printPath() {
  std::wstring path = environmentVariable(L"PATH");
  if (!keptPath.empty() && path == keptPath) return say("PATH {kept}");
  const std::size_t characters = path.size();
  const std::wstring folder = folderText();
  const auto name = [&](const std::wstring& text, const wchar_t* with) {
    const std::size_t at = path.find(text);
    if (at != std::wstring::npos) path.replace(at, text.size(), with);
  };
  name(folder, L"{folder}");
  name(folder.substr(0, folder.size() - 1), L"{bare}");
  if (path.size() > 1000) return say("PATH ", characters, " characters");
  say("PATH ", toUtf8(path.c_str()));
}

// Sets PATH from a text in which {folder} is the library's folder and {bare} the same without its
// backslash.
void setPath(const std::string& text) {
  std::wstring value = toWide(text);
  const std::wstring folder = folderText();
  const auto put = [&](const std::wstring& mark, const std::wstring& with) {
    const std::size_t at = value.find(mark);
    if (at != std::wstring::npos) value.replace(at, mark.size(), with);
  };
  put(L"{folder}", folder);
  put(L"{bare}", folder.substr(0, folder.size() - 1));
  _wputenv((L"PATH=" + value).c_str());
}

// Fills PATH so that the assignment with the folder is `length` characters long.
void fillPath(const std::string& length) {
  const std::size_t fixed = 5 + 1 + folderText().size();
  keptPath.assign(std::stoul(length) - fixed, L'x');
  _wputenv((L"PATH=" + keptPath).c_str());
}

void tryNew() {
  const auto attempt = procedure<VariantTryNew>(library, "variantTryNew");
  for (const bool failing : {false, true}) {
    const char* fault = attempt(failing);
    say(fault == nullptr ? "all forms right" : fault);
  }
}

// Prints whether the heap has grown since the tenth call by more than a small constant.
void tellGrowth() {
#ifndef _WIN32
  constexpr std::size_t kSlack = 1024;
  static std::size_t calls = 0, first = 0;
  const struct mallinfo2 state = mallinfo2();
  const std::size_t now = state.uordblks + state.hblkhd;
  if (++calls <= 10) first = now;
  if (now <= first + kSlack) return say("no growth");
  say("grown by ", now - first);
#endif
}

}  // namespace

int main(int argc, char** argv) {
  using Value = const std::string&;
  return ulm::test::runSteps(
      {{"take",
        [](Value file) {
          const HMODULE taken = LoadLibraryW(toWide(file).c_str());
          const auto control = procedure<HostAppControlEntry>(taken, kHostAppControlEntry);
          if (control != nullptr) application = control();
        }},
       {"hide",
        [](Value which) {
          application->setPresent(static_cast<HostAppObject>(which[0] - '0'), false);
        }},
       {"keep-record", [](Value) { application->keepRecord(true); }},
       {"drop-record", [](Value) { application->keepRecord(false); }},
       {"refuse",
        [](Value call) { application->throwAt(static_cast<HostAppCall>(call[0] - '0')); }},
       {"no-manager", [](Value) { hostcmdSetPresent(false); }},
       {"load-result", [](Value result) { hostcmdSetResult(std::stoi(result)); }},
       {"throw-at",
        [](Value text) {
          const int kind = text[0] - '0';
          hostcmdThrowAt(static_cast<std::size_t>(std::stoull(text.substr(2))),
                         static_cast<HostcmdThrow>(kind));
        }},
       {"monitor", [](Value) { ulmWin32OpenWindow(L"_INDEBMON"); }},
       {"new-cut", [](Value) { ulmWin32TerminateCutNames(true); }},
       {"translation-throws", [](Value) { qlcoreSetTranslationThrows(true); }},
       {"handler", [](Value) { std::set_new_handler([] { ++handlerCalls; }); }},
       {"handler-calls", [](Value) { say("handler calls ", handlerCalls); }},
       {"fail", [](Value) { odrxAllocFail(0, UINT64_MAX); }},
       {"fail-next", [](Value) { odrxAllocFail(0, 1); }},
       {"succeed", [](Value) { odrxAllocFail(0, 0); }},
       {"log", [](Value) { ulmWin32StartCallLog(); }},
       {"print-log", [](Value) { printLog(); }},
       {"load", load},
       {"unload", [](Value) { unload(); }},
       {"version",
        [](Value) {
          std::uint32_t numbers[4] = {9, 9, 9, 9};
          procedure<decltype(odrxGetAPIVersion)>(library, "odrxGetAPIVersion")(
              &numbers[0], &numbers[1], &numbers[2], &numbers[3]);
          say("version ", numbers[0], ' ', numbers[1], ' ', numbers[2], ' ', numbers[3]);
        }},
       {"create", [](Value) { say(create()); }},
       {"init", [](Value) { say("init ", init()); }},
       {"uninit", [](Value) { object->uninitApp(); }},
       {"final",
        [](Value) {
          object->finalRelease();
          object = nullptr;
        }},
       {"add-ref", [](Value) { object->addRef(); }},
       {"release", [](Value) { object->release(); }},
       {"references", [](Value) { say("references ", object->numRefs()); }},
       {"handle",
        [](Value) { say(object->moduleHandle() == library ? "own handle" : "foreign handle"); }},
       {"path-length", [](Value) { say("path length ", object->modulePath().getLength()); }},
       {"path-matches",
        [](Value) {
          const bool whole = moduleName(library) == object->modulePath().c_str();
          const bool start = moduleName(library).rfind(object->modulePath().c_str(), 0) == 0;
          say(whole ? "whole path" : start ? "cut path" : "wrong path");
        }},
       {"set-path", setPath},
       {"fill-path", fillPath},
       {"path", [](Value) { printPath(); }},
       {"raw-path", [](Value) { say("PATH ", toUtf8(environmentVariable(L"PATH").c_str())); }},
       {"real-path",
        [](Value) {
          const bool added = std::string_view(std::getenv("PATH")).find(';') != std::string::npos;
          say(added ? "real PATH changed" : "real PATH kept");
        }},
       {"wld", [](Value) { say("wld ", qlcoreWldName(0) ? toUtf8(qlcoreWldName(0)) : "none"); }},
       {"record", [](Value) { printRecord(); }},
       {"strings",
        [](Value) { say(application->productString(0), " / ", application->productString(1)); }},
       {"publish-count", [](Value) { say("published ", application->publishCount()); }},
       {"version-record", [](Value) { printVersion(); }},
       {"loads", [](Value) { printLoads(); }},
       {"load-count", [](Value) { say("loads ", hostcmdLoadCount()); }},
       {"mark", [](Value) { marked = takeBalance(application); }},
       {"balance", [](Value) { say(balanced() ? "balanced" : "unbalanced"); }},
       {"sweep-init", [](Value) { say("sweep ", sweep(init, [] {})); }},
       {"sweep-create",
        [](Value) {
          say("sweep ", sweep(create, [] {
                if (object != nullptr) object->finalRelease();
                object = nullptr;
              }));
        }},
       {"flags", [](Value) { say("flags ", procedure<VariantFlags>(library, "variantFlags")()); }},
       {"try-new", [](Value) { tryNew(); }},
       {"growth", [](Value) { tellGrowth(); }},
       {"take-in",
        [](Value) { procedure<VariantDelete>(library, "variantDelete")(operator new(24)); }},
       {"translation",
        [](Value) {
          say("translation users ", qlcoreTranslationUsers(),
              qlcoreTranslationInstance() == library ? " own" : " foreign");
        }}},
      argc, argv);
}
