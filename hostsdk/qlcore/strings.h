// The core library's strings. Both hold a pointer to their zero-terminated text in their first
// field, never null, which users read directly. Text between the two kinds passes through the ANSI
// code page (CP_ACP); wide characters that it lacks become '?'. Lengths and places count characters
// of the string's own kind. Every operation that makes text raises std::bad_alloc where there is no
// memory, and then the string is as it was.
#pragma once

#include "hostsdk/export.h"
#include "hostsdk/win32/win32.h"

class ULM_QLCORE_CLASS CXString {
 public:
  CXString() noexcept;
  CXString(
      const char* text);  // NOLINT(google-explicit-constructor): a text is a string; null is empty
  CXString(const wchar_t* text);  // NOLINT(google-explicit-constructor)
  CXString(const CXString& other);
  CXString(CXString&& other) noexcept;
  virtual ~CXString();
  CXString& operator=(const CXString& other);
  CXString& operator=(CXString&& other) noexcept;
  CXString& operator=(const char* text);
  CXString& operator=(const wchar_t* text);

  int GetLength() const noexcept;
  int Compare(const char* text) const noexcept;             // as strcmp; null compares as empty
  int Find(const char* text, int from = 0) const noexcept;  // the place of `text`, or -1
  CXString Extract(int first, int length) const;            // cut to what there is
  void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void AssignCopy(const char* text, int length);  // the first `length` characters
  CXString FilePath() const;  // the folder of a file name, without the separator behind it

  const char* text;  // owned, or a constant empty text
};

class ULM_QLCORE_CLASS CXStringW {
 public:
  CXStringW() noexcept;
  CXStringW(const char* narrow);  // NOLINT(google-explicit-constructor)
  // String `number` of the library that calls, empty where it has none: defined in the caller's own
  // code (core/string_number.h), since only that knows its instance.
  ULM_LIBRARY_OWN explicit CXStringW(UINT number);
  CXStringW(const CXStringW& other);
  CXStringW(CXStringW&& other) noexcept;
  virtual ~CXStringW();
  CXStringW& operator=(const CXStringW& other);
  CXStringW& operator=(CXStringW&& other) noexcept;
  CXStringW& operator=(const char* narrow);

  int GetSize() const noexcept;  // the length that AssignCopy and ConcatCopy take
  void AssignCopy(const wchar_t* source, int length);
  void ConcatCopy(const wchar_t* source, int length);
  void Format(const wchar_t* format, ...);
  bool Load(HINSTANCE instance, UINT number);  // false, and empty, where there is no such string
  void Init() noexcept;                        // makes a string of raw memory: empty

  const wchar_t* text;  // owned, or a constant empty text
};
