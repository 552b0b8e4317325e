// The real library in host processes of every kind: each row is a process of its own.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/probe_test.h"

namespace {

namespace fs = std::filesystem;
using ulm::test::ProbeCase;
using Steps = std::vector<std::string>;

constexpr char kProbe[] = "module_probe";

Steps operator+(Steps first, const Steps& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

const Steps kLoad{"load=ULM_Main.dll"};
const Steps kCreated{"load=ULM_Main.dll", "mark", "create"};
const Steps kHosted = Steps{"take=QlHostApp.dll"} + kCreated;
constexpr char kFresh[] = "create fresh, slot cleared, references 0\n";

class ModuleLife : public testing::TestWithParam<ProbeCase> {};

TEST_P(ModuleLife, DoesAsAHostExpects) {
  ulm::test::runProbe(kProbe, GetParam().steps, GetParam().expected);
}

const ProbeCase kCases[] = {
    {"EntryPoints",
     kLoad + Steps{"version", "create", "create", "handle", "path-matches", "unload"},
     "version 21 8 0 0\ncreate fresh, slot cleared, references 0\ncreate same, slot kept, "
     "references 0\n"
     "own handle\nwhole path\ngone\n"},
    {"CountNeverDestroys",
     kCreated + Steps{"release", "references", "add-ref", "add-ref", "references", "release",
                      "references", "uninit", "final", "create", "references"},
     std::string(kFresh) + "references -1\nreferences 1\nreferences 0\n" + kFresh +
         "references 0\n"},
    {"StartShowsEveryEffect",
     kHosted + Steps{"set-path=/bin", "init", "record", "strings", "wld", "path", "loads"},
     std::string(kFresh) +
         "init true\nLongName=Ulmira Point Cloud Processing tag 10\nShortName=Ulmira tag 10\n"
         "DisplayName=Ulmira Point Cloud Processing tag 10\nProductVersion=1.5.5798.3294 tag 18\n"
         "ProductBuild=5798 tag 10\nIcon=ULM_Main.dll,1 tag 10\nThe Ulmira developers / ULM_Main\n"
         "wld Ulmira.wld\nPATH /bin;{folder}\n"
         "ULM_Classification.dll TX 3\nULM_Segmentation.dll TX 3\nULM_Filtration.dll TX 3\n"
         "ULM_SegmentationNet.dll MGD 3\nULM_Compare.dll TX 3\nULM_Measurement.dll TX 3\n"
         "ULM_Meshing.dll TX 3\nULM_Topology.dll TX 3\nULM_Vectorization.dll TX 3\n"
         "ULM_Registration.dll TX 3\nULM_RegistrationMgd.dll TX 3\nULM_RegistrationNet.dll MGD "
         "3\n"},
    {"SecondStartAddsNothingToPath",
     kHosted + Steps{"set-path=/bin", "init", "init", "path", "load-count", "publish-count",
                     "uninit", "final", "create", "init", "path", "load-count", "uninit", "final",
                     "balance", "unload"},
     std::string(kFresh) + "init true\ninit true\nPATH /bin;{folder}\nloads 24\npublished 2\n" +
         kFresh + "init true\nPATH /bin;{folder}\nloads 36\nbalanced\ngone\n"},
    {"StopWithoutStart", kCreated + Steps{"uninit", "uninit", "final", "balance", "unload"},
     std::string(kFresh) + "balanced\ngone\n"},
    {"NoApplication", kCreated + Steps{"init", "wld"},
     std::string(kFresh) + "init true\nwld Ulmira.wld\n"},
    {"ApplicationGivesNull", kHosted + Steps{"hide=0", "init", "record", "final", "balance"},
     std::string(kFresh) + "init true\nno record\nbalanced\n"},
    {"NoExterior", kHosted + Steps{"hide=1", "init", "record", "final", "balance"},
     std::string(kFresh) + "init true\nno record\nbalanced\n"},
    {"NoProductInfo", kHosted + Steps{"hide=2", "init", "record", "final", "balance"},
     std::string(kFresh) + "init true\nno record\nbalanced\n"},
    {"ApplicationKeepsTheRecord",
     kHosted + Steps{"keep-record", "init", "final", "balance", "drop-record", "balance"},
     std::string(kFresh) + "init true\nunbalanced\nbalanced\n"},
    {"NoManager", kHosted + Steps{"no-manager", "init", "load-count", "wld", "final", "balance"},
     std::string(kFresh) + "init false\nloads 0\nwld Ulmira.wld\nbalanced\n"},
    {"ModulesThatFailChangeNothing", kCreated + Steps{"load-result=0", "init", "load-count"},
     std::string(kFresh) + "init true\nloads 12\n"},
    {"ManagerThrowsAtTheFirst",
     kHosted + Steps{"throw-at=1:0", "init", "load-count", "final", "balance"},
     std::string(kFresh) + "init false\nloads 1\nbalanced\n"},
    {"ManagerThrowsAtTheLast",
     kHosted + Steps{"throw-at=1:11", "init", "load-count", "init", "load-count"},
     std::string(kFresh) + "init false\nloads 12\ninit true\nloads 24\n"},
    {"ManagerMissesAnInterface", kCreated + Steps{"throw-at=2:5", "init", "load-count"},
     std::string(kFresh) + "init false\nloads 6\n"},
    {"ForeignExceptionPassesOn",
     kHosted + Steps{"throw-at=3:5", "init", "load-count", "uninit", "final", "balance", "unload"},
     std::string(kFresh) + "init int 7\nloads 6\nbalanced\ngone\n"},
    {"ExceptionWhilePublishingPassesOn",
     kHosted + Steps{"set-path=/bin", "throw-at-publish", "init", "wld", "path", "load-count",
                     "final", "balance"},
     std::string(kFresh) + "init bad_alloc\nwld none\nPATH /bin\nloads 0\nbalanced\n"},

    {"PathUnset", kCreated + Steps{"set-path=", "init", "path"},
     std::string(kFresh) + "init true\nPATH ;{folder}\n"},
    {"PathHoldsTheFolder", kCreated + Steps{"set-path=/a;{folder};/b", "init", "path"},
     std::string(kFresh) + "init true\nPATH /a;{folder};/b\n"},
    {"PathHoldsALongerEntry", kCreated + Steps{"set-path=/a;X{folder}sub", "init", "path"},
     std::string(kFresh) + "init true\nPATH /a;X{folder}sub\n"},
    {"PathEndsInASemicolon", kCreated + Steps{"set-path=/a;", "init", "path"},
     std::string(kFresh) + "init true\nPATH /a;;{folder}\n"},
    {"LongestPath", kCreated + Steps{"fill-path=8319", "init", "path"},
     std::string(kFresh) + "init true\nPATH 8314 characters\n"},
    {"PathOneTooLong", kCreated + Steps{"fill-path=8320", "init", "path", "init", "path"},
     std::string(kFresh) + "init true\nPATH {kept}\ninit true\nPATH {kept}\n"},
    {"PathBeyondTheReadBuffer", kCreated + Steps{"fill-path=20000", "init", "path"},
     std::string(kFresh) + "init true\nPATH {kept}\n"},

    {"NoMemoryForTheObject",
     Steps{"load=ULM_Main.dll", "mark", "fail", "create", "succeed", "balance", "create"},
     "create bad_alloc\nbalanced\n" + std::string(kFresh)},
    {"NoMemoryForTheObjectWithHandler",
     Steps{"load=ULM_Main.dll", "mark", "handler", "fail", "create", "handler-calls", "succeed",
           "balance", "create"},
     "create null, slot cleared\nhandler calls 1\nbalanced\n" + std::string(kFresh)},
    {"EachAllocationOfTheCreationFails", Steps{"load=ULM_Main.dll", "mark", "sweep-create"},
     "sweep bad_alloc | whole: fresh, slot cleared, references 0\n"},
    {"EachAllocationOfTheStartFails",
     kHosted + Steps{"final", "mark", "create", "mark", "sweep-init"},
     std::string(kFresh) + kFresh + "sweep true | bad_alloc | whole: true\n"},
    {"EachAllocationOfTheStartFailsWithHandler",
     Steps{"take=QlHostApp.dll", "handler", "load=ULM_Main.dll", "create", "mark", "sweep-init"},
     std::string(kFresh) + "sweep true | bad_alloc | whole: true\n"},
    {"NoMemoryForTheSwitchesRefusesTheLoad",
     Steps{"monitor", "mark", "fail", "load=ULM_MainVariant.dll", "succeed", "balance",
           "load=ULM_MainVariant.dll", "flags", "unload"},
     "not loaded: out of memory\nbalanced\nflags 0\ngone\n"},
    {"NoMemoryForTheSwitchesWithHandler",
     Steps{"monitor", "mark", "handler", "fail-next", "load=ULM_MainVariant.dll", "flags",
           "handler-calls", "unload", "balance"},
     "flags 0\nhandler calls 1\ngone\nbalanced\n"},
    {"OperatorsOfTheLibrary", Steps{"load=ULM_MainVariant.dll", "try-new"},
     "all forms right\nall forms right\n"},
    {"OperatorsOfTheLibraryWithHandler",
     Steps{"handler", "load=ULM_MainVariant.dll", "try-new", "handler-calls"},
     "all forms right\nall forms right\nhandler calls 10\n"},
    {"TranslationIsStarted", kLoad + Steps{"translation", "unload"},
     "translation users 1 own\ngone\n"},
};
INSTANTIATE_TEST_SUITE_P(Cases, ModuleLife, testing::ValuesIn(kCases), ulm::test::caseName);

std::string windowsForm(const fs::path& path) {
  std::string text = "Z:" + path.string();
  std::replace(text.begin(), text.end(), '/', '\\');
  return text;
}

// A library in a folder of its own, with what lies beside it.
class OwnFolder : public testing::Test {
 protected:
  void place(const fs::path& name, const std::string& profile) {
    folder_ = fs::path(testing::TempDir()) / ("ulmira-" + std::to_string(::getpid())) / name;
    create_directories(folder_);
    for (const char* library : {"ULM_Main.so", "ULM_MainVariant.so"}) {
      copy_file(ulm::tools::programFolder() / library, folder_ / library,
                fs::copy_options::overwrite_existing);
    }
    if (!profile.empty()) std::ofstream(folder_ / "mt.ini") << profile;
  }
  std::string load(const char* library) const { return "load=" + (folder_ / library).string(); }
  void TearDown() override {
    fs::remove_all(fs::path(testing::TempDir()) / ("ulmira-" + std::to_string(::getpid())));
  }
  fs::path folder_;
};

struct SwitchCase {
  const char* name;
  const char* profile;
  bool monitor;
  unsigned flags;  // assert 1, add-jump 2, remove-jump 4, defecate 8
};

TEST_F(OwnFolder, SwitchesOfTheProfile) {
  const SwitchCase cases[] = {
      {"no file", "", true, 0},
      {"all on", "[mt]\nJumpArrOnAdd=1\nJumpArrOnRemove=1\nDefecateMem=1\nmqlassert=1\n", true, 15},
      {"asserts need the monitor", "[mt]\nDefecateMem=1\nmqlassert=1\n", false, 8},
      {"any number but 0 is on",
       "[mt]\nJumpArrOnAdd=-3\nJumpArrOnRemove=0\nDefecateMem=0x0\nmqlassert=2\n", true, 3},
      {"case and quotes", "; note\r\n[MT]\r\n jumparronremove = \"7 on\" \r\n", true, 4},
      {"another section", "[mt2]\nJumpArrOnAdd=1\n[other]\nmqlassert=1\n", true, 0},
  };
  for (const SwitchCase& tested : cases) {
    SCOPED_TRACE(tested.name);
    place("switches", tested.profile);
    Steps steps = tested.monitor ? Steps{"monitor"} : Steps{};
    steps = steps + Steps{load("ULM_MainVariant.so"), "flags", "unload"};
    ulm::test::runProbe(kProbe, steps, "flags " + std::to_string(tested.flags) + "\ngone\n");
    fs::remove_all(folder_);
  }
}

// The calls of a load, a start and an unload in their order.
TEST_F(OwnFolder, OrderOfLoadStartAndUnload) {
  place("order", "[mt]\nmqlassert=1\nDefecateMem=1\n");
  const std::string library = windowsForm(folder_ / "ULM_MainVariant.so");
  const std::string attach =
      "FindWindowW _indebmon\nGetPrivateProfileIntW mqlassert\nGetPrivateProfileIntW JumpArrOnAdd\n"
      "GetPrivateProfileIntW JumpArrOnRemove\nGetPrivateProfileIntW DefecateMem\n";
  const std::string entry =
      "DisableThreadLibraryCalls\nGetModuleHandleA qlcore.dll\nGetProcAddress _InitResTranslation\n"
      "_InitResTranslation\nGetProcAddress _QLAfxDllMain\n";
  std::string start =
      "GetModuleHandleW QlHostApp.dll\nGetProcAddress GetApp\nGetFileVersionInfoW " + library +
      "\npublishRecord\nSupp_AddWld\nGetEnvironmentVariableW PATH\n_wputenv PATH\n";
  for (int row = 0; row < 12; ++row) start += "loadModule\n";
  const Steps before{"take=QlHostApp.dll", "monitor", "log", load("ULM_MainVariant.so"),
                     "print-log"};
  const Steps after{"create", "log", "init",   "print-log", "uninit",
                    "final",  "log", "unload", "print-log"};
  ulm::test::runProbe(kProbe, before + after,
                      attach + "constant made after flags\n" + entry + "afx 1\n" + kFresh +
                          "init true\n" + start + "gone\nafx 0\nconstant destroyed\n");
}

TEST_F(OwnFolder, NamesOutsideAscii) {
  place("Tür links é", "[mt]\nJumpArrOnAdd=1\n");
  ulm::test::runProbe(kProbe,
                      {load("ULM_MainVariant.so"), "flags", "create", "set-path=/bin", "init",
                       "path", "set-path={bare}", "init", "path"},
                      "flags 2\n" + std::string(kFresh) +
                          "init true\nPATH /bin;{folder}\ninit true\nPATH {bare};{folder}\n");
  // Letters that the ANSI code page lacks come out lossy in PATH, and nothing else suffers.
  place("\u4e2d\u6587", "[mt]\nJumpArrOnAdd=1\n");
  ulm::test::runProbe(kProbe,
                      {"take=QlHostApp.dll", load("ULM_MainVariant.so"), "flags", "create",
                       "path-matches", "set-path=/bin", "init", "raw-path"},
                      "flags 2\n" + std::string(kFresh) + "whole path\ninit true\nPATH /bin;" +
                          windowsForm(folder_.parent_path()) + "\\??\\\n");
}

TEST_F(OwnFolder, LongNamesAreCut) {
  for (const std::size_t length : {259u, 261u, 300u}) {
    const std::size_t start =
        testing::TempDir().size() + ("ulmira-" + std::to_string(::getpid())).size();
    // The whole name counts the drive, both separators and the file's own name.
    const std::size_t fill = length - 2 - start - 2 - std::string("ULM_Main.so").size();
    std::string folder(fill, 'n');
    folder[100] = '/';  // a folder's own name may not be as long
    place(folder, "");
    const bool whole = length < 260;
    const std::string names =
        "LongName=Ulmira Point Cloud Processing tag 10\nShortName=Ulmira tag 10\n"
        "DisplayName=Ulmira Point Cloud Processing tag 10\n";
    const std::string version =
        whole ? "ProductVersion=1.5.5798.3294 tag 18\nProductBuild=5798 tag 10\n"
              : "ProductVersion= tag 18\n";
    ulm::test::runProbe(kProbe,
                        {"take=QlHostApp.dll", load("ULM_Main.so"), "create", "path-length",
                         "path-matches", "init", "record"},
                        kFresh +
                            ("path length " + std::to_string(std::min<std::size_t>(length, 260))) +
                            (whole ? "\nwhole path" : "\ncut path") + "\ninit true\n" + names +
                            version + "Icon=ULM_Main.dll,1 tag 10\n");
  }
}

TEST(ModuleLoad, ManyTimesWithoutGrowth) {
  Steps steps;
  std::string expected;
  for (int i = 0; i < 50; ++i) {
    steps = steps + kCreated + Steps{"init", "final", "balance", "unload"};
    expected += std::string(kFresh) + "init true\nbalanced\ngone\n";
  }
  ulm::test::runProbe(kProbe, steps, expected);
}

TEST(ModuleLoad, RealPathIsKept) {
  ulm::test::runProbe(kProbe,
                      kCreated + Steps{"init", std::string("real-path=") + std::getenv("PATH")},
                      std::string(kFresh) + "init true\nreal PATH kept\n");
}

}  // namespace
