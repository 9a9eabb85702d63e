#ifndef MillCommandLine_h
#define MillCommandLine_h

#include <optional>
#include <string>

#include "MillConfig.h"

/// What the command line asks for: a run, or a text to show (help, version).
struct MillCommandLine {
    std::optional<MillConfig> m_Config;
    std::string m_Text;
};

/// Reads the arguments. Throws MillError.
MillCommandLine MillParseCommandLine(int argc, const char* const* argv);

#endif
