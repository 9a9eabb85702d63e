#include "ZULMRSBSPPolygon.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

#include "ZULMRSBSPInstanceCounters.h"
#include "ZULTestPolygons.h"

using namespace ZULTest;

namespace
{
using Coordinates = std::array<double, 3>;

// === Construction and destruction

TEST(PolygonConstruction, DefaultIsEmpty)
{
    const OwnedPolygon polygon(new ZULMRSBSPPolygon());
    EXPECT_EQ(polygon->GetSupportingPlane(), nullptr);
    EXPECT_EQ(polygon->GetNbEdges(), 0U);
    EXPECT_EQ(polygon->GetNbPoints(), 0U);
    EXPECT_TRUE(polygon->GetAllEdgeOrientations().empty());
    EXPECT_EQ(polygon->GetRefCount(), 0);
}

TEST(PolygonConstruction, NewAttributeIsFourZeroBytesAndMinusOne)
{
    const OwnedPolygon polygon(new ZULMRSBSPPolygon());
    for (const auto byte : polygon->GetAttribute().m_Bytes) {
        EXPECT_EQ(byte, 0);
    }
    EXPECT_EQ(polygon->GetAttribute().m_Index, -1);
    ZULMRSBSPExtraAttribute attribute;
    attribute.m_Bytes = {1, 2, 3, 255};
    attribute.m_Index = 77;
    polygon->SetAttribute(attribute);
    attribute.m_Index = 78;
    EXPECT_EQ(polygon->GetAttribute().m_Bytes[3], 255);
    EXPECT_EQ(polygon->GetAttribute().m_Index, 77);
}

TEST(PolygonConstruction, CountReservesAndTakesAReference)
{
    const OwnedPlane plane = MakePlane(0, 0, 1, 0);
    {
        const OwnedPolygon polygon(new ZULMRSBSPPolygon(plane.get(), 5));
        EXPECT_EQ(plane->GetRefCount(), 1);
        EXPECT_EQ(polygon->GetSupportingPlane(), plane.get());
        EXPECT_EQ(polygon->GetNbEdges(), 0U);
        EXPECT_EQ(polygon->GetNbPoints(), 0U);
        EXPECT_GE(polygon->GetAllEdges().capacity(), 5U);
        EXPECT_GE(polygon->GetPoints().capacity(), 5U);
        EXPECT_GE(polygon->GetAllEdgeOrientations().capacity(), 5U);
    }
    EXPECT_EQ(plane->GetRefCount(), 0);
    const OwnedPolygon bare(new ZULMRSBSPPolygon(nullptr, 0));
    EXPECT_EQ(bare->GetSupportingPlane(), nullptr);
    EXPECT_EQ(bare->GetAllEdges().capacity(), 0U);
}

TEST(PolygonConstruction, CountBeyondTheMaximumIsALengthErrorAndLeavesNothing)
{
    const OwnedPlane plane = MakePlane(0, 0, 1, 0);
    constexpr std::size_t tooMany = std::numeric_limits<std::size_t>::max();
    EXPECT_THROW(OwnedPolygon(new ZULMRSBSPPolygon(plane.get(), tooMany)), std::length_error);
    EXPECT_EQ(plane->GetRefCount(), 0);
}

TEST(PolygonConstruction, ArraysAreTakenOverWithReferences)
{
    const Loop square = MakeSquare();
    const OwnedPoint corner = MakePoint(1, -1, 0);
    std::vector<ZULMRSBSPPlane*> edges = Pointers(square.m_Edges);
    edges.push_back(nullptr);
    std::vector<ZULMRSBSPPoint*> points{corner.get(), nullptr};
    {
        const OwnedPolygon polygon(
            new ZULMRSBSPPolygon(square.m_SupportingPlane.get(), std::move(edges), std::move(points)));
        EXPECT_TRUE(edges.empty());   // NOLINT(bugprone-use-after-move): promised
        EXPECT_TRUE(points.empty());  // NOLINT(bugprone-use-after-move): promised
        EXPECT_EQ(polygon->GetNbEdges(), 5U);
        EXPECT_EQ(polygon->GetNbPoints(), 2U);
        EXPECT_EQ(Values(polygon->GetAllEdgeOrientations()), std::vector<int>(5, 0));
        EXPECT_EQ(square.m_SupportingPlane->GetRefCount(), 1);
        EXPECT_EQ(RefCounts(square.m_Edges), std::vector<int>(4, 1));
        EXPECT_EQ(corner->GetRefCount(), 1);
    }
    EXPECT_EQ(square.m_SupportingPlane->GetRefCount(), 0);
    EXPECT_EQ(RefCounts(square.m_Edges), std::vector<int>(4, 0));
    EXPECT_EQ(corner->GetRefCount(), 0);
}

TEST(PolygonConstruction, OrientationsAreTakenAsGiven)
{
    const Loop square = MakeSquare();
    std::vector<char> orientations{1, static_cast<char>(-1)};
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(square.m_SupportingPlane.get(), Pointers(square.m_Edges),
                                                    {}, std::move(orientations)));
    EXPECT_TRUE(orientations.empty());  // NOLINT(bugprone-use-after-move): promised
    EXPECT_EQ(Values(polygon->GetAllEdgeOrientations()), std::vector<int>({1, -1}));
    EXPECT_EQ(RefCounts(square.m_Edges), std::vector<int>(4, 1));
}

