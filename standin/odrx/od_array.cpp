#include "hostsdk/odrx/od_array.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "hostsdk/odrx/alloc.h"

namespace {
constexpr std::int32_t kDefaultGrowth = 8;
}

constinit OdArrayBuffer odArrayEmptyBuffer{{1}, kDefaultGrowth, 0, 0};

OdArrayBuffer* OdArrayMemory::allocate(std::uint64_t capacity, std::uint32_t elementBytes,
                                       std::int32_t growth) {
  constexpr std::uint64_t kMaxBytes = UINT32_MAX;
  if (capacity > (kMaxBytes - sizeof(OdArrayBuffer)) / elementBytes) {
    throw OdError(kOdResultNoMemory);
  }
  const std::uint64_t bytes = sizeof(OdArrayBuffer) + capacity * elementBytes;
  void* block = odrxAlloc(static_cast<std::size_t>(bytes));
  if (block == nullptr) throw OdError(kOdResultNoMemory);
  return new (block) OdArrayBuffer{{1}, growth, static_cast<std::uint32_t>(capacity), 0};
}

OdArrayBuffer* OdArrayMemory::copy(const OdArrayBuffer& source, std::uint32_t elementBytes,
                                   std::uint64_t capacity, std::uint32_t requestedLength) {
  OdArrayBuffer* replacement = allocate(capacity, elementBytes, source.growth);
  replacement->length = std::min(source.length, requestedLength);
  std::memcpy(static_cast<void*>(replacement + 1), &source + 1,
              std::size_t{replacement->length} * elementBytes);
  return replacement;
}

void OdArrayMemory::free(OdArrayBuffer* buffer) noexcept { odrxFree(buffer); }

std::uint64_t OdArrayMemory::grownCapacity(std::uint32_t length, std::int32_t growth,
                                           std::uint32_t required) noexcept {
  if (growth >= 1) {
    const auto step = static_cast<std::uint64_t>(growth);
    return (required + step - 1) / step * step;
  }
  const auto percent = static_cast<std::uint64_t>(-std::int64_t{growth});
  return std::max<std::uint64_t>(length + length * percent / 100, required);
}
