// What the variant of the module library exports beside its entry points.
#pragma once

// The four switch flags as they were set at load: assert, add-jump, remove-jump, defecate, as bits
// 0 to 3; and bit 4 where the switches, asked again, answer otherwise.
using VariantFlags = unsigned();

// A block of the library's own new, and its delete for one, in which heaps can be mixed on purpose.
using VariantMake = void*();
using VariantDelete = void(void* block);

// Tries each form of new and delete; gives the first one that did not go through odrxAlloc and
// odrxFree as it should, or null. With `failing` every allocation fails while they are tried.
using VariantTryNew = const char*(bool failing);
