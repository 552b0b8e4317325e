// `ulmira font` as a user calls it, on fonts built here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>

#include "command/support/file_batch.h"
#include "command/support/process.h"
#include "tests/support/command_words.h"
#include "tests/support/system_names.h"
#include "tests/truetype/rich_font.h"
#include "truetype/reader/names.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::HasSubstr;
using namespace ulm::test;
using namespace ulm::truetype;

// In a folder with a font of two faces, a new font's file that is there already, and a folder. The
// rich font maps A to 1, B and P to 2, R to 3, a composite of 0 and 1, and no character to 4.
struct FontCommand : testing::Test {
  FontCommand() {
    folder =
        fs::temp_directory_path() /
        (std::string("ulm_font_") + testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder);
    fs::create_directories(folder / "folder");
    write("font.ttc", richFont().collection(2));
    write("out.ttf", Bytes().text("old"));
  }
  ~FontCommand() override { fs::remove_all(folder); }
  void write(const std::string& name, const Bytes& bytes) const {
    std::ofstream(folder / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
  Bytes read(const std::string& name) const {
    std::ifstream stream(folder / name, std::ios::binary);
    return Bytes().text({std::istreambuf_iterator<char>(stream), {}});
  }
  std::map<std::string, Bytes> contents() const {
    std::map<std::string, Bytes> files;
    for (const auto& entry : fs::directory_iterator(folder)) {
      const std::string name = entry.path().filename().string();
      files[name] = entry.is_directory() ? Bytes() : read(name);
    }
    return files;
  }
  // `ulmira font` in the folder, with both streams together.
  ulm::tools::ProcessResult run(const std::string& arguments) const {
    return ulm::tools::runProcess(ulm::tools::programFolder() / "ulmira",
                                  commandWords("font " + arguments), {},
                                  ulm::tools::ErrorStream::Joined, folder);
  }
  // The same where files may not grow beyond a block, as on a full disk.
  ulm::tools::ProcessResult runOnFullDisk(const std::string& arguments) const {
    return ulm::tools::runProcess("/bin/sh",
                                  {"-c", "trap '' XFSZ; ulimit -f 1; \"$0\" font " + arguments,
                                   (ulm::tools::programFolder() / "ulmira").string()},
                                  {}, ulm::tools::ErrorStream::Joined, folder);
  }
  std::string output(const std::string& arguments) const {
    const auto result = run(arguments);
    EXPECT_EQ(result.exitCode, 0) << arguments << result.output;
    return result.output;
  }
  std::string text(const std::string& name) const {
    const Bytes bytes = read(name);
    return {bytes.begin(), bytes.end()};
  }
  fs::path folder;
};

TEST_F(FontCommand, ReportsAsJson) {
  const std::pair<const char*, const char*> cases[] = {
      {"map font.ttc A U+0051 U+1F600", R"({"U+0041": 1, "U+0051": 0, "U+1F600": 0})"},
      {"metrics font.ttc 0 2", R"({"glyphs": [
        {"glyph": 0, "advanceWidth": 500, "leftSideBearing": 1, "advanceHeight": 900,
         "topSideBearing": 1, "box": [1, 2, 3, 4]},
        {"glyph": 2, "advanceWidth": 600, "leftSideBearing": 3, "advanceHeight": 900,
         "topSideBearing": 3, "box": [0, 0, 0, 0]}]})"},
      {"outline font.ttc 0",
       R"({"glyph": 0, "points": [[0, 0, 1], [100, 0, 1], [50, 80, 32769]]})"},
      {"kern font.ttc ABA", R"({"pairs": [{"left": 1, "right": 2, "x": 30, "y": 0},
        {"left": 2, "right": 1, "x": 0, "y": 0}]})"},
  };
  for (const auto& [arguments, expected] : cases) {
    EXPECT_EQ(Json::parse(output(arguments + std::string(" --face 1 --json"))),
              Json::parse(expected));
  }
  EXPECT_EQ(Json::parse(output("names font.ttc --json"))["names"].size(), 3u);
  const Json info = Json::parse(output("info font.ttc --json"));
  EXPECT_EQ(info["family"], "F");
  EXPECT_EQ(info["glyphs"], 5);
  EXPECT_EQ(info["cmap"]["type"], 11);
  EXPECT_EQ(info["kern"]["subtables"], 2);
  EXPECT_EQ(info["tables"]["zzzz"]["length"], 4);
}

