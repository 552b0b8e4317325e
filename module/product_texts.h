// The product's texts that its resources show too. Plain macros, since a resource compiler reads
// this file; sources take them from product.h.
#pragma once

#define ULM_LONG_NAME "Ulmira Point Cloud Processing"
#define ULM_SHORT_NAME "Ulmira"
#define ULM_VENDOR "The Ulmira developers"

// The numbers of the names in the library's string resources.
#define ULM_STRING_LONG_NAME 1
#define ULM_STRING_SHORT_NAME 2
