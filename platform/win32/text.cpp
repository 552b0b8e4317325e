#include "platform/win32/win32.h"
