// The system calls that the module makes, under their own names and with their own meaning.
//
// On Windows this is the system's header. Elsewhere the library ulmwin32 implements the subset that
// is used. It is one shared library, so that a host, its libraries and the module share one
// environment block and one set of windows. Its rules are:
//   modules        Only LoadLibraryW loads a library; all other functions find those already in the
//                  process. NAME.dll means the loaded NAME.so, NAME.exe the program. Names compare
//                  without case. A handle is the address at which the file is mapped, which
//                  VirtualQuery reports too.
//   file names     /a/b/ULM_Main.so is reported as Z:\a\b\ULM_Main.so. Functions with a file name
//                  accept this form and the system's own. A byte that is not UTF-8 becomes U+DC80
//                  to U+DCFF, a backslash within a name becomes U+DC5C, so that no name is lost.
//   environment    A separate block. It is copied from that of the process while the library is
//                  loaded and never written back, because a PATH joined with ';' must not damage
//                  the real one. Names compare without case; the first of equal names counts.
//   code pages     0 (the ANSI page, here 1252), 1252 and 65001 (UTF-8); any other is unknown.
//   wide text      A wchar_t holds one code point; lengths count wchar_t.
//   case           Letters of ASCII and Latin-1 are folded; the locale has no influence.
// Every function may be called from any thread, and before the static initialisers of its caller
// have run. No function throws: if memory runs out, it returns its failure result. A pointer
// argument may be null only where the function says so; otherwise null returns the failure result
// too.
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

// The reason of a call of DllMain, its second argument.
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
  void* BaseAddress;        // first byte of the page that holds the address
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

// Returns the handle of a library in the process, or of the program for a null name; null if there
// is none. ".dll" is appended to a name without a dot; a dot at the end prevents this and is
// dropped. A name with a folder must be the full file name.
ULM_WIN32_API HMODULE GetModuleHandleW(const wchar_t* name);
ULM_WIN32_API HMODULE GetModuleHandleA(const char* name);

// Returns an export of this module; null if it has none of this name. Exports of the libraries that
// it links do not count. A null module is the program. Exports by number do not exist.
ULM_WIN32_API FARPROC GetProcAddress(HMODULE module, const char* name);

// Writes the module's full file name to `buffer` and returns its length. If the name has `size`
// characters or more, writes its first `size` characters without a terminator (stand_in.h can
// change that) and returns `size`. Returns 0 if `module` is not a module or `size` is 0. A null
// module is the program.
ULM_WIN32_API DWORD GetModuleFileNameW(HMODULE module, wchar_t* buffer, DWORD size);

// Describes the module that contains `address`. Returns the number of bytes written, or 0 if no
// module contains the address or `length` is too small.
ULM_WIN32_API SIZE_T VirtualQuery(const void* address, MEMORY_BASIC_INFORMATION* information,
                                  SIZE_T length);

// Loads a library, or adds a use if it is in the process already. Returns its handle; null on
// failure, with the reason in ulmWin32LoadError (stand_in.h).
// A library that GetModuleHandleW finds under the name has priority over any file. Otherwise a bare
// name is searched in the program's folder, ".dll" is appended to a name without a dot, and NAME.so
// is loaded if there is no file NAME.dll.
// If an initialiser of the library throws, the load fails and the library is unloaded. The system's
// loader then stays locked to this thread: no other thread can load or unload a library. A host
// that continues after such a failure must do so in this thread only.
ULM_WIN32_API HMODULE LoadLibraryW(const wchar_t* fileName);

// Releases one use of a library; the last release unloads it. Returns TRUE. Returns FALSE if
// `module` is not a module or LoadLibraryW did not load it. The program is never unloaded.
ULM_WIN32_API BOOL FreeLibrary(HMODULE module);

// Returns TRUE if `module` is a module, otherwise FALSE. It has no other effect: no library is
// notified of threads.
ULM_WIN32_API BOOL DisableThreadLibraryCalls(HMODULE module);

// --- Environment (environment.cpp) ---

// Writes the value of the variable to `buffer` and returns its length without the terminator. If
// the value does not fit, returns the required size with the terminator. Returns 0 if there is no
// such variable. In both cases the buffer is unchanged. A null `buffer` counts as one of size 0.
ULM_WIN32_API DWORD GetEnvironmentVariableW(const wchar_t* name, wchar_t* buffer, DWORD size);

// Sets a variable from "NAME=VALUE", or removes it with "NAME=". Returns 0, or -1 if the text is
// null or has no name or no '='.
ULM_WIN32_API int _wputenv(const wchar_t* assignment);

// --- Profile files (profile.cpp) ---

