// IParam: a set of variant values under text keys, which are compared exactly. A null key is
// absent.
#pragma once

#include <cstdint>

#include "core/iface/iql_unknown.h"

class CQLVariant;

class IParam : public IQLUnknown {
 public:
  virtual std::uint32_t GetCount() = 0;
  // Returns the key at `index`, in the order in which the keys were first stored; null if `index`
  // is not below the count. The text is valid until the set changes.
  virtual const char* GetKey(std::uint32_t index) = 0;
  virtual std::int32_t HasKey(const char* key) = 0;     // 1 or 0
  virtual std::int32_t RemoveKey(const char* key) = 0;  // 1 if it was present, otherwise 0
  virtual void RemoveAll() = 0;

  // Copies the value under `key` to *outValue and returns non-zero. Returns 0 if the key is absent
  // or `outValue` is null.
  virtual std::int32_t GetValue(const char* key, CQLVariant* outValue) = 0;
  // Stores a copy of *value under `key` and returns non-zero. Returns 0 if an argument is null.
  virtual std::int32_t SetValue(const char* key, const CQLVariant* value) = 0;

 protected:
  ~IParam() = default;
};
