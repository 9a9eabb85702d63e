#include "MillTool.h"

#include <cmath>
#include <map>
#include <numbers>

#include <gtest/gtest.h>

#include "MillError.h"
#include "MillTestHelp.h"

namespace
{

constexpr double kPi = std::numbers::pi;

std::vector<MillShape> Shapes()
{
    std::vector<MillShape> shapes;
    for (const double diameter : {0.2, 1.0, 1.5875, 3.175, 6.0, 12.7, 25.4001, 80.0}) {
        shapes.push_back({MillShapeKind::Flat, diameter, 0.0});
        shapes.push_back({MillShapeKind::Ball, diameter, 0.0});
        for (const double angle : {10.0, 60.0, 90.0, 118.0, 170.0}) {
            shapes.push_back({MillShapeKind::Vee, diameter, angle});
        }
    }
    return shapes;
}

constexpr int kSides[] = {3, 5, 6, 8, 12, 16, 20, 32};

template <class Check>
void ForAllTools(const Check& check)
{
    for (const MillShape& shape : Shapes()) {
        for (const int sides : kSides) {
            SCOPED_TRACE(shape.GetText() + " with " + std::to_string(sides) + " sides");
            check(shape, sides, MillMakeTool(shape, sides));
        }
    }
}

double Length(const MillNormal& n)
{
    return std::hypot(static_cast<double>(n.m_X), static_cast<double>(n.m_Y), static_cast<double>(n.m_Z));
}

/// The facet's distance from a place of the axis, millimetres.
double DistanceFromAxis(const MillTool::Facet& facet, double z)
{
    const double height = static_cast<double>(facet.m_Height) / kMillNanometresPerMm;
    return (height - static_cast<double>(facet.m_Normal.m_Z) * z) / Length(facet.m_Normal);
}

TEST(MillTool, IsConvexWithEveryFacetThroughItsCorners)
{
    ForAllTools([](const MillShape&, int sides, const MillTool& tool) {
        for (const MillTool::Facet& facet : tool.GetFacets()) {
            std::size_t touching = 0;
            for (const MillVector& v : tool.GetVertices()) {
                const MillWide reached = MillDot(facet.m_Normal, v);
                ASSERT_TRUE(reached <= facet.m_Height);
                touching += reached == facet.m_Height ? 1 : 0;
            }
            // A wall has two corners (its upper ones are missing), a tip's facet three, the others four, the
            // lowest facet all.
            const bool isWall = facet.m_Normal.m_Z == 0;
            const bool isBottom = facet.m_Normal == MillNormal{0, 0, -1};
            const auto expected = static_cast<std::size_t>(isWall ? 2 : isBottom ? sides : 3);
            EXPECT_GE(touching, expected);
            EXPECT_LE(touching, std::max<std::size_t>(expected, 4));
            EXPECT_TRUE(facet.m_Normal.m_Z <= 0);
            EXPECT_TRUE(MillPrimitive(facet.m_Normal) == facet.m_Normal);
        }
    });
}

TEST(MillTool, HasEdgesBetweenTheFacetsThatTheyName)
{
    ForAllTools([](const MillShape&, int, const MillTool& tool) {
        std::map<std::size_t, int> edgesOfFacet;
        for (const MillTool::Edge& edge : tool.GetEdges()) {
            const MillTool::Facet& left = tool.GetFacets()[edge.m_Left];
            const MillTool::Facet& right = tool.GetFacets()[edge.m_Right];
            for (const MillTool::Facet* facet : {&left, &right}) {
                EXPECT_TRUE(MillDot(facet->m_Normal, edge.m_Point) == facet->m_Height);
                EXPECT_TRUE(MillDot(facet->m_Normal, edge.m_Direction) == 0);
            }
            const auto narrow = [](const MillNormal& n) {
                return MillVector{static_cast<std::int64_t>(n.m_X), static_cast<std::int64_t>(n.m_Y),
                                  static_cast<std::int64_t>(n.m_Z)};
            };
            const MillNormal across = MillCross(narrow(left.m_Normal), narrow(right.m_Normal));
            EXPECT_TRUE(MillDot(across, edge.m_Direction) > 0) << "strictly convex, and left is left";
            ++edgesOfFacet[edge.m_Left];
            ++edgesOfFacet[edge.m_Right];
        }
        EXPECT_EQ(edgesOfFacet.size(), tool.GetFacets().size());
        for (const auto& [facet, edges] : edgesOfFacet) {
            EXPECT_GE(edges, 3);
        }
        // Euler, with the missing upper end as one facet more and its corners and edges.
        const auto count = [](std::size_t n) { return static_cast<long>(n); };
        const long sides = std::count_if(tool.GetFacets().begin(), tool.GetFacets().end(),
                                         [](const MillTool::Facet& f) { return f.m_Normal.m_Z == 0; });
        EXPECT_EQ(count(tool.GetVertices().size()) + sides - (count(tool.GetEdges().size()) + sides) +
                      count(tool.GetFacets().size()) + 1,
                  2);
    });
}

TEST(MillTool, ContainsTheRoundCutter)
{
    ForAllTools([](const MillShape& shape, int, const MillTool& tool) {
        const double radius = shape.m_Diameter / 2.0;
        // Half a nanometre for the diameter's own rounding; a V tool's height is rounded by less than a
        // two-hundredth of the radius.
        constexpr double kSlack = 0.6e-6;
        for (const MillTool::Facet& facet : tool.GetFacets()) {
            if (facet.m_Normal.m_Z == 0) {
                EXPECT_GE(DistanceFromAxis(facet, 0.0), radius - kSlack);
            } else if (shape.m_Kind == MillShapeKind::Ball) {
                EXPECT_GE(DistanceFromAxis(facet, radius), radius - kSlack);
            } else if (shape.m_Kind == MillShapeKind::Vee) {
                EXPECT_TRUE(facet.m_Height == 0) << "through the tip";
            }
        }
    });
}

TEST(MillTool, IsNoWiderThanItsSidesAsk)
{
    ForAllTools([](const MillShape& shape, int sides, const MillTool& tool) {
        const double radius = shape.m_Diameter / 2.0;
        const double corner = radius / std::cos(kPi / sides);
        for (const MillVector& v : tool.GetVertices()) {
            EXPECT_LE(std::hypot(MillToMm(v.m_X), MillToMm(v.m_Y)), corner * 1.006);
        }
        EXPECT_GE(MillToMm(tool.GetReach()), corner * std::cos(kPi / sides) * 0.999);
    });
}

TEST(MillTool, CutsExactlyItsWidthAlongTheAxes)
{
    for (const char* text : {"flat:6", "flat:3.175", "ball:3", "ball:12.7", "vee:6:60", "flat:0.8"}) {
        const MillShape shape = MillParseShape(text, "--tool");
        for (const int sides : {8, 12, 16, 32}) {
            const MillTool tool = MillMakeTool(shape, sides);
            std::int64_t radius = 0;
            ASSERT_TRUE(MillSnap(shape.m_Diameter / 2.0, radius));
            EXPECT_EQ(tool.GetReach(), radius);
            for (const MillNormal& axis :
                 {MillNormal{1, 0, 0}, MillNormal{0, 1, 0}, MillNormal{-1, 0, 0}, MillNormal{0, -1, 0}}) {
                const auto found =
                    std::find_if(tool.GetFacets().begin(), tool.GetFacets().end(),
                                 [&axis](const auto& facet) { return facet.m_Normal == axis; });
                ASSERT_NE(found, tool.GetFacets().end()) << text;
                EXPECT_TRUE(found->m_Height == radius) << text;
            }
        }
    }
}

TEST(MillTool, InscribedFlatToolLiesWithinTheCircle)
{
    for (const double diameter : {0.2, 1.0, 3.175, 6.0, 25.4001}) {
        for (const int sides : kSides) {
            const MillTool tool =
                MillMakeTool({MillShapeKind::Flat, diameter, 0.0}, sides, MillSidesKind::Inscribed);
            double widest = 0.0;
            for (const MillVector& v : tool.GetVertices()) {
                widest = std::max(widest, std::hypot(MillToMm(v.m_X), MillToMm(v.m_Y)));
            }
            EXPECT_LE(widest, diameter / 2.0 + 0.6e-6);
            EXPECT_GE(widest, diameter / 2.0 * 0.994);
        }
    }
}

TEST(MillTool, FlatToolHasOneBottomAtTheTip)
{
    const MillTool tool = MillMakeTool({MillShapeKind::Flat, 6.0, 0.0}, 16);
    EXPECT_EQ(tool.GetFacets().size(), 17U);
    EXPECT_TRUE((tool.GetFacets()[0].m_Normal == MillNormal{0, 0, -1}));
    EXPECT_TRUE(tool.GetFacets()[0].m_Height == 0);
    for (const MillVector& v : tool.GetVertices()) {
        EXPECT_EQ(v.m_Z, 0);
    }
}

TEST(MillTool, BallTouchesTheTipAndItsShankRisesFromBelowTheCentre)
{
    const MillTool tool = MillMakeTool({MillShapeKind::Ball, 6.0, 0.0}, 16);
    // The lowest facet, three levels up to the shank, and the shank.
    EXPECT_EQ(tool.GetFacets().size(), 1U + 4U * 16U);
    EXPECT_TRUE((tool.GetFacets()[0].m_Normal == MillNormal{0, 0, -1}));
    EXPECT_TRUE(tool.GetFacets()[0].m_Height == 0);
    std::int64_t highest = 0;
    for (const MillVector& v : tool.GetVertices()) {
        highest = std::max(highest, v.m_Z);
    }
    EXPECT_NEAR(MillToMm(highest), 3.0 - 3.0 * std::tan(kPi / 16.0), 0.01);
}

TEST(MillTool, VeeToolHasTheAngleAndHeightOfItsCone)
{
    for (const double angle : {10.0, 60.0, 90.0, 118.0, 170.0}) {
        const MillTool tool = MillMakeTool({MillShapeKind::Vee, 6.0, angle}, 16);
        std::int64_t highest = 0;
        for (const MillVector& v : tool.GetVertices()) {
            highest = std::max(highest, v.m_Z);
        }
        EXPECT_NEAR(MillToMm(highest), 3.0 / std::tan(angle * kPi / 360.0), 3.0 / 400.0);
        EXPECT_TRUE((tool.GetVertices().front() == MillVector{0, 0, 0}));
    }
}

/// The area of a tool's cross-section at a height, by Green's formula on the corners where it cuts the
/// facets.
TEST(MillTool, VolumeOfTheBallIsThatOfTheSphereAndALittleMore)
{
    for (const int sides : {16, 32}) {
        const MillTool tool = MillMakeTool({MillShapeKind::Ball, 6.0, 0.0}, sides);
        ZULVoxelMill count({-4.0, -4.0, -3.0}, {4.0, 4.0, 0.0}, 250'000);
        count.Sweep(MillVoxelTool(tool), {0.0, 0.0, -3.0}, {0.0, 0.0, 5.0});
        const double removed = 8.0 * 8.0 * 3.0 - count.GetVolume();
        const double halfSphere = 2.0 / 3.0 * kPi * 27.0;
        EXPECT_GT(removed, halfSphere - count.GetTolerance());
        // The sagitta of the circumscribed facets.
        EXPECT_LT(removed, halfSphere * (sides == 16 ? 1.04 : 1.012) + count.GetTolerance());
    }
}

TEST(MillTool, RefusesToolsTooSmallForTheirSides)
{
    const auto complaint = [](const MillShape& shape, int sides) {
        return MillComplaint<MillError>([&] { MillMakeTool(shape, sides); });
    };
    EXPECT_EQ(complaint({MillShapeKind::Ball, 0.0002, 0.0}, 64),
              "--tool: 'ball:0.0002': too small for 64 sides");
    EXPECT_EQ(complaint({MillShapeKind::Flat, 1e-7, 0.0}, 16),
              "--tool: 'flat:1e-07': too small for 16 sides");
    EXPECT_EQ(complaint({MillShapeKind::Flat, 0.0002, 0.0}, 256),
              "--tool: 'flat:0.0002': too small for 256 sides");
    EXPECT_EQ(complaint({MillShapeKind::Ball, 0.1, 0.0}, 16), "nothing");
    EXPECT_EQ(complaint({MillShapeKind::Flat, 1.0, 0.0}, 256), "nothing");
    EXPECT_EQ(complaint({MillShapeKind::Flat, 1000.0, 0.0}, 256), "nothing");
}

}  // namespace
