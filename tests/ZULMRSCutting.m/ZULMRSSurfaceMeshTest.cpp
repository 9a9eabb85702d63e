#include "ZULMRSSurfaceMesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <set>
#include <utility>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULTestBlocks.h"
#include "ZULTestMesh.h"

namespace
{
using ZULTest::Block;
using ZULTest::BlockCells;
using ZULTest::CountMaxUses;
using ZULTest::CountVerticesInsideEdges;
using ZULTest::DivideAtRandom;
using ZULTest::DivideWholly;
using ZULTest::ExtractSolidTriangles;
using ZULTest::NormalOf;
using ZULTest::OwnedPolyhedron;
using ZULTest::Random;

ZULMathOBB MakeBox(const ZULMathVector& extents, const ZULMathPoint& center)
{
    return ZULMathOBB(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, extents, center));
}

using DirectedEdge = std::pair<std::uint32_t, std::uint32_t>;

void ExpectSize(const ZULMRSSurfaceMesh& mesh, std::size_t nbVertices, std::size_t nbTriangles)
{
    EXPECT_EQ(mesh.m_Vertices.size(), nbVertices);
    EXPECT_EQ(mesh.m_Triangles.size(), nbTriangles);
}

// Vertices of an axis-parallel solid at which no three planes meet, though it does not touch itself there.
std::size_t CountNeedlessVertices(const ZULMRSSurfaceMesh& mesh)
{
    std::vector<std::set<std::size_t>> axes(mesh.m_Vertices.size());
    std::set<DirectedEdge> once;
    std::set<std::uint32_t> touched;
    for (const auto& triangle : mesh.m_Triangles) {
        const ZULMathVector normal = NormalOf(mesh, triangle);
        const std::size_t axis = normal.x != 0.0 ? 0 : normal.y != 0.0 ? 1 : 2;
        for (std::size_t i = 0; i < 3; ++i) {
            axes[triangle[i]].insert(axis);
            const DirectedEdge edge{triangle[i], triangle[(i + 1) % 3]};
            if (!once.insert(edge).second) {
                touched.insert({edge.first, edge.second});
            }
        }
    }
    std::size_t count = 0;
    for (std::uint32_t vertex = 0; vertex < axes.size(); ++vertex) {
        count += axes[vertex].size() < 3 && touched.count(vertex) == 0 ? 1 : 0;
    }
    return count;
}

const auto Everywhere = [](int, int, int) { return true; };

TEST(ZULMRSSurfaceMesh, ABoxHasTwelveTriangles)
{
    const OwnedPolyhedron box(new ZULMRSBSPPolyhedron(MakeBox({1, 2, 3}, {0.5, 0, 0}), nullptr));
    const ZULMRSSurfaceMesh mesh = ExtractSolidTriangles({box.get()});
    ExpectSize(mesh, 8, 12);
    EXPECT_DOUBLE_EQ(mesh.GetVolume(), 48.0);
    for (const auto& triangle : mesh.m_Triangles) {
        const ZULMathVector outwards = mesh.m_Vertices[triangle[0]] - ZULMathPoint(0.5, 0, 0);
        EXPECT_GT(NormalOf(mesh, triangle) * outwards, 0.0);
    }
}

TEST(ZULMRSSurfaceMesh, AFaceWhosePlaneFacesInwardsIsTurnedOver)
{
    ZULTest::LineCapture lines;
    const std::unique_ptr<ZULMRSBSPObjectFactory> factory(ZULMRSCreateObjectFactory(false));
    ASSERT_EQ(factory->SetGriddingTolerance(MakeBox({8, 8, 8}, {0, 0, 0}), 1e-3), ZULMRSNoError);
    bool isOpposite = false;
    const auto held = ZULTest::Own(factory->CreatePlane({0, 0, 1, 3}, isOpposite, 0));
    const OwnedPolyhedron box(new ZULMRSBSPPolyhedron(MakeBox({1, 2, 3}, {0, 0, 0}), factory.get()));
    ASSERT_EQ(static_cast<signed char>(box->GetPolygonOrientation(0)), -1);
    const ZULMRSSurfaceMesh mesh = ExtractSolidTriangles({box.get()});
    ExpectSize(mesh, 8, 12);
    EXPECT_NEAR(mesh.GetVolume(), 48.0, 1e-2);
}

