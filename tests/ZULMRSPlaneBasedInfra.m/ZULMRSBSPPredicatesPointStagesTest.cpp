#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <limits>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

#include "ZULMRSBSPPointRelations.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULTestAllocation.h"

// The stages of the order of points and of the triple products, each asked on its own.
namespace
{
using namespace ZULTest;
using ZULMRSBSPPredicates::LexicographicOrder;
using ZULMRSBSPPredicates::SignOfTripleProduct;

/// What the filter, the interval and the exact stage say.
using Signs = std::array<ZULMRSBSPSign, 3>;

template <class Number>
ZULMRSBSPSign CompareStage(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q, std::size_t axis)
{
    const ZULExpFloatScope scope;
    return ZULMRSBSPStages::RunChecked<Number>(
        [&] { return ZULMRSBSPPointRelations::CompareIn<Number>(p, q, axis); });
}
/// The filter sees for itself to what the status tells of the others.
template <>
ZULMRSBSPSign CompareStage<ZULExpDynamic>(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q, std::size_t axis)
{
    const ZULExpFloatScope scope;
    return ZULMRSBSPStages::Run<ZULExpDynamic>(
        [&] { return ZULMRSBSPPointRelations::CompareIn<ZULExpDynamic>(p, q, axis); });
}
Signs CompareStages(const ZULMRSBSPPoint& p, const ZULMRSBSPPoint& q, std::size_t axis)
{
    return {CompareStage<ZULExpDynamic>(p, q, axis), CompareStage<ZULExpInterval>(p, q, axis),
            CompareStage<ZULExpFloatRingExtensionTS>(p, q, axis)};
}

template <class Product>
ZULMRSBSPSign FilterOf(const Product& product)
{
    const ZULExpFloatScope scope;
    return ZULMRSBSPStages::Run<ZULExpDynamic>([&] { return product.template Evaluate<ZULExpDynamic>(); });
}
template <class Number, class Product>
ZULMRSBSPSign CheckedStageOf(const Product& product)
{
    const ZULExpFloatScope scope;
    return ZULMRSBSPStages::RunChecked<Number>([&] { return product.template Evaluate<Number>(); });
}
template <class Product>
Signs ProductStages(const Product& product)
{
    return {FilterOf(product), CheckedStageOf<ZULExpInterval>(product),
            CheckedStageOf<ZULExpFloatRingExtensionTS>(product)};
}

/// Three points, often equal or on one line with others, and two planes through their places or across them.
struct Gathering {
    Gathering(Random& random, Regime regime, Position position)
    {
        Scene first(random, regime, position);
        const Point3 d1 = random.OneIn(4) ? Point3{} : SmallVector(random, 6);
        const int s = random.Integer(-1, 2);
        const Point3 d2 = Combined(s, d1, random.OneIn(2) ? 1 : 0, SmallVector(random, 6));
        Scene second(first, Combined(1, first.GetIntegers(), 1, d1));
        Scene third(first, Combined(1, second.GetIntegers(), 1, d2));
        for (Scene* scene : {&first, &second, &third}) {
            m_Points.push_back(scene->AnyPoint());
        }
        m_Planes.push_back(first.PlaneWithNormal(random.OneIn(2) ? d2 : SmallVector(random, 6)));
        m_Planes.push_back(first.PlaneWithNormal(Combined(random.Integer(-1, 1), d1, 1, d2)));
    }

    const ZULMRSBSPPoint& Point(std::size_t i) const { return *m_Points[i].m_Point; }
    const ZULMRSBSPPlane& Plane(std::size_t i) const { return *m_Planes[i].m_Plane; }
    ZULMRSBSPPointRelations::DirectionBetweenNormals GetFirstProduct() const
    {
        return {Plane(0), Plane(1), Point(0), Point(1)};
    }
    ZULMRSBSPPointRelations::NormalOfPath GetSecondProduct() const
    {
        return {Plane(0), Point(0), Point(1), Point(2)};
    }
    int GetFirstSign() const { return SignOfRows(Normal(0), Direction(0, 1), Normal(1)); }
    int GetSecondSign() const { return SignOfRows(Direction(0, 1), Direction(1, 2), Normal(0)); }