TEST(PolygonConstruction, EveryConstructorCountsOnce)
{
    const unsigned int before = ZULMRSBSPInstanceCounters::GetPolygons();
    const OwnedPolygon a(new ZULMRSBSPPolygon());
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPolygons(), before + 1);
    const OwnedPolygon b(new ZULMRSBSPPolygon(nullptr, 3));
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPolygons(), before + 2);
    const OwnedPolygon c(
        new ZULMRSBSPPolygon(nullptr, std::vector<ZULMRSBSPPlane*>(), std::vector<ZULMRSBSPPoint*>()));
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPolygons(), before + 3);
    const OwnedPolygon d(new ZULMRSBSPPolygon(nullptr, {}, {}, {}));
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPolygons(), before + 4);
}

TEST(PolygonConstruction, SharingFollowsTheCommonProtocol)
{
    OwnedPolygon polygon(new ZULMRSBSPPolygon());
    ZULMRSBSPPolygon* slot = nullptr;
    ZULMRSBSPPolygon::Replace(slot, nullptr);
    EXPECT_EQ(slot, nullptr);
    ZULMRSBSPPolygon::Replace(slot, polygon.get());
    EXPECT_EQ(polygon->GetRefCount(), 1);
    ZULMRSBSPPolygon::Replace(slot, polygon.get());
    EXPECT_EQ(polygon->GetRefCount(), 1);
    ZULMRSBSPPolygon::Replace(slot, nullptr);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(polygon->GetRefCount(), 0);
    ZULMRSBSPPolygon::ReleaseObject(nullptr);
}

// === Loop

TEST(PolygonLoop, ANullBoundaryChangesNothing)
{
    const OwnedPolygon polygon(new ZULMRSBSPPolygon());
    polygon->AddBoundary(nullptr, 1);
    EXPECT_EQ(polygon->GetNbEdges(), 0U);
    EXPECT_TRUE(polygon->GetAllEdgeOrientations().empty());
}

TEST(PolygonLoop, ABoundaryIsAppendedWithItsOrientationAndAReference)
{
    const OwnedPlane plane = MakePlane(1, 0, 0, 0);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon());
    polygon->AddBoundary(plane.get(), static_cast<char>(-1));
    ASSERT_EQ(polygon->GetNbEdges(), 1U);
    EXPECT_EQ(polygon->GetEdge(0), plane.get());
    EXPECT_EQ(Values(polygon->GetAllEdgeOrientations()), std::vector<int>({-1}));
    EXPECT_EQ(plane->GetRefCount(), 1);
}

TEST(PolygonLoop, ABoundaryAtAPositionDoesNotReleaseWhatStoodThere)
{
    const Loop square = MakeSquare();
    const OwnedPlane other = MakePlane(1, 1, 0, -1);
    const OwnedPolygon polygon = square.MakePolygon();
    polygon->AddBoundary(nullptr, std::size_t{2}, 1);
    EXPECT_EQ(polygon->GetEdge(2), square.m_Edges[2].get());
    EXPECT_EQ(Values(polygon->GetAllEdgeOrientations()), std::vector<int>(4, 0));
    polygon->AddBoundary(other.get(), std::size_t{2}, 1);
    EXPECT_EQ(polygon->GetNbEdges(), 4U);
    EXPECT_EQ(polygon->GetEdge(2), other.get());
    EXPECT_EQ(Values(polygon->GetAllEdgeOrientations()), std::vector<int>({0, 0, 1, 0}));
    EXPECT_EQ(other->GetRefCount(), 1);
    EXPECT_EQ(square.m_Edges[2]->GetRefCount(), 1);
    square.m_Edges[2]->Release();
}

