#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULMRSBSPPredicatesStubs.h"

// Planes and points of a caller's own: which accessors the predicates call, in which order.
namespace
{
using namespace ZULMRSBSPPredicates;
using namespace ZULTest;

TEST(ZULMRSBSPPredicatesCalls, TheDeterminantOfCartesianNormalsReadsCoefficients)
{
    const auto p = CartesianStub({1, 0, 0, 1});
    const auto q = CartesianStub({0, 1, 0, 1});
    const auto r = CartesianStub({0, 0, 1, 1});
    EXPECT_EQ(SignOf3PlanesDeterminant(*p, *q, *r), 1);
    for (const auto* plane : {p.get(), q.get(), r.get()}) {
        EXPECT_EQ(plane->m_Calls.front(), Type);
        EXPECT_EQ(WithoutType(*plane), (Slots{Double, Double, Double}));
    }
}

TEST(ZULMRSBSPPredicatesCalls, TheDeterminantOfOtherNormalsTriesTheArithmeticsInOrder)
{
    const auto p = ComputedStub({1, 2, 3, 0});
    const auto q = ComputedStub({4, 5, 6, 0});
    const auto r = ComputedStub({7, 8, 10, 0});
    EXPECT_EQ(SignOf3PlanesDeterminant(*p, *q, *r), -1);
    EXPECT_EQ(WithoutType(*p), (Slots{Dynamic}));
    r->m_Equation[2] = 9;
    EXPECT_EQ(SignOf3PlanesDeterminant(*p, *q, *r), 0);
    EXPECT_EQ(WithoutType(*p), (Slots{Dynamic, Dynamic, Interval}));
    p->m_Calls.clear();
    q->m_GivesDynamic = false;
    q->m_GivesInterval = false;
    EXPECT_EQ(SignOf3PlanesDeterminant(*p, *q, *r), 0);
    EXPECT_EQ(WithoutType(*p), (Slots{Dynamic, Interval, FloatRing}));
    q->m_GivesFloatRing = false;
    EXPECT_EQ(SignOf3PlanesDeterminant(*p, *q, *r), 2);
}

TEST(ZULMRSBSPPredicatesCalls, ACartesianPlaneAtCoordinatesReadsItsDoubles)
{
    const auto plane = CartesianStub({0.1, 0.1, 0, 0});
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, ZULMathPoint(0.3, -0.3, 1)), ZULMRSExtendedUndetermined);
    EXPECT_EQ(plane->m_Calls, (Slots{Type, Coords}));
}

TEST(ZULMRSBSPPredicatesCalls, AnotherPlaneAtCoordinatesTriesTheArithmeticsInOrder)
{
    const auto plane = ComputedStub({1, 1, 1, -6});
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, ZULMathPoint(1, 2, 4)), ZULMRSExtendedTrue);
    EXPECT_EQ(WithoutType(*plane), (Slots{Dynamic}));
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, ZULMathPoint(1, 2, 3)), ZULMRSExtendedUndetermined);
    EXPECT_EQ(WithoutType(*plane), (Slots{Dynamic, Dynamic, Interval}));
    plane->m_Calls.clear();
    plane->m_GivesDynamic = false;
    plane->m_GivesInterval = false;
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, ZULMathPoint(1, 2, 4)), ZULMRSExtendedTrue);
    EXPECT_EQ(WithoutType(*plane), (Slots{Dynamic, Interval, FloatRing}));
    plane->m_GivesFloatRing = false;
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, ZULMathPoint(1, 2, 4)), ZULMRSExtendedUndetermined);
}

TEST(ZULMRSBSPPredicatesCalls, AnOwnPlaneIsNotAskedAnything)
{
    const StubScene scene({1, 2, 3});
    EXPECT_EQ(IsPointInFrontOfPlane(*scene.m_Planes[1], *scene.m_Point), ZULMRSExtendedUndetermined);
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*scene.m_Planes[2], *scene.m_Point), ZULMRSExtendedUndetermined);
    EXPECT_TRUE(scene.m_Point->m_Calls.empty());
    EXPECT_TRUE(scene.m_Planes[1]->m_Calls.empty());
    EXPECT_TRUE(scene.m_Planes[2]->m_Calls.empty());
}