TEST_F(FontCommand, PeopleAndPictures) {
  EXPECT_THAT(output("info font.ttc"), HasSubstr("Regular"));
  EXPECT_THAT(output("map font.ttc U+1F600"), HasSubstr("unmapped"));
  EXPECT_THAT(output("metrics font.ttc 0"), HasSubstr("[1,2,3,4]"));
  output("outline font.ttc 0 --svg o.svg");
  EXPECT_THAT(text("o.svg"), HasSubstr("viewBox=\"0 -80 100 80\""));
  EXPECT_THAT(text("o.svg"), HasSubstr("M0 0L100 0L50 -80Z"));
  // The last letter of a text of 1,200,000 units.
  output("specimen font.ttc --text " + std::string(2000, 'A') + " --svg s.svg");
  EXPECT_THAT(text("s.svg"), HasSubstr("M1199401 "));
}

TEST_F(FontCommand, WhatIsTaken) {
  write("text", Bytes().text("\xEF\xBB\xBFR\r\nA\nA\r"));
  const struct {
    const char *arguments, *expected, *told;
  } cases[] = {
      {"--text BAB", R"({"face": 0, "chars": {"65": 1, "66": 2}, "new": {"65": 1, "66": 2}})", ""},
      {"--face 1 --text-file text",
       R"({"face": 1, "chars": {"65": 1, "82": 3}, "new": {"65": 1, "82": 2}})", ""},
      {"--unicodes 'U+42-43,50 u+0'", R"({"face": 0, "chars": {"66": 2, "80": 2},
       "new": {"66": 1, "80": 2}})",
       "not mapped by the font: U+0000 U+0043\n"},
      {"--text B\xF0\x9D\x84\x9E", R"({"face": 0, "chars": {"66": 2}, "new": {"66": 1}})",
       "ends: U+1D11E\n"},
      {"--glyphs 4,0-3,9-40",
       R"({"face": 0, "chars": {"65": 1, "66": 2, "82": 3, "57344": 4},
       "new": {"65": 1, "66": 2, "82": 3, "57344": 4}})",
       "not in the font, or damaged: 9-40\n"},
      {"--glyphs 4", R"({"face": 0, "chars": {"57344": 4}, "new": {"57344": 1}})", ""},
      {"--glyphs 0", R"({"face": 0, "chars": {}, "new": {}})", ""},
  };
  for (const auto& tested : cases) {
    const std::string told =
        output(std::string("subset font.ttc -o out.ttf --mapping map.json ") + tested.arguments);
    EXPECT_EQ(Json::parse(text("map.json")), Json::parse(tested.expected)) << tested.arguments;
    EXPECT_THAT(told, HasSubstr(tested.told));
    const OpenFont made(read("out.ttf"));
    ASSERT_EQ(made.result, FontResultOk) << tested.arguments;
    const Json codes = Json::parse(tested.expected)["new"];
    for (std::uint32_t code = 0; code < 0xFFFF; ++code) {
      const auto found = codes.find(std::to_string(code));
      ASSERT_EQ(made->cmapLookup(made->cmapSubtable, static_cast<std::uint16_t>(code)),
                found == codes.end() ? 0 : found->get<int>())
          << tested.arguments << ' ' << code;
    }
    const auto sizes = "font.ttc: " + std::to_string(read("font.ttc").size()) +
                       " bytes; out.ttf: " + std::to_string(read("out.ttf").size()) + " bytes\n";
    EXPECT_THAT(told, HasSubstr(sizes));
  }
  EXPECT_EQ(contents().size(), 5u);  // font, text, new font, mapping, folder
}

