// The product version, in its one place: the version resource of the library is made from it, and
// the build reads it for the version of the project. Plain macros, since a resource compiler reads
// this file too.
#pragma once

#define ULM_VERSION_MAJOR 1
#define ULM_VERSION_MINOR 5
#define ULM_VERSION_BUILD 5798
#define ULM_VERSION_REVISION 3294
