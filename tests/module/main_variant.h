// The exports of the variant of the module library, in addition to its entry points.
#pragma once

// The four switch flags as they were set at load: assert, add-jump, remove-jump, defecate, as bits
// 0 to 3. Bit 4 is set if the switches have other values when they are read again.
using VariantFlags = unsigned();

// Frees a block with the library's delete, so that a test can mix heaps.
using VariantDelete = void(void* block);

// Tries each form of new and delete. Returns the first that did not use odrxAlloc and odrxFree as
// it should, or null. With `failing`, every allocation fails meanwhile.
using VariantTryNew = const char*(bool failing);
