// A keyed set of variant values.
#pragma once

#include <cstdint>

#include "core/iface/iql_unknown.h"

class CQLVariant;

class IParam : public IQLUnknown {
 public:
  virtual std::uint32_t GetCount() = 0;
  // The key at a place in the order of first storing, from 0; null beyond the end. Valid until the
  // set changes.
  virtual const char* GetKey(std::uint32_t index) = 0;
  virtual std::int32_t HasKey(const char* key) = 0;     // 1 or 0
  virtual std::int32_t RemoveKey(const char* key) = 0;  // 1 when there was one
  virtual void RemoveAll() = 0;

  // Copies the value under `key` to *outValue; non-zero when the key exists and the value was
  // filled.
  virtual std::int32_t GetValue(const char* key, CQLVariant* outValue) = 0;
  // Stores a copy of *value under `key`, exact in spelling and case; non-zero when it did.
  virtual std::int32_t SetValue(const char* key, const CQLVariant* value) = 0;

 protected:
  ~IParam() = default;
};