TEST(ZULMRSSurfaceMesh, AGridMergesBackIntoTheBox)
{
    const BlockCells cells(DivideWholly({6, 5, 4}, Everywhere));
    ExpectSize(ExtractSolidTriangles(cells.GetCells()), 8, 12);
}

TEST(ZULMRSSurfaceMesh, RandomWallsLeaveNoTrace)
{
    Random random(1);
    for (int round = 0; round < 40; ++round) {
        const auto blocks = DivideAtRandom(random, {{0, 0, 0}, {8, 9, 7}}, 4 + round);
        const BlockCells straight(blocks);
        ExpectSize(ExtractSolidTriangles(straight.GetCells()), 8, 12);
        const BlockCells skew(blocks, BlockCells::SkewNormals);
        ExpectSize(ExtractSolidTriangles(skew.GetCells()), 8, 12);
    }
}

TEST(ZULMRSSurfaceMesh, PlanesThatAreSeveralObjectsAreRecognised)
{
    Random random(2);
    for (int round = 0; round < 20; ++round) {
        const auto blocks = DivideAtRandom(random, {{0, 0, 0}, {7, 6, 7}}, 30);
        const BlockCells straight(blocks, BlockCells::AxisNormals, true);
        ExpectSize(ExtractSolidTriangles(straight.GetCells()), 8, 12);
        const BlockCells skew(blocks, BlockCells::SkewNormals, true);
        ExpectSize(ExtractSolidTriangles(skew.GetCells()), 8, 12);
    }
}

TEST(ZULMRSSurfaceMesh, FacesThatStayConcaveKeepOnlyTheirCorners)
{
    const BlockCells corner(DivideWholly({4, 4, 3}, [](int i, int j, int) { return i < 2 || j < 1; }));
    ExpectSize(ExtractSolidTriangles(corner.GetCells()), 12, 20);
    const BlockCells tunnel(
        DivideWholly({5, 5, 3}, [](int i, int j, int) { return i % 4 == 0 || j % 4 == 0; }));
    ExpectSize(ExtractSolidTriangles(tunnel.GetCells()), 16, 32);
    const BlockCells cavity(
        DivideWholly({5, 4, 6}, [](int i, int j, int k) { return i % 4 == 0 || j % 3 == 0 || k % 5 == 0; }));
    ExpectSize(ExtractSolidTriangles(cavity.GetCells()), 16, 24);
    const BlockCells pocket(
        DivideWholly({5, 5, 3}, [](int i, int j, int k) { return i % 4 == 0 || j % 4 == 0 || k == 0; }));
    ExpectSize(ExtractSolidTriangles(pocket.GetCells()), 16, 28);
}

TEST(ZULMRSSurfaceMesh, RandomSolidsHaveNoVertexInsideAnEdge)
{
    Random random(3);
    for (int round = 0; round < 120; ++round) {
        auto blocks = DivideAtRandom(random, {{0, 0, 0}, {9, 9, 6}}, 20 + round / 2);
        for (Block& block : blocks) {
            block.m_IsSolid = !random.OneIn(5);
        }
        const ZULMRSSurfaceMesh mesh = ExtractSolidTriangles(BlockCells(blocks).GetCells());
        // Where the solid touches itself along an edge, a vertex may lie on it.
        if (CountMaxUses(mesh) == 2) {
            EXPECT_EQ(CountVerticesInsideEdges(mesh), 0U);
        }
        EXPECT_EQ(CountNeedlessVertices(mesh), 0U);
    }
}

TEST(ZULMRSSurfaceMesh, BoxesThatTouchAlongAnEdgeStayClosed)
{
    const auto diagonal = [](int i, int j, int) { return i == j; };
    const BlockCells cells(DivideWholly({2, 2, 1}, diagonal));
    const ZULMRSSurfaceMesh mesh = ExtractSolidTriangles(cells.GetCells());
    ExpectSize(mesh, 14, 24);
    EXPECT_EQ(CountMaxUses(mesh), 4U);
}

TEST(ZULMRSSurfaceMesh, AVertexAlongATouchingEdgeGoesWhereAllFacesAgree)
{
    const auto diagonal = [](int i, int j, int) { return (i < 2) == (j < 3); };
    const BlockCells cells(DivideWholly({4, 5, 6}, diagonal));
    ExpectSize(ExtractSolidTriangles(cells.GetCells()), 14, 24);
}

