// Many tools at once: the same cells whatever the number of threads, and the solid that one tool after the
// other gives.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <sstream>
#include <tuple>
#include <vector>

#include "ZULKLOOutput.h"
#include "ZULMRSCellCheck.h"
#include "ZULMRSCuttingSolid.h"
#include "ZULTestTools.h"

namespace
{
using ZULTest::AxisBox;
using ZULTest::BoxTool;
using ZULTest::LatticeTool;
using ZULTest::Random;
using ZULTest::RandomTool;
using Tools = std::vector<ZULMRSConvexTool>;

/// A round-bottomed tool at a place of its tip, with eight sides and no upper end.
ZULMRSConvexTool Ball(double x, double y, double z, double radius)
{
    ZULMRSConvexTool tool;
    const auto add = [&](double a, double b, double c) {
        tool.m_HalfSpaces.push_back({a, b, c, -(a * x + b * y + c * (z + radius) + radius)});
    };
    add(0.0, 0.0, -1.0);
    for (int side = 0; side < 8; ++side) {
        const double angle = 0.785398 * side;
        add(std::cos(angle), std::sin(angle), 0.0);
        add(0.6 * std::cos(angle), 0.6 * std::sin(angle), -0.8);
    }
    return tool;
}

/// Rows of balls over a square of 10.
Tools Raster(double depth)
{
    Tools tools;
    for (int row = 0; row < 13; ++row) {
        for (int column = 0; column < 12; ++column) {
            const double x = 0.9 * (row % 2 == 0 ? column : 11 - column);
            const double y = 0.8 * row;
            tools.push_back(Ball(x, y, depth + 0.4 * std::sin(x + 0.7 * y), 1.0));
        }
    }
    return tools;
}

ZULMRSCuttingOptions WithThreads(std::size_t nbThreads, double leafSize = 2.5)
{
    ZULMRSCuttingOptions options;
    options.m_NbThreads = nbThreads;
    options.m_LeafSize = leafSize;
    options.m_MaxCellsPerLeaf = 8;
    return options;
}

class ZULMRSParallelCuttingTest : public testing::Test
{
protected:
    ZULMRSParallelCuttingTest() { ZULKLOOutput::Redirect(&m_Lines); }
    ~ZULMRSParallelCuttingTest() override { ZULKLOOutput::Redirect(nullptr); }

