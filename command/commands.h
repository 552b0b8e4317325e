// The subcommands of `ulmira`, one source each. An add function adds its subcommand to `app`. CLI11
// calls the subcommand's work while it parses the command line; the work leaves the exit code in
// `status`, which is 0 before. Both references must live until the command line is parsed.
// If the work throws CLI::ParseError, main() reports a usage error. For any other exception it
// prints one line on the error stream, with the subcommand's name, and exits with 1. main() flushes
// standard output after the work, so the work itself does not.
#pragma once

namespace CLI {
class App;
}

namespace ulm::tools {

// `ulmira host`: loads, runs and unloads the module in a stand-in host.
void addHostCommand(CLI::App& app, int& status);

// `ulmira num`: arithmetic on numbers of any size.
void addNumCommand(CLI::App& app, int& status);

// `ulmira digest`: prints and checks the checksums of files.
void addDigestCommand(CLI::App& app, int& status);

// `ulmira rsa`: the RSA operation on one block.
void addRsaCommand(CLI::App& app, int& status);

// `ulmira clip`: clips polygons and segments against the view volume.
void addClipCommand(CLI::App& app, int& status);

// `ulmira font`: prints what a TrueType font contains.
void addFontCommand(CLI::App& app, int& status);

// `ulmira font subset`: makes a smaller font. `font` is the subcommand `ulmira font`.
void addFontSubsetCommand(CLI::App& font);

}  // namespace ulm::tools