TEST(ZULMRSBSPPredicatesCalls, ACartesianPointIsItsCoordinates)
{
    const StubScene scene({1, 2, 3});
    scene.m_Point->m_Type = ZULMRSBSPPointType_Cartesian;
    const auto plane = CartesianStub({1, 1, 1, -6});
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, *scene.m_Point), ZULMRSExtendedUndetermined);
    EXPECT_EQ(scene.m_Point->m_Calls, (Slots{0, 5}));
    EXPECT_EQ(plane->m_Calls, (Slots{Type, Coords}));
}

TEST(ZULMRSBSPPredicatesCalls, AnotherPointIsItsRepresentations)
{
    const StubScene scene({1, 2, 3});
    const auto plane = CartesianStub({1, 1, 1, -5});
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, *scene.m_Point), ZULMRSExtendedTrue);
    EXPECT_EQ(scene.m_Point->m_Calls, (Slots{0, 1}));
    EXPECT_EQ(WithoutType(*plane), (Slots{Coords}));
    plane->m_Equation[3] = -6;
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, *scene.m_Point), ZULMRSExtendedUndetermined);
    EXPECT_EQ(scene.m_Point->m_Calls, (Slots{0, 1, 0, 1, 2}));
    for (const auto& own : scene.m_Planes) {
        EXPECT_TRUE(own->m_Calls.empty());
    }
}

TEST(ZULMRSBSPPredicatesCalls, AnotherPlaneAtAnotherPointTriesTheArithmeticsInOrder)
{
    const StubScene scene({1, 2, 3});
    const auto plane = ComputedStub({1, 1, 1, -5});
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, *scene.m_Point), ZULMRSExtendedTrue);
    EXPECT_EQ(WithoutType(*plane), (Slots{Dynamic}));
    plane->m_Equation[3] = -6;
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, *scene.m_Point), ZULMRSExtendedUndetermined);
    EXPECT_EQ(WithoutType(*plane), (Slots{Dynamic, Dynamic, Interval}));
}

TEST(ZULMRSBSPPredicatesCalls, TheLastStageReadsTheFourPlanesAndNotThePoint)
{
    const StubScene cartesian({0.1, 0.1, 0.1});
    const auto plane = CartesianStub({0.3, -0.3, 0, 0});
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, *cartesian.m_Point), ZULMRSExtendedUndetermined);
    EXPECT_EQ(cartesian.m_Point->m_Calls, (Slots{0, 1, 2}));
    for (const auto& own : cartesian.m_Planes) {
        EXPECT_EQ(WithoutType(*own), (Slots{Coords}));
    }
    const StubScene computed({0.1, 0.1, 0.1}, false);
    const auto other = ComputedStub({0.3, -0.3, 0, 0});
    EXPECT_EQ(IsPointInFrontOfPlane(*other, *computed.m_Point), ZULMRSExtendedUndetermined);
    EXPECT_EQ(computed.m_Point->m_Calls, (Slots{0, 1, 2}));
    for (const auto& own : computed.m_Planes) {
        EXPECT_EQ(WithoutType(*own), (Slots{FloatRing}));
    }
    EXPECT_EQ(WithoutType(*other), (Slots{Dynamic, Interval, FloatRing}));
}

TEST(ZULMRSBSPPredicatesCalls, AMissingRepresentationLeavesItToThePlanes)
{
    const StubScene scene({1, 2, 3}, false);
    scene.m_Point->m_GivesDynamic = false;
    scene.m_Point->m_GivesInterval = false;
    const auto plane = CartesianStub({1, 1, 1, -5});
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, *scene.m_Point), ZULMRSExtendedTrue);
    EXPECT_EQ(scene.m_Point->m_Calls, (Slots{0, 1, 2}));
    EXPECT_EQ(WithoutType(*scene.m_Planes[0]), (Slots{Dynamic}));
    // Planes that cannot deliver at all.
    scene.m_Planes[1]->m_GivesDynamic = false;
    scene.m_Planes[1]->m_GivesInterval = false;
    scene.m_Planes[1]->m_GivesFloatRing = false;
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, *scene.m_Point), ZULMRSExtendedUndetermined);
}

