// The object runtime's root classes, from the library TD_Root_qld: what a module object derives
// from. The order of the virtual operations is the runtime's and must not change.
#pragma once

#include <cstdint>

#include "hostsdk/export.h"
#include "hostsdk/odrx/od_string.h"
#include "hostsdk/win32/win32.h"

class OdRxObject;

// The runtime's description of a class: a name and the class it derives from. Compared by address:
// each description exists once, in the library that defines the class.
class OdRxClass {
 public:
  constexpr OdRxClass(const char* name, const OdRxClass* parent) noexcept
      : name_(name), parent_(parent) {}
  const char* name() const noexcept { return name_; }
  bool isDerivedFrom(const OdRxClass* other) const noexcept {
    for (const OdRxClass* at = this; at != nullptr; at = at->parent_) {
      if (at == other) return true;
    }
    return false;
  }

 private:
  const char* name_;
  const OdRxClass* parent_;
};

class ULM_ODRX_CLASS OdRxObject {
 public:
  OdRxObject(const OdRxObject&) = delete;
  OdRxObject& operator=(const OdRxObject&) = delete;
  virtual ~OdRxObject();

  // The object with one more reference when its class is, or derives from, `wanted`; else null.
  virtual OdRxObject* queryX(const OdRxClass* wanted) const;
  // As queryX, but only the protocol extensions registered for the class: there are none here.
  virtual OdRxObject* x(const OdRxClass* wanted) const;
  virtual const OdRxClass* isA() const;
  virtual void addRef() = 0;
  virtual void release() = 0;
  virtual std::int32_t numRefs() const;  // 1 for a class that does not count
  virtual OdRxObject* clone() const;     // null: not supported
  virtual void copyFrom(const OdRxObject* source);
  virtual int comparedTo(const OdRxObject* other) const;  // 0 the same object, 1 another
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
  virtual HINSTANCE moduleHandle() const = 0;
  // Takes the object away, whatever its count.
  virtual void finalRelease() = 0;
  // The hook at start. The result is the module's own judgement of it.
  virtual bool initApp() = 0;
  virtual void uninitApp() = 0;  // the hook at stop
  virtual OdString modulePath() const = 0;

  static const OdRxClass* desc() noexcept;
};