TEST(ZULMRSSurfaceMesh, AVertexAlongATouchingEdgeStaysWhereOneFaceNeedsIt)
{
    // Two blocks that touch along an edge, one of which is lower than the other.
    const BlockCells cells(DivideWholly(
        {2, 2, 3}, [](int i, int j, int k) { return (i == 0 && j == 0) || (i == 1 && j == 1 && k < 2); }));
    const ZULMRSSurfaceMesh mesh = ExtractSolidTriangles(cells.GetCells());
    // Both boxes need the lower end of the edge, and the tall one the lower one's upper end as well.
    ExpectSize(mesh, 15, 26);
    EXPECT_EQ(CountVerticesInsideEdges(mesh), 0U);
}

TEST(ZULMRSSurfaceMesh, BoxesThatTouchInAVertexStayClosed)
{
    const BlockCells cells(DivideWholly({2, 2, 2}, [](int i, int j, int k) { return i == j && j == k; }));
    ExpectSize(ExtractSolidTriangles(cells.GetCells()), 15, 24);
    const BlockCells divided(DivideWholly(
        {4, 4, 4}, [](int i, int j, int k) { return (i < 2) == (j < 2) && (j < 2) == (k < 2); }));
    ExpectSize(ExtractSolidTriangles(divided.GetCells()), 15, 24);
}

TEST(ZULMRSSurfaceMesh, PointsMayHaveANegativeDenominator)
{
    Random random(5);
    for (int round = 0; round < 10; ++round) {
        const auto blocks = DivideAtRandom(random, {{0, 0, 0}, {8, 8, 8}}, 40);
        const BlockCells cells(blocks, BlockCells::SkewNormals, false, true);
        ExpectSize(ZULMRSExtractSurface(cells.GetCells()), 8, 12);
    }
}

TEST(ZULMRSSurfaceMesh, ABodyWithoutDepthKeepsItsCorners)
{
    // Two sides of one pentagon, whose loops begin at different corners.
    constexpr std::array<std::array<double, 3>, 5> outline{
        {{1, 0, -4}, {1, 1, -6}, {0, 1, -4}, {-1, 0, 0}, {0, -1, 0}}};
    const ZULTest::OwnedPlane front = ZULTest::MakePlane(0, 0, 1, 0);
    const ZULTest::OwnedPlane back = ZULTest::MakePlane(0, 0, -1, 0);
    std::vector<ZULTest::OwnedPlane> edges;
    std::vector<ZULTest::OwnedPoint> points;
    for (const auto& line : outline) {
        edges.push_back(ZULTest::MakePlane(line[0], line[1], 0, line[2]));
    }
    for (std::size_t i = 0; i < 5; ++i) {
        bool isValid = false;
        points.emplace_back(ZULMRSBSPPointNS::CreatePoint(front.get(), edges[i].get(),
                                                          edges[(i + 1) % 5].get(), isValid, true));
    }
    for (std::size_t first = 0; first < 5; ++first) {
        std::vector<ZULMRSBSPPlane*> backEdges;
        std::vector<ZULMRSBSPPoint*> backPoints;
        for (std::size_t i = 0; i < 5; ++i) {
            backEdges.push_back(edges[(first + 5 - i) % 5].get());
            backPoints.push_back(points[(first + 9 - i) % 5].get());
        }
        const ZULTest::OwnedPolygon upper(
            new ZULMRSBSPPolygon(front.get(), ZULTest::Pointers(edges), ZULTest::Pointers(points)));
        const ZULTest::OwnedPolygon lower(
            new ZULMRSBSPPolygon(back.get(), std::move(backEdges), std::move(backPoints)));
        const OwnedPolyhedron pillow(new ZULMRSBSPPolyhedron);
        pillow->AddAPolygon(upper.get(), 1);
        pillow->AddAPolygon(lower.get(), 1);
        const ZULMRSSurfaceMesh mesh = ZULMRSExtractSurface({pillow.get()});
        ExpectSize(mesh, 5, 6);
        EXPECT_TRUE(mesh.IsClosed());
        EXPECT_EQ(mesh.GetVolume(), 0.0);
    }
}

