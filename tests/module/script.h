// A test process reads its steps from its arguments, "step" or "step=value", and prints a line for
// each that answers. A test is then a row of steps and the lines that they should print.
#pragma once

#include <functional>
#include <iostream>
#include <map>
#include <string>

#include "command/support/program.h"

namespace ulm::test {

using Step = std::function<void(const std::string& value)>;

// Runs the steps; 2 for an unknown one, so that a mistyped row cannot pass.
inline int runSteps(const std::map<std::string, Step>& steps, int argc, char** argv) {
  tools::ProgramArguments arguments(argc, argv);
  for (int i = 1; i < arguments.count(); ++i) {
    const std::string argument = arguments.values()[i];
    const std::size_t equals = argument.find('=');
    const auto step = steps.find(argument.substr(0, equals));
    if (step == steps.end()) {
      std::cout << "unknown step " << argument << '\n';
      return 2;
    }
    step->second(equals == std::string::npos ? "" : argument.substr(equals + 1));
  }
  return 0;
}

template <class... Parts>
void say(const Parts&... parts) {
  (std::cout << ... << parts) << std::endl;  // flushed: a crash later loses nothing
}

}  // namespace ulm::test
