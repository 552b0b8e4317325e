// Test vectors from a file: blocks of `Key = value` lines with a blank line between them, and lines
// that start with '#' for people. A key that a test does not ask for is a failure of its block.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace ulm::test {

class VectorBlock {
 public:
  explicit VectorBlock(std::string where) : where_(std::move(where)) {}
  void add(const std::string& key, std::string value) { values_[key] = std::move(value); }
  bool empty() const { return values_.empty(); }
  const std::string& where() const { return where_; }  // file and line of the first key

  std::optional<std::string> find(const std::string& key) {
    used_.insert(key);
    const auto found = values_.find(key);
    return found == values_.end() ? std::nullopt : std::optional(found->second);
  }
  std::string text(const std::string& key) {
    auto value = find(key);
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
    for (const auto& [key, value] : values_) {
      EXPECT_TRUE(used_.count(key)) << where_ << ": nothing looks at " << key;
    }
  }

 private:
  std::string where_;
  std::map<std::string, std::string> values_;
  std::set<std::string> used_;
};

inline std::vector<VectorBlock> readVectorBlocks(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::vector<VectorBlock> blocks;
  bool open = false;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    const std::string where = path + ":" + std::to_string(number);
    if (line.empty()) open = false;
    if (line.empty() || line[0] == '#') continue;
    const auto equals = line.find(" =");
    if (equals == std::string::npos) throw std::runtime_error(where + ": no ' ='");
    if (!open) blocks.emplace_back(where);
    open = true;
    blocks.back().add(line.substr(0, equals), line.substr(std::min(line.size(), equals + 3)));
  }
  return blocks;
}

}  // namespace ulm::test
