#ifndef ZULPlatformExport_h
#define ZULPlatformExport_h

/// Marks what the shared library shows; everything else is hidden.
#if defined(_WIN32)
#if defined(ZULPlatform_EXPORTS)
#define ZULPlatform_API __declspec(dllexport)
#else
#define ZULPlatform_API __declspec(dllimport)
#endif
#else
#define ZULPlatform_API __attribute__((visibility("default")))
#endif

#endif
