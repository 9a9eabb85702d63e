#include "ZULSystem.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <sstream>
#include <string>

#include "ZULChildProcess.h"
#include "ZULKLOOutput.h"

namespace
{
std::string g_Handled;

void Remember(const char* message, const char* file, int line)
{
    g_Handled = std::string(message) + "|" + file + "|" + std::to_string(line);
}

/// What is written to the diagnostic stream while it lives.
class Redirection
{
public:
    Redirection() : m_Before(ZULKLOOutput::Redirect(&m_Text)) {}
    ~Redirection() { ZULKLOOutput::Redirect(m_Before); }
    std::string Text() const { return m_Text.str(); }

private:
    std::ostringstream m_Text;
    std::ostream* m_Before;
};
}  // namespace

TEST(ZULSystem, GetEnvTellsUndefinedFromEmpty)
{
    setenv("ZUL_TEST_VARIABLE", "value", 1);
    EXPECT_STREQ(ZULGetEnv("ZUL_TEST_VARIABLE"), "value");
    setenv("ZUL_TEST_VARIABLE", "", 1);
    EXPECT_STREQ(ZULGetEnv("ZUL_TEST_VARIABLE"), "");
    unsetenv("ZUL_TEST_VARIABLE");
    EXPECT_EQ(ZULGetEnv("ZUL_TEST_VARIABLE"), nullptr);
    EXPECT_EQ(ZULGetEnv(nullptr), nullptr);
}

TEST(ZULSystem, AnInstalledHandlerMayReturn)
{
    EXPECT_EQ(ZULSetFatalErrorHandler(Remember), nullptr);
    std::string text;
    {
        const Redirection redirection;
        ZULFatalError("AssertionFailed:a > b", nullptr, nullptr, nullptr, "Source", 211);
        text = redirection.Text();
    }
    EXPECT_EQ(ZULSetFatalErrorHandler(nullptr), Remember);
    EXPECT_EQ(g_Handled, "AssertionFailed:a > b|Source|211");
    EXPECT_EQ(text, "[F] AssertionFailed:a > b ( Source : 211 )\n");
}

TEST(ZULSystem, NullDetailsAreLeftOut)
{
    ZULSetFatalErrorHandler(Remember);
    std::string text;
    {
        const Redirection redirection;
        ZULFatalError("m", "one", "two", "three", "f", 1);
        ZULFatalError("m", nullptr, "two", nullptr, "f", 2);
        text = redirection.Text();
    }
    ZULSetFatalErrorHandler(nullptr);
    EXPECT_EQ(text, "[F] m (one two three) ( f : 1 )\n[F] m (two) ( f : 2 )\n");
}

TEST(ZULSystem, WithoutHandlerTheProcessEndsAfterTheLine)
{
    const ZULChildResult child = ZULRunChild(ZUL_SYSTEM_CHILD);
    EXPECT_EQ(child.m_Signal, SIGABRT);
    EXPECT_EQ(child.m_Output, "before\n[F] broken (one three) ( Source : 42 )\n");
}
