// WOFF2, the compressed form of a font for the web.
#pragma once

#include <string>
#include <string_view>

namespace ulm::tools {

// Throws std::runtime_error if this build cannot write WOFF2, because it has no libwoff.
void requireWoff2();

// Returns the font as a WOFF2 file. It takes about 2 seconds for a megabyte. Throws
// std::runtime_error if the font cannot be compressed, and as requireWoff2.
std::string toWoff2(std::string_view font);

// Returns true if the bytes start as a WOFF2 file does.
bool isWoff2(std::string_view bytes);

}  // namespace ulm::tools
