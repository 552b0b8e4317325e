// The process's search path.
#pragma once

#include "hostsdk/adapter/qlcore.h"

namespace ulm::module {

// The folder of a file's full name, ended by one backslash: "Z:\a\" for "Z:\a\b.dll", "Z:\" for
// "Z:\b.dll". It passes through narrow text: letters that the ANSI code page lacks are lost.
CXStringW folderOf(const wchar_t* fileName);

}  // namespace ulm::module

// Adds the folder of this library (folderOf) to the end of the variable PATH, unless the value
// holds that text already, anywhere. A value that does not fit 8,319 characters, before or after,
// stays as it is, and so does any value where the library's file name is not known in full.
void addModuleFolderToPath();
