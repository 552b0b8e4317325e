// Rows of calls with what each should answer, "call | argument | argument => answer". Files of rows
// lie under tests/data; '#' starts a line for people. In texts "<20AC>" is the unit 0x20AC.
#pragma once

#include <gtest/gtest.h>

#include <concepts>
#include <cstdint>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/system_names.h"

namespace ulm::test {

template <class Character>
std::basic_string<Character> unitsOf(const std::string& written) {
  std::basic_string<Character> units;
  for (std::size_t i = 0; i < written.size(); ++i) {
    if (written[i] != '<') {
      units.push_back(static_cast<Character>(written[i]));
    } else {
      units.push_back(static_cast<Character>(std::stoul(written.substr(i + 1), nullptr, 16)));
      i = written.find('>', i);
    }
  }
  return units;
}

template <class Character>
std::string shown(const std::basic_string<Character>& units) {
  std::ostringstream written;
  for (const Character unit : units) {
    if (unit >= ' ' && unit <= '~' && unit != '<') {
      written << static_cast<char>(unit);
    } else {
      const auto value = static_cast<std::make_unsigned_t<Character>>(unit);
      written << '<' << std::hex << std::uppercase << std::uint64_t{value} << '>';
    }
  }
  return written.str();
}

// Goes into a call as whatever the call takes.
struct Argument {
  std::string written;
  std::string bytes = unitsOf<char>(written);
  std::wstring units = unitsOf<wchar_t>(written);

  operator const char*() const { return written != "(null)" ? bytes.c_str() : nullptr; }
  operator const wchar_t*() const { return written != "(null)" ? units.c_str() : nullptr; }
  template <std::integral Number>
  operator Number() const {
    return static_cast<Number>(std::stoll(written));
  }
};

struct Answer {
  std::string written;
  Answer(std::string text) : written(std::move(text)) {}
  Answer(const char* text) : written(text) {}
  template <std::integral Number>
  Answer(Number number) : written(std::to_string(number)) {}
};

using Arguments = std::vector<Argument>;  // the call's own name is the first
using Calls = std::map<std::string, std::function<Answer(const Arguments&)>>;

// A call that fills a buffer, whose size is the last argument: its result, and the buffer with a
// unit behind it.
template <class Character, class Call>
auto fills(const Call& call) {
  return [call](const Arguments& a) -> Answer {
    const int size = a.back();
    std::basic_string<Character> buffer(size > 0 ? std::size_t{a.back()} + 1 : 1, '#');
    const Answer result = call(a, buffer.data(), size);
    return result.written + ' ' + shown(buffer);
  };
}

// Runs a file's rows in their order, each of `names` standing for its value. An unknown call
// throws.
inline void runCallRows(const std::string& file, const Calls& calls,
                        const std::map<std::string, std::string>& names) {
  std::ifstream in(file);
  int rows = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.empty() || line[0] == '#' || !standsHere(line)) continue;
    for (const auto& [name, value] : names) {
      for (auto at = line.find(name); at != std::string::npos; at = line.find(name)) {
        line.replace(at, name.size(), value);
      }
    }
    SCOPED_TRACE(line);
    const auto arrow = line.rfind(" => ");
    ASSERT_NE(arrow, std::string::npos);
    std::string call = line.substr(0, arrow);
    Arguments arguments;
    for (auto end = call.find(" | "); end != std::string::npos; end = call.find(" | ")) {
      arguments.push_back({call.substr(0, end)});
      call.erase(0, end + 3);
    }
    arguments.push_back({call});
    EXPECT_EQ(calls.at(arguments[0].written)(arguments).written, line.substr(arrow + 4));
    ++rows;
  }
  EXPECT_GT(rows, 0) << file;
}

}  // namespace ulm::test
