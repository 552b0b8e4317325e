// Runs a fuzz target without a fuzzer, on files and on all files of folders. With --sweep, each
// input is also run cut after each of its bytes, and with each of its bytes changed.
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::string running;  // which input

void reportInput(int) { std::fprintf(stderr, "on %s\n", running.c_str()); }

void run(const std::vector<std::uint8_t>& input, const std::string& name) {
  running = name;
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

void sweep(std::vector<std::uint8_t> input, const std::string& name) {
  for (std::size_t i = 0; i < input.size(); ++i) {
    run({input.begin(), input.begin() + static_cast<std::ptrdiff_t>(i)},
        name + " cut to " + std::to_string(i));
    const std::uint8_t whole = input[i];
    for (const int changed : {0x00, 0x7F, 0x80, 0xFF}) {
      input[i] = static_cast<std::uint8_t>(changed);
      run(input, name + " with byte " + std::to_string(i) + " as " + std::to_string(changed));
    }
    input[i] = whole;
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGABRT, reportInput);
  const bool sweeps = argc > 1 && std::strcmp(argv[1], "--sweep") == 0;
  int replayed = 0;
  for (int i = sweeps ? 2 : 1; i < argc; ++i) {
    std::vector<std::filesystem::path> paths{argv[i]};
    if (std::filesystem::is_directory(argv[i])) {
      paths.assign(std::filesystem::directory_iterator(argv[i]), {});
    }
    for (const auto& path : paths) {
      std::ifstream file(path, std::ios::binary);
      if (!file) {
        std::cerr << "cannot read " << path << '\n';
        return 1;
      }
      const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
      const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
      run(input, path.string());
      if (sweeps) sweep(input, path.string());
      ++replayed;
    }
  }
  std::cout << replayed << " inputs\n";
  return replayed > 0 ? 0 : 1;  // a run without inputs proves nothing
}
