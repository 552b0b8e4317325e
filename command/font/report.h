// The form of what a subcommand of `ulmira font` prints: a JSON object, or the same values as lines
// and tables.
#pragma once

#include <string>

#include "command/json_text.h"

namespace ulm::tools {

// The member "units" of an object is not printed as text. It maps the key of a value to its unit,
// which is printed after the value.
std::string plainText(const Json& object);

// Adds a character as "code", U+0041, and "character", A. Both are null if `code` is 0.
void addCharacter(Json& object, char32_t code);

}  // namespace ulm::tools
