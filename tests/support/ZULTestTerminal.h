#ifndef ZULTestTerminal_h
#define ZULTestTerminal_h

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <string>

namespace ZULTest
{
/// Makes standard error a terminal while it lives.
class TerminalOnStandardError
{
public:
    TerminalOnStandardError() : m_Master(posix_openpt(O_RDWR | O_NOCTTY)), m_Saved(dup(STDERR_FILENO))
    {
        if (m_Master >= 0 && grantpt(m_Master) == 0 && unlockpt(m_Master) == 0) {
            const int terminal = open(ptsname(m_Master), O_RDWR | O_NOCTTY);
            termios settings{};
            if (tcgetattr(terminal, &settings) == 0) {
                settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);  // line feeds as they are
                tcsetattr(terminal, TCSANOW, &settings);
            }
            m_IsGood = terminal >= 0 && dup2(terminal, STDERR_FILENO) == STDERR_FILENO;
            close(terminal);
        }
    }
    ~TerminalOnStandardError()
    {
        dup2(m_Saved, STDERR_FILENO);
        close(m_Saved);
        close(m_Master);
    }
    TerminalOnStandardError(const TerminalOnStandardError&) = delete;
    TerminalOnStandardError& operator=(const TerminalOnStandardError&) = delete;

    bool IsGood() const { return m_IsGood; }

    /// What has been written to the terminal since the last call.
    std::string Read() const
    {
        std::string text;
        std::array<char, 4096> buffer{};
        fcntl(m_Master, F_SETFL, O_NONBLOCK);
        for (ssize_t count = 0; (count = read(m_Master, buffer.data(), buffer.size())) > 0;) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        }
        return text;
    }

private:
    int m_Master;
    int m_Saved;
    bool m_IsGood = false;
};
}  // namespace ZULTest

#endif
