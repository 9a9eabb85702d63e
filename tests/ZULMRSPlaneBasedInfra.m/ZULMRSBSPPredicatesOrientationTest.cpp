#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <limits>
#include <thread>
#include <vector>

#include "ZULMRSBSPOrientation.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"

// The side of a plane on which a point lies, held against exact arithmetic.
namespace
{
using namespace ZULMRSBSPPredicates;
using namespace ZULTest;

using Point = Owner<ZULMRSBSPPoint>;

/// Four planes of which any may be tested at the meeting point of the three others.
struct FourPlanes {
    explicit FourPlanes(Scene scene) : m_Planes{scene.Plane(), scene.Plane(), scene.Plane(), scene.Plane()} {}

    /// Calls check(plane, point, expected) for every plane and both orientations of the others.
    template <class Check>
    void ForEveryCase(const Check& check) const
    {
        for (std::size_t tested = 0; tested < 4; ++tested) {
            const PlaneCase& p1 = m_Planes[(tested + 1) % 4];
            const PlaneCase& p2 = m_Planes[(tested + 2) % 4];
            const PlaneCase& p3 = m_Planes[(tested + 3) % 4];
            const int expected = DyadicSide(m_Planes[tested].m_Exact,
                                            DyadicMeetingPoint({p1.m_Exact, p2.m_Exact, p3.m_Exact}));
            const ZULMRSBSPPlane& plane = *m_Planes[tested].m_Plane;
            check(plane, *Meeting(p1.m_Plane, p2.m_Plane, p3.m_Plane), expected);
            check(plane, *Meeting(p2.m_Plane, p1.m_Plane, p3.m_Plane), expected);
        }
    }

    std::array<PlaneCase, 4> m_Planes;
};
constexpr std::size_t CasesPerFourPlanes = 8;

TEST(ZULMRSBSPPredicatesOrientation, MeetingPointsLieOnTheExactSideInEveryRegime)
{
    const Silence silence;
    Random random(22'001);
    const std::size_t scenes = CasesPerPredicate / CasesPerFourPlanes;
    ForAllKinds(scenes, [&random](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const FourPlanes planes(Scene(random, regime, position));
            planes.ForEveryCase(
                [regime](const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point, int expected) {
                    ASSERT_EQ(IsPointInFrontOfPlane(plane, point), expected) << NameOf(regime);
                });
            ASSERT_FALSE(testing::Test::HasFatalFailure());
        }
    });
}

TEST(ZULMRSBSPPredicatesOrientation, CoordinatesLieOnTheExactSideInEveryRegime)
{
    Random random(22'002);
    constexpr std::size_t planesPerScene = 4;
    ForAllKinds(CasesPerPredicate / planesPerScene, [&random](Regime regime, Position position,
                                                              std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            Scene scene(random, regime, position);
            const Point3 p = scene.GetPoint();
            const Point point = Own<ZULMRSBSPPoint>(new ZULMRSBSPCartesianPoint(ToMathPoint(p)));
            for (std::size_t k = 0; k < planesPerScene; ++k) {
                const PlaneCase plane = scene.Plane();
                const int expected = DyadicSide(plane.m_Exact, p);
                ASSERT_EQ(IsPointInFrontOfPlane(*plane.m_Plane, ToMathPoint(p)), expected) << NameOf(regime);
                ASSERT_EQ(IsPointInFrontOfPlane(*plane.m_Plane, Plane4{p[0], p[1], p[2], NotANumber}),
                          expected);
                ASSERT_EQ(IsPointInFrontOfPlane(*plane.m_Plane, *point), expected);
            }
        }
    });
}

TEST(ZULMRSBSPPredicatesOrientation, EveryStageIsRightWhereItDecides)
{
    using namespace ZULMRSBSPOrientation;
    const Silence silence;
    Random random(22'003);
    const auto isRight = [](ZULMRSBSPSign sign, int expected) {
        return !sign.IsDecided() || sign.ToKernelResult() == expected;
    };
    const std::size_t scenes = CasesPerPredicate / 4 / CasesPerFourPlanes;
    ForAllKinds(scenes, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            Scene scene(random, regime, position);
            const FourPlanes planes(scene);
            planes.ForEveryCase([&](const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point, int expected) {
                const ZULExpFloatScope scope;
                ASSERT_TRUE(isRight(FilterByRepresentation(plane, point).m_Sign, expected));
                ASSERT_TRUE(isRight(IntervalByRepresentation(plane, point).m_Sign, expected));
                ASSERT_TRUE(isRight(FilterByPlanes(plane, point), expected));
                ASSERT_TRUE(isRight(ExactByRows(plane, point), expected));
                ASSERT_TRUE(isRight(IntervalByPlanes(plane, point), expected));
                ASSERT_EQ(ExactByPlanes(plane, point).ToKernelResult(), expected);
            });
            ASSERT_FALSE(testing::Test::HasFatalFailure()) << NameOf(regime);
            for (const PlaneCase& plane : planes.m_Planes) {
                const Point3 p = scene.GetPoint();
                const int expected = DyadicSide(plane.m_Exact, p);
                const ZULExpFloatScope scope;
                ASSERT_TRUE(isRight(FilterAtCoordinates(*plane.m_Plane, ToMathPoint(p)), expected));
                ASSERT_TRUE(isRight(ExactAtCoordinatesByRows(*plane.m_Plane, ToMathPoint(p)), expected));
                ASSERT_TRUE(isRight(IntervalAtCoordinates(*plane.m_Plane, ToMathPoint(p)), expected));
                ASSERT_EQ(ExactAtCoordinates(*plane.m_Plane, ToMathPoint(p)).ToKernelResult(), expected);
            }
        }
    });
}

