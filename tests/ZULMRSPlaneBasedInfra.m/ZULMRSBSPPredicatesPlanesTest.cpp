#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

#include "ZULMRSBSPPlaneRelations.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"

// How planes relate, held against exact arithmetic.
namespace
{
using namespace ZULMRSBSPPredicates;
using namespace ZULTest;

Point3 Sum(const Point3& p, const Point3& q)
{
    return {p[0] + q[0], p[1] + q[1], p[2] + q[2]};
}
Point3 Cross(const Point3& u, const Point3& v)
{
    return {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
}
double Dot(const Point3& u, const Point3& v)
{
    return u[0] * v[0] + u[1] * v[1] + u[2] * v[2];
}

/// Planes spanned by given integer vectors, in the sizes of a regime.
class PlaneMaker
{
public:
    PlaneMaker(Random& random, Regime regime, Position position)
        : m_Random(random), m_Regime(regime), m_Position(position), m_Range(ScaleOf(regime))
    {
        // One scale for all points of a scene: two planes of it stay comparable.
        m_PointScale = random.Integer(m_Range.first, m_Range.second);
    }

    /// The plane through the point, parallel to both vectors; of either kind, facing either way.
    PlaneCase Through(const Point3& point, const Point3& u, const Point3& v)
    {
        if (m_Position == Position::General) {
            return Unrelated();
        }
        return m_Random.OneIn(2) ? CartesianThrough(point, Cross(u, v)) : ThreePointsThrough(point, u, v);
    }

private:
    PlaneCase Unrelated()
    {
        if (m_Random.OneIn(2)) {
            return PlaneCase::Cartesian(m_Random.Plane(m_Regime));
        }
        return PlaneCase::ThreePoints(m_Random.PointTriple(m_Regime));
    }

    PlaneCase CartesianThrough(const Point3& point, const Point3& normal)
    {
        const double factor = m_Random.Sign() * m_Random.Integer(1, 5);
        const int scale =
            std::clamp(m_Random.Integer(m_Range.first, m_Range.second), std::max(-1074, -1074 - m_PointScale),
                       std::min(1000, 1000 - m_PointScale));
        Plane4 equation = {std::ldexp(factor * normal[0], scale), std::ldexp(factor * normal[1], scale),
                           std::ldexp(factor * normal[2], scale),
                           std::ldexp(-factor * Dot(normal, point), scale + m_PointScale)};
        Blur(m_Random, m_Position, equation);
        return PlaneCase::Cartesian(equation);
    }

    PlaneCase ThreePointsThrough(const Point3& point, const Point3& u, const Point3& v)
    {
        std::array<Point3, 3> points = {point, Sum(point, u), Sum(point, v)};
        std::swap(points[2], points[static_cast<std::size_t>(m_Random.Integer(0, 2))]);
        for (Point3& p : points) {
            m_Random.ScaleByPowerOfTwo(p, m_PointScale, m_PointScale);
        }
        Blur(m_Random, m_Position, points[0]);
        return PlaneCase::ThreePoints(points);
    }

    Random& m_Random;
    Regime m_Regime;
    Position m_Position;
    std::pair<int, int> m_Range;
    int m_PointScale = 0;
};

/// Two planes that are, nearly are or are not coincident or parallel.
std::pair<PlaneCase, PlaneCase> PlanePair(Random& random, Regime regime, Position position)
{
    PlaneMaker make(random, regime, position);
    const Point3 point = SmallVector(random, 10);
    const Point3 u = SmallVector(random, 10);
    const Point3 v = SmallVector(random, 10);
    Point3 other = Sum(point, random.OneIn(2) ? u : v);
    if (random.OneIn(3)) {
        other = Sum(other, SmallVector(random, 3));
    }
    const Point3 w = random.OneIn(8) ? SmallVector(random, 3) : Sum(u, v);
    PlaneCase first = make.Through(point, u, v);
    return {std::move(first), make.Through(other, v, w)};
}

int MinorOf(const PlaneCase& p, const PlaneCase& q, std::size_t i, std::size_t j)
{
    return (p.m_Exact[i] * q.m_Exact[j] - p.m_Exact[j] * q.m_Exact[i]).Sign();
}
bool AreExactlyProportional(const PlaneCase& p, const PlaneCase& q, std::size_t coefficients)
{
    for (std::size_t i = 0; i < coefficients; ++i) {
        for (std::size_t j = i + 1; j < coefficients; ++j) {
            if (MinorOf(p, q, i, j) != 0) {
                return false;
            }
        }
    }
    return true;
}
int ToAnswer(bool truth)
{
    return truth ? ZULMRSExtendedTrue : ZULMRSExtendedFalse;
}

TEST(ZULMRSBSPPredicatesPlanes, TheDeterminantOfNormalsIsExactInEveryRegime)
{
    Random random(23'001);
    ForAllKinds(CasesPerPredicate / 2, [&random](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            // Planes that all hold one direction have dependent normals.
            PlaneMaker make(random, regime, position);
            const Point3 common = SmallVector(random, 10);
            std::array<PlaneCase, 3> planes;
            for (PlaneCase& plane : planes) {
                plane = make.Through(SmallVector(random, 10), common, SmallVector(random, 10));
            }
            const std::array<DyadicPlane, 3> rows = {planes[0].m_Exact, planes[1].m_Exact, planes[2].m_Exact};
            const int expected = DyadicDeterminant(rows, 0, 1, 2).Sign();
            const ZULMRSBSPPlane& p1 = *planes[0].m_Plane;
            const ZULMRSBSPPlane& p2 = *planes[1].m_Plane;
            const ZULMRSBSPPlane& p3 = *planes[2].m_Plane;
            ASSERT_EQ(SignOf3PlanesDeterminant(p1, p2, p3), expected) << NameOf(regime);
            ASSERT_EQ(SignOf3PlanesDeterminant(p1, p3, p2), -expected) << NameOf(regime);
            using namespace ZULMRSBSPPlaneRelations;
            const ZULExpFloatScope scope;
            for (const ZULMRSBSPSign sign :
                 {FilterNormals(p1, p2, p3), IntervalNormals(p1, p2, p3), ExactNormals(p1, p2, p3)}) {
                ASSERT_TRUE(!sign.IsDecided() || sign.ToKernelResult() == expected) << NameOf(regime);
            }
        }
    });
}

TEST(ZULMRSBSPPredicatesPlanes, RelationsAreExactInEveryRegime)
{
    Random random(23'002);
    std::size_t parallel = 0;
    std::size_t coincident = 0;
    std::size_t opposite = 0;
    ForAllKinds(CasesPerPredicate, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto [p, q] = PlanePair(random, regime, position);
            const bool areParallel = AreExactlyProportional(p, q, 3);
            const bool areCoincident = areParallel && AreExactlyProportional(p, q, 4);
            ASSERT_EQ(ArePlanesParallel(*p.m_Plane, *q.m_Plane), ToAnswer(areParallel)) << NameOf(regime);
            ASSERT_EQ(ArePlanesCoincident(*p.m_Plane, *q.m_Plane), ToAnswer(areCoincident)) << NameOf(regime);
            bool areOpposite = false;
            for (std::size_t k = 0; k < 4; ++k) {
                areOpposite = areOpposite || p.m_Exact[k].Sign() * q.m_Exact[k].Sign() < 0;
            }
            ASSERT_EQ(CoincidentOrientation(*p.m_Plane, *q.m_Plane), ToAnswer(!areOpposite))
                << NameOf(regime);
            parallel += areParallel ? 1 : 0;
            coincident += areCoincident ? 1 : 0;
            opposite += areCoincident && areOpposite ? 1 : 0;
        }
    });
    // The input was what it was meant to be.
    EXPECT_GT(parallel, CasesPerPredicate / 10);
    EXPECT_GT(coincident, CasesPerPredicate / 20);
    EXPECT_GT(opposite, CasesPerPredicate / 50);
}

TEST(ZULMRSBSPPredicatesPlanes, StagesOfTheMinorAreRightWhereTheyDecide)
{
    using namespace ZULMRSBSPPlaneRelations;
    Random random(23'003);
    ForAllKinds(CasesPerPredicate / 10, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto [p, q] = PlanePair(random, regime, position);
            const auto column = static_cast<std::size_t>(random.Integer(0, 3));
            const auto other = static_cast<std::size_t>(random.Integer(0, 3));
            const int expected = MinorOf(p, q, column, other);
            const ZULExpFloatScope scope;
            for (const ZULMRSBSPSign sign : {ShortcutMinor(*p.m_Plane, *q.m_Plane, column, other),
                                             FilterMinor(*p.m_Plane, *q.m_Plane, column, other)}) {
                ASSERT_TRUE(!sign.IsDecided() || sign.ToKernelResult() == expected) << NameOf(regime);
            }
            ASSERT_EQ(ExactMinor(*p.m_Plane, *q.m_Plane, column, other).ToKernelResult(), expected);
        }
    });
}

