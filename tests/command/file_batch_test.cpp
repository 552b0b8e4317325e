// Files that are written together or not at all.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "command/support/file_batch.h"

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// A file that was renamed gets its old content again if a later file cannot be renamed.
TEST(FileBatch, FilesTogether) {
  const fs::path folder = fs::temp_directory_path() / "ulm_file_batch";
  fs::remove_all(folder);
  fs::create_directories(folder);
  std::ofstream(folder / "existing") << "old";
  {
    ulm::tools::FileBatch files;
    files.add((folder / "existing").string(), "new");
    files.add((folder / "new").string(), "new");
    files.add((folder / "blocked").string(), "new");
    fs::create_directories(folder / "blocked");
    EXPECT_THROW(files.commit(), std::runtime_error);
  }
  EXPECT_EQ(contentOf(folder / "existing"), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2);  // the old file and the folder
  fs::remove_all(folder);
}

}  // namespace