#if ZUL_HAS_SSE2
TEST(ZULMRSBSPPredicatesOrientation, AnswersDoNotDependOnTheEnvironmentAndLeaveItAlone)
{
    const Silence silence;
    Random random(22'004);
    const auto check = [](int expected, const auto& ask) {
        for (const ZULExpProcessor::ControlWord word : HostileControlWords()) {
            int answer = 99;
            const auto left = RunUnder(word, [&] { answer = ask(); });
            ASSERT_EQ(answer, expected) << std::hex << word;
            ASSERT_EQ(left, word);
        }
    };
    ForAllKinds(2'000 / ZUL_TEST_CASES_DIVISOR, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            Scene scene(random, regime, position);
            const Point3 p = scene.GetPoint();
            const FourPlanes planes(scene);
            planes.ForEveryCase([&](const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point, int expected) {
                check(expected, [&] { return IsPointInFrontOfPlane(plane, point); });
            });
            for (const PlaneCase& plane : planes.m_Planes) {
                check(DyadicSide(plane.m_Exact, p),
                      [&] { return IsPointInFrontOfPlane(*plane.m_Plane, ToMathPoint(p)); });
                const int fast = IsPointInFrontOfPlaneFast(*plane.m_Plane, ToMathPoint(p));
                check(fast, [&] { return IsPointInFrontOfPlaneFast(*plane.m_Plane, ToMathPoint(p)); });
            }
            ASSERT_FALSE(testing::Test::HasFatalFailure()) << NameOf(regime);
        }
    });
}
#endif

TEST(ZULMRSBSPPredicatesOrientation, ThreadsDoNotDisturbEachOther)
{
    const Silence silence;
    Random random(22'009);
    std::vector<FourPlanes> scenes;
    for (int i = 0; i < 50; ++i) {
        scenes.emplace_back(Scene(random, AllRegimes[static_cast<std::size_t>(i) % AllRegimes.size()],
                                  AllPositions[static_cast<std::size_t>(i) % AllPositions.size()]));
    }
    struct Question {
        const ZULMRSBSPPlane* m_Plane;
        Point m_Point;
        int m_Expected;
    };
    std::vector<Question> questions;
    for (const FourPlanes& planes : scenes) {
        planes.ForEveryCase([&](const ZULMRSBSPPlane& plane, ZULMRSBSPPoint& point, int expected) {
            point.AddRef();
            questions.push_back({&plane, Own(&point), expected});
        });
    }
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&questions, &wrong] {
            for (int round = 0; round < 20; ++round) {
                for (const Question& question : questions) {
                    wrong +=
                        IsPointInFrontOfPlane(*question.m_Plane, *question.m_Point) != question.m_Expected;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong.load(), 0);
}

TEST(ZULMRSBSPPredicatesOrientation, APointLiesOnItsOwnPlanes)
{
    const auto x = Cartesian(1, 0, 0, -1);
    const auto y = Cartesian(0, 1, 0, -0.1);
    const auto z = ThreePoints({0, 0, 0.3}, {1, 0, 0.3}, {0, 1, 0.3});
    const Point point = Meeting(x, y, z);
    for (const auto* plane : {x.get(), y.get(), z.get()}) {
        EXPECT_EQ(IsPointInFrontOfPlane(*plane, *point), ZULMRSExtendedUndetermined);
        EXPECT_EQ(IsPointInFrontOfPlaneFast(*plane, *point), ZULMRSExtendedUndetermined);
    }
}

TEST(ZULMRSBSPPredicatesOrientation, AnOwnPlaneAnswersByIdentityEvenWhereItCannotBeEvaluated)
{
    const auto x = Cartesian(NotANumber, 0, 0, -1);
    const auto y = Cartesian(0, 1, 0, -2);
    const Point point = Own<ZULMRSBSPPoint>(
        new ZULMRSBSPCartesianPoint(x.get(), y.get(), y.get(), ZULMathPoint(5.0, 5.0, 5.0)));
    // The coordinates do not lie on the plane; identity comes first all the same.
    EXPECT_EQ(IsPointInFrontOfPlane(*x, *point), ZULMRSExtendedUndetermined);
    EXPECT_EQ(IsPointInFrontOfPlane(*y, *point), ZULMRSExtendedUndetermined);
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*x, *point), ZULMRSExtendedUndetermined);
}

