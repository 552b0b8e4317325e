#include "command/support/program.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <stdexcept>

#include "command/support/windows/wide_text.h"

// Splits the command line as the C run-time does. The run-time exports this function without
// declaring it in a header.
struct UlmStartupInfo {
  int newMode;
};
extern "C" __declspec(dllimport) int __wgetmainargs(int* argc, wchar_t*** argv,
                                                    wchar_t*** environment, int expandNames,
                                                    UlmStartupInfo* info);

namespace ulm::tools {

ProgramArguments::ProgramArguments(int /*argc*/, char** /*argv*/) {
  // The arguments of main are in the ANSI code page, which cannot represent every character.
  int count = 0;
  wchar_t** values = nullptr;
  wchar_t** environment = nullptr;
  UlmStartupInfo info{0};
  if (__wgetmainargs(&count, &values, &environment, 0, &info) != 0) count = 0;
  for (int i = 0; i < count; ++i) texts_.push_back(utf8Of(values[i]));
  for (std::string& text : texts_) pointers_.push_back(text.data());
  pointers_.push_back(nullptr);
  for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
}

std::FILE* openToRead(const std::string& name) { return _wfopen(wideOf(name).c_str(), L"rb"); }

std::FILE* openFresh(const std::filesystem::path& name) {
  // fopen modes of the C run-time cannot request a file that does not exist yet.
  const int file =
      _wopen(name.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
  return file >= 0 ? _fdopen(file, "wb") : nullptr;
}

bool flushToDisk(std::FILE* file) { return std::fflush(file) == 0 && _commit(_fileno(file)) == 0; }

std::optional<std::uint64_t> regularSize(std::FILE* file) {
  struct _stat64 about;
  if (_fstat64(_fileno(file), &about) != 0 || (about.st_mode & _S_IFMT) != _S_IFREG) {
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(about.st_size);
}

bool errorStreamIsTerminal() { return _isatty(_fileno(stderr)) != 0; }

SilencedErrorStream::SilencedErrorStream() : own_(-1) {
  std::fflush(stderr);
  const int null = _wopen(L"NUL", _O_WRONLY | _O_BINARY);
  if (null < 0) return;
  own_ = _dup(_fileno(stderr));
  if (own_ >= 0) _dup2(null, _fileno(stderr));
  _close(null);
}

SilencedErrorStream::~SilencedErrorStream() {
  if (own_ < 0) return;
  std::fflush(stderr);
  _dup2(own_, _fileno(stderr));
  _close(own_);
}

std::FILE* takeStandardOutput() {
  const int own = _dup(_fileno(stdout));
  std::FILE* report = own >= 0 ? _fdopen(own, "wb") : nullptr;
  if (report == nullptr || _dup2(_fileno(stderr), _fileno(stdout)) != 0) {
    throw std::runtime_error("there is no standard output to report to");
  }
  return report;
}

}  // namespace ulm::tools
