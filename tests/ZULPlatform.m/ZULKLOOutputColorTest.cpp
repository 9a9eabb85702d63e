#include "ZULKLOOutputColor.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <sstream>
#include <string>

#include "ZULKLOOutput.h"
#include "ZULTestTerminal.h"

namespace
{
/// Makes standard error a pipe while it lives.
class PipeOnStandardError
{
public:
    PipeOnStandardError() : m_Saved(dup(STDERR_FILENO))
    {
        int ends[2] = {-1, -1};
        m_IsGood = pipe(ends) == 0 && dup2(ends[1], STDERR_FILENO) == STDERR_FILENO;
        close(ends[0]);
        close(ends[1]);
    }
    ~PipeOnStandardError()
    {
        dup2(m_Saved, STDERR_FILENO);
        close(m_Saved);
    }
    PipeOnStandardError(const PipeOnStandardError&) = delete;
    PipeOnStandardError& operator=(const PipeOnStandardError&) = delete;
    bool IsGood() const { return m_IsGood; }

private:
    int m_Saved;
    bool m_IsGood = false;
};
}  // namespace

TEST(ZULKLOOutputColor, IsEmptyWithoutATerminal)
{
    std::string text = "not set";
    bool isTerminal = true;
    {
        const PipeOnStandardError pipe;
        ASSERT_TRUE(pipe.IsGood());
        text = ZULKLOOutputColor::SetTextColor(12, 0);
        isTerminal = ZULKLOOutput::IsTerminal();
    }
    EXPECT_EQ(text, "");
    EXPECT_FALSE(isTerminal);
}

TEST(ZULKLOOutputColor, GivesControlSequencesOnATerminal)
{
    const ZULTest::TerminalOnStandardError terminal;
    ASSERT_TRUE(terminal.IsGood());
    EXPECT_TRUE(ZULKLOOutput::IsTerminal());
    EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(12, 0), "\033[91;49m");
    EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(13, 0), "\033[95;49m");
    EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(14, 0), "\033[93;49m");
    EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(7, 0), "\033[39;49m");
    EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(0, 15), "\033[30;107m");
    EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(1, 2), "\033[34;42m");
    EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(15, 12), "\033[97;101m");
}

TEST(ZULKLOOutputColor, IsEmptyForAnyOtherNumber)
{
    const ZULTest::TerminalOnStandardError terminal;
    ASSERT_TRUE(terminal.IsGood());
    for (const int color : {-1, 16, 1000}) {
        EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(color, 0), "");
        EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(12, color), "");
    }
}

TEST(ZULKLOOutputColor, IsEmptyWhileTheStreamIsRedirected)
{
    const ZULTest::TerminalOnStandardError terminal;
    ASSERT_TRUE(terminal.IsGood());
    std::ostringstream text;
    ZULKLOOutput::Redirect(&text);
    EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(12, 0), "");
    EXPECT_FALSE(ZULKLOOutput::IsTerminal());
    ZULKLOOutput::Redirect(nullptr);
    EXPECT_STREQ(ZULKLOOutputColor::SetTextColor(12, 0), "\033[91;49m");
}
