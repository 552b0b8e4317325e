// Names that differ between the systems, for tests that run on both.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>

namespace ulm::test {

#ifdef _WIN32
// True if the layer implements the system's calls, and logs them.
inline constexpr bool kOnLayer = false;
inline constexpr char kLibraryEnding[] = ".dll";
inline constexpr char kProgramEnding[] = ".exe";
#else
inline constexpr bool kOnLayer = true;
inline constexpr char kLibraryEnding[] = ".so";
inline constexpr char kProgramEnding[] = "";
#endif

// The full name of a file in the form that the module and its host use.
inline std::wstring windowsName(const std::filesystem::path& file) {
  std::wstring name = file.wstring();
  if (name.substr(0, 1) == L"/") name.insert(0, L"Z:");
  std::replace(name.begin(), name.end(), L'/', L'\\');
  return name;
}

// Returns true if a line of a table applies to this system. A line with the prefix "layer: " or
// "windows: " applies to one system only; the prefix is removed.
inline bool standsHere(std::string& line) {
  for (const std::string mark : {"layer: ", "windows: "}) {
    if (line.rfind(mark, 0) != 0) continue;
    line.erase(0, mark.size());
    return (mark[0] == 'l') == kOnLayer;
  }
  return true;
}

}  // namespace ulm::test
