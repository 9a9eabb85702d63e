#include "ZULMRSBSPPoint.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "ZULMRSBSP3PlanesPoint.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPCartesianPoint.h"
#include "ZULMRSBSPInstanceCounters.h"
#include "ZULTestAllocation.h"
#include "ZULTestNumbers.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestSupport.h"

using ZULTest::Own;
using ZULTest::PlaneStub;

namespace
{
using Triple = std::array<ZULMRSBSPPlane*, 3>;
using Calls = std::vector<int>;
using PlaneOwner = ZULTest::Owner<ZULMRSBSPPlane>;

PlaneOwner Cartesian(double a, double b, double c, double d)
{
    return PlaneOwner(ZULMRSBSPPlaneNS::CreateCartesianPlane(a, b, c, d));
}

/// A point of a caller's own, which records its virtual calls and delivers nothing.
class PointStub : public ZULMRSBSPPoint
{
public:
    PointStub() = default;
    explicit PointStub(const Triple& planes) : ZULMRSBSPPoint(planes) {}
    explicit PointStub(Triple&& planes) : ZULMRSBSPPoint(std::move(planes)) {}
    PointStub(ZULMRSBSPPlane* p1, ZULMRSBSPPlane* p2, ZULMRSBSPPlane* p3) : ZULMRSBSPPoint(p1, p2, p3) {}
    PointStub(const PointStub&) = default;
    PointStub& operator=(const PointStub&) = default;
    ~PointStub() override = default;

    ZULMRSBSPPointType GetType() const override { return ZULMRSBSPPointType_3Planes; }
    ZULMRSBSPQuadruple<ZULExpDynamic> GetCartesianRepresentation_ExpDynamic() const override
    {
        m_Calls.push_back(1);
        return {nullptr, false};
    }
    ZULMRSBSPQuadruple<ZULExpInterval> GetCartesianRepresentation_ExpInterval() const override
    {
        m_Calls.push_back(2);
        return {nullptr, false};
    }
    ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetCartesianRepresentation_FloatRing() const override
    {
        m_Calls.push_back(3);
        return {nullptr, false};
    }
    ZULMRSBSPQuadruple<double> GetApproximatedXYZError() const override { return {nullptr, false}; }
    ZULMathPoint GetApproximatedPoint() const override { return {}; }
    std::array<double, 3> GetApproximatedXYZ() const override { return {}; }
    bool ReplacePlaneByEquivalentPlane(ZULMRSBSPPlane* newPlane, ZULMRSBSPPlane* oldPlane) override
    {
        return ReplaceInTriple(newPlane, oldPlane);
    }
    /// Forgets the planes without releasing them, for shallow copies.
    void Forget() { m_Planes = {}; }

    mutable Calls m_Calls;
};

TEST(Point, TypesHaveTheirNumbers)
{
    EXPECT_EQ(ZULMRSBSPPointType_3Planes, 0);
    EXPECT_EQ(ZULMRSBSPPointType_Cartesian, 1);
}

#if ZUL_TEST_HAS_SLOTS
TEST(Point, SlotsComeInOrder)
{
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPoint::GetType), 0U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPoint::GetCartesianRepresentation_ExpDynamic), 1U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPoint::GetCartesianRepresentation_ExpInterval), 2U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPoint::GetCartesianRepresentation_FloatRing), 3U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPoint::GetApproximatedXYZError), 4U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPoint::GetApproximatedPoint), 5U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPoint::GetApproximatedXYZ), 6U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPoint::ReplacePlaneByEquivalentPlane), 7U);
}
#endif

TEST(Point, FieldsAreCountThenPlanes)
{
    auto plane = Own(new PlaneStub({1, 0, 0, 0}));
    auto point = Own(new PointStub(nullptr, plane.get(), nullptr));
    const ZULMRSBSPPoint& base = *point;
    EXPECT_EQ(sizeof(ZULMRSBSPPoint), 5 * sizeof(void*));
    EXPECT_EQ(ZULTest::PeekAt<std::int32_t>(base, sizeof(void*)), 0);
    EXPECT_EQ(ZULTest::PeekAt<Triple>(base, 2 * sizeof(void*)), (Triple{nullptr, plane.get(), nullptr}));
}

