// The keyed set in memory.
#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

#include "core/type_record.h"
#include "hostsdk/odrx/alloc.h"
#include "hostsdk/qlcore/services.h"
#include "hostsdk/qlcore/variant.h"
#include "standin/qlcore/control.h"
#include "standin/win32/stand_in.h"

namespace {

std::int64_t heldParams = 0;

class MemParam final : public IParam {
 public:
  MemParam() noexcept { ++heldParams; }
  ~MemParam() = default;
  MemParam(const MemParam&) = delete;
  MemParam& operator=(const MemParam&) = delete;
  static void* operator new(std::size_t bytes) noexcept { return odrxAlloc(bytes); }
  static void operator delete(void* memory) noexcept { odrxFree(memory); }

  std::uint32_t AddRef() override {
    ++heldParams;
    return ++references_;
  }
  std::uint32_t Release() override {
    ulmWin32LogCall("release IParam");
    --heldParams;
    const std::uint32_t left = --references_;
    if (left == 0) delete this;
    return left;
  }
  std::int32_t QueryInterface(const std::type_info& wanted, void** outObject) override {
    const bool known =
        Iface_SameRecord(wanted, typeid(IQLUnknown)) || Iface_SameRecord(wanted, typeid(IParam));
    if (outObject != nullptr) {
      *outObject = known ? static_cast<IParam*>(this) : nullptr;
      if (known) AddRef();
    }
    return known ? 1 : 0;
  }

  std::uint32_t GetCount() override { return static_cast<std::uint32_t>(entries_.size()); }
  const char* GetKey(std::uint32_t index) override {
    return index < entries_.size() ? entries_[index].key.text : nullptr;
  }
  std::int32_t HasKey(const char* key) override { return find(key) != entries_.end() ? 1 : 0; }
  std::int32_t RemoveKey(const char* key) override {
    const auto entry = find(key);
    if (entry == entries_.end()) return 0;
    entries_.erase(entry);
    return 1;
  }
  void RemoveAll() override { entries_.clear(); }

  std::int32_t GetValue(const char* key, CQLVariant* outValue) override {
    const auto entry = find(key);
    if (entry == entries_.end() || outValue == nullptr) return 0;
    *outValue = entry->value;
    return 1;
  }
  std::int32_t SetValue(const char* key, const CQLVariant* value) override {
    if (key == nullptr || value == nullptr) return 0;
    const auto entry = find(key);
    if (entry != entries_.end()) {
      entry->value = *value;
    } else {
      entries_.push_back({CXString(key), *value});
    }
    return 1;
  }

 private:
  struct Entry {
    CXString key;
    CQLVariant value;
  };

  std::vector<Entry>::iterator find(const char* key) noexcept {
    return std::find_if(entries_.begin(), entries_.end(), [key](const Entry& entry) {
      return key != nullptr && std::strcmp(entry.key.text, key) == 0;
    });
  }

  std::uint32_t references_ = 1;
  std::vector<Entry> entries_;  // in the order of first storing
};

}  // namespace

IParam* new_MemParam() { return new MemParam; }

std::int64_t qlcoreHeldParams() noexcept { return heldParams; }
