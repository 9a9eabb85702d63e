#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "ZULMRSBSPPolygon.h"
#include "ZULTestPolygons.h"

using namespace ZULTest;

namespace
{
using PointList = std::vector<ZULMRSBSPPoint*>;
using PlaneList = std::vector<ZULMRSBSPPlane*>;

/// A polygon that is only a list: loop, points and orientations that need not fit together.
struct Listing {
    explicit Listing(std::size_t nbEdges)
    {
        std::vector<char> orientations;
        for (std::size_t i = 0; i < nbEdges; ++i) {
            m_Edges.push_back(MakePlane(1, 0, 0, -static_cast<double>(i)));
            m_Points.push_back(MakePoint(static_cast<double>(i), 0, 0));
            orientations.push_back(static_cast<char>(i + 1));
        }
        m_Polygon.reset(
            new ZULMRSBSPPolygon(nullptr, Pointers(m_Edges), Pointers(m_Points), std::move(orientations)));
    }

    PlaneList Edges(std::initializer_list<std::size_t> positions) const
    {
        PlaneList edges;
        for (const std::size_t position : positions) {
            edges.push_back(m_Edges[position].get());
        }
        return edges;
    }
    PointList Points(std::initializer_list<std::size_t> positions) const
    {
        PointList points;
        for (const std::size_t position : positions) {
            points.push_back(m_Points[position].get());
        }
        return points;
    }

    void ExpectLoop(std::initializer_list<std::size_t> edges, std::initializer_list<std::size_t> points,
                    const std::vector<int>& orientations) const
    {
        EXPECT_EQ(m_Polygon->GetAllEdges(), Edges(edges));
        EXPECT_EQ(m_Polygon->GetPoints(), Points(points));
        EXPECT_EQ(Values(m_Polygon->GetAllEdgeOrientations()), orientations);
    }

    std::vector<OwnedPlane> m_Edges;
    std::vector<OwnedPoint> m_Points;
    OwnedPolygon m_Polygon;
};

// === UpdatePoints

TEST(PolygonUpdatePoints, MakesEveryVertexFromItsTwoEdges)
{
    for (const std::size_t nbEdges : {3U, 5U, 7U, 8U, 9U, 16U, 17U, 100U}) {
        const Loop loop = MakeRegular(nbEdges);
        const OwnedPolygon polygon = loop.MakePolygon();
        EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
        ASSERT_EQ(polygon->GetNbPoints(), nbEdges);
        for (std::size_t k = 0; k < nbEdges; ++k) {
            const ZULMRSBSPPoint* const point = polygon->GetPoints()[k];
            ASSERT_NE(point, nullptr);
            EXPECT_EQ(point->GetP1(), loop.m_SupportingPlane.get());
            EXPECT_EQ(point->GetPlane(1), loop.m_Edges[k].get());
            EXPECT_EQ(point->GetPlane(2), loop.m_Edges[(k + 1) % nbEdges].get());
            EXPECT_EQ(point->GetRefCount(), 0);
        }
    }
}

TEST(PolygonUpdatePoints, ACacheOfTheRightLengthIsNotLookedAt)
{
    const Loop loop = MakeRegular(5);
    const OwnedPolygon polygon = loop.MakePolygon();
    ZULMRSBSPPoint* const first = polygon->GetCachedPoint(0);
    EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
    EXPECT_EQ(polygon->GetPoints(), PointList({first, nullptr, nullptr, nullptr, nullptr}));
    polygon->DEBUG_ClearAllPoints();
    polygon->ResizePoints();
    EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
    EXPECT_EQ(polygon->GetPoints(), PointList(5, nullptr));
}

TEST(PolygonUpdatePoints, AShortCacheIsCompletedAndKeepsWhatItHolds)
{
    const Loop loop = MakeRegular(20);
    const OwnedPoint given = MakePoint(7, 7, 7);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(loop.m_SupportingPlane.get(), Pointers(loop.m_Edges),
                                                    PointList{nullptr, given.get()}));
    EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
    ASSERT_EQ(polygon->GetNbPoints(), 20U);
    EXPECT_EQ(polygon->GetPoints()[1], given.get());
    EXPECT_EQ(given->GetRefCount(), 1);
    for (const ZULMRSBSPPoint* point : polygon->GetPoints()) {
        EXPECT_NE(point, nullptr);
    }
}

