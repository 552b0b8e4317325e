// The step of the start that adds the library's folder to the search path.
#pragma once

#include "hostsdk/adapter/qlcore.h"

namespace ulm::module {

// Returns the folder of a full file name, which is not null, with one backslash at the end: "Z:\a\"
// for "Z:\a\b.dll", "Z:\" for "Z:\b.dll". The name passes through narrow text, so letters that the
// ANSI code page lacks are lost. Raises std::bad_alloc if there is no memory.
CXStringW folderOf(const wchar_t* fileName);

}  // namespace ulm::module

// Adds the folder of this library (folderOf) to the end of the environment variable PATH. Leaves
// PATH unchanged if the value already contains the folder's text anywhere, if the old value or the
// new assignment (with "PATH=") is longer than 8,319 characters, or if the library's full file name
// is not known. Raises std::bad_alloc if there is no memory, and leaves PATH unchanged then.
void addModuleFolderToPath();
