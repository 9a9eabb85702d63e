#include "NcArc.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "NcTestHelp.h"

namespace
{

constexpr double kPi = std::numbers::pi;

/// The only arc of a program.
NcMove Arc(std::string_view iText)
{
    const NcProgram program = Parse(iText);
    NcMove found;
    int count = 0;
    for (const NcMove& move : program.m_moves) {
        if (move.m_kind == NcMoveKind::Arc) {
            found = move;
            ++count;
        }
    }
    EXPECT_EQ(count, 1) << iText;
    return found;
}

TEST(NcArc, QuarterWithCentre)
{
    const NcMove arc = Arc("G21 G0 X10 Y0 Z-1\nG3 X0 Y10 I-10 J0");
    ExpectPoint(arc.m_start, 10, 0, -1);
    ExpectPoint(arc.m_end, 0, 10, -1);
    ExpectPoint(arc.m_centre, 0, 0, -1);
    EXPECT_TRUE(arc.m_isCounterclockwise);
    EXPECT_FALSE(arc.m_isRadiusForm);
    EXPECT_EQ(arc.m_plane, NcPlane::XY);
    EXPECT_NEAR(arc.m_sweep, kPi / 2, 1e-15);
    EXPECT_EQ(NcArcRadius(arc), 10.0);
    EXPECT_EQ(arc.m_line, 2);
    ExpectPoint(NcPointOnArc(arc, 0.5), 10 * std::sqrt(0.5), 10 * std::sqrt(0.5), -1, 1e-14);
}

TEST(NcArc, ClockwiseTakesTheOtherWay)
{
    const NcMove arc = Arc("G21 G0 X10 Y0 Z0\nG2 X0 Y10 I-10");
    EXPECT_NEAR(arc.m_sweep, 1.5 * kPi, 1e-15);
    ExpectPoint(NcPointOnArc(arc, 1.0 / 3.0), 0, -10, 0, 1e-14);
}

TEST(NcArc, FullCircleWithEndAbsentOrEqual)
{
    for (const char* text : {"G21 G0 X1 Y2 Z0\nG2 I5", "G21 G0 X1 Y2 Z0\nG2 X1 Y2 I5 J0",
                             "G21 G0 X1 Y2 Z0\nG2 X1 I5", "G21 G0 X1 Y2 Z0\nG91 G2 X0 Y0 I5"}) {
        const NcMove arc = Arc(text);
        EXPECT_EQ(arc.m_sweep, 2 * kPi) << text;
        ExpectPoint(arc.m_end, 1, 2, 0);
        ExpectPoint(arc.m_centre, 6, 2, 0);
    }
}

TEST(NcArc, FullCircleAfterIncrementsThatRound)
{
    // 0.1 + 0.2 is not 0.3, but it is the same place.
    const NcMove arc = Arc("G21 G0 X0 Y0 Z0\nG91 G1 X0.1\nX0.2\nG90 G3 X0.3 I2");
    EXPECT_EQ(arc.m_sweep, 2 * kPi);
    EXPECT_EQ(arc.m_end.x, 0.3);
}

TEST(NcArc, HelixAndTurns)
{
    const NcMove helix = Arc("G21 G0 X10 Y0 Z0\nG3 X0 Y10 Z-2 I-10 P3");
    EXPECT_NEAR(helix.m_sweep, 4.5 * kPi, 1e-14);
    EXPECT_EQ(NcHelixRise(helix), -2.0);
    ExpectPoint(NcPointOnArc(helix, 4.0 / 9.0), 10, 0, -8.0 / 9.0, 1e-13);
    const NcMove stack = Arc("G21 G0 X10 Y0 Z0\nG2 Z-5 I-10 P5");
    EXPECT_NEAR(stack.m_sweep, 10 * kPi, 1e-14);
    EXPECT_EQ(stack.m_end.z, -5.0);
}

// Seen against the axis of the plane: in G17 from X to Y, in G18 from Z to X, in G19 from Y to Z.
TEST(NcArc, SenseInEachPlane)
{
    const NcMove xy = Arc("G21 G17 G0 X10 Y0 Z0\nG3 X0 Y10 I-10");
    EXPECT_NEAR(xy.m_sweep, kPi / 2, 1e-15);
    const NcMove zx = Arc("G21 G18 G0 X0 Y0 Z10\nG3 X10 Z0 K-10");
    EXPECT_NEAR(zx.m_sweep, kPi / 2, 1e-15);
    EXPECT_EQ(zx.m_plane, NcPlane::ZX);
    ExpectPoint(zx.m_centre, 0, 0, 0);
    const NcMove yz = Arc("G21 G19 G0 X0 Y10 Z0\nG3 Y0 Z10 J-10");
    EXPECT_NEAR(yz.m_sweep, kPi / 2, 1e-15);
    EXPECT_EQ(yz.m_plane, NcPlane::YZ);
    const NcMove back = Arc("G21 G18 G0 X0 Y0 Z10\nG2 X10 Z0 K-10");
    EXPECT_NEAR(back.m_sweep, 1.5 * kPi, 1e-15);
}

TEST(NcArc, HelixInOtherPlanes)
{
    const NcMove zx = Arc("G21 G18 G0 X0 Y0 Z10\nG3 X10 Y4 Z0 I0 K-10");
    EXPECT_EQ(NcHelixRise(zx), 4.0);
    ExpectPoint(NcPointOnArc(zx, 0.5), 10 * std::sqrt(0.5), 2, 10 * std::sqrt(0.5), 1e-14);
    const NcMove yz = Arc("G21 G19 G0 X0 Y10 Z0\nG2 X-3 Y0 Z-10 J-10 K0");
    EXPECT_EQ(NcHelixRise(yz), -3.0);
    EXPECT_NEAR(yz.m_sweep, kPi / 2, 1e-15);
}

TEST(NcArc, RadiusForm)
{
    // From (10, 0) to (0, 10) with radius 10: short arcs round (0, 0) counterclockwise or (10, 10) clockwise.
    const NcMove shortLeft = Arc("G21 G0 X10 Y0 Z0\nG3 X0 Y10 R10");
    ExpectPoint(shortLeft.m_centre, 0, 0, 0, 1e-14);
    EXPECT_NEAR(shortLeft.m_sweep, kPi / 2, 1e-14);
    EXPECT_TRUE(shortLeft.m_isRadiusForm);
    const NcMove shortRight = Arc("G21 G0 X10 Y0 Z0\nG2 X0 Y10 R10");
    ExpectPoint(shortRight.m_centre, 10, 10, 0, 1e-14);
    EXPECT_NEAR(shortRight.m_sweep, kPi / 2, 1e-14);
    const NcMove longLeft = Arc("G21 G0 X10 Y0 Z0\nG3 X0 Y10 R-10");
    ExpectPoint(longLeft.m_centre, 10, 10, 0, 1e-14);
    EXPECT_NEAR(longLeft.m_sweep, 1.5 * kPi, 1e-14);
    const NcMove longRight = Arc("G21 G0 X10 Y0 Z0\nG2 X0 Y10 R-10");
    ExpectPoint(longRight.m_centre, 0, 0, 0, 1e-14);
    EXPECT_NEAR(longRight.m_sweep, 1.5 * kPi, 1e-14);
}

TEST(NcArc, RadiusFormInOtherPlanesAndLarge)
{
    const NcMove zx = Arc("G21 G18 G0 X0 Y0 Z10\nG3 X10 Z0 R10");
    ExpectPoint(zx.m_centre, 0, 0, 0, 1e-14);
    EXPECT_NEAR(zx.m_sweep, kPi / 2, 1e-14);
    const NcMove large = Arc("G21 G0 X-10 Y0 Z0\nG2 X10 Y0 R1600");
    EXPECT_NEAR(NcArcRadius(large), 1600.0, 1e-9);
    EXPECT_NEAR(large.m_centre.y, -std::sqrt(1600.0 * 1600.0 - 100.0), 1e-9);
    EXPECT_NEAR(large.m_sweep, 2 * std::asin(10.0 / 1600.0), 1e-12);
}

TEST(NcArc, RadiusRoundedDownBelowHalfTheDistanceIsHalfATurn)
{
    const NcMove arc = Arc("G21 G0 X0 Y0 Z0\nG2 X10 Y0 R4.995");
    ExpectPoint(arc.m_centre, 5, 0, 0, 1e-14);
    EXPECT_NEAR(arc.m_sweep, kPi, 1e-14);
    EXPECT_EQ(
        Refusal("G21 G0 X0 Y0 Z0\nG2 X10 Y0 R4.98"),
        "p.nc:2: error: arc does not close: its ends are 10 mm apart, more than twice its radius 4.98 mm");
}

TEST(NcArc, Tolerance)
{
    EXPECT_EQ(NcArcTolerance(5.0, false), 0.01);
    EXPECT_EQ(NcArcTolerance(5.0, true), 0.002 * 25.4);
    EXPECT_EQ(NcArcTolerance(1600.0, false), 0.16);
    EXPECT_EQ(NcArcTolerance(68789.0, false), 0.25);
    Arc("G21 G0 X10 Y0 Z0\nG3 X0 Y10.004 I-10");
    Arc("G21 G0 X10 Y0 Z0\nG3 X0 Y10.0099 I-10");
    Arc("G20 G0 X1 Y0 Z0\nG3 X0 Y1.0015 I-1");
    EXPECT_EQ(Refusal("G21 G0 X10 Y0 Z0\n\nG3 X0 Y10.011 I-10"),
              "p.nc:3: error: arc does not close: its end is 10.011 mm from the centre and its start 10 mm, "
              "0.01 mm is "
              "allowed between them");
    EXPECT_EQ(Refusal("G20 G0 X1 Y0 Z0\nG3 X0 Y1.003 I-1"),
              "p.nc:2: error: arc does not close: its end is 25.4762 mm from the centre and its start 25.4 "
              "mm, 0.0508 mm "
              "is allowed between them");
}

TEST(NcArc, WordsThatGiveNoArc)
{
    const std::string start = "G21 G0 X0 Y0 Z0\n";
    EXPECT_EQ(Refusal(start + "G2 X5 Y5"),
              "p.nc:2: error: arc without a centre: G2 and G3 need I and J, or R");
    EXPECT_EQ(Refusal(start + "G18 G2 X5 Z5 J0"),
              "p.nc:2: error: arc without a centre: G2 and G3 need I and K, or R");
    EXPECT_EQ(Refusal(start + "G19 G2 Y5 Z5"),
              "p.nc:2: error: arc without a centre: G2 and G3 need J and K, or R");
    EXPECT_EQ(Refusal(start + "G2 X5 Y5 I5 K1"),
              "p.nc:2: error: 'K' in an arc: the centre cannot be moved along the axis of the plane");
    EXPECT_EQ(Refusal(start + "G2 X5 Y5 I5 J0 R5"),
              "p.nc:2: error: arc with a centre and R: only one of the two can be given");
    EXPECT_EQ(Refusal(start + "G2 X0 Y0 R5"),
              "p.nc:2: error: arc with R back to its start: a full circle needs its centre (I, J, K)");
    EXPECT_EQ(Refusal(start + "G2 X5 Y0 I0 J0"),
              "p.nc:2: error: arc without a radius: its centre lies on its start or end");
    EXPECT_EQ(Refusal(start + "G2 X5 Y0 I5"),
              "p.nc:2: error: arc without a radius: its centre lies on its start or end");
    EXPECT_EQ(Refusal(start + "G2 X5 Y5 I5 P0"),
              "p.nc:2: error: bad number in 'P0': P must be a whole number from 1 to 1000");
    EXPECT_EQ(Refusal(start + "G2 X5 Y5 I5 P1.5"),
              "p.nc:2: error: bad number in 'P1.5': P must be a whole number from 1 to 1000");
    // A zero along the axis does no harm, and some posts write it.
    Arc(start + "G2 X5 Y5 I5 J0 K0");
}

TEST(NcArc, CentresAreIncrementsWhateverTheDistanceMode)
{
    const NcMove arc = Arc("G21 G0 X10 Y10 Z0\nG91.1\nG91 G2 X5 Y5 I5 J0");
    ExpectPoint(arc.m_centre, 15, 10, 0);
    ExpectPoint(arc.m_end, 15, 15, 0);
    EXPECT_EQ(Refusal("G90.1"),
              "p.nc:1: error: unsupported code 'G90.1': arc centres are read as increments from the "
              "start point (G91.1) only");
}

double DistanceToSegment(double iX, double iY, const ZULMathPoint& iA, const ZULMathPoint& iB)
{
    const double dx = iB.x - iA.x;
    const double dy = iB.y - iA.y;
    const double length2 = dx * dx + dy * dy;
    const double t =
        length2 > 0.0 ? std::clamp(((iX - iA.x) * dx + (iY - iA.y) * dy) / length2, 0.0, 1.0) : 0.0;
    return std::hypot(iX - iA.x - t * dx, iY - iA.y - t * dy);
}

TEST(FlattenArc, KeepsWithinToleranceAndEndsExactly)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < 2000; ++i) {
        const double radius = std::pow(10.0, -1.0 + 4.0 * unit(random));
        const double tolerance = std::pow(10.0, -4.0 + 4.0 * unit(random));
        const double from = 2 * kPi * unit(random);
        NcArcWords words;
        words.m_isCounterclockwise = (i & 1) != 0;
        words.m_turns = 1 + i % 3;
        words.m_start = {radius * std::cos(from), radius * std::sin(from), 1.0};
        const double to = 2 * kPi * unit(random);
        const double endRadius = radius + 0.009 * (2.0 * unit(random) - 1.0);
        words.m_end = {endRadius * std::cos(to), endRadius * std::sin(to), 1.0 + unit(random)};
        words.m_centreOffsets = {-words.m_start.x, -words.m_start.y, std::nullopt};
        NcMove arc;
        NcSetArc(words, arc);

        const std::vector<ZULMathPoint> points = FlattenArc(arc, tolerance);
        ASSERT_GE(points.size(), 2U);
        EXPECT_EQ(points.front(), arc.m_start);
        EXPECT_EQ(points.back(), arc.m_end);
        const std::size_t chords = points.size() - 1;
        EXPECT_GE(static_cast<double>(chords) * kPi / 2 + 1e-9, arc.m_sweep);
        for (std::size_t c = 0; c < chords; c += 1 + chords / 16) {
            for (int s = 1; s < 8; ++s) {
                const double t = (static_cast<double>(c) + s / 8.0) / static_cast<double>(chords);
                const ZULMathPoint p = NcPointOnArc(arc, t);
                EXPECT_LE(DistanceToSegment(p.x, p.y, points[c], points[c + 1]), tolerance + 1e-12 * radius);
            }
        }
    }
}

