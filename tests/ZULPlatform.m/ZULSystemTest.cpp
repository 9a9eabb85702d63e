#include "ZULSystem.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "ZULTestChildProcess.h"
#include "ZULTestSupport.h"

namespace
{
std::string g_Handled;

void Remember(const char* message, const char* file, int line)
{
    g_Handled = std::string(message) + "|" + file + "|" + std::to_string(line);
}
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
        const ZULTest::LineCapture lines;
        ZULFatalError("AssertionFailed:a > b", nullptr, nullptr, nullptr, "Source", 211);
        text = lines.GetText();
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
        const ZULTest::LineCapture lines;
        ZULFatalError("m", "one", "two", "three", "f", 1);
        ZULFatalError("m", nullptr, "two", nullptr, "f", 2);
        text = lines.GetText();
    }
    ZULSetFatalErrorHandler(nullptr);
    EXPECT_EQ(text, "[F] m (one two three) ( f : 1 )\n[F] m (two) ( f : 2 )\n");
}

TEST(ZULSystem, WithoutHandlerTheProcessEndsAfterTheLine)
{
    const ZULTest::ChildResult child = ZULTest::RunChild(ZUL_SYSTEM_CHILD);
    EXPECT_EQ(child.m_Signal, SIGABRT);
    EXPECT_EQ(child.m_Output, "before\n[F] broken (one three) ( Source : 42 )\n");
}
