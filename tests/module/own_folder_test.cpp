// The library in folders of its own, with what lies beside it and with names of every kind.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "command/support/program.h"
#include "tests/module/probe_rows.h"
#include "tests/support/system_names.h"

namespace {

namespace fs = std::filesystem;
using ulm::tools::fileNamed;
using ulm::tools::textOf;

const std::string kLibrary = std::string("ULM_MainVariant") + ulm::test::kLibraryEnding;

class OwnFolder : public testing::Test {
 protected:
  // Puts the library, and a profile unless that is empty, into a folder beneath the test's own.
  void place(const std::string& folder, const std::string& profile) {
    folder_ = own_ / fileNamed(folder);
    create_directories(folder_);
    copy_file(ulm::tools::programFolder() / kLibrary, folder_ / kLibrary,
              fs::copy_options::overwrite_existing);
    fs::remove(folder_ / "mt.ini");
    if (!profile.empty()) std::ofstream(folder_ / "mt.ini") << profile;
  }
  // Loads it between the steps, and compares what is printed.
  void run(std::vector<std::string> before, const std::vector<std::string>& after,
           const std::string& expected) {
    before.push_back("load=" + textOf(folder_ / kLibrary));
    before.insert(before.end(), after.begin(), after.end());
    ulm::test::runRow({"", "module_probe", before, expected});
  }
  void TearDown() override {
    std::error_code tooLong;  // for the language's library of some systems
    fs::remove_all(own_, tooLong);
  }

  const fs::path own_ = fs::temp_directory_path() / ("ulmira-" + std::to_string(::getpid()));
  fs::path folder_;
};

// Makes the version resource of a library's file say that its fixed information has `length` bytes.
void shortenVersion(const fs::path& library, char length) {
  std::fstream file(library, std::ios::in | std::ios::out | std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  const std::size_t information = bytes.find("\xBD\x04\xEF\xFE");  // its signature
  ASSERT_NE(information, std::string::npos);
  file.seekp(static_cast<std::streamoff>(information) - 38);
  file.put(length);
}

constexpr char kCreated[] = "fresh object, slot cleared, 0 references\n";

TEST_F(OwnFolder, SwitchesOfTheProfile) {
  const struct {
    const char* profile;
    bool monitor;
    unsigned flags;  // assert 1, add-jump 2, remove-jump 4, defecate 8
  } cases[] = {
      {"", true, 0},
      {"[mt]\nJumpArrOnAdd=1\nJumpArrOnRemove=1\nDefecateMem=1\nmqlassert=1\n", true, 15},
      {"[mt]\nDefecateMem=1\nmqlassert=1\n", false, 8},
      {"[mt]\nJumpArrOnAdd=-3\nJumpArrOnRemove=0\nDefecateMem=0x0\nmqlassert=2\n", true, 3},
      {"; note\r\n[MT]\r\n jumparronremove = \"7 on\" \r\n", true, 4},
      {"[mt2]\nJumpArrOnAdd=1\n[other]\nmqlassert=1\n", true, 0},
  };
  for (const auto& [profile, monitor, flags] : cases) {
    SCOPED_TRACE(profile);
    place("switches", profile);
    run(monitor ? std::vector<std::string>{"monitor"} : std::vector<std::string>{},
        // What was decided at load stays, whatever comes later.
        {"monitor", "flags", "unload"}, "flags " + std::to_string(flags) + "\ngone\n");
  }
}

TEST_F(OwnFolder, NamesOutsideAscii) {
  place("T\u00FCr links \u00E9", "[mt]\nJumpArrOnAdd=1\n");
  run({}, {"flags", "create", "set-path=/bin", "init", "path", "set-path={bare}", "init", "path"},
      "flags 2\n" + std::string(kCreated) +
          "init true\nPATH /bin;{folder}\ninit true\nPATH {bare};{folder}\n");
  // Letters that the ANSI code page lacks come out lossy in PATH, as the nearest or as none, and
  // nothing else suffers.
  place("\u4e2d\u6587\u0141", "[mt]\nJumpArrOnAdd=1\n");
  const std::string start = textOf(ulm::test::windowsName(own_));
  run({"take=QlHostApp.dll"},
      {"flags", "create", "path-matches", "set-path=/bin", "init", "raw-path", "version-record"},
      "flags 2\n" + std::string(kCreated) + "whole path\ninit true\nPATH /bin;" + start +
          "\\??L\\\nversion \"0.65535.0.7\" build \"0\"\n");
}

// Names around the buffers of 260 and of 2,048 characters, cut in both ways that Windows has; the
// system reads no profile whose own name takes 260.
TEST_F(OwnFolder, LongNames) {
  for (const std::size_t length : {259u, 261u, 2047u, 2060u, 3000u}) {
    // The whole name counts the drive, both separators and the file's own name.
    std::string folder(
        length - ulm::test::windowsName(own_).size() - sizeof "//" + 1 - kLibrary.size(), 'n');
    for (std::size_t at = 200; at < folder.size() - 1; at += 200) folder[at] = '/';
    place(folder, "[mt]\nJumpArrOnAdd=1\n");
    const bool whole = length < 260, found = length < 2048, read = length < 262;
    for (const bool newCut : {false, true}) {  // the second is the system's own affair on Windows
      if (newCut && !ulm::test::kOnLayer) continue;
      const std::size_t cut = newCut ? 259 : 260;
      run({"take=QlHostApp.dll", newCut ? "new-cut" : "mark"},
          {"flags", "create", "path-length", "path-matches", "set-path=/bin", "init",
           "version-record", "path", "unload"},
          std::string(read ? "flags 2\n" : "flags 0\n") + kCreated + "path length " +
              std::to_string(whole ? length : cut) + (whole ? "\nwhole path" : "\ncut path") +
              "\ninit true\nversion " +
              (whole ? "\"0.65535.0.7\" build \"0\"" : "\"\" build none") + "\nPATH /bin" +
              (found ? ";{folder}" : "") + "\ngone\n");
    }
  }
}

TEST_F(OwnFolder, VersionWithoutItsWholeStructure) {
  place("short", "");
  shortenVersion(folder_ / kLibrary, 48);
  run({"take=QlHostApp.dll"}, {"create", "init", "version-record"},
      std::string(kCreated) + "init true\nversion \"\" build none\n");
}

TEST(ModuleLoad, ManyTimesWithoutGrowth) {
  // The manager keeps a record of every load, so there is none.
  ulm::test::ProbeRow row{"", "module_probe", {"no-manager"}, ""};
  for (int i = 0; i < 60; ++i) {
    row.steps.insert(row.steps.end(),
                     {"load=ULM_Main.dll", "mark", "create", "init", "final", "balance", "unload"});
    row.expected += std::string(kCreated) + "init false\nbalanced\ngone\n";
    if (i % 25 == 9) {
      row.steps.push_back("growth");
      row.expected += "no growth\n";
    }
  }
  // The allocator's caches of freed blocks count as taken; how many they hold depends on the length
  // of the folder's name.
  ulm::test::runRow(row, {"GLIBC_TUNABLES=glibc.malloc.tcache_count=0"});
}

}  // namespace
