// `ulmira host` as a user calls it.
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/support/process.h"

namespace {

using Json = nlohmann::ordered_json;
using ulm::tools::ProcessResult;
using ulm::tools::programFolder;
using Arguments = std::vector<std::string>;

ProcessResult ulmira(Arguments arguments) {
  arguments.insert(arguments.begin(), "host");
  return ulm::tools::runProcess(programFolder() / "ulmira", arguments, {"PATH=/some/where"});
}

Json report(Arguments arguments) {
  arguments.push_back("--json");
  const ProcessResult result = ulmira(arguments);
  EXPECT_EQ(result.exitCode, 0);
  return Json::parse(result.output);
}

TEST(HostCommand, ReportsOneLifeAsJson) {
  const Json whole = report({});
  std::vector<std::string> keys;
  for (const auto& [key, value] : whole.items()) keys.push_back(key);
  EXPECT_EQ(keys,
            (std::vector<std::string>{"apiVersion", "modulePath", "record", "wld", "pathBefore",
                                      "pathAfter", "loads", "started", "unbalanced"}));
  EXPECT_EQ(whole["apiVersion"], Json({21, 8, 0, 0}));
  const std::string path = whole["modulePath"];
  EXPECT_EQ(path.substr(0, 3), "Z:\\");
  EXPECT_EQ(path.substr(path.size() - 12), "\\ULM_Main.so");
  EXPECT_EQ(whole["record"][3], Json({"ProductVersion", "1.5.5798.3294"}));
  EXPECT_EQ(whole["record"].size(), 6u);
  EXPECT_EQ(whole["wld"], "Ulmira.wld");
  EXPECT_EQ(whole["pathBefore"], "/some/where");
  EXPECT_EQ(whole["pathAfter"], "/some/where;" + path.substr(0, path.size() - 11));
  ASSERT_EQ(whole["loads"].size(), 12u);
  EXPECT_EQ(whole["loads"][3],
            Json({{"file", "ULM_SegmentationNet.dll"}, {"engine", "MGD"}, {"number", 3}}));
  EXPECT_EQ(whole["started"], true);
  EXPECT_EQ(whole["unbalanced"], Json::array());
}

TEST(HostCommand, OtherKindsOfHost) {
  for (const char* library : {"qlview", "qlsupport"}) {
    EXPECT_TRUE(report({"--without", library})["record"].is_array()) << library;
  }
  const Json bare =
      report({"--without", "QlHostApp", "--without", "qlview", "--without", "qlsupport"});
  EXPECT_TRUE(bare["record"].is_null());
  EXPECT_EQ(bare["started"], true);
  const Json unmanaged = report({"--without", "qlhostcmd"});
  EXPECT_EQ(unmanaged["loads"], Json::array());
  EXPECT_EQ(unmanaged["started"], false);
  EXPECT_EQ(unmanaged["wld"], "Ulmira.wld");
}

TEST(HostCommand, TellsWhatDidNotComeBack) {
  const std::string leaky = (programFolder() / "leaky_module.so").string();
  EXPECT_EQ(report({"--module", leaky})["unbalanced"], Json({"IParam", "memory", "ULM_Main"}));
}

TEST(HostCommand, TellsPeopleTheSame) {
  const std::string text = ulmira({}).output;
  for (const char* part : {"21.8.0.0", "LongName", "ULM_RegistrationNet.dll", "Ulmira.wld",
                           "added at the end: ;Z:\\", "all came back"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part;
  }
}

struct RefusalCase {
  Arguments arguments;
  int exitCode;
  const char* message;  // in what it prints, the error stream included
};

TEST(HostCommand, RefusesInOneLine) {
  const std::string text = (programFolder() / "qlview.so").string();
  const RefusalCase cases[] = {
      {{"--module", "/no/such/library.so"}, 1, "cannot load /no/such/library.so"},
      {{"--module", text}, 1, "lacks the entry odrxGetAPIVersion"},
      {{"--module", "/etc/passwd"}, 1, "cannot load /etc/passwd"},
      {{"--without", "qlcore"}, 2, "--without"},
      {{"--nonsense"}, 2, "--nonsense"},
  };
  for (const RefusalCase& tested : cases) {
    // The error stream joins the output, so that it can be read here.
    std::string command = "exec \"$0\" host";
    for (const std::string& argument : tested.arguments) command += " '" + argument + "'";
    const ProcessResult result = ulm::tools::runProcess(
        "/bin/sh", {"-c", command + " 2>&1", (programFolder() / "ulmira").string()});
    EXPECT_EQ(result.exitCode, tested.exitCode) << result.output;
    EXPECT_NE(result.output.find(tested.message), std::string::npos) << result.output;
    if (tested.exitCode == 1) {
      EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << result.output;
    }
  }
}

}  // namespace
