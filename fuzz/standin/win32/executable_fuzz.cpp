// The reader of executable files: whether a file may be loaded, its version block and its strings.
// An input is a byte that selects a string, and the file.
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <string>

#include "fuzz/memory_file.h"
#include "hostsdk/win32/win32.h"
#include "standin/win32/detail/elf_file.h"

using namespace ulm::fuzz;
using namespace ulm::win32::detail;

namespace {

// A library whose file is then replaced: its strings are read from the file each time, and none of
// its code runs again.
class ReplacedLibrary {
 public:
  ReplacedLibrary() {
    std::string name = (std::filesystem::temp_directory_path() / "ulm_fuzz_XXXXXX").string();
    require(mkdtemp(name.data()) != nullptr, "a folder");
    folder_ = name;
    const std::filesystem::path file = folder_ / "replaced.dll";
    std::filesystem::copy_file(ULM_FUZZ_LIBRARY, file);
    std::wstring windowsName = L"Z:" + file.wstring();
    std::replace(windowsName.begin(), windowsName.end(), L'/', L'\\');
    handle_ = LoadLibraryW(windowsName.c_str());
    require(handle_ != nullptr, "the library is loaded");
    std::filesystem::remove(file);
    std::filesystem::create_symlink(content_.path(), file);
  }
  ReplacedLibrary(const ReplacedLibrary&) = delete;
  ReplacedLibrary& operator=(const ReplacedLibrary&) = delete;
  ~ReplacedLibrary() { std::filesystem::remove_all(folder_); }

  HMODULE handle() const { return handle_; }
  const MemoryFile& file() const { return content_; }

 private:
  std::filesystem::path folder_;
  MemoryFile content_;
  HMODULE handle_ = nullptr;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1 || size > 65536) return 0;
  static const ReplacedLibrary library;
  Input input(data, size);
  const UINT number = input.u8();
  const std::string content = input.text(input.takeRest());
  library.file().set(content);

  const std::string path = library.file().path();
  static_cast<void>(libraryFault(path));
  for (const char* name : {".rsrc_strings", ".rsrc_version", ""}) {
    const std::optional<std::string> section = readElfSection(path, name);
    require(!section || content.find(*section) != content.npos, "a section is a part of its file");
  }

  const std::wstring file = library.file().windowsName();
  DWORD ignored = 9;
  const DWORD length = GetFileVersionInfoSizeW(file.c_str(), &ignored);
  require(length <= content.size() && ignored == 0, "a block is a part of its file");
  std::string block(length, '\xEE');
  const BOOL found = GetFileVersionInfoW(file.c_str(), 0, length, block.data());
  require((found != FALSE) == (length >= 6), "the block that has a size is found");
  void* value = nullptr;
  UINT valueLength = 0;
  if (found != FALSE && VerQueryValueW(block.data(), L"\\", &value, &valueLength) != FALSE) {
    require(static_cast<char*>(value) >= block.data() &&
                static_cast<char*>(value) + valueLength <= block.data() + block.size(),
            "the value is inside its block");
  }

  wchar_t wide[64], whole[70000];
  char narrow[64];
  const int all = LoadStringW(library.handle(), number, whole, 70000);
  require(all >= 0 && (all == 0 || whole[all] == L'\0'), "a string has an end");
  const int part = LoadStringW(library.handle(), number, wide, 64);
  require(
      part == std::min(all, 63) && (part == 0 || std::wmemcmp(wide, whole, 63) == 0 ||
                                    std::wmemcmp(wide, whole, static_cast<std::size_t>(part)) == 0),
      "a string is cut to its buffer");
  require(LoadStringA(library.handle(), number, narrow, 64) == part, "as many narrow characters");
  return 0;
}
