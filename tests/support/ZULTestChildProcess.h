#ifndef ZULTestChildProcess_h
#define ZULTestChildProcess_h

#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace ZULTest
{
/// What a child process left behind.
struct ChildResult {
    std::string m_Output;  ///< its standard output and standard error, in the order written
    int m_ExitCode = -1;   ///< -1 when a signal ended it
    int m_Signal = 0;
};

/// Runs a shell command to its end.
inline ChildResult RunChild(const std::string& command)
{
    // With exec the signal that ends the program is the one reported.
    FILE* const pipe = popen(("exec 2>&1; exec " + command).c_str(), "r");
    if (pipe == nullptr) {
        throw std::runtime_error("cannot start: " + command);
    }
    ChildResult result;
    std::array<char, 4096> buffer;
    for (std::size_t count = 0; (count = std::fread(buffer.data(), 1, buffer.size(), pipe)) != 0;) {
        result.m_Output.append(buffer.data(), count);
    }
    const int status = pclose(pipe);
    if (WIFEXITED(status)) {
        result.m_ExitCode = WEXITSTATUS(status);
    } else if (WIFSIGNALED(status)) {
        result.m_Signal = WTERMSIG(status);
    }
    return result;
}
}  // namespace ZULTest

#endif
