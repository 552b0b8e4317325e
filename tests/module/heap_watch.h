// Watches the heap of the C++ run-time library in this process. If it is asked to free a block of
// odrxAlloc, the block is counted and freed by odrxFree. The opposite case ends the process in
// odrxFree. Windows and other systems have one source each.
#pragma once

#include <cstddef>

namespace ulm::test {

// Returns the number of blocks that were freed by the wrong heap.
int heapCrossings();

// Returns the number of bytes in use in all heaps of this process.
std::size_t heapBytes();

// Deletes a block as code inside the run-time library does.
void deleteInRuntime(void* block);

}  // namespace ulm::test
