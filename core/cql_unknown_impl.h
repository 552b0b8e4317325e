// The implementation of IQLUnknown for an interface.
#pragma once

#include <cstddef>
#include <cstdint>
#include <typeinfo>

#include "core/type_record.h"
#include "hostsdk/adapter/alloc.h"
#include "hostsdk/adapter/interfaces.h"

// Implements IQLUnknown for an interface T (or for IQLUnknown itself). The count is plain and
// starts at 1, for the creator: an object belongs to one thread at a time. Objects are made with
// ulm::glue::makeObject and destroy themselves by Release.
//
// The table is a contract: the three entries of IQLUnknown, which only forward; the operations of
// T; the destructor; the bodies of AddRef, Release and QueryInterface. A derived class changes a
// body, and every caller of the entry gets it.
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

  // Knows IQLUnknown and T, both being this object.
  virtual std::int32_t QueryInterfaceBody(const std::type_info& wanted, void** outObject) {
    const bool known =
        Iface_SameRecord(wanted, typeid(IQLUnknown)) || Iface_SameRecord(wanted, typeid(T));
    if (outObject != nullptr) {
      *outObject = known ? static_cast<T*>(this) : nullptr;
      if (known) this->AddRef();
    }
    return known ? 1 : 0;
  }

 private:
  std::uint32_t references_ = 1;
};