TEST(PolygonLoop, ReserveConcernsTheEdgesOnly)
{
    const OwnedPolygon polygon(new ZULMRSBSPPolygon());
    polygon->ReserveNbEdges(7);
    const std::size_t capacity = polygon->GetAllEdges().capacity();
    EXPECT_GE(capacity, 7U);
    EXPECT_EQ(polygon->GetPoints().capacity(), 0U);
    EXPECT_EQ(polygon->GetAllEdgeOrientations().capacity(), 0U);
    polygon->ReserveNbEdges(3);
    EXPECT_EQ(polygon->GetAllEdges().capacity(), capacity);
}

TEST(PolygonLoop, BoundariesStartUnknownAndTheirOrientationIsKeptOnceAsked)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(square.m_SupportingPlane.get(), 3));
    // The triangle (1, -1), (1, 1), (-3, 1); its slanted edge's plane faces inwards.
    const OwnedPlane slanted = MakePlane(1, 2, 0, 1);
    polygon->AddBoundaries({slanted.get(), square.m_Edges[1].get(), square.m_Edges[2].get()});
    EXPECT_EQ(Values(polygon->GetAllEdgeOrientations()), std::vector<int>(3, 0));
    polygon->UpdatePoints();
    EXPECT_EQ(static_cast<signed char>(polygon->GetEdgeOrientation(0)), -1);
    EXPECT_EQ(static_cast<signed char>(polygon->GetEdgeOrientation(1)), 1);
    EXPECT_EQ(static_cast<signed char>(polygon->GetEdgeOrientation(2)), 1);
    EXPECT_EQ(Values(polygon->GetAllEdgeOrientations()), std::vector<int>({-1, 1, 1}));
}

// === Orientation

TEST(PolygonOrientation, AGivenOrientationIsNotComputed)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    polygon->UpdatePoints();
    polygon->GetAllEdgeOrientations()[1] = static_cast<char>(-1);
    EXPECT_EQ(static_cast<signed char>(polygon->GetEdgeOrientation(1)), -1);
    EXPECT_EQ(static_cast<signed char>(polygon->GetEdgeOrientation(0)), 1);
}

TEST(PolygonOrientation, EveryVertexOnTheEdgePlaneAnswersZeroAfterOneRound)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    polygon->UpdatePoints();
    const OwnedPlane sameAsSupport = MakePlane(0, 0, 3, 0);
    polygon->AddBoundary(sameAsSupport.get(), std::size_t{1}, 0);
    EXPECT_EQ(polygon->GetEdgeOrientation(1), 0);
    square.m_Edges[1]->Release();
}

TEST(PolygonOrientation, WithoutPointsItStaysUnknown)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    EXPECT_EQ(polygon->GetEdgeOrientation(0), 0);
    polygon->ResizePoints();
    EXPECT_EQ(polygon->GetEdgeOrientation(0), 0);
    polygon->UpdatePoints();
    polygon->GetCachedPoint(2);
    EXPECT_EQ(polygon->GetEdgeOrientation(0), 1);
}

TEST(PolygonOrientation, ANullEdgeHasNone)
{
    const Loop square = MakeSquare();
    std::vector<ZULMRSBSPPlane*> edges = Pointers(square.m_Edges);
    edges[0] = nullptr;
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(square.m_SupportingPlane.get(), std::move(edges), {}));
    polygon->UpdatePoints();
    EXPECT_EQ(polygon->GetEdgeOrientation(0), 0);
    // Its ends are missing too and are passed over.
    EXPECT_EQ(polygon->GetEdgeOrientation(1), 1);
}

// === Lazy vertices

