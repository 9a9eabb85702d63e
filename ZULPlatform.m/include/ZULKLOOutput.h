#ifndef ZULKLOOutput_h
#define ZULKLOOutput_h

#include <ostream>

#include "ZULPlatformExport.h"

/// The diagnostic stream of the product.
class ZULPlatform_API ZULKLOOutput
{
public:
    /// The calling thread's end of the stream. What a thread inserts is kept until the line feed and then
    /// written as one whole line, which no other thread's text can tear. May be called at any time, during
    /// static destruction too.
    static std::ostream& GetOut();

    /// Sends complete lines to another stream, which must outlive the redirection; null goes back to standard
    /// error. Returns the stream in force before (null: standard error). Safe from any thread.
    static std::ostream* Redirect(std::ostream* stream);
};

#endif
