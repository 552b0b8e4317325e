// How the core library shows what it exports.
#pragma once

#ifdef _WIN32
#ifdef qlcore_EXPORTS
#define ULM_QLCORE_CLASS __declspec(dllexport)
#else
#define ULM_QLCORE_CLASS __declspec(dllimport)
#endif
#define ULM_LIBRARY_OWN
#else
#define ULM_QLCORE_CLASS [[gnu::visibility("default")]]
// A member that each library defines for itself.
#define ULM_LIBRARY_OWN [[gnu::visibility("hidden")]]
#endif

#define ULM_QLCORE_API extern "C" ULM_QLCORE_CLASS
