// JSON as the subcommands print it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace ulm::tools {

using Json = nlohmann::ordered_json;

// Returns the object on one line, with its line end and all control characters escaped. Bytes of
// texts that are not UTF-8 become U+FFFD.
std::string jsonText(const Json& object);

}  // namespace ulm::tools
