#include "standin/win32/detail/module_list.h"

#include <link.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string_view>
#include <utility>

#include "standin/win32/detail/characters.h"
#include "standin/win32/detail/file.h"
#include "standin/win32/detail/path.h"

namespace ulm::win32::detail {

namespace {

// One entry of the loader's list. It is valid only while findModule reads the list.
class ListedModule {
 public:
  ListedModule(const dl_phdr_info& info, bool isProgram) noexcept
      : info_(info), isProgram_(isProgram) {
    bool first = true;
    for (std::size_t i = 0; i < info.dlpi_phnum; ++i) {
      const Range range = segment(i);
      if (range.end == 0) continue;
      if (first || range.begin < whole_.begin) whole_.begin = range.begin;
      if (first || range.end > whole_.end) whole_.end = range.end;
      first = false;
    }
  }

  std::uintptr_t base() const noexcept { return whole_.begin; }
  bool isProgram() const noexcept { return isProgram_; }
  std::string_view linkName() const noexcept {
    return info_.dlpi_name != nullptr && !isProgram_ ? info_.dlpi_name : std::string_view();
  }

  bool holds(std::uintptr_t address) const noexcept {
    for (std::size_t i = 0; i < info_.dlpi_phnum; ++i) {
      const Range range = segment(i);
      if (address >= range.begin && address < range.end) return true;
    }
    return false;
  }

  Module copy() const {
    return {std::string(linkName()), info_.dlpi_addr, whole_.begin, whole_.end, isProgram_};
  }

 private:
  struct Range {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
  };

  // Returns the pages of a mapped segment; empty for any other segment.
  Range segment(std::size_t i) const noexcept {
    const ElfW(Phdr)& header = info_.dlpi_phdr[i];
    if (header.p_type != PT_LOAD || header.p_memsz == 0) return {};
    const std::uintptr_t mask = pageSize() - 1;
    const std::uintptr_t begin = info_.dlpi_addr + header.p_vaddr;
    return {begin & ~mask, (begin + header.p_memsz + mask) & ~mask};
  }

  const dl_phdr_info& info_;
  bool isProgram_;
  Range whole_;
};

// Returns the first module that passes the test. An exception of the test is raised again after the
// loader's function has returned, so that it never passes through the loader.
template <class Test>
std::optional<Module> findModule(const Test& test) {
  struct Walk {
    const Test& test;
    std::optional<Module> found{};
    std::exception_ptr error{};
    bool atProgram = true;
    std::uintptr_t systemCalls =
        getauxval(AT_SYSINFO_EHDR);  // the kernel's module, which has no file
  };
  Walk walk{test};
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t, void* context) {
        Walk& at = *static_cast<Walk*>(context);
        const ListedModule listed(*info, std::exchange(at.atProgram, false));
        if (listed.base() == at.systemCalls && at.systemCalls != 0) return 0;
        try {
          if (at.test(listed)) at.found = listed.copy();
        } catch (...) {
          at.error = std::current_exception();
        }
        return at.found.has_value() || at.error ? 1 : 0;
      },
      &walk);
  if (walk.error) std::rethrow_exception(walk.error);
  return std::move(walk.found);
}

// --- File names ---

// Decodes a file name from the kernel, which marks a deleted file and writes a line end as \012.
std::string fromKernel(std::string_view name) {
  constexpr std::string_view kGone = " (deleted)";
  if (name.size() > kGone.size() && name.substr(name.size() - kGone.size()) == kGone) {
    name.remove_suffix(kGone.size());
  }
  std::string plain(name);
  for (std::size_t at = 0; (at = plain.find("\\012", at)) != std::string::npos; ++at) {
    plain.erase(at, 3);
    plain[at] = '\n';
  }
  return plain;
}

// Returns the file that is mapped at `base`; empty if there is none. Unlike a relative link name,
// the result does not depend on the working directory.
std::string mappedFile(std::uintptr_t base) {
  const std::optional<std::string> maps = InputFile("/proc/self/maps").readAll();
  std::string_view rest = maps ? std::string_view(*maps) : std::string_view();
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
    const std::size_t slash = line.find('/');
    if (slash == std::string_view::npos) continue;
    // Every line starts with the first address in hexadecimal and a '-'.
    if (std::strtoull(line.data(), nullptr, 16) == base) return fromKernel(line.substr(slash));
  }
  return {};
}

