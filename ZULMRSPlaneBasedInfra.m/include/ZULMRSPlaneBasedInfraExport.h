#ifndef ZULMRSPlaneBasedInfraExport_h
#define ZULMRSPlaneBasedInfraExport_h

/// Marks what the shared library shows; everything else is hidden.
#if defined(_WIN32)
#if defined(ZULMRSPlaneBasedInfra_EXPORTS)
#define ZULMRSPlaneBasedInfra_API __declspec(dllexport)
#else
#define ZULMRSPlaneBasedInfra_API __declspec(dllimport)
#endif
#else
#define ZULMRSPlaneBasedInfra_API __attribute__((visibility("default")))
#endif

#endif
