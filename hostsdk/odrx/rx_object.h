// The object runtime's root classes, from the library TD_Root_qld. A module object derives from
// them. The runtime fixes the order of the virtual operations.
#pragma once

#include <cstdint>

#include "hostsdk/export.h"
#include "hostsdk/odrx/od_string.h"
#include "hostsdk/win32/win32.h"

class OdRxObject;

// The runtime's description of a class: its name and the description of its base, which is null for
// the root. Descriptions are compared by address, because each exists once, in the library that
// defines the class.
class OdRxClass {
 public:
  constexpr OdRxClass(const char* name, const OdRxClass* parent) noexcept
      : name_(name), parent_(parent) {}
  const char* name() const noexcept { return name_; }
  // Returns true if `other` is this class or one of its bases; false for null.
  bool isDerivedFrom(const OdRxClass* other) const noexcept {
    for (const OdRxClass* base = this; base != nullptr; base = base->parent_) {
      if (base == other) return true;
    }
    return false;
  }

 private:
  const char* name_;
  const OdRxClass* parent_;
};

// The root of all objects of the runtime.
class ULM_ODRX_CLASS OdRxObject {
 public:
  OdRxObject(const OdRxObject&) = delete;
  OdRxObject& operator=(const OdRxObject&) = delete;
  virtual ~OdRxObject();

  // Returns this object with a new reference for the caller if its class is `wanted` or derives
  // from it; otherwise null. `wanted` may be null, which no class is.
  virtual OdRxObject* queryX(const OdRxClass* wanted) const;
  // As queryX, but for protocol extensions of the class only. The runtime has none: always null.
  virtual OdRxObject* x(const OdRxClass* wanted) const;
  // Returns the description of the object's class; never null.
  virtual const OdRxClass* isA() const;
  virtual void addRef() = 0;
  virtual void release() = 0;
  virtual std::int32_t numRefs() const;  // 1 for a class that does not count
  virtual OdRxObject* clone() const;     // not supported by default: null
  // Not supported by default: does nothing. `source` may be null.
  virtual void copyFrom(const OdRxObject* source);
  // Returns 0 if the objects are equal (isEqualTo), otherwise 1. `other` may be null.
  virtual int comparedTo(const OdRxObject* other) const;
  // Returns true if `other`, which may be null, is this object.
  virtual bool isEqualTo(const OdRxObject* other) const;

  static const OdRxClass* desc() noexcept;

 protected:
  OdRxObject() = default;
};

// A run-time extension module.
class ULM_ODRX_CLASS OdRxModule : public OdRxObject {
 public:
  ~OdRxModule() override;
  OdRxObject* queryX(const OdRxClass* wanted) const override;
  const OdRxClass* isA() const override;
  // Returns the instance handle of the module's library.
  virtual HINSTANCE moduleHandle() const = 0;
  // Destroys the object, whatever its count.
  virtual void finalRelease() = 0;
  // The runtime calls it once after it created the object. Returns true if the start succeeded.
  virtual bool initApp() = 0;
  // The runtime calls it before the final release.
  virtual void uninitApp() = 0;
  // Returns the full file name of the module's library.
  virtual OdString modulePath() const = 0;

  static const OdRxClass* desc() noexcept;
};
