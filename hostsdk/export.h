// The macros by which functions and classes cross the boundary of a library.
//
// The build of library X defines X_EXPORTS. ULM_<LIBRARY>_CLASS marks a class, ULM_<LIBRARY>_API a
// function with C linkage.
#pragma once

#ifdef _WIN32
#define ULM_EXPORT __declspec(dllexport)
#define ULM_IMPORT __declspec(dllimport)
// A member that each library defines for itself. It is never imported, so it needs no mark.
#define ULM_LIBRARY_OWN
#else
#define ULM_EXPORT [[gnu::visibility("default")]]
#define ULM_IMPORT ULM_EXPORT
#define ULM_LIBRARY_OWN [[gnu::visibility("hidden")]]
#endif

#if defined(TD_Alloc_qld_EXPORTS) || defined(TD_Root_qld_EXPORTS)
#define ULM_ODRX_CLASS ULM_EXPORT
#else
#define ULM_ODRX_CLASS ULM_IMPORT
#endif
#define ULM_ODRX_API extern "C" ULM_ODRX_CLASS

#ifdef qlcore_EXPORTS
#define ULM_QLCORE_CLASS ULM_EXPORT
#else
#define ULM_QLCORE_CLASS ULM_IMPORT
#endif
#define ULM_QLCORE_API extern "C" ULM_QLCORE_CLASS

#ifdef qlhostcmd_EXPORTS
#define ULM_HOSTCMD_API extern "C" ULM_EXPORT
#else
#define ULM_HOSTCMD_API extern "C" ULM_IMPORT
#endif

// On Windows only the functions of standin/win32/stand_in.h have this mark.
#ifdef ulmwin32_EXPORTS
#define ULM_WIN32_API extern "C" ULM_EXPORT
#else
#define ULM_WIN32_API extern "C" ULM_IMPORT
#endif