    std::vector<PointCase> m_Points;
    std::vector<PlaneCase> m_Planes;

private:
    DyadicPoint Normal(std::size_t i) const { return DyadicNormal(m_Planes[i].m_Exact); }
    DyadicPoint Direction(std::size_t i, std::size_t j) const
    {
        return DyadicDirection(m_Points[i].m_Exact, m_Points[j].m_Exact);
    }
    static int SignOfRows(const DyadicPoint& p, const DyadicPoint& q, const DyadicPoint& r)
    {
        return DyadicDeterminant(std::array<DyadicPoint, 3>{p, q, r}, 0, 1, 2).Sign();
    }
};

/// Which stage decides first; every stage that decides is right, the last one always does.
class Referee
{
public:
    testing::AssertionResult Check(const Signs& signs, int expected)
    {
        bool isOpen = true;
        for (std::size_t stage = 0; stage < signs.size(); ++stage) {
            if (signs[stage].IsDecided() && signs[stage].ToKernelResult() != expected) {
                return testing::AssertionFailure() << "stage " << stage << " says "
                                                   << signs[stage].ToKernelResult() << ", not " << expected;
            }
            m_FirstDecided[stage] += isOpen && signs[stage].IsDecided() ? 1U : 0U;
            isOpen = isOpen && !signs[stage].IsDecided();
        }
        return isOpen ? testing::AssertionFailure() << "no stage decides" : testing::AssertionSuccess();
    }
    void ExpectThatEveryStageDecides(std::size_t atLeast) const
    {
        for (std::size_t stage = 0; stage < m_FirstDecided.size(); ++stage) {
            EXPECT_GT(m_FirstDecided[stage], atLeast) << "stage " << stage;
        }
    }

private:
    std::array<std::size_t, 3> m_FirstDecided{};
};

TEST(ZULMRSBSPPredicatesPointStages, EveryStageIsRightWhereItDecides)
{
    const Silence silence;
    Random random(29'001);
    Referee order;
    Referee directions;
    Referee normals;
    constexpr std::size_t gatherings = CasesPerPredicate / 10;
    ForAllKinds(gatherings, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const Gathering gathering(random, regime, position);
            for (std::size_t axis = 0; axis < 3; ++axis) {
                ASSERT_TRUE(order.Check(
                    CompareStages(gathering.Point(0), gathering.Point(1), axis),
                    DyadicCompare(gathering.m_Points[0].m_Exact, gathering.m_Points[1].m_Exact, axis)))
                    << NameOf(regime);
            }
            ASSERT_TRUE(
                directions.Check(ProductStages(gathering.GetFirstProduct()), gathering.GetFirstSign()))
                << NameOf(regime);
            ASSERT_TRUE(normals.Check(ProductStages(gathering.GetSecondProduct()), gathering.GetSecondSign()))
                << NameOf(regime);
        }
    });
    for (const Referee* referee : {&order, &directions, &normals}) {
        referee->ExpectThatEveryStageDecides(gatherings / 100);
    }
}

#if ZUL_HAS_SSE2
TEST(ZULMRSBSPPredicatesPointStages, AnswersDoNotDependOnTheEnvironmentAndLeaveItAlone)
{
    using namespace ZULMRSBSPPredicates;
    const Silence silence;
    Random random(29'002);
    ForAllKinds(4'000 / ZUL_TEST_CASES_DIVISOR, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const Gathering gathering(random, regime, position);
            ZULMRSBSPPoint& p = *gathering.m_Points[0].m_Point;
            ZULMRSBSPPoint& q = *gathering.m_Points[1].m_Point;
            const int exact = DyadicOrder(gathering.m_Points[0].m_Exact, gathering.m_Points[1].m_Exact);
            ASSERT_TRUE(HoldsInEveryEnvironment(exact > 0 ? 1 : -1, [&] { return LexicographicOrder(p, q); }))
                << NameOf(regime);
            ASSERT_TRUE(HoldsInEveryEnvironment(exact == 0 ? 1 : -1, [&] { return ArePointsEqual(p, q); }))
                << NameOf(regime);
            ASSERT_TRUE(HoldsInEveryEnvironment(1, [&] { return IsPointValid(p); })) << NameOf(regime);
            const bool isOnLine =
                DyadicSide(gathering.m_Planes[0].m_Exact, gathering.m_Points[0].m_Exact) == 0 &&
                DyadicSide(gathering.m_Planes[1].m_Exact, gathering.m_Points[0].m_Exact) == 0;
            const ZULMRSBSPLine line(gathering.Plane(0), gathering.Plane(1));
            ASSERT_TRUE(HoldsInEveryEnvironment(isOnLine ? 1 : -1, [&] { return IsPointOnLine(line, p); }))
                << NameOf(regime);
        }
    });
}
#endif