TEST(ZULMRSBSPPredicatesOrientation, ACartesianPointExactlyOnACartesianPlane)
{
    const auto plane = Cartesian(0.1, 0.2, 0.3, -(0.1 * 3.0));
    // 0.1 * 3 is rounded: the plane through (3, 0, 0) is not the one that the decimals suggest.
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, ZULMathPoint(3.0, 0.0, 0.0)),
              DyadicSide(ToDyadic(plane->GetCoords()), Point3{3.0, 0.0, 0.0}));
    EXPECT_EQ(IsPointInFrontOfPlane(*Cartesian(0.1, 0.1, 0.0, 0.0), ZULMathPoint(3.0, -3.0, 7.0)),
              ZULMRSExtendedUndetermined);
}

TEST(ZULMRSBSPPredicatesOrientation, TheFourthElementOfAnArrayIsNotRead)
{
    const auto plane = Cartesian(0, 0, 1, -1);
    for (const double fourth : {0.0, 1.0, -3.0, Infinity, NotANumber}) {
        EXPECT_EQ(IsPointInFrontOfPlane(*plane, Plane4{0, 0, 2, fourth}), ZULMRSExtendedTrue);
        EXPECT_EQ(IsPointInFrontOfPlane(*plane, Plane4{0, 0, 1, fourth}), ZULMRSExtendedUndetermined);
        EXPECT_EQ(IsPointInFrontOfPlane(*plane, Plane4{0, 0, 0, fourth}), ZULMRSExtendedFalse);
    }
}

TEST(ZULMRSBSPPredicatesOrientation, DefiningPointsLieOnTheirPlane)
{
    const std::array<Point3, 3> points = {Point3{0.1, 0.2, 0.3}, Point3{1.7, 0.4, -0.0},
                                          Point3{0.9, 5.3, 2.2}};
    const auto plane = ThreePoints(points[0], points[1], points[2]);
    for (const Point3& point : points) {
        EXPECT_EQ(IsPointInFrontOfPlane(*plane, ToMathPoint(point)), ZULMRSExtendedUndetermined);
    }
    // Zeros of either sign are equal.
    EXPECT_EQ(IsPointInFrontOfPlane(*plane, ZULMathPoint(1.7, 0.4, 0.0)), ZULMRSExtendedUndetermined);
    // Even on a plane without an equation in doubles.
    const auto hopeless = ThreePoints({Infinity, 0, 0}, {0, 1, 0}, {1, 0, 0});
    EXPECT_EQ(IsPointInFrontOfPlane(*hopeless, ZULMathPoint(Infinity, 0, 0)), ZULMRSExtendedUndetermined);
}

TEST(ZULMRSBSPPredicatesOrientation, FrontIsWhereTheNormalPoints)
{
    const auto z1 = ThreePoints({0, 0, 1}, {1, 0, 1}, {0, 1, 1});
    const Point origin = Meeting(Cartesian(1, 0, 0, 0), Cartesian(0, 1, 0, 0), Cartesian(0, 0, 1, 0));
    const Point above = Meeting(Cartesian(1, 0, 0, 0), Cartesian(0, 1, 0, 0), Cartesian(0, 0, 1, -2));
    EXPECT_EQ(IsPointInFrontOfPlane(*z1, *origin), ZULMRSExtendedFalse);
    EXPECT_EQ(IsPointInFrontOfPlane(*z1, *above), ZULMRSExtendedTrue);
    EXPECT_EQ(IsPointInFrontOfPlane(*z1, ZULMathPoint(5, 5, 1)), ZULMRSExtendedUndetermined);
}

