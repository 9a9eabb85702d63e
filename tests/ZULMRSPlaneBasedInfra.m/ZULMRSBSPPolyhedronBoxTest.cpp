#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <set>
#include <vector>

#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSMathUtilities.h"
#include "ZULTestFactoryStub.h"
#include "ZULTestPolygons.h"

using namespace ZULTest;

namespace
{
using Equation = std::array<double, 4>;

// Planes in the order in which they are made.
enum : std::size_t { MinusW, PlusW, PlusV, MinusV, MinusU, PlusU };
constexpr std::array<std::array<std::size_t, 3>, 8> CornerPlanes{{{MinusU, MinusV, MinusW},
                                                                  {PlusU, MinusV, MinusW},
                                                                  {PlusU, PlusV, MinusW},
                                                                  {MinusU, PlusV, MinusW},
                                                                  {MinusU, MinusV, PlusW},
                                                                  {PlusU, MinusV, PlusW},
                                                                  {PlusU, PlusV, PlusW},
                                                                  {MinusU, PlusV, PlusW}}};
constexpr std::array<std::array<std::size_t, 4>, 6> FaceBoundaries{{{PlusV, PlusU, MinusV, MinusU},
                                                                    {PlusV, MinusU, MinusV, PlusU},
                                                                    {MinusU, PlusW, PlusU, MinusW},
                                                                    {MinusU, MinusW, PlusU, PlusW},
                                                                    {MinusW, MinusV, PlusW, PlusV},
                                                                    {MinusW, PlusV, PlusW, MinusV}}};
// Corner numbers, from 1.
constexpr std::array<std::array<std::size_t, 4>, 6> FaceCorners{
    {{3, 2, 1, 4}, {8, 5, 6, 7}, {8, 7, 3, 4}, {1, 2, 6, 5}, {1, 5, 8, 4}, {3, 7, 6, 2}}};

ZULMathOBB MakeBox(const ZULMathVector& extents, const ZULMathPoint& center = {})
{
    return ZULMathOBB(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, extents, center));
}

ZULMathOBB MakeTurnedBox()
{
    ZULMathVector u(1, 2, 3);
    ZULMathVector v;
    ZULMathVector w;
    ZULMRSMathUtilities::CompleteOrthogonalBasis(u, v, w);
    u.Normalize();
    return ZULMathOBB(ZULMathOBBBase(u, v, w, {3, 2, 1}, {10, -20, 30}));
}

OwnedPolyhedron MakePolyhedron(const ZULMathOBB& box, ZULMRSBSPObjectFactory* factory)
{
    return OwnedPolyhedron(new ZULMRSBSPPolyhedron(box, factory));
}

std::vector<int> OrientationsOf(const OwnedPolyhedron& polyhedron)
{
    return Values(polyhedron->GetPolygonsOrientations());
}

/// Every face in its order, with the boundaries and corners that belong to it.
void ExpectBoxFaces(const ZULMRSBSPPolyhedron& polyhedron, const std::vector<ZULMRSBSPPlane*>& planes,
                    const std::vector<ZULMRSBSPPoint*>& corners)
{
    ASSERT_EQ(polyhedron.GetNbPolygons(), 6U);
    for (std::size_t i = 0; i < 6; ++i) {
        const ZULMRSBSPPolygon& polygon = *polyhedron.GetPolygon(i);
        EXPECT_EQ(polygon.GetSupportingPlane(), planes[i]);
        ASSERT_EQ(polygon.GetNbEdges(), 4U);
        ASSERT_EQ(polygon.GetNbPoints(), 4U);
        EXPECT_EQ(Values(polygon.GetAllEdgeOrientations()), std::vector<int>(4, 0));
        for (std::size_t k = 0; k < 4; ++k) {
            EXPECT_EQ(polygon.GetEdge(k), planes[FaceBoundaries[i][k]]);
            EXPECT_EQ(polygon.GetPoints()[k], corners[FaceCorners[i][k] - 1]);
        }
    }
}