TEST(Point, ADefaultPointHasNoPlanes)
{
    auto point = Own(new PointStub);
    EXPECT_EQ(point->GetPlanes(), Triple{});
    EXPECT_EQ(point->GetRefCount(), 0);
}

TEST(Point, ConstructionTakesAReferenceOnEachPlane)
{
    std::vector<const PlaneStub*> destroyed;
    std::array<PlaneStub*, 3> planes{};
    for (PlaneStub*& plane : planes) {
        plane = new PlaneStub({1, 0, 0, 0});
        plane->m_Destroyed = &destroyed;
    }
    const Triple triple = {planes[0], planes[1], planes[2]};
    auto fromArray = Own(new PointStub(triple));
    auto fromMoved = Own(new PointStub(Triple(triple)));
    auto fromThree = Own(new PointStub(planes[0], planes[1], planes[2]));
    for (const PlaneStub* plane : planes) {
        EXPECT_EQ(plane->GetRefCount(), 3);
    }
    for (const PointStub* point : {fromArray.get(), fromMoved.get(), fromThree.get()}) {
        EXPECT_EQ(point->GetPlanes(), triple);
        EXPECT_EQ(point->GetP1(), planes[0]);
        EXPECT_EQ(point->GetP2(), planes[1]);
        EXPECT_EQ(point->GetP3(), planes[2]);
        EXPECT_EQ(point->GetPlane(0), point->GetP1());
        EXPECT_EQ(point->GetPlane(1), point->GetP2());
        EXPECT_EQ(point->GetPlane(2), point->GetP3());
    }
    EXPECT_EQ(planes[0]->GetRefCount(), 3);
    fromArray.reset();
    fromMoved.reset();
    for (PlaneStub* plane : planes) {
        EXPECT_EQ(plane->GetRefCount(), 1);
        plane->Release();
    }
    EXPECT_TRUE(destroyed.empty());
    fromThree.reset();
    EXPECT_EQ(destroyed, (std::vector<const PlaneStub*>{planes[0], planes[1], planes[2]}));
}

TEST(Point, APlaneThatStandsTwiceIsHeldTwice)
{
    std::vector<const PlaneStub*> destroyed;
    auto* plane = new PlaneStub({1, 0, 0, 0});
    plane->m_Destroyed = &destroyed;
    auto point = Own(new PointStub(plane, nullptr, plane));
    EXPECT_EQ(plane->GetRefCount(), 2);
    plane->Release();
    EXPECT_EQ(plane->GetRefCount(), 1);
    point.reset();
    EXPECT_EQ(destroyed.size(), 1U);
}

TEST(Point, CopiesAreShallow)
{
    auto plane = Own(new PlaneStub({1, 0, 0, 0}));
    auto other = Own(new PlaneStub({0, 1, 0, 0}));
    auto point = Own(new PointStub(plane.get(), nullptr, plane.get()));
    point->AddRef();
    auto copy = Own(new PointStub(*point));
    EXPECT_EQ(copy->GetRefCount(), 1);
    EXPECT_EQ(copy->GetPlanes(), point->GetPlanes());
    EXPECT_EQ(plane->GetRefCount(), 2);
    copy->Release();
    copy->Forget();

    auto target = Own(new PointStub(other.get(), nullptr, nullptr));
    EXPECT_EQ(other->GetRefCount(), 1);
    *target = *point;
    EXPECT_EQ(target->GetRefCount(), 1);
    EXPECT_EQ(plane->GetRefCount(), 2);
    EXPECT_EQ(other->GetRefCount(), 1);  // the target's old plane is not released
    target->Release();
    target->Forget();
    other->Release();
    point->Release();
}

TEST(Point, TheTemplateAccessorCallsTheSlotOfItsNumber)
{
    auto point = Own(new PointStub);
    point->GetCartesianRepresentationTpl<ZULExpDynamic>();
    point->GetCartesianRepresentationTpl<ZULExpInterval>();
    point->GetCartesianRepresentationTpl<ZULExpFloatRingExtensionTS>();
    EXPECT_EQ(point->m_Calls, (Calls{1, 2, 3}));
}

