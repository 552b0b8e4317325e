#include "command/busy_line.h"

#include <iostream>
#include <system_error>
#include <utility>

#include "command/support/program.h"

namespace ulm::tools {

BusyLine::BusyLine(std::string name) : name_(std::move(name)) {
  if (!errorStreamIsTerminal()) return;
  try {
    thread_ = std::thread([this] { update(); });
  } catch (const std::system_error&) {
    // The results can be computed without the line.
  }
}

BusyLine::~BusyLine() {
  pause();
  if (!thread_.joinable()) return;
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
  }
  ended_.notify_one();
  thread_.join();
}

void BusyLine::resume() {
  if (!thread_.joinable()) return;
  const std::lock_guard lock(mutex_);
  ++results_;
  resumed_ = Clock::now();
  working_ = true;
}

void BusyLine::pause() {
  if (!thread_.joinable()) return;
  const std::lock_guard lock(mutex_);
  if (working_) worked_ += Clock::now() - resumed_;
  working_ = false;
  if (shown_) std::cerr << "\r\x1b[K" << std::flush;
  shown_ = false;
}

void BusyLine::update() {
  constexpr auto kInterval = std::chrono::milliseconds(200);
  std::unique_lock lock(mutex_);
  while (!ended_.wait_for(lock, kInterval, [this] { return ending_; })) {
    const auto worked = worked_ + (working_ ? Clock::now() - resumed_ : Clock::duration::zero());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(worked).count();
    if (!working_ || seconds == 0) continue;
    std::cerr << '\r' << name_ << ": ";
    if (results_ > 1) std::cerr << "result " << results_ << ", ";
    std::cerr << seconds << " s\x1b[K" << std::flush;
    shown_ = true;
  }
}

}  // namespace ulm::tools
