#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "ZULMRSBSPOrientation.h"
#include "ZULMRSBSPPlaneRelations.h"
#include "ZULMRSBSPPointRelations.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULMRSBSPSignKernels.h"
#include "ZULTestAllocation.h"

// How often the predicates ask for memory: never in the filtered and interval stages, and never in the exact
// stage for ordinary numbers, which are mantissas with all places in use, of similar size.
namespace
{
using namespace ZULTest;
using namespace ZULMRSBSPPredicates;

constexpr int Cases = std::max(1, 2'000 / ZUL_TEST_CASES_DIVISOR);

/// Of all places, between a half and two.
double Full(Random& random)
{
    return random.Scaled(-1, 0);
}
Point3 FullPoint(Random& random)
{
    return {Full(random), Full(random), Full(random)};
}
Plane4 FullPlane(Random& random)
{
    return {Full(random), Full(random), Full(random), Full(random)};
}

/// What every predicate is asked about.
struct Subject {
    std::vector<Owner<ZULMRSBSPPlane>> m_Planes;  ///< the three of the first point, then others
    std::vector<Owner<ZULMRSBSPPoint>> m_Points;
    Point3 m_Coordinates{};
    std::array<double, 9> m_Numbers{};

    const ZULMRSBSPPlane& Plane(std::size_t i) const { return *m_Planes[i]; }
    ZULMRSBSPPoint& Point(std::size_t i) const { return *m_Points[i]; }
};

using PlaneMaker = std::function<Owner<ZULMRSBSPPlane>(Random&)>;

Owner<ZULMRSBSPPlane> MakeCartesian(Random& random)
{
    const Plane4 e = FullPlane(random);
    return Cartesian(e[0], e[1], e[2], e[3]);
}
Owner<ZULMRSBSPPlane> MakeThreePoints(Random& random)
{
    const Point3 p = FullPoint(random);
    const Point3 q = FullPoint(random);
    return ThreePoints(p, q, FullPoint(random));
}
/// The same plane from other numbers: the opposite equation, or other multiples, or the points in another
/// order.
Owner<ZULMRSBSPPlane> Again(const ZULMRSBSPPlane& plane, Random& random)
{
    if (const auto points = ZULMRSBSPDefiningPoints(plane)) {
        return random.OneIn(2) ? ThreePoints((*points)[1], (*points)[0], (*points)[2])
                               : ThreePoints((*points)[2], (*points)[0], (*points)[1]);
    }
    const double factor = random.Sign() * (random.OneIn(2) ? 0.5 : 1.0);
    const Plane4 e = plane.GetCoords();
    return Cartesian(factor * e[0], factor * e[1], factor * e[2], factor * e[3]);
}

/// Any planes and points, or the same ones over again: every sign is zero, no filter and no interval knows.
Subject MakeSubject(Random& random, const PlaneMaker& make, bool isDegenerate)
{
    Subject subject;
    for (int i = 0; i < 3; ++i) {
        subject.m_Planes.push_back(make(random));
    }
    for (std::size_t i = 0; i < 3; ++i) {
        subject.m_Planes.push_back(isDegenerate ? Again(subject.Plane(i), random) : make(random));
    }
    const auto& p = subject.m_Planes;
    subject.m_Points.push_back(Meeting(p[0], p[1], p[2]));
    subject.m_Points.push_back(Meeting(p[5], p[3], p[4]));
    subject.m_Points.push_back(Meeting(p[3], p[1], isDegenerate ? p[5] : p[2]));
    subject.m_Points.push_back(AtCoordinates(FullPoint(random)));
    const auto points = ZULMRSBSPDefiningPoints(subject.Plane(0));
    subject.m_Coordinates = points && isDegenerate ? (*points)[1] : FullPoint(random);
    const Point3 u = FullPoint(random);
    const Point3 v = FullPoint(random);
    const double half = isDegenerate ? 0.5 : Full(random);
    subject.m_Numbers = {u[0], u[1], u[2], v[0], v[1], v[2], half * u[0], half * u[1], half * u[2]};
    return subject;
}

struct Question {
    const char* m_Name;
    std::function<void(const Subject&)> m_Ask;
};

std::vector<Question> QuestionsOfNumbers()
{
    return {
        {"SignOf2x2Determinant",
         [](const Subject& s) {
             const auto& x = s.m_Numbers;
             SignOf2x2Determinant(x[0], x[1], x[6], x[7]);
         }},
        {"SignOf2x2DiffDeterminant",
         [](const Subject& s) {
             const auto& x = s.m_Numbers;
             SignOf2x2DiffDeterminant(x[0], x[1], x[2], x[3], x[0], x[1], x[2], x[3]);
         }},
        {"SignOf2x2DotProduct",
         [](const Subject& s) {
             const auto& x = s.m_Numbers;
             SignOf2x2DotProduct(x[0], x[1], x[2], x[3], x[1], x[2], x[3], x[0]);
         }},
        {"SignOf3DimDotProduct",
         [](const Subject& s) {
             const auto& x = s.m_Numbers;
             SignOf3DimDotProduct({x[0], x[1], x[2]}, {x[1], -x[0], x[6] * 0x1p-60});
         }},
        {"SignOf3x3Determinant",
         [](const Subject& s) {
             const auto& x = s.m_Numbers;
             SignOf3x3Determinant(x[0], x[1], x[2], x[3], x[4], x[5], x[6], x[7], x[8]);
         }},
        {"GetSignOfNormalSignAngleDiff",
         [](const Subject& s) {
             const auto& x = s.m_Numbers;
             // In a plane across the z axis: the cosine is one.
             GetSignOfNormalSignAngleDiff({ZULMathPoint(x[0], x[1], x[2]), ZULMathPoint(x[3], x[4], x[2]),
                                           ZULMathPoint(x[5], x[6], x[2])},
                                          1.0);
         }},
        {"IsCrossingOBB",
         [](const Subject& s) {
             static ZULListValZULMathPoint corners;
             if (corners.Size() == 0) {
                 for (int i = 0; i < 8; ++i) {
                     corners.Append(ZULMathPoint());
                 }
             }
             for (int i = 1; i <= 8; ++i) {
                 corners[i] = ToMathPoint(s.m_Coordinates);
             }
             IsCrossingOBB(s.Plane(0), corners, nullptr);
         }},
    };
}

std::vector<Question> QuestionsOfPlanesAndPoints()
{
    return {
        {"SignOf3PlanesDeterminant",
         [](const Subject& s) { SignOf3PlanesDeterminant(s.Plane(0), s.Plane(1), s.Plane(3)); }},
        {"IsPointInFrontOfPlane, point",
         [](const Subject& s) { IsPointInFrontOfPlane(s.Plane(3), s.Point(0)); }},
        {"IsPointInFrontOfPlane, Cartesian point",
         [](const Subject& s) { IsPointInFrontOfPlane(s.Plane(3), s.Point(3)); }},
        {"IsPointInFrontOfPlane, coordinates",
         [](const Subject& s) { IsPointInFrontOfPlane(s.Plane(3), ToMathPoint(s.m_Coordinates)); }},
        {"IsPointInFrontOfPlane, array",
         [](const Subject& s) {
             const Point3& c = s.m_Coordinates;
             IsPointInFrontOfPlane(s.Plane(0), std::array<double, 4>{c[0], c[1], c[2], 1.0});
         }},
        {"IsPointInFrontOfPlaneFast, point",
         [](const Subject& s) { IsPointInFrontOfPlaneFast(s.Plane(3), s.Point(0)); }},
        {"IsPointInFrontOfPlaneFast, coordinates",
         [](const Subject& s) { IsPointInFrontOfPlaneFast(s.Plane(3), ToMathPoint(s.m_Coordinates)); }},
        {"ArePlanesParallel", [](const Subject& s) { ArePlanesParallel(s.Plane(0), s.Plane(3)); }},
        {"ArePlanesCoincident", [](const Subject& s) { ArePlanesCoincident(s.Plane(0), s.Plane(3)); }},
        {"CoincidentOrientation", [](const Subject& s) { CoincidentOrientation(s.Plane(0), s.Plane(3)); }},
        {"IsPlaneValid", [](const Subject& s) { IsPlaneValid(s.Plane(0)); }},
        {"ArePointsEqual", [](const Subject& s) { ArePointsEqual(s.Point(0), s.Point(1)); }},
        {"ArePointsEqual, Cartesian point", [](const Subject& s) { ArePointsEqual(s.Point(0), s.Point(3)); }},
        {"LexicographicOrder", [](const Subject& s) { LexicographicOrder(s.Point(0), s.Point(1)); }},
        {"LexicographicOrder, Cartesian point",
         [](const Subject& s) { LexicographicOrder(s.Point(3), s.Point(1)); }},
        {"IsPointValid", [](const Subject& s) { IsPointValid(s.Point(0)); }},
        {"IsPointOnLine",
         [](const Subject& s) { IsPointOnLine(ZULMRSBSPLine(s.Plane(3), s.Plane(4)), s.Point(0)); }},
    };
}

std::vector<Question> QuestionsOfTripleProducts()
{
    return {
        {"SignOfTripleProduct, two planes",
         [](const Subject& s) { SignOfTripleProduct(s.Plane(0), s.Plane(4), s.Point(0), s.Point(1)); }},
        {"SignOfTripleProduct, three points",
         [](const Subject& s) { SignOfTripleProduct(s.Plane(0), s.Point(0), s.Point(1), s.Point(2)); }},
    };
}

void ExpectNoAllocation(const std::vector<Question>& questions, const PlaneMaker& make, bool isDegenerate,
                        std::uint64_t seed)
{
    const Silence silence;
    Random random(seed);
    for (int i = 0; i < Cases; ++i) {
        const Subject subject = MakeSubject(random, make, isDegenerate);
        for (const Question& question : questions) {
            // What belongs to the thread is made by its first question.
            if (i == 0) {
                question.m_Ask(subject);
            }
            const long before = GetAllocations();
            question.m_Ask(subject);
            ASSERT_EQ(GetAllocations(), before) << question.m_Name;
        }
    }
}

TEST(ZULMRSBSPPredicatesAllocation, NumbersInGeneralPosition)
{
    ExpectNoAllocation(QuestionsOfNumbers(), MakeCartesian, false, 65'001);
}
TEST(ZULMRSBSPPredicatesAllocation, DegenerateNumbers)
{
    ExpectNoAllocation(QuestionsOfNumbers(), MakeCartesian, true, 65'002);
    ExpectNoAllocation(QuestionsOfNumbers(), MakeThreePoints, true, 65'003);
}
TEST(ZULMRSBSPPredicatesAllocation, PlanesAndPointsInGeneralPosition)
{
    ExpectNoAllocation(QuestionsOfPlanesAndPoints(), MakeCartesian, false, 65'004);
    ExpectNoAllocation(QuestionsOfPlanesAndPoints(), MakeThreePoints, false, 65'005);
    ExpectNoAllocation(QuestionsOfTripleProducts(), MakeCartesian, false, 65'006);
    ExpectNoAllocation(QuestionsOfTripleProducts(), MakeThreePoints, false, 65'007);
}
TEST(ZULMRSBSPPredicatesAllocation, DegeneratePlanesAndPoints)
{
    ExpectNoAllocation(QuestionsOfPlanesAndPoints(), MakeCartesian, true, 65'008);
    ExpectNoAllocation(QuestionsOfPlanesAndPoints(), MakeThreePoints, true, 65'009);
    // (Of three-points planes these have degree 39 in the coordinates: no ordinary numbers.)
    ExpectNoAllocation(QuestionsOfTripleProducts(), MakeCartesian, true, 65'010);
}

//---------------------------------------------------------------- stage by stage

// The integers come first and leave little to the other stages, so these are asked by themselves.

template <class Kernel>
void ExpectNoAllocationInStages(std::uint64_t seed)
{
    Random random(seed);
    for (int i = 0; i < Cases; ++i) {
        std::array<double, Kernel::NbInputs> inputs;
        for (double& input : inputs) {
            input = Full(random);
        }
        const ZULExpFloatScope scope;
        if (i == 0) {
            ZULMRSBSPKernel<Kernel>::Decide(inputs);
        }
        const long before = GetAllocations();
        ZULMRSBSPKernel<Kernel>::ByIntegers(inputs);
        ZULMRSBSPKernel<Kernel>::Shortcut(inputs);
        ZULMRSBSPKernel<Kernel>::Filter(inputs);
        ZULMRSBSPKernel<Kernel>::Interval(inputs);
        ZULMRSBSPKernel<Kernel>::Exact(inputs);
        ZULMRSBSPKernel<Kernel>::Decide(inputs);
        ASSERT_EQ(GetAllocations(), before);
    }
}

TEST(ZULMRSBSPPredicatesAllocation, EveryStageOfTheKernels)
{
    ExpectNoAllocationInStages<ZULMRSBSPDeterminant2x2Kernel>(65'011);
    ExpectNoAllocationInStages<ZULMRSBSPDifferenceDeterminantKernel>(65'012);
    ExpectNoAllocationInStages<ZULMRSBSPDifferenceDotProductKernel>(65'013);
    ExpectNoAllocationInStages<ZULMRSBSPDotProductKernel>(65'014);
    ExpectNoAllocationInStages<ZULMRSBSPEquationKernel>(65'015);
    ExpectNoAllocationInStages<ZULMRSBSPDeterminant3x3Kernel>(65'016);
    ExpectNoAllocationInStages<ZULMRSBSPNormalAngleKernel>(65'017);
}

template <class Number, class Evaluate>
void RunStage(const Evaluate& evaluate)
{
    const ZULExpFloatScope scope;
    ZULMRSBSPStages::RunChecked<Number>(evaluate);
}

/// All that an arithmetic is asked for planes and points.
template <class Number>
void AskPlanesAndPoints(const Subject& s)
{
    RunStage<Number>([&s] {
        using namespace ZULMRSBSPPlaneRelations;
        EvaluateNormals<Number>(s.Plane(0), s.Plane(1), s.Plane(3));
        EvaluateMinor<Number>(s.Plane(0), s.Plane(3), 2, 3);
        CoefficientProduct<Number>(s.Plane(0), s.Plane(3), 3);
        ZULMRSBSPOrientation::EvaluateAtCoordinates<Number>(s.Plane(3), ToMathPoint(s.m_Coordinates));
        ZULMRSBSPOrientation::EvaluateAtMeetingPoint<Number>(s.Plane(3), s.Point(0));
        for (std::size_t axis = 0; axis < 3; ++axis) {
            ZULMRSBSPPointRelations::CompareIn<Number>(s.Point(0), s.Point(1), axis);
            ZULMRSBSPPointRelations::CompareIn<Number>(s.Point(0), s.Point(3), axis);
        }
        return ZULMRSBSPSign();
    });
}
template <class Number>
void AskTripleProducts(const Subject& s)
{
    RunStage<Number>([&s] {
        using namespace ZULMRSBSPPointRelations;
        DirectionBetweenNormals{s.Plane(0), s.Plane(4), s.Point(0), s.Point(1)}.Evaluate<Number>();
        NormalOfPath{s.Plane(0), s.Point(0), s.Point(1), s.Point(2)}.Evaluate<Number>();
        return ZULMRSBSPSign();
    });
}

TEST(ZULMRSBSPPredicatesAllocation, EveryStageOfPlanesAndPoints)
{
    const Silence silence;
    Random random(65'018);
    for (int i = 0; i < Cases; ++i) {
        const bool areCartesian = i % 2 == 0;
        const Subject s =
            MakeSubject(random, areCartesian ? MakeCartesian : MakeThreePoints, random.OneIn(2));
        const auto ask = [&] {
            AskPlanesAndPoints<ZULExpDynamic>(s);
            AskPlanesAndPoints<ZULExpInterval>(s);
            AskPlanesAndPoints<ZULExpFloatRingExtensionTS>(s);
            AskTripleProducts<ZULExpDynamic>(s);
            AskTripleProducts<ZULExpInterval>(s);
            if (areCartesian) {
                AskTripleProducts<ZULExpFloatRingExtensionTS>(s);
            }
            const ZULExpFloatScope scope;
            ZULMRSBSPOrientation::ByIntegers(s.Plane(3), s.Point(0));
            ZULMRSBSPOrientation::ExactByIntegers(s.Plane(3), s.Point(0));
            ZULMRSBSPOrientation::ExactByRows(s.Plane(3), s.Point(0));
            ZULMRSBSPOrientation::FilterByRepresentation(s.Plane(3), s.Point(0));
            ZULMRSBSPOrientation::IntervalByRepresentation(s.Plane(3), s.Point(0));
        };
        if (i == 0) {
            ask();
        }
        const long before = GetAllocations();
        ask();
        ASSERT_EQ(GetAllocations(), before) << (areCartesian ? "Cartesian" : "three points");
    }
}

/// The validity of a plane whose normal the filter cannot tell from zero.
TEST(ZULMRSBSPPredicatesAllocation, TheValidityOfThinPlanes)
{
    Random random(65'019);
    for (int i = 0; i < Cases; ++i) {
        // Three points of one line, or nearly: all coordinates in use.
        const Point3 p = FullPoint(random);
        Point3 q = p;
        Point3 r = p;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            q[axis] = random.OneIn(2) ? p[axis] : random.Nudged(p[axis], 2);
            r[axis] = 2.0 * p[axis];
        }
        const auto plane = ThreePoints(p, q, r);
        IsPlaneValid(*plane);
        const long before = GetAllocations();
        IsPlaneValid(*plane);
        ASSERT_EQ(GetAllocations(), before);
    }
}
}  // namespace
