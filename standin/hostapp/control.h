// What a host or a test asks of the stand-in application (QlHostApp), and what it can be told.
// Looked up by name in the library, which is never linked.
#pragma once

#include <cstddef>
#include <cstdint>

enum class HostAppObject { App, Exterior, ProductInfo };

// The calls that the application can be made to refuse with a CXException of the code 7.
enum class HostAppCall { None, GetApp, QueryApp, QueryExterior, Publish };

struct HostAppControl {
  // The record taken last: its keys in order, the values as UTF-8, the two product strings. -1
  // where none was taken. Texts live until the next record.
  std::ptrdiff_t (*recordCount)();
  const char* (*recordKey)(std::size_t index);
  const char* (*recordValue)(std::size_t index);
  int (*recordTag)(std::size_t index);      // the tag of the value's variant
  const char* (*productString)(int which);  // 0 or 1; empty where none was taken
  std::size_t (*publishCount)();

  // References to an object that are held by others.
  std::int64_t (*heldReferences)(HostAppObject object);

  // Takes an object from those who ask: no App means GetApp gives null.
  void (*setPresent)(HostAppObject object, bool present);
  // Whether the application holds on to the record it took last; false gives up the one it holds.
  void (*keepRecord)(bool keep);
  void (*throwAt)(HostAppCall call);
};

// The library's export that gives the table above.
using HostAppControlEntry = const HostAppControl*();
inline constexpr char kHostAppControlEntry[] = "hostAppControl";

// The main window of the stand-in's host object, as a number.
inline constexpr std::uintptr_t kHostAppMainWindow = 0x4711;
