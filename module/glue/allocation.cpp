#include "module/glue/allocation.h"

namespace ulm::glue {

void* allocate(std::size_t bytes) {
  void* memory = odrxAlloc(bytes);
  if (memory != nullptr || bytes == 0) return memory;
  const std::new_handler handler = std::get_new_handler();
  if (handler == nullptr) throw std::bad_alloc();
  handler();
  return nullptr;
}

}  // namespace ulm::glue
