#include "ZULMRSBSPReport.h"

#include <gtest/gtest.h>

#include <string>

#include "ZULMRSBSPFactoryReport.h"
#include "ZULTestSupport.h"
#include "ZULTestTerminal.h"

namespace
{
constexpr ZULMRSBSPReport::Place Somewhere = {"Class::Function", "Class", 42};
}

TEST(ZULMRSBSPReport, WritesAnErrorWithItsTrailer)
{
    const ZULTest::LineCapture lines;
    ZULMRSBSPReport::Error(Somewhere, "Norm=", 1.5e-13);
    EXPECT_EQ(
        lines.GetText(),
        "[E] Norm=1.5e-13 ( Error happened in function Class::Function / Source : Class / Line : 42)\n");
}

TEST(ZULMRSBSPReport, WritesAWarningWithItsTrailer)
{
    const ZULTest::LineCapture lines;
    ZULMRSBSPReport::Warning(Somewhere, "text ", 7);
    EXPECT_EQ(lines.GetText(),
              "[w] text 7 ( Warning In function Class::Function / Source : Class / Line : 42)\n");
}

TEST(ZULMRSBSPReport, WritesAnInformation)
{
    const ZULTest::LineCapture lines;
    ZULMRSBSPReport::Information("text ", 7U);
    EXPECT_EQ(lines.GetText(), "[i] text 7\n");
}

TEST(ZULMRSBSPReport, ColoursOnATerminal)
{
    std::string error;
    std::string warning;
    std::string information;
    {
        const ZULTest::TerminalOnStandardError terminal;
        ASSERT_TRUE(terminal.IsGood());
        ZULMRSBSPReport::Error(Somewhere, "x");
        error = terminal.Read();
        ZULMRSBSPReport::Warning(Somewhere, "x");
        warning = terminal.Read();
        ZULMRSBSPReport::Information("x");
        information = terminal.Read();
    }
    const std::string plain = "\033[39;49m";
    // The whole error is red, and the colour is put back at once.
    EXPECT_EQ(
        error,
        "\033[91;49m[E] x ( Error happened in function Class::Function / Source : Class / Line : 42)\n" +
            plain);
    EXPECT_EQ(warning, "\033[93;49m[w] " + plain +
                           "x ( Warning In function Class::Function / Source : Class / Line : 42)\n");
    EXPECT_EQ(information, "\033[95;49m[i] " + plain + "x\n");
}

TEST(ZULMRSBSPReport, AReductionIsAPercentage)
{
    const ZULTest::LineCapture lines;
    ZULMRSBSPReport::Information(ZULMRSBSPFactoryReport::TassSummary{"Owner", "Things", 8, 5});
    EXPECT_EQ(lines.GetText(),
              "[i] Owner::Tass : Nb Things In Factory before Tass= 8 After Tass=5 Reduction : 37.5%\n");
}
