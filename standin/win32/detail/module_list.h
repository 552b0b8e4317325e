// The modules of the process as the loader lists them, and the search by name.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "hostsdk/win32/win32.h"

namespace ulm::win32::detail {

struct Module {
  std::string linkName;  // the loader's name, which may be relative; empty for the program
  std::uintptr_t bias;   // the difference between addresses in memory and in the file
  std::uintptr_t base;   // first byte of the mapping: the handle
  std::uintptr_t end;    // end of the mapping, on a page boundary
  bool isProgram;

  HMODULE handle() const noexcept;
  // Returns the absolute name of the file in the system's form; empty if the system does not report
  // it.
  std::string fileName() const;
};

// Returns the module with this handle; null is the program's. Nothing if there is none.
std::optional<Module> moduleOf(HMODULE handle);
// Returns the module with a segment that contains the address.
std::optional<Module> moduleAt(std::uintptr_t address);
// Returns the first module of that name, by the rules of GetModuleHandleW. `name` is not null.
std::optional<Module> moduleNamed(const wchar_t* name);

// Returns the file name of a library, in the system's form. A bare name is in the program's folder,
// ".dll" is appended to a name without a dot, and NAME.so replaces NAME.dll if there is no such
// file. The file need not exist. Nothing if no file can have the name. `name` is not null.
std::optional<std::string> libraryFile(const wchar_t* name);

std::uintptr_t pageSize() noexcept;

}  // namespace ulm::win32::detail