TEST(PolygonCachedPoint, OnlyTheVertexAskedForIsMade)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    EXPECT_EQ(polygon->GetNbPoints(), 0U);
    EXPECT_EQ(Values(polygon->GetAllEdgeOrientations()), std::vector<int>(4, 0));

    ZULMRSBSPPoint* const vertex2 = polygon->GetCachedPoint(2);
    ASSERT_NE(vertex2, nullptr);
    ASSERT_EQ(polygon->GetNbPoints(), 4U);
    EXPECT_EQ(polygon->GetPoints(), std::vector<ZULMRSBSPPoint*>({nullptr, nullptr, vertex2, nullptr}));
    EXPECT_EQ(vertex2->GetP1(), square.m_SupportingPlane.get());
    EXPECT_EQ(vertex2->GetP2(), square.m_Edges[2].get());
    EXPECT_EQ(vertex2->GetP3(), square.m_Edges[3].get());
    EXPECT_EQ(XYZ(vertex2), Coordinates({-1, 1, 0}));
    // The polygon is the only owner.
    EXPECT_EQ(vertex2->GetRefCount(), 0);
    EXPECT_EQ(polygon->GetCachedPoint(2), vertex2);

    const ZULMRSBSPPoint* const vertex3 = polygon->GetCachedPoint(3);
    EXPECT_EQ(vertex3->GetP2(), square.m_Edges[3].get());
    EXPECT_EQ(vertex3->GetP3(), square.m_Edges[0].get());
    EXPECT_EQ(XYZ(vertex3), Coordinates({-1, -1, 0}));
}

TEST(PolygonCachedPoint, CanonicalPlanesGiveAPointOfExactCoordinates)
{
    const Loop square = MakeSquare();
    const Loop regular = MakeRegular(5);
    const OwnedPolygon a = square.MakePolygon();
    const OwnedPolygon b = regular.MakePolygon();
    EXPECT_EQ(a->GetCachedPoint(0)->GetType(), ZULMRSBSPPointType_Cartesian);
    EXPECT_EQ(b->GetCachedPoint(0)->GetType(), ZULMRSBSPPointType_3Planes);
}

TEST(PolygonCachedPoint, AMissingPlaneGivesNull)
{
    const Loop square = MakeSquare();
    std::vector<ZULMRSBSPPlane*> edges = Pointers(square.m_Edges);
    edges[1] = nullptr;
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(square.m_SupportingPlane.get(), std::move(edges), {}));
    EXPECT_EQ(polygon->GetCachedPoint(0), nullptr);
    EXPECT_EQ(polygon->GetCachedPoint(1), nullptr);
    EXPECT_NE(polygon->GetCachedPoint(2), nullptr);
    EXPECT_EQ(polygon->GetCachedPoint(0), nullptr);
    const OwnedPolygon unsupported(new ZULMRSBSPPolygon(nullptr, Pointers(square.m_Edges), {}));
    EXPECT_EQ(unsupported->GetCachedPoint(0), nullptr);
    EXPECT_EQ(unsupported->GetNbPoints(), 4U);
}

TEST(PolygonCachedPoint, AShortCacheGetsItsMissingSlots)
{
    const Loop square = MakeSquare();
    const OwnedPoint corner = MakePoint(1, -1, 0);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(square.m_SupportingPlane.get(), Pointers(square.m_Edges),
                                                    std::vector<ZULMRSBSPPoint*>{corner.get()}));
    EXPECT_EQ(polygon->GetCachedPoint(0), corner.get());
    EXPECT_EQ(polygon->GetNbPoints(), 1U);
    ZULMRSBSPPoint* const vertex2 = polygon->GetCachedPoint(2);
    ASSERT_NE(vertex2, nullptr);
    EXPECT_EQ(polygon->GetPoints(), std::vector<ZULMRSBSPPoint*>({corner.get(), nullptr, vertex2, nullptr}));
}

TEST(PolygonCachedPoint, APositionOutsideTheLoopGivesNull)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    EXPECT_EQ(polygon->GetCachedPoint(4), nullptr);
    const OwnedPolygon empty(new ZULMRSBSPPolygon());
    EXPECT_EQ(empty->GetCachedPoint(0), nullptr);
    EXPECT_EQ(empty->GetNbPoints(), 0U);
}

TEST(PolygonCachedPoint, AFilledSlotIsNeverOverwritten)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    const OwnedPoint first = MakePoint(1, 1, 0);
    const OwnedPoint second = MakePoint(1, 1, 0);
    polygon->SetCachedPoint(1, nullptr);
    EXPECT_EQ(polygon->GetPoints(), std::vector<ZULMRSBSPPoint*>(4, nullptr));
    polygon->SetCachedPoint(1, first.get());
    EXPECT_EQ(polygon->GetPoints()[1], first.get());
    EXPECT_EQ(first->GetRefCount(), 1);
    polygon->SetCachedPoint(1, second.get());
    EXPECT_EQ(polygon->GetPoints()[1], first.get());
    EXPECT_EQ(second->GetRefCount(), 0);
    EXPECT_EQ(polygon->GetCachedPoint(1), first.get());
    polygon->SetCachedPoint(9, second.get());
    EXPECT_EQ(polygon->GetNbPoints(), 4U);
    EXPECT_EQ(second->GetRefCount(), 0);
}

