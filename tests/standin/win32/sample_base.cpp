// What the sample library links: its export must not pass for one of the sample's.
#include "hostsdk/export.h"

extern "C" ULM_EXPORT int sampleBaseAnswer() { return 7; }