TEST_F(FontCommand, TablesAndNames) {
  const auto made = [&](const std::string& arguments) {
    output("subset font.ttc -o out.ttf --text A " + arguments);
    return std::make_unique<OpenFont>(read("out.ttf"));
  };
  EXPECT_NE((*made(""))->tables[kSlotOs2], nullptr);
  EXPECT_STREQ((*made(""))->familyName, "F");
  EXPECT_EQ((*made("--drop-os2"))->tables[kSlotOs2], nullptr);
  EXPECT_STREQ((*made("--generic-name"))->postScriptName, "TrueTypeSubset");
  const auto named = made("--name 'A (\xC3\xA9\xF0\x9D\x84\x9E) b'");
  EXPECT_STREQ((*named)->postScriptName, "Ab");
  NameRecord* records = nullptr;
  const std::int32_t count = getNameRecords(named->get(), &records);
  std::vector<std::vector<int>> keys;
  Bytes family;
  for (std::int32_t i = 0; i < count; ++i) {
    keys.push_back({records[i].platformID, records[i].nameID});
    if (keys.back() == std::vector{3, 1}) family.add({records[i].data, records[i].data + 18});
  }
  releaseNameRecords(records, count);
  EXPECT_EQ(keys, (std::vector<std::vector<int>>{{1, 2}, {1, 6}, {3, 1}, {3, 2}, {3, 4}, {3, 6}}));
  EXPECT_EQ(family, Bytes().u16({'A', ' ', '(', 0xE9, 0xD834, 0xDD1E, ')', ' ', 'b'}));
}

TEST_F(FontCommand, WarningsAndPermission) {
  const std::pair<int, const char*> permissions[] = {{0x0000, "bytes"},
                                                     {0x0001, "bytes"},
                                                     {0x0002, "forbids embed"},
                                                     {0x0003, "forbids embed"},
                                                     {0x0004, "bytes"},
                                                     {0x0006, "bytes"},
                                                     {0x000A, "bytes"},
                                                     {0x0108, "forbids subsetting"},
                                                     {0x0208, "nothing but its bitmaps"}};
  for (const auto& [typeFlags, told] : permissions) {
    write("p.ttf", richFont().patch16("OS/2", 8, typeFlags).build());
    const auto result = run("subset p.ttf -o out.ttf --text A");
    EXPECT_EQ(result.exitCode, told == std::string("bytes") ? 0 : 1) << typeFlags;
    EXPECT_THAT(result.output, HasSubstr(told)) << typeFlags;
    output("subset p.ttf -o out.ttf --text A --ignore-embedding-permission");
  }
  const std::pair<FontImage, const char*> warned[] = {
      {richFont().without("OS/2"), "no OS/2"},
      {richFont().table("OS/2", Bytes().zeros(76)), "shorter than 78"},
      {richFont().patch16("maxp", 2, 1), "maxp is not of version 1.0"},
      {richFont().table("maxp", Bytes().u32(0x5000).u16({5})), "maxp is not of version 1.0"}};
  for (const auto& [font, warning] : warned) {
    write("w.ttf", font.build());
    EXPECT_THAT(output("subset w.ttf -o out.ttf --text A"), HasSubstr(warning));
  }
}

constexpr const char* kNotText = "map font.ttc \xFF";
constexpr const char* kFullDisk = "subset -o out.ttf font.ttc --text A --preview p.html";

