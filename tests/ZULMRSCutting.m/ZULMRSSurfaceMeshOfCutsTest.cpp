#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>
#include <vector>

#include "ZULKLOOutput.h"
#include "ZULMRSCuttingSolid.h"
#include "ZULTestMesh.h"
#include "ZULTestTools.h"

/// Surfaces of solids that the cutter made, whose walls and slivers are no neat grid.
namespace
{
using ZULTest::AxisBox;
using ZULTest::BoxTool;
using ZULTest::Random;

class ZULMRSSurfaceMeshOfCuts : public testing::Test
{
protected:
    ZULMRSSurfaceMeshOfCuts() { ZULKLOOutput::Redirect(&m_Lines); }
    ~ZULMRSSurfaceMeshOfCuts() override { ZULKLOOutput::Redirect(nullptr); }

    std::ostringstream m_Lines;
};

ZULMRSCuttingOptions LeavesOf(double size)
{
    ZULMRSCuttingOptions options;
    options.m_LeafSize = size;
    return options;
}

ZULMRSSurfaceMesh ExtractSound(const ZULMRSCuttingSolid& solid)
{
    return ZULTest::ExtractSound(solid.GetCells());
}

// A tool with a round outline, standing.
ZULMRSConvexTool Peg(double x, double y, double radius, double bottom, int nbSides)
{
    ZULMRSConvexTool tool{{{0, 0, -1, bottom}}};
    for (int i = 0; i < nbSides; ++i) {
        const double angle = 6.283185307179586 * i / nbSides;
        const double a = std::cos(angle);
        const double b = std::sin(angle);
        tool.m_HalfSpaces.push_back({a, b, 0, -(a * x + b * y + radius)});
    }
    return tool;
}

TEST_F(ZULMRSSurfaceMeshOfCuts, PlanesThatOnlySplitLeaveNoTrace)
{
    Random random(21);
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10));
    for (int i = 0; i < 12; ++i) {
        solid.Split(
            {random.Between(-1, 1), random.Between(-1, 1), random.Between(-1, 1), random.Between(-5, 5)});
    }
    ASSERT_GT(solid.GetNbCells(), 50U);
    const ZULMRSSurfaceMesh mesh = ExtractSound(solid);
    EXPECT_EQ(mesh.m_Vertices.size(), 8U);
    EXPECT_EQ(mesh.m_Triangles.size(), 12U);
}

TEST_F(ZULMRSSurfaceMeshOfCuts, WallsOfTheDivisionDoNotShow)
{
    Random random(22);
    for (int round = 0; round < 8; ++round) {
        ZULMRSCuttingSolid coarse(AxisBox(0, 0, 0, 10, 10, 10), LeavesOf(20));
        ZULMRSCuttingSolid fine(AxisBox(0, 0, 0, 10, 10, 10), LeavesOf(0.7));
        for (int i = 0; i < 4; ++i) {
            const ZULMRSConvexTool tool =
                i % 2 == 0 ? ZULTest::RandomTool(random, 3.0, 6)
                           : Peg(random.Between(1, 9), random.Between(1, 9), 1.5, random.Between(4, 9), 12);
            coarse.Subtract(tool);
            fine.Subtract(tool);
        }
        const ZULMRSSurfaceMesh expected = ExtractSound(coarse);
        const ZULMRSSurfaceMesh mesh = ExtractSound(fine);
        EXPECT_GT(fine.GetNbCells(), coarse.GetNbCells());
        EXPECT_EQ(mesh.m_Vertices.size(), expected.m_Vertices.size());
        EXPECT_EQ(mesh.m_Triangles.size(), expected.m_Triangles.size());
    }
}

TEST_F(ZULMRSSurfaceMeshOfCuts, APocketHasItsCornersOnly)
{
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10), LeavesOf(0.9));
    solid.Subtract(Peg(5, 5, 3, 4, 24));
    const ZULMRSSurfaceMesh mesh = ExtractSound(solid);
    EXPECT_EQ(mesh.m_Vertices.size(), 8U + 48U);
    EXPECT_EQ(mesh.m_Triangles.size(), 2U * (8U + 48U) - 4U);
}

TEST_F(ZULMRSSurfaceMeshOfCuts, CutsOnALatticeStayClosed)
{
    Random random(23);
    for (int round = 0; round < 20; ++round) {
        ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10), LeavesOf(round % 2 == 0 ? 2.5 : 20));
        for (int i = 0; i < 8; ++i) {
            solid.Subtract(ZULTest::LatticeTool(random));
        }
        ExtractSound(solid);
    }
}

