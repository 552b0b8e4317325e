#include "standin/win32/detail/call_log.h"

#include <mutex>
#include <new>
#include <string>
#include <utility>

#include "standin/win32/stand_in.h"

namespace ulm::win32::detail {

constinit std::atomic<bool> callLogIsOn{false};

namespace {

struct CallLog {
  std::mutex mutex;
  std::string lines;
  std::string shown;  // the result of the last ulmWin32CallLog
};

// Never destroyed: libraries log calls until the process ends.
CallLog& callLog() {
  static CallLog& log = *new CallLog;
  return log;
}

void append(std::string&& line) {
  line.push_back('\n');
  CallLog& log = callLog();
  const std::lock_guard lock(log.mutex);
  log.lines += line;
}

}  // namespace

void writeCall(const char* function, const char* argument) noexcept {
  try {
    std::string line(function);
    if (argument != nullptr) line.append(1, ' ').append(argument);
    append(std::move(line));
  } catch (const std::bad_alloc&) {  // the line is lost; the call continues
  }
}

}  // namespace ulm::win32::detail

using ulm::win32::detail::callLog;
using ulm::win32::detail::callLogIsOn;

void ulmWin32StartCallLog() {
  try {
    auto& log = callLog();
    const std::lock_guard lock(log.mutex);
    log.lines.clear();
    callLogIsOn.store(true, std::memory_order_relaxed);
  } catch (const std::bad_alloc&) {  // without memory the log stays off
  }
}

void ulmWin32StopCallLog() { callLogIsOn.store(false, std::memory_order_relaxed); }

void ulmWin32LogCall(const char* line) {
  if (line != nullptr) ulm::win32::detail::logCall(line);
}

const char* ulmWin32CallLog() {
  try {
    auto& log = callLog();
    const std::lock_guard lock(log.mutex);
    log.shown = log.lines;
    return log.shown.c_str();
  } catch (const std::bad_alloc&) {
    return "";
  }
}
