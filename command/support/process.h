// Runs another program and reads what it prints.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ulm::tools {

struct ProcessResult {
  int exitCode = 0;  // valid if `ending` is empty
  // The reason why there is no exit code: the program could not be started, or a signal or an
  // exception of the system ended it. Empty if it exited by itself.
  std::string ending;
  std::string output;  // all bytes that the program wrote to its standard output
};

// The destination of a program's error stream: the caller's error stream, or ProcessResult::output.
enum class ErrorStream { Callers, Joined };

// Runs a program and waits until it exits. All text is UTF-8.
//   program           a path; on Windows .exe is added to a name without an extension
//   arguments         without the program's own name
//   extraEnvironment  texts "NAME=VALUE", which replace or extend the caller's environment
//   folder            the working directory; empty means the caller's
// Throws std::system_error (POSIX) or std::runtime_error (Windows) if no pipe can be created.
ProcessResult runProcess(const std::filesystem::path& program,
                         const std::vector<std::string>& arguments,
                         const std::vector<std::string>& extraEnvironment = {},
                         ErrorStream errors = ErrorStream::Callers,
                         const std::filesystem::path& folder = {});

// Returns the folder that contains the running program. Throws std::filesystem::filesystem_error if
// the system does not report it.
std::filesystem::path programFolder();

}  // namespace ulm::tools
