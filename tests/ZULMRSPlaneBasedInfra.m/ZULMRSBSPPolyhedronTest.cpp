#include "ZULMRSBSPPolyhedron.h"

#include <gtest/gtest.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "ZULMRSBSPInstanceCounters.h"
#include "ZULTestPolygons.h"

using namespace ZULTest;

namespace
{
using Face = ZULMRSBSPPolyhedron::Face;
using PolygonList = std::vector<ZULMRSBSPPolygon*>;

constexpr char Inward = static_cast<char>(-1);

std::vector<OwnedPolygon> MakePolygons(std::size_t count)
{
    std::vector<OwnedPolygon> polygons;
    for (std::size_t i = 0; i < count; ++i) {
        polygons.emplace_back(new ZULMRSBSPPolygon());
    }
    return polygons;
}

class PolyhedronFaces : public testing::Test
{
protected:
    void ExpectFaces(const ZULMRSBSPPolyhedron& polyhedron, const PolygonList& polygons,
                     const std::vector<int>& orientations) const
    {
        EXPECT_EQ(polyhedron.GetPolygons(), polygons);
        EXPECT_EQ(Values(polyhedron.GetPolygonsOrientations()), orientations);
    }

    std::vector<OwnedPolygon> m_Polygons = MakePolygons(3);
    ZULMRSBSPPolygon* m_P1 = m_Polygons[0].get();
    ZULMRSBSPPolygon* m_P2 = m_Polygons[1].get();
    ZULMRSBSPPolygon* m_P3 = m_Polygons[2].get();
    OwnedPolyhedron m_Polyhedron{new ZULMRSBSPPolyhedron()};
};

// === Adding

TEST_F(PolyhedronFaces, ANullPolygonIsIgnored)
{
    m_Polyhedron->AddAPolygon(nullptr, 1);
    EXPECT_EQ(m_Polyhedron->GetNbPolygons(), 0U);
    EXPECT_TRUE(m_Polyhedron->GetPolygonsOrientations().empty());
    EXPECT_EQ(m_Polyhedron->GetRefCount(), 0);
}

TEST_F(PolyhedronFaces, APolygonIsHeldWithItsOrientation)
{
    m_Polyhedron->AddAPolygon(m_P1, Inward);
    m_Polyhedron->AddAPolygon(m_P2, 1);
    ExpectFaces(*m_Polyhedron, {m_P1, m_P2}, {-1, 1});
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({1, 1, 0}));
    EXPECT_EQ(m_Polyhedron->GetPolygon(1), m_P2);
    EXPECT_EQ(m_Polyhedron->GetPolygon(std::size_t{0}), m_P1);
    EXPECT_EQ(static_cast<signed char>(m_Polyhedron->GetPolygonOrientation(0)), -1);
    EXPECT_EQ(m_Polyhedron->GetPolygonOrientation(std::size_t{1}), 1);
    EXPECT_EQ(m_Polyhedron->GetEndPolygonIterator() - m_Polyhedron->GetBeginPolygonIterator(), 2);
    EXPECT_EQ(*m_Polyhedron->GetBeginPolygonIterator(), m_P1);
    m_Polyhedron.reset();
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({0, 0, 0}));
}

TEST_F(PolyhedronFaces, APairOfNullIsSkippedWithItsOrientation)
{
    m_Polyhedron->AddPolygons(std::vector<Face>{{m_P1, 1}, {nullptr, Inward}, {m_P2, 0}, {m_P3, Inward}});
    ExpectFaces(*m_Polyhedron, {m_P1, m_P2, m_P3}, {1, 0, -1});
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({1, 1, 1}));
    EXPECT_GE(m_Polyhedron->GetPolygons().capacity(), 4U);
    EXPECT_GE(m_Polyhedron->GetPolygonsOrientations().capacity(), 4U);
    m_Polyhedron->AddPolygons(std::vector<Face>());
    EXPECT_EQ(m_Polyhedron->GetNbPolygons(), 3U);
}

