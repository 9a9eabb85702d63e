#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULMRSBSPPredicatesStubs.h"
#include "ZULTestAllocation.h"

// Planes and points of a caller's own: what the relations of points ask of them, in which order, and what
// they give back.
namespace
{
using namespace ZULMRSBSPPredicates;
using namespace ZULTest;

// What a point records.
constexpr int PointType = 0;
constexpr int PointDynamic = 1;
constexpr int PointInterval = 2;
constexpr int PointFloatRing = 3;
constexpr int PointXYZ = 6;

/// How many of the planes, from the first on, were asked for anything; no plane after one that was not.
int NbAsked(const StubScene& scene)
{
    int asked = 0;
    bool isOver = false;
    for (const auto& plane : scene.m_Planes) {
        EXPECT_FALSE(isOver && !plane->m_Calls.empty());
        isOver = isOver || plane->m_Calls.empty();
        asked += isOver ? 0 : 1;
    }
    return asked;
}

TEST(ZULMRSBSPPredicatesPointCalls, TheSameObjectIsNotAskedAnything)
{
    const StubScene scene({1, 2, 3});
    EXPECT_EQ(ArePointsEqual(*scene.m_Point, *scene.m_Point), ZULMRSExtendedTrue);
    EXPECT_EQ(LexicographicOrder(*scene.m_Point, *scene.m_Point), ZULMRSExtendedFalse);
    EXPECT_TRUE(scene.m_Point->m_Calls.empty());
    EXPECT_EQ(NbAsked(scene), 0);
}

TEST(ZULMRSBSPPredicatesPointCalls, TheSamePlanesInAnyOrderAreNotAskedAnything)
{
    const StubScene scene({1, 2, 3});
    const auto plane = [&scene](std::size_t i) { return scene.m_Planes[i].get(); };
    for (const auto& [i, j, k] : std::vector<std::array<std::size_t, 3>>{
             {0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}}) {
        // Even one that claims to be elsewhere.
        const auto other = Own(new PointStub({plane(i), plane(j), plane(k)}, {7, 7, 7, 1}));
        EXPECT_EQ(ArePointsEqual(*scene.m_Point, *other), ZULMRSExtendedTrue);
        EXPECT_EQ(ArePointsEqual(*other, *scene.m_Point), ZULMRSExtendedTrue);
        EXPECT_TRUE(other->m_Calls.empty());
    }
    // Twice one plane is another triple than once.
    const auto twice = Own(new PointStub({plane(0), plane(0), plane(1)}, {1, 2, 3, 1}));
    const auto other = Own(new PointStub({plane(0), plane(1), plane(1)}, {1, 2, 3, 1}));
    EXPECT_TRUE(twice->m_Calls.empty());
    EXPECT_EQ(ArePointsEqual(*twice, *other), ZULMRSExtendedTrue);
    EXPECT_FALSE(twice->m_Calls.empty());
    EXPECT_TRUE(scene.m_Point->m_Calls.empty());
    EXPECT_EQ(NbAsked(scene), 0);
}

TEST(ZULMRSBSPPredicatesPointCalls, ThePlanesOfTheFirstPointAreAskedInOrderUntilOneMisses)
{
    const auto ask = [](const Point3& place, int nbExpected, ZULMRSExtendedBool expected) {
        const StubScene first({1, 2, 3});
        const StubScene second(place);
        EXPECT_EQ(ArePointsEqual(*first.m_Point, *second.m_Point), expected);
        EXPECT_EQ(NbAsked(first), nbExpected);
        EXPECT_EQ(NbAsked(second), 0);
    };
    ask({9, 9, 9}, 1, ZULMRSExtendedFalse);
    ask({1, 9, 9}, 2, ZULMRSExtendedFalse);
    ask({1, 2, 9}, 3, ZULMRSExtendedFalse);
    ask({1, 2, 3}, 3, ZULMRSExtendedTrue);
    ask({9, 2, 3}, 1, ZULMRSExtendedFalse);
}

TEST(ZULMRSBSPPredicatesPointCalls, CoordinatesAreTestedOnThePlanesOfTheOtherPoint)
{
    const auto ask = [](const Point3& place, int nbExpected, ZULMRSExtendedBool expected) {
        for (const bool isFirst : {true, false}) {
            const StubScene planes({1, 2, 3});
            const StubScene cartesian(place);
            cartesian.m_Point->m_Type = ZULMRSBSPPointType_Cartesian;
            EXPECT_EQ(isFirst ? ArePointsEqual(*cartesian.m_Point, *planes.m_Point)
                              : ArePointsEqual(*planes.m_Point, *cartesian.m_Point),
                      expected);
            EXPECT_EQ(NbAsked(planes), nbExpected);
            EXPECT_EQ(NbAsked(cartesian), 0);
            EXPECT_EQ(cartesian.m_Point->m_Calls, (Slots{PointType, PointXYZ}));
            EXPECT_EQ(planes.m_Point->m_Calls, (Slots{PointType}));
        }
    };
    ask({9, 9, 9}, 1, ZULMRSExtendedFalse);
    ask({1, 9, 9}, 2, ZULMRSExtendedFalse);
    ask({1, 2, 9}, 3, ZULMRSExtendedFalse);
    ask({1, 2, 3}, 3, ZULMRSExtendedTrue);
}

TEST(ZULMRSBSPPredicatesPointCalls, TwoCartesianPointsAreTheirCoordinates)
{
    const StubScene p({1, 2, 3});
    const StubScene q({1, 2, 3});
    p.m_Point->m_Type = ZULMRSBSPPointType_Cartesian;
    q.m_Point->m_Type = ZULMRSBSPPointType_Cartesian;
    EXPECT_EQ(ArePointsEqual(*p.m_Point, *q.m_Point), ZULMRSExtendedTrue);
    EXPECT_EQ(p.m_Point->m_Calls, (Slots{PointType, PointXYZ}));
    EXPECT_EQ(q.m_Point->m_Calls, (Slots{PointType, PointXYZ}));
    q.m_Point->m_Representation[2] = NotANumber;
    EXPECT_EQ(ArePointsEqual(*p.m_Point, *q.m_Point), ZULMRSExtendedFalse);
    EXPECT_EQ(NbAsked(p) + NbAsked(q), 0);
}

TEST(ZULMRSBSPPredicatesPointCalls, ALinesSecondPlaneIsAskedOnlyOnTheFirst)
{
    const StubScene scene({1, 2, 3});
    const auto off = CartesianStub({1, 1, 1, 0});
    const auto on = CartesianStub({1, 1, 1, -6});
    EXPECT_EQ(IsPointOnLine(ZULMRSBSPLine(*off, *on), *scene.m_Point), ZULMRSExtendedFalse);
    EXPECT_FALSE(off->m_Calls.empty());
    EXPECT_TRUE(on->m_Calls.empty());
    off->m_Calls.clear();
    EXPECT_EQ(IsPointOnLine(ZULMRSBSPLine(*on, *off), *scene.m_Point), ZULMRSExtendedFalse);
    EXPECT_FALSE(on->m_Calls.empty());
    EXPECT_FALSE(off->m_Calls.empty());
    // The point's own planes hold it by identity.
    scene.m_Point->m_Calls.clear();
    EXPECT_EQ(IsPointOnLine(ZULMRSBSPLine(*scene.m_Planes[2], *scene.m_Planes[0]), *scene.m_Point),
              ZULMRSExtendedTrue);
    EXPECT_EQ(NbAsked(scene), 0);
    EXPECT_TRUE(scene.m_Point->m_Calls.empty());
}

TEST(ZULMRSBSPPredicatesPointCalls, ValidityIsTheDeterminantOfThePlanesNormals)
{
    const StubScene scene({1, 2, 3});
    EXPECT_EQ(IsPointValid(*scene.m_Point), ZULMRSExtendedTrue);
    EXPECT_TRUE(scene.m_Point->m_Calls.empty());
    for (const auto& plane : scene.m_Planes) {
        EXPECT_EQ(WithoutType(*plane), (Slots{Double, Double, Double}));
        plane->m_Calls.clear();
    }
    ZULMRSBSPPlane* p = scene.m_Planes[0].get();
    ZULMRSBSPPlane* q = scene.m_Planes[1].get();
    for (const auto& [p1, p2, p3] :
         std::vector<std::array<ZULMRSBSPPlane*, 3>>{{p, p, q}, {p, q, p}, {q, p, p}}) {
        EXPECT_EQ(IsPointValid(*Own(new PointStub({p1, p2, p3}, {}))), ZULMRSExtendedFalse);
    }
    EXPECT_EQ(IsPointValid(*Own(new PointStub({p, q, nullptr}, {}))), ZULMRSExtendedUndetermined);
    EXPECT_EQ(NbAsked(scene), 0);
    // Planes that cannot deliver leave the determinant open, which is not a proven zero.
    const StubScene computed({1, 2, 3}, false);
    for (const auto& plane : computed.m_Planes) {
        plane->m_GivesDynamic = false;
        plane->m_GivesInterval = false;
        plane->m_GivesFloatRing = false;
    }
    EXPECT_EQ(IsPointValid(*computed.m_Point), ZULMRSExtendedTrue);
}

TEST(ZULMRSBSPPredicatesPointCalls, TheOrderFetchesRepresentationsForEachAxisAndStage)
{
    const auto ask = [](const Point3& place, bool givesInterval, const Slots& expected, bool isAfter) {
        const StubScene p({1, 2, 3});
        const StubScene q(place);
        p.m_Point->m_GivesInterval = givesInterval;
        EXPECT_EQ(LexicographicOrder(*p.m_Point, *q.m_Point),
                  isAfter ? ZULMRSExtendedTrue : ZULMRSExtendedFalse);
        EXPECT_EQ(p.m_Point->m_Calls, expected);
        EXPECT_EQ(q.m_Point->m_Calls, expected);
        EXPECT_EQ(NbAsked(p) + NbAsked(q), 0);
    };
    constexpr int dynamic = PointDynamic;
    constexpr int interval = PointInterval;
    constexpr int exact = PointFloatRing;
    ask({0, 9, 9}, true, {dynamic}, true);
    ask({2, 0, 0}, true, {dynamic}, false);
    ask({1, 0, 9}, true, {dynamic, interval, dynamic}, true);
    ask({1, 2, 0}, true, {dynamic, interval, dynamic, interval, dynamic}, true);
    ask({1, 2, 3}, true, {dynamic, interval, dynamic, interval, dynamic, interval}, false);
    ask({1, 0, 9}, false, {dynamic, interval, exact, dynamic}, true);
    ask({1, 2, 3}, false, {dynamic, interval, exact, dynamic, interval, exact, dynamic, interval, exact},
        false);
}

TEST(ZULMRSBSPPredicatesPointCalls, TheOrdersShortcutOnKeptSignsNeedsNoDifference)
{
    // Products of both signs: the signs of the factors decide where the products would underflow.
    const StubScene p({1e-200, 0, 0});
    const StubScene q({-1e-200, 0, 0});
    p.m_Point->m_Representation[3] = 1e-200;
    q.m_Point->m_Representation[3] = 1e-200;
    EXPECT_EQ(LexicographicOrder(*p.m_Point, *q.m_Point), ZULMRSExtendedTrue);
    EXPECT_EQ(LexicographicOrder(*q.m_Point, *p.m_Point), ZULMRSExtendedFalse);
    EXPECT_EQ(p.m_Point->m_Calls, (Slots{PointDynamic, PointDynamic}));
}

TEST(ZULMRSBSPPredicatesPointCalls, TripleProductsTryTheArithmeticsInOrder)
{
    const auto p1 = ComputedStub({1, 0, 0, 0});
    const auto p2 = ComputedStub({0, 1, 0, 0});
    const StubScene q1({1, 2, 3});
    const StubScene q2({4, 5, 9});
    const StubScene q3({7, 8, 9});
    const auto first = [&] { return SignOfTripleProduct(*p1, *p2, *q1.m_Point, *q2.m_Point); };
    const auto second = [&] { return SignOfTripleProduct(*p1, *q1.m_Point, *q2.m_Point, *q3.m_Point); };
    const auto clear = [&] {
        p1->m_Calls.clear();
        for (const StubScene* scene : {&q1, &q2, &q3}) {
            scene->m_Point->m_Calls.clear();
        }
    };
    // x . (d x y) = -d_z; (d1 x d2) . x = 3 * 0 - 6 * 3.
    EXPECT_EQ(first(), -1);
    EXPECT_EQ(WithoutType(*p1), (Slots{Dynamic}));
    EXPECT_EQ(q1.m_Point->m_Calls, (Slots{PointDynamic}));
    EXPECT_EQ(q2.m_Point->m_Calls, (Slots{PointDynamic}));
    clear();
    EXPECT_EQ(second(), -1);
    EXPECT_EQ(WithoutType(*p1), (Slots{Dynamic}));
    EXPECT_EQ(q3.m_Point->m_Calls, (Slots{PointDynamic}));

    // The same normal twice, and points on one line.
    for (const StubScene* scene : {&q1, &q2, &q3}) {
        scene->m_Point->m_Representation[2] = 3;
    }
    p1->m_Equation = {1, 0, 0.1, 0};
    p2->m_Equation = {1, 0, 0.1, 0};
    for (const auto& [ask, scene] :
         std::vector<std::pair<std::function<int()>, const StubScene*>>{{first, &q2}, {second, &q3}}) {
        clear();
        EXPECT_EQ(ask(), 0);
        EXPECT_EQ(WithoutType(*p1).front(), Dynamic);
        EXPECT_EQ(WithoutType(*p1)[1], Interval);
        clear();
        scene->m_Point->m_GivesInterval = false;
        EXPECT_EQ(ask(), 0);
        EXPECT_EQ(WithoutType(*p1), (Slots{Dynamic, Interval, FloatRing}));
        EXPECT_EQ(scene->m_Point->m_Calls, (Slots{PointDynamic, PointInterval, PointFloatRing}));
        clear();
        scene->m_Point->m_GivesDynamic = false;
        EXPECT_EQ(ask(), 0);
        EXPECT_EQ(scene->m_Point->m_Calls, (Slots{PointDynamic, PointInterval, PointFloatRing}));
    }
    // Nobody can tell.
    p1->m_GivesFloatRing = false;
    EXPECT_EQ(first(), 2);
    EXPECT_EQ(second(), 2);
}

TEST(ZULMRSBSPPredicatesPointCalls, RepresentationsAreReadWithTheSignOfTheirW)
{
    const StubScene q1({1, 2, 3});
    const StubScene q2({4, 5, 9});
    const StubScene q3({7, 8, 9});
    const auto x = Cartesian(1, 0, 0, 0);
    const auto y = Cartesian(0, 1, 0, 0);
    for (int negative = 0; negative < 8; ++negative) {
        int bit = 1;
        for (const StubScene* scene : {&q1, &q2, &q3}) {
            for (double& number : scene->m_Point->m_Representation) {
                number = (negative & bit) != 0 ? -number : number;
            }
            bit *= 2;
        }
        EXPECT_EQ(SignOfTripleProduct(*x, *y, *q1.m_Point, *q2.m_Point), -1) << negative;
        EXPECT_EQ(SignOfTripleProduct(*x, *q1.m_Point, *q2.m_Point, *q3.m_Point), -1) << negative;
        EXPECT_EQ(LexicographicOrder(*q2.m_Point, *q1.m_Point), ZULMRSExtendedTrue) << negative;
        EXPECT_EQ(LexicographicOrder(*q1.m_Point, *q2.m_Point), ZULMRSExtendedFalse) << negative;
    }
}

TEST(ZULMRSBSPPredicatesPointCalls, WhatIsHandedOverIsFreed)
{
    const StubScene q1({1, 2, 3}, false);
    const StubScene q2({1, 2, 3}, false);
    const StubScene q3({1, 2, 3}, false);
    const auto plane = ComputedStub({0.1, 0.3, 0.7, 0});
    for (const bool givesInterval : {true, false}) {
        q2.m_Point->m_GivesInterval = givesInterval;
        const auto ask = [&] {
            LexicographicOrder(*q1.m_Point, *q2.m_Point);
            ArePointsEqual(*q1.m_Point, *q2.m_Point);
            SignOfTripleProduct(*plane, *plane, *q1.m_Point, *q2.m_Point);
            SignOfTripleProduct(*plane, *q1.m_Point, *q2.m_Point, *q3.m_Point);
            // What the stubs have recorded is no concern here.
            for (const StubScene* scene : {&q1, &q2, &q3}) {
                Slots().swap(scene->m_Point->m_Calls);
                for (const auto& own : scene->m_Planes) {
                    Slots().swap(own->m_Calls);
                }
            }
            Slots().swap(plane->m_Calls);
        };
        ask();
        const long before = GetLiveBlocks();
        ask();
        EXPECT_EQ(GetLiveBlocks(), before);
    }
}

/// Points derived from the library's, which are asked themselves.
class DerivedMeeting : public ZULMRSBSP3PlanesPoint
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
class DerivedCartesian : public ZULMRSBSPCartesianPoint
{
public:
    using ZULMRSBSPCartesianPoint::ZULMRSBSPCartesianPoint;
    std::array<double, 3> GetApproximatedXYZ() const override { return {5, 6, 7}; }
};

TEST(ZULMRSBSPPredicatesPointCalls, PointsDerivedFromTheLibrarysAreAskedThemselves)
{
    const auto x = Cartesian(1, 0, 0, -1);
    const auto y = Cartesian(0, 1, 0, -2);
    const auto z = Cartesian(0, 0, 1, -3);
    bool isValid = false;
    const auto meeting = Own(new DerivedMeeting({x.get(), y.get(), z.get()}, isValid));
    EXPECT_EQ(LexicographicOrder(*meeting, *AtCoordinates({1, 2, 3})), ZULMRSExtendedFalse);
    EXPECT_EQ(meeting->m_Calls, 3);
    const auto cartesian = Own(new DerivedCartesian(ZULMathPoint(1, 2, 3)));
    EXPECT_EQ(ArePointsEqual(*cartesian, *AtCoordinates({5, 6, 7})), ZULMRSExtendedTrue);
    EXPECT_EQ(ArePointsEqual(*AtCoordinates({1, 2, 3}), *cartesian), ZULMRSExtendedFalse);
}
}  // namespace
