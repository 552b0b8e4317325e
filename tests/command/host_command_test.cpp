// `ulmira host`, run as a process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "command/support/process.h"
#include "command/support/program.h"
#include "tests/support/system_names.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using ulm::tools::ProcessResult;
using ulm::tools::programFolder;
using ulm::tools::textOf;
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

TEST(HostCommand, ReportsOneRunAsJson) {
  const Json whole = report({});
  std::vector<std::string> keys;
  for (const auto& [key, value] : whole.items()) keys.push_back(key);
  EXPECT_EQ(keys, (std::vector<std::string>{"apiVersion", "modulePath", "mainInstance",
                                            "translation", "secondTranslation", "switches",
                                            "record", "wld", "pathBefore", "pathAfter", "pathKept",
                                            "loads", "started", "unbalanced"}));
  EXPECT_EQ(whole["apiVersion"], Json({21, 8, 0, 0}));
  const std::string path = whole["modulePath"];
  EXPECT_EQ(path.substr(0, 3), "Z:\\");
  const std::string file = std::string("ULM_Main") + ulm::test::kLibraryEnding;
  const std::string folder = path.substr(0, path.size() - file.size());
  EXPECT_EQ(path, folder + file);
  EXPECT_EQ(folder.back(), '\\');
  EXPECT_EQ(whole["record"][3], Json({"ProductVersion", "1.5.5798.3294"}));
  EXPECT_EQ(whole["record"].size(), 6u);
  EXPECT_EQ(whole["wld"], "Ulmira.wld");
  EXPECT_EQ(whole["pathBefore"], "/some/where");
  EXPECT_EQ(whole["pathAfter"], "/some/where;" + folder);
  ASSERT_EQ(whole["loads"].size(), 12u);
  EXPECT_EQ(whole["loads"][3],
            Json({{"file", "ULM_SegmentationNet.dll"}, {"engine", "MGD"}, {"number", 3}}));
  EXPECT_EQ(whole["started"], true);
  EXPECT_EQ(whole["unbalanced"], Json::array());
}

TEST(HostCommand, OtherKindsOfHost) {
  const Json partial = report({"--without", "qlview", "--without", "qlsupport"});
  EXPECT_TRUE(partial["record"].is_array());
  EXPECT_EQ(partial["mainInstance"], "QlHostApp");
  EXPECT_EQ(partial["translation"], "qlcore");
  EXPECT_TRUE(partial["secondTranslation"].is_null());
  const Json bare =
      report({"--without", "QlHostApp", "--without", "qlview", "--without", "qlsupport"});
  EXPECT_TRUE(bare["record"].is_null());
  EXPECT_TRUE(bare["mainInstance"].is_null());
  EXPECT_EQ(bare["started"], true);
  const Json unmanaged = report({"--without", "qlhostcmd"});
  EXPECT_EQ(unmanaged["loads"], Json::array());
  EXPECT_EQ(unmanaged["started"], false);
  EXPECT_EQ(unmanaged["wld"], "Ulmira.wld");
}

TEST(HostCommand, ReportsUnreleasedReferences) {
  const std::string leaky =
      textOf(programFolder() / ("leaky_module" + std::string(ulm::test::kLibraryEnding)));
  EXPECT_EQ(report({"--module", leaky})["unbalanced"], Json({"IParam", "memory", "ULM_Main"}));
}

// The report is the same on every system except for its folder.
TEST(HostCommand, PrintsTheWholeReport) {
  std::string text = ulmira({}).output;
  std::string folder = textOf(ulm::test::windowsName(programFolder()));
  for (std::size_t at = text.find(folder); at != std::string::npos; at = text.find(folder)) {
    text.replace(at, folder.size(), "{folder}");
  }
  const std::size_t ending = text.find(ulm::test::kLibraryEnding);
  ASSERT_NE(ending, std::string::npos) << text;
  text.replace(ending, std::strlen(ulm::test::kLibraryEnding), "{ending}");
  std::ifstream file(ULM_TEST_DATA "/command/host_report.txt");
  EXPECT_EQ(text, std::string(std::istreambuf_iterator<char>(file), {}));
}

struct RefusalCase {
  Arguments arguments;
  int exitCode;
  const char* message;  // a part of the output of both streams
};

// Writes the first `size` bytes of the module to a file; if `foreign`, with the number of another
// processor. Returns the file's name.
std::string damagedModule(const fs::path& folder, const char* name, std::size_t size,
                          bool foreign) {
  std::ifstream whole(programFolder() / (std::string("ULM_Main") + ulm::test::kLibraryEnding),
                      std::ios::binary);
  std::string bytes(std::istreambuf_iterator<char>(whole), {});
  bytes.resize(std::min(size, bytes.size()));
  // The number of the processor is in the file header of ELF, and after the signature "PE"
  // otherwise.
  const std::size_t machine = ulm::test::kOnLayer ? 18 : bytes.find(std::string("PE\0\0", 4)) + 4;
  if (foreign) bytes[machine] = static_cast<char>(bytes[machine] ^ 3);
  std::ofstream(folder / name, std::ios::binary) << bytes;
  return textOf(folder / name);
}

TEST(HostCommand, RefusesInOneLine) {
  const std::string text =
      textOf(programFolder() / ("qlview" + std::string(ulm::test::kLibraryEnding)));
  const fs::path folder = fs::temp_directory_path() / ("ulmira-host-" + std::to_string(::getpid()));
  create_directory(folder);
  const std::string cut = damagedModule(folder, "cut.dll", 8192, false);
  const std::string foreign = damagedModule(folder, "foreign.dll", SIZE_MAX, true);
  const bool layer = ulm::test::kOnLayer;
  const RefusalCase cases[] = {
      {{"--module", "/no/such/library.so"}, 1, "cannot load "},
      {{"--module", text}, 1, "lacks the entry odrxGetAPIVersion"},
      {{"--module", cut}, 1, layer ? "cut.dll: the file is incomplete" : "the library"},
      {{"--module", foreign}, 1, layer ? "for another architecture" : "the library"},
      {{"--module", "/etc/passwd"}, 1, "passwd"},
      {{"--without", "qlcore"}, 2, "--without"},
      {{"--nonsense"}, 2, "--nonsense"},
  };
  for (const RefusalCase& tested : cases) {
    Arguments arguments{"host"};
    arguments.insert(arguments.end(), tested.arguments.begin(), tested.arguments.end());
    const ProcessResult result = ulm::tools::runProcess(programFolder() / "ulmira", arguments, {},
                                                        ulm::tools::ErrorStream::Joined);
    EXPECT_EQ(result.exitCode, tested.exitCode) << result.output;
    EXPECT_NE(result.output.find(tested.message), std::string::npos) << result.output;
    if (tested.exitCode == 1) {
      EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << result.output;
    }
  }
  fs::remove_all(folder);
}

}  // namespace
