// The core library's strings, one narrow and one wide. The first field of both is the pointer to
// their zero-terminated text, which users read directly and which is never null. Text is converted
// between the two kinds by the ANSI code page (CP_ACP); a wide character that the page lacks
// becomes '?'. Lengths and indices count characters of the string's own kind. A text argument may
// be null, which counts as an empty text, except for `format`. An operation that makes text raises
// std::bad_alloc if there is no memory, and leaves the string unchanged then.
#pragma once

#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"

class ULM_QLCORE_CLASS CXString {
 public:
  CXString() noexcept;
  CXString(const char* text);     // NOLINT(google-explicit-constructor): a text is a string
  CXString(const wchar_t* text);  // NOLINT(google-explicit-constructor)
  CXString(const CXString& other);
  CXString(CXString&& other) noexcept;
  virtual ~CXString();
  CXString& operator=(const CXString& other);
  CXString& operator=(CXString&& other) noexcept;
  CXString& operator=(const char* text);
  CXString& operator=(const wchar_t* text);

  int GetLength() const noexcept;
  // The result has the sign of strcmp's.
  int Compare(const char* text) const noexcept;
  // Returns the index of the first `text` at or after the index `from`. Returns -1 if there is
  // none, if `text` is null, or if `from` is outside the string.
  int Find(const char* text, int from = 0) const noexcept;
  // Returns a part of the string. Arguments outside the string are limited to it.
  CXString Extract(int first, int length) const;
  // Takes a format of printf. The string stays unchanged if the format fails.
  void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
  // Takes the first `length` characters of `text`; empty for a length below 1.
  void AssignCopy(const char* text, int length);
  // Returns the folder of a file name without the separator after it; empty if there is no
  // separator.
  CXString FilePath() const;

  const char* text;  // owned, or a constant empty text
};

class ULM_QLCORE_CLASS CXStringW {
 public:
  CXStringW() noexcept;
  CXStringW(const char* narrow);  // NOLINT(google-explicit-constructor)
  // Loads the string `number` of the calling library; empty if it has none. The caller's own code
  // defines it (core/string_number.h), because only that knows the instance.
  ULM_LIBRARY_OWN explicit CXStringW(UINT number);
  CXStringW(const CXStringW& other);
  CXStringW(CXStringW&& other) noexcept;
  virtual ~CXStringW();
  CXStringW& operator=(const CXStringW& other);
  CXStringW& operator=(CXStringW&& other) noexcept;
  CXStringW& operator=(const char* narrow);

  // Returns the length in characters, as AssignCopy and ConcatCopy take it.
  int GetSize() const noexcept;
  // Both take the first `length` characters of `source`. With a null source or a length below 1,
  // AssignCopy makes the string empty and ConcatCopy changes nothing.
  void AssignCopy(const wchar_t* source, int length);
  void ConcatCopy(const wchar_t* source, int length);
  // Takes a format of wprintf. The string stays unchanged if the format fails, or if the result has
  // more than 2^24 characters.
  void Format(const wchar_t* format, ...);
  // Loads the string `number` of `instance`, which is the program if null. Returns true. Returns
  // false and makes the string empty if there is no such string.
  bool Load(HINSTANCE instance, UINT number);
  // Makes an empty string in memory whose constructor has not run. Text that the string owns leaks.
  void Init() noexcept;

  const wchar_t* text;  // owned, or a constant empty text
};
