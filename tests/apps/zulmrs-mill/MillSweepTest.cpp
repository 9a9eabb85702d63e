#include "MillSweep.h"

#include <bit>
#include <cmath>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "MillTestHelp.h"

namespace
{

using HalfSpace = std::array<double, 4>;

MillVector AtMm(double x, double y, double z)
{
    MillVector v;
    EXPECT_TRUE(MillSnap({x, y, z}, v));
    return v;
}

std::vector<MillTool> Tools()
{
    std::vector<MillTool> tools;
    for (const char* text : {"flat:6", "flat:3.175", "ball:4", "vee:6:60", "vee:3:90"}) {
        tools.push_back(MillMakeTool(MillParseShape(text, "--tool"), 16));
    }
    tools.push_back(MillMakeTool(MillParseShape("flat:5", "--tool"), 7));
    return tools;
}

/// The bits of a plane, so that a negative zero is not taken for zero.
std::array<std::uint64_t, 4> Bits(const HalfSpace& h)
{
    return {std::bit_cast<std::uint64_t>(h[0]), std::bit_cast<std::uint64_t>(h[1]),
            std::bit_cast<std::uint64_t>(h[2]), std::bit_cast<std::uint64_t>(h[3])};
}

std::set<std::array<std::uint64_t, 4>> PlanesOf(const ZULMRSConvexTool& solid)
{
    std::set<std::array<std::uint64_t, 4>> planes;
    for (const HalfSpace& h : solid.m_HalfSpaces) {
        planes.insert(Bits(h));
    }
    return planes;
}

/// Outward distance from the farthest half-space, nanometres.
double Excess(const ZULMRSConvexTool& solid, const MillVector& p)
{
    long double excess = -HUGE_VALL;
    for (const HalfSpace& h : solid.m_HalfSpaces) {
        const long double value = static_cast<long double>(h[0]) * static_cast<long double>(p.m_X) +
                                  static_cast<long double>(h[1]) * static_cast<long double>(p.m_Y) +
                                  static_cast<long double>(h[2]) * static_cast<long double>(p.m_Z) + h[3];
        excess = std::max(excess, value / std::hypot(h[0], h[1], h[2]));
    }
    return static_cast<double>(excess);
}

/// Least outward distance from the tool over all its places on the way, nanometres: the largest of linear
/// functions of the place is convex, so its least value is found by trisection.
double ExcessByTrisection(const MillTool& tool, const MillVector& start, const MillVector& end,
                          const MillVector& p)
{
    const auto excessAt = [&](long double t) {
        const auto along = [t](std::int64_t from, std::int64_t to, std::int64_t at) {
            return static_cast<long double>(at - from) - t * static_cast<long double>(to - from);
        };
        const long double x = along(start.m_X, end.m_X, p.m_X);
        const long double y = along(start.m_Y, end.m_Y, p.m_Y);
        const long double z = along(start.m_Z, end.m_Z, p.m_Z);
        long double excess = -HUGE_VALL;
        for (const MillTool::Facet& f : tool.GetFacets()) {
            const auto nx = static_cast<long double>(f.m_Normal.m_X);
            const auto ny = static_cast<long double>(f.m_Normal.m_Y);
            const auto nz = static_cast<long double>(f.m_Normal.m_Z);
            const long double norm = std::sqrt(nx * nx + ny * ny + nz * nz);
            excess =
                std::max(excess, (nx * x + ny * y + nz * z - static_cast<long double>(f.m_Height)) / norm);
        }
        return excess;
    };
    long double low = 0.0L;
    long double high = 1.0L;
    for (int i = 0; i < 70; ++i) {
        const long double third = (high - low) / 3.0L;
        if (excessAt(low + third) < excessAt(high - third)) {
            high -= third;
        } else {
            low += third;
        }
    }
    return static_cast<double>(excessAt((low + high) / 2.0L));
}

class RandomWays
{
public:
    explicit RandomWays(std::uint32_t seed) : m_Random(seed) {}