/// True when the stage that would decide finds no equation: the filtered one, or the interval one after signs
/// that the filter leaves open.
bool IsEquationMissing(const ZULMRSBSPPlane& plane)
{
    if (plane.GetType() == ZULMRSBSPPlaneType_Cartesian) {
        return false;
    }
    const ZULMRSBSPQuadrupleHolder<ZULExpDynamic> filtered(plane.GetStdEquation_ExpDynamic());
    if (!filtered) {
        return true;
    }
    const bool isOpen = std::any_of((*filtered).begin(), (*filtered).begin() + 3, [](const ZULExpDynamic& x) {
        return !ZULMRSBSPFilter::FactorSign(x).IsDecided();
    });
    return isOpen && !ZULMRSBSPQuadrupleHolder<ZULExpInterval>(plane.GetStdEquation_ExpInterval());
}

TEST(ZULMRSBSPPredicatesPlanes, ValidityIsExactWhereThePlaneDeliversItsEquation)
{
    Random random(23'004);
    std::size_t invalid = 0;
    ForAllKinds(CasesPerPredicate, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            PlaneMaker make(random, regime, position);
            const Point3 u = SmallVector(random, 3);
            const Point3 v = random.OneIn(2) ? u : SmallVector(random, 3);
            const PlaneCase plane = make.Through(SmallVector(random, 10), u, v);
            const bool isMissing = IsEquationMissing(*plane.m_Plane);
            const bool isNormalZero =
                plane.m_Exact[0].Sign() == 0 && plane.m_Exact[1].Sign() == 0 && plane.m_Exact[2].Sign() == 0;
            ASSERT_EQ(IsPlaneValid(*plane.m_Plane), ToAnswer(!isMissing && !isNormalZero)) << NameOf(regime);
            invalid += isNormalZero ? 1 : 0;
        }
    });
    EXPECT_GT(invalid, CasesPerPredicate / 20);
}

