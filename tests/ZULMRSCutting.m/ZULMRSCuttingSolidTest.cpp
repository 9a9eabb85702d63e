#include "ZULMRSCuttingSolid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <utility>

#include "ZULKLOOutput.h"
#include "ZULMRSCellCheck.h"
#include "ZULTestTools.h"
#include "ZULTestVolume.h"

namespace
{
using ZULTest::AxisBox;
using ZULTest::BoxTool;
using ZULTest::ExactVolume;
using ZULTest::LatticeTool;
using ZULTest::Random;
using ZULTest::RandomTool;

/// Keeps the factories' lines out of the test's output.
class ZULMRSCuttingSolidTest : public testing::Test
{
protected:
    ZULMRSCuttingSolidTest() { ZULKLOOutput::Redirect(&m_Lines); }
    ~ZULMRSCuttingSolidTest() override { ZULKLOOutput::Redirect(nullptr); }

    std::ostringstream m_Lines;
};

void ExpectValid(const ZULMRSCuttingSolid& solid)
{
    const ZULMRSCellCheckReport report = ZULMRSCheckCells(solid.GetCells());
    for (const std::string& fault : report.m_Faults) {
        ADD_FAILURE() << fault;
    }
}

void ExpectClosed(const ZULMRSCuttingSolid& solid)
{
    const ZULMRSSurfaceMesh mesh = solid.ExtractSurface();
    EXPECT_TRUE(mesh.IsClosed());
    EXPECT_NEAR(mesh.GetVolume(), solid.GetVolume(), 1e-9 * (1.0 + std::fabs(solid.GetVolume())));
}

mpq_class VolumeOf(const ZULMRSCuttingSolid& solid)
{
    return ExactVolume(solid.GetCells());
}

TEST_F(ZULMRSCuttingSolidTest, AStockIsOneCell)
{
    const ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 2, 3, 4));
    EXPECT_EQ(solid.GetNbCells(), 1U);
    EXPECT_EQ(solid.GetNbSurfaceFaces(), 6U);
    EXPECT_EQ(VolumeOf(solid), 24);
    EXPECT_DOUBLE_EQ(solid.GetVolume(), 24.0);
    ExpectValid(solid);
    ExpectClosed(solid);
}

TEST_F(ZULMRSCuttingSolidTest, AStockWithoutVolumeIsEmpty)
{
    ZULMRSCuttingSolid flat(AxisBox(0, 0, 0, 2, 3, 0));
    EXPECT_EQ(flat.GetNbCells(), 0U);
    EXPECT_FALSE(flat.Subtract(BoxTool(0, 0, 0, 1, 1, 1)));
    EXPECT_EQ(flat.Split({1, 0, 0, -1}), 0U);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(ZULMRSCuttingSolid(AxisBox(0, 0, 0, nan, 3, 4)).GetNbCells(), 0U);
}

TEST_F(ZULMRSCuttingSolidTest, AStockMayBeTurned)
{
    const double s = std::sqrt(0.5);
    ZULMRSCuttingSolid solid(
        ZULMathOBB(ZULMathOBBBase({s, s, 0}, {-s, s, 0}, {0, 0, 1}, {4, 2, 1}, {1, 2, 3})));
    const mpq_class whole = VolumeOf(solid);
    EXPECT_NEAR(whole.get_d(), 64.0, 1e-9);
    EXPECT_TRUE(solid.Subtract(BoxTool(0, 1, 2.5, 2, 3, 3.5)));
    EXPECT_EQ(mpq_class(whole - VolumeOf(solid)), 4);
    ExpectValid(solid);
    ExpectClosed(solid);
}

struct SplitCase {
    const char* m_Name;
    std::array<double, 4> m_Equation;
    std::size_t m_NbSplit;
};

class ZULMRSCuttingSolidSplit : public ZULMRSCuttingSolidTest, public testing::WithParamInterface<SplitCase>
{
};