TEST(FlattenArc, IsNotWasteful)
{
    const NcMove circle = Arc("G21 G0 X50 Y0 Z0\nG2 I-50");
    // 2 pi / (2 acos(1 - 0.01 / 50)) = 157.07...
    EXPECT_EQ(FlattenArc(circle, 0.01).size(), 158U + 1U);
    EXPECT_EQ(FlattenArc(circle, 1000.0).size(), 4U + 1U);
}

TEST(FlattenArc, ToleranceOutOfReach)
{
    const NcMove circle = Arc("G21 G0 X50 Y0 Z0\nG2 I-50");
    EXPECT_TRUE(FlattenArc(circle, 0.0).empty());
    EXPECT_TRUE(FlattenArc(circle, -1.0).empty());
    EXPECT_TRUE(FlattenArc(circle, std::nan("")).empty());
    EXPECT_TRUE(FlattenArc(circle, 1e-300).empty());
    EXPECT_TRUE(FlattenArc(circle, 5e-324).empty());
    EXPECT_FALSE(FlattenArc(circle, 1e-8).empty());
}

TEST(FlattenArc, LineGivesItsEnds)
{
    NcMove line;
    line.m_kind = NcMoveKind::Line;
    line.m_end = {1, 2, 3};
    EXPECT_EQ(FlattenArc(line, 0.1), (std::vector<ZULMathPoint>{{0, 0, 0}, {1, 2, 3}}));
}