TEST(Point, ReplacementIsNullSafeAndReachesEverySlot)
{
    auto first = Own(new PlaneStub({1, 0, 0, 0}));
    auto second = Own(new PlaneStub({1, 0, 0, 0}));
    auto point = Own(new PointStub(first.get(), second.get(), first.get()));
    EXPECT_TRUE(point->ReplacePlaneByEquivalentPlane(second.get(), first.get()));
    EXPECT_EQ(first->GetRefCount(), 0);
    EXPECT_EQ(second->GetRefCount(), 3);
    EXPECT_FALSE(point->ReplacePlaneByEquivalentPlane(second.get(), first.get()));
    EXPECT_TRUE(point->ReplacePlaneByEquivalentPlane(second.get(), second.get()));
    EXPECT_EQ(second->GetRefCount(), 3);
    EXPECT_TRUE(point->ReplacePlaneByEquivalentPlane(nullptr, second.get()));
    EXPECT_EQ(second->GetRefCount(), 0);
    EXPECT_EQ(point->GetPlanes(), Triple{});
    EXPECT_TRUE(point->ReplacePlaneByEquivalentPlane(first.get(), nullptr));
    EXPECT_EQ(first->GetRefCount(), 3);
}

TEST(Point, NothingCountsPoints)
{
    auto point = Own(new PointStub);
    auto other = Own(ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(1, 2, 3)));
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPoints(), 0U);
}

TEST(PointCreation, FromCoordinates)
{
    const unsigned int before = ZULMRSBSPInstanceCounters::GetPlanes();
    auto point = Own(ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(1, 2, 3)));
    EXPECT_EQ(point->GetType(), ZULMRSBSPPointType_Cartesian);
    EXPECT_EQ(point->GetRefCount(), 0);
    EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(1, 2, 3));
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), before + 3);
}

TEST(PointCreation, FromPlanesAndCoordinates)
{
    auto x = Cartesian(1, 0, 0, -1);
    auto y = Cartesian(0, 1, 0, -2);
    auto z = Cartesian(0, 0, 1, -3);
    auto point = Own(ZULMRSBSPPointNS::CreatePoint(x.get(), y.get(), z.get(), ZULMathPoint(7, 8, 9)));
    EXPECT_EQ(point->GetType(), ZULMRSBSPPointType_Cartesian);
    EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(7, 8, 9));  // taken as supplied
    EXPECT_EQ(x->GetRefCount(), 1);
}

TEST(PointCreation, ANullPlaneGivesNoPoint)
{
    const ZULTest::LineCapture lines;
    auto x = Cartesian(1, 0, 0, -1);
    auto y = Cartesian(0, 1, 0, -2);
    for (const bool tryExact : {false, true}) {
        for (int missing = 0; missing < 3; ++missing) {
            bool isValid = true;
            EXPECT_EQ(ZULMRSBSPPointNS::CreatePoint(missing == 0 ? nullptr : x.get(),
                                                    missing == 1 ? nullptr : y.get(),
                                                    missing == 2 ? nullptr : x.get(), isValid, tryExact),
                      nullptr);
            EXPECT_FALSE(isValid);
        }
    }
    EXPECT_EQ(x->GetRefCount(), 0);
    EXPECT_EQ(lines.GetText(), "");
}

TEST(PointCreation, ThreeCanonicalPlanesGiveExactCoordinatesOnRequest)
{
    auto x = Cartesian(1, 0, 0, -1);
    auto y = Cartesian(0, -1, 0, 2);
    auto z = Cartesian(0, 0, 1, -3);
    bool isValid = false;
    auto exact = Own(ZULMRSBSPPointNS::CreatePoint(x.get(), y.get(), z.get(), isValid, true));
    EXPECT_TRUE(isValid);
    EXPECT_EQ(exact->GetType(), ZULMRSBSPPointType_Cartesian);
    EXPECT_EQ(exact->GetApproximatedPoint(), ZULMathPoint(1, 2, 3));
    EXPECT_EQ(exact->GetPlanes(), (Triple{x.get(), z.get(), y.get()}));  // oriented

    isValid = false;
    auto byPlanes = Own(ZULMRSBSPPointNS::CreatePoint(x.get(), y.get(), z.get(), isValid, false));
    EXPECT_TRUE(isValid);
    EXPECT_EQ(byPlanes->GetType(), ZULMRSBSPPointType_3Planes);
    EXPECT_EQ(byPlanes->GetApproximatedPoint(), ZULMathPoint(1, 2, 3));

    auto oblique = Cartesian(0, 0, 2, -6);
    isValid = false;
    auto other = Own(ZULMRSBSPPointNS::CreatePoint(x.get(), y.get(), oblique.get(), isValid, true));
    EXPECT_TRUE(isValid);
    EXPECT_EQ(other->GetType(), ZULMRSBSPPointType_3Planes);
}

