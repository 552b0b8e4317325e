// The system calls that the module makes, under their own names and with their own meaning.
//
// On Windows this is the system's header. Elsewhere the library ulmwin32 supplies the subset that
// is used. It is one shared library, so that a host, its libraries and the module see one
// environment block and one set of windows. Its world is this:
//   modules        Only what is already in the process is found, save by LoadLibraryW. `NAME.dll`
//                  is the loaded `NAME.so`, `NAME.exe` the program; names compare without case. A
//                  handle is the address at which the file is mapped, the same that VirtualQuery
//                  tells.
//   file names     /a/b/ULM_Main.so reads as Z:\a\b\ULM_Main.so, and calls that take a file name
//                  take that form (and the system's own) back. Bytes that are not UTF-8 read as
//                  U+DC80 to U+DCFF, a backslash within a name as U+DC5C, so that no name is lost.
//   environment    A block of the layer's own, which starts as a copy of the process's at the first
//                  use and never writes back: a PATH joined with ';' must not damage the real one.
//                  Names compare without case; of several that do so alike the first counts.
//   code pages     0 (the ANSI page, here 1252), 1252 and 65001 (UTF-8); any other is unknown.
//   wide text      wchar_t holds a code point each; lengths count wchar_t.
//   case           Letters of ASCII and Latin-1 are folded, whatever the locale.
// Every function may be called from any thread, and before the static initialisers of its caller
// have run. None throws: where memory runs out a function gives its failure result.
#pragma once

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// windows.h must come first.
#include <winver.h>

#include <cwchar>

#else

#include <cstddef>
#include <cstdint>

#include "hostsdk/export.h"

#define WINAPI

using BOOL = std::int32_t;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using LONG = std::int32_t;
using SIZE_T = std::size_t;
using LPVOID = void*;
using HGLOBAL = void*;
using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;
using HWND = struct HWND__*;
using FARPROC = std::intptr_t (*)();

inline constexpr BOOL TRUE = 1;
inline constexpr BOOL FALSE = 0;

// Why a library is entered: the second argument of DllMain.
inline constexpr DWORD DLL_PROCESS_DETACH = 0;
inline constexpr DWORD DLL_PROCESS_ATTACH = 1;
inline constexpr DWORD DLL_THREAD_ATTACH = 2;
inline constexpr DWORD DLL_THREAD_DETACH = 3;

inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_UTF8 = 65001;
inline constexpr DWORD MB_ERR_INVALID_CHARS = 8;
inline constexpr UINT GMEM_FIXED = 0x0000;
inline constexpr UINT GMEM_ZEROINIT = 0x0040;
inline constexpr UINT GPTR = GMEM_FIXED | GMEM_ZEROINIT;

struct tagPOINT {
  LONG x, y;
};
struct tagSIZE {
  LONG cx, cy;
};
struct tagRECT {
  LONG left, top, right, bottom;
};

struct MEMORY_BASIC_INFORMATION {
  void* BaseAddress;        // first byte of the page that was asked for
  void* AllocationBase;     // first byte of the module's mapping: its handle
  DWORD AllocationProtect;  // 0 here
  WORD PartitionId;         // 0 here
  SIZE_T RegionSize;        // bytes from BaseAddress to the end of the module's mapping
  DWORD State;              // 0x1000, committed
  DWORD Protect;            // 0 here
  DWORD Type;               // 0x1000000, an image
};

struct VS_FIXEDFILEINFO {
  DWORD dwSignature;  // 0xFEEF04BD
  DWORD dwStrucVersion;
  DWORD dwFileVersionMS;  // first number << 16 | second number
  DWORD dwFileVersionLS;  // third number << 16 | fourth number
  DWORD dwProductVersionMS;
  DWORD dwProductVersionLS;
  DWORD dwFileFlagsMask;
  DWORD dwFileFlags;
  DWORD dwFileOS;
  DWORD dwFileType;
  DWORD dwFileSubtype;
  DWORD dwFileDateMS;
  DWORD dwFileDateLS;
};

// --- Modules (modules.cpp) ---

// The handle of a library in the process, or of the program for a null name; null where there is
// none. A name without a dot means NAME.dll, and a dot at its end says that nothing is added; a
// name with a folder must be the whole file name.
ULM_WIN32_API HMODULE GetModuleHandleW(const wchar_t* name);
ULM_WIN32_API HMODULE GetModuleHandleA(const char* name);

// An export of that very module; null where it has none of this name. Exports of the libraries that
// it links are not looked at. A null module is the program. There are no exports by number.
ULM_WIN32_API FARPROC GetProcAddress(HMODULE module, const char* name);

// Writes the module's full file name and gives its length. A name of `size` characters or more is
// cut to `size` characters without a terminator (stand_in.h can change that), and the result is
// `size`. 0 where `module` is no
// module. A null module is the program.
ULM_WIN32_API DWORD GetModuleFileNameW(HMODULE module, wchar_t* buffer, DWORD size);

// Describes the module that holds `address`. Gives the bytes written, or 0 where no module holds
// the address or `length` is too small.
ULM_WIN32_API SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* information,
                                  SIZE_T length);

// Takes a library into the process, or counts one more use of it; null on failure, with the reason
// in ulmWin32LoadError (stand_in.h). A library that GetModuleHandleW finds under the name is meant
// before any file; else a bare name is looked for in the program's folder, a name without a dot
// gets .dll, and where there is no file NAME.dll, NAME.so is taken. An exception that leaves an
// initialiser of the library ends here and is a failure: the library goes again. The system's
// loader then stays locked to this thread: other threads can load and unload nothing any more, so a
// host that goes on after such a failure does so in one thread.
ULM_WIN32_API HMODULE LoadLibraryW(const wchar_t* fileName);