/// Every vertex lies on its face's plane and on its two edges' planes.
void ExpectVerticesOnTheirPlanes(const ZULMRSBSPPolyhedron& polyhedron)
{
    for (const ZULMRSBSPPolygon* polygon : polyhedron.GetPolygons()) {
        for (std::size_t k = 0; k < polygon->GetNbPoints(); ++k) {
            const auto planes = polygon->GetPoints()[k]->GetPlanes();
            const auto has = [&planes](const ZULMRSBSPPlane* plane) {
                return std::find(planes.begin(), planes.end(), plane) != planes.end();
            };
            EXPECT_TRUE(has(polygon->GetSupportingPlane()));
            EXPECT_TRUE(has(polygon->GetEdge(k)));
            EXPECT_TRUE(has(polygon->GetEdge((k + 1) % 4)));
        }
    }
}

/// The normal of the loop as its approximate vertices turn.
ZULMathVector LoopNormal(const ZULMRSBSPPolygon& polygon)
{
    const ZULMathPoint a = polygon.GetPoints()[0]->GetApproximatedPoint();
    const ZULMathPoint b = polygon.GetPoints()[1]->GetApproximatedPoint();
    const ZULMathPoint c = polygon.GetPoints()[2]->GetApproximatedPoint();
    return (b - a) ^ (c - b);
}

// === Without factory

TEST(PolyhedronBox, AnAxisParallelBoxHasExactPlanesAndCorners)
{
    const OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}), nullptr);
    ASSERT_EQ(box->GetNbPolygons(), 6U);
    EXPECT_EQ(OrientationsOf(box), std::vector<int>(6, 1));
    const std::array<Equation, 6> equations{
        {{0, 0, -1, -3}, {0, 0, 1, -3}, {0, 1, 0, -2}, {0, -1, 0, -2}, {-1, 0, 0, -1}, {1, 0, 0, -1}}};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(box->GetPolygon(i)->GetSupportingPlane()->GetCoords(), equations[i]);
        EXPECT_EQ(box->GetPolygon(i)->GetNbPoints(), 4U);
    }
    const std::array<std::array<double, 3>, 8> corners{
        {{-1, -2, -3}, {1, -2, -3}, {1, 2, -3}, {-1, 2, -3}, {-1, -2, 3}, {1, -2, 3}, {1, 2, 3}, {-1, 2, 3}}};
    for (std::size_t i = 0; i < 6; ++i) {
        for (std::size_t k = 0; k < 4; ++k) {
            const ZULMRSBSPPoint* const point = box->GetPolygon(i)->GetPoints()[k];
            EXPECT_EQ(point->GetType(), ZULMRSBSPPointType_Cartesian);
            EXPECT_EQ(XYZ(point), corners[FaceCorners[i][k] - 1]);
        }
    }
}

TEST(PolyhedronBox, FacesShareSixPlanesAndEightCornersAndOwnThem)
{
    const OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}), nullptr);
    std::vector<ZULMRSBSPPlane*> planes;
    for (const ZULMRSBSPPolygon* polygon : box->GetPolygons()) {
        planes.push_back(polygon->GetSupportingPlane());
        EXPECT_EQ(polygon->GetRefCount(), 0);
    }
    std::vector<ZULMRSBSPPoint*> corners(8);
    for (std::size_t i = 0; i < 6; ++i) {
        for (std::size_t k = 0; k < 4; ++k) {
            corners[FaceCorners[i][k] - 1] = box->GetPolygon(i)->GetPoints()[k];
        }
    }
    ExpectBoxFaces(*box, planes, corners);
    ExpectVerticesOnTheirPlanes(*box);
    for (std::size_t number = 0; number < 8; ++number) {
        // A point may have put its triple into positive order.
        const auto triple = corners[number]->GetPlanes();
        for (const std::size_t plane : CornerPlanes[number]) {
            EXPECT_EQ(std::count(triple.begin(), triple.end(), planes[plane]), 1);
        }
        EXPECT_EQ(corners[number]->GetRefCount(), 2);
    }
    // One face, four neighbours and four corners hold each plane, and nobody else.
    for (const ZULMRSBSPPlane* plane : planes) {
        EXPECT_EQ(plane->GetRefCount(), 8);
    }
}

