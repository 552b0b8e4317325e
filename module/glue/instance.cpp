#include "module/glue/instance.h"

#include <atomic>

namespace {

// Atomic because code that runs before the entry may store it too. All stores have the same value.
constinit std::atomic<HINSTANCE> storedInstance{nullptr};

}  // namespace

namespace ulm::glue {

void setInstance(HINSTANCE instance) noexcept {
  storedInstance.store(instance, std::memory_order_relaxed);
}

HMODULE moduleHolding(const void* address) noexcept {
  MEMORY_BASIC_INFORMATION information{};
  if (VirtualQuery(address, &information, sizeof information) == 0) return nullptr;
  return static_cast<HMODULE>(information.AllocationBase);
}

}  // namespace ulm::glue

HINSTANCE Module_GetInstance() noexcept {
  HINSTANCE instance = storedInstance.load(std::memory_order_relaxed);
  if (instance == nullptr) {
    instance = ulm::glue::moduleHolding(reinterpret_cast<const void*>(&Module_GetInstance));
    ulm::glue::setInstance(instance);
  }
  return instance;
}