TEST_F(PolyhedronFaces, ParallelListsAreAppendedBackwards)
{
    m_Polyhedron->AddPolygons({m_P1, m_P2, m_P3}, {1, Inward, 1}, true);
    ExpectFaces(*m_Polyhedron, {m_P3, m_P2, m_P1}, {-1, 1, -1});
    m_Polyhedron->AddPolygons({m_P1, nullptr, m_P2}, {1, 1, Inward}, false);
    ExpectFaces(*m_Polyhedron, {m_P3, m_P2, m_P1, m_P2, m_P1}, {-1, 1, -1, -1, 1});
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({2, 2, 1}));
}

TEST_F(PolyhedronFaces, ParallelListsNeedEveryOrientation)
{
    m_Polyhedron->AddPolygons({m_P1, m_P2}, {1}, true);
    m_Polyhedron->AddPolygons({}, {1}, true);
    EXPECT_EQ(m_Polyhedron->GetNbPolygons(), 0U);
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({0, 0, 0}));
}

TEST_F(PolyhedronFaces, FacesGatheredByManyThreadsAreAdded)
{
    tbb::concurrent_vector<Face, tbb::cache_aligned_allocator<Face>> faces;
    m_Polyhedron->AddPolygons(faces);
    EXPECT_EQ(m_Polyhedron->GetNbPolygons(), 0U);
    tbb::parallel_for(0, 300, [&](int i) {
        faces.push_back(i % 3 == 0 ? Face(nullptr, 1) : Face(m_P1, i % 3 == 1 ? char{1} : Inward));
    });
    m_Polyhedron->AddPolygons(faces);
    ASSERT_EQ(m_Polyhedron->GetNbPolygons(), 200U);
    const std::vector<int> orientations = Values(m_Polyhedron->GetPolygonsOrientations());
    EXPECT_EQ(std::count(orientations.begin(), orientations.end(), -1), 100);
    EXPECT_EQ(m_P1->GetRefCount(), 200);
}

TEST_F(PolyhedronFaces, TheConcurrentFormKeepsTheOrder)
{
    tbb::concurrent_vector<Face, tbb::cache_aligned_allocator<Face>> faces;
    faces.push_back({m_P2, 1});
    faces.push_back({nullptr, 1});
    faces.push_back({m_P3, Inward});
    m_Polyhedron->AddAPolygon(m_P1, 1);
    m_Polyhedron->AddPolygons(faces);
    ExpectFaces(*m_Polyhedron, {m_P1, m_P2, m_P3}, {1, 1, -1});
}

// === Removing and replacing

TEST_F(PolyhedronFaces, OnlyTheFirstOccurrenceIsRemoved)
{
    m_Polyhedron->AddPolygons(std::vector<Face>{{m_P1, 1}, {m_P2, 1}, {m_P1, Inward}});
    m_Polyhedron->RemovePolygon(m_P1);
    ExpectFaces(*m_Polyhedron, {m_P2, m_P1}, {1, -1});
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({1, 1, 0}));
}

TEST_F(PolyhedronFaces, RemovingWhatIsNotThereChangesNothing)
{
    m_Polyhedron->RemovePolygon(nullptr);
    m_Polyhedron->RemovePolygon(m_P1);
    m_Polyhedron->AddAPolygon(m_P2, 1);
    m_Polyhedron->RemovePolygon(m_P1);
    m_Polyhedron->RemovePolygon(nullptr);
    ExpectFaces(*m_Polyhedron, {m_P2}, {1});
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({0, 1, 0}));
}

TEST_F(PolyhedronFaces, RemovingTheLastReferenceDestroysThePolygon)
{
    const OwnedPlane plane = MakePlane(0, 0, 1, 0);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(plane.get(), 0));
    polygon->AddRef();
    m_Polyhedron->AddAPolygon(polygon.get(), 1);
    polygon->Release();
    EXPECT_EQ(polygon->GetRefCount(), 1);
    m_Polyhedron->RemovePolygon(polygon.get());
    EXPECT_EQ(polygon->GetRefCount(), 0);
    auto* const lone = new ZULMRSBSPPolygon(plane.get(), 0);
    m_Polyhedron->AddAPolygon(lone, 1);
    lone->Release();
    EXPECT_EQ(plane->GetRefCount(), 2);
    m_Polyhedron->RemovePolygon(lone);
    EXPECT_EQ(plane->GetRefCount(), 1);
}