// A wedge that stands on its edge in the middle of a plate, as wide as given.
ZULMRSSurfaceMesh CutWedgeOnPlate(double leafSize, double from, double to)
{
    ZULMRSCuttingSolid solid(AxisBox(-2, 0, -1, 2, 4, 2), LeavesOf(leafSize));
    solid.Subtract({{{0, 0, -1, 0}, {-1, 0, 1, 0}}});
    solid.Subtract({{{0, 0, -1, 0}, {1, 0, 1, 0}}});
    if (from > 0) {
        solid.Subtract({{{0, 0, -1, 0}, {0, 1, 0, -from}}});
    }
    if (to < 4) {
        solid.Subtract({{{0, 0, -1, 0}, {0, -1, 0, to}}});
    }
    return ExtractSound(solid);
}

TEST_F(ZULMRSSurfaceMeshOfCuts, AWedgeMayTouchAFaceAlongALine)
{
    for (const double leafSize : {20.0, 1.1, 0.6}) {
        const ZULMRSSurfaceMesh whole = CutWedgeOnPlate(leafSize, 0, 4);
        EXPECT_EQ(ZULTest::CountMaxUses(whole), 4U);
        // The plate's 8 corners, the wedge's 6.
        EXPECT_EQ(whole.m_Vertices.size(), 14U);
        const ZULMRSSurfaceMesh part = CutWedgeOnPlate(leafSize, 1, 3);
        EXPECT_FALSE(part.m_Triangles.empty());
    }
}

// A flat prism on the triangle (0, 0), (4, 0), (0, 4), which a box above it touches along part of one side.
ZULMRSSurfaceMesh CutTouchedPrism(const ZULMRSConvexTool& box)
{
    ZULMRSCuttingSolid solid(AxisBox(-4, -4, 0, 8, 8, 2), LeavesOf(20));
    // The box first, while its vertices still belong to what becomes the prism too.
    for (const std::array<double, 4>& side : box.m_HalfSpaces) {
        solid.Subtract({{{0, 0, -1, 1}, {-side[0], -side[1], -side[2], -side[3]}}});
    }
    for (const std::array<double, 4>& side :
         {std::array<double, 4>{0, 1, 0, 0}, {1, 0, 0, 0}, {-1, -1, 0, 4}}) {
        solid.Subtract({{{0, 0, 1, -1}, side}});
    }
    return ZULTest::ExtractSolidTriangles(solid.GetCells());
}

TEST_F(ZULMRSSurfaceMeshOfCuts, AFaceKeepsTheVerticesThatTouchIt)
{
    for (const ZULMRSConvexTool& box :
         {BoxTool(1, -2, 1, 2, 0, 2), BoxTool(-2, 1, 1, 0, 2, 2),
          ZULMRSConvexTool{{{-1, -1, 0, 4}, {1, 1, 0, -6}, {1, -1, 0, -1}, {-1, 1, 0, -1}}}}) {
        const ZULMRSSurfaceMesh mesh = CutTouchedPrism(box);
        // 6 and 8 corners, two of which the prism has between its own.
        EXPECT_EQ(mesh.m_Vertices.size(), 14U);
        EXPECT_EQ(mesh.m_Triangles.size(), (2U * 8U - 4U) + (2U * 8U - 4U));
        EXPECT_EQ(ZULTest::CountMaxUses(mesh), 4U);
    }
}

TEST_F(ZULMRSSurfaceMeshOfCuts, ATipMayTouchAnEdge)
{
    // Half a pyramid that stands on its tip, or hangs from it, in the middle of a plate's edge.
    for (const double up : {1.0, -1.0}) {
        ZULMRSCuttingSolid solid(AxisBox(-2, 0, std::min(-up, 2 * up), 2, 2, std::max(-up, 2 * up)),
                                 LeavesOf(20));
        for (const std::array<double, 2>& way : {std::array<double, 2>{1, 0}, {-1, 0}, {0, 1}}) {
            solid.Subtract({{{-way[0], -way[1], up, 0}, {0, 0, -up, 0}}});
        }
        const ZULMRSSurfaceMesh mesh = ZULTest::ExtractSolidTriangles(solid.GetCells());
        // The tip stays a vertex of the plate.
        EXPECT_EQ(mesh.m_Vertices.size(), 8U + 5U);
        EXPECT_EQ(mesh.m_Triangles.size(), (2U * 9U - 4U) + (2U * 5U - 4U));
    }
}

TEST_F(ZULMRSSurfaceMeshOfCuts, TheSameCutsGiveTheSameMesh)
{
    const auto cut = [] {
        Random random(24);
        ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10), LeavesOf(1.3));
        for (int i = 0; i < 6; ++i) {
            solid.Subtract(ZULTest::RandomTool(random, 2.5, 5));
        }
        return solid.ExtractSurface();
    };
    const ZULMRSSurfaceMesh first = cut();
    const std::vector<std::array<char, 48>> elsewhere(1000);
    const ZULMRSSurfaceMesh second = cut();
    EXPECT_EQ(first.m_Vertices, second.m_Vertices);
    EXPECT_EQ(first.m_Triangles, second.m_Triangles);
}
}  // namespace
