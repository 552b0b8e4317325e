#include "command/support/progress.h"

#include <iostream>

#include "command/support/program.h"
#include "command/support/text.h"

namespace ulm::tools {
namespace {

constexpr const char* kClearToEnd = "\x1b[K";
constexpr std::chrono::milliseconds kInterval(200);

}  // namespace

Progress::Progress(std::string_view task)
    : task_(printable(task)), onTerminal_(errorStreamIsTerminal()) {}

Progress::~Progress() {
  if (shown_) std::cerr << '\r' << kClearToEnd << std::flush;
}

bool Progress::due() const {
  return onTerminal_ && (!shown_ || std::chrono::steady_clock::now() - lastUpdate_ >= kInterval);
}

void Progress::show(std::string_view state) {
  if (!onTerminal_) return;
  shown_ = true;
  lastUpdate_ = std::chrono::steady_clock::now();
  std::cerr << '\r' << task_ << ": " << state << kClearToEnd << std::flush;
}

}  // namespace ulm::tools
