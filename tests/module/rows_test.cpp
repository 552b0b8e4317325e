// The module and its search for the host in processes of every kind: the rows of tests/data/module,
// each in a process of its own.
#include <gtest/gtest.h>

#include "tests/module/probe_rows.h"

namespace {

using ulm::test::ProbeRow;
using ulm::test::readRows;

class Rows : public testing::TestWithParam<ProbeRow> {};

TEST_P(Rows, PrintWhatTheyShould) { ulm::test::runRow(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Life, Rows, testing::ValuesIn(readRows(ULM_TEST_DATA "/module/life.txt")),
                         ulm::test::rowName);
INSTANTIATE_TEST_SUITE_P(Lookup, Rows,
                         testing::ValuesIn(readRows(ULM_TEST_DATA "/module/lookup.txt")),
                         ulm::test::rowName);

// The other way round: the library's delete is given a block of the run-time's.
TEST(Heaps, AForeignBlockEndsTheProcess) {
  const auto result = ulm::tools::runProcess(ulm::tools::programFolder() / "module_probe",
                                             {"load=ULM_MainVariant.dll", "take-in"}, {},
                                             ulm::tools::ErrorStream::Joined);
  EXPECT_TRUE(!result.ending.empty() || result.exitCode != 0);
  EXPECT_NE(result.output.find("not from odrxAlloc"), std::string::npos) << result.output;
}

// Every mixture of the libraries a host may bring, in both kinds of program: the first that is
// there in the order of the search decides.
TEST(Lookup, EveryMixtureOfLibraries) {
  for (unsigned mixture = 0; mixture < 16; ++mixture) {
    const bool app = (mixture & 1) != 0, view = (mixture & 2) != 0, support = (mixture & 4) != 0;
    const bool exporting = (mixture & 8) != 0;  // its export gives null here
    ProbeRow row{"", exporting ? "lookup_probe_exporting" : "lookup_probe", {}, ""};
    if (app) row.steps.push_back("load=QlHostApp.dll");
    if (view) row.steps.push_back("load=qlview.dll");
    if (support) row.steps.push_back("load=qlsupport.dll");
    row.steps.insert(row.steps.end(), {"app", "instance", "translate"});
    row.expected = std::string("app ") + (app ? "QlHostApp" : "null") + "\ninstance " +
                   (exporting ? "null"
                    : view    ? "qlview"
                    : app     ? "QlHostApp"
                              : "null") +
                   // The application's library links the core library, which then translates.
                   "\ntranslate " +
                   (app       ? "1 1"
                    : support ? "2 2"
                              : "0 0") +
                   "\n";
    SCOPED_TRACE(mixture);
    ulm::test::runRow(row);
  }
}

}  // namespace