TEST_F(PolyhedronFaces, ReplacingInAnEmptyPolyhedronTakesReferences)
{
    m_Polyhedron->ReplacePolygons({{m_P1, 1}, {nullptr, 1}, {m_P2, Inward}});
    ExpectFaces(*m_Polyhedron, {m_P1, m_P2}, {1, -1});
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({1, 1, 0}));
}

TEST_F(PolyhedronFaces, ReplacingPassesReferencesBothWays)
{
    m_Polyhedron->AddPolygons(std::vector<Face>{{m_P1, 1}, {m_P2, 1}});
    m_P2->AddRef();
    m_P3->AddRef();
    m_Polyhedron->ReplacePolygons({{m_P3, Inward}, {nullptr, 1}, {m_P2, 1}});
    ExpectFaces(*m_Polyhedron, {m_P3, m_P2}, {-1, 1});
    // P1 was dropped without a release; P2 keeps the old polyhedron's too.
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({1, 2, 1}));
    m_P1->Release();
    m_P2->Release();
}

TEST_F(PolyhedronFaces, ReplacingTakesOverTheOnlyReference)
{
    const OwnedPlane plane = MakePlane(0, 0, 1, 0);
    auto* const fresh = new ZULMRSBSPPolygon(plane.get(), 0);
    m_Polyhedron->AddAPolygon(m_P1, 1);
    m_Polyhedron->ReplacePolygons({{fresh, 1}});
    EXPECT_EQ(fresh->GetRefCount(), 0);
    EXPECT_EQ(fresh->GetSupportingPlane(), plane.get());
    m_P1->Release();
}

TEST_F(PolyhedronFaces, ReplacingByNothingEmptiesIt)
{
    m_Polyhedron->AddAPolygon(m_P1, 1);
    m_Polyhedron->ReplacePolygons({});
    EXPECT_EQ(m_Polyhedron->GetNbPolygons(), 0U);
    EXPECT_TRUE(m_Polyhedron->GetPolygonsOrientations().empty());
    EXPECT_EQ(m_P1->GetRefCount(), 1);
    m_P1->Release();
}

TEST_F(PolyhedronFaces, ReversingTwiceRestoresEveryOrientation)
{
    m_Polyhedron->AddPolygons(std::vector<Face>{{m_P1, 1}, {m_P2, Inward}, {m_P3, 0}});
    m_Polyhedron->ReversePolygonsOrientation();
    ExpectFaces(*m_Polyhedron, {m_P1, m_P2, m_P3}, {-1, 1, 0});
    m_Polyhedron->ReversePolygonsOrientation();
    ExpectFaces(*m_Polyhedron, {m_P1, m_P2, m_P3}, {1, -1, 0});
}

// === Copying and merging

TEST_F(PolyhedronFaces, ACopySharesTheFacesAndCounts)
{
    m_Polyhedron->AddPolygons(std::vector<Face>{{m_P1, 1}, {m_P2, Inward}});
    m_Polyhedron->AddRef();
    const unsigned int before = ZULMRSBSPInstanceCounters::GetPolyhedra();
    {
        const OwnedPolyhedron copy(new ZULMRSBSPPolyhedron(*m_Polyhedron));
        EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPolyhedra(), before + 1);
        ExpectFaces(*copy, {m_P1, m_P2}, {1, -1});
        EXPECT_EQ(copy->GetRefCount(), 0);
        EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({2, 2, 0}));
    }
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({1, 1, 0}));
    m_Polyhedron->Release();
}

TEST_F(PolyhedronFaces, AssignmentKeepsTheReferencesOfTheFacesThatItDrops)
{
    m_Polyhedron->AddPolygons(std::vector<Face>{{m_P1, 1}, {m_P2, Inward}});
    const OwnedPolyhedron target(new ZULMRSBSPPolyhedron());
    target->AddAPolygon(m_P3, 1);
    target->AddRef();
    EXPECT_EQ(&(*target = *m_Polyhedron), target.get());
    ExpectFaces(*target, {m_P1, m_P2}, {1, -1});
    EXPECT_EQ(RefCounts(m_Polygons), std::vector<int>({2, 2, 1}));
    EXPECT_EQ(target->GetRefCount(), 1);
    EXPECT_EQ(m_Polyhedron->GetRefCount(), 0);
    m_P3->Release();
    target->Release();
}