// Returns the number under a key of a profile file. Returns `defaultValue` if the file, the section
// or the key is absent, if the value is empty, and if the file name has 260 characters or more or
// has no folder.
//   file      ANSI, UTF-8 with a byte order mark, or UTF-16 of either byte order with a mark. Each
//             call reads it again.
//   names     Sections and keys compare without the case of ASCII letters. The first section and
//             the first key of a name count.
//   lines     A line that starts with ';' is a comment. A line without '=' is a key without a
//             value. A line that starts with '[' and has no ']' is not a section.
//   blanks    Blanks around names and values, and one pair of single or double quotes around a
//             value, are dropped.
//   numbers   An optional sign, then decimal digits, or hexadecimal, octal or binary ones after 0x,
//             0o or 0b in small letters. Text after the digits is ignored. A value without digits
//             is 0. The result wraps modulo 2^32.
ULM_WIN32_API UINT GetPrivateProfileIntW(const wchar_t* section, const wchar_t* key,
                                         int defaultValue, const wchar_t* fileName);

// --- Windows (window_registry.cpp) ---

// Returns the newest top-level window of that class, or of any class if `className` is null; null
// if there is none. A `windowName` that is not null finds nothing. Windows are registered with
// ulmWin32OpenWindow (stand_in.h). Class names compare without case.
ULM_WIN32_API HWND FindWindowW(const wchar_t* className, const wchar_t* windowName);

// --- Resources (resources.cpp; resource_block.h builds them) ---

// Returns the size in bytes of a file's version resource; 0 if it has none. `handle` may be null
// and receives 0. File names are completed as for LoadLibraryW.
ULM_WIN32_API DWORD GetFileVersionInfoSizeW(const wchar_t* fileName, DWORD* handle);

// Copies at most `length` bytes of the version resource to `block` and stores the number of copied
// bytes in the block's length field. Returns TRUE. Returns FALSE if the file has no version
// resource or `length` is below 6, which has no room for the length field.
ULM_WIN32_API BOOL GetFileVersionInfoW(const wchar_t* fileName, DWORD handle, DWORD length,
                                       void* block);

// Stores the address of the VS_FIXEDFILEINFO within `block` in *value, and its length in *length,
// for the sub-block "\" or "". Returns TRUE. Returns FALSE for any other sub-block and if the block
// has no fixed information. The length may be smaller than the structure. The caller guarantees
// that GetFileVersionInfoW filled `block`; the block's length field bounds the search.
ULM_WIN32_API BOOL VerQueryValueW(const void* block, const wchar_t* subBlock, void** value,
                                  UINT* length);

// Loads a string of the module's string resource as ANSI text into `buffer`, cut to size - 1
// characters and terminated, and returns its length. If the string is absent, returns 0 and writes
// an empty text. Returns -1 if `buffer` is null or `size` is below 1. A null instance is the
// program. Only the low 16 bits of `number` count.
ULM_WIN32_API int LoadStringA(HINSTANCE instance, UINT number, char* buffer, int size);
// The same as wide text, with two differences: an absent string leaves the buffer unchanged, and a
// null buffer or a size below 1 returns 0.
ULM_WIN32_API int LoadStringW(HINSTANCE instance, UINT number, wchar_t* buffer, int size);

// --- Memory and text (text.cpp) ---

// Returns a block of `bytes` bytes; null if there is no memory. Of the flags only GMEM_ZEROINIT
// counts.
ULM_WIN32_API HGLOBAL GlobalAlloc(UINT flags, SIZE_T bytes);
// Frees a block, which may be null, and returns null.
ULM_WIN32_API HGLOBAL GlobalFree(HGLOBAL block);

// Copies at most size - 1 characters, adds a terminator and returns `target`. With a size below 1
// it writes nothing. Returns null if an argument is null.
ULM_WIN32_API wchar_t* lstrcpynW(wchar_t* target, const wchar_t* source, int size);

// Converts text of a code page to wide characters. Returns the number of characters written, or the
// required number if `targetSize` is 0. A negative source length means that the source ends with a
// terminator, which is converted too.
// Returns 0 on failure: the code page is unknown; the target is too small, and is filled as far as
// possible; the source is empty, null or the target; flags contains a bit above the four of Windows
// (0 to 15); MB_ERR_INVALID_CHARS is set and the source has invalid bytes. Without this flag
// invalid bytes become U+FFFD. Every byte of 1252 is valid: the five unassigned ones are control
// characters.
ULM_WIN32_API int MultiByteToWideChar(UINT codePage, DWORD flags, const char* source,
                                      int sourceLength, wchar_t* target, int targetSize);
// Converts wide characters to text of a code page, with the same rules and results; `flags` must be
// 0.
//   1252   A letter that the page lacks becomes the nearest letter that it has. Any other character
//          that it lacks becomes *defaultChar, or '?' if `defaultChar` is null. *usedDefaultChar,
//          if not null, receives TRUE if this happened, otherwise FALSE.
//   UTF-8  A value that is not a character becomes U+FFFD. `defaultChar` and `usedDefaultChar` must
//          be null, otherwise the function fails.
ULM_WIN32_API int WideCharToMultiByte(UINT codePage, DWORD flags, const wchar_t* source,
                                      int sourceLength, char* target, int targetSize,
                                      const char* defaultChar, BOOL* usedDefaultChar);
// Returns the number of the ANSI code page, 1252.
ULM_WIN32_API UINT GetACP();

#endif
