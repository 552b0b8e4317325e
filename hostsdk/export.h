// How a library shows a function to others.
#pragma once

#ifdef _WIN32
#define ULM_EXPORT __declspec(dllexport)
#else
#define ULM_EXPORT [[gnu::visibility("default")]]
#endif