TEST(PolygonUpdatePoints, ALongCacheIsFilledUpToTheLoop)
{
    const Loop loop = MakeRegular(3);
    const OwnedPolygon polygon(
        new ZULMRSBSPPolygon(loop.m_SupportingPlane.get(), Pointers(loop.m_Edges), PointList(5, nullptr)));
    EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
    ASSERT_EQ(polygon->GetNbPoints(), 5U);
    EXPECT_NE(polygon->GetPoints()[2], nullptr);
    EXPECT_EQ(polygon->GetPoints()[3], nullptr);
}

TEST(PolygonUpdatePoints, CompletesTheCacheAgainAfterTheLoopGrew)
{
    Loop loop = MakeRegular(3);
    const OwnedPolygon polygon = loop.MakePolygon();
    polygon->UpdatePoints();
    loop.m_Edges.push_back(MakePlane(1, -2, 0, -2));
    polygon->AddBoundary(loop.m_Edges.back().get(), 0);
    EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
    ASSERT_EQ(polygon->GetNbPoints(), 4U);
    EXPECT_EQ(polygon->GetPoints()[3]->GetPlane(1), loop.m_Edges[3].get());
}

TEST(PolygonUpdatePoints, AMissingPlaneLeavesNullSlots)
{
    const Loop loop = MakeRegular(12);
    PlaneList edges = Pointers(loop.m_Edges);
    edges[0] = nullptr;
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(loop.m_SupportingPlane.get(), std::move(edges), {}));
    EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
    for (std::size_t k = 0; k < 12; ++k) {
        EXPECT_EQ(polygon->GetPoints()[k] == nullptr, k == 0 || k == 11);
    }
}

TEST(PolygonUpdatePoints, WithoutEdgesNothingHappens)
{
    const OwnedPolygon polygon(new ZULMRSBSPPolygon());
    EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
    EXPECT_EQ(polygon->GetNbPoints(), 0U);
    const OwnedPoint point = MakePoint(0, 0, 0);
    const OwnedPolygon pointsOnly(new ZULMRSBSPPolygon(nullptr, {}, PointList{point.get()}));
    EXPECT_EQ(pointsOnly->UpdatePoints(), ZULMRSNoError);
    EXPECT_EQ(pointsOnly->GetNbPoints(), 1U);
}

// === InsertPointOnEdge

TEST(PolygonInsertPoint, PutsVertexEdgeAndOrientationAtThePosition)
{
    Listing list(3);
    const OwnedPoint point = MakePoint(9, 0, 0);
    const OwnedPlane plane = MakePlane(0, 1, 0, 0);
    EXPECT_EQ(list.m_Polygon->InsertPointOnEdge(1, point.get(), plane.get(), static_cast<char>(-1)),
              ZULMRSNoError);
    EXPECT_EQ(list.m_Polygon->GetPoints(), PointList({list.m_Points[0].get(), point.get(),
                                                      list.m_Points[1].get(), list.m_Points[2].get()}));
    EXPECT_EQ(list.m_Polygon->GetAllEdges(),
              PlaneList({list.m_Edges[0].get(), plane.get(), list.m_Edges[1].get(), list.m_Edges[2].get()}));
    EXPECT_EQ(Values(list.m_Polygon->GetAllEdgeOrientations()), std::vector<int>({1, -1, 2, 3}));
    EXPECT_EQ(point->GetRefCount(), 1);
    EXPECT_EQ(plane->GetRefCount(), 1);
}

