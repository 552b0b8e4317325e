#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>

#include "platform/win32/stand_in.h"
#include "tests/platform/win32/sample_files.h"

extern "C" [[gnu::visibility("default")]] int ulmTestProgramExport() { return 5; }

namespace {

using namespace ulm::win32::test;

std::wstring windowsName(const std::filesystem::path& file) {
  std::wstring name = L"Z:" + file.wstring();
  for (wchar_t& c : name) c = c == L'/' ? L'\\' : c;
  return name;
}

std::wstring fileNameOf(HMODULE module) {
  wchar_t name[2048];
  return {name, GetModuleFileNameW(module, name, 2048)};
}

// A use of a library for the length of a test.
class Loaded {
 public:
  explicit Loaded(const std::wstring& name) : module_(LoadLibraryW(name.c_str())) {
    EXPECT_NE(module_, nullptr) << ulmWin32LoadError();
  }
  ~Loaded() { EXPECT_EQ(FreeLibrary(module_), TRUE); }
  Loaded(const Loaded&) = delete;
  Loaded& operator=(const Loaded&) = delete;
  HMODULE operator*() const { return module_; }

 private:
  HMODULE module_;
};

TEST(Modules, AreFoundByNameWithoutCase) {
  EXPECT_EQ(GetModuleHandleW(L"Win32_Sample.dll"), nullptr);
  const Loaded sample(L"Win32_Sample.dll");
  const std::wstring full = windowsName(sampleFile());
  for (const std::wstring& name :
       {std::wstring(L"Win32_Sample.dll"), std::wstring(L"WIN32_sample.DLL"),
        std::wstring(L"win32_sample"), std::wstring(L"Win32_Sample.so"), full,
        full.substr(0, full.size() - 2) + L"dll", full.substr(0, full.size() - 3),
        sampleFile().wstring()}) {
    EXPECT_EQ(GetModuleHandleW(name.c_str()), *sample);
  }
  EXPECT_EQ(GetModuleHandleA("win32_SAMPLE.dll"), *sample);
  for (const wchar_t* absent : {L"", L"Win32_Sample.", L"Win32_Sample.exe", L"Sample.dll",
                                L"Z:\\Win32_Sample.dll", L"bin\\Win32_Sample.dll", L"C:\\x"}) {
    EXPECT_EQ(GetModuleHandleW(absent), nullptr);
  }
  EXPECT_EQ(fileNameOf(*sample), full);
}

TEST(Modules, KnowTheProgram) {
  const HMODULE program = GetModuleHandleW(nullptr);
  ASSERT_NE(program, nullptr);
  const std::filesystem::path file = std::filesystem::read_symlink("/proc/self/exe");
  EXPECT_EQ(fileNameOf(nullptr), windowsName(file));
  EXPECT_EQ(fileNameOf(program), windowsName(file));
  EXPECT_EQ(GetModuleHandleA(nullptr), program);
  EXPECT_EQ(GetModuleHandleW((file.filename().wstring() + L".EXE").c_str()), program);
  EXPECT_EQ(GetModuleHandleW(fileNameOf(nullptr).c_str()), program);
  EXPECT_EQ(GetModuleHandleW(file.filename().wstring().c_str()), nullptr);
  EXPECT_EQ(FreeLibrary(program), TRUE);
  for (const HMODULE module : {program, HMODULE{}}) {
    const FARPROC found = GetProcAddress(module, "ulmTestProgramExport");
    EXPECT_EQ(reinterpret_cast<void*>(found), reinterpret_cast<void*>(&ulmTestProgramExport));
    EXPECT_EQ(GetProcAddress(module, "GetACP"), nullptr);  // what it links is not looked at
  }
}

TEST(Modules, GiveTheirOwnExportsOnly) {
  const Loaded sample(L"Win32_Sample");
  const FARPROC answer = GetProcAddress(*sample, "sampleAnswer");
  ASSERT_NE(answer, nullptr);
  EXPECT_EQ(reinterpret_cast<int (*)()>(reinterpret_cast<void*>(answer))(), 42);
  EXPECT_EQ(GetProcAddress(*sample, "sampleBaseAnswer"), nullptr);
  EXPECT_NE(GetProcAddress(GetModuleHandleW(L"Win32_Sample_Base"), "sampleBaseAnswer"), nullptr);
  EXPECT_EQ(GetProcAddress(*sample, "noSuchExport"), nullptr);
  EXPECT_EQ(GetProcAddress(*sample, reinterpret_cast<const char*>(1)), nullptr);
  EXPECT_EQ(GetProcAddress(reinterpret_cast<HMODULE>(8), "sampleAnswer"), nullptr);
}

TEST(Modules, CutTheirNames) {
  const std::wstring full = fileNameOf(nullptr);
  for (std::size_t size = 0; size <= full.size() + 2; ++size) {
    std::wstring buffer(full.size() + 3, L'#');
    const DWORD length = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(size));
    EXPECT_EQ(length, std::min(size, full.size()));
    std::wstring expected = full.substr(0, size);
    if (size > full.size()) expected.push_back(L'\0');
    EXPECT_EQ(buffer.substr(0, expected.size()), expected);
    EXPECT_EQ(buffer[expected.size()], L'#');
  }
  wchar_t none = L'#';
  EXPECT_EQ(GetModuleFileNameW(reinterpret_cast<HMODULE>(8), &none, 1), 0u);
}

