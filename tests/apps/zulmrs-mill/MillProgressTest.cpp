#include "MillProgress.h"

#include <gtest/gtest.h>

#include <thread>

#include "ZULTestTerminal.h"

namespace
{

/// What a bar draws on standard error, which passes for a terminal or not: half way through, and at the end.
struct Drawn {
    std::string m_HalfWay;
    std::string m_AtTheEnd;
};

Drawn Draw(bool isTerminal)
{
    const ZULTest::TerminalOnStandardError terminal;
    EXPECT_TRUE(terminal.IsGood());
    if (!isTerminal) {
        ZULTest::TerminalDescriptor() = -1;
    }
    MillProgressBar bar(stderr);
    // Nothing is drawn for work that is over in no time.
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    bar.Update(5, 10);
    Drawn drawn;
    drawn.m_HalfWay = terminal.Read();
    bar.Finish();
    drawn.m_AtTheEnd = terminal.Read();
    return drawn;
}

TEST(MillProgressTest, ShowsABarWithTheTimeLeftOnATerminal)
{
    const Drawn drawn = Draw(true);
    EXPECT_EQ(drawn.m_HalfWay.rfind("\r\033[K[####################--------------------]  50 %  0:", 0), 0U)
        << drawn.m_HalfWay;
    EXPECT_NE(drawn.m_HalfWay.find(" left"), std::string::npos) << drawn.m_HalfWay;
    EXPECT_EQ(drawn.m_AtTheEnd, "\r\033[K");
}

TEST(MillProgressTest, ShowsNothingInAPipe)
{
    const Drawn drawn = Draw(false);
    EXPECT_EQ(drawn.m_HalfWay, "");
    EXPECT_EQ(drawn.m_AtTheEnd, "");
}

TEST(MillProgressTest, TellsTheTimeLeftFromWhatIsDone)
{
    EXPECT_EQ(MillProgressText(1, 4, 21.0), "[##########------------------------------]  25 %  1:03 left");
    EXPECT_EQ(MillProgressText(0, 4, 21.0), "[----------------------------------------]   0 %");
    EXPECT_EQ(MillProgressText(4, 4, 21.0), "[########################################] 100 %  0:00 left");
}

}  // namespace