TEST_F(PolyhedronFaces, SelfAssignmentTakesReferencesToo)
{
    m_Polyhedron->AddAPolygon(m_P1, 1);
    const ZULMRSBSPPolyhedron& self = *m_Polyhedron;
    *m_Polyhedron = self;
    ExpectFaces(*m_Polyhedron, {m_P1}, {1});
    EXPECT_EQ(m_P1->GetRefCount(), 2);
    m_P1->Release();
}

TEST_F(PolyhedronFaces, MergingAppendsPartAfterPartAndIsNotCounted)
{
    const std::vector<OwnedPolygon> first = MakePolygons(6);
    const std::vector<OwnedPolygon> second = MakePolygons(3);
    const OwnedPolyhedron a(new ZULMRSBSPPolyhedron());
    const OwnedPolyhedron b(new ZULMRSBSPPolyhedron());
    for (const OwnedPolygon& polygon : first) {
        a->AddAPolygon(polygon.get(), 1);
    }
    for (const OwnedPolygon& polygon : second) {
        b->AddAPolygon(polygon.get(), Inward);
    }
    b->AddAPolygon(first[2].get(), Inward);
    const unsigned int before = ZULMRSBSPInstanceCounters::GetPolyhedra();
    const OwnedPolyhedron merged(new ZULMRSBSPPolyhedron({a.get(), nullptr, b.get()}));
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPolyhedra(), before);
    PolygonList expected = Pointers(first);
    for (const OwnedPolygon& polygon : second) {
        expected.push_back(polygon.get());
    }
    expected.push_back(first[2].get());
    ExpectFaces(*merged, expected, {1, 1, 1, 1, 1, 1, -1, -1, -1, -1});
    EXPECT_EQ(merged->GetRefCount(), 0);
    EXPECT_EQ(first[0]->GetRefCount(), 2);
    EXPECT_EQ(first[2]->GetRefCount(), 4);
    const OwnedPolyhedron none(new ZULMRSBSPPolyhedron(std::vector<ZULMRSBSPPolyhedron*>()));
    EXPECT_EQ(none->GetNbPolygons(), 0U);
}

TEST_F(PolyhedronFaces, TheOtherConstructorsCountOnce)
{
    const unsigned int before = ZULMRSBSPInstanceCounters::GetPolyhedra();
    const OwnedPolyhedron empty(new ZULMRSBSPPolyhedron());
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPolyhedra(), before + 1);
    const OwnedPolyhedron box(new ZULMRSBSPPolyhedron(ZULMathOBB(), nullptr));
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPolyhedra(), before + 2);
}

TEST_F(PolyhedronFaces, SharingFollowsTheCommonProtocol)
{
    ZULMRSBSPPolyhedron* slot = nullptr;
    ZULMRSBSPPolyhedron::Replace(slot, nullptr);
    ZULMRSBSPPolyhedron::Replace(slot, m_Polyhedron.get());
    EXPECT_EQ(m_Polyhedron->GetRefCount(), 1);
    ZULMRSBSPPolyhedron::Replace(slot, m_Polyhedron.get());
    EXPECT_EQ(m_Polyhedron->GetRefCount(), 1);
    ZULMRSBSPPolyhedron::Replace(slot, nullptr);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(m_Polyhedron->GetRefCount(), 0);
    ZULMRSBSPPolyhedron::ReleaseObject(nullptr);
}

// === Looking up

TEST_F(PolyhedronFaces, PolygonsAreFoundByTheirAddress)
{
    m_Polyhedron->AddPolygons(std::vector<Face>{{m_P1, 1}, {m_P2, 1}, {m_P2, 1}});
    std::size_t position = 99;
    EXPECT_FALSE(m_Polyhedron->FindPolygonPosition(m_P3, position));
    EXPECT_EQ(position, 99U);
    EXPECT_TRUE(m_Polyhedron->FindPolygonPosition(m_P2, position));
    EXPECT_EQ(position, 1U);
}

