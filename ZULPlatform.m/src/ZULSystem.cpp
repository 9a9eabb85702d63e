#include "ZULSystem.h"

#include <array>
#include <atomic>
#include <cstdlib>
#include <ostream>

#include "ZULKLOOutput.h"

namespace
{
constinit std::atomic<ZULFatalErrorHandler> g_Handler{nullptr};

const char* TextOf(const char* text)
{
    return text != nullptr ? text : "";
}

void WriteFatalLine(const char* message, const std::array<const char*, 3>& details, const char* file,
                    int line)
{
    std::ostream& out = ZULKLOOutput::GetOut();
    out << "[F] " << TextOf(message);
    const char* separator = " (";
    bool anyDetail = false;
    for (const char* detail : details) {
        if (detail != nullptr) {
            out << separator << detail;
            separator = " ";
            anyDetail = true;
        }
    }
    out << (anyDetail ? ")" : "") << " ( " << TextOf(file) << " : " << line << " )\n";
}
}  // namespace

const char* ZULGetEnv(const char* name)
{
    return name != nullptr ? std::getenv(name) : nullptr;
}

ZULFatalErrorHandler ZULSetFatalErrorHandler(ZULFatalErrorHandler handler)
{
    return g_Handler.exchange(handler);
}

void ZULFatalError(const char* message, const char* detail1, const char* detail2, const char* detail3,
                   const char* file, int line)
{
    WriteFatalLine(message, {detail1, detail2, detail3}, file, line);
    const ZULFatalErrorHandler handler = g_Handler.load();
    if (handler == nullptr) {
        std::abort();
    }
    handler(message, file, line);
}