TEST(PolyhedronBox, LoopsTurnCounterClockwiseSeenFromOutside)
{
    for (const ZULMathOBB& shape : {MakeBox({1, 2, 3}), MakeTurnedBox()}) {
        const OwnedPolyhedron box = MakePolyhedron(shape, nullptr);
        ExpectVerticesOnTheirPlanes(*box);
        for (ZULMRSBSPPolygon* polygon : box->GetPolygons()) {
            EXPECT_GT(LoopNormal(*polygon) * polygon->GetSupportingPlane()->GetNormalVector(), 0.0);
            for (std::size_t k = 0; k < 4; ++k) {
                EXPECT_EQ(polygon->GetEdgeOrientation(k), 1);
            }
        }
    }
}

TEST(PolyhedronBox, ATurnedBoxHasItsCorners)
{
    const ZULMathOBB shape = MakeTurnedBox();
    const OwnedPolyhedron box = MakePolyhedron(shape, nullptr);
    const std::array<ZULMathPoint, 8> uvw{
        {{-3, -2, -1}, {3, -2, -1}, {3, 2, -1}, {-3, 2, -1}, {-3, -2, 1}, {3, -2, 1}, {3, 2, 1}, {-3, 2, 1}}};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(box->GetPolygonOrientation(i), 1);
        for (std::size_t k = 0; k < 4; ++k) {
            const ZULMathPoint expected = shape.UVWtoXYZ(uvw[FaceCorners[i][k] - 1]);
            const std::array<double, 3> found = XYZ(box->GetPolygon(i)->GetPoints()[k]);
            EXPECT_NEAR(found[0], expected.x, 1e-12);
            EXPECT_NEAR(found[1], expected.y, 1e-12);
            EXPECT_NEAR(found[2], expected.z, 1e-12);
        }
    }
}

TEST(PolyhedronBox, ABoxWithoutAxesHasFacesWithoutPlanes)
{
    const ZULMathOBB nothing(ZULMathOBBBase({}, {}, {}, {}, {}));
    const OwnedPolyhedron box = MakePolyhedron(nothing, nullptr);
    ASSERT_EQ(box->GetNbPolygons(), 6U);
    for (const ZULMRSBSPPolygon* polygon : box->GetPolygons()) {
        EXPECT_EQ(polygon->GetSupportingPlane(), nullptr);
        EXPECT_EQ(polygon->GetNbEdges(), 0U);
        EXPECT_EQ(polygon->GetNbPoints(), 0U);
    }
}

// === With a factory

TEST(PolyhedronBox, ItAsksTheFactoryInATableOrder)
{
    FactoryStub factory;
    const OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}, {10, 0, 0}), &factory);
    EXPECT_EQ(
        factory.m_Equations,
        std::vector<Equation>(
            {{0, 0, -1, -3}, {0, 0, 1, -3}, {0, 1, 0, -2}, {0, -1, 0, -2}, {-1, 0, 0, 9}, {1, 0, 0, -11}}));
    EXPECT_EQ(factory.m_Flags, std::vector<unsigned int>(6, 3));
    ASSERT_EQ(factory.m_Triples.size(), 8U);
    for (std::size_t number = 0; number < 8; ++number) {
        for (std::size_t j = 0; j < 3; ++j) {
            EXPECT_EQ(factory.m_Triples[number][j], factory.m_Planes[CornerPlanes[number][j]]);
        }
    }
    ExpectBoxFaces(*box, factory.m_Planes, factory.m_Points);
}

TEST(PolyhedronBox, EachPlaneHasAFlagOfItsOwn)
{
    FactoryStub factory;
    factory.m_OppositePlanes = {PlusW, MinusU};
    const OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}), &factory);
    EXPECT_EQ(factory.m_FlagsBefore, std::vector<bool>(6, false));
    EXPECT_EQ(OrientationsOf(box), std::vector<int>({1, -1, 1, 1, -1, 1}));
    for (ZULMRSBSPPolygon* polygon : box->GetPolygons()) {
        EXPECT_GT(LoopNormal(*polygon) * polygon->GetSupportingPlane()->GetNormalVector(), 0.0);
    }
    ExpectVerticesOnTheirPlanes(*box);
    // Edges whose plane was turned over have the polygon in front.
    EXPECT_EQ(static_cast<signed char>(box->GetPolygon(0)->GetEdgeOrientation(0)), 1);
    EXPECT_EQ(static_cast<signed char>(box->GetPolygon(0)->GetEdgeOrientation(3)), -1);
}