TEST(ZULMRSBSPPredicatesCalls, ARepresentationWhoseWIsNegativeIsReadWithItsSign)
{
    StubScene scene({1, 2, 3});
    scene.m_Point->m_Representation = {-1, -2, -3, -1};
    const auto plane = CartesianStub({1, 1, 1, -5});
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, *scene.m_Point), ZULMRSExtendedTrue);
    EXPECT_EQ(scene.m_Point->m_Calls, (Slots{0, 1, 2}));
}

/// A three-planes point of a caller's own with another interval representation.
class DerivedPoint : public ZULMRSBSP3PlanesPoint
{
public:
    using ZULMRSBSP3PlanesPoint::ZULMRSBSP3PlanesPoint;
    ZULMRSBSPQuadruple<ZULExpInterval> GetCartesianRepresentation_ExpInterval() const override
    {
        ++m_Calls;
        return ZULMRSBSP3PlanesPoint::GetCartesianRepresentation_ExpInterval();
    }
    mutable int m_Calls = 0;
};

TEST(ZULMRSBSPPredicatesCalls, APointDerivedFromTheLibrarysIsAskedItself)
{
    const auto x = Cartesian(1, 0, 0, -1);
    const auto y = Cartesian(0, 1, 0, -2);
    const auto z = Cartesian(0, 0, 1, -3);
    bool isValid = false;
    const auto point = Own(new DerivedPoint({x.get(), y.get(), z.get()}, isValid));
    EXPECT_EQ(IsPointInFrontOfPlane(*Cartesian(1, 1, 1, -6), *point), ZULMRSExtendedUndetermined);
    EXPECT_EQ(point->m_Calls, 1);
}

/// A three-points plane of a caller's own.
class DerivedPlane : public ZULMRSBSP3PointsPlane
{
public:
    using ZULMRSBSP3PointsPlane::ZULMRSBSP3PointsPlane;
    ZULMRSBSPQuadruple<ZULExpInterval> GetStdEquation_ExpInterval() const override
    {
        m_Calls.push_back(Interval);
        return ZULMRSBSP3PointsPlane::GetStdEquation_ExpInterval();
    }
    ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS> GetStdEquation_FloatRing() const override
    {
        m_Calls.push_back(FloatRing);
        return ZULMRSBSP3PointsPlane::GetStdEquation_FloatRing();
    }
    mutable Slots m_Calls;
};

TEST(ZULMRSBSPPredicatesCalls, APlaneDerivedFromTheLibrarysIsAskedItself)
{
    using Points = std::array<Point3, 3>;
    const auto plane =
        Own(new DerivedPlane(Points{Point3{0.1, 0.2, 0.3}, Point3{0.7, 0.4, 0.9}, Point3{0.6, 0.5, 0.1}}));
    const Point3 beyond = {0.1 + (0.7 - 0.1), 0.2 + (0.4 - 0.2), 0.3 + (0.9 - 0.3)};
    IsPointInFrontOfPlane(*plane, ZULMathPoint(beyond[0], beyond[1], beyond[2]));
    // Whether or not that point is one of the defining ones, this one is and needs no equation.
    plane->m_Calls.clear();
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, ZULMathPoint(0.7, 0.4, 0.9)), ZULMRSExtendedUndetermined);
    EXPECT_TRUE(plane->m_Calls.empty());
    const auto flat =
        Own(new DerivedPlane(Points{Point3{0.1, 0.3, 0.7}, Point3{0.1, 0.9, 0.2}, Point3{0.1, 0.4, 0.4}}));
    EXPECT_EQ(IsPointInFrontOfPlane(*flat, ZULMathPoint(0.1, 7, 7)), ZULMRSExtendedUndetermined);
    EXPECT_EQ(flat->m_Calls, (Slots{Interval, FloatRing}));
}