TEST_F(PolyhedronFaces, SupportingPlanesAreFoundByTheirAddress)
{
    const OwnedPlane plane = MakePlane(0, 0, 1, 0);
    const OwnedPlane twin = MakePlane(0, 0, 1, 0);
    m_Polyhedron->AddPolygons(std::vector<Face>{{m_P1, 1}, {m_P2, 1}, {m_P3, 1}});
    m_P2->SetSupportingPlane(plane.get());
    m_P3->SetSupportingPlane(plane.get());
    const ZULMRSBSPPolyhedron& constant = *m_Polyhedron;
    const auto end = constant.GetPolygons().end();
    EXPECT_EQ(constant.FindPolygonWithSuppportingPlane(nullptr), end);
    EXPECT_EQ(constant.FindPolygonWithSuppportingPlane(twin.get()), end);
    EXPECT_EQ(constant.FindPolygonWithSuppportingPlane(plane.get()), constant.GetPolygons().begin() + 1);
}

TEST_F(PolyhedronFaces, ASharedEdgeIsFoundInTheOtherFace)
{
    // Two squares that share the points b and c, and a third without points.
    const OwnedPlane plane = MakePlane(0, 0, 1, 0);
    std::vector<OwnedPoint> points;
    for (int i = 0; i < 6; ++i) {
        points.push_back(MakePoint(i, 0, 0));
    }
    const std::vector<ZULMRSBSPPoint*> p = Pointers(points);
    const std::vector<ZULMRSBSPPlane*> edges(4, plane.get());
    const OwnedPolygon left(new ZULMRSBSPPolygon(plane.get(), std::vector<ZULMRSBSPPlane*>(edges),
                                                 std::vector<ZULMRSBSPPoint*>{p[0], p[1], p[2], p[3]}));
    const OwnedPolygon right(new ZULMRSBSPPolygon(plane.get(), std::vector<ZULMRSBSPPlane*>(edges),
                                                  std::vector<ZULMRSBSPPoint*>{p[2], p[1], p[4], p[5]}));
    m_Polyhedron->AddPolygons(std::vector<Face>{{m_P1, 1}, {left.get(), 1}, {right.get(), 1}});
    const ZULMRSBSPPolyhedron& constant = *m_Polyhedron;
    const auto begin = constant.GetPolygons().begin();
    const auto end = constant.GetPolygons().end();
    const ZULMRSBSPPolygonEdge shared(p[1], p[2], true);
    std::size_t position = 99;
    EXPECT_EQ(constant.FindPolygonSharingEdge(shared, position, nullptr), begin + 1);
    EXPECT_EQ(position, 2U);
    EXPECT_EQ(constant.FindPolygonSharingEdge(shared, position, left.get()), begin + 2);
    EXPECT_EQ(position, 1U);
    position = 99;
    EXPECT_EQ(constant.FindPolygonSharingEdge(ZULMRSBSPPolygonEdge(p[0], p[1], true), position, left.get()),
              end);
    EXPECT_EQ(position, 99U);
    ZULMRSBSPPolygonEdge backwards = shared;
    backwards.SwapPoints();
    EXPECT_EQ(constant.FindPolygonSharingEdge(backwards, position, nullptr), end);
    EXPECT_EQ(position, 99U);
}

TEST_F(PolyhedronFaces, AnEdgeOfTwoNullsIsNowhere)
{
    // Two null slots side by side look like such an edge.
    m_Polyhedron->AddAPolygon(m_P1, 1);
    m_P1->GetPoints().resize(4, nullptr);
    std::size_t position = 99;
    const ZULMRSBSPPolyhedron& constant = *m_Polyhedron;
    EXPECT_EQ(constant.FindPolygonSharingEdge(ZULMRSBSPPolygonEdge(), position, nullptr),
              constant.GetPolygons().end());
    EXPECT_EQ(position, 99U);
}

TEST_F(PolyhedronFaces, SizeCountsReservedSlots)
{
    EXPECT_EQ(m_Polyhedron->EstimateInternalSize(), sizeof(ZULMRSBSPPolyhedron));
    m_Polyhedron->GetPolygons().reserve(11);
    m_Polyhedron->GetPolygonsOrientations().reserve(13);
    EXPECT_EQ(m_Polyhedron->EstimateInternalSize(), sizeof(ZULMRSBSPPolyhedron) +
                                                        8 * m_Polyhedron->GetPolygons().capacity() +
                                                        m_Polyhedron->GetPolygonsOrientations().capacity());
}
}  // namespace
