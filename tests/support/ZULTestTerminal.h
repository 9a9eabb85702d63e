#ifndef ZULTestTerminal_h
#define ZULTestTerminal_h

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <string>

namespace ZULTest
{
/// The descriptor that passes for a terminal; -1: none does.
inline int& TerminalDescriptor()
{
    static int descriptor = -1;
    return descriptor;
}
}  // namespace ZULTest

/// Stands in for the system's own function in the whole test program, shared libraries included: a bare
/// machine has no pseudo-terminals.
extern "C" __attribute__((visibility("default"))) int isatty(int descriptor) noexcept
{
    return descriptor >= 0 && descriptor == ZULTest::TerminalDescriptor() ? 1 : 0;
}

namespace ZULTest
{
/// Makes standard error pass for a terminal while it lives.
class TerminalOnStandardError
{
public:
    TerminalOnStandardError() : m_Saved(dup(STDERR_FILENO))
    {
        m_IsGood = pipe(m_Ends.data()) == 0 && fcntl(m_Ends[0], F_SETFL, O_NONBLOCK) == 0 &&
                   dup2(m_Ends[1], STDERR_FILENO) == STDERR_FILENO;
        TerminalDescriptor() = STDERR_FILENO;
    }
    ~TerminalOnStandardError()
    {
        TerminalDescriptor() = -1;
        dup2(m_Saved, STDERR_FILENO);
        close(m_Saved);
        close(m_Ends[0]);
        close(m_Ends[1]);
    }
    TerminalOnStandardError(const TerminalOnStandardError&) = delete;
    TerminalOnStandardError& operator=(const TerminalOnStandardError&) = delete;

    bool IsGood() const { return m_IsGood; }

    /// What has been written to the terminal since the last call.
    std::string Read() const
    {
        std::string text;
        std::array<char, 4096> buffer{};
        for (ssize_t count = 0; (count = read(m_Ends[0], buffer.data(), buffer.size())) > 0;) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        }
        return text;
    }

private:
    std::array<int, 2> m_Ends{-1, -1};
    int m_Saved;
    bool m_IsGood = false;
};
}  // namespace ZULTest

#endif