TEST(PolygonInsertPoint, ThePositionAfterTheLastAppends)
{
    Listing list(3);
    const OwnedPoint point = MakePoint(9, 0, 0);
    const OwnedPlane plane = MakePlane(0, 1, 0, 0);
    EXPECT_EQ(list.m_Polygon->InsertPointOnEdge(3, point.get(), plane.get(), 4), ZULMRSNoError);
    EXPECT_EQ(list.m_Polygon->GetPoints().back(), point.get());
    EXPECT_EQ(list.m_Polygon->GetAllEdges().back(), plane.get());
    EXPECT_EQ(Values(list.m_Polygon->GetAllEdgeOrientations()), std::vector<int>({1, 2, 3, 4}));
}

TEST(PolygonInsertPoint, AMissingInputIsRefused)
{
    const Listing list(3);
    const OwnedPoint point = MakePoint(9, 0, 0);
    const OwnedPlane plane = MakePlane(0, 1, 0, 0);
    EXPECT_EQ(list.m_Polygon->InsertPointOnEdge(2, nullptr, plane.get(), 1), ZULMRSErrorInvalidInput);
    EXPECT_EQ(list.m_Polygon->InsertPointOnEdge(2, point.get(), nullptr, 1), ZULMRSErrorInvalidInput);
    EXPECT_EQ(list.m_Polygon->InsertPointOnEdge(4, point.get(), plane.get(), 1), ZULMRSErrorInvalidInput);
    list.ExpectLoop({0, 1, 2}, {0, 1, 2}, {1, 2, 3});
    EXPECT_EQ(point->GetRefCount(), 0);
    EXPECT_EQ(plane->GetRefCount(), 0);
}

TEST(PolygonInsertPoint, APolygonWithoutItsPointsIsRefused)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    const OwnedPoint point = MakePoint(9, 0, 0);
    const OwnedPlane plane = MakePlane(0, 1, 0, 0);
    EXPECT_EQ(polygon->InsertPointOnEdge(2, point.get(), plane.get(), 1), ZULMRSErrorInvalidInput);
    EXPECT_EQ(polygon->GetNbEdges(), 4U);
    EXPECT_EQ(polygon->GetNbPoints(), 0U);
}

// === RemovePoints

TEST(PolygonRemovePoints, TakesTheEdgesAtTheSamePositionsAndReleasesNothing)
{
    const Listing list(5);
    EXPECT_EQ(list.m_Polygon->RemovePoints(list.Points({1, 3})), ZULMRSNoError);
    list.ExpectLoop({0, 2, 4}, {0, 2, 4}, {1, 3, 5});
    EXPECT_EQ(RefCounts(list.m_Points), std::vector<int>(5, 1));
    EXPECT_EQ(RefCounts(list.m_Edges), std::vector<int>(5, 1));
    for (const std::size_t i : {1U, 3U}) {
        list.m_Points[i]->Release();
        list.m_Edges[i]->Release();
    }
}

TEST(PolygonRemovePoints, StrangersAndAnEmptyListAreIgnored)
{
    const Listing list(3);
    const OwnedPoint stranger = MakePoint(0, 0, 0);
    EXPECT_EQ(list.m_Polygon->RemovePoints({}), ZULMRSNoError);
    EXPECT_EQ(list.m_Polygon->RemovePoints({stranger.get()}), ZULMRSNoError);
    list.ExpectLoop({0, 1, 2}, {0, 1, 2}, {1, 2, 3});
}

TEST(PolygonRemovePoints, APointGivenTwiceTakesItsPositionTwice)
{
    const Listing list(5);
    EXPECT_EQ(list.m_Polygon->RemovePoints(list.Points({1, 1})), ZULMRSNoError);
    list.ExpectLoop({0, 3, 4}, {0, 3, 4}, {1, 4, 5});
    for (const std::size_t i : {1U, 2U}) {
        list.m_Points[i]->Release();
        list.m_Edges[i]->Release();
    }
}