#if ZUL_HAS_SSE2
TEST(ZULMRSBSPPredicatesPlanes, AnswersDoNotDependOnTheEnvironmentAndLeaveItAlone)
{
    Random random(23'005);
    ForAllKinds(4'000 / ZUL_TEST_CASES_DIVISOR, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto [p, q] = PlanePair(random, regime, position);
            const auto [r, s] = PlanePair(random, regime, position);
            const auto ask = [&p = p, &q = q, &r = r] {
                return std::array<int, 5>{
                    ArePlanesParallel(*p.m_Plane, *q.m_Plane), ArePlanesCoincident(*p.m_Plane, *q.m_Plane),
                    CoincidentOrientation(*p.m_Plane, *q.m_Plane), IsPlaneValid(*p.m_Plane),
                    SignOf3PlanesDeterminant(*p.m_Plane, *q.m_Plane, *r.m_Plane)};
            };
            const std::array<int, 5> expected = ask();
            for (const ZULExpProcessor::ControlWord word : HostileControlWords()) {
                std::array<int, 5> answers{};
                const auto left = RunUnder(word, [&] { answers = ask(); });
                ASSERT_EQ(answers, expected) << std::hex << word << ' ' << NameOf(regime);
                ASSERT_EQ(left, word);
            }
        }
    });
}
#endif

