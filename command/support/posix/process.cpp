#include "command/support/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>

extern char** environ;

namespace ulm::tools {
namespace {

// Owns the two ends of a pipe.
struct Pipe {
  std::array<int, 2> ends{-1, -1};
  Pipe() {
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe");
    }
  }
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void closeEnd(std::size_t end) {
    if (ends[end] >= 0) ::close(ends[end]);
    ends[end] = -1;
  }
};

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> block;
  for (;;) {
    const ssize_t count = ::read(descriptor, block.data(), block.size());
    if (count > 0) text.append(block.data(), static_cast<std::size_t>(count));
    if (count == 0 || (count < 0 && errno != EINTR)) return text;
  }
}

}  // namespace

ProcessResult runProcess(const std::filesystem::path& program,
                         const std::vector<std::string>& arguments,
                         const std::vector<std::string>& extraEnvironment, ErrorStream errors,
                         const std::filesystem::path& folder) {
  std::vector<std::string> texts{program.string()};
  texts.insert(texts.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  argv.reserve(texts.size() + 1);
  for (std::string& text : texts) argv.push_back(text.data());
  argv.push_back(nullptr);
  // The C library uses the first of two equal names, so the added entries come first.
  std::vector<std::string> added = extraEnvironment;
  std::vector<char*> environment;
  environment.reserve(added.size() + 1);
  for (std::string& text : added) environment.push_back(text.data());
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    environment.push_back(*entry);
  }
  environment.push_back(nullptr);

  Pipe pipe;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipe.ends[1], STDOUT_FILENO);
  if (errors == ErrorStream::Joined) {
    posix_spawn_file_actions_adddup2(&actions, pipe.ends[1], STDERR_FILENO);
  }
  if (!folder.empty()) posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
  pid_t child = 0;
  const int failure =
      posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environment.data());
  posix_spawn_file_actions_destroy(&actions);
  ProcessResult result;
  if (failure != 0) {
    result.ending = std::string("it cannot be started: ") + std::strerror(failure);
    return result;
  }
  pipe.closeEnd(1);
  result.output = readAll(pipe.ends[0]);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFSIGNALED(status)) {
    result.ending = std::string("it was ended by a signal: ") + ::strsignal(WTERMSIG(status));
  }
  result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

std::filesystem::path programFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

}  // namespace ulm::tools