TEST(PolygonRemovePoints, TheLastPointGivenTwiceIsRemovedOnce)
{
    const Listing list(3);
    EXPECT_EQ(list.m_Polygon->RemovePoints(list.Points({2, 2})), ZULMRSNoError);
    list.ExpectLoop({0, 1}, {0, 1}, {1, 2});
    list.m_Points[2]->Release();
    list.m_Edges[2]->Release();
}

TEST(PolygonRemovePoints, OnlyTheFirstOccurrenceGoes)
{
    const Listing list(4);
    list.m_Polygon->ReplacePoint(list.m_Points[3].get(), list.m_Points[1].get());
    EXPECT_EQ(list.m_Polygon->RemovePoints(list.Points({1})), ZULMRSNoError);
    list.ExpectLoop({0, 2, 3}, {0, 2, 1}, {1, 3, 4});
    list.m_Points[1]->Release();
    list.m_Edges[1]->Release();
}

// === ReplacePoint

TEST(PolygonReplacePoint, ExchangesOneReferenceForAllSlots)
{
    const Listing list(3);
    const OwnedPoint point = MakePoint(9, 0, 0);
    ZULMRSBSPPoint* const old = list.m_Points[0].get();
    list.m_Polygon->ReplacePoint(list.m_Points[2].get(), old);
    EXPECT_EQ(old->GetRefCount(), 2);
    list.m_Polygon->ReplacePoint(old, point.get());
    EXPECT_EQ(list.m_Polygon->GetPoints(), PointList({point.get(), list.m_Points[1].get(), point.get()}));
    EXPECT_EQ(point->GetRefCount(), 1);
    EXPECT_EQ(old->GetRefCount(), 1);
    // Two slots, one reference: the books are put right here.
    point->AddRef();
    old->Release();
}

TEST(PolygonReplacePoint, APointThatIsNotThereExchangesItsReferenceAllTheSame)
{
    const Listing list(3);
    const OwnedPoint q = MakePoint(8, 0, 0);
    const OwnedPoint r = MakePoint(9, 0, 0);
    q->AddRef();
    list.m_Polygon->ReplacePoint(q.get(), r.get());
    EXPECT_EQ(q->GetRefCount(), 0);
    EXPECT_EQ(r->GetRefCount(), 1);
    list.ExpectLoop({0, 1, 2}, {0, 1, 2}, {1, 2, 3});
    r->Release();
}

TEST(PolygonReplacePoint, NullAndTheSamePointChangeNothing)
{
    const Listing list(3);
    ZULMRSBSPPoint* const point = list.m_Points[1].get();
    list.m_Polygon->ReplacePoint(nullptr, point);
    list.m_Polygon->ReplacePoint(point, nullptr);
    list.m_Polygon->ReplacePoint(point, point);
    list.ExpectLoop({0, 1, 2}, {0, 1, 2}, {1, 2, 3});
    EXPECT_EQ(RefCounts(list.m_Points), std::vector<int>(3, 1));
}

TEST(PolygonReplacePoint, TheLastReferenceOfTheOldPointDestroysIt)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    const OwnedPoint point = MakePoint(1, -1, 0);
    ZULMRSBSPPoint* const vertex = polygon->GetCachedPoint(0);
    EXPECT_EQ(square.m_Edges[0]->GetRefCount(), 2);
    polygon->ReplacePoint(vertex, point.get());
    EXPECT_EQ(square.m_Edges[0]->GetRefCount(), 1);
    EXPECT_EQ(polygon->GetCachedPoint(0), point.get());
}

// === Reversal

TEST(PolygonReverse, TheLoopKeepsItsFirstEdgeAndItsOrientations)
{
    const Listing list(4);
    EXPECT_EQ(list.m_Polygon->ReverseLoop(), ZULMRSNoError);
    list.ExpectLoop({0, 3, 2, 1}, {3, 2, 1, 0}, {1, 2, 3, 4});
    EXPECT_EQ(RefCounts(list.m_Points), std::vector<int>(4, 1));
    EXPECT_EQ(RefCounts(list.m_Edges), std::vector<int>(4, 1));
}