TEST(PolygonCachedPoint, ResizeOnlyFillsAnEmptyCache)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    polygon->ResizePoints();
    EXPECT_EQ(polygon->GetPoints(), std::vector<ZULMRSBSPPoint*>(4, nullptr));
    const OwnedPlane extra = MakePlane(1, 1, 0, -1);
    polygon->AddBoundary(extra.get(), 0);
    polygon->ResizePoints();
    EXPECT_EQ(polygon->GetNbPoints(), 4U);
}

// === Access

TEST(PolygonAccess, SettingTheSupportingPlaneExchangesOneReference)
{
    const OwnedPlane first = MakePlane(0, 0, 1, 0);
    const OwnedPlane second = MakePlane(0, 0, 1, -1);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(first.get(), 0));
    polygon->SetSupportingPlane(first.get());
    EXPECT_EQ(first->GetRefCount(), 1);
    polygon->SetSupportingPlane(second.get());
    EXPECT_EQ(first->GetRefCount(), 0);
    EXPECT_EQ(second->GetRefCount(), 1);
    polygon->SetSupportingPlane(nullptr);
    EXPECT_EQ(second->GetRefCount(), 0);
    EXPECT_EQ(polygon->GetSupportingPlane(), nullptr);
    polygon->SetSupportingPlane(first.get());
    EXPECT_EQ(first->GetRefCount(), 1);
}

TEST(PolygonAccess, SettingTheSupportingPlaneLeavesTheCache)
{
    const Loop square = MakeSquare();
    const OwnedPlane higher = MakePlane(0, 0, 1, -1);
    const OwnedPolygon polygon = square.MakePolygon();
    ZULMRSBSPPoint* const vertex = polygon->GetCachedPoint(0);
    polygon->SetSupportingPlane(higher.get());
    EXPECT_EQ(polygon->GetCachedPoint(0), vertex);
    EXPECT_EQ(XYZ(polygon->GetCachedPoint(1)), Coordinates({1, 1, 1}));
}

TEST(PolygonAccess, SizeCountsReservedSlotsOfEdgesAndPoints)
{
    const OwnedPolygon polygon(new ZULMRSBSPPolygon());
    EXPECT_EQ(polygon->EstimateInternalSize(), sizeof(ZULMRSBSPPolygon));
    polygon->GetAllEdges().reserve(10);
    polygon->GetPoints().reserve(6);
    polygon->GetAllEdgeOrientations().reserve(1000);
    const std::size_t slots = polygon->GetAllEdges().capacity() + polygon->GetPoints().capacity();
    EXPECT_EQ(polygon->EstimateInternalSize(), sizeof(ZULMRSBSPPolygon) + 8 * slots);
}

TEST(PolygonAccess, ConstantAndMutableFormsGiveTheSameArrays)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    const ZULMRSBSPPolygon& constant = *polygon;
    EXPECT_EQ(&constant.GetAllEdges(), &polygon->GetAllEdges());
    EXPECT_EQ(&constant.GetPoints(), &polygon->GetPoints());
    EXPECT_EQ(&constant.GetAllEdgeOrientations(), &polygon->GetAllEdgeOrientations());
}

TEST(PolygonAccess, PlanesAndPointsAreFoundByTheirAddress)
{
    const Loop square = MakeSquare();
    std::vector<ZULMRSBSPPlane*> edges = Pointers(square.m_Edges);
    edges.push_back(square.m_Edges[1].get());
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(square.m_SupportingPlane.get(), std::move(edges), {}));
    std::size_t position = 99;
    EXPECT_FALSE(polygon->FindEdgePosition(square.m_SupportingPlane.get(), position));
    EXPECT_EQ(position, 99U);
    EXPECT_TRUE(polygon->FindEdgePosition(square.m_Edges[1].get(), position));
    EXPECT_EQ(position, 1U);
    const OwnedPoint other = MakePoint(1, -1, 0);
    ZULMRSBSPPoint* const vertex = polygon->GetCachedPoint(3);
    EXPECT_FALSE(polygon->FindPointPosition(other.get(), position));
    EXPECT_EQ(position, 1U);
    EXPECT_TRUE(polygon->FindPointPosition(vertex, position));
    EXPECT_EQ(position, 3U);
}

// === Edges by their ends

