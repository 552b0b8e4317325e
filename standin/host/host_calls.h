// Helpers of a host: text conversion, names of modules, environment variables, and the count of the
// references and blocks that have not been released.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hostsdk/win32/win32.h"
#include "standin/hostapp/control.h"

namespace ulm::tools {

// Converts UTF-8. If `text` has invalid bytes, every byte from 0x80 becomes U+DC00 plus its value,
// the form in which the emulated system accepts such bytes in file names.
std::wstring toWide(const std::string& text);

// Returns the full name of a module, of any length.
std::wstring moduleName(HMODULE module);

// Returns the value of a variable; empty if there is none. `name` is not null.
std::wstring environmentVariable(const wchar_t* name);

// The number of references to one kind of the host's objects, or of blocks of memory.
struct Balance {
  const char* name;
  std::int64_t held;
  bool operator==(const Balance&) const = default;
};

// Returns all kinds in a fixed order: the application's objects unless `application` is null, keyed
// sets, memory. Makes the core library forget its .wld names first, because they use memory too.
std::vector<Balance> takeBalance(const HostAppControl* application);

}  // namespace ulm::tools