TEST(ZULMRSBSPPredicatesOrientation, PlanesWithoutAMeetingPointGiveNoSide)
{
    const Silence silence;
    const auto tested = Cartesian(1, 2, 3, 4);
    // Two parallel planes, three planes through one line, three parallel planes.
    EXPECT_EQ(IsPointInFrontOfPlane(
                  *tested, *Meeting(Cartesian(1, 0, 0, 0), Cartesian(2, 0, 0, 1), Cartesian(0, 0, 1, 0))),
              ZULMRSExtendedUndetermined);
    EXPECT_EQ(IsPointInFrontOfPlane(*tested, *Meeting(Cartesian(0.1, 0, 0, 1), Cartesian(0, 0.3, 0, 2),
                                                      Cartesian(0.1, 0.3, 0, 3))),
              ZULMRSExtendedUndetermined);
    EXPECT_EQ(IsPointInFrontOfPlane(
                  *tested, *Meeting(Cartesian(0, 0, 1, 0), Cartesian(0, 0, 1, 1), Cartesian(0, 0, 1, 2))),
              ZULMRSExtendedUndetermined);
}

TEST(ZULMRSBSPPredicatesOrientation, APointWithAMissingPlaneGivesNoSide)
{
    const auto x = Cartesian(1, 0, 0, -1);
    const auto y = Cartesian(0, 1, 0, -1);
    bool isValid = true;
    const Point point = Own<ZULMRSBSPPoint>(new ZULMRSBSP3PlanesPoint({x.get(), nullptr, y.get()}, isValid));
    EXPECT_FALSE(isValid);
    EXPECT_EQ(IsPointInFrontOfPlane(*Cartesian(1, 2, 3, 4), *point), ZULMRSExtendedUndetermined);
}

// A three-points plane whose own filtered equation underflows: a point on it keeps the placeholders, which
// look like (1, 1, 1).
TEST(ZULMRSBSPPredicatesOrientation, PlaceholdersDecideNothing)
{
    const auto z0 = ThreePoints({0, 0, 0}, {1e-200, 0, 0}, {0, 1e-200, 0});
    ASSERT_EQ(std::get<0>(z0->GetStdEquation_ExpDynamic()), nullptr);
    const auto x0 = Cartesian(1, 0, 0, 0);
    const auto y0 = Cartesian(0, 1, 0, 0);
    const Point origin = Meeting(x0, y0, z0);
    ASSERT_EQ(origin->GetApproximatedPoint(), ZULMathPoint(1, 1, 1));
    const auto half = Cartesian(1, 1, 1, -0.5);
    EXPECT_EQ(IsPointInFrontOfPlane(*half, *origin), ZULMRSExtendedFalse);
    // The triple was left in the order given: the other order is oriented negatively.
    EXPECT_EQ(IsPointInFrontOfPlane(*half, *Meeting(y0, x0, z0)), ZULMRSExtendedFalse);
    const ZULExpFloatScope scope;
    EXPECT_FALSE(ZULMRSBSPOrientation::FilterByRepresentation(*half, *origin).m_IsUsable);
}

// After an equivalent plane that faces the other way has been put in, and that plane has no filtered
// equation, the kept numbers are those of before and the triple is oriented negatively.
TEST(ZULMRSBSPPredicatesOrientation, AnswersHoldForATripleOrientedNegatively)
{
    const auto x0 = Cartesian(1, 0, 0, 0);
    const auto y0 = Cartesian(0, 1, 0, 0);
    const auto z0 = Cartesian(0, 0, 1, 0);
    const auto opposite = ThreePoints({0, 0, 0}, {0, 1e-200, 0}, {1e-200, 0, 0});
    const Point origin = Meeting(x0, y0, z0);
    ASSERT_TRUE(origin->ReplacePlaneByEquivalentPlane(opposite.get(), z0.get()));
    ASSERT_EQ(SignOf3PlanesDeterminant(*origin->GetP1(), *origin->GetP2(), *origin->GetP3()), -1);
    const double tiny = std::numeric_limits<double>::denorm_min();
    for (const double d : {1.0, tiny, -tiny, -1.0, 0.0}) {
        const auto plane = Cartesian(0.1, 0.2, 0.3, d);
        EXPECT_EQ(IsPointInFrontOfPlane(*plane, *origin), d > 0 ? 1 : d < 0 ? -1 : 0);
        const ZULExpFloatScope scope;
        EXPECT_EQ(ZULMRSBSPOrientation::ExactByPlanes(*plane, *origin).ToKernelResult(), d > 0   ? 1
                                                                                         : d < 0 ? -1
                                                                                                 : 0);
    }
}

