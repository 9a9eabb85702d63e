#ifndef ZULMRSCuttingExport_h
#define ZULMRSCuttingExport_h

/// Marks what the shared library shows; everything else is hidden.
#if defined(_WIN32)
#if defined(ZULMRSCutting_EXPORTS)
#define ZULMRSCutting_API __declspec(dllexport)
#else
#define ZULMRSCutting_API __declspec(dllimport)
#endif
#else
#define ZULMRSCutting_API __attribute__((visibility("default")))
#endif

#endif
