#ifndef ZULKLOOutput_h
#define ZULKLOOutput_h

#include <ostream>

#include "ZULPlatformExport.h"

/// The diagnostic stream of the product: standard error, unless the host program redirects it.
class ZULPlatform_API ZULKLOOutput
{
public:
    /// The calling thread's end of the stream. What a thread inserts is kept until the line feed and then
    /// written as one whole line, which no other thread's text can tear; a flush (std::flush, std::endl)
    /// writes at once what is pending, and so does the end of the thread. The reference is valid until the
    /// thread ends and must not be handed to another. May be called at any time, before main and during
    /// static destruction too. Numbers are formatted in the classic locale.
    static std::ostream& GetOut();

    /// Sends complete lines to another stream, which must outlive the redirection and is flushed after each
    /// write; null goes back to standard error, and so does a stream that GetOut returned. Returns the stream
    /// in force before (null: standard error). Once it returns, nothing is written to that one any more. Safe
    /// from any thread, except from within the target's own writing.
    static std::ostream* Redirect(std::ostream* stream);

    /// True when lines go to standard error and standard error is a terminal. Safe from any thread.
    static bool IsTerminal();
};

#endif
