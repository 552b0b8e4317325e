// Test vectors from a file: blocks of `Key = value` lines with a blank line between them. A line
// with several of these, separated by " | ", is a block of its own. Lines that start with '#' are
// comments. A key that a test does not ask for is a failure of its block.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace ulm::test {

class VectorBlock {
 public:
  explicit VectorBlock(std::string where) : where_(std::move(where)) {}
  const std::string& where() const { return where_; }  // file and line of the first key
  void add(const std::string& key, std::string value) { unused_[key] = std::move(value); }

  // Each key can be taken once.
  std::optional<std::string> find(const std::string& key) {
    const auto taken = unused_.extract(key);
    return taken.empty() ? std::nullopt : std::optional(taken.mapped());
  }
  std::string text(const std::string& key) {
    const auto value = find(key);
    if (!value) throw std::runtime_error(where_ + ": no " + key);
    return *value;
  }
  std::vector<long long> numbers(const std::string& key) {
    std::istringstream words(text(key));
    std::vector<long long> read;
    for (long long number = 0; words >> number;) read.push_back(number);
    return read;
  }
  void expectAllUsed() const {
    for (const auto& entry : unused_) ADD_FAILURE() << where_ << ": unused " << entry.first;
  }

 private:
  std::string where_;
  std::map<std::string, std::string> unused_;
};

inline std::vector<VectorBlock> readVectorBlocks(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::vector<VectorBlock> blocks;
  bool open = false;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (line.empty()) open = false;
    if (line.empty() || line[0] == '#') continue;
    const std::string where = path + ":" + std::to_string(number);
    const bool whole = line.find(" | ") != std::string::npos;
    if (whole || !open) blocks.emplace_back(where);
    open = !whole;
    for (std::size_t begin = 0, end = 0; end != std::string::npos; begin = end + 3) {
      end = line.find(" | ", begin);
      const std::string entry = line.substr(begin, end - begin);
      const auto equals = entry.find(" =");
      if (equals == std::string::npos) throw std::runtime_error(where + ": no ' ='");
      blocks.back().add(entry.substr(0, equals), entry.substr(std::min(entry.size(), equals + 3)));
    }
  }
  return blocks;
}

}  // namespace ulm::test