TEST(ZULMRSSurfaceMesh, TheSameSolidGivesTheSameMesh)
{
    Random random(4);
    const auto blocks = DivideAtRandom(random, {{0, 0, 0}, {8, 8, 8}}, 60);
    const BlockCells first(blocks, BlockCells::SkewNormals);
    std::vector<std::unique_ptr<BlockCells>> others;
    const ZULMRSSurfaceMesh expected = ZULMRSExtractSurface(first.GetCells());
    for (int i = 0; i < 5; ++i) {
        others.push_back(std::make_unique<BlockCells>(blocks, BlockCells::SkewNormals));
        const ZULMRSSurfaceMesh mesh = ZULMRSExtractSurface(others.back()->GetCells());
        EXPECT_EQ(mesh.m_Triangles, expected.m_Triangles);
        EXPECT_EQ(mesh.m_Vertices, expected.m_Vertices);
        if (i % 2 == 0) {
            others.erase(others.begin());
        }
    }
}

TEST(ZULMRSSurfaceMesh, WhatIsMissingLeavesAHole)
{
    EXPECT_TRUE(ZULMRSExtractSurface({}).m_Triangles.empty());
    EXPECT_TRUE(ZULMRSExtractSurface({nullptr}).m_Triangles.empty());
    const OwnedPolyhedron box(new ZULMRSBSPPolyhedron(MakeBox({1, 1, 1}, {0, 0, 0}), nullptr));
    box->GetPolygon(2)->DEBUG_ClearAllPoints();
    const ZULMRSSurfaceMesh mesh = ZULMRSExtractSurface({box.get()});
    EXPECT_EQ(mesh.m_Triangles.size(), 10U);
    EXPECT_FALSE(mesh.IsClosed());
    box->GetPolygonsOrientations().pop_back();
    EXPECT_EQ(ZULMRSExtractSurface({box.get()}).m_Triangles.size(), 8U);
}

TEST(ZULMRSSurfaceMesh, ClosedIsEveryEdgeAsOftenAsItsReverse)
{
    ZULMRSSurfaceMesh mesh;
    EXPECT_TRUE(mesh.IsClosed());
    EXPECT_EQ(mesh.GetVolume(), 0.0);
    mesh.m_Vertices = {{0, 0, 0}, {6, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    mesh.m_Triangles = {{0, 2, 1}, {0, 1, 3}, {1, 2, 3}, {0, 3, 2}};
    EXPECT_TRUE(mesh.IsClosed());
    EXPECT_DOUBLE_EQ(mesh.GetVolume(), 1.0);
    for (auto& triangle : mesh.m_Triangles) {
        std::swap(triangle[0], triangle[1]);
    }
    EXPECT_TRUE(mesh.IsClosed());
    EXPECT_DOUBLE_EQ(mesh.GetVolume(), -1.0);
    ZULMRSSurfaceMesh turned = mesh;
    std::swap(turned.m_Triangles[2][0], turned.m_Triangles[2][1]);
    EXPECT_FALSE(turned.IsClosed());
    ZULMRSSurfaceMesh open = mesh;
    open.m_Triangles.pop_back();
    EXPECT_FALSE(open.IsClosed());
    ZULMRSSurfaceMesh lost = mesh;
    lost.m_Triangles.push_back({0, 1, 4});
    EXPECT_FALSE(lost.IsClosed());
    EXPECT_DOUBLE_EQ(lost.GetVolume(), -1.0);
    mesh.m_Triangles.insert(mesh.m_Triangles.end(), mesh.m_Triangles.begin(), mesh.m_Triangles.end());
    EXPECT_TRUE(mesh.IsClosed());
}

TEST(ZULMRSSurfaceMesh, VolumeIsGoodFarFromTheOrigin)
{
    const OwnedPolyhedron box(
        new ZULMRSBSPPolyhedron(MakeBox({1, 1, 1}, {1048576, -1048576, 524288}), nullptr));
    EXPECT_DOUBLE_EQ(ZULMRSExtractSurface({box.get()}).GetVolume(), 8.0);
    EXPECT_DOUBLE_EQ(ZULMRSVolumeOfCells({box.get()}), 8.0);
}
}  // namespace
