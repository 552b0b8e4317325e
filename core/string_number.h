// The wide string of a string number: each library loads from its own resources.
#pragma once

#include "hostsdk/adapter/qlcore.h"
#include "module/glue/instance.h"

inline CXStringW::CXStringW(UINT number) {
  Init();
  Load(Module_GetInstance(), number);
}
