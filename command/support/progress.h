// Shows how far a long task is, on the error stream if that is a terminal.
#pragma once

#include <chrono>
#include <string>
#include <string_view>

namespace ulm::tools {

// One line that is replaced at each update. The destructor removes it, so a message or a result
// that is printed afterwards starts on an empty line. Shows nothing if the error stream is not a
// terminal.
class Progress {
 public:
  // `task` comes first in the line, before a colon; it is made printable.
  explicit Progress(std::string_view task);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  // Returns true if an update would be shown: at the first call, and 200 ms after the last update.
  // Cheap without a terminal, so that a loop can call it often.
  bool due() const;
  // Replaces the line, whether due or not.
  void show(std::string_view state);

 private:
  const std::string task_;
  const bool onTerminal_;
  bool shown_ = false;
  std::chrono::steady_clock::time_point lastUpdate_;
};

}  // namespace ulm::tools
