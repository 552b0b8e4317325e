// The module and its search for the host: the rows of tests/data/module, each in a process of its
// own.
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

// The opposite case: the library's delete receives a block of the run-time library.
TEST(Heaps, AForeignBlockEndsTheProcess) {
  const auto result = ulm::tools::runProcess(ulm::tools::programFolder() / "module_probe",
                                             {"load=ULM_MainVariant.dll", "take-in"}, {},
                                             ulm::tools::ErrorStream::Joined);
  EXPECT_TRUE(!result.ending.empty() || result.exitCode != 0);
  EXPECT_NE(result.output.find("not from odrxAlloc"), std::string::npos) << result.output;
}

}  // namespace
