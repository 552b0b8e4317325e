// A line on the error stream while a command computes, if that stream is a terminal.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <thread>

namespace ulm::tools {

// Shows how long results have been computed, without the time in between, once that is over a
// second, and the number of the result in work from the second one on. A thread updates the line,
// because a computation does not return before it is done. Without a terminal nothing is shown.
class BusyLine {
 public:
  // `name` starts the line.
  explicit BusyLine(std::string name);
  BusyLine(const BusyLine&) = delete;
  BusyLine& operator=(const BusyLine&) = delete;
  // Removes the line.
  ~BusyLine();

  // The work on a result begins.
  void resume();
  // Removes the line until resume() is called: before the streams are used and before input is
  // waited for. Can be called again.
  void pause();

 private:
  using Clock = std::chrono::steady_clock;

  void update();  // runs in the thread

  const std::string name_;
  std::mutex mutex_;  // of all that follows
  std::condition_variable ended_;
  bool ending_ = false;
  bool working_ = false;
  bool shown_ = false;
  std::size_t results_ = 0;   // with the one in work
  Clock::duration worked_{};  // before the last resume()
  Clock::time_point resumed_;
  std::thread thread_;
};

}  // namespace ulm::tools