TEST_P(ZULMRSCuttingSolidSplit, IsExactInEveryPosition)
{
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 2, 2, 2));
    EXPECT_EQ(solid.Split(GetParam().m_Equation), GetParam().m_NbSplit);
    EXPECT_EQ(solid.GetNbCells(), 1U + GetParam().m_NbSplit);
    EXPECT_EQ(VolumeOf(solid), 8);
    ExpectValid(solid);
    ExpectClosed(solid);
}

INSTANTIATE_TEST_SUITE_P(
    Positions, ZULMRSCuttingSolidSplit,
    testing::Values(
        SplitCase{"General", {1, 2, 3, -5}, 1}, SplitCase{"ThroughOneVertex", {1, 1, 3, -4}, 1},
        SplitCase{"ThroughTwoEdges", {1, 1, 0, -2}, 1}, SplitCase{"ThroughThreeVertices", {1, 1, 1, -2}, 1},
        SplitCase{"Parallel", {0, 0, 1, -1}, 1}, SplitCase{"OntoAFace", {0, 0, 1, -2}, 0},
        SplitCase{"OntoAFaceTurned", {0, 0, -1, 2}, 0}, SplitCase{"OntoAFaceScaled", {0, 0, -3, 6}, 0},
        SplitCase{"TouchingAVertex", {1, 1, 1, -6}, 0}, SplitCase{"TouchingAnEdge", {1, 1, 0, -4}, 0},
        SplitCase{"OneUlpInside", {1, 1, 1, -0x1.7ffffffffffffp+2}, 1},
        SplitCase{"OneUlpOutside", {1, 1, 1, -0x1.8000000000001p+2}, 0},
        SplitCase{"Missing", {1, 1, 1, -7}, 0}, SplitCase{"Refused", {0, 0, 0, 1}, 0}),
    [](const auto& info) { return std::string(info.param.m_Name); });

TEST_F(ZULMRSCuttingSolidTest, SplittingKeepsNeighboursConforming)
{
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 8, 8, 8));
    Random random(1);
    std::size_t nbCells = 1;
    for (int index = 0; index < 30; ++index) {
        nbCells += solid.Split({static_cast<double>(random.Integer(-3, 3)),
                                static_cast<double>(random.Integer(-3, 3)), 1.0,
                                static_cast<double>(random.Integer(-12, 4))});
        EXPECT_EQ(solid.GetNbCells(), nbCells);
    }
    EXPECT_GT(nbCells, 40U);
    EXPECT_EQ(VolumeOf(solid), 512);
    ExpectValid(solid);
    // Only what was the surface of the stock shows.
    EXPECT_EQ(solid.ExtractSurface().m_Triangles.size(), 12U);
}

TEST_F(ZULMRSCuttingSolidTest, SubtractingABoxLeavesTheRest)
{
    struct Case {
        ZULMRSConvexTool m_Tool;
        int m_Removed;
    };
    const Case cases[] = {
        {BoxTool(1, 1, 1, 2, 2, 2), 1},     {BoxTool(0, 0, 0, 1, 1, 1), 1},
        {BoxTool(-1, -1, 2, 5, 5, 9), 32},  {BoxTool(1, 1, -1, 3, 3, 9), 16},
        {BoxTool(-9, -9, -9, 9, 9, 9), 64}, {BoxTool(4, 0, 0, 5, 4, 4), 0},
        {BoxTool(-1, -1, -1, 0, 0, 0), 0},  {BoxTool(6, 6, 6, 7, 7, 7), 0},
        {BoxTool(3, 3, 3, 2, 2, 2), 0},     {BoxTool(-1, -1, 3, 5, 5, 4), 16},
        {ZULMRSConvexTool{}, 64},
    };
    for (const Case& item : cases) {
        ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 4, 4, 4));
        EXPECT_EQ(solid.Subtract(item.m_Tool), item.m_Removed != 0);
        EXPECT_EQ(VolumeOf(solid), 64 - item.m_Removed);
        ExpectValid(solid);
        ExpectClosed(solid);
    }
}

