// The search for the host in every kind of process: each row is a process of its own.
#include <gtest/gtest.h>

#include "tests/support/probe_test.h"

namespace {

using ulm::test::ProbeCase;

constexpr char kPlain[] = "lookup_probe";
constexpr char kExporting[] = "lookup_probe_exporting";

class HostLookup : public testing::TestWithParam<ProbeCase> {};

TEST_P(HostLookup, FindsTheHost) {
  ulm::test::runProbe(GetParam().probe, GetParam().steps, GetParam().expected);
}

const ProbeCase kCases[] = {
    {"EmptyProcess",
     {"app", "instance", "object", "window", "translate", "own"},
     "app null\ninstance null\nobject null\nwindow 0\ntranslate 0 0\nown program 10\n",
     kPlain},
    {"ApplicationLibraryWins",
     {"load=QlHostApp.dll", "register=CLSID_APP", "app", "instance", "object", "window",
      "references"},
     "app QlHostApp\ninstance QlHostApp\nobject QlHostApp\nwindow 18193\nreferences "
     "0\n",
     kPlain},
    {"CoreFactory",
     {"load=qlcore.dll", "app", "register=CLSID_OTHER", "app", "register=CLSID_APP", "app",
      "references", "app", "references"},
     "app null\napp null\napp program\nreferences 1\napp program\nreferences 2\n",
     kPlain},
    {"CoreWithoutFactory", {"load=bare/qlcore.dll", "app"}, "app null\n", kPlain},
    {"ApplicationLibraryWithoutExport",
     {"load=bare/QlHostApp.dll", "load=qlcore.dll", "register=CLSID_APP", "app", "instance"},
     "app program\ninstance null\n",
     kPlain},
    {"LaterLibraryIsFound",
     {"app", "instance", "load=QlHostApp.dll", "app", "instance", "load=qlview.dll", "instance"},
     "app null\ninstance null\napp QlHostApp\ninstance QlHostApp\ninstance qlview\n",
     kPlain},
    {"ViewerIsTheMainInstance",
     {"load=QlHostApp.dll", "load=qlview.dll", "instance", "object", "window", "app"},
     "instance qlview\nobject null\nwindow 0\napp QlHostApp\n",
     kPlain},
    {"ProgramDecidesTheMainInstance",
     {"load=QlHostApp.dll", "load=qlview.dll", "main=bare", "instance", "main=QlHostApp.dll",
      "instance", "window"},
     "instance null\ninstance QlHostApp\nwindow 18193\n",
     kExporting},
    {"ProgramsInstanceHasTheApplication",
     {"load=other/QlHostAppCopy.dll", "main=QlHostAppCopy.dll", "app"},
     "app QlHostAppCopy\n",
     kExporting},
    {"ProgramsInstanceWithoutApplicationEndsTheSearch",
     {"load=qlview.dll", "load=qlcore.dll", "register=CLSID_APP", "main=qlview.dll", "app",
      "references"},
     "app null\nreferences 0\n",
     kExporting},
    {"ApplicationLibraryWithoutExportAndProgramWithout",
     {"load=bare/QlHostApp.dll", "load=qlview.dll", "load=qlcore.dll", "register=CLSID_APP",
      "main=qlview.dll", "app"},
     "app null\n",
     kExporting},
    {"ApplicationLibraryComesBeforeTheProgram",
     {"load=QlHostApp.dll", "load=other/QlHostAppCopy.dll", "main=QlHostAppCopy.dll", "app"},
     "app QlHostApp\n",
     kExporting},
    {"TranslationByTheCore",
     {"load=qlsupport.dll", "translate", "load=qlcore.dll", "translate"},
     "translate 2 2\ntranslate 1 1\n",
     kPlain},
    {"NoSecondTryWhereTheCoreLacksTheExport",
     {"load=bare/qlcore.dll", "load=qlsupport.dll", "translate", "string=qlcore.dll"},
     "translate 0 0\nstring 4 seco\n",
     kPlain},
    {"StringsWithoutCore",
     {"load=bare/QlHostApp.dll", "string=QlHostApp.dll"},
     "string 4 seco\n",
     kPlain},
    {"StringsByTheSupport",
     {"load=bare/QlHostApp.dll", "load=qlsupport.dll", "string=QlHostApp.dll"},
     "string 4 seco\n",
     kPlain},
};
INSTANTIATE_TEST_SUITE_P(Cases, HostLookup, testing::ValuesIn(kCases), ulm::test::caseName);

// Every mixture of the libraries a host may bring, in both kinds of program: the first that is
// there in the order of the search decides.
TEST(HostLookup, EveryMixtureOfLibraries) {
  const char* const kLibraries[] = {"QlHostApp.dll", "qlview.dll", "qlsupport.dll"};
  for (unsigned mixture = 0; mixture < 16; ++mixture) {
    const bool app = (mixture & 1) != 0, view = (mixture & 2) != 0, support = (mixture & 4) != 0;
    const bool exporting = (mixture & 8) != 0;  // its export gives null here
    std::vector<std::string> steps;
    for (unsigned i = 0; i < 3; ++i) {
      if ((mixture >> i & 1) != 0) steps.push_back(std::string("load=") + kLibraries[i]);
    }
    steps.insert(steps.end(), {"app", "instance", "translate"});
    const std::string instance = exporting ? "null" : view ? "qlview" : app ? "QlHostApp" : "null";
    // The application's library links the core library, which then translates.
    const std::string translated = app ? "1 1" : support ? "2 2" : "0 0";
    const std::string expected = std::string("app ") + (app ? "QlHostApp" : "null") +
                                 "\ninstance " + instance + "\ntranslate " + translated + "\n";
    SCOPED_TRACE(mixture);
    ulm::test::runProbe(exporting ? kExporting : kPlain, steps, expected);
  }
}

}  // namespace
