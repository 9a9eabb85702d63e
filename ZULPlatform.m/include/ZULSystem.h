#ifndef ZULSystem_h
#define ZULSystem_h

#include "ZULPlatformExport.h"

/// The value of an environment variable, or null when it is not defined. The text belongs to the environment.
ZULPlatform_API const char* ZULGetEnv(const char* name);

/// Called by ZULFatalError in place of ending the process; may return, and the computation then goes on.
using ZULFatalErrorHandler = void (*)(const char* message, const char* file, int line);

/// Installs a handler (null: none, the default) and returns the one before. Safe from any thread.
ZULPlatform_API ZULFatalErrorHandler ZULSetFatalErrorHandler(ZULFatalErrorHandler handler);

/// Writes one line "[F] message (detail1 detail2 detail3) ( file : line )" to the diagnostic stream, null
/// details left out, then calls the installed handler, or ends the process with abort() when there is none.
ZULPlatform_API void ZULFatalError(const char* message, const char* detail1, const char* detail2,
                                   const char* detail3, const char* file, int line);

#endif