TEST_F(ZULMRSCuttingSolidTest, WhatIsInsideAndWhatIsRemovedAddUp)
{
    Random random(7);
    for (int round = 0; round < 24; ++round) {
        const bool isLattice = round % 2 == 0;
        ZULMRSCuttingOptions options;
        options.m_GriddingTolerance = round % 4 < 2 ? 0.0 : 1e-4;
        options.m_LeafSize = round % 3 == 0 ? 1.25 : 0.0;
        options.m_MaxCellsPerLeaf = round % 5 == 0 ? 2 : 24;
        ZULMRSCuttingSolid removed(AxisBox(0, 0, 0, 10, 10, 10), options);
        const mpq_class whole = VolumeOf(removed);
        mpq_class left = whole;
        for (int index = 0; index < 6; ++index) {
            const ZULMRSConvexTool tool = isLattice ? LatticeTool(random) : RandomTool(random, 3.0, 5);
            ZULMRSCuttingSolid inside(AxisBox(0, 0, 0, 10, 10, 10), options);
            inside.KeepInside(tool);
            ZULMRSCuttingSolid outside(AxisBox(0, 0, 0, 10, 10, 10), options);
            outside.Subtract(tool);
            ASSERT_EQ(mpq_class(VolumeOf(inside) + VolumeOf(outside)), whole)
                << "round " << round << " tool " << index;

            const bool hasChanged = removed.Subtract(tool);
            const mpq_class now = VolumeOf(removed);
            ASSERT_EQ(hasChanged, now != left);
            left = now;
        }
        ExpectValid(removed);
        ExpectClosed(removed);
    }
}

TEST_F(ZULMRSCuttingSolidTest, SubtractingTheSameToolTwiceChangesNothing)
{
    Random random(3);
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10));
    for (int index = 0; index < 20; ++index) {
        const ZULMRSConvexTool tool = index % 2 == 0 ? LatticeTool(random) : RandomTool(random, 2.0, 6);
        solid.Subtract(tool);
        const std::size_t nbCells = solid.GetNbCells();
        const mpq_class volume = VolumeOf(solid);
        EXPECT_FALSE(solid.Subtract(tool));
        EXPECT_EQ(solid.GetNbCells(), nbCells);
        EXPECT_EQ(VolumeOf(solid), volume);
    }
    ExpectValid(solid);
}

TEST_F(ZULMRSCuttingSolidTest, TheOrderOfDisjointToolsDoesNotMatter)
{
    std::vector<ZULMRSConvexTool> tools;
    Random random(11);
    for (int x = 0; x < 3; ++x) {
        for (int y = 0; y < 3; ++y) {
            ZULMRSConvexTool tool = BoxTool(3 * x + 0.5, 3 * y + 0.5, 4, 3 * x + 2.5, 3 * y + 2.5, 11);
            tool.m_HalfSpaces.push_back({random.Between(-1, 1), random.Between(-1, 1), -1, 5});
            tools.push_back(tool);
        }
    }
    ZULMRSCuttingSolid forwards(AxisBox(0, 0, 0, 9, 9, 9));
    ZULMRSCuttingSolid backwards(AxisBox(0, 0, 0, 9, 9, 9));
    for (std::size_t index = 0; index < tools.size(); ++index) {
        forwards.Subtract(tools[index]);
        backwards.Subtract(tools[tools.size() - 1 - index]);
    }
    EXPECT_EQ(VolumeOf(forwards), VolumeOf(backwards));
    // The same set, not only the same volume: neither has anything outside the other.
    for (const ZULMRSConvexTool& tool : tools) {
        EXPECT_FALSE(forwards.Subtract(tool));
        EXPECT_FALSE(backwards.Subtract(tool));
    }
}

TEST_F(ZULMRSCuttingSolidTest, AHollowSolidHasTwoSurfaces)
{
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 4, 4, 4));
    EXPECT_TRUE(solid.Subtract(BoxTool(1, 1, 1, 3, 3, 3)));
    ExpectValid(solid);
    ExpectClosed(solid);
    EXPECT_EQ(VolumeOf(solid), 56);
}