TEST(PointCreation, ParallelPlanesGiveAnInvalidPointThatMustBeReleased)
{
    const ZULTest::LineCapture lines;
    auto x1 = Cartesian(1, 0, 0, -1);
    auto x2 = Cartesian(1, 0, 0, -2);
    auto z = Cartesian(0, 0, 1, -3);
    bool isValid = true;
    ZULMRSBSPPoint* point = ZULMRSBSPPointNS::CreatePoint(x1.get(), x2.get(), z.get(), isValid, false);
    ASSERT_NE(point, nullptr);
    EXPECT_FALSE(isValid);
    EXPECT_EQ(point->GetType(), ZULMRSBSPPointType_3Planes);
    EXPECT_EQ(x1->GetRefCount(), 1);
    point->Release();
    EXPECT_EQ(x1->GetRefCount(), 0);
    EXPECT_EQ(lines.GetText(),
              "[E] ERROR INVALID POINT (nul determinant) ( Error happened in function "
              "ZULMRSBSP3PlanesPoint::Init / Source : ZULMRSBSP3PlanesPoint / Line : 62)\n");
}

TEST(PointCreation, NullWhenMemoryIsExhausted)
{
    auto x = Cartesian(1, 0, 0, -1);
    auto y = Cartesian(0, 1, 0, -2);
    auto z = Cartesian(0, 0, 1, -3);
    const long before = ZULTest::GetLiveBlocks();
    for (int granted = 0; granted < 4; ++granted) {
        // The point, or one of its planes.
        const ZULTest::AllocationFailure failure(1, granted);
        EXPECT_EQ(ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(1, 2, 3)), nullptr);
    }
    for (const bool tryExact : {false, true}) {
        bool isValid = true;
        const ZULTest::AllocationFailure failure(1);
        EXPECT_EQ(ZULMRSBSPPointNS::CreatePoint(x.get(), y.get(), z.get(), isValid, tryExact), nullptr);
        EXPECT_FALSE(isValid);
    }
    {
        const ZULTest::AllocationFailure failure(1);
        EXPECT_EQ(ZULMRSBSPPointNS::CreatePoint(x.get(), y.get(), z.get(), ZULMathPoint()), nullptr);
    }
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
    EXPECT_EQ(x->GetRefCount(), 0);
}

