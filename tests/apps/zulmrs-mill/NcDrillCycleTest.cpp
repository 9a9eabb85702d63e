#include "NcDrillCycle.h"

#include "NcTestHelp.h"

namespace
{

/// The strokes of the cycles: kind and end.
std::string Strokes(const NcProgram& iProgram)
{
    std::string text;
    for (const NcMove& move : iProgram.m_moves) {
        if (!move.m_isCycleStroke) {
            continue;
        }
        char line[128];
        snprintf(line, sizeof line, "%c%s %g %g %g|", "RLA"[static_cast<int>(move.m_kind)],
                 move.m_mayCut ? "" : "x", move.m_end.x, move.m_end.y, move.m_end.z);
        text += line;
    }
    return text;
}

const std::string kStart = "G21 G0 X0 Y0 Z10\n";

TEST(NcDrillCycle, G81RetractsToTheStart)
{
    const NcProgram program = Parse(kStart + "G81 X1 Y2 R2 Z-5");
    EXPECT_EQ(Strokes(program), "R 1 2 10|R 1 2 2|L 1 2 -5|R 1 2 10|");
    EXPECT_EQ(program.m_holeCount, 1);
    for (const NcMove& move : program.m_moves) {
        EXPECT_TRUE(move.m_mayCut);
    }
}

TEST(NcDrillCycle, G99RetractsToR)
{
    EXPECT_EQ(Strokes(Parse(kStart + "G99 G81 X1 Y2 R2 Z-5\nX3\nG98 X4")),
              "R 1 2 10|R 1 2 2|L 1 2 -5|R 1 2 2|"
              "R 3 2 2|L 3 2 -5|R 3 2 2|"
              "R 4 2 2|L 4 2 -5|R 4 2 10|");
}

TEST(NcDrillCycle, ValuesHoldUntilGivenAnew)
{
    const NcProgram program =
        Parse(kStart + "G81 G99 X1 Y0 R2 Z-5\nX2 Z-6\nX3 R3\nG82 X4 P1\nM8\nF100\nG4 P1\nX5");
    EXPECT_EQ(Strokes(program),
              "R 1 0 10|R 1 0 2|L 1 0 -5|R 1 0 2|"
              "R 2 0 2|L 2 0 -6|R 2 0 2|"
              "R 2 0 3|R 3 0 3|L 3 0 -6|R 3 0 3|"
              "R 4 0 3|L 4 0 -6|R 4 0 3|"
              "R 5 0 3|L 5 0 -6|R 5 0 3|");
    EXPECT_EQ(program.m_holeCount, 5);
}

TEST(NcDrillCycle, AnyOtherMotionEndsTheSeries)
{
    EXPECT_EQ(Refusal(kStart + "G81 X1 Y0 R2 Z-5\nG80\nG81 X2"),
              "p.nc:4: error: drill cycle without R: the height where drilling starts is needed");
    EXPECT_EQ(Refusal(kStart + "G81 X1 Y0 R2 Z-5\nG0 X2\nG81 X2 R2"),
              "p.nc:4: error: drill cycle without Z: the depth of the hole is needed");
}

TEST(NcDrillCycle, WithoutXYDrillsAtTheCurrentPlace)
{
    EXPECT_EQ(Strokes(Parse("G21 G0 X7 Y8 Z1\nG81 G99 Z-0.5 R2.5 P0.5 F11\nX9")),
              "R 7 8 2.5|L 7 8 -0.5|R 7 8 2.5|R 9 8 2.5|L 9 8 -0.5|R 9 8 2.5|");
}

TEST(NcDrillCycle, StartBelowRGoesUpFirst)
{
    EXPECT_EQ(Strokes(Parse("G21 G0 X0 Y0 Z1\nG98 G81 X5 R2 Z-1")), "R 0 0 2|R 5 0 2|L 5 0 -1|R 5 0 2|");
}

TEST(NcDrillCycle, G83PecksWithFullRetract)
{
    EXPECT_EQ(Strokes(Parse(kStart + "G83 G99 X0 R1 Z-6 Q3")),
              "R 0 0 1|L 0 0 -2|R 0 0 1|R 0 0 -1.75|L 0 0 -5|R 0 0 1|R 0 0 -4.75|L 0 0 -6|R 0 0 1|");
}

TEST(NcDrillCycle, G73PecksWithShortRetract)
{
    EXPECT_EQ(Strokes(Parse(kStart + "G73 X0 R1 Z-5 Q3")), "R 0 0 1|L 0 0 -2|R 0 0 -1.75|L 0 0 -5|R 0 0 10|");
    // A retract stays within the peck.
    EXPECT_EQ(Strokes(Parse(kStart + "G73 X0 R0 Z-.2 Q.1")),
              "R 0 0 0|L 0 0 -0.1|R 0 0 -0.05|L 0 0 -0.2|R 0 0 10|");
}

TEST(NcDrillCycle, PeckCountIsNotFooledByRounding)
{
    // 0.3 / 0.1 is a little less than 3 in doubles, 0.7 / 0.1 a little less than 7.
    const auto feeds = [](const std::string& iDepth) {
        int count = 0;
        for (const NcMove& move : Parse(kStart + "G83 X0 R0 Z-" + iDepth + " Q0.1").m_moves) {
            count += move.m_kind == NcMoveKind::Line ? 1 : 0;
        }
        return count;
    };
    EXPECT_EQ(feeds("0.3"), 3);
    EXPECT_EQ(feeds("0.7"), 7);
    EXPECT_EQ(feeds("0.71"), 8);
}

TEST(NcDrillCycle, RepeatsUnderG91)
{
    const NcProgram program = Parse("G21 G0 X1 Y1 Z10\nG91 G81 G98 X2 Y1 R-8 Z-5 L3");
    EXPECT_EQ(Strokes(program),
              "R 3 2 10|R 3 2 2|L 3 2 -3|R 3 2 10|"
              "R 5 3 10|R 5 3 2|L 5 3 -3|R 5 3 10|"
              "R 7 4 10|R 7 4 2|L 7 4 -3|R 7 4 10|");
    EXPECT_EQ(program.m_holeCount, 3);
}

TEST(NcDrillCycle, RUnderG91CountsFromTheHeightBeforeTheSeries)
{
    EXPECT_EQ(Strokes(Parse("G21 G0 X0 Y0 Z10\nG91 G81 G99 X2 R-8 Z-5\nX2 R-7")),
              "R 2 0 10|R 2 0 2|L 2 0 -3|R 2 0 2|R 2 0 3|R 4 0 3|L 4 0 -3|R 4 0 3|");
}

TEST(NcDrillCycle, RepeatsUnderG90StayAtThePlace)
{
    EXPECT_EQ(Strokes(Parse(kStart + "G81 G99 X2 R2 Z-5 L2")),
              "R 2 0 10|R 2 0 2|L 2 0 -5|R 2 0 2|L 2 0 -5|R 2 0 2|");
}

TEST(NcDrillCycle, ZeroRepeatsOnlySetTheValues)
{
    EXPECT_EQ(Strokes(Parse(kStart + "G81 G99 X2 R2 Z-5 L0\nX3")), "R 3 0 10|R 3 0 2|L 3 0 -5|R 3 0 2|");
}

TEST(NcDrillCycle, OtherPlanes)
{
    EXPECT_EQ(Strokes(Parse("G21 G18 G0 X0 Y10 Z0\nG81 G99 X1 Z2 R2 Y-5\nZ4")),
              "R 1 10 2|R 1 2 2|L 1 -5 2|R 1 2 2|R 1 2 4|L 1 -5 4|R 1 2 4|");
    EXPECT_EQ(Strokes(Parse("G21 G19 G0 X10 Y0 Z0\nG81 G98 Y1 Z2 R2 X-5")),
              "R 10 1 2|R 2 1 2|L -5 1 2|R 10 1 2|");
    EXPECT_EQ(Refusal("G21 G18 G0 X0 Y10 Z0\nG81 X1 Z2 R2"),
              "p.nc:2: error: drill cycle without Y: the depth of the hole is needed");
}

TEST(NcDrillCycle, WorkOffsetsMoveTheHeights)
{
    EXPECT_EQ(Strokes(Parse("G21 G10 L2 P2 X100 Z-20\nG0 X0 Y0 Z10\nG81 G99 X1 R2 Z-5\nG55 X1")),
              "R 1 0 10|R 1 0 2|L 1 0 -5|R 1 0 2|R 101 0 2|R 101 0 -18|L 101 0 -25|R 101 0 -18|");
}

TEST(NcDrillCycle, Inches)
{
    EXPECT_EQ(
        Strokes(Parse("G20 G0 X0 Y0 Z1\nG83 G99 X1 R.1 Z-.1 Q.1")),
        "R 25.4 0 25.4|R 25.4 0 2.54|L 25.4 0 0|R 25.4 0 2.54|R 25.4 0 0.25|L 25.4 0 -2.54|R 25.4 0 2.54|");
}

TEST(NcDrillCycle, FromAnUnknownHeight)
{
    // The spindle is somewhere up: where it goes down to R is known, where it goes up to is not.
    EXPECT_EQ(Strokes(Parse("G21 G0 X0 Y0 Z10\nG53 Z0\nG98 G81 X1 Y1 R2 Z-5\nX2")),
              "Rx 1 1 10|R 1 1 2|L 1 1 -5|Rx 1 1 10|Rx 2 1 10|R 2 1 2|L 2 1 -5|Rx 2 1 10|");
    EXPECT_EQ(
        Refusal("G21 G0 X0 Y0 Z10\nG53 X0\nG81 R2 Z-5"),
        "p.nc:3: error: drill cycle from an unknown place: the place along X was lost by the move in machine "
        "coordinates on line 2");
    EXPECT_EQ(Refusal("G21 G0 X0 Y0 Z10\nG53 Z0\nG91 G81 X1 R-2 Z-5"),
              "p.nc:3: error: drill cycle from an unknown place: R counts from a place along Z that was lost "
              "by the move "
              "in machine coordinates on line 2");
}

TEST(NcDrillCycle, AbsurdValues)
{
    EXPECT_EQ(Refusal(kStart + "G81 X1 R-6 Z-5"),
              "p.nc:2: error: drill cycle with R below the bottom: R is at -6 mm and the bottom at -5 mm");
    EXPECT_EQ(Refusal(kStart + "G83 X1 R1 Z-5"),
              "p.nc:2: error: drill cycle without Q: G83 needs the depth of a peck");
    EXPECT_EQ(Refusal(kStart + "G73 X1 R1 Z-5 Q0"),
              "p.nc:2: error: drill cycle with a bad Q: the depth of a peck must be positive");
    EXPECT_EQ(Refusal(kStart + "G83 X1 R1 Z-5 Q-1"),
              "p.nc:2: error: drill cycle with a bad Q: the depth of a peck must be positive");
    EXPECT_EQ(Refusal(kStart + "G83 X1 R1 Z-5 Q.00001"),
              "p.nc:2: error: drill cycle with too many strokes: one block may make 100000");
    EXPECT_EQ(Refusal(kStart + "G81 X1 R1 Z-5 L1.5"),
              "p.nc:2: error: bad number in 'L1.5': L must be a whole number from 0 to 100000");
    EXPECT_EQ(Refusal(kStart + "G81 X1 R1 Z-5 K3"),
              "p.nc:2: error: misplaced word 'K3': it has no meaning in a drill cycle; L repeats");
    EXPECT_EQ(Refusal("G81"),
              "p.nc:1: error: drill cycle without R: the height where drilling starts is needed");
}

}  // namespace
