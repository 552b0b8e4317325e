// The library's allocations, with chosen ones failing.
#include <gtest/gtest.h>

#include <cstdlib>

extern "C" {
void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
}

namespace {

long failAfter = -1;  // allocations that still succeed; below 0 all do

bool fails() { return failAfter >= 0 && failAfter-- == 0; }

}  // namespace

void* __wrap_malloc(std::size_t size) { return fails() ? nullptr : __real_malloc(size); }
void* __wrap_calloc(std::size_t count, std::size_t size) {
  return fails() ? nullptr : __real_calloc(count, size);
}