/// An object factory, and what it writes when it dies.
class RealFactory
{
public:
    ~RealFactory()
    {
        const LineCapture silence;
        m_Factory.reset();
    }
    ZULMRSBSPObjectFactory* operator->() const { return m_Factory.get(); }
    ZULMRSBSPObjectFactory* Get() const { return m_Factory.get(); }

private:
    std::unique_ptr<ZULMRSBSPObjectFactory> m_Factory{ZULMRSCreateObjectFactory(false)};
};

TEST(PolyhedronBox, TheSameBoxTwiceSharesPlanesAndCorners)
{
    for (const ZULMathOBB& shape : {MakeBox({1, 2, 3}), MakeTurnedBox()}) {
        const RealFactory factory;
        const OwnedPolyhedron first = MakePolyhedron(shape, factory.Get());
        const OwnedPolyhedron second = MakePolyhedron(shape, factory.Get());
        EXPECT_EQ(factory->Size(), 14U);
        for (std::size_t i = 0; i < 6; ++i) {
            EXPECT_NE(first->GetPolygon(i), second->GetPolygon(i));
            EXPECT_EQ(first->GetPolygon(i)->GetSupportingPlane(),
                      second->GetPolygon(i)->GetSupportingPlane());
            EXPECT_EQ(first->GetPolygon(i)->GetAllEdges(), second->GetPolygon(i)->GetAllEdges());
            EXPECT_EQ(first->GetPolygon(i)->GetPoints(), second->GetPolygon(i)->GetPoints());
        }
        EXPECT_EQ(first->GetAllPoints().size(), 8U);
    }
}

TEST(PolyhedronBox, DroppingTheBoxLeavesTheFactoryAlone)
{
    const RealFactory factory;
    OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}), factory.Get());
    EXPECT_EQ(factory->Size(), 14U);
    box.reset();
    EXPECT_EQ(factory->Size(), 14U);
    const LineCapture silence;
    EXPECT_EQ(factory->Tass(), ZULMRSNoError);
    EXPECT_EQ(factory->Size(), 0U);
}

TEST(PolyhedronBox, APlaneThatComesBackOppositeReversesItsFace)
{
    const RealFactory factory;
    bool isOpposite = true;
    const OwnedPlane held = Own(factory->CreatePlane({0, 0, 1, 3}, isOpposite, 3));
    EXPECT_FALSE(isOpposite);
    const OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}), factory.Get());
    EXPECT_EQ(OrientationsOf(box), std::vector<int>({-1, 1, 1, 1, 1, 1}));

    ZULMRSBSPPolygon& face = *box->GetPolygon(0);
    EXPECT_EQ(face.GetSupportingPlane(), held.get());
    const auto support = [&box](std::size_t plane) { return box->GetPolygon(plane)->GetSupportingPlane(); };
    EXPECT_EQ(face.GetAllEdges(), std::vector<ZULMRSBSPPlane*>(
                                      {support(PlusV), support(MinusU), support(MinusV), support(PlusU)}));
    // Corners 4, 1, 2, 3.
    const std::array<std::array<double, 3>, 4> corners{{{-1, 2, -3}, {-1, -2, -3}, {1, -2, -3}, {1, 2, -3}}};
    for (std::size_t k = 0; k < 4; ++k) {
        const std::array<double, 3> found = XYZ(face.GetPoints()[k]);
        for (std::size_t j = 0; j < 3; ++j) {
            EXPECT_NEAR(found[j], corners[k][j], 1e-12);
        }
    }
    EXPECT_GT(LoopNormal(face) * held->GetNormalVector(), 0.0);
    ExpectVerticesOnTheirPlanes(*box);

    EXPECT_TRUE(box->PointIsInside(ZULMathPoint(0, 0, 0)));
    EXPECT_FALSE(box->PointIsInside(ZULMathPoint(0, 0, -3.0000001)));
    EXPECT_EQ(box->GetAllPoints().size(), 8U);
    for (const ZULMRSBSPPoint* corner : box->GetAllPoints()) {
        EXPECT_TRUE(box->PointIsInside(corner));
    }
}

// === Refusals

