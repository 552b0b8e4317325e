// Runs another program and reads what it prints.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ulm::tools {

struct ProcessResult {
  int exitCode = 0;  // meaningful when `ending` is empty
  // Why there is no exit code, in words: the program could not be started, or a signal ended it.
  std::string ending;
  std::string output;  // what it wrote to its standard output
};

// Where a program's error stream goes: where the caller's own does, or into its output.
enum class ErrorStream { Callers, Joined };

// Runs `program` with `arguments` (without its own name) and waits for its end. On Windows a name
// without an ending is that of an .exe. `extraEnvironment` holds "NAME=VALUE" texts that are added
// to the caller's own; it starts in `folder`, or in the caller's where that is empty. All text is
// UTF-8.
ProcessResult runProcess(const std::filesystem::path& program,
                         const std::vector<std::string>& arguments,
                         const std::vector<std::string>& extraEnvironment = {},
                         ErrorStream errors = ErrorStream::Callers,
                         const std::filesystem::path& folder = {});

// The folder that holds the running program.
std::filesystem::path programFolder();

}  // namespace ulm::tools