TEST(ZULMRSBSPPredicatesPlanes, TwoParallelPlanesOfThreeHaveNoMeetingPoint)
{
    EXPECT_EQ(SignOf3PlanesDeterminant(*Cartesian(0.1, 0.2, 0.3, 1), *Cartesian(0.2, 0.4, 0.6, 7),
                                       *Cartesian(0, 0, 1, 0)),
              0);
    EXPECT_EQ(SignOf3PlanesDeterminant(*ThreePoints({0, 0, 0.1}, {1, 0, 0.1}, {0, 1, 0.1}),
                                       *Cartesian(0, 0, 3, 7), *Cartesian(1, 0, 1, 0)),
              0);
    EXPECT_EQ(
        SignOf3PlanesDeterminant(*Cartesian(1, 0, 0, 5), *Cartesian(0, 1, 0, 5), *Cartesian(0, 0, 1, 5)), 1);
    EXPECT_EQ(
        SignOf3PlanesDeterminant(*Cartesian(0, 1, 0, 5), *Cartesian(1, 0, 0, 5), *Cartesian(0, 0, 1, 5)), -1);
}

TEST(ZULMRSBSPPredicatesPlanes, OppositeCoincidentPlanes)
{
    const auto p = Cartesian(2, 4, -6, 2);
    const auto q = Cartesian(-1, -2, 3, -1);
    EXPECT_EQ(ArePlanesParallel(*p, *q), ZULMRSExtendedTrue);
    EXPECT_EQ(ArePlanesCoincident(*p, *q), ZULMRSExtendedTrue);
    EXPECT_EQ(CoincidentOrientation(*p, *q), ZULMRSExtendedFalse);
}

TEST(ZULMRSBSPPredicatesPlanes, ParallelPlanesThatDoNotCoincide)
{
    const auto p = Cartesian(0, 0, 1, 0);
    const auto q = Cartesian(0, 0, 1, -1);
    EXPECT_EQ(ArePlanesParallel(*p, *q), ZULMRSExtendedTrue);
    EXPECT_EQ(ArePlanesCoincident(*p, *q), ZULMRSExtendedFalse);
}

TEST(ZULMRSBSPPredicatesPlanes, ZeroCoefficientsNeverDecideAnOrientation)
{
    EXPECT_EQ(CoincidentOrientation(*Cartesian(1, 0, 0, 0), *Cartesian(2, 0, 0, 0)), ZULMRSExtendedTrue);
    EXPECT_EQ(CoincidentOrientation(*Cartesian(1, -0.0, 0, 0), *Cartesian(2, 5, -3, 0)), ZULMRSExtendedTrue);
    EXPECT_EQ(CoincidentOrientation(*Cartesian(1, 0, 0, 0), *ThreePoints({0, 0, 0}, {0, 1, 0}, {0, 0, 1})),
              ZULMRSExtendedTrue);
    EXPECT_EQ(CoincidentOrientation(*Cartesian(1, 0, 0, 0), *ThreePoints({0, 0, 0}, {0, 0, 1}, {0, 1, 0})),
              ZULMRSExtendedFalse);
}

