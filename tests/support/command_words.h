// The words of a command line, for tests that start a program without a shell.
#pragma once

#include <string>
#include <vector>

namespace ulm::test {

// Blanks part words; quotes, single or double, hold together what stands between them, as it is.
inline std::vector<std::string> commandWords(const std::string& line) {
  std::vector<std::string> words;
  bool within = false;
  char quote = '\0';
  for (const char next : line) {
    if (quote == '\0' && next == ' ') {
      within = false;
      continue;
    }
    if (!within) words.emplace_back();
    within = true;
    if (next == quote) {
      quote = '\0';
    } else if (quote == '\0' && (next == '\'' || next == '"')) {
      quote = next;
    } else {
      words.back() += next;
    }
  }
  return words;
}

}  // namespace ulm::test
