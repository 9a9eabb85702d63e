#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "ZULMRSBSPPolyhedron.h"
#include "ZULMRSMathUtilities.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestPolygons.h"

using namespace ZULTest;

namespace
{
using Ring = std::unordered_map<ZULMRSBSPPoint*, std::vector<ZULMRSBSPPolygon*>>;

constexpr char Inward = static_cast<char>(-1);

ZULMathOBB MakeBox()
{
    return ZULMathOBB(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 2, 3}, {10, 20, 30}));
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

class PolyhedronQueries : public testing::Test
{
protected:
    OwnedPolyhedron m_Box{new ZULMRSBSPPolyhedron(MakeBox(), nullptr)};
    OwnedPolyhedron m_Empty{new ZULMRSBSPPolyhedron()};
};

// === Rings, edges, points, faces

TEST_F(PolyhedronQueries, ThreeFacesMeetAtEachVertexOfABox)
{
    Ring ring;
    EXPECT_EQ(m_Box->BuildOneRingOfVertices(ring), ZULMRSNoError);
    EXPECT_EQ(ring.size(), 8U);
    for (const auto& [point, faces] : ring) {
        ASSERT_EQ(faces.size(), 3U);
        std::size_t last = 0;
        for (const ZULMRSBSPPolygon* face : faces) {
            std::size_t position = 0;
            EXPECT_TRUE(face->FindPointPosition(point, position));
            EXPECT_TRUE(m_Box->FindPolygonPosition(face, position));
            // In face order.
            EXPECT_TRUE(face == faces.front() || position > last);
            last = position;
        }
        EXPECT_EQ(point->GetRefCount(), 2);
    }
}

TEST_F(PolyhedronQueries, RingsAddToTheMap)
{
    Ring ring;
    ring[nullptr];
    m_Box->BuildOneRingOfVertices(ring);
    m_Box->BuildOneRingOfVertices(ring);
    EXPECT_EQ(ring.size(), 9U);
    EXPECT_EQ(ring[m_Box->GetPolygon(0)->GetPoints()[0]].size(), 6U);
    EXPECT_EQ(m_Empty->BuildOneRingOfVertices(ring), ZULMRSNoError);
    EXPECT_EQ(ring.size(), 9U);
}

TEST_F(PolyhedronQueries, RingsStopAtAFaceWithoutPoints)
{
    m_Box->GetPolygon(1)->DEBUG_ClearAllPoints();
    Ring ring;
    EXPECT_EQ(m_Box->BuildOneRingOfVertices(ring), ZULMRSErrorPointsNotUpdated);
    // What the first face gave stays.
    EXPECT_EQ(ring.size(), 4U);
    EXPECT_EQ(ring[m_Box->GetPolygon(0)->GetPoints()[0]],
              std::vector<ZULMRSBSPPolygon*>({m_Box->GetPolygon(0)}));
}

TEST_F(PolyhedronQueries, RingsStopAtANullPoint)
{
    ZULMRSBSPPolygon& face = *m_Box->GetPolygon(0);
    face.DEBUG_ClearAllPoints();
    face.ResizePoints();
    ZULMRSBSPPoint* const first = face.GetCachedPoint(0);
    Ring ring;
    EXPECT_EQ(m_Box->BuildOneRingOfVertices(ring), ZULMRSErrorPointsNotUpdated);
    EXPECT_EQ(ring.size(), 1U);
    EXPECT_EQ(ring.count(first), 1U);
}

TEST_F(PolyhedronQueries, AVertexHeldTwiceByAFaceIsListedTwice)
{
    const OwnedPlane plane = MakePlane(0, 0, 1, 0);
    const OwnedPoint point = MakePoint(0, 0, 0);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(plane.get(), std::vector<ZULMRSBSPPlane*>(2, plane.get()),
                                                    std::vector<ZULMRSBSPPoint*>(2, point.get())));
    m_Empty->AddAPolygon(polygon.get(), 1);
    Ring ring;
    EXPECT_EQ(m_Empty->BuildOneRingOfVertices(ring), ZULMRSNoError);
    EXPECT_EQ(ring[point.get()], std::vector<ZULMRSBSPPolygon*>(2, polygon.get()));
}