TEST(NcExtents, KnowTheBulge)
{
    const NcProgram half = Parse("G21 G0 X-10 Y0 Z5\nG1 Z-1\nG2 X10 Y0 I10");
    ExpectPoint(half.CuttingExtents().Min(), -10, 0, -1);
    ExpectPoint(half.CuttingExtents().Max(), 10, 10, 5);
    const NcProgram other = Parse("G21 G18 G0 X10 Y3 Z0\nG2 X10 Z0 I-10 K0");
    ExpectPoint(other.CuttingExtents().Min(), -10, 3, -10);
    ExpectPoint(other.CuttingExtents().Max(), 10, 3, 10);
    const NcProgram small = Parse("G21 G0 X10 Y0 Z0\nG3 X0 Y10 I-10");
    ExpectPoint(small.CuttingExtents().Min(), 0, 0, 0);
    ExpectPoint(small.CuttingExtents().Max(), 10, 10, 0);
}

TEST(NcExtents, ContainRandomArcsTightly)
{
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> angle(0.0, 2 * kPi);
    for (int i = 0; i < 500; ++i) {
        NcArcWords words;
        words.m_plane = static_cast<NcPlane>(i % 3);
        words.m_isCounterclockwise = (i & 1) != 0;
        const NcPlaneAxes axes = NcAxesOf(words.m_plane);
        const double from = angle(random);
        const double to = angle(random);
        NcSetCoordinate(words.m_start, axes.m_u, 7 * std::cos(from));
        NcSetCoordinate(words.m_start, axes.m_v, 7 * std::sin(from));
        NcSetCoordinate(words.m_end, axes.m_u, 7 * std::cos(to));
        NcSetCoordinate(words.m_end, axes.m_v, 7 * std::sin(to));
        for (int axis = 0; axis < 3; ++axis) {
            words.m_centreOffsets[static_cast<std::size_t>(axis)] = -NcCoordinate(words.m_start, axis);
        }
        NcMove arc;
        NcSetArc(words, arc);
        NcExtents box;
        box.AddMove(arc);
        NcExtents sampled;
        for (int s = 0; s <= 2000; ++s) {
            sampled.AddPoint(NcPointOnArc(arc, s / 2000.0));
        }
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_NEAR(NcCoordinate(box.Min(), axis), NcCoordinate(sampled.Min(), axis), 1e-4);
            EXPECT_NEAR(NcCoordinate(box.Max(), axis), NcCoordinate(sampled.Max(), axis), 1e-4);
        }
    }
}

TEST(NcExtents, EmptyUntilEveryAxisHasAPoint)
{
    NcExtents extents;
    EXPECT_TRUE(extents.IsEmpty());
    extents.AddPoint({1, 2, 3}, 5U);
    EXPECT_TRUE(extents.IsEmpty());
    extents.AddPoint({1, 2, 3}, 2U);
    EXPECT_FALSE(extents.IsEmpty());
}

}  // namespace