    /// Places with the given number of decimals, some moves along an axis, in a plane or of no length.
    MillVector Place(int decimals)
    {
        const double grid = std::pow(10.0, -decimals);
        std::uniform_real_distribution<double> at(-60.0, 60.0);
        const auto rounded = [&] { return std::round(at(m_Random) / grid) * grid; };
        return AtMm(rounded(), rounded(), rounded() / 8.0);
    }
    MillVector Next(const MillVector& from, int decimals)
    {
        MillVector to = Place(decimals);
        const auto kind = Pick(8);
        if (kind == 0) {
            to.m_Z = from.m_Z;
        } else if (kind == 1) {
            to = {from.m_X, from.m_Y, to.m_Z};
        } else if (kind == 2) {
            to = {to.m_X, from.m_Y, from.m_Z};
        } else if (kind == 3) {
            to = from;
        }
        return to;
    }
    std::uint32_t Pick(std::uint32_t n) { return static_cast<std::uint32_t>(m_Random() % n); }
    MillVector Near(const MillVector& a, const MillVector& b, double spread)
    {
        std::uniform_real_distribution<double> unit(0.0, 1.0);
        const double t = unit(m_Random) * 1.4 - 0.2;
        const auto mix = [&](std::int64_t u, std::int64_t v) {
            const double at = static_cast<double>(u) + t * static_cast<double>(v - u);
            return static_cast<std::int64_t>(at + (unit(m_Random) - 0.5) * 2.0 * spread);
        };
        return {mix(a.m_X, b.m_X), mix(a.m_Y, b.m_Y), mix(a.m_Z, b.m_Z)};
    }

private:
    std::mt19937 m_Random;
};

TEST(MillSweep, ContainsExactlyThePointsThatTheToolPasses)
{
    RandomWays ways(7);
    const std::vector<MillTool> tools = Tools();
    int inside = 0;
    int outside = 0;
    for (int i = 0; i < 400; ++i) {
        const MillTool& tool = tools[ways.Pick(static_cast<std::uint32_t>(tools.size()))];
        const int decimals = 2 + static_cast<int>(ways.Pick(5));
        const MillVector start = ways.Place(decimals);
        const MillVector end = ways.Next(start, decimals);
        const ZULMRSConvexTool solid = MillSweep(tool, start, end);
        for (int j = 0; j < 25; ++j) {
            const MillVector p = ways.Near(start, end, 1.3 * static_cast<double>(tool.GetReach()));
            const double expected = ExcessByTrisection(tool, start, end, p);
            // Nearer to the surface than a thousandth of a nanometre anything may be said.
            if (std::fabs(expected) < 1e-3) {
                continue;
            }
            ++(expected < 0.0 ? inside : outside);
            ASSERT_EQ(Excess(solid, p) < 0.0, expected < 0.0) << "distance " << expected << " nm";
        }
    }
    EXPECT_GT(inside, 2000);
    EXPECT_GT(outside, 2000);
}

TEST(MillSweep, EveryPlaneTouchesTheSweptCorners)
{
    RandomWays ways(11);
    for (const MillTool& tool : Tools()) {
        for (int i = 0; i < 200; ++i) {
            const MillVector start = ways.Place(3);
            const MillVector end = ways.Next(start, 3);
            for (const HalfSpace& h : MillSweep(tool, start, end).m_HalfSpaces) {
                long double support = -HUGE_VALL;
                for (const MillVector& v : tool.GetVertices()) {
                    for (const MillVector& at : {v + start, v + end}) {
                        support = std::max(
                            support, static_cast<long double>(h[0]) * static_cast<long double>(at.m_X) +
                                         static_cast<long double>(h[1]) * static_cast<long double>(at.m_Y) +
                                         static_cast<long double>(h[2]) * static_cast<long double>(at.m_Z));
                    }
                }
                // The rounding of one offset, whatever the normal.
                EXPECT_NEAR(static_cast<double>(support + h[3]), 0.0, std::fabs(h[3]) * 0x1p-52);
                EXPECT_LE(h[2], 0.0) << "nothing closes the upper end";
            }
        }
    }
}

TEST(MillSweep, MovesOfProgramsGiveExactPlanes)
{
    // Three decimals, a part of a decimetre: every offset is a whole number that a double holds.
    const MillTool tool = MillMakeTool({MillShapeKind::Vee, 6.0, 60.0}, 16);
    RandomWays ways(3);
    for (int i = 0; i < 300; ++i) {
        const MillVector start = ways.Place(3);
        const MillVector end = start + MillVector{1'000 * (static_cast<int>(ways.Pick(2001)) - 1000),
                                                  1'000 * (static_cast<int>(ways.Pick(2001)) - 1000), 0};
        for (const HalfSpace& h : MillSweep(tool, start, end).m_HalfSpaces) {
            bool touches = false;
            const MillNormal n{static_cast<MillWide>(h[0]), static_cast<MillWide>(h[1]),
                               static_cast<MillWide>(h[2])};
            for (const MillVector& v : tool.GetVertices()) {
                for (const MillVector& at : {v + start, v + end}) {
                    touches = touches || MillDot(n, at) + static_cast<MillWide>(h[3]) == 0;
                }
            }
            EXPECT_TRUE(touches);
        }
    }
}

TEST(MillSweep, BottomsOfMovesAtOneHeightAreOnePlane)
{
    const MillTool flat = MillMakeTool({MillShapeKind::Flat, 6.0, 0.0}, 16);
    const MillTool ball = MillMakeTool({MillShapeKind::Ball, 3.0, 0.0}, 16);
    const auto bottom = [](const ZULMRSConvexTool& solid) {
        for (const HalfSpace& h : solid.m_HalfSpaces) {
            if (h[0] == 0.0 && h[1] == 0.0) {
                return Bits(h);
            }
        }
        return Bits({});
    };
    const auto expected = Bits({0.0, 0.0, -1.0, -1'270'000.0});
    for (const MillTool& tool : {flat, ball}) {
        EXPECT_EQ(bottom(MillSweep(tool, AtMm(0, 0, -1.27), AtMm(10.1, 3.3, -1.27))), expected);
        EXPECT_EQ(bottom(MillSweep(tool, AtMm(7.7, -3.1, -1.27), AtMm(0.1, 0.2, -1.27))), expected);
        EXPECT_EQ(bottom(MillSweep(tool, AtMm(5, 5, 2), AtMm(5, 5, -1.27))), expected) << "a plunge";
        EXPECT_EQ(bottom(MillSweep(tool, AtMm(5, 5, -1.27), AtMm(5, 5, -1.27))), expected) << "no move";
        EXPECT_EQ(bottom(MillSweep(tool, AtMm(5, 5, 0.5), AtMm(6, 7, -1.27))), expected) << "a ramp";
    }
}

TEST(MillSweep, CollinearMovesShareTheirWalls)
{
    for (const MillTool& tool : Tools()) {
        // Collinear as decimals, not as doubles in millimetres.
        const std::vector<MillVector> line = {AtMm(0.1, 0.3, -0.2), AtMm(0.2, 0.6, -0.4),
                                              AtMm(0.5, 1.5, -1.0), AtMm(1.2, 3.6, -2.4)};
        const auto along = PlanesOf(MillSweep(tool, line[0], line[3]));
        std::set<std::array<std::uint64_t, 4>> silhouette;
        for (const HalfSpace& h : MillSweep(tool, line[0], line[3]).m_HalfSpaces) {
            const double gain = h[0] * 1.0 + h[1] * 3.0 + h[2] * -2.0;
            if (gain == 0.0) {
                silhouette.insert(Bits(h));
            }
        }
        ASSERT_GE(silhouette.size(), 2U);
        for (std::size_t i = 0; i + 1 < line.size(); ++i) {
            for (const bool isReversed : {false, true}) {
                const auto planes = PlanesOf(isReversed ? MillSweep(tool, line[i + 1], line[i])
                                                        : MillSweep(tool, line[i], line[i + 1]));
                for (const auto& plane : silhouette) {
                    EXPECT_TRUE(planes.contains(plane)) << "part " << i << (isReversed ? " reversed" : "");
                }
            }
        }
    }
}

TEST(MillSweep, AMoveAndTheNextShareTheFacetsOfTheToolBetween)
{
    RandomWays ways(23);
    for (const MillTool& tool : Tools()) {
        for (int i = 0; i < 50; ++i) {
            const MillVector a = ways.Place(4);
            const MillVector b = ways.Place(4);
            const MillVector c = ways.Place(4);
            const auto first = PlanesOf(MillSweep(tool, a, b));
            const auto second = PlanesOf(MillSweep(tool, b, c));
            for (const MillTool::Facet& f : tool.GetFacets()) {
                const bool isAtEnd = MillDot(f.m_Normal, b - a) >= 0;
                const bool isAtStart = MillDot(f.m_Normal, c - b) <= 0;
                if (!isAtEnd || !isAtStart) {
                    continue;
                }
                const auto at =
                    Bits({static_cast<double>(f.m_Normal.m_X), static_cast<double>(f.m_Normal.m_Y),
                          static_cast<double>(f.m_Normal.m_Z),
                          static_cast<double>(-(f.m_Height + MillDot(f.m_Normal, b)))});
                EXPECT_TRUE(first.contains(at));
                EXPECT_TRUE(second.contains(at));
            }
        }
    }
}

TEST(MillSweep, WallsAlongTheAxesAreUnitPlanes)
{
    const MillTool tool = MillMakeTool({MillShapeKind::Flat, 6.0, 0.0}, 16);
    const auto planes = PlanesOf(MillSweep(tool, AtMm(10, 5, -2), AtMm(30, 5, -2)));
    EXPECT_TRUE(planes.contains(Bits({0.0, 1.0, 0.0, -8'000'000.0})));
    EXPECT_TRUE(planes.contains(Bits({0.0, -1.0, 0.0, 2'000'000.0})));
    EXPECT_TRUE(planes.contains(Bits({1.0, 0.0, 0.0, -33'000'000.0})));
    EXPECT_TRUE(planes.contains(Bits({-1.0, 0.0, 0.0, 7'000'000.0})));
    EXPECT_EQ(planes.size(), 17U) << "an axis-parallel move needs no more planes than the tool";
}

TEST(MillSweep, AnUprightMoveIsTheToolAtItsLowestPlace)
{
    for (const MillTool& tool : Tools()) {
        const auto lowest = PlanesOf(MillSweep(tool, AtMm(1.1, 2.2, -3.3), AtMm(1.1, 2.2, -3.3)));
        EXPECT_EQ(lowest.size(), tool.GetFacets().size());
        EXPECT_EQ(PlanesOf(MillSweep(tool, AtMm(1.1, 2.2, -3.3), AtMm(1.1, 2.2, 50.0))), lowest);
        EXPECT_EQ(PlanesOf(MillSweep(tool, AtMm(1.1, 2.2, 50.0), AtMm(1.1, 2.2, -3.3))), lowest);
    }
}

TEST(MillSweep, HasNoNegativeZeros)
{
    RandomWays ways(5);
    for (const MillTool& tool : Tools()) {
        for (int i = 0; i < 50; ++i) {
            const MillVector a = ways.Place(2);
            for (const HalfSpace& h : MillSweep(tool, a, ways.Next(a, 2)).m_HalfSpaces) {
                for (const double value : h) {
                    EXPECT_FALSE(value == 0.0 && std::signbit(value));
                }
            }
        }
    }
    const MillTool flat = MillMakeTool({MillShapeKind::Flat, 6.0, 0.0}, 16);
    for (const HalfSpace& h : MillSweep(flat, AtMm(3, 3, 0), AtMm(-3, 3, 0)).m_HalfSpaces) {
        EXPECT_FALSE(h[3] == 0.0 && std::signbit(h[3]));
    }
}

TEST(MillSweep, LongNormalsStillContainTheSweptTool)
{
    // The longest edges and ways: normals beyond the precision of a double.
    const MillTool tool = MillMakeTool({MillShapeKind::Ball, 800.0, 0.0}, 32);
    const MillVector start{-15'999'999'999, 3, 7};
    const MillVector end{15'999'999'998, 15'999'999'997, -15'999'999'991};
    const ZULMRSConvexTool solid = MillSweep(tool, start, end);
    bool isLong = false;
    for (const HalfSpace& h : solid.m_HalfSpaces) {
        isLong = isLong || std::fabs(h[0]) > 0x1p53 || std::fabs(h[1]) > 0x1p53;
    }
    EXPECT_TRUE(isLong);
    for (const MillVector& v : tool.GetVertices()) {
        EXPECT_LE(Excess(solid, v + start), 1e-4);
        EXPECT_LE(Excess(solid, v + end), 1e-4);
    }
}

}  // namespace