TEST_F(PolyhedronQueries, TheEdgesOfABoxAreItsPlanes)
{
    std::unordered_set<ZULMRSBSPPlane*> planes;
    EXPECT_EQ(m_Box->ComputeAllEdges(planes), ZULMRSNoError);
    EXPECT_EQ(planes.size(), 6U);
    for (const ZULMRSBSPPolygon* polygon : m_Box->GetPolygons()) {
        EXPECT_EQ(planes.count(polygon->GetSupportingPlane()), 1U);
    }
}

TEST_F(PolyhedronQueries, EdgesAddToTheSetNullIncludedSupportsNot)
{
    const OwnedPlane support = MakePlane(0, 0, 1, 0);
    const OwnedPlane edge = MakePlane(1, 0, 0, 0);
    const OwnedPlane before = MakePlane(0, 1, 0, 0);
    const OwnedPolygon polygon(
        new ZULMRSBSPPolygon(support.get(), std::vector<ZULMRSBSPPlane*>{edge.get(), nullptr}, {}));
    m_Empty->AddAPolygon(polygon.get(), 1);
    std::unordered_set<ZULMRSBSPPlane*> planes{before.get()};
    EXPECT_EQ(m_Empty->ComputeAllEdges(planes), ZULMRSNoError);
    EXPECT_EQ(planes, std::unordered_set<ZULMRSBSPPlane*>({before.get(), edge.get(), nullptr}));
}

TEST_F(PolyhedronQueries, PointsAreThoseThatAreThere)
{
    EXPECT_EQ(m_Box->GetAllPoints().size(), 8U);
    EXPECT_TRUE(m_Empty->GetAllPoints().empty());
    const Loop square = MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    m_Empty->AddAPolygon(polygon.get(), 1);
    EXPECT_TRUE(m_Empty->GetAllPoints().empty());
    ZULMRSBSPPoint* const point = polygon->GetCachedPoint(1);
    EXPECT_EQ(m_Empty->GetAllPoints(), std::unordered_set<ZULMRSBSPPoint*>({point, nullptr}));
    EXPECT_EQ(point->GetRefCount(), 0);
}

TEST_F(PolyhedronQueries, FacesComeWithTheirOrientations)
{
    m_Box->ReversePolygonsOrientation();
    const std::vector<ZULMRSBSPPolyhedron::Face> faces = m_Box->GetAllPolygonsAndOrientations();
    ASSERT_EQ(faces.size(), 6U);
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(faces[i].first, m_Box->GetPolygon(i));
        EXPECT_EQ(static_cast<signed char>(faces[i].second), -1);
    }
    EXPECT_TRUE(m_Empty->GetAllPolygonsAndOrientations().empty());
    m_Box->GetPolygonsOrientations().pop_back();
    EXPECT_TRUE(m_Box->GetAllPolygonsAndOrientations().empty());
}

// === Inside

void ExpectBoxInside(const ZULMRSBSPPolyhedron& box)
{
    const double beyond = std::nextafter(11.0, 12.0);
    EXPECT_TRUE(box.PointIsInside(ZULMathPoint(10, 20, 30)));
    EXPECT_TRUE(box.PointIsInside(ZULMathPoint(11, 22, 33)));
    EXPECT_TRUE(box.PointIsInside(ZULMathPoint(9, 20, 30)));
    EXPECT_FALSE(box.PointIsInside(ZULMathPoint(beyond, 20, 30)));
    EXPECT_FALSE(box.PointIsInside(ZULMathPoint(10, 17, 30)));
    EXPECT_FALSE(box.PointIsInside(ZULMathPoint(10, 20, 34)));
    EXPECT_TRUE(box.PointIsInside(MakePoint(10, 20, 30).get()));
    EXPECT_FALSE(box.PointIsInside(MakePoint(beyond, 20, 30).get()));
    for (const ZULMRSBSPPoint* corner : box.GetAllPoints()) {
        EXPECT_TRUE(box.PointIsInside(corner));
    }
}

TEST_F(PolyhedronQueries, TheBoundaryCountsAsInside)
{
    ExpectBoxInside(*m_Box);
    const OwnedPolyhedron turned(new ZULMRSBSPPolyhedron(MakeTurnedBox(), nullptr));
    EXPECT_TRUE(turned->PointIsInside(ZULMathPoint(10, -20, 30)));
    for (const ZULMRSBSPPoint* corner : turned->GetAllPoints()) {
        EXPECT_TRUE(turned->PointIsInside(corner));
    }
    EXPECT_FALSE(turned->PointIsInside(ZULMathPoint(10, -20, 36)));
}

