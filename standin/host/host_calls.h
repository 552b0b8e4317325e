// What a host does again and again: text between its kinds, modules and their exports, variables,
// and the count of what is held of its objects.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hostsdk/win32/win32.h"
#include "standin/hostapp/control.h"

namespace ulm::tools {

std::string toUtf8(const wchar_t* text);

// Bytes that are no UTF-8 stand as the layer takes them in file names, at U+DC00 and their number.
std::wstring toWide(const std::string& text);

// The whole name of a module, however long.
std::wstring moduleName(HMODULE module);

// The value of a variable; empty where there is none.
std::wstring environmentVariable(const wchar_t* name);

// An export as a function of a given type, which the caller vouches for; null where there is none.
template <class Function>
Function* exportOf(HMODULE module, const char* name) {
  return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
}

// What is held of one kind of the host's objects, or of its memory.
struct Balance {
  const char* name;
  std::int64_t held;
  bool operator==(const Balance&) const = default;
};

// All kinds in a fixed order: the application's objects, where there is one, keyed sets, memory.
// Names that the core library has noted are forgotten first, since they take memory too.
std::vector<Balance> takeBalance(const HostAppControl* application);

}  // namespace ulm::tools