class PolygonEdges : public testing::Test
{
protected:
    void SetUp() override
    {
        m_Polygon->UpdatePoints();
        m_Points = m_Polygon->GetPoints();
    }

    Loop m_Square = MakeSquare();
    OwnedPolygon m_Polygon = m_Square.MakePolygon();
    std::vector<ZULMRSBSPPoint*> m_Points;
};

TEST_F(PolygonEdges, AnEdgeRunsFromTheVertexBeforeToItsOwn)
{
    EXPECT_TRUE(m_Polygon->GetPolygonEdge(0) == ZULMRSBSPPolygonEdge(m_Points[3], m_Points[0], false));
    EXPECT_TRUE(m_Polygon->GetPolygonEdge(2) == ZULMRSBSPPolygonEdge(m_Points[1], m_Points[2], false));
    EXPECT_TRUE(OwnedPolygon(new ZULMRSBSPPolygon())->GetPolygonEdge(0).IsNull());
}

TEST_F(PolygonEdges, AllEdgesInLoopOrderOrSorted)
{
    const std::vector<ZULMRSBSPPolygonEdge> oriented = m_Polygon->GetAllPolygonEdges(true);
    const std::vector<ZULMRSBSPPolygonEdge> sorted = m_Polygon->GetAllPolygonEdges(false);
    ASSERT_EQ(oriented.size(), 4U);
    ASSERT_EQ(sorted.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_TRUE(oriented[i] == m_Polygon->GetPolygonEdge(i));
        EXPECT_TRUE(sorted[i] == ZULMRSBSPPolygonEdge(m_Points[(i + 3) % 4], m_Points[i], true));
    }
    EXPECT_TRUE(OwnedPolygon(new ZULMRSBSPPolygon())->GetAllPolygonEdges(true).empty());
}

TEST_F(PolygonEdges, OnlyASortedEdgeIsFound)
{
    for (std::size_t k = 0; k < 4; ++k) {
        ZULMRSBSPPolygonEdge edge(m_Points[k], m_Points[(k + 3) % 4], true);
        std::size_t position = 99;
        EXPECT_TRUE(m_Polygon->FindEdgePosition(edge, position));
        EXPECT_EQ(position, k);
        position = 99;
        edge.SwapPoints();
        EXPECT_FALSE(m_Polygon->FindEdgePosition(edge, position));
        EXPECT_EQ(position, 99U);
    }
    std::size_t position = 99;
    EXPECT_FALSE(m_Polygon->FindEdgePosition(ZULMRSBSPPolygonEdge(m_Points[0], m_Points[2], true), position));
    EXPECT_EQ(position, 99U);
}

TEST_F(PolygonEdges, FewerThanTwoPointsHaveNoEdge)
{
    const OwnedPlane plane = MakePlane(1, 0, 0, 0);
    const OwnedPoint point = MakePoint(0, 0, 0);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(nullptr, std::vector<ZULMRSBSPPlane*>{plane.get()},
                                                    std::vector<ZULMRSBSPPoint*>{point.get()}));
    std::size_t position = 99;
    EXPECT_FALSE(polygon->FindEdgePosition(ZULMRSBSPPolygonEdge(point.get(), point.get(), true), position));
    EXPECT_EQ(position, 99U);
}

TEST_F(PolygonEdges, PositionsAreGivenInEitherDirection)
{
    EXPECT_EQ(m_Polygon->GetEdgePosition(ZULMRSBSPPolygonEdge(m_Points[0], m_Points[1], false)), 1);
    EXPECT_EQ(m_Polygon->GetEdgePosition(ZULMRSBSPPolygonEdge(m_Points[1], m_Points[0], false)), 1);
    EXPECT_EQ(m_Polygon->GetEdgePosition(ZULMRSBSPPolygonEdge(m_Points[3], m_Points[0], false)), 0);
    EXPECT_EQ(m_Polygon->GetEdgePosition(ZULMRSBSPPolygonEdge(m_Points[0], m_Points[3], false)), 0);
    EXPECT_EQ(m_Polygon->GetEdgePosition(ZULMRSBSPPolygonEdge(m_Points[2], m_Points[3], false)), 3);
    EXPECT_EQ(m_Polygon->GetEdgePosition(ZULMRSBSPPolygonEdge(m_Points[0], m_Points[2], false)), -1);
    EXPECT_EQ(OwnedPolygon(new ZULMRSBSPPolygon())->GetEdgePosition(ZULMRSBSPPolygonEdge()), -1);
}
}  // namespace
