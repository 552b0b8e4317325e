// Controls of the stand-in application (QlHostApp) for hosts and tests. They are found by name in
// the library, which no program links.
#pragma once

#include <cstddef>
#include <cstdint>

enum class HostAppObject { App, Exterior, ProductInfo };

// The calls that can be made to raise a CXException with the code 7.
enum class HostAppCall { None, GetApp, QueryApp, QueryExterior, Publish };

// The table of controls. No entry is null.
struct HostAppControl {
  // The last published record. recordCount returns -1 if there was none. Keys are in the order of
  // the record, values are UTF-8; both are null if the index is not below the count. Texts are
  // valid until the next record.
  std::ptrdiff_t (*recordCount)();
  const char* (*recordKey)(std::size_t index);
  const char* (*recordValue)(std::size_t index);
  int (*recordTag)(std::size_t index);      // the tag of the value's variant
  const char* (*productString)(int which);  // 0 vendor, 1 product; empty if there was no record
  std::size_t (*publishCount)();            // calls of publishRecord that were not refused

  // The number of references to an object that have not been released.
  std::int64_t (*heldReferences)(HostAppObject object);

  // Sets whether an object is available. Without App, GetApp returns null; without one of the
  // others, the query for it fails.
  void (*setPresent)(HostAppObject object, bool present);
  // Sets whether the application keeps a reference to the last record; false releases the one it
  // has.
  void (*keepRecord)(bool keep);
  // Selects the call that raises an exception.
  void (*throwAt)(HostAppCall call);
};

// The type and the name of the export that returns the table.
using HostAppControlEntry = const HostAppControl*();
inline constexpr char kHostAppControlEntry[] = "hostAppControl";

// The main window of the stand-in's host object, as a number.
inline constexpr std::uintptr_t kHostAppMainWindow = 0x4711;
