// CQLUnknownImpl: the implementation of IQLUnknown for an interface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <typeinfo>

#include "core/type_record.h"
#include "hostsdk/adapter/alloc.h"
#include "hostsdk/adapter/interfaces.h"

// Implements IQLUnknown for an interface T, or for IQLUnknown itself. The count starts at 1, which
// is the creator's reference. It is not atomic: one thread at a time uses an object. Create objects
// with ulm::glue::makeObject. The last Release destroys the object.
//
// The order of the virtual table is fixed: the three entries of IQLUnknown, which only forward; the
// operations of T; the destructor; the bodies of AddRef, Release and QueryInterface. A derived
// class overrides a body, so that every call through an entry reaches the override.
template <class T>
class CQLUnknownImpl : public T {
 public:
  CQLUnknownImpl() noexcept = default;
  CQLUnknownImpl(const CQLUnknownImpl&) = delete;
  CQLUnknownImpl& operator=(const CQLUnknownImpl&) = delete;
  static void* operator new(std::size_t) = delete;
  static void operator delete(void* memory) noexcept { odrxFree(memory); }

  std::uint32_t AddRef() override { return AddRefBody(); }
  std::uint32_t Release() override { return ReleaseBody(); }
  std::int32_t QueryInterface(const std::type_info& wanted, void** outObject) override {
    return QueryInterfaceBody(wanted, outObject);
  }

  virtual ~CQLUnknownImpl() = default;

  virtual std::uint32_t AddRefBody() { return ++references_; }

  virtual std::uint32_t ReleaseBody() {
    const std::uint32_t left = --references_;
    if (left == 0) delete this;
    return left;
  }

  // Answers for IQLUnknown and T. `outObject` may be null.
  virtual std::int32_t QueryInterfaceBody(const std::type_info& wanted, void** outObject) {
    return ulm::core::answerQuery<T>(this, wanted, outObject);
  }

 private:
  std::uint32_t references_ = 1;
};