    std::ostringstream m_Lines;
};

/// Everything about the cells but their addresses: for every vertex of every face of every cell, in order,
/// the orientation of the face and of the edge, and the place.
using Signature = std::vector<std::tuple<int, int, std::array<double, 3>>>;

Signature SignatureOf(const ZULMRSCuttingSolid& solid)
{
    Signature signature;
    for (const ZULMRSBSPPolyhedron* cell : solid.GetCells()) {
        for (std::size_t face = 0; face < cell->GetNbPolygons(); ++face) {
            const ZULMRSBSPPolygon* polygon = cell->GetPolygon(face);
            for (std::size_t i = 0; i < polygon->GetNbPoints(); ++i) {
                signature.emplace_back(cell->GetPolygonOrientation(face),
                                       polygon->GetAllEdgeOrientations()[i],
                                       polygon->GetPoints()[i]->GetApproximatedXYZ());
            }
        }
    }
    return signature;
}

void ExpectValid(const ZULMRSCuttingSolid& solid)
{
    for (const std::string& fault : ZULMRSCheckCells(solid.GetCells()).m_Faults) {
        ADD_FAILURE() << fault;
    }
    EXPECT_TRUE(solid.ExtractSurface().IsClosed());
}

/// Cuts the tools in two batches.
std::vector<bool> CutAll(ZULMRSCuttingSolid& solid, const Tools& tools)
{
    const auto middle = tools.begin() + static_cast<std::ptrdiff_t>(tools.size() / 2);
    std::vector<bool> hasCut = solid.SubtractAll(Tools(tools.begin(), middle));
    const std::vector<bool> rest = solid.SubtractAll(Tools(middle, tools.end()));
    hasCut.insert(hasCut.end(), rest.begin(), rest.end());
    return hasCut;
}

void ExpectTheSameWithAnyThreads(const Tools& tools, double leafSize)
{
    ZULMRSCuttingSolid alone(AxisBox(0, 0, -5, 10, 10, 0), WithThreads(1, leafSize));
    const std::vector<bool> hasCut = CutAll(alone, tools);
    const Signature signature = SignatureOf(alone);
    const ZULMRSSurfaceMesh mesh = alone.ExtractSurface();
    ExpectValid(alone);
    for (const std::size_t nbThreads : {2U, 5U}) {
        ZULMRSCuttingSolid solid(AxisBox(0, 0, -5, 10, 10, 0), WithThreads(nbThreads, leafSize));
        EXPECT_EQ(CutAll(solid, tools), hasCut) << nbThreads;
        EXPECT_TRUE(SignatureOf(solid) == signature) << nbThreads;
        EXPECT_EQ(solid.GetVolume(), alone.GetVolume()) << nbThreads;
        const ZULMRSSurfaceMesh sameMesh = solid.ExtractSurface();
        EXPECT_EQ(sameMesh.m_Triangles, mesh.m_Triangles) << nbThreads;
        EXPECT_EQ(sameMesh.m_Vertices, mesh.m_Vertices) << nbThreads;
    }
}

TEST_F(ZULMRSParallelCuttingTest, ARasterGivesTheSameCellsWithAnyThreads)
{
    ExpectTheSameWithAnyThreads(Raster(-1.5), 2.5);
}

TEST_F(ZULMRSParallelCuttingTest, ToolsOfALatticeGiveTheSameCellsWithAnyThreads)
{
    Random random(31);
    Tools tools;
    for (int index = 0; index < 60; ++index) {
        ZULMRSConvexTool tool = LatticeTool(random);
        for (std::array<double, 4>& equation : tool.m_HalfSpaces) {
            equation[3] += 8.0 * equation[2];  // 8 down
        }
        tools.push_back(tool);
    }
    ExpectTheSameWithAnyThreads(tools, 1.25);
}

// A half-space and its opposite share a plane; which thread asks for it first must not show.
TEST_F(ZULMRSParallelCuttingTest, ToolsWithOppositePlanesGiveTheSameCellsWithAnyThreads)
{
    Tools tools;
    for (int index = 0; index < 40; ++index) {
        const double x = index % 20 * 0.5;
        tools.push_back(index % 2 == 0 ? BoxTool(x, 0.5 * (index % 7), -2, x + 0.5, 9, 1)
                                       : BoxTool(x, 1, -4, x + 0.5, 9 - 0.5 * (index % 5), -3));
    }
    ExpectTheSameWithAnyThreads(tools, 4.0);
}

TEST_F(ZULMRSParallelCuttingTest, GivesTheSolidOfOneToolAfterTheOther)
{
    for (unsigned int seed = 1; seed < 6; ++seed) {
        Random random(seed);
        ZULMRSCuttingSolid solid(AxisBox(0, 0, 0, 10, 10, 10), WithThreads(3, 1.25));
        ZULMRSCuttingSolid oneByOne(AxisBox(0, 0, 0, 10, 10, 10), WithThreads(1, 5.0));
        Tools tools;
        std::vector<bool> expected;
        for (int index = 0; index < 24; ++index) {
            tools.push_back(index % 2 == 0 ? RandomTool(random, 2.0, 6) : LatticeTool(random));
            if (index % 5 == 0) {
                tools.push_back(tools.front());  // changes nothing any more, but the first time
            }
        }
        for (const ZULMRSConvexTool& tool : tools) {
            expected.push_back(oneByOne.Subtract(tool));
        }
        EXPECT_EQ(solid.SubtractAll(tools), expected);
        EXPECT_NE(std::count(expected.begin(), expected.end(), false), 0);
        ExpectValid(solid);
        EXPECT_NEAR(solid.GetVolume(), oneByOne.GetVolume(), 1e-9);
        for (const ZULMRSConvexTool& tool : tools) {
            EXPECT_FALSE(solid.Subtract(tool));
        }
    }
}

TEST_F(ZULMRSParallelCuttingTest, OperationsMayBeMixed)
{
    ZULMRSCuttingSolid solid(AxisBox(0, 0, -5, 10, 10, 0), WithThreads(4));
    EXPECT_TRUE(solid.Subtract(BoxTool(4, 4, -6, 6, 6, 1)));
    solid.SubtractAll(Raster(-1.0));
    solid.Split({1, 1, 1, -6});
    EXPECT_TRUE(solid.KeepInside(BoxTool(1, 1, -4, 9, 9, 1)));
    solid.SubtractAll(Raster(-2.0));
    solid.Compact();
    ExpectValid(solid);
    for (const ZULMRSConvexTool& tool : Raster(-1.0)) {
        EXPECT_FALSE(solid.Subtract(tool));
    }
}

TEST_F(ZULMRSParallelCuttingTest, ToolsThatTakeEverythingLeaveNothing)
{
    ZULMRSCuttingSolid solid(AxisBox(0, 0, -5, 10, 10, 0), WithThreads(2));
    const std::vector<bool> hasCut = solid.SubtractAll({BoxTool(1, 1, -6, 2, 2, 1), {}, Raster(-1.0)[0]});
    EXPECT_EQ(hasCut, (std::vector<bool>{true, true, false}));
    EXPECT_EQ(solid.GetNbCells(), 0U);
    solid.Compact();
    EXPECT_EQ(solid.GetFactory().Size(), 0U);
}

TEST_F(ZULMRSParallelCuttingTest, NothingToDoIsDone)
{
    ZULMRSCuttingSolid solid(AxisBox(0, 0, -5, 10, 10, 0), WithThreads(2));
    EXPECT_TRUE(solid.SubtractAll({}).empty());
    EXPECT_EQ(solid.SubtractAll({BoxTool(20, 20, 20, 21, 21, 21)}), std::vector<bool>{false});
    EXPECT_EQ(solid.GetNbCells(), 1U);

    ZULMRSCuttingSolid empty(AxisBox(0, 0, 0, 0, 1, 1), WithThreads(2));
    EXPECT_EQ(empty.SubtractAll({BoxTool(0, 0, 0, 1, 1, 1)}), std::vector<bool>{false});
}
}  // namespace
