#include "command/busy_line.h"

#include <system_error>

#include "command/support/program.h"

namespace ulm::tools {

BusyLine::BusyLine(std::string name) : name_(std::move(name)) {
  if (!errorStreamIsTerminal()) return;
  try {
    thread_ = std::thread([this] { update(); });
  } catch (const std::system_error&) {
    // The computation is possible without the line.
  }
}

BusyLine::~BusyLine() {
  {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    hide();
  }
  ended_.notify_one();
  if (thread_.joinable()) thread_.join();
}

void BusyLine::expect(std::size_t results) {
  const std::lock_guard lock(mutex_);
  results_ = results;
}

void BusyLine::update() {
  std::unique_lock lock(mutex_);
  for (auto next = start_ + std::chrono::seconds(1);
       !ended_.wait_until(lock, next, [this] { return ending_; });
       next += std::chrono::seconds(1)) {
    const auto time = std::chrono::steady_clock::now() - start_;
    std::cerr << '\r' << name_ << ": ";
    if (results_ > 1) std::cerr << finished_ << " of " << results_ << ", ";
    std::cerr << std::chrono::duration_cast<std::chrono::seconds>(time).count() << " s\x1b[K"
              << std::flush;
    shown_ = true;
  }
}

}  // namespace ulm::tools
