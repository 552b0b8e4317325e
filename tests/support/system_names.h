// What the systems call things differently, for tests that run on each.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>

namespace ulm::test {

#ifdef _WIN32
// Whether the layer stands for the system's calls, and logs them.
inline constexpr bool kOnLayer = false;
inline constexpr char kLibraryEnding[] = ".dll";
inline constexpr char kProgramEnding[] = ".exe";
#else
inline constexpr bool kOnLayer = true;
inline constexpr char kLibraryEnding[] = ".so";
inline constexpr char kProgramEnding[] = "";
#endif

// A file's full name as the module and its host see it.
inline std::wstring windowsName(const std::filesystem::path& file) {
  std::wstring name = file.wstring();
  if (name.substr(0, 1) == L"/") name.insert(0, L"Z:");
  std::replace(name.begin(), name.end(), L'/', L'\\');
  return name;
}

// Whether a line of a table stands for this system. One that starts with "layer: " or "windows: "
// does so on that one alone, and loses its mark.
inline bool standsHere(std::string& line) {
  for (const std::string mark : {"layer: ", "windows: "}) {
    if (line.rfind(mark, 0) != 0) continue;
    line.erase(0, mark.size());
    return (mark[0] == 'l') == kOnLayer;
  }
  return true;
}

}  // namespace ulm::test
