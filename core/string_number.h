// The wide string of a string number: each library loads from its own resources.
#pragma once

#include "module/glue/instance.h"
#include "platform/qlcore/strings.h"

inline CXStringW::CXStringW(UINT number) {
  Init();
  Load(Module_GetInstance(), number);
}