TEST_F(ZULMRSCuttingSolidTest, CellsThatTouchInAnEdgeOnlyAreBothClosed)
{
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 2, 2, 2));
    EXPECT_TRUE(solid.Subtract(BoxTool(0, 0, -1, 1, 1, 3)));
    EXPECT_TRUE(solid.Subtract(BoxTool(1, 1, -1, 2, 2, 3)));
    EXPECT_TRUE(solid.Subtract(BoxTool(-1, -1, 1, 3, 0.5, 3)));
    ExpectValid(solid);
    ExpectClosed(solid);
    EXPECT_EQ(VolumeOf(solid), mpq_class(7, 2));
}

TEST_F(ZULMRSCuttingSolidTest, LeavesInsideAToolVanishAndOthersAreNotLookedAt)
{
    ZULMRSCuttingOptions options;
    options.m_LeafSize = 1.0;
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 16, 16, 16), options);
    EXPECT_TRUE(solid.Subtract(BoxTool(-1, -1, 8, 17, 17, 17)));
    // The tool's bottom is a wall of the division: nothing is left of its upper half, and the lower is not
    // refined.
    EXPECT_EQ(VolumeOf(solid), 16 * 16 * 8);
    const std::size_t nbCells = solid.GetNbCells();
    EXPECT_FALSE(solid.Subtract(BoxTool(-1, -1, 9, 17, 17, 17)));
    EXPECT_EQ(solid.GetNbCells(), nbCells);
    EXPECT_EQ(solid.ExtractSurface().m_Triangles.size(), 12U);
}

TEST_F(ZULMRSCuttingSolidTest, UnusableHalfSpacesAreLeftOut)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    ZULMRSConvexTool tool = BoxTool(1, 1, 1, 2, 2, 2);
    tool.m_HalfSpaces.push_back({0, 0, 0, 1});
    tool.m_HalfSpaces.push_back({nan, 0, 1, 1});
    tool.m_HalfSpaces.push_back({0, 0, 1, infinity});
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 4, 4, 4));
    EXPECT_TRUE(solid.Subtract(tool));
    EXPECT_EQ(VolumeOf(solid), 63);
}

TEST_F(ZULMRSCuttingSolidTest, EverythingIsFreedWhenNothingIsLeft)
{
    Random random(5);
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10));
    for (int index = 0; index < 20; ++index) {
        solid.Subtract(RandomTool(random, 2.0, 6));
    }
    solid.Compact();
    const std::uint64_t used = solid.GetFactory().Size();
    EXPECT_GT(used, 0U);
    solid.KeepInside({{{1, 0, 0, 1000}}});
    EXPECT_EQ(solid.GetNbCells(), 0U);
    EXPECT_EQ(solid.GetNbSurfaceFaces(), 0U);
    solid.Compact();
    EXPECT_EQ(solid.GetFactory().Size(), 0U);
    EXPECT_TRUE(solid.ExtractSurface().m_Triangles.empty());
}

ZULMRSCuttingOptions LeavesOf(double size)
{
    ZULMRSCuttingOptions options;
    options.m_LeafSize = size;
    options.m_MaxCellsPerLeaf = 1000;
    return options;
}

TEST_F(ZULMRSCuttingSolidTest, WhatIsConvexAgainIsOneCellAgain)
{
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 4, 4, 4), LeavesOf(100));
    solid.Subtract(BoxTool(1, 1, 2, 3, 3, 5));
    EXPECT_EQ(solid.GetNbCells(), 5U);
    ExpectValid(solid);
    solid.Subtract(BoxTool(-1, -1, 2, 5, 5, 5));
    EXPECT_EQ(solid.GetNbCells(), 1U);
    EXPECT_EQ(solid.GetNbSurfaceFaces(), 6U);
    for (const ZULMRSBSPPolyhedron* cell : solid.GetCells()) {
        for (const ZULMRSBSPPolygon* polygon : cell->GetPolygons()) {
            EXPECT_EQ(polygon->GetNbPoints(), 4U) << "a vertex that nothing needs is left";
        }
    }
    EXPECT_EQ(VolumeOf(solid), 32);
    ExpectValid(solid);
    ExpectClosed(solid);
}