TEST(PolygonReverse, VerticesStillLieOnTheirEdges)
{
    const Loop loop = MakeRegular(7);
    const OwnedPolygon polygon = loop.MakePolygon();
    polygon->UpdatePoints();
    polygon->ReverseLoop();
    for (std::size_t k = 0; k < 7; ++k) {
        const ZULMRSBSPPoint& point = *polygon->GetPoints()[k];
        const auto planes = point.GetPlanes();
        for (const std::size_t edge : {k, (k + 1) % 7}) {
            EXPECT_NE(std::find(planes.begin(), planes.end(), polygon->GetEdge(edge)), planes.end());
        }
    }
}

TEST(PolygonReverse, WithoutPointsTheEdgesAloneAreReversed)
{
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    EXPECT_EQ(polygon->ReverseLoop(), ZULMRSNoError);
    EXPECT_EQ(polygon->GetAllEdges(), PlaneList({square.m_Edges[0].get(), square.m_Edges[3].get(),
                                                 square.m_Edges[2].get(), square.m_Edges[1].get()}));
    EXPECT_EQ(polygon->GetNbPoints(), 0U);
    const OwnedPolygon empty(new ZULMRSBSPPolygon());
    EXPECT_EQ(empty->ReverseLoop(), ZULMRSNoError);
    EXPECT_EQ(empty->ReverseLoopWithoutPoint(), ZULMRSNoError);
}

TEST(PolygonReverse, AShortCacheIsReversedWithNullForWhatIsMissing)
{
    const Loop square = MakeSquare();
    const OwnedPoint a = MakePoint(1, -1, 0);
    const OwnedPoint b = MakePoint(1, 1, 0);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(square.m_SupportingPlane.get(), Pointers(square.m_Edges),
                                                    PointList{a.get(), b.get()}));
    EXPECT_EQ(polygon->ReverseLoop(), ZULMRSNoError);
    EXPECT_EQ(polygon->GetPoints(), PointList({nullptr, nullptr, b.get(), a.get()}));
}

TEST(PolygonReverse, WithoutPointMakesTheLastEdgeFirst)
{
    const Listing list(4);
    EXPECT_EQ(list.m_Polygon->ReverseLoopWithoutPoint(), ZULMRSNoError);
    list.ExpectLoop({3, 2, 1, 0}, {0, 1, 2, 3}, {4, 3, 2, 1});
}

// === DEBUG_ClearAllPoints

TEST(PolygonClearPoints, ReleasesAndDropsThem)
{
    const Listing list(3);
    list.m_Polygon->DEBUG_ClearAllPoints();
    list.ExpectLoop({0, 1, 2}, {}, {1, 2, 3});
    EXPECT_EQ(RefCounts(list.m_Points), std::vector<int>(3, 0));
    EXPECT_EQ(RefCounts(list.m_Edges), std::vector<int>(3, 1));
    list.m_Polygon->DEBUG_ClearAllPoints();
}

TEST(PolygonClearPoints, TheCacheCanBeFilledAgain)
{
    const Loop loop = MakeRegular(10);
    const OwnedPolygon polygon = loop.MakePolygon();
    polygon->UpdatePoints();
    polygon->DEBUG_ClearAllPoints();
    EXPECT_NE(polygon->GetCachedPoint(4), nullptr);
    polygon->DEBUG_ClearAllPoints();
    polygon->UpdatePoints();
    EXPECT_EQ(polygon->GetNbPoints(), 10U);
    EXPECT_NE(polygon->GetPoints()[9], nullptr);
}

// === Check

int CheckText(const ZULMRSBSPPolygon& polygon, std::string& text)
{
    const LineCapture output;
    const int problems = polygon.Check();
    text = output.GetText();
    return problems;
}

std::string SupportLine(const ZULMRSBSPPolygon& polygon, const ZULMRSBSPPlane* edge)
{
    return "ZULMRSBSPPolygon::Check  ID " + Address(&polygon) +
           " Colinear Supporting Plane (ID=" + Address(polygon.GetSupportingPlane()) +
           ") parallel to Edge ID  " + Address(edge) + "\n";
}