// The filter cannot tell the sign of W, the exact determinant is negative: the triple is exchanged, the kept
// numbers are not.
TEST(ZULMRSBSPPredicatesOrientation, AnUncertainWDecidesNothing)
{
    const Silence silence;
    Random random(22'005);
    int seen = 0;
    for (int i = 0; i < 20'000; ++i) {
        Scene scene(random, Regime::Easy, Position::Near);
        const PlaneCase p1 = scene.CartesianPlane();
        const PlaneCase p2 = scene.CartesianPlane();
        Plane4 sum{};
        for (std::size_t k = 0; k < 4; ++k) {
            sum[k] = random.Nudged(
                p1.m_Plane->GetDouble(static_cast<int>(k)) + p2.m_Plane->GetDouble(static_cast<int>(k)), 3);
        }
        const PlaneCase p3 = PlaneCase::Cartesian(sum);
        const Point point = Meeting(p1.m_Plane, p2.m_Plane, p3.m_Plane);
        const auto* kept = std::get<0>(point->GetCartesianRepresentation_ExpDynamic());
        if (kept == nullptr || (*kept)[3].Sign() != ZULExpSignUncertain) {
            continue;
        }
        ++seen;
        const PlaneCase tested = scene.CartesianPlane();
        const int expected =
            DyadicSide(tested.m_Exact, DyadicMeetingPoint({p1.m_Exact, p2.m_Exact, p3.m_Exact}));
        ASSERT_EQ(IsPointInFrontOfPlane(*tested.m_Plane, *point), expected);
        const ZULExpFloatScope scope;
        ASSERT_FALSE(ZULMRSBSPOrientation::FilterByRepresentation(*tested.m_Plane, *point).m_IsUsable);
    }
    EXPECT_GT(seen, 100);
}

TEST(ZULMRSBSPPredicatesOrientation, InputThatIsNotFiniteNeitherCrashesNorHangs)
{
    const Silence silence;
    Random random(22'006);
    const auto spoil = [&random](auto& numbers) {
        for (double& number : numbers) {
            if (random.OneIn(4)) {
                number = random.OneIn(2) ? NotANumber : random.Sign() * Infinity;
            }
        }
    };
    const auto makePlane = [&]() -> Owner<ZULMRSBSPPlane> {
        if (random.OneIn(2)) {
            Plane4 equation = random.Plane(Regime::Mixed);
            spoil(equation);
            return Own<ZULMRSBSPPlane>(new ZULMRSBSPCartesianPlane(equation));
        }
        std::array<Point3, 3> points = {random.Point(Regime::Mixed), random.Point(Regime::Mixed),
                                        random.Point(Regime::Mixed)};
        spoil(points[0]);
        spoil(points[1]);
        return Own<ZULMRSBSPPlane>(new ZULMRSBSP3PointsPlane(points));
    };
    for (int i = 0; i < 5'000; ++i) {
        const auto p1 = makePlane();
        const auto p2 = makePlane();
        const auto p3 = makePlane();
        const auto plane = makePlane();
        Point3 coordinates = random.Point(Regime::Mixed);
        spoil(coordinates);
        const std::vector<int> answers = {IsPointInFrontOfPlane(*plane, *Meeting(p1, p2, p3)),
                                          IsPointInFrontOfPlane(*plane, ToMathPoint(coordinates)),
                                          IsPointInFrontOfPlaneFast(*plane, *Meeting(p1, p2, p3)),
                                          IsPointInFrontOfPlaneFast(*plane, ToMathPoint(coordinates))};
        for (const int answer : answers) {
            ASSERT_TRUE(answer >= -1 && answer <= 1);
        }
    }
}

TEST(ZULMRSBSPPredicatesOrientation, WhatNoStageCanDecideIsUndetermined)
{
    // Terms of both signs, one of them not a number: the exact stage gives up.
    EXPECT_EQ(IsPointInFrontOfPlane(*Cartesian(NotANumber, 0, 0, 1), ZULMathPoint(1, 0, 0)),
              ZULMRSExtendedUndetermined);
}

//---------------------------------------------------------------- in doubles only

TEST(ZULMRSBSPPredicatesOrientation, TheFastFormIsTheSignOfThePlainSum)
{
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*Cartesian(0, 0, 1, -1), ZULMathPoint(0, 0, 2)), ZULMRSExtendedTrue);
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*Cartesian(0, 0, 1, -1), ZULMathPoint(0, 0, 0)), ZULMRSExtendedFalse);
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*Cartesian(0, 0, 1, -1), ZULMathPoint(3, 4, 1)),
              ZULMRSExtendedUndetermined);
    Random random(22'007);
    for (int i = 0; i < 100'000; ++i) {
        const Plane4 e = random.Plane(Regime::NearDegenerate);
        const Point3 p = random.Point(Regime::NearDegenerate);
        const double sum = ((e[0] * p[0] + e[1] * p[1]) + e[2] * p[2]) + e[3];
        ASSERT_EQ(IsPointInFrontOfPlaneFast(*Cartesian(e[0], e[1], e[2], e[3]), ToMathPoint(p)),
                  sum > 0 ? 1 : (sum == 0 ? 0 : -1));
    }
    // Only an exactly zero sum answers 0, and a sum that rounds to zero is one.
    const double third = 1.0 / 3.0;
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*Cartesian(third, 0, 0, -1), ZULMathPoint(3, 0, 0)),
              ZULMRSExtendedUndetermined);
    EXPECT_EQ(IsPointInFrontOfPlane(*Cartesian(third, 0, 0, -1), ZULMathPoint(3, 0, 0)), ZULMRSExtendedFalse);
}

