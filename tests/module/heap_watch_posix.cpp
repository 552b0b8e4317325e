// A program's operators replace those of the run-time library, which calls them by name.
#include <malloc.h>

#include <cstdint>
#include <cstdlib>
#include <new>

#include "hostsdk/odrx/alloc.h"
#include "standin/odrx/alloc_control.h"
#include "tests/module/heap_watch.h"

namespace {

int crossings = 0;

// An empty header before each block, so that odrxAllocMade always reads memory of this program.
constexpr std::size_t kHeader = 16;

void giveBack(void* block) noexcept {
  if (block != nullptr && odrxAllocMade(block)) {
    ++crossings;
    odrxFree(block);
  } else {
    std::free(block != nullptr ? static_cast<char*>(block) - kHeader : nullptr);
  }
}

}  // namespace

void* operator new(std::size_t bytes) {
  void* whole = bytes <= SIZE_MAX - kHeader ? std::calloc(1, kHeader + bytes) : nullptr;
  if (whole == nullptr) throw std::bad_alloc();
  return static_cast<char*>(whole) + kHeader;
}
void operator delete(void* block) noexcept { giveBack(block); }
void operator delete(void* block, std::size_t) noexcept { giveBack(block); }

int ulm::test::heapCrossings() { return crossings; }
std::size_t ulm::test::heapBytes() {
  const struct mallinfo2 state = mallinfo2();
  return state.uordblks + state.hblkhd;
}
void ulm::test::deleteInRuntime(void* block) { operator delete(block); }
