// The process's search path.
#pragma once

// Puts this library's folder, with a backslash behind it, at the end of the variable PATH, unless
// the value holds that text already, anywhere. The folder passes through narrow text: letters that
// the ANSI code page lacks are lost. A value that does not fit 8,319 characters, before or after,
// stays as it is.
void addModuleFolderToPath();
