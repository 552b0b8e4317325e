// The modules of the process as the loader lists them, and the rules by which names find them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "hostsdk/win32/win32.h"

namespace ulm::win32::detail {

struct Module {
  std::string linkName;  // as the loader has it, which may be relative; empty for the program
  std::uintptr_t bias;   // what the loader added to the addresses in the file
  std::uintptr_t base;   // first byte of the mapping: the handle
  std::uintptr_t end;    // one past the last byte of the mapping, on a page boundary
  bool isProgram;

  HMODULE handle() const noexcept;
  // The absolute name of its file in the system's form; empty where the system does not tell.
  std::string fileName() const;
};

// The module with this handle, of which null is the program's.
std::optional<Module> moduleOf(HMODULE handle);
// The module with a segment that holds the address.
std::optional<Module> moduleAt(std::uintptr_t address);
// The first module of that name, by the rules of GetModuleHandleW. `name` is not null.
std::optional<Module> moduleNamed(const wchar_t* name);

// The file that a caller means who names a library: a bare name lies in the program's folder, a
// name without a dot ends in .dll, and where there is no file of a name NAME.dll, it is NAME.so.
// In the system's form; the file need not exist. Nothing for a name that can be no file's.
std::optional<std::string> libraryFile(const wchar_t* name);

std::uintptr_t pageSize() noexcept;

}  // namespace ulm::win32::detail