std::string programLink() {
  char name[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", name, sizeof name);
  if (length <= 0) return {};
  return fromKernel({name, static_cast<std::size_t>(length)});
}

bool isPlainAbsolute(std::string_view name) noexcept {
  if (name.empty() || name[0] != '/') return false;
  for (const std::string_view detour : {"//", "/./", "/../"}) {
    if (name.find(detour) != std::string_view::npos) return false;
  }
  return true;
}

// --- Matching of names ---

constexpr std::wstring_view kLibrarySuffix = L".dll";
constexpr std::wstring_view kProgramSuffix = L".exe";

// Returns true if `wanted` names the file `actual`: both are equal, or NAME.dll is the library
// NAME.so, or NAME.exe the program NAME. Either both are bare names or both have folders.
bool namesFile(std::wstring_view wanted, std::wstring_view actual, bool isProgram) {
  if (equalNoCase(wanted, actual)) return true;
  const std::wstring_view suffix = isProgram ? kProgramSuffix : kLibrarySuffix;
  if (!endsWithNoCase(wanted, suffix)) return false;
  std::wstring mapped(wanted.substr(0, wanted.size() - suffix.size()));
  if (!isProgram) mapped += L".so";
  return equalNoCase(mapped, actual);
}

// Completes a name as Windows does: appends ".dll" to a name without a dot, and drops a dot at the
// end.
std::wstring completed(std::wstring_view name) {
  const std::size_t slash = name.find_last_of(L"\\/");
  const std::size_t dot = name.find_last_of(L'.');
  if (dot == std::wstring_view::npos || (slash != std::wstring_view::npos && dot < slash)) {
    return std::wstring(name).append(kLibrarySuffix);
  }
  if (dot + 1 == name.size()) name.remove_suffix(1);
  return std::wstring(name);
}

std::optional<Module> moduleWithBareName(std::wstring_view name) {
  const std::wstring wanted = completed(name);
  // The program's name needs a system call, so it is read only if it can match.
  const bool isLibrary = endsWithNoCase(wanted, kLibrarySuffix);
  return findModule([&](const ListedModule& listed) {
    if (listed.isProgram() && isLibrary) return false;
    const std::string file =
        listed.isProgram() ? listed.copy().fileName() : std::string(listed.linkName());
    return namesFile(wanted, fromSystem(baseName(file)), listed.isProgram());
  });
}

std::optional<Module> moduleWithFullName(const std::string& path) {
  const std::wstring exact = windowsPath(path);
  const std::wstring wanted = completed(exact);
  return findModule([&](const ListedModule& listed) {
    const std::wstring actual = windowsPath(listed.copy().fileName());
    return equalNoCase(exact, actual) || namesFile(wanted, actual, listed.isProgram());
  });
}

}  // namespace

std::uintptr_t pageSize() noexcept { return static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE)); }

HMODULE Module::handle() const noexcept {
  return reinterpret_cast<HMODULE>(base);  // NOLINT(performance-no-int-to-ptr): an address
}

std::string Module::fileName() const {
  if (isPlainAbsolute(linkName)) return linkName;
  std::string mapped = mappedFile(base);
  if (!mapped.empty()) return mapped;
  if (isProgram) return programLink();
  const std::unique_ptr<char, decltype(&std::free)> real(realpath(linkName.c_str(), nullptr),
                                                         &std::free);
  return real ? std::string(real.get()) : linkName;
}

std::optional<Module> moduleOf(HMODULE handle) {
  if (handle == nullptr) {
    return findModule([](const ListedModule& listed) { return listed.isProgram(); });
  }
  const auto base = reinterpret_cast<std::uintptr_t>(handle);
  return findModule([base](const ListedModule& listed) { return listed.base() == base; });
}

std::optional<Module> moduleAt(std::uintptr_t address) {
  return findModule([address](const ListedModule& listed) { return listed.holds(address); });
}

std::optional<Module> moduleNamed(const wchar_t* name) {
  const std::wstring_view wanted(name);
  if (wanted.empty()) return std::nullopt;
  if (wanted.find_first_of(L"\\/:") == std::wstring_view::npos) return moduleWithBareName(wanted);
  const std::optional<std::string> path = systemPath(wanted);
  return path ? moduleWithFullName(*path) : std::nullopt;
}

std::optional<std::string> libraryFile(const wchar_t* name) {
  if (*name == L'\0') return std::nullopt;
  const std::wstring wanted = completed(name);
  std::optional<std::string> path = systemPath(wanted);
  if (!path) return std::nullopt;
  if (path->find('/') == std::string::npos) {
    const std::optional<Module> program = moduleOf(nullptr);
    if (!program) return std::nullopt;
    path->insert(0, folderOf(program->fileName()));
  }
  if (endsWithNoCase(wanted, kLibrarySuffix) && access(path->c_str(), F_OK) != 0) {
    path->replace(path->size() - kLibrarySuffix.size(), std::string::npos, ".so");
  }
  return path;
}

}  // namespace ulm::win32::detail
