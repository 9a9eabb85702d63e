#include "MillPath.h"

#include <cmath>

#include <gtest/gtest.h>

#include "MillError.h"
#include "MillTestHelp.h"

namespace
{

NcProgram Parse(const std::string& text)
{
    return ParseNcProgram(text, "p.nc");
}

MillConfig WithTools(const std::vector<std::string>& tools)
{
    MillConfig config;
    for (const std::string& tool : tools) {
        config.m_Tools.Add(tool);
    }
    return config;
}

MillPath Path(const std::string& text, const std::vector<std::string>& tools = {"flat:6"})
{
    return MillMakePath(Parse(text), WithTools(tools));
}

std::string PathComplaint(const std::string& text, const std::vector<std::string>& tools = {"flat:6"})
{
    return MillComplaint<NcError>([&] { Path(text, tools); });
}

void ExpectStock(const std::string& text, const std::string& choice, const std::vector<std::string>& tools,
                 const MillVector& min, const MillVector& max)
{
    MillConfig config = WithTools(tools);
    config.m_Stock = MillParseStock(choice);
    const MillBox box = MillMakeStock(Parse(text), config);
    for (const auto& [is, expected] : {std::pair(box.m_Min, min), std::pair(box.m_Max, max)}) {
        EXPECT_EQ(is.m_X, expected.m_X * 1000) << text;
        EXPECT_EQ(is.m_Y, expected.m_Y * 1000) << text;
        EXPECT_EQ(is.m_Z, expected.m_Z * 1000) << text;
    }
}

TEST(MillLattice, SnapsDecimalsExactly)
{
    std::int64_t at = 0;
    EXPECT_TRUE(MillSnap(0.3, at));
    EXPECT_EQ(at, 300'000);
    EXPECT_TRUE(MillSnap(-99.999999, at));
    EXPECT_EQ(at, -99'999'999);
    EXPECT_TRUE(MillSnap(0.00001 * 25.4, at));
    EXPECT_EQ(at, 254);
    EXPECT_TRUE(MillSnap(16000.0, at));
    EXPECT_FALSE(MillSnap(16000.000001, at));
    EXPECT_FALSE(MillSnap(-1e300, at));
    EXPECT_FALSE(MillSnap(std::nan(""), at));
    EXPECT_FALSE(MillSnap(HUGE_VAL, at));
}

TEST(MillPath, TakesLinesAndRapidsInOrder)
{
    const MillPath path = Path("G21 G90\nG0 X0 Y0 Z5\nG1 Z-1\nX10.5 Y-3.25\nG0 Z5\n");
    ASSERT_EQ(path.m_Segments.size(), 4U);
    EXPECT_EQ(path.m_CuttingMoves, 2U);
    EXPECT_EQ(path.m_RapidMoves, 2U);
    EXPECT_TRUE(path.m_Segments[0].m_IsRapid);
    EXPECT_FALSE(path.m_Segments[2].m_IsRapid);
    EXPECT_EQ(path.m_Segments[2].m_Line, 4);
    EXPECT_TRUE((path.m_Segments[2].m_Start == MillVector{0, 0, -1'000'000}));
    EXPECT_TRUE((path.m_Segments[2].m_End == MillVector{10'500'000, -3'250'000, -1'000'000}));
}

TEST(MillPath, CutsArcsIntoConnectedChordsWithinTheTolerance)
{
    MillConfig config = WithTools({"flat:6"});
    config.m_ChordTolerance = 0.05;
    const MillPath path = MillMakePath(Parse("G21 G90\nG0 X10 Y0 Z0\nG3 X0 Y10 I-10 J0\n"), config);
    ASSERT_GT(path.m_Segments.size(), 5U);
    for (std::size_t i = 1; i < path.m_Segments.size(); ++i) {
        const MillPathSegment& segment = path.m_Segments[i];
        EXPECT_TRUE(segment.m_Start == path.m_Segments[i - 1].m_End);
        EXPECT_EQ(segment.m_Line, 3);
        const double x = MillToMm(segment.m_Start.m_X + segment.m_End.m_X) / 2.0;
        const double y = MillToMm(segment.m_Start.m_Y + segment.m_End.m_Y) / 2.0;
        EXPECT_GE(std::hypot(x, y), 10.0 - 0.0502);
        EXPECT_EQ(segment.m_Start.m_X % 100, 0) << "round numbers between the ends";
    }
    EXPECT_TRUE((path.m_Segments.back().m_End == MillVector{0, 10'000'000, 0}));
}

TEST(MillPath, KeepsTheEndsOfArcsExact)
{
    const MillPath path = Path("G21 G90\nG0 X10.000001 Y0 Z0\nG3 X0 Y10.000003 R10\n");
    EXPECT_EQ(path.m_Segments[1].m_Start.m_X, 10'000'001);
    EXPECT_EQ(path.m_Segments.back().m_End.m_Y, 10'000'003);
}

TEST(MillPath, KnowsTheToolOfEveryMove)
{
    const MillPath path =
        Path("G21 G90\nT2 M6\nG1 X1 Y0 Z-1\nT5 M6\nX2\nT2 M6\nX3\n", {"2=flat:6", "5=ball:3"});
    ASSERT_EQ(path.m_Tools.size(), 2U);
    EXPECT_EQ(path.m_Tools[0].m_Number, 2);
    EXPECT_EQ(path.m_Tools[0].m_Shape.GetText(), "flat:6");
    EXPECT_EQ(path.m_Tools[1].m_Number, 5);
    ASSERT_EQ(path.m_Segments.size(), 3U);
    EXPECT_EQ(path.m_Segments[0].m_Tool, 0U);
    EXPECT_EQ(path.m_Segments[1].m_Tool, 1U);
    EXPECT_EQ(path.m_Segments[2].m_Tool, 0U);
    EXPECT_EQ(path.GetLargestReach(), 3'000'000);
}

TEST(MillPath, RefusesCuttingMovesWithoutAShape)
{
    EXPECT_EQ(PathComplaint("G21\nT7 M6\nG0 X1 Y1\nG1 Z-1\n", {"1=flat:6"}),
              "p.nc:4: error: tool T7 has no shape: give --tool 7=SHAPE, or --tool SHAPE for all");
    EXPECT_EQ(PathComplaint("G21\nG1 Z-1\n", {"1=flat:6"}),
              "p.nc:2: error: no tool number yet: give --tool SHAPE");
    EXPECT_EQ(PathComplaint("G21\nG0 X1\nG0 Z10\nT1 M6\nG1 X5\n", {"1=flat:6"}), "nothing")
        << "rapid moves before the first tool are nobody's";
}

TEST(MillPath, RefusesPlacesThatAreTooFarOut)
{
    EXPECT_EQ(PathComplaint("G21\nG1 X17000\n"),
              "p.nc:2: error: place too far out: more than 16 m from zero");
}

TEST(MillPath, RefusesTooManyChords)
{
    MillConfig config = WithTools({"flat:6"});
    config.m_ChordTolerance = 1e-11;
    EXPECT_EQ(MillComplaint<MillError>(
                  [&] { MillMakePath(Parse("G21 G90\nG0 X1000 Y0 Z0\nG3 X1000 Y0 I-1000 J0\n"), config); }),
              "--chord: 1e-11 makes more than 4000000 chords of the arc on line 3");
}

TEST(MillPath, LeavesOutMovesInMachineCoordinates)
{
    const MillPath path = Path("G21 G90\nG1 X1 Y1 Z-1\nG53 G0 Z0\nG0 X5 Y5\nG0 Z-1\n");
    for (const MillPathSegment& segment : path.m_Segments) {
        EXPECT_NE(segment.m_Line, 3);
    }
}

TEST(MillStock, IsTheBoxThatIsGiven)
{
    ExpectStock("G21\nG1 X1\n", "-1,-2,-3,4,5,6.5", {"flat:6"}, {-1000, -2000, -3000}, {4000, 5000, 6500});
}

TEST(MillStock, SurroundsWhatTheToolsReach)
{
    const std::string program = "G21 G90\nT1 M6\nG0 X-50 Y-50 Z20\nX0 Y0\nG1 Z-3\nX40 Y20\nG0 Z20\n";
    ExpectStock(program, "auto:2", {"1=flat:6"}, {-5000, -5000, -5000}, {45000, 25000, 0});
    ExpectStock(program, "auto:0", {"1=vee:10:90"}, {-5000, -5000, -3000}, {45000, 25000, 0});
    ExpectStock("G21 G90\nT1 M6\nG0 X0 Y0\nG1 Z-3\nX40\nT2 M6\nG1 Y10\n", "auto:1", {"1=flat:6", "2=flat:20"},
                {-4000, -11000, -4000}, {51000, 21000, 0});
}

TEST(MillStock, SeesTheBulgeOfArcs)
{
    ExpectStock("G21 G90\nG0 X0 Y0\nG1 Z-1\nG2 X20 Y0 I10 J0\n", "auto:1", {"flat:2"}, {-2000, -2000, -2000},
                {22000, 12000, 0});
}

TEST(MillStock, OfAProgramAboveZeroEndsAtItsHighestCut)
{
    ExpectStock("G21 G90\nG0 X0 Y0 Z30\nG1 Z12\nX40\nZ4\nX0\n", "auto:1", {"flat:2"}, {-2000, -2000, 3000},
                {42000, 2000, 30000});
}

TEST(MillStock, RefusesProgramsThatGiveNone)
{
    const auto complaint = [](const std::string& text, const std::string& choice) {
        MillConfig config = WithTools({"flat:6"});
        config.m_Stock = MillParseStock(choice);
        return MillComplaint<MillError>([&] { MillMakeStock(Parse(text), config); });
    };
    EXPECT_EQ(complaint("G21\nG0 X1\n", "auto:1"),
              "--stock: the program makes no cutting move to take a box from");
    EXPECT_EQ(complaint("", "auto:1"), "--stock: the program makes no cutting move to take a box from");
    EXPECT_EQ(complaint("G21 G90\nG0 X0 Y0 Z0\nG1 X5\n", "auto:0"),
              "--stock: the cutting moves and the margin give a box of no size");
    EXPECT_EQ(complaint("G21 G90\nG0 X0 Y0 Z0\nG1 X5\n", "auto:15999"),
              "--stock: the program goes too far out");
}

}  // namespace