TEST_F(ZULMRSCuttingSolidTest, CellsOfTwoLeavesStayApart)
{
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 4, 4, 4), LeavesOf(2));
    solid.Subtract(BoxTool(1, 1, 1, 3, 3, 5));
    solid.Subtract(BoxTool(-1, -1, 1, 5, 5, 5));
    EXPECT_EQ(VolumeOf(solid), 16);
    EXPECT_EQ(solid.GetNbCells(), 4U);
    ExpectValid(solid);
    ExpectClosed(solid);
}

// Many grooves over each other: whatever is cut up is put together again, and stays sound.
TEST_F(ZULMRSCuttingSolidTest, LayersOfGroovesLeaveFewCells)
{
    Random random(29);
    for (int round = 0; round < 8; ++round) {
        ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10), LeavesOf(100));
        for (int groove = 0; groove < 12; ++groove) {
            const double x = random.Between(0, 8);
            const double y = random.Between(0, 8);
            solid.Subtract(BoxTool(x, -1, random.Between(6, 9), x + 1.5, 11, 11));
            solid.Subtract(BoxTool(-1, y, random.Between(6, 9), 11, y + 1.5, 11));
            ExpectValid(solid);
        }
        solid.Subtract(BoxTool(-1, -1, 5, 11, 11, 11));
        EXPECT_EQ(VolumeOf(solid), 500);
        EXPECT_EQ(solid.GetNbCells(), 1U);
        ExpectValid(solid);
        EXPECT_EQ(solid.ExtractSurface().m_Triangles.size(), 12U);
    }
}

TEST_F(ZULMRSCuttingSolidTest, AToolThatMissesACellThatAllItsPlanesCrossSplitsNothing)
{
    const std::pair<const char*, ZULMRSConvexTool> cases[] = {
        {"wedge on an edge", {{{-2, 0, 1, 4}, {0.5, 0, -1, 2}}}},
        {"wedge beside an edge", {{{-2, 0, 1, 4.25}, {0.5, 0, -1, 2.25}}}},
        {"wedge on a face", {{{1, 0, -1, 2}, {-1, 0, -1, 6}}}},
        {"tip on a face", {{{1, 0, -1, 2}, {-0.5, 1, -1, 3}, {-0.5, -1, -1, 7}}}},
        {"tip over a face", {{{1, 0, -1, 2.5}, {-0.5, 1, -1, 3.5}, {-0.5, -1, -1, 7.5}}}},
        {"one ulp over a face", {{{1, 0, -1, 0x1.0000000000001p+1}, {-1, 0, -1, 6}}}},
    };
    for (const auto& [name, tool] : cases) {
        ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 4, 4, 4), LeavesOf(100));
        EXPECT_FALSE(solid.Subtract(tool)) << name;
        EXPECT_EQ(solid.GetNbCells(), 1U) << name;
        EXPECT_EQ(solid.GetNbSurfaceFaces(), 6U) << name;
        ExpectValid(solid);
    }
    ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 4, 4, 4), LeavesOf(100));
    EXPECT_TRUE(solid.Subtract({{{1, 0, -1, 0x1.fffffffffffffp+0}, {-1, 0, -1, 6}}})) << "one ulp inside";
    EXPECT_LT(VolumeOf(solid), 64);
    ExpectValid(solid);
}

TEST_F(ZULMRSCuttingSolidTest, TheSameOperationsGiveTheSameMesh)
{
    const auto cut = [] {
        Random random(9);
        ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10));
        for (int index = 0; index < 12; ++index) {
            solid.Subtract(RandomTool(random, 2.5, 6));
        }
        return solid.ExtractSurface();
    };
    const ZULMRSSurfaceMesh first = cut();
    const ZULMRSSurfaceMesh second = cut();
    EXPECT_EQ(first.m_Triangles, second.m_Triangles);
    EXPECT_EQ(first.m_Vertices, second.m_Vertices);
}
}  // namespace
