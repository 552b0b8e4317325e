// Runs a fuzz target without a fuzzer, on files and on all files of folders.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return false;
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
  LLVMFuzzerTestOneInput(input.data(), input.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  int replayed = 0;
  for (int i = 1; i < argc; ++i) {
    std::vector<std::filesystem::path> paths{argv[i]};
    if (std::filesystem::is_directory(argv[i])) {
      paths.assign(std::filesystem::directory_iterator(argv[i]), {});
    }
    for (const auto& path : paths) {
      if (!replay(path)) {
        std::cerr << "cannot read " << path << '\n';
        return 1;
      }
      ++replayed;
    }
  }
  std::cout << replayed << " inputs\n";
  return replayed > 0 ? 0 : 1;  // a run without inputs proves nothing
}
