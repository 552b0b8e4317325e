// Runs the module once in a host: load, create, start, stop, final release, unload.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace ulm::tools {

struct RunOptions {
  std::string moduleFile;
  std::vector<std::string> without;  // host libraries that are not loaded, without suffix
  bool debugMonitor = false;         // whether a debug monitor seems to run
};

// Why PATH was not changed.
enum class PathKept { NotKept, Listed, TooLong, ByModule };

// What the host observed. Texts are UTF-8.
struct RunReport {
  std::array<std::uint32_t, 4> apiVersion{};
  std::string modulePath;
  // The names, without suffix, of the library that the module finds as the host's main instance, of
  // the one that received its call to start translation, and of the one that is asked for
  // translation only in a process without the core library. Nothing if there is none.
  std::optional<std::string> mainInstance, translation, secondTranslation;
  struct Switch {
    std::string key;
    bool on;      // as the module reads it
    bool inFile;  // as it is in mt.ini; off without such a file
  };
  std::vector<Switch> switches;
  using Record = std::vector<std::pair<std::string, std::string>>;
  std::optional<Record> record;    // in the order of the keys; nothing if none was published
  std::optional<std::string> wld;  // nothing if none was reported
  std::string pathBefore;          // empty if there is no PATH
  std::string pathAfter;
  PathKept pathKept = PathKept::NotKept;
  struct Load {
    std::string file;
    std::string engine;
    std::int32_t number;
  };
  std::vector<Load> loads;
  bool started = false;
  std::vector<std::string> unbalanced;  // kinds with references or blocks left after the unload
};

// The reason why a run failed, in one line.
class RunError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Loads the host's libraries, except those in `without`, and runs the module once. Raises RunError
// if a library cannot be loaded, an export is missing, no module object is created, or the start
// raises an exception; the module is unloaded then.
RunReport runModule(const RunOptions& options);

}  // namespace ulm::tools
