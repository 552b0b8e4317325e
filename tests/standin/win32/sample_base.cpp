// The library that the sample library links. Its export must not be found in the sample.
#include "hostsdk/export.h"

extern "C" ULM_EXPORT int sampleBaseAnswer() { return 7; }