TEST(Modules, AnswerForTheirAddresses) {
  const Loaded sample(L"Win32_Sample");
  const auto address = reinterpret_cast<std::uintptr_t>(GetProcAddress(*sample, "sampleAnswer"));
  const auto pageSize = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const std::uintptr_t page = address & ~(pageSize - 1);
  const auto* place = reinterpret_cast<const void*>(address);
  MEMORY_BASIC_INFORMATION information{};
  EXPECT_EQ(VirtualQuery(place, &information, sizeof information), sizeof information);
  EXPECT_EQ(information.AllocationBase, *sample);
  EXPECT_EQ(information.BaseAddress, reinterpret_cast<void*>(page));
  const auto* last = reinterpret_cast<void*>(page + information.RegionSize - 1);
  EXPECT_EQ(VirtualQuery(last, &information, sizeof information), sizeof information);
  EXPECT_EQ(information.AllocationBase, *sample);
  EXPECT_EQ(information.RegionSize, pageSize);
  EXPECT_EQ(VirtualQuery(place, &information, sizeof information - 1), 0u);
  EXPECT_EQ(VirtualQuery(&information, &information, sizeof information), 0u);  // the stack
  EXPECT_EQ(DisableThreadLibraryCalls(*sample), TRUE);
  EXPECT_EQ(DisableThreadLibraryCalls(reinterpret_cast<HMODULE>(8)), FALSE);
}

TEST(Modules, LeaveWithTheirLastUse) {
  EXPECT_EQ(LoadLibraryW(L"WIN32_SAMPLE.dll"), nullptr);  // files have case
  const HMODULE first = LoadLibraryW(windowsName(sampleFile()).c_str());
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(LoadLibraryW(L"WIN32_SAMPLE.dll"), first);  // modules have none
  GetProcAddress(first, "sampleAnswer");
  EXPECT_EQ(FreeLibrary(GetModuleHandleW(L"Win32_Sample_Base")), FALSE);  // not taken by itself
  EXPECT_EQ(FreeLibrary(first), TRUE);
  EXPECT_EQ(GetModuleHandleW(L"Win32_Sample"), first);
  EXPECT_EQ(FreeLibrary(first), TRUE);
  EXPECT_EQ(GetModuleHandleW(L"Win32_Sample"), nullptr);
  EXPECT_EQ(GetModuleHandleW(L"Win32_Sample_Base"), nullptr);
  EXPECT_EQ(FreeLibrary(first), FALSE);
  EXPECT_EQ(FreeLibrary(nullptr), FALSE);
}

// Also where an initialiser throws: what was made goes again, and the library with it.
TEST(Modules, AreFoundWhileTheyComeAndLeave) {
  wchar_t told[16] = {};
  for (const wchar_t* wish : {L"ULM_SAMPLE_THROWS=", L"ULM_SAMPLE_THROWS=1"}) {
    _wputenv(wish);
    const HMODULE sample = LoadLibraryW(L"Win32_Sample");
    GetEnvironmentVariableW(L"ULM_SAMPLE", told, 16);
    EXPECT_STREQ(told, sample != nullptr ? L"came" : L"left");
    EXPECT_EQ(FreeLibrary(sample), sample != nullptr ? TRUE : FALSE);
    GetEnvironmentVariableW(L"ULM_SAMPLE", told, 16);
    EXPECT_STREQ(told, L"left");
    EXPECT_EQ(GetModuleHandleW(L"Win32_Sample"), nullptr);
  }
  EXPECT_THAT(std::string(ulmWin32LoadError()), testing::HasSubstr("threw"));
  _wputenv(L"ULM_SAMPLE_THROWS=");
  const Loaded again(L"Win32_Sample");
}

TEST(Modules, KeepNamesThatAreNotText) {
  const TestFolder folder;
  const std::filesystem::path file = folder / "a\xE9\\b\xC3\xA9.so";
  std::filesystem::copy_file(sampleFile(), file);
  const Loaded original(L"Win32_Sample");  // brings what the copy links, too
  // By the loader itself and with a relative name, after which the process moves on.
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(file.parent_path());
  void* use = dlopen(("./" + file.filename().string()).c_str(), RTLD_NOW);
  std::filesystem::current_path(before);
  ASSERT_NE(use, nullptr) << dlerror();
  std::wstring expected = windowsName(file.parent_path()) +
                          L"\\a\xDCE9\xDC5C"
                          L"b\xE9.so";
  const HMODULE module = GetModuleHandleW(expected.c_str());
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(fileNameOf(module), expected);
  EXPECT_NE(GetProcAddress(module, "sampleAnswer"), nullptr);
  EXPECT_EQ(GetFileVersionInfoSizeW(expected.c_str(), nullptr), 92u);
  dlclose(use);
  EXPECT_EQ(GetModuleHandleW(expected.c_str()), nullptr);
  const Loaded again(expected);
  EXPECT_EQ(std::string(ulmWin32LoadError()), "");
}

TEST(LoadLibraryW, TellsWhyItFailed) {
  const TestFolder folder;
  const std::filesystem::path file = folder / "text.dll";
  writeFile(file, "no library");
  const std::wstring text = windowsName(file);
  const wchar_t* const names[] = {L"no_such.dll", L"", L"C:\\x.dll", nullptr, text.c_str()};
  for (const wchar_t* name : names) {
    EXPECT_EQ(LoadLibraryW(name), nullptr);
    EXPECT_STRNE(ulmWin32LoadError(), "");
  }
  EXPECT_THAT(std::string(ulmWin32LoadError()), testing::HasSubstr("text.dll"));
}

}  // namespace
