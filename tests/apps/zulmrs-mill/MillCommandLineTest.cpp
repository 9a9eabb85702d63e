#include "MillCommandLine.h"

#include <gtest/gtest.h>

#include "MillError.h"
#include "MillTestHelp.h"

namespace
{

MillCommandLine Parse(std::vector<const char*> arguments)
{
    arguments.insert(arguments.begin(), "zulmrs-mill");
    return MillParseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

MillConfig Config(const std::vector<const char*>& arguments)
{
    const MillCommandLine line = Parse(arguments);
    EXPECT_TRUE(line.m_Config.has_value());
    return line.m_Config.value_or(MillConfig());
}

std::string Complaint(const std::vector<const char*>& arguments)
{
    return MillComplaint<MillError>([&arguments] { Parse(arguments); });
}

TEST(MillCommandLine, HasDefaultsForAllButTheFiles)
{
    const MillConfig config = Config({"p.nc", "-o", "p.stl"});
    EXPECT_EQ(config.m_Program, "p.nc");
    EXPECT_EQ(config.m_Output, "p.stl");
    EXPECT_EQ(config.m_Report, "");
    EXPECT_TRUE(config.m_Stock.m_IsAuto);
    EXPECT_EQ(config.m_Stock.m_Margin, 2.0);
    EXPECT_FALSE(config.m_Tools.m_Default.has_value());
    EXPECT_EQ(config.m_Sides, 16);
    EXPECT_EQ(config.m_FlatKind, MillSidesKind::Circumscribed);
    EXPECT_EQ(config.m_ChordTolerance, 0.01);
    EXPECT_EQ(config.m_Reading.m_defaultUnits, NcUnits::Millimetres);
    EXPECT_FALSE(config.m_Reading.m_runDeletedBlocks);
    EXPECT_FALSE(config.m_Reading.m_readJoinedPrograms);
    EXPECT_FALSE(config.m_IsVerbose);
    EXPECT_EQ(config.m_Threads, 0);
}

TEST(MillCommandLine, ReadsEveryOptionInAnyOrder)
{
    const MillConfig config = Config({"--stock",      "-5,-5,-10,5,5,0",
                                      "--tool",       "1=flat:6",
                                      "--tool",       "2=ball:3",
                                      "p.nc",         "--tool=vee:6:60",
                                      "--sides",      "32",
                                      "--flat",       "inscribed",
                                      "--units",      "inch",
                                      "--chord=0.05", "-o",
                                      "a.PLY",        "--report",
                                      "r.json",       "--run-deleted",
                                      "--joined",     "--verbose",
                                      "--threads",    "3"});
    EXPECT_EQ(config.m_Threads, 3);
    EXPECT_EQ(config.m_Program, "p.nc");
    EXPECT_FALSE(config.m_Stock.m_IsAuto);
    EXPECT_EQ(config.m_Stock.m_Min.x, -5.0);
    EXPECT_EQ(config.m_Tools.m_Numbered.size(), 2U);
    EXPECT_TRUE(config.m_Tools.m_Default.has_value());
    EXPECT_EQ(config.m_Sides, 32);
    EXPECT_EQ(config.m_FlatKind, MillSidesKind::Inscribed);
    EXPECT_EQ(config.m_ChordTolerance, 0.05);
    EXPECT_EQ(config.m_Reading.m_defaultUnits, NcUnits::Inches);
    EXPECT_TRUE(config.m_Reading.m_runDeletedBlocks);
    EXPECT_TRUE(config.m_Reading.m_readJoinedPrograms);
    EXPECT_TRUE(config.m_IsVerbose);
    EXPECT_EQ(config.m_Output, "a.PLY");
    EXPECT_EQ(config.m_Report, "r.json");
}

TEST(MillCommandLine, HelpNamesEveryOption)
{
    const MillCommandLine line = Parse({"--help"});
    EXPECT_FALSE(line.m_Config.has_value());
    for (const char* option : {"PROGRAM", "--stock", "--tool", "--sides", "--flat", "--units", "--chord",
                               "--threads", "-o", "--output", "--report", "--run-deleted", "--joined",
                               "--verbose", "--version", "flat:D", "ball:D", "vee:D:ANGLE", "auto:MARGIN"}) {
        EXPECT_NE(line.m_Text.find(option), std::string::npos) << option;
    }
}

TEST(MillCommandLine, TellsItsVersion)
{
    EXPECT_TRUE(Parse({"--version"}).m_Text.starts_with("zulmrs-mill "));
    EXPECT_FALSE(Parse({"--version"}).m_Config.has_value());
}

TEST(MillCommandLine, RefusesWhatIsMissing)
{
    EXPECT_EQ(Complaint({}), "PROGRAM: missing; see --help");
    EXPECT_EQ(Complaint({"-o", "p.stl"}), "PROGRAM: missing; see --help");
    EXPECT_EQ(Complaint({"p.nc"}), "-o: missing: the file to write; see --help");
    EXPECT_EQ(Complaint({"p.nc", "-o"}), "--output: 1 required FILE missing");
    EXPECT_EQ(Complaint({"p.nc", "-o", "p.stl", "--sides"}), "--sides: 1 required N missing");
}

TEST(MillCommandLine, RefusesWhatIsTooMuch)
{
    EXPECT_EQ(Complaint({"p.nc", "-o", "p.stl", "--bogus"}), "--bogus: unknown option");
    EXPECT_EQ(Complaint({"p.nc", "-o", "p.stl", "-x"}), "-x: unknown option");
    EXPECT_EQ(Complaint({"p.nc", "q.nc", "-o", "p.stl"}), "q.nc: unexpected argument");
    EXPECT_EQ(Complaint({"p.nc", "-o", "p.stl", "--sides", "8", "--sides", "9"}),
              "--sides: At Most 1 required but received 2");
}

TEST(MillCommandLine, RefusesBadValues)
{
    const auto complaint = [](const char* option, const char* value) {
        return Complaint({"p.nc", "-o", "p.stl", option, value});
    };
    EXPECT_EQ(complaint("--sides", "x"), "--sides: 'x' is not a whole number");
    EXPECT_EQ(complaint("--sides", "8.0"), "--sides: '8.0' is not a whole number");
    EXPECT_EQ(complaint("--sides", "99999999999"), "--sides: '99999999999' is not a whole number");
    EXPECT_EQ(complaint("--sides", "2"), "--sides: 2 is not from 3 to 256");
    EXPECT_EQ(complaint("--sides", "257"), "--sides: 257 is not from 3 to 256");
    EXPECT_EQ(complaint("--threads", ""), "--threads: '' is not a whole number");
    EXPECT_EQ(complaint("--threads", "two"), "--threads: 'two' is not a whole number");
    EXPECT_EQ(complaint("--threads", "0"), "--threads: 0 is not from 1 to 256");
    EXPECT_EQ(complaint("--threads", "-1"), "--threads: -1 is not from 1 to 256");
    EXPECT_EQ(complaint("--threads", "257"), "--threads: 257 is not from 1 to 256");
    EXPECT_EQ(complaint("--flat", "round"), "--flat: 'round' is neither circumscribed nor inscribed");
    EXPECT_EQ(complaint("--units", "cm"), "--units: 'cm' is neither mm nor inch");
    EXPECT_EQ(complaint("--chord", "fine"), "--chord: 'fine' is not a number");
    EXPECT_EQ(complaint("--chord", "0"), "--chord: 0 is not from 1e-05 to 100");
    EXPECT_EQ(complaint("--chord", "-1"), "--chord: -1 is not from 1e-05 to 100");
    EXPECT_EQ(complaint("--stock", "1,2,3"),
              "--stock: '1,2,3' has 3 numbers, not the six of X0,Y0,Z0,X1,Y1,Z1");
    EXPECT_EQ(complaint("--tool", "flat:0"), "--tool: 'flat:0': a tool of no size");
    EXPECT_EQ(Complaint({"p.nc", "-o", "p.step"}), "-o: 'p.step' does not end in .stl, .obj or .ply");
    EXPECT_EQ(Complaint({"p.nc", "-o", "stl"}), "-o: 'stl' does not end in .stl, .obj or .ply");
    EXPECT_EQ(Complaint({"p.nc", "-o", ""}), "-o: missing: the file to write; see --help");
}

}  // namespace