// One line, exit code 1, and nothing in the folder has changed.
TEST_F(FontCommand, Refusals) {
  write("bad", Bytes().text("A\xFF"));
  write("scattered.ttf", [] {  // every other code of 20,000
    std::vector<Segment> segments;
    for (int code = 0x4E00; code < 0x4E00 + 20000; code += 2) {
      segments.push_back({code, code, 1 - code, 0});
    }
    segments.push_back({-1, -1, 1, 0});
    return richFont().table("cmap", cmapTable({{3, 1, cmapFormat4(segments)}})).build();
  }());
  write("many.ttf", richFont().glyphs(std::vector<Bytes>(6405)).build());
  write("hollow.ttf", richFont().loca(Bytes().u32(8).u32(0).zeros(16), 1).build());
  const auto before = contents();
  const std::pair<std::string, const char*> cases[] = {
      {"info bad", "not a TrueType font"},
      {"info nothing", "cannot be read"},
      {"info font.ttc --face 2", "no face"},
      {"outline font.ttc 5", "the font has 5 glyphs"},
      {"outline font.ttc 0 --svg no/where", "cannot be written"},
      {"map font.ttc U+110000", "no character"},
      {kNotText, "not UTF-8"},
      {kFullDisk, "p.html: cannot be written"},
      {"subset -o out.ttf nothing --text A", "cannot be read"},
      {"subset -o out.ttf font.ttc --text A --face 2", "no face"},
      {"subset -o out.ttf font.ttc --text C", "not mapped by the font: U+0043"},
      {"subset -o out.ttf font.ttc --text ''", "no glyphs to take"},
      {"subset -o out.ttf font.ttc --text-file nothing", "nothing: cannot be read"},
      {"subset -o out.ttf font.ttc --text-file bad", "bad: the text is not UTF-8"},
      {"subset -o out.ttf font.ttc --unicodes U+110000", "no character"},
      {"subset -o out.ttf font.ttc --unicodes 41-", "no character"},
      {"subset -o out.ttf font.ttc --unicodes 42-41", "backwards"},
      {"subset -o out.ttf font.ttc --glyphs 1,x", "no glyph number"},
      {"subset -o out.ttf font.ttc --glyphs 7", "not in the font, or damaged: 7"},
      {"subset -o out.ttf font.ttc --text A --name ''", "1 to 255 characters"},
      {"subset -o out.ttf font.ttc --text A --mapping folder", "not a regular file"},
      {"subset -o out.ttf font.ttc --text A --mapping no/where", "cannot be written"},
      {"subset -o out.ttf font.ttc --text A --preview ./out.ttf", "another file"},
      {"subset -o out.ttf font.ttc --text A --mapping folder/../font.ttc", "another file"},
      {"subset -o out.ttf scattered.ttf --unicodes 4E00-9C1F", "too many and too scattered"},
      {"subset -o out.ttf many.ttf --glyphs 0-7000", "6401 of the glyphs"},
      {"subset -o out.ttf hollow.ttf --text A", ".notdef, is damaged"},
  };
  for (const auto& [arguments, reason] : cases) {
    const bool fullDisk = arguments == kFullDisk;
    // Windows has no such limit, and hands over text alone.
    if (!kOnLayer && (fullDisk || arguments == kNotText)) continue;
    const auto result = fullDisk ? runOnFullDisk(arguments) : run(arguments);
    EXPECT_EQ(result.exitCode, 1) << arguments;
    EXPECT_THAT(result.output, HasSubstr(reason)) << arguments;
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << result.output;
    EXPECT_TRUE(contents() == before) << arguments;
  }
  EXPECT_EQ(run("subset -o out.ttf font.ttc --text A --glyphs 1").exitCode, 2);
  EXPECT_EQ(run("subset -o out.ttf font.ttc").exitCode, 2);
}

// A file that has taken its place gives way again where a later one cannot.
TEST_F(FontCommand, FilesTogether) {
  {
    ulm::tools::FileBatch files;
    files.add((folder / "out.ttf").string(), "new");
    files.add((folder / "fresh").string(), "new");
    files.add((folder / "late").string(), "new");
    fs::create_directories(folder / "late");
    EXPECT_THROW(files.commit(), std::runtime_error);
  }
  EXPECT_EQ(read("out.ttf"), Bytes().text("old"));
  EXPECT_EQ(contents().size(), 4u);  // font, out, and the two folders
}

// 6,400 glyphs without a character fit, and a file keeps its permissions.
TEST_F(FontCommand, AllPrivateCodes) {
  write("many.ttf", richFont().glyphs(std::vector<Bytes>(6404)).build());
  fs::permissions(folder / "out.ttf", fs::perms::owner_read | fs::perms::owner_write);
  const fs::perms kept = fs::status(folder / "out.ttf").permissions();  // of a system's own kind
  output("subset many.ttf -o out.ttf --glyphs 0-6403");
  const OpenFont made(read("out.ttf"));
  EXPECT_EQ(made->cmapLookup(made->cmapSubtable, 0xF8FF), 6403);
  EXPECT_EQ(fs::status(folder / "out.ttf").permissions(), kept);
}

}  // namespace