// Gives one use of a library back; with the last it leaves the process. FALSE where `module` is
// none or nobody took it with LoadLibraryW; the program never leaves.
ULM_WIN32_API BOOL FreeLibrary(HMODULE module);

// No thread ever enters a library here; tells whether `module` is one.
ULM_WIN32_API BOOL DisableThreadLibraryCalls(HMODULE module);

// --- Environment (environment.cpp) ---

// Writes the variable and gives its length without the terminator. Where it does not fit, the
// buffer is left as it was and the result is the size needed, terminator included. 0 where there is
// no such variable, with the buffer as it was.
ULM_WIN32_API DWORD GetEnvironmentVariableW(const wchar_t* name, wchar_t* buffer, DWORD size);

// Sets a variable from "NAME=VALUE", or removes it with "NAME=". 0, or -1 where the text has no
// name or no '='. A removed variable reads as absent.
ULM_WIN32_API int _wputenv(const wchar_t* assignment);

// --- Profile files (profile.cpp) ---

// The number under a key of a profile file. Sections and keys compare without the case of ASCII
// letters; the first section and the first key of a name count. Lines that start with ';' are
// comments; blanks around names and values and a pair of quotes, single or double, around a value
// are dropped. A line without '=' is a key without a value, one without ']' no section. A number
// may have a sign and is decimal, or with a small letter 0x hexadecimal, 0o octal or 0b binary;
// what follows its digits is ignored, a value without digits is 0, and it wraps modulo 2^32.
// `defaultValue` where file, section or key is not there or the value is empty, for a file name of
// 260 characters or more, and for one without a folder, which Windows would take from its own. The
// file is ANSI, UTF-8 with a mark, or UTF-16 of either byte order with a mark; it is read anew at
// each call.
ULM_WIN32_API UINT GetPrivateProfileIntW(const wchar_t* section, const wchar_t* key,
                                         int defaultValue, const wchar_t* fileName);

// --- Windows (window_registry.cpp) ---

// The newest top-level window of that class, or of any for a null class; null where there is none.
// `windowName` must be null here, any other finds nothing. Windows are registered with
// ulmWin32OpenWindow (stand_in.h). Class names compare without case.
ULM_WIN32_API HWND FindWindowW(const wchar_t* className, const wchar_t* windowName);

// --- Resources (resources.cpp; resource_block.h makes them) ---

// The size in bytes of a file's version resource, 0 where it has none. `handle` may be null and
// receives 0. File names are completed as LoadLibraryW does it.
ULM_WIN32_API DWORD GetFileVersionInfoSizeW(const wchar_t* fileName, DWORD* handle);

// Copies the version resource into `block`, `length` bytes at the most; a block that is cut tells
// the length that it was cut to. FALSE for a length below 6, which cannot tell that.
ULM_WIN32_API BOOL GetFileVersionInfoW(const wchar_t* fileName, DWORD handle, DWORD length,
                                       void* block);

// For the sub-block "\", or an empty one: gives a pointer to the VS_FIXEDFILEINFO within `block`
// and its length. FALSE for any other sub-block and for a block without it. The caller vouches that
// `block` was filled by GetFileVersionInfoW; its own length field bounds the search.
ULM_WIN32_API BOOL VerQueryValueW(const void* block, const wchar_t* subBlock, void** value,
                                  UINT* length);

// Loads a string of the module's string resource, as ANSI text cut to size - 1 characters and
// terminated; gives its length. An absent string gives 0 and empty text; a size of 0 gives -1.
// A null instance is the program, which like any other may be a file without strings. Of `number`
// the low 16 bits count.
ULM_WIN32_API int LoadStringA(HINSTANCE instance, UINT number, char* buffer, int size);
// The same as wide text; an absent string leaves the buffer as it was, and a size of 0 gives 0
// here.
ULM_WIN32_API int LoadStringW(HINSTANCE instance, UINT number, wchar_t* buffer, int size);

// --- Memory and text (text.cpp) ---

ULM_WIN32_API HGLOBAL GlobalAlloc(UINT flags, SIZE_T bytes);  // GMEM_ZEROINIT is honoured
ULM_WIN32_API HGLOBAL GlobalFree(HGLOBAL block);              // gives null

// Copies at most size - 1 characters and terminates; gives `target`, null for a null argument.
ULM_WIN32_API wchar_t* lstrcpynW(wchar_t* target, const wchar_t* source, int size);

// Text between a code page and wide characters. A source length below 0 means up to and with the
// terminator; a target size of 0 asks for the size needed. 0 is failure: an unknown code page, a
// target too small (what fits is written), an empty or null source, a source that is the target,
// any flag but the four of Windows (0 to 15), or with MB_ERR_INVALID_CHARS bytes that are not text.
// Without it such bytes become U+FFFD. Every byte of 1252 is text: the five that it leaves open are
// control characters.
ULM_WIN32_API int MultiByteToWideChar(UINT codePage, DWORD flags, const char* source,
                                      int sourceLength, wchar_t* target, int targetSize);
// A letter that 1252 lacks becomes the nearest that it has, other characters *defaultChar, or '?'
// where that is null, and *usedDefaultChar tells whether any did. In UTF-8 what is no character
// becomes U+FFFD, and both must be null.
ULM_WIN32_API int WideCharToMultiByte(UINT codePage, DWORD flags, const wchar_t* source,
                                      int sourceLength, char* target, int targetSize,
                                      const char* defaultChar, BOOL* usedDefaultChar);
ULM_WIN32_API UINT GetACP();  // 1252

#endif