std::string EdgeLine(const ZULMRSBSPPolygon& polygon, std::size_t i)
{
    return "ZULMRSBSPPolygon::Check  ID " + Address(&polygon) + ". " + std::to_string(i) +
           "th Edge is a Colinear Edges ID=" + Address(polygon.GetEdge((i + 1) % polygon.GetNbEdges())) +
           " parallel to consecutive Edge ID=" + Address(polygon.GetEdge(i)) + "\n";
}

TEST(PolygonCheck, ASoundPolygonIsSilent)
{
    std::string text;
    EXPECT_EQ(CheckText(*MakeSquare().MakePolygon(), text), 0);
    EXPECT_EQ(text, "");
    EXPECT_EQ(CheckText(*OwnedPolygon(new ZULMRSBSPPolygon()), text), 0);
    EXPECT_EQ(text, "");
}

TEST(PolygonCheck, ParallelConsecutiveEdgesAreReported)
{
    Loop loop{MakePlane(0, 0, 1, 0), {}};
    loop.m_Edges.push_back(MakePlane(0, 1, 0, -1));
    loop.m_Edges.push_back(MakePlane(0, -2, 0, 3));
    loop.m_Edges.push_back(MakePlane(1, 0, 0, -1));
    const OwnedPolygon polygon = loop.MakePolygon();
    std::string text;
    EXPECT_EQ(CheckText(*polygon, text), 1);
    EXPECT_EQ(text, EdgeLine(*polygon, 0));
}

TEST(PolygonCheck, AnEdgeParallelToTheSupportIsReportedFirst)
{
    Loop loop = MakeSquare();
    loop.m_Edges[1] = MakePlane(0, 0, -3, 1);
    loop.m_Edges[2] = MakePlane(0, 0, 5, 1);
    const OwnedPolygon polygon = loop.MakePolygon();
    std::string text;
    EXPECT_EQ(CheckText(*polygon, text), 3);
    EXPECT_EQ(text, SupportLine(*polygon, loop.m_Edges[1].get()) + EdgeLine(*polygon, 1) +
                        SupportLine(*polygon, loop.m_Edges[2].get()));
}

TEST(PolygonCheck, TwoEdgesAreComparedTwice)
{
    Loop loop{MakePlane(0, 0, 1, 0), {}};
    loop.m_Edges.push_back(MakePlane(0, 1, 0, -1));
    loop.m_Edges.push_back(MakePlane(0, -1, 0, -1));
    const OwnedPolygon polygon = loop.MakePolygon();
    std::string text;
    EXPECT_EQ(CheckText(*polygon, text), 2);
    EXPECT_EQ(text, EdgeLine(*polygon, 0) + EdgeLine(*polygon, 1));
}

TEST(PolygonCheck, OneEdgeIsNotComparedWithItself)
{
    Loop loop{MakePlane(0, 0, 1, 0), {}};
    loop.m_Edges.push_back(MakePlane(0, 1, 0, -1));
    std::string text;
    EXPECT_EQ(CheckText(*loop.MakePolygon(), text), 0);
    EXPECT_EQ(text, "");
}

TEST(PolygonCheck, NullPlanesAreSkipped)
{
    const Loop square = MakeSquare();
    const OwnedPlane flat = MakePlane(0, 0, 2, 0);
    const OwnedPolygon unsupported(new ZULMRSBSPPolygon(
        nullptr, PlaneList{flat.get(), nullptr, square.m_Edges[0].get(), square.m_Edges[2].get()}, {}));
    std::string text;
    EXPECT_EQ(CheckText(*unsupported, text), 1);
    EXPECT_EQ(text, EdgeLine(*unsupported, 2));
    const OwnedPolygon nothing(new ZULMRSBSPPolygon(nullptr, PlaneList(3, nullptr), {}));
    EXPECT_EQ(CheckText(*nothing, text), 0);
    EXPECT_EQ(text, "");
}
}  // namespace
