#include "command/support/program.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace ulm::tools {

ProgramArguments::ProgramArguments(int argc, char** argv) : texts_(argv, argv + argc) {
  for (std::string& text : texts_) pointers_.push_back(text.data());
  pointers_.push_back(nullptr);
  // If the caller closed a standard stream, the next opened file would get its descriptor. The
  // descriptor is taken by a file opened for the opposite direction, so that reading standard input
  // or writing standard output still fails.
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(stream, F_GETFD) >= 0 || errno != EBADF) continue;
    (void)::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

std::FILE* openToRead(const std::string& name) { return std::fopen(name.c_str(), "rb"); }

std::FILE* openFresh(const std::filesystem::path& name) { return std::fopen(name.c_str(), "wbx"); }

bool flushToDisk(std::FILE* file) { return std::fflush(file) == 0 && fsync(fileno(file)) == 0; }

std::optional<std::uint64_t> regularSize(std::FILE* file) {
  struct stat about;
  if (fstat(fileno(file), &about) != 0 || !S_ISREG(about.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(about.st_size);
}

bool errorStreamIsTerminal() { return isatty(STDERR_FILENO) == 1; }

SilencedErrorStream::SilencedErrorStream() : own_(-1) {
  std::fflush(stderr);
  const int null = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (null < 0) return;
  own_ = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
  if (own_ >= 0) ::dup2(null, STDERR_FILENO);
  ::close(null);
}

SilencedErrorStream::~SilencedErrorStream() {
  if (own_ < 0) return;
  std::fflush(stderr);
  ::dup2(own_, STDERR_FILENO);
  ::close(own_);
}

std::FILE* takeStandardOutput() {
  const int own = ::dup(STDOUT_FILENO);
  std::FILE* report = own >= 0 ? ::fdopen(own, "w") : nullptr;
  if (report == nullptr || ::dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
    throw std::runtime_error("there is no standard output to report to");
  }
  return report;
}

}  // namespace ulm::tools
