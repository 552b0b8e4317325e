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

// Runs `program` with `arguments` (without its own name), its error stream being the caller's, and
// waits for its end. `extraEnvironment` holds "NAME=VALUE" texts that are added to the caller's
// own.
ProcessResult runProcess(const std::filesystem::path& program,
                         const std::vector<std::string>& arguments,
                         const std::vector<std::string>& extraEnvironment = {});

// The folder that holds the running program.
std::filesystem::path programFolder();

}  // namespace ulm::tools
