// The constructor of CXStringW from a string number. Each library that includes this file gets a
// definition of its own, because each loads from its own resources.
#pragma once

#include "hostsdk/adapter/qlcore.h"
#include "module/glue/instance.h"

inline CXStringW::CXStringW(UINT number) {
  Init();
  Load(Module_GetInstance(), number);
}