TEST(ZULMRSBSPPredicatesCalls, TheFastFormsReadDoubles)
{
    const StubScene scene({1, 2, 3});
    const auto plane = CartesianStub({1, 1, 1, -5});
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*plane, ZULMathPoint(1, 2, 3)), ZULMRSExtendedTrue);
    EXPECT_EQ(plane->m_Calls, (Slots{Double, Double, Double, Double}));
    plane->m_Calls.clear();
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*plane, *scene.m_Point), ZULMRSExtendedTrue);
    EXPECT_EQ(plane->m_Calls, (Slots{Coords}));
    for (const auto& own : scene.m_Planes) {
        EXPECT_EQ(own->m_Calls, (Slots{Coords}));
    }
    EXPECT_TRUE(scene.m_Point->m_Calls.empty());
}

TEST(ZULMRSBSPPredicatesCalls, TheSamePlaneIsNotAskedAnything)
{
    const auto plane = CartesianStub({0, 0, 0, 0});
    EXPECT_EQ(ArePlanesParallel(*plane, *plane), ZULMRSExtendedTrue);
    EXPECT_EQ(ArePlanesCoincident(*plane, *plane), ZULMRSExtendedTrue);
    EXPECT_EQ(CoincidentOrientation(*plane, *plane), ZULMRSExtendedTrue);
    EXPECT_TRUE(plane->m_Calls.empty());
}

TEST(ZULMRSBSPPredicatesCalls, MinorsOfCartesianPlanesAreTakenInOrder)
{
    const auto p = Own(new IndexRecorder({1, 2, 3, 4}));
    const auto q = Own(new IndexRecorder({2, 4, 6, 8}));
    EXPECT_EQ(ArePlanesParallel(*p, *q), ZULMRSExtendedTrue);
    EXPECT_EQ(p->m_Indices, (std::vector<int>{0, 1, 0, 2, 2, 1}));
    EXPECT_EQ(q->m_Indices, p->m_Indices);
    p->m_Indices.clear();
    EXPECT_EQ(ArePlanesCoincident(*p, *q), ZULMRSExtendedTrue);
    EXPECT_EQ(p->m_Indices, (std::vector<int>{0, 1, 1, 2, 2, 3, 3, 0, 0, 2, 1, 3, 2, 0, 3, 1}));
    p->m_Indices.clear();
    q->m_Equation[3] = 7;
    EXPECT_EQ(ArePlanesCoincident(*p, *q), ZULMRSExtendedFalse);
    EXPECT_EQ(p->m_Indices, (std::vector<int>{0, 1, 1, 2, 2, 3}));
    p->m_Indices.clear();
    q->m_Equation[0] = -2;
    EXPECT_EQ(ArePlanesParallel(*p, *q), ZULMRSExtendedFalse);
    EXPECT_EQ(p->m_Indices, (std::vector<int>{0, 1}));
    p->m_Indices.clear();
    EXPECT_EQ(CoincidentOrientation(*p, *q), ZULMRSExtendedFalse);
    EXPECT_EQ(p->m_Indices, (std::vector<int>{0}));
}

TEST(ZULMRSBSPPredicatesCalls, MinorsOfOtherPlanesHaveNoIntervalStage)
{
    const auto p = ComputedStub({1, 2, 3, 4});
    const auto q = ComputedStub({2, 4, 6, 8});
    EXPECT_EQ(ArePlanesParallel(*p, *q), ZULMRSExtendedTrue);
    for (const int call : WithoutType(*p)) {
        EXPECT_NE(call, Interval);
    }
    EXPECT_EQ(WithoutType(*p).back(), FloatRing);
    // A missing array leaves the minor to the exact stage; without that one too, the answer is no.
    p->m_Calls.clear();
    q->m_GivesDynamic = false;
    EXPECT_EQ(ArePlanesParallel(*p, *q), ZULMRSExtendedTrue);
    q->m_GivesFloatRing = false;
    EXPECT_EQ(ArePlanesParallel(*p, *q), ZULMRSExtendedFalse);
    EXPECT_EQ(ArePlanesCoincident(*p, *q), ZULMRSExtendedFalse);
}

