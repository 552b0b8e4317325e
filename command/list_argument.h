// A list of arguments on the command line.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace ulm::tools {

// Adds a positional argument of any number of texts; required() makes it one or more. The texts are
// taken as they are. CLI11 would split a text such as [a,b], which can be the name of a file or a
// text to draw, in a list to which it can always add an argument. So the list is one that CLI11
// counts as not filled yet.
inline CLI::Option* addListArgument(CLI::App& app, const char* name,
                                    std::vector<std::string>& texts, const char* description) {
  return app.add_option(name, texts, description)
      ->expected(CLI::detail::expected_max_vector_size - 1)
      ->take_all()
      ->allow_extra_args(false);
}

}  // namespace ulm::tools
