// The product's texts and version that the resources show too. They are plain macros, because a
// resource compiler reads this file. C++ sources use the constants of product.h for the texts. The
// build reads the version of the project from the four numbers.
#pragma once

#define ULM_LONG_NAME "Ulmira Point Cloud Processing"
#define ULM_SHORT_NAME "Ulmira"
#define ULM_VENDOR "The Ulmira developers"

// The numbers of the names in the library's string resources.
#define ULM_STRING_LONG_NAME 1
#define ULM_STRING_SHORT_NAME 2

#define ULM_VERSION_MAJOR 1
#define ULM_VERSION_MINOR 5
#define ULM_VERSION_BUILD 5798
#define ULM_VERSION_REVISION 3294

// The four numbers as a text, "1.2.3.4".
#define ULM_TEXT_OF(number) #number
#define ULM_DOTTED(a, b, c, d) \
  ULM_TEXT_OF(a) "." ULM_TEXT_OF(b) "." ULM_TEXT_OF(c) "." ULM_TEXT_OF(d)
#define ULM_PRODUCT_VERSION \
  ULM_DOTTED(ULM_VERSION_MAJOR, ULM_VERSION_MINOR, ULM_VERSION_BUILD, ULM_VERSION_REVISION)