TEST(ZULMRSBSPPredicatesPointStages, ThreadsMayAskAboutTheSamePointsAtOnce)
{
    const Silence silence;
    Random random(29'008);
    std::vector<Gathering> gatherings;
    for (std::size_t i = 0; i < 60; ++i) {
        gatherings.emplace_back(random, AllRegimes[i % AllRegimes.size()],
                                AllPositions[i % AllPositions.size()]);
    }
    std::atomic<int> wrong{0};
    const auto ask = [&gatherings, &wrong] {
        for (int round = 0; round < 10; ++round) {
            for (const Gathering& gathering : gatherings) {
                const PointCase& p = gathering.m_Points[0];
                const PointCase& q = gathering.m_Points[1];
                const int order = DyadicOrder(p.m_Exact, q.m_Exact);
                wrong += (LexicographicOrder(*p.m_Point, *q.m_Point) == 1) != (order > 0);
                wrong += (ZULMRSBSPPredicates::ArePointsEqual(*p.m_Point, *q.m_Point) == 1) != (order == 0);
                wrong += SignOfTripleProduct(gathering.Plane(0), gathering.Plane(1), gathering.Point(0),
                                             gathering.Point(1)) != gathering.GetFirstSign();
                wrong += SignOfTripleProduct(gathering.Plane(0), gathering.Point(0), gathering.Point(1),
                                             gathering.Point(2)) != gathering.GetSecondSign();
            }
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back(ask);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong.load(), 0);
}

//---------------------------------------------------------------- the heap

TEST(ZULMRSBSPPredicatesPointStages, CheapStagesNeverAllocate)
{
    const Silence silence;
    Random random(29'003);
    ForAllKinds(40'000 / ZUL_TEST_CASES_DIVISOR, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const Gathering gathering(random, regime, position);
            const long before = GetAllocations();
            for (std::size_t axis = 0; axis < 3; ++axis) {
                CompareStage<ZULExpDynamic>(gathering.Point(0), gathering.Point(1), axis);
                CompareStage<ZULExpInterval>(gathering.Point(0), gathering.Point(1), axis);
            }
            FilterOf(gathering.GetFirstProduct());
            FilterOf(gathering.GetSecondProduct());
            CheckedStageOf<ZULExpInterval>(gathering.GetFirstProduct());
            CheckedStageOf<ZULExpInterval>(gathering.GetSecondProduct());
            ASSERT_EQ(GetAllocations(), before) << NameOf(regime);
        }
    });
}

TEST(ZULMRSBSPPredicatesPointStages, OrdinaryQuestionsNeverAllocate)
{
    using namespace ZULMRSBSPPredicates;
    const Silence silence;
    Random random(29'004);
    for (int i = 0; i < 20'000 / ZUL_TEST_CASES_DIVISOR; ++i) {
        // Without numbers a few units beside zero, which are denormal.
        const Gathering gathering(random, Regime::Easy,
                                  random.OneIn(2) ? Position::General : Position::Degenerate);
        ZULMRSBSPPoint& p = *gathering.m_Points[0].m_Point;
        ZULMRSBSPPoint& q = *gathering.m_Points[1].m_Point;
        const Point3 corner = {0.1, 0.2, 0.3};
        const std::array<ZULMathPoint, 3> triangle = {ToMathPoint(corner), ZULMathPoint(0.7, 0.2, 0.3),
                                                      ZULMathPoint(0.1, 0.9, 0.3)};
        const long before = GetAllocations();
        LexicographicOrder(p, q);
        ArePointsEqual(p, q);
        IsPointValid(p);
        IsPointOnLine(ZULMRSBSPLine(gathering.Plane(0), gathering.Plane(1)), p);
        SignOfTripleProduct(gathering.Plane(0), gathering.Plane(1), p, q);
        SignOfTripleProduct(gathering.Plane(0), p, q, gathering.Point(2));
        GetSignOfNormalSignAngleDiff(triangle, 1.0);
        ASSERT_EQ(GetAllocations(), before);
    }
}

TEST(ZULMRSBSPPredicatesPointStages, WhatTheExactStageAllocatesIsFreed)
{
    const Silence silence;
    Random random(29'005);
    ForAllKinds(4'000 / ZUL_TEST_CASES_DIVISOR, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const Gathering gathering(random, regime, position);
            const long before = GetLiveBlocks();
            CompareStages(gathering.Point(0), gathering.Point(1), 0);
            ProductStages(gathering.GetFirstProduct());
            ProductStages(gathering.GetSecondProduct());
            ASSERT_EQ(GetLiveBlocks(), before) << NameOf(regime);
        }
    });
}

//---------------------------------------------------------------- representations that tell nothing

/// Asks everything about a point with the help of points and planes whose answers are known.
void ExpectToStandAt(ZULMRSBSPPoint& point, const DyadicPlane& place)
{
    const auto x = Cartesian(1, 0, 0, 0);
    const auto y = ThreePoints({0, 0, 0}, {0, 0, 1}, {1, 0, 0});
    const double tiny = std::numeric_limits<double>::denorm_min();
    for (const Point3& other : {Point3{0, 0, 0}, Point3{tiny, 0, 0}, Point3{-tiny, 1, 1}, Point3{0, 0, tiny},
                                Point3{0, -tiny, 0}, Point3{1, 1, 1}, Point3{-3, 7, 0.1}}) {
        const PointCase q = PointCase::Cartesian(other);
        const int order = DyadicOrder(place, q.m_Exact);
        EXPECT_EQ(LexicographicOrder(point, *q.m_Point), order > 0 ? 1 : -1);
        EXPECT_EQ(LexicographicOrder(*q.m_Point, point), order < 0 ? 1 : -1);
        EXPECT_EQ(ZULMRSBSPPredicates::ArePointsEqual(point, *q.m_Point), order == 0 ? 1 : -1);
        // x . (d x y) is minus the third coordinate of d.
        const int height = DyadicCompare(q.m_Exact, place, 2);
        EXPECT_EQ(SignOfTripleProduct(*x, *y, point, *q.m_Point), -height);
        EXPECT_EQ(SignOfTripleProduct(*x, *y, *q.m_Point, point), height);
        const PointCase r = PointCase::Cartesian({0.5, -0.25, 8});
        const DyadicPoint d1 = DyadicDirection(place, q.m_Exact);
        const DyadicPoint d2 = DyadicDirection(q.m_Exact, r.m_Exact);
        const int area = (d1[1] * d2[2] - d1[2] * d2[1]).Sign();
        EXPECT_EQ(SignOfTripleProduct(*x, point, *q.m_Point, *r.m_Point), area);
        EXPECT_EQ(SignOfTripleProduct(*x, *q.m_Point, *r.m_Point, point), area);
        EXPECT_EQ(SignOfTripleProduct(*x, *r.m_Point, point, *q.m_Point), area);
    }
}
const DyadicPlane Origin = {Dyadic(0.0), Dyadic(0.0), Dyadic(0.0), Dyadic(1.0)};

// A three-points plane whose own filtered equation underflows: a point on it keeps the placeholders, which
// look like (1, 1, 1).
TEST(ZULMRSBSPPredicatesPointStages, PlaceholdersDecideNothing)
{
    const auto z0 = ThreePoints({0, 0, 0}, {1e-200, 0, 0}, {0, 1e-200, 0});
    ASSERT_EQ(std::get<0>(z0->GetStdEquation_ExpDynamic()), nullptr);
    const auto x0 = Cartesian(1, 0, 0, 0);
    const auto y0 = Cartesian(0, 1, 0, 0);
    for (const auto& origin : {Meeting(x0, y0, z0), Meeting(y0, x0, z0)}) {
        ASSERT_EQ(origin->GetApproximatedPoint(), ZULMathPoint(1, 1, 1));
        ExpectToStandAt(*origin, Origin);
        EXPECT_FALSE(CompareStage<ZULExpDynamic>(*origin, *AtCoordinates({5, 5, 5}), 0).IsDecided());
    }
}

// After an equivalent plane that faces the other way has been put in, and that plane has no filtered
// equation, the kept numbers are those of before and the triple is oriented negatively.
TEST(ZULMRSBSPPredicatesPointStages, AnswersHoldForATripleOrientedNegatively)
{
    const auto x0 = Cartesian(1, 0, 0, 0);
    const auto y0 = Cartesian(0, 1, 0, 0);
    const auto z0 = Cartesian(0, 0, 1, 0);
    const auto opposite = ThreePoints({0, 0, 0}, {0, 1e-200, 0}, {1e-200, 0, 0});
    const auto origin = Meeting(x0, y0, z0);
    ASSERT_TRUE(origin->ReplacePlaneByEquivalentPlane(opposite.get(), z0.get()));
    ASSERT_EQ(
        ZULMRSBSPPredicates::SignOf3PlanesDeterminant(*origin->GetP1(), *origin->GetP2(), *origin->GetP3()),
        -1);
    ExpectToStandAt(*origin, Origin);
    const auto beside = AtCoordinates({5, 5, 5});
    EXPECT_TRUE(CompareStage<ZULExpFloatRingExtensionTS>(*origin, *beside, 0).IsNegative());
    EXPECT_TRUE(CompareStage<ZULExpFloatRingExtensionTS>(*beside, *origin, 0).IsPositive());
}

// The filter cannot tell the sign of W, the exact determinant may be negative: the triple is exchanged, the
// kept numbers are not.
TEST(ZULMRSBSPPredicatesPointStages, AnUncertainWDecidesNothing)
{
    const Silence silence;
    Random random(29'006);
    int seen = 0;
    for (int i = 0; i < 20'000 && seen < 500; ++i) {
        Scene scene(random, Regime::Easy, Position::Near);
        const PlaneCase p1 = scene.CartesianPlane();
        const PlaneCase p2 = scene.CartesianPlane();
        Plane4 sum{};
        for (std::size_t k = 0; k < 4; ++k) {
            const int index = static_cast<int>(k);
            sum[k] = random.Nudged(p1.m_Plane->GetDouble(index) + p2.m_Plane->GetDouble(index), 3);
        }
        const PointCase point = PointCase::Meeting(p1, p2, PlaneCase::Cartesian(sum));
        const auto* kept = std::get<0>(point.m_Point->GetCartesianRepresentation_ExpDynamic());
        if (!point.IsValid() || kept == nullptr || (*kept)[3].Sign() != ZULExpSignUncertain) {
            continue;
        }
        ++seen;
        const PointCase other = scene.AnyPoint();
        EXPECT_FALSE(CompareStage<ZULExpDynamic>(*point.m_Point, *other.m_Point, 0).IsDecided());
        EXPECT_FALSE(CompareStage<ZULExpDynamic>(*other.m_Point, *point.m_Point, 0).IsDecided());
        const PlaneCase tested = scene.Plane();
        EXPECT_FALSE(FilterOf(ZULMRSBSPPointRelations::DirectionBetweenNormals{
                                  *tested.m_Plane, *p1.m_Plane, *other.m_Point, *point.m_Point})
                         .IsDecided());
        ExpectToStandAt(*point.m_Point, point.m_Exact);
        ASSERT_FALSE(testing::Test::HasFailure());
    }
    EXPECT_GT(seen, 100);
}

TEST(ZULMRSBSPPredicatesPointStages, PointsThatExistNowhereAreNotOrdered)
{
    const Silence silence;
    const auto x = Cartesian(1, 0, 0, 0);
    const auto line = Meeting(x, Cartesian(0, 1, 0, 0), Cartesian(1, 1, 0, 1));
    const auto origin = AtCoordinates({0, 0, 0});
    EXPECT_EQ(LexicographicOrder(*line, *origin), ZULMRSExtendedFalse);
    EXPECT_EQ(LexicographicOrder(*origin, *line), ZULMRSExtendedFalse);
    EXPECT_EQ(SignOfTripleProduct(*x, *Cartesian(0, 1, 0, 0), *line, *AtCoordinates({0, 0, 5})), 0);
    EXPECT_EQ(SignOfTripleProduct(*x, *origin, *line, *AtCoordinates({0, 0, 5})), 0);
}

TEST(ZULMRSBSPPredicatesPointStages, InputThatIsNotFiniteNeitherCrashesNorHangs)
{
    using namespace ZULMRSBSPPredicates;
    const Silence silence;
    Random random(29'007);
    const auto spoil = [&random](auto& numbers) {
        for (double& number : numbers) {
            if (random.OneIn(6)) {
                number = random.OneIn(2) ? NotANumber : random.Sign() * Infinity;
            }
        }
    };
    const auto makePlane = [&] {
        Plane4 equation = random.Plane(Regime::Mixed);
        spoil(equation);
        Point3 p = random.Point(Regime::Mixed);
        spoil(p);
        return random.OneIn(2) ? Cartesian(equation[0], equation[1], equation[2], equation[3])
                               : ThreePoints(p, {0, 1, 0}, {1, 0, 0.1});
    };
    const auto makePoint = [&] {
        const auto p1 = makePlane();
        const auto p2 = makePlane();
        Point3 p = random.Point(Regime::Mixed);
        spoil(p);
        return random.OneIn(2) ? AtCoordinates(p) : Meeting(p1, p2, makePlane());
    };
    for (int i = 0; i < 3'000; ++i) {
        const auto plane = makePlane();
        const auto other = makePlane();
        const auto p = makePoint();
        const auto q = makePoint();
        const auto r = makePoint();
        for (const int truth : {ArePointsEqual(*p, *q), LexicographicOrder(*p, *q), IsPointValid(*p),
                                IsPointOnLine(ZULMRSBSPLine(*plane, *other), *p)}) {
            ASSERT_TRUE(truth == 1 || truth == -1);
        }
        for (const int sign :
             {SignOfTripleProduct(*plane, *other, *p, *q), SignOfTripleProduct(*plane, *p, *q, *r)}) {
            ASSERT_TRUE(sign >= -1 && sign <= 2);
        }
    }
}
}  // namespace