TEST_F(PolyhedronQueries, AFaceHeldReversedAnswersTheSame)
{
    for (std::size_t i = 0; i < 6; ++i) {
        ZULMRSBSPPolygon& face = *m_Box->GetPolygon(i);
        const auto [a, b, c, d] = face.GetSupportingPlane()->GetCoords();
        const OwnedPlane reversed = MakePlane(-a, -b, -c, -d);
        face.SetSupportingPlane(reversed.get());
        m_Box->GetPolygonsOrientations()[i] = Inward;
        ExpectBoxInside(*m_Box);
    }
}

TEST_F(PolyhedronQueries, AnUnknownOrientationNeverRejects)
{
    std::fill(m_Box->GetPolygonsOrientations().begin(), m_Box->GetPolygonsOrientations().end(), char{0});
    EXPECT_TRUE(m_Box->PointIsInside(ZULMathPoint(1000, 0, 0)));
    EXPECT_TRUE(m_Empty->PointIsInside(ZULMathPoint(1000, 0, 0)));
}

TEST_F(PolyhedronQueries, ANullPointIsOutside)
{
    EXPECT_FALSE(m_Box->PointIsInside(nullptr));
}

TEST_F(PolyhedronQueries, AFaceWithoutPlaneBoundsNothing)
{
    m_Box->GetPolygon(5)->SetSupportingPlane(nullptr);
    EXPECT_TRUE(m_Box->PointIsInside(ZULMathPoint(1000, 20, 30)));
    EXPECT_FALSE(m_Box->PointIsInside(ZULMathPoint(-1000, 20, 30)));
}

TEST_F(PolyhedronQueries, AMissingOrientationIsOutOfRange)
{
    m_Box->GetPolygonsOrientations().pop_back();
    EXPECT_THROW(m_Box->PointIsInside(ZULMathPoint(10, 20, 30)), std::out_of_range);
    EXPECT_THROW(m_Box->PointIsInside(MakePoint(10, 20, 30).get()), std::out_of_range);
    // A face before the gap has already decided.
    EXPECT_FALSE(m_Box->PointIsInside(ZULMathPoint(10, 20, 34)));
}

TEST_F(PolyhedronQueries, EveryPredicateIsEvaluatedBeforeAnAnswerIsLookedAt)
{
    std::vector<Owner<PlaneStub>> planes;
    std::vector<OwnedPolygon> faces;
    for (int i = 0; i < 4; ++i) {
        planes.push_back(Own(new PlaneStubWithDoubles({1, 0, 0, 0})));
        faces.emplace_back(new ZULMRSBSPPolygon(planes.back().get(), 0));
        m_Empty->AddAPolygon(faces.back().get(), 1);
    }
    EXPECT_FALSE(m_Empty->PointIsInside(ZULMathPoint(1, 0, 0)));
    for (const auto& plane : planes) {
        EXPECT_FALSE(plane->m_Calls.empty());
        plane->m_Calls.clear();
    }
    EXPECT_FALSE(m_Empty->PointIsInside(MakePoint(1, 0, 0).get()));
    for (const auto& plane : planes) {
        EXPECT_FALSE(plane->m_Calls.empty());
    }
}

// === Box

std::array<double, 3> SortedExtents(const ZULMathOBB& box)
{
    std::array<double, 3> extents{box.GetExtents().x, box.GetExtents().y, box.GetExtents().z};
    std::sort(extents.begin(), extents.end());
    return extents;
}

void ExpectSameBox(const ZULMathOBB& a, const ZULMathOBB& b)
{
    const auto numbers = [](const ZULMathOBB& box) {
        std::vector<double> all;
        for (const ZULMathVector& v : {box.GetAxisU(), box.GetAxisV(), box.GetAxisW(), box.GetExtents()}) {
            all.insert(all.end(), {v.x, v.y, v.z});
        }
        all.insert(all.end(), {box.GetCenter().x, box.GetCenter().y, box.GetCenter().z});
        return all;
    };
    EXPECT_EQ(numbers(a), numbers(b));
}