TEST(ExactIntersection, CanonicalPlanesOfAnyOrderAndSign)
{
    const std::array<double, 3> expected = {1.25, -2.5, 1e-310};
    std::array<std::size_t, 3> order = {0, 1, 2};
    do {
        for (unsigned int signs = 0; signs < 8; ++signs) {
            std::array<PlaneOwner, 3> planes;
            for (std::size_t i = 0; i < 3; ++i) {
                const double k = (signs >> i & 1U) != 0 ? -1.0 : 1.0;
                std::array<double, 4> equation{};
                equation[order[i]] = k;
                equation[3] = -k * expected[order[i]];
                planes[i] = PlaneOwner(ZULMRSBSPPlaneNS::CreateCartesianPlane(equation));
            }
            const auto [isExact, coordinates] = ZULMRSBSPPointNS::IsIntersectionExactCartesian(
                {planes[0].get(), planes[1].get(), planes[2].get()});
            EXPECT_TRUE(isExact);
            EXPECT_EQ(coordinates, expected);
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(ExactIntersection, AnythingElseIsRefused)
{
    auto x = Cartesian(1, 0, 0, -1);
    auto y = Cartesian(0, -1, 0, 2);
    auto z = Cartesian(0, 0, 1, -3);
    auto scaled = Cartesian(2, 0, 0, -2);
    auto points = PlaneOwner(ZULMRSBSPPlaneNS::Create3PointsPlane(
        ZULMathPoint(0, 0, 0), ZULMathPoint(1, 0, 0), ZULMathPoint(0, 1, 0)));
    using ZULMRSBSPPointNS::IsIntersectionExactCartesian;
    EXPECT_TRUE(IsIntersectionExactCartesian({x.get(), y.get(), z.get()}).first);
    EXPECT_FALSE(IsIntersectionExactCartesian({scaled.get(), y.get(), z.get()}).first);
    EXPECT_FALSE(IsIntersectionExactCartesian({x.get(), scaled.get(), z.get()}).first);
    EXPECT_FALSE(IsIntersectionExactCartesian({x.get(), y.get(), points.get()}).first);
    EXPECT_FALSE(IsIntersectionExactCartesian({nullptr, y.get(), z.get()}).first);
    EXPECT_FALSE(IsIntersectionExactCartesian({x.get(), nullptr, z.get()}).first);
    EXPECT_FALSE(IsIntersectionExactCartesian({x.get(), y.get(), nullptr}).first);
}

TEST(ExactIntersection, PlanesOnOneAxisPassAndTheLaterOneWins)
{
    auto x1 = Cartesian(1, 0, 0, -1);
    auto x2 = Cartesian(1, 0, 0, -2);
    auto x3 = Cartesian(-1, 0, 0, 5);
    auto z = Cartesian(0, 0, 1, -3);
    using Result = std::pair<bool, std::array<double, 3>>;
    EXPECT_EQ(ZULMRSBSPPointNS::IsIntersectionExactCartesian({x1.get(), x2.get(), z.get()}),
              Result(true, {2, 0, 3}));
    EXPECT_EQ(ZULMRSBSPPointNS::IsIntersectionExactCartesian({x1.get(), x2.get(), x3.get()}),
              Result(true, {5, 0, 0}));
    bool isValid = false;
    auto point = Own(ZULMRSBSPPointNS::CreatePoint(x1.get(), x2.get(), z.get(), isValid, true));
    EXPECT_TRUE(isValid);
    EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(2, 0, 3));
}

TEST(ExactIntersection, PlanesAreAskedThroughTheirVirtualInterface)
{
    std::array<ZULTest::Owner<ZULTest::PlaneStubWithDoubles>, 3> stubs;
    for (std::size_t i = 0; i < 3; ++i) {
        std::array<double, 4> equation{};
        equation[i] = 1.0;
        equation[3] = -10.0 - static_cast<double>(i);
        stubs[i] = Own(new ZULTest::PlaneStubWithDoubles(equation));
        stubs[i]->m_Axis = static_cast<int>(i);
    }
    const auto [isExact, coordinates] =
        ZULMRSBSPPointNS::IsIntersectionExactCartesian({stubs[0].get(), stubs[1].get(), stubs[2].get()});
    EXPECT_TRUE(isExact);
    EXPECT_EQ(coordinates, (std::array<double, 3>{10, 11, 12}));
    for (const auto& stub : stubs) {
        EXPECT_EQ(stub->m_AxisSeen, -1);
        EXPECT_EQ(stub->m_Calls, (Calls{1, 6, 6}));
    }
    stubs[0]->m_Calls.clear();
    stubs[1]->m_Calls.clear();
    stubs[0]->m_Axis = -1;
    EXPECT_FALSE(
        ZULMRSBSPPointNS::IsIntersectionExactCartesian({stubs[0].get(), stubs[1].get(), stubs[2].get()})
            .first);
    EXPECT_EQ(stubs[0]->m_Calls, Calls{1});
    EXPECT_TRUE(stubs[1]->m_Calls.empty());
}

#if ZUL_HAS_SSE2
TEST(ExactIntersection, TheCallersEnvironmentDoesNotMatterAndStays)
{
    auto x = Cartesian(1, 0, 0, 5e-324);
    auto y = Cartesian(0, -1, 0, 0.1);
    auto z = Cartesian(0, 0, 1, -1e300);
    for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
        std::pair<bool, std::array<double, 3>> result;
        const auto left = ZULTest::RunUnder(word, [&] {
            result = ZULMRSBSPPointNS::IsIntersectionExactCartesian({x.get(), y.get(), z.get()});
        });
        EXPECT_EQ(left, word);
        EXPECT_TRUE(result.first);
        EXPECT_EQ(result.second, (std::array<double, 3>{-5e-324, 0.1, 1e300}));
    }
}
#endif
}  // namespace
