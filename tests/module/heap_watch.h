// Watches the heap of the language's run-time in this process. A block of the runtime's allocator
// that is given to it is counted, and goes back to where it came from. The other way round odrxFree
// tells by itself. Windows and other systems have a source each.
#pragma once

#include <cstddef>

namespace ulm::test {

// How many blocks have crossed over so far.
int heapCrossings();

// The bytes that are taken from all heaps of this process.
std::size_t heapBytes();

// Deletes a block as code inside the run-time's library does.
void deleteInRuntime(void* block);

}  // namespace ulm::test
