// A line on the error stream while a command computes, if that stream is a terminal.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace ulm::tools {

// Shows the seconds since it was made, and the number of finished results if there are several,
// once these are more than one second. A thread updates the line, because a computation does not
// return before it is done. The destructor removes the line. Without a terminal nothing is shown.
class BusyLine {
 public:
  // `name` starts the line.
  explicit BusyLine(std::string name);
  BusyLine(const BusyLine&) = delete;
  BusyLine& operator=(const BusyLine&) = delete;
  ~BusyLine();

  // The number of results that finish() is called for.
  void expect(std::size_t results);
  // Counts a result, and calls `print`, during which the line is not there.
  template <class Print>
  void finish(Print print) {
    const std::lock_guard lock(mutex_);
    hide();
    ++finished_;
    print();
  }

 private:
  void hide() {
    if (shown_) std::cerr << "\r\x1b[K" << std::flush;
    shown_ = false;
  }
  void update();  // runs in the thread

  const std::string name_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::mutex mutex_;  // of all that follows, and of the streams
  std::condition_variable ended_;
  std::size_t results_ = 1;
  std::size_t finished_ = 0;
  bool shown_ = false;
  bool ending_ = false;
  std::thread thread_;
};

}  // namespace ulm::tools