TEST(PolyhedronBox, ARefusedPlaneIsMissingFromTheLoops)
{
    constexpr std::array<std::size_t, 6> opposite{PlusW, MinusW, MinusV, PlusV, PlusU, MinusU};
    for (std::size_t refused = 0; refused < 6; ++refused) {
        FactoryStub factory;
        factory.m_RefusedPlanes = {refused};
        const OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}), &factory);
        ASSERT_EQ(box->GetNbPolygons(), 6U);
        EXPECT_EQ(OrientationsOf(box), std::vector<int>(6, 1));
        for (std::size_t i = 0; i < 6; ++i) {
            const ZULMRSBSPPolygon& polygon = *box->GetPolygon(i);
            const bool isWhole = i == opposite[refused];
            EXPECT_EQ(polygon.GetSupportingPlane() == nullptr, i == refused);
            EXPECT_EQ(polygon.GetNbEdges(), isWhole || i == refused ? 4U : 3U);
            EXPECT_EQ(polygon.GetNbPoints(), isWhole ? 4U : 0U);
        }
        EXPECT_TRUE(box->PointIsInside(ZULMathPoint(0, 0, 0)));
        for (const ZULMRSBSPPlane* plane : box->GetBoundingPlanes({1, 0, 0}, {0, 1, 0})) {
            EXPECT_NE(plane, nullptr);
        }
    }
}

TEST(PolyhedronBox, ARefusedPlaneThatIsCalledOppositeIsHarmless)
{
    FactoryStub factory;
    factory.m_RefusedPlanes = {0, 1, 2, 3, 4, 5};
    factory.m_OppositePlanes = {0, 1, 2, 3, 4, 5};
    const OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}), &factory);
    EXPECT_EQ(OrientationsOf(box), std::vector<int>(6, -1));
    EXPECT_TRUE(box->PointIsInside(ZULMathPoint(100, 0, 0)));
    EXPECT_TRUE(box->GetAllPoints().empty());
    EXPECT_EQ(box->GetBoundingPlanes({1, 0, 0}, {0, 1, 0}), (std::array<ZULMRSBSPPlane*, 6>{}));
}

TEST(PolyhedronBox, ARefusedCornerLeavesItsFacesToTheirOwnPoints)
{
    FactoryStub factory;
    factory.m_RefusedPoints = {6};
    const OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}), &factory);
    for (std::size_t i = 0; i < 6; ++i) {
        ZULMRSBSPPolygon& polygon = *box->GetPolygon(i);
        const bool needsIt =
            std::find(FaceCorners[i].begin(), FaceCorners[i].end(), 7U) != FaceCorners[i].end();
        EXPECT_EQ(polygon.GetNbPoints(), needsIt ? 0U : 4U);
        polygon.UpdatePoints();
        EXPECT_EQ(polygon.GetNbPoints(), 4U);
    }
    EXPECT_EQ(XYZ(box->GetPolygon(1)->GetPoints()[3]), (std::array<double, 3>{1, 2, 3}));
}

TEST(PolyhedronBox, AnOppositeFaceWithoutPointsStillReverses)
{
    FactoryStub factory;
    factory.m_OppositePlanes = {PlusW};
    factory.m_RefusedPoints = {6};
    const OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}), &factory);
    ZULMRSBSPPolygon& face = *box->GetPolygon(1);
    EXPECT_EQ(face.GetNbPoints(), 0U);
    EXPECT_EQ(face.GetAllEdges(),
              std::vector<ZULMRSBSPPlane*>({factory.m_Planes[PlusV], factory.m_Planes[PlusU],
                                            factory.m_Planes[MinusV], factory.m_Planes[MinusU]}));
    face.UpdatePoints();
    EXPECT_GT(LoopNormal(face) * face.GetSupportingPlane()->GetNormalVector(), 0.0);
}

// === Bounding planes

class BoundingPlanes : public testing::Test
{
protected:
    ZULMRSBSPPlane* Support(std::size_t plane) const
    {
        return m_Box->GetPolygon(plane)->GetSupportingPlane();
    }

    OwnedPolyhedron m_Box = MakePolyhedron(MakeBox({1, 2, 3}), nullptr);
};

