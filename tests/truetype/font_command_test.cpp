// `ulmira font` as a user calls it, on a font built here.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "tests/support/command_words.h"
#include "tests/support/system_names.h"
#include "tests/truetype/rich_font.h"
#include "tools/support/process.h"

namespace {

using Json = nlohmann::json;
using namespace ulm::test;

struct FontCommand : testing::Test {
  FontCommand() {
    folder =
        std::filesystem::temp_directory_path() /
        (std::string("ulm_font_") + testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(folder);
    write("font.ttc", richFont().collection(2));
    write("text", Bytes().text("no font"));
  }
  ~FontCommand() override { std::filesystem::remove_all(folder); }
  void write(const char* name, const Bytes& bytes) const {
    std::ofstream(folder / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  std::string at(const char* name) const { return (folder / name).string(); }
  std::string read(const char* name) const {
    std::ifstream stream(folder / name);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  // Both streams together.
  static ulm::tools::ProcessResult run(const std::string& arguments) {
    return ulm::tools::runProcess(ulm::tools::programFolder() / "ulmira",
                                  commandWords("font " + arguments), {},
                                  ulm::tools::ErrorStream::Joined);
  }
  Json json(const std::string& command, const std::string& arguments) const {
    const auto result = run(command + " " + at("font.ttc") + " --face 1 --json " + arguments);
    EXPECT_EQ(result.exitCode, 0) << result.output;
    return Json::parse(result.output);
  }
  std::filesystem::path folder;
};

TEST_F(FontCommand, Json) {
  EXPECT_EQ(json("map", "A U+0051 U+1F600"),
            Json::parse(R"({"U+0041": 1, "U+0051": 0, "U+1F600": 0})"));
  EXPECT_EQ(json("metrics", "0 2"), Json::parse(R"({"glyphs": [
    {"glyph": 0, "advanceWidth": 500, "leftSideBearing": 1, "advanceHeight": 900,
     "topSideBearing": 1, "box": [1, 2, 3, 4]},
    {"glyph": 2, "advanceWidth": 600, "leftSideBearing": 3, "advanceHeight": 900,
     "topSideBearing": 3, "box": [0, 0, 0, 0]}]})"));
  EXPECT_EQ(json("outline", "0"),
            Json::parse(R"({"glyph": 0, "points": [[0, 0, 1], [100, 0, 1], [50, 80, 32769]]})"));
  EXPECT_EQ(json("kern", "ABA"), Json::parse(R"({"pairs": [{"left": 1, "right": 2, "x": 30, "y": 0},
    {"left": 2, "right": 1, "x": 0, "y": 0}]})"));
  EXPECT_EQ(json("names", "")["names"].size(), 3u);
  const Json info = json("info", "");
  EXPECT_EQ(info["family"], "F");
  EXPECT_EQ(info["glyphs"], 5);
  EXPECT_EQ(info["cmap"]["type"], 11);
  EXPECT_EQ(info["kern"]["subtables"], 2);
  EXPECT_EQ(info["tables"]["zzzz"]["length"], 4);
}

TEST_F(FontCommand, PeopleAndPictures) {
  const std::string font = at("font.ttc");
  EXPECT_NE(run("info " + font).output.find("Regular"), std::string::npos);
  EXPECT_NE(run("map " + font + " U+1F600").output.find("unmapped"), std::string::npos);
  EXPECT_NE(run("metrics " + font + " 0").output.find("[1,2,3,4]"), std::string::npos);
  EXPECT_EQ(run("outline " + font + " 0 --svg " + at("o.svg")).exitCode, 0);
  EXPECT_EQ(run("specimen " + font + " --text AB --svg " + at("s.svg")).exitCode, 0);
  EXPECT_THAT(read("o.svg"), testing::HasSubstr("viewBox=\"0 -80 100 80\""));
  EXPECT_THAT(read("o.svg"), testing::HasSubstr("M0 0L100 0L50 -80Z"));
  // The last letter of a text of 1,200,000 units.
  run("specimen " + font + " --text " + std::string(2000, 'A') + " --svg " + at("s.svg"));
  EXPECT_THAT(read("s.svg"), testing::HasSubstr("M1199401 "));
}

TEST_F(FontCommand, Refusals) {
  const std::string font = at("font.ttc");
  const std::pair<std::string, const char*> cases[] = {
      {"info " + at("text"), "not a TrueType font"},
      {"info " + at("nothing"), "cannot be read"},
      {"info " + font + " --face 2", "no face"},
      {"outline " + font + " 5", "the font has 5 glyphs"},
      {"map " + font + " \xFF", "not UTF-8"},
      {"map " + font + " U+110000", "no character"},
      {"outline " + font + " 0 --svg " + at("no/where"), "cannot be written"},
  };
  for (const auto& [arguments, reason] : cases) {
    if (!kOnLayer && arguments.back() == '\xFF') continue;  // Windows hands over text alone
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, 1) << arguments;
    EXPECT_NE(result.output.find(reason), std::string::npos) << result.output;
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << result.output;
  }
}

}  // namespace
