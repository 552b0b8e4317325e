// Files that are written together, or not at all.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "command/support/file_batch.h"
#include "command/support/process.h"
#include "tests/support/system_names.h"
#include "tests/truetype/rich_font.h"
#include "truetype/reader/names.h"

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// A file that has taken its place gives way again where a later one cannot.
TEST(FileBatch, FilesTogether) {
  const fs::path folder = fs::temp_directory_path() / "ulm_file_batch";
  fs::remove_all(folder);
  fs::create_directories(folder);
  std::ofstream(folder / "there") << "old";
  {
    ulm::tools::FileBatch files;
    files.add((folder / "there").string(), "new");
    files.add((folder / "fresh").string(), "new");
    files.add((folder / "late").string(), "new");
    fs::create_directories(folder / "late");
    EXPECT_THROW(files.commit(), std::runtime_error);
  }
  EXPECT_EQ(contentOf(folder / "there"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2);  // the old file, and the folder
  fs::remove_all(folder);
}

}  // namespace
