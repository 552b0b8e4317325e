// The subcommands of `ulmira`, a source each. An add function hangs its subcommand into `app`; when
// the user calls it, its work runs while the command line is parsed and leaves the exit code in
// `status`. An exception that leaves the work becomes one line on the error stream, with the
// subcommand's name, and the exit code 1; one of CLI11 becomes a usage error. The command flushes
// standard output after the work, so the work itself does not.
#pragma once

namespace CLI {
class App;
}

namespace ulm::tools {

// `ulmira host`: one life of the module in a stand-in host.
void addHostCommand(CLI::App& app, int& status);

// `ulmira num`: arithmetic on numbers of any size.
void addNumCommand(CLI::App& app, int& status);

// `ulmira digest`: checksums of files, written and checked.
void addDigestCommand(CLI::App& app, int& status);

// `ulmira rsa`: the RSA operation on one block.
void addRsaCommand(CLI::App& app, int& status);

// `ulmira clip`: polygons and segments against the view volume.
void addClipCommand(CLI::App& app, int& status);

// `ulmira font`: what a TrueType font holds.
void addFontCommand(CLI::App& app, int& status);

}  // namespace ulm::tools