TEST_F(BoundingPlanes, TheBasisComesFromTheFirstDirectionAlone)
{
    const ZULMathVector first(0, 0, 5);
    ZULMathVector direction2;
    ZULMathVector direction3;
    ZULMRSMathUtilities::CompleteOrthogonalBasis(first, direction2, direction3);
    const auto planes = m_Box->GetBoundingPlanes(first, {1, 0, 0});
    EXPECT_EQ(planes[0], Support(MinusW));
    EXPECT_EQ(planes[1], Support(PlusW));
    const auto key = [](const ZULMRSBSPPlane* plane, const ZULMathVector& direction) {
        return direction * plane->GetNormalVector();
    };
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_GE(key(planes[2], direction3), key(Support(i), direction3));
        EXPECT_LE(key(planes[3], direction3), key(Support(i), direction3));
        EXPECT_GE(key(planes[4], direction2), key(Support(i), direction2));
        EXPECT_LE(key(planes[5], direction2), key(Support(i), direction2));
    }
    EXPECT_EQ(std::set<ZULMRSBSPPlane*>(planes.begin(), planes.end()).size(), 6U);
    // Another second direction changes nothing.
    EXPECT_EQ(m_Box->GetBoundingPlanes(first, {0, 1, 0}), planes);
    EXPECT_EQ(m_Box->GetBoundingPlanes(first, {3, -1, 0.5}), planes);
}

TEST_F(BoundingPlanes, TwiceTheSameDirectionIsItsOwnSecond)
{
    const ZULMathVector u(1, 0, 0);
    const auto planes = m_Box->GetBoundingPlanes(u, u);
    EXPECT_EQ(planes[0], Support(MinusU));
    EXPECT_EQ(planes[1], Support(PlusU));
    EXPECT_EQ(planes[4], Support(PlusU));
    EXPECT_EQ(planes[5], Support(MinusU));
    EXPECT_NE(planes[2], nullptr);
    EXPECT_NE(planes[3], nullptr);
}

TEST_F(BoundingPlanes, ANearlyParallelSecondDirectionIsUsedWithTheShortProduct)
{
    // The cross product is (0, 0, 5e-5): short, but it decides.
    const auto planes = m_Box->GetBoundingPlanes({1, 0, 0}, {-1, 0.00005, 0});
    EXPECT_EQ(planes[0], Support(MinusU));
    EXPECT_EQ(planes[1], Support(PlusU));
    EXPECT_EQ(planes[2], Support(PlusW));
    EXPECT_EQ(planes[3], Support(MinusW));
    EXPECT_EQ(planes[4], Support(MinusU));
    EXPECT_EQ(planes[5], Support(PlusU));
    // From a length of 0.0001 on the second direction is not used any more.
    const auto completed = m_Box->GetBoundingPlanes({1, 0, 0}, {-1, 0.000101, 0});
    EXPECT_EQ(completed, m_Box->GetBoundingPlanes({1, 0, 0}, {0, 1, 0}));
    EXPECT_NE(completed[4], Support(MinusU));
}

TEST_F(BoundingPlanes, NoReferenceIsTaken)
{
    m_Box->GetBoundingPlanes({1, 0, 0}, {0, 1, 0});
    EXPECT_EQ(Support(0)->GetRefCount(), 8);
}

TEST_F(BoundingPlanes, FacesThatTurnedOverCountByTheirOwnNormal)
{
    FactoryStub factory;
    factory.m_OppositePlanes = {MinusU, PlusU};
    const OwnedPolyhedron box = MakePolyhedron(MakeBox({1, 2, 3}), &factory);
    const auto planes = box->GetBoundingPlanes({1, 0, 0}, {0, 1, 0});
    EXPECT_EQ(planes[0], factory.m_Planes[PlusU]);
    EXPECT_EQ(planes[1], factory.m_Planes[MinusU]);
}

TEST_F(BoundingPlanes, NothingBoundsAnEmptyPolyhedron)
{
    const OwnedPolyhedron empty(new ZULMRSBSPPolyhedron());
    EXPECT_EQ(empty->GetBoundingPlanes({1, 0, 0}, {0, 1, 0}), (std::array<ZULMRSBSPPlane*, 6>{}));
}

TEST_F(BoundingPlanes, DirectionsThatAreNotNumbersStillGivePlanes)
{
    for (const ZULMRSBSPPlane* plane : m_Box->GetBoundingPlanes({NAN, 0, 0}, {0, INFINITY, 0})) {
        EXPECT_NE(plane, nullptr);
    }
}
}  // namespace