TEST(ZULMRSBSPPredicatesPlanes, ACoefficientThatIsNotANumberIsNotZeroAndHasNoSign)
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(CoincidentOrientation(*Cartesian(notANumber, 0, 0, 0), *Cartesian(1, 0, 0, 0)),
              ZULMRSExtendedFalse);
    EXPECT_EQ(CoincidentOrientation(*Cartesian(notANumber, 0, 0, 0), *Cartesian(0, 1, 0, 0)),
              ZULMRSExtendedTrue);
    EXPECT_EQ(CoincidentOrientation(*Cartesian(notANumber, 0, 0, 0), *Cartesian(notANumber, 0, 0, 0)),
              ZULMRSExtendedFalse);
    EXPECT_EQ(IsPlaneValid(*Cartesian(0, notANumber, 0, 0)), ZULMRSExtendedTrue);
    for (const int answer : {ArePlanesParallel(*Cartesian(notANumber, 1, 1, 1), *Cartesian(1, 1, 1, 1)),
                             ArePlanesCoincident(*Cartesian(notANumber, 1, 1, 1), *Cartesian(1, 1, 1, 1))}) {
        EXPECT_TRUE(answer == ZULMRSExtendedTrue || answer == ZULMRSExtendedFalse);
    }
}

TEST(ZULMRSBSPPredicatesPlanes, ValidPlanesHaveANormal)
{
    EXPECT_EQ(IsPlaneValid(*Cartesian(0, 0, 0, 5)), ZULMRSExtendedFalse);
    EXPECT_EQ(IsPlaneValid(*Cartesian(-0.0, 0, -0.0, 5)), ZULMRSExtendedFalse);
    EXPECT_EQ(IsPlaneValid(*Cartesian(0, 0, 1e-300, 0)), ZULMRSExtendedTrue);
    EXPECT_EQ(IsPlaneValid(*Cartesian(0, std::numeric_limits<double>::denorm_min(), 0, 0)),
              ZULMRSExtendedTrue);
    EXPECT_EQ(IsPlaneValid(*ThreePoints({0, 0, 0}, {1, 0, 0}, {0, 1, 0})), ZULMRSExtendedTrue);
    EXPECT_EQ(IsPlaneValid(*ThreePoints({0, 0, 0}, {1, 1, 1}, {2, 2, 2})), ZULMRSExtendedFalse);
    // Points on a line that is not axis-parallel: neither the filter nor intervals see it.
    EXPECT_EQ(IsPlaneValid(*ThreePoints({0.1, 0.2, 0.3}, {0.2, 0.4, 0.6}, {0.4, 0.8, 1.2})),
              ZULMRSExtendedFalse);
}

TEST(ZULMRSBSPPredicatesPlanes, APlaneWithoutFilteredEquationCountsAsInvalid)
{
    const auto plane = ThreePoints({0, 0, 0}, {1e-200, 0, 0}, {0, 1e-200, 0});
    ASSERT_EQ(std::get<0>(plane->GetStdEquation_ExpDynamic()), nullptr);
    EXPECT_EQ(IsPlaneValid(*plane), ZULMRSExtendedFalse);
    // Its relations are exact all the same.
    EXPECT_EQ(ArePlanesCoincident(*plane, *Cartesian(0, 0, -1, 0)), ZULMRSExtendedTrue);
    EXPECT_EQ(CoincidentOrientation(*plane, *Cartesian(0, 0, -1, 0)), ZULMRSExtendedFalse);
    EXPECT_EQ(ArePlanesParallel(*plane, *Cartesian(0, 1e-300, -1, 0)), ZULMRSExtendedFalse);
}

TEST(ZULMRSBSPPredicatesPlanes, ExchangedAnswers)
{
    EXPECT_EQ(ExchangeBool(ZULMRSExtendedTrue), ZULMRSExtendedFalse);
    EXPECT_EQ(ExchangeBool(ZULMRSExtendedFalse), ZULMRSExtendedTrue);
    EXPECT_EQ(ExchangeBool(ZULMRSExtendedUndetermined), ZULMRSExtendedUndetermined);
    EXPECT_EQ(ExchangeBool(static_cast<ZULMRSExtendedBool>(2)), ZULMRSExtendedUndetermined);
    EXPECT_EQ(sizeof(ZULMRSExtendedBool), 1U);
}
}  // namespace