TEST(ZULMRSBSPPredicatesCalls, OrientationsFetchEquationsForEachCoefficient)
{
    const auto p = ComputedStub({1, 2, 3, 4});
    const auto q = ComputedStub({2, 4, 6, 8});
    EXPECT_EQ(CoincidentOrientation(*p, *q), ZULMRSExtendedTrue);
    EXPECT_EQ(WithoutType(*p), (Slots{Dynamic, Dynamic, Dynamic, Dynamic}));
    p->m_Calls.clear();
    p->m_GivesDynamic = false;
    q->m_GivesInterval = false;
    q->m_Equation[1] = -1;
    EXPECT_EQ(CoincidentOrientation(*p, *q), ZULMRSExtendedFalse);
    EXPECT_EQ(WithoutType(*p), (Slots{Dynamic, Interval, FloatRing, Dynamic, Interval, FloatRing}));
    // A coefficient whose sign stays unknown counts as not negative.
    q->m_GivesFloatRing = false;
    EXPECT_EQ(CoincidentOrientation(*p, *q), ZULMRSExtendedTrue);
}

/// A plane whose filtered, or interval, normal is of uncertain sign.
class BlurredPlane : public PlaneStub
{
public:
    using PlaneStub::PlaneStub;
    ZULMRSBSPQuadruple<ZULExpDynamic> GetStdEquation_ExpDynamic() const override
    {
        m_Calls.push_back(Dynamic);
        return {new std::array<ZULExpDynamic, 4>{ZULExpDynamic(1e-17, 1.0, 4), ZULExpDynamic(1.0),
                                                 ZULExpDynamic(1.0), ZULExpDynamic(1.0)},
                true};
    }
    ZULMRSBSPQuadruple<ZULExpInterval> GetStdEquation_ExpInterval() const override
    {
        m_Calls.push_back(Interval);
        if (!m_GivesInterval) {
            return {nullptr, false};
        }
        const ZULExpInterval x = m_IsIntervalOpen ? ZULExpInterval(-1.0, 1.0) : ZULExpInterval(0.0);
        return {new std::array<ZULExpInterval, 4>{x, 0.0, 0.0, 5.0}, true};
    }
    bool m_IsIntervalOpen = false;
};

TEST(ZULMRSBSPPredicatesCalls, ValidityGoesThroughTheArithmeticsInOrder)
{
    const auto cartesian = CartesianStub({0, 0, 1, 0});
    EXPECT_EQ(IsPlaneValid(*cartesian), ZULMRSExtendedTrue);
    EXPECT_EQ(cartesian->m_Calls, (Slots{Type, Coords}));

    const auto computed = ComputedStub({0, 0, 0, 5});
    EXPECT_EQ(IsPlaneValid(*computed), ZULMRSExtendedFalse);
    EXPECT_EQ(WithoutType(*computed), (Slots{Dynamic}));
    computed->m_Equation[1] = -1e-300;
    EXPECT_EQ(IsPlaneValid(*computed), ZULMRSExtendedTrue);
    computed->m_GivesDynamic = false;
    EXPECT_EQ(IsPlaneValid(*computed), ZULMRSExtendedFalse);

    // One uncertain sign is enough to go on.
    const auto blurred = Own(new BlurredPlane({0, 0, 1, 0}));
    EXPECT_EQ(IsPlaneValid(*blurred), ZULMRSExtendedFalse);
    EXPECT_EQ(WithoutType(*blurred), (Slots{Dynamic, Interval}));
    blurred->m_IsIntervalOpen = true;
    blurred->m_Calls.clear();
    EXPECT_EQ(IsPlaneValid(*blurred), ZULMRSExtendedTrue);
    EXPECT_EQ(WithoutType(*blurred), (Slots{Dynamic, Interval, FloatRing}));
    blurred->m_GivesFloatRing = false;
    EXPECT_EQ(IsPlaneValid(*blurred), ZULMRSExtendedFalse);
    blurred->m_GivesInterval = false;
    blurred->m_GivesFloatRing = true;
    EXPECT_EQ(IsPlaneValid(*blurred), ZULMRSExtendedFalse);
}
}  // namespace
