#include <algorithm>
#include <cwchar>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "hostsdk/win32/win32.h"
#include "standin/win32/detail/call_log.h"
#include "standin/win32/detail/characters.h"

extern char** environ;

namespace {

using ulm::win32::detail::equalNoCase;
using ulm::win32::detail::fromSystem;
using ulm::win32::detail::logCall;

struct Variable {
  std::wstring name, value;
};

// Splits "NAME=VALUE"; nothing if there is no '=' or no name before it.
std::optional<Variable> split(std::wstring_view assignment) {
  const std::size_t sign = assignment.find(L'=');
  if (sign == 0 || sign == std::wstring_view::npos) return std::nullopt;
  return Variable{std::wstring(assignment.substr(0, sign)),
                  std::wstring(assignment.substr(sign + 1))};
}

class Environment {
 public:
  Environment() {
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
      std::optional<Variable> variable = split(fromSystem(*entry));
      if (variable && find(variable->name) == variables_.end()) {
        variables_.push_back(std::move(*variable));
      }
    }
  }

  void set(Variable&& variable) {
    const std::lock_guard lock(mutex_);
    const auto found = find(variable.name);
    if (variable.value.empty()) {
      if (found != variables_.end()) variables_.erase(found);
    } else if (found != variables_.end()) {
      found->value.swap(variable.value);  // the name keeps its old case
    } else {
      variables_.push_back(std::move(variable));
    }
  }

  DWORD get(std::wstring_view name, wchar_t* buffer, DWORD size) {
    const std::lock_guard lock(mutex_);
    const auto found = find(name);
    if (found == variables_.end()) return 0;
    const std::wstring& value = found->value;
    if (value.size() < size) {
      std::wmemcpy(buffer, value.c_str(), value.size() + 1);
      return static_cast<DWORD>(value.size());
    }
    return static_cast<DWORD>(value.size() + 1);
  }

 private:
  std::vector<Variable>::iterator find(std::wstring_view name) noexcept {
    return std::find_if(variables_.begin(), variables_.end(), [name](const Variable& variable) {
      return equalNoCase(variable.name, name);
    });
  }

  std::mutex mutex_;
  std::vector<Variable> variables_;
};

// Never destroyed: libraries still read variables while they are unloaded.
Environment& environment() {
  static Environment& block = *new Environment;
  return block;
}

// Created while the layer is loaded, so that a later shortage of memory is not reported as a
// missing variable.
[[maybe_unused]] const Environment& createdAtLoad = environment();

}  // namespace

DWORD GetEnvironmentVariableW(const wchar_t* name, wchar_t* buffer, DWORD size) {
  if (name == nullptr) return 0;
  logCall("GetEnvironmentVariableW", name);
  try {
    return environment().get(name, buffer, buffer != nullptr ? size : 0);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

int _wputenv(const wchar_t* assignment) {
  if (assignment == nullptr) return -1;
  try {
    std::optional<Variable> variable = split(assignment);
    if (!variable) return -1;
    logCall("_wputenv", variable->name.c_str());
    environment().set(std::move(*variable));
    return 0;
  } catch (const std::bad_alloc&) {
    return -1;
  }
}