TEST_F(PolyhedronQueries, ExactCornersGiveABoxWithoutMargin)
{
    double error = -1.0;
    const ZULMathOBB box = m_Box->GetOBB(&error);
    EXPECT_EQ(error, 0.0);
    const std::array<double, 3> extents = SortedExtents(box);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(extents[i], static_cast<double>(i + 1), 1e-11);
    }
    EXPECT_NEAR(box.GetCenter().x, 10, 1e-11);
    EXPECT_NEAR(box.GetCenter().y, 20, 1e-11);
    EXPECT_NEAR(box.GetCenter().z, 30, 1e-11);
    ExpectSameBox(m_Box->GetOBB(nullptr), box);
}

TEST_F(PolyhedronQueries, TheMarginIsOneAndAHalfTimesTheErrorThatIsReported)
{
    const OwnedPolyhedron turned(new ZULMRSBSPPolyhedron(MakeTurnedBox(), nullptr));
    double largest = 0.0;
    std::vector<ZULMathPoint> corners;
    for (const ZULMRSBSPPoint* point : turned->GetAllPoints()) {
        const auto [numbers, owned] = point->GetApproximatedXYZError();
        corners.emplace_back((*numbers)[0], (*numbers)[1], (*numbers)[2]);
        largest = std::max(largest, (*numbers)[3]);
        if (owned) {
            delete numbers;
        }
    }
    ASSERT_GT(largest, 0.0);
    ZULMathOBB expected;
    ASSERT_EQ(expected.DefineElements(corners.data(), corners.size()), 0);
    expected.Inflate(2.25 * largest);
    double error = -1.0;
    const ZULMathOBB box = turned->GetOBB(&error);
    EXPECT_EQ(error, 1.5 * largest);
    EXPECT_DOUBLE_EQ(box.GetExtents().x, expected.GetExtents().x);
    EXPECT_DOUBLE_EQ(box.GetExtents().y, expected.GetExtents().y);
    EXPECT_DOUBLE_EQ(box.GetExtents().z, expected.GetExtents().z);
    const std::array<double, 3> extents = SortedExtents(box);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(extents[i], static_cast<double>(i + 1), 1e-10);
    }
}

TEST_F(PolyhedronQueries, TheBoxMakesMissingPoints)
{
    for (ZULMRSBSPPolygon* polygon : m_Box->GetPolygons()) {
        polygon->DEBUG_ClearAllPoints();
    }
    double error = -1.0;
    const ZULMathOBB box = m_Box->GetOBB(&error);
    EXPECT_EQ(error, 0.0);
    EXPECT_NEAR(SortedExtents(box)[2], 3, 1e-11);
    EXPECT_EQ(m_Box->GetPolygon(0)->GetNbPoints(), 4U);
    // Each face now has points of its own.
    EXPECT_EQ(m_Box->GetAllPoints().size(), 24U);
}

TEST_F(PolyhedronQueries, WithoutPointsTheBoxIsTheDefaultOne)
{
    double error = -1.0;
    ExpectSameBox(m_Empty->GetOBB(&error), ZULMathOBB());
    EXPECT_EQ(error, -1.0);
}

TEST_F(PolyhedronQueries, ANullPointCountsAsTheOrigin)
{
    const OwnedPlane plane = MakePlane(0, 0, 1, -5);
    const OwnedPoint point = MakePoint(5, 5, 5);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(plane.get(), std::vector<ZULMRSBSPPlane*>(2, plane.get()),
                                                    std::vector<ZULMRSBSPPoint*>{point.get(), nullptr}));
    m_Empty->AddAPolygon(polygon.get(), 1);
    double error = -1.0;
    const ZULMathOBB box = m_Empty->GetOBB(&error);
    EXPECT_EQ(error, 0.0);
    EXPECT_NEAR(box.GetCenter().x, 2.5, 1e-11);
    EXPECT_NEAR(box.GetCenter().y, 2.5, 1e-11);
    EXPECT_NEAR(box.GetCenter().z, 2.5, 1e-11);
}

TEST_F(PolyhedronQueries, WhereFittingFailsTheBoxIsTheDefaultOne)
{
    const OwnedPoint point = MakePoint(std::numeric_limits<double>::infinity(), 0, 0);
    m_Box->GetPolygon(0)->GetPoints().push_back(point.get());
    point->AddRef();
    double error = -1.0;
    ExpectSameBox(m_Box->GetOBB(&error), ZULMathOBB());
    EXPECT_EQ(error, -1.0);
}
}  // namespace
