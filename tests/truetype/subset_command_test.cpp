// `ulmira font subset` as a user calls it, on a font built here.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/support/command_words.h"
#include "tests/support/system_names.h"
#include "tests/truetype/rich_font.h"
#include "tools/support/file_batch.h"
#include "tools/support/process.h"
#include "truetype/reader/names.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using namespace ulm::test;
using namespace ulm::truetype;

// The rich font maps A to 1, B and P to 2, R to 3, a composite of 0 and 1, and no character to 4.
struct SubsetCommand : testing::Test {
  SubsetCommand() {
    folder =
        fs::temp_directory_path() / (std::string("ulm_subset_") +
                                     testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(folder);
    fs::create_directories(folder / "folder");
    write("font.ttc", richFont().collection(2));
    write("out.ttf", Bytes().text("old"));
  }
  ~SubsetCommand() override { fs::remove_all(folder); }
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
  // In the folder, with both streams together.
  ulm::tools::ProcessResult run(const std::string& arguments) const {
    return ulm::tools::runProcess(ulm::tools::programFolder() / "ulmira",
                                  commandWords("font subset " + arguments), {},
                                  ulm::tools::ErrorStream::Joined, folder);
  }
  // The same where files may not grow beyond a block, as on a full disk.
  ulm::tools::ProcessResult runOnFullDisk(const std::string& arguments) const {
    return ulm::tools::runProcess(
        "/bin/sh",
        {"-c", "trap '' XFSZ; ulimit -f 1; \"$0\" font subset " + arguments,
         (ulm::tools::programFolder() / "ulmira").string()},
        {}, ulm::tools::ErrorStream::Joined, folder);
  }
  // The mapping file of a call that has to go well, and its lines behind the first.
  Json mapping(const std::string& arguments, std::string* told = nullptr) const {
    const auto result = run("font.ttc -o out.ttf --mapping map.json " + arguments);
    EXPECT_EQ(result.exitCode, 0) << arguments << result.output;
    if (told != nullptr) *told = result.output;
    std::ifstream stream(folder / "map.json");
    return Json::parse(stream, nullptr, false);
  }
  fs::path folder;
};

TEST_F(SubsetCommand, WhatIsTaken) {
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
    std::string told;
    EXPECT_EQ(mapping(tested.arguments, &told), Json::parse(tested.expected)) << tested.arguments;
    EXPECT_NE(told.find(tested.told), std::string::npos) << told;
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
    EXPECT_NE(told.find(sizes), std::string::npos) << told;
  }
  EXPECT_EQ(contents().size(), 5u);  // font, text, new font, mapping, folder
}

TEST_F(SubsetCommand, TablesAndNames) {
  const auto made = [&](const std::string& arguments) {
    EXPECT_EQ(run("font.ttc -o out.ttf --text A " + arguments).exitCode, 0);
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

TEST_F(SubsetCommand, WarningsAndPermission) {
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
    const auto result = run("p.ttf -o out.ttf --text A");
    EXPECT_EQ(result.exitCode, told == std::string("bytes") ? 0 : 1) << typeFlags;
    EXPECT_NE(result.output.find(told), std::string::npos) << typeFlags << result.output;
    EXPECT_EQ(run("p.ttf -o out.ttf --text A --ignore-embedding-permission").exitCode, 0);
  }
  const std::pair<FontImage, const char*> warned[] = {
      {richFont().without("OS/2"), "no OS/2"},
      {richFont().table("OS/2", Bytes().zeros(76)), "shorter than 78"},
      {richFont().patch16("maxp", 2, 1), "maxp is not of version 1.0"},
      {richFont().table("maxp", Bytes().u32(0x5000).u16({5})), "maxp is not of version 1.0"}};
  for (const auto& [font, warning] : warned) {
    write("w.ttf", font.build());
    const auto result = run("w.ttf -o out.ttf --text A");
    EXPECT_EQ(result.exitCode, 0) << result.output;
    EXPECT_NE(result.output.find(warning), std::string::npos) << result.output;
  }
}

constexpr const char* kFullDisk = "font.ttc --text A --preview p.html";

// One line, exit code 1, and nothing in the folder has changed.
TEST_F(SubsetCommand, Refusals) {
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
  const struct {
    const char *arguments, *reason;
  } cases[] = {
      {"nothing --text A", "cannot be read"},
      {"font.ttc --text A --face 2", "no face"},
      {"font.ttc --text C", "not mapped by the font: U+0043"},
      {"font.ttc --text ''", "no glyphs to take"},
      {"font.ttc --text-file nothing", "nothing: cannot be read"},
      {"font.ttc --text-file bad", "bad: the text is not UTF-8"},
      {"font.ttc --unicodes U+110000", "no character"},
      {"font.ttc --unicodes 41-", "no character"},
      {"font.ttc --unicodes 42-41", "backwards"},
      {"font.ttc --glyphs 1,x", "no glyph number"},
      {"font.ttc --glyphs 7", "not in the font, or damaged: 7"},
      {"font.ttc --text A --name ''", "1 to 255 characters"},
      {"font.ttc --text A --mapping folder", "not a regular file"},
      {"font.ttc --text A --mapping no/where", "cannot be written"},
      {"font.ttc --text A --preview ./out.ttf", "another file"},
      {"font.ttc --text A --mapping folder/../font.ttc", "another file"},
      {"scattered.ttf --unicodes 4E00-9C1F", "too many and too scattered"},
      {"many.ttf --glyphs 0-7000", "6401 of the glyphs"},
      {"hollow.ttf --text A", ".notdef, is damaged"},
      {kFullDisk, "p.html: cannot be written"},
  };
  for (const auto& tested : cases) {
    const bool fullDisk = tested.arguments == kFullDisk;
    if (fullDisk && !kOnLayer) continue;  // Windows has no such limit
    const std::string line = "-o out.ttf " + std::string(tested.arguments);
    const auto result = fullDisk ? runOnFullDisk(line) : run(line);
    EXPECT_EQ(result.exitCode, 1) << tested.arguments;
    EXPECT_NE(result.output.find(tested.reason), std::string::npos) << result.output;
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << result.output;
    EXPECT_TRUE(contents() == before) << tested.arguments;
  }
  EXPECT_EQ(run("-o out.ttf font.ttc --text A --glyphs 1").exitCode, 2);
  EXPECT_EQ(run("-o out.ttf font.ttc").exitCode, 2);
}

// A file that has taken its place gives way again where a later one cannot.
TEST_F(SubsetCommand, FilesTogether) {
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
TEST_F(SubsetCommand, AllPrivateCodes) {
  write("many.ttf", richFont().glyphs(std::vector<Bytes>(6404)).build());
  fs::permissions(folder / "out.ttf", fs::perms::owner_read | fs::perms::owner_write);
  const fs::perms kept = fs::status(folder / "out.ttf").permissions();  // of a system's own kind
  EXPECT_EQ(run("many.ttf -o out.ttf --glyphs 0-6403").exitCode, 0);
  const OpenFont made(read("out.ttf"));
  EXPECT_EQ(made->cmapLookup(made->cmapSubtable, 0xF8FF), 6403);
  EXPECT_EQ(fs::status(folder / "out.ttf").permissions(), kept);
}

}  // namespace
