#ifndef ZULKLOOutputColor_h
#define ZULKLOOutputColor_h

#include "ZULPlatformExport.h"

/// Colours of the diagnostic stream.
class ZULPlatform_API ZULKLOOutputColor
{
public:
    /// The control string that sets the text colour (7 default, 12 red, 13 magenta, 14 yellow, 0 to 15 in
    /// general) on the given background (0: the terminal's own). Empty for any other number, and unless the
    /// stream goes to a terminal.
    /// The string has static storage.
    static const char* SetTextColor(int color, int background);
};

#endif