TEST(ZULMRSBSPPredicatesOrientation, TheFastFormsAnswerFalseForWhatIsNotANumber)
{
    const auto x0 = Cartesian(1, 0, 0, 0);
    const auto y0 = Cartesian(0, 1, 0, 0);
    const auto z0 = Cartesian(0, 0, 1, 0);
    const Point origin = Meeting(x0, y0, z0);
    for (int i = 0; i < 4; ++i) {
        for (const double bad : {NotANumber, -NotANumber}) {
            Plane4 equation = {1, 1, 1, 1};
            equation[static_cast<std::size_t>(i)] = bad;
            const auto plane = Cartesian(equation[0], equation[1], equation[2], equation[3]);
            EXPECT_EQ(IsPointInFrontOfPlaneFast(*plane, ZULMathPoint(1, 1, 1)), ZULMRSExtendedFalse);
            EXPECT_EQ(IsPointInFrontOfPlaneFast(*plane, *origin), ZULMRSExtendedFalse);
        }
    }
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*x0, ZULMathPoint(NotANumber, 0, 0)), ZULMRSExtendedFalse);
}

TEST(ZULMRSBSPPredicatesOrientation, TheFastFormAgreesFarFromThePlane)
{
    Random random(22'008);
    int compared = 0;
    for (int i = 0; i < 50'000; ++i) {
        Scene scene(random, Regime::Easy, Position::General);
        const PlaneCase p1 = scene.Plane();
        const PlaneCase p2 = scene.Plane();
        const PlaneCase p3 = scene.Plane();
        const PlaneCase tested = scene.Plane();
        const Point point = Meeting(p1.m_Plane, p2.m_Plane, p3.m_Plane);
        const ZULExpFloatScope scope;
        if (ZULMRSBSPOrientation::FilterByRepresentation(*tested.m_Plane, *point).m_Sign.IsDecided()) {
            ++compared;
            ASSERT_EQ(IsPointInFrontOfPlaneFast(*tested.m_Plane, *point),
                      IsPointInFrontOfPlane(*tested.m_Plane, *point));
        }
    }
    EXPECT_GT(compared, 40'000);
}

TEST(ZULMRSBSPPredicatesOrientation, TheFastFormTakesTheShortcutWhereProductsUnderflow)
{
    // Every product of the determinant vanishes in doubles, but the signs of the factors tell.
    const auto x0 = Cartesian(1e-200, 0, 0, 0);
    const auto y0 = Cartesian(0, 1, 0, 0);
    const auto z0 = Cartesian(0, 0, 1, 0);
    const Point origin = Meeting(x0, y0, z0);
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*Cartesian(0, 0, 1, 1e-200), *origin), ZULMRSExtendedTrue);
    EXPECT_EQ(IsPointInFrontOfPlaneFast(*Cartesian(0, 0, 1, -1e-200), *origin), ZULMRSExtendedFalse);
}
}  // namespace
