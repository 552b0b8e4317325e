// One life of the module in a host: load, create, start, stop, final release, unload.
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
  std::vector<std::string> without;  // host libraries that are left out, without their endings
};

// What the host saw. Texts are UTF-8.
struct RunReport {
  std::array<std::uint32_t, 4> apiVersion{};
  std::string modulePath;
  using Record = std::vector<std::pair<std::string, std::string>>;
  std::optional<Record> record;  // in the order of the keys; nothing where the host took none
  std::optional<std::string> wld;
  std::string pathBefore;  // empty where there is no PATH
  std::string pathAfter;
  struct Load {
    std::string file;
    std::string engine;
    std::int32_t number;
  };
  std::vector<Load> loads;
  bool started = false;
  std::vector<std::string> unbalanced;  // what kept references, or memory, beyond the unload
};

// Why a run could not be carried through, in one line.
class RunError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Takes the host's libraries into this process, but for those left out, and the module through its
// life. RunError where a library cannot be loaded, an entry is missing, no object comes, or the
// start raises an exception; the module has been unloaded then.
RunReport runModule(const RunOptions& options);

}  // namespace ulm::tools
