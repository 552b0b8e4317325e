#include "command/support/process.h"

#include <array>
#include <cwchar>
#include <stdexcept>
#include <utility>

#include "command/support/windows/wide_text.h"

namespace ulm::tools {
namespace {

// Exit codes from this one up are codes of unhandled exceptions.
constexpr DWORD kFirstException = 0xC0000000;

// Owns a handle of the system.
class Handle {
 public:
  explicit Handle(HANDLE handle = nullptr) noexcept : handle_(handle) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() {
    if (handle_ != nullptr) CloseHandle(handle_);
  }
  HANDLE get() const noexcept { return handle_; }

 private:
  HANDLE handle_;
};

// Quotes an argument so that the C run-time of the program reads the same text: a quotation mark is
// escaped, and so is each backslash directly before one.
std::wstring quotedArgument(const std::wstring& argument) {
  if (!argument.empty() && argument.find_first_of(L" \t\n\v\"") == std::wstring::npos) {
    return argument;
  }
  std::wstring text = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t character : argument) {
    if (character == L'"') text.append(backslashes + 1, L'\\');
    backslashes = character == L'\\' ? backslashes + 1 : 0;
    text += character;
  }
  return text.append(backslashes, L'\\') + L'"';
}

// Returns "NAME=" of an entry. The name of the system's own entries, as "=C:=...", starts with '='.
std::wstring nameOf(const std::wstring& entry) { return entry.substr(0, entry.find(L'=', 1) + 1); }

// Returns an environment block: the added entries, then the caller's entries with other names.
std::wstring environmentWith(const std::vector<std::string>& added) {
  std::wstring block;
  std::vector<std::wstring> entries;
  for (const std::string& text : added) entries.push_back(wideOf(text));
  for (const std::wstring& entry : entries) block += entry + L'\0';
  wchar_t* const own = GetEnvironmentStringsW();
  for (const wchar_t* entry = own; entry != nullptr && *entry != L'\0';
       entry += std::wcslen(entry) + 1) {
    bool replaced = false;
    for (const std::wstring& other : entries) {
      const std::wstring name = nameOf(other);
      replaced = replaced || _wcsnicmp(entry, name.c_str(), name.size()) == 0;
    }
    if (!replaced) block.append(entry).push_back(L'\0');
  }
  FreeEnvironmentStringsW(own);
  return block + L'\0';
}

std::string readAll(HANDLE pipe) {
  std::string text;
  std::array<char, 4096> block;
  DWORD count = 0;
  while (ReadFile(pipe, block.data(), block.size(), &count, nullptr) != FALSE && count > 0) {
    text.append(block.data(), count);
  }
  return text;
}

}  // namespace

ProcessResult runProcess(const std::filesystem::path& program,
                         const std::vector<std::string>& arguments,
                         const std::vector<std::string>& extraEnvironment, ErrorStream errors,
                         const std::filesystem::path& folder) {
  std::wstring file = program.wstring();
  if (!program.has_extension()) file += L".exe";
  std::wstring line = quotedArgument(file);
  for (const std::string& argument : arguments) line += L' ' + quotedArgument(wideOf(argument));
  std::wstring environment = environmentWith(extraEnvironment);

  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE ends[2];
  if (CreatePipe(&ends[0], &ends[1], &inherited, 0) == FALSE) throw std::runtime_error("no pipe");
  const Handle output(ends[0]);
  Handle input(ends[1]);
  SetHandleInformation(output.get(), HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  start.hStdOutput = input.get();
  start.hStdError = errors == ErrorStream::Joined ? input.get() : GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION child{};
  ProcessResult result;
  if (CreateProcessW(file.c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_UNICODE_ENVIRONMENT,
                     environment.data(), folder.empty() ? nullptr : folder.c_str(), &start,
                     &child) == FALSE) {
    result.ending = "it cannot be started: error " + std::to_string(GetLastError());
    return result;
  }
  const Handle process(child.hProcess), thread(child.hThread);
  input = Handle();
  result.output = readAll(output.get());
  WaitForSingleObject(process.get(), INFINITE);
  DWORD exitCode = 0;
  GetExitCodeProcess(process.get(), &exitCode);
  if (exitCode >= kFirstException) {
    result.ending = "it was ended by an exception of the system, " + std::to_string(exitCode);
  }
  result.exitCode = static_cast<int>(exitCode);
  return result;
}

std::filesystem::path programFolder() {
  std::wstring name(260, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
    if (length < name.size()) return std::filesystem::path(name.substr(0, length)).parent_path();
    name.resize(2 * name.size());
  }
}

}  // namespace ulm::tools
