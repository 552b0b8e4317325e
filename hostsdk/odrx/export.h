// How the object runtime's libraries show what they export: functions under plain C names.
#pragma once

#ifdef _WIN32
#if defined(TD_Alloc_qld_EXPORTS) || defined(TD_Root_qld_EXPORTS)
#define ULM_ODRX_CLASS __declspec(dllexport)
#else
#define ULM_ODRX_CLASS __declspec(dllimport)
#endif
#else
#define ULM_ODRX_CLASS [[gnu::visibility("default")]]
#endif

#define ULM_ODRX_API extern "C" ULM_ODRX_CLASS
