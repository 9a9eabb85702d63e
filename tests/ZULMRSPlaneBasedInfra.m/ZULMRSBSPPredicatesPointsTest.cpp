#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"

// Equality, order and validity of points, and points on lines, held against exact arithmetic.
namespace
{
using namespace ZULMRSBSPPredicates;
using namespace ZULTest;

constexpr int True = ZULMRSExtendedTrue;
constexpr int False = ZULMRSExtendedFalse;
constexpr int Undetermined = ZULMRSExtendedUndetermined;

/// Six points at two places, and five planes, three through one and two through the other. The places agree
/// in some of their first coordinates, perhaps in all. Three of the points share planes of these.
struct Crowd {
    Crowd(Random& random, Regime regime, Position position)
    {
        Scene here(random, regime, position);
        Point3 integers = here.GetIntegers();
        for (int axis = random.Integer(0, 3); axis < 3; ++axis) {
            integers[static_cast<std::size_t>(axis)] = random.Integer(-20, 20);
        }
        Scene there(here, integers);
        do {
            m_Planes.clear();
            for (Scene* scene : {&here, &here, &here, &there, &there}) {
                m_Planes.push_back(scene->Plane());
            }
        } while (!MeetingPoint(0, 1, 2).IsValid() || !MeetingPoint(0, 3, 4).IsValid());
        m_Points.push_back(MeetingPoint(0, 1, 2));
        m_Points.push_back(MeetingPoint(2, 1, 0));
        m_Points.push_back(MeetingPoint(0, 3, 4));
        m_Points.push_back(here.AnyPoint());
        m_Points.push_back(there.AnyPoint());
        m_Points.push_back(PointCase::Cartesian(there.GetPoint()));
    }

    PointCase MeetingPoint(std::size_t i, std::size_t j, std::size_t k) const
    {
        return PointCase::Meeting(m_Planes[i], m_Planes[j], m_Planes[k]);
    }

    std::vector<PlaneCase> m_Planes;
    std::vector<PointCase> m_Points;
};
constexpr std::size_t PairsPerCrowd = 30;

/// How many pairs first differ in each axis, or not at all.
using Census = std::array<std::size_t, 4>;

void CheckPair(const PointCase& p, const PointCase& q, Census& census)
{
    std::size_t axis = 0;
    int order = 0;
    while (axis < 3 && order == 0) {
        order = DyadicCompare(p.m_Exact, q.m_Exact, axis);
        axis += order == 0 ? 1U : 0U;
    }
    ++census[axis];
    const int areEqual = order == 0 ? True : False;
    ASSERT_EQ(ArePointsEqual(*p.m_Point, *q.m_Point), areEqual);
    ASSERT_EQ(ArePointsEqual(*q.m_Point, *p.m_Point), areEqual);
    ASSERT_EQ(LexicographicOrder(*p.m_Point, *q.m_Point), order > 0 ? True : False);
    ASSERT_EQ(LexicographicOrder(*q.m_Point, *p.m_Point), order < 0 ? True : False);
}

TEST(ZULMRSBSPPredicatesPoints, EqualityAndOrderAreExactInEveryRegime)
{
    const Silence silence;
    Random random(26'001);
    Census census{};
    ForAllKinds(CasesPerPredicate / PairsPerCrowd, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const Crowd crowd(random, regime, position);
            for (std::size_t p = 0; p < crowd.m_Points.size(); ++p) {
                for (std::size_t q = 0; q < p; ++q) {
                    CheckPair(crowd.m_Points[p], crowd.m_Points[q], census);
                }
            }
            ASSERT_FALSE(testing::Test::HasFatalFailure()) << NameOf(regime);
        }
    });
    // Each of these is no accident.
    EXPECT_GT(census[1], CasesPerPredicate / 100);
    EXPECT_GT(census[2], CasesPerPredicate / 100);
    EXPECT_GT(census[3], CasesPerPredicate / 10);
}

TEST(ZULMRSBSPPredicatesPoints, PointsOnLinesAreExactInEveryRegime)
{
    const Silence silence;
    Random random(26'002);
    std::array<std::size_t, 4> census{};  // by how the two planes are hit: none, first, second, both
    constexpr std::size_t linesPerCrowd = 5 * 6;
    ForAllKinds(CasesPerPredicate / linesPerCrowd, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const Crowd crowd(random, regime, position);
            for (const PointCase& point : crowd.m_Points) {
                std::vector<bool> isOn;
                for (const PlaneCase& plane : crowd.m_Planes) {
                    isOn.push_back(DyadicSide(plane.m_Exact, point.m_Exact) == 0);
                }
                for (std::size_t first = 0; first < 5; ++first) {
                    const auto second = (first + static_cast<std::size_t>(random.Integer(0, 4))) % 5;
                    const ZULMRSBSPLine line(*crowd.m_Planes[first].m_Plane, *crowd.m_Planes[second].m_Plane);
                    ++census[(isOn[first] ? 1U : 0U) + (isOn[second] ? 2U : 0U)];
                    ASSERT_EQ(IsPointOnLine(line, *point.m_Point), isOn[first] && isOn[second] ? True : False)
                        << NameOf(regime);
                }
            }
        }
    });
    for (const std::size_t seen : census) {
        EXPECT_GT(seen, CasesPerPredicate / 50);
    }
}

/// Five planes; not in general position three of the normals depend on others, one of them on a single one.
std::vector<PlaneCase> DependentPlanes(Scene scene, Random& random)
{
    const auto factor = [&random] { return random.Integer(-2, 2); };
    const Point3 n0 = SmallVector(random, 9);
    const Point3 n1 = SmallVector(random, 9);
    const int s = factor();
    const Point3 n2 = Combined(s, n0, factor(), n1);
    const Point3 n3 = SmallVector(random, 9);
    std::vector<PlaneCase> planes;
    for (const Point3& normal : {n0, n1, n2, n3, Combined(1 + random.Integer(0, 3), n3, 0, n3)}) {
        planes.push_back(scene.PlaneWithNormal(normal));
    }
    return planes;
}

/// A point of either kind, its coordinates as they may be, on three planes that may not meet.
Owner<ZULMRSBSPPoint> PointOn(Random& random, const PlaneCase& p1, const PlaneCase& p2, const PlaneCase& p3)
{
    if (random.OneIn(3)) {
        return Own<ZULMRSBSPPoint>(new ZULMRSBSPCartesianPoint(p1.m_Plane.get(), p2.m_Plane.get(),
                                                               p3.m_Plane.get(), ZULMathPoint(1, 2, 3)));
    }
    return Meeting(p1.m_Plane, p2.m_Plane, p3.m_Plane);
}

TEST(ZULMRSBSPPredicatesPoints, ValidityIsExactInEveryRegime)
{
    const Silence silence;
    Random random(26'003);
    std::size_t invalid = 0;
    constexpr std::size_t triplesPerScene = 10;
    ForAllKinds(CasesPerPredicate / triplesPerScene, [&](Regime regime, Position position,
                                                         std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto planes = DependentPlanes(Scene(random, regime, position), random);
            for (std::size_t a = 0; a < 5; ++a) {
                for (std::size_t b = 0; b < a; ++b) {
                    for (std::size_t c = 0; c < b; ++c) {
                        const bool isValid =
                            DyadicDeterminant(std::array<DyadicPlane, 3>{planes[a].m_Exact, planes[b].m_Exact,
                                                                         planes[c].m_Exact},
                                              0, 1, 2)
                                .Sign() != 0;
                        invalid += isValid ? 0U : 1U;
                        ASSERT_EQ(IsPointValid(*PointOn(random, planes[a], planes[b], planes[c])),
                                  isValid ? True : False)
                            << NameOf(regime);
                    }
                }
            }
        }
    });
    EXPECT_GT(invalid, CasesPerPredicate / 10);
}

//---------------------------------------------------------------- a strict weak order

/// Many points at few places: their kinds, planes and scales of planes differ. Some lie a few rounding units
/// beside a place.
std::vector<PointCase> CrowdedPoints(Random& random, Regime regime, std::size_t count)
{
    const Scene exact(random, regime, Position::Degenerate);
    // Places in a cube, a dozen points or more at each.
    const int reach = static_cast<int>(std::cbrt(static_cast<double>(count) / 16.0) / 2.0);
    std::vector<PointCase> points;
    while (points.size() < count) {
        Scene scene(exact, SmallVector(random, reach));
        points.push_back(scene.AnyPoint());
        if (random.OneIn(8)) {
            Point3 beside = scene.GetPoint();
            Blur(random, Position::Near, beside);
            points.push_back(PointCase::Cartesian(beside));
        }
    }
    return points;
}

bool IsBefore(const PointCase* p, const PointCase* q)
{
    return LexicographicOrder(*q->m_Point, *p->m_Point) == True;
}
bool AreIncomparable(const PointCase* p, const PointCase* q)
{
    return !IsBefore(p, q) && !IsBefore(q, p);
}

void SortAndCheck(std::uint64_t seed, Regime regime, std::size_t count)
{
    SCOPED_TRACE(NameOf(regime));
    const Silence silence;
    Random random(seed);
    const std::vector<PointCase> points = CrowdedPoints(random, regime, count);
    std::vector<const PointCase*> sorted;
    for (const PointCase& point : points) {
        sorted.push_back(&point);
    }
    std::sort(sorted.begin(), sorted.end(), IsBefore);
    std::size_t equal = 0;
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        const int order = DyadicOrder(sorted[i - 1]->m_Exact, sorted[i]->m_Exact);
        ASSERT_LE(order, 0) << i;
        ASSERT_EQ(AreIncomparable(sorted[i - 1], sorted[i]), order == 0) << i;
        equal += order == 0 ? 1U : 0U;
    }
    EXPECT_GT(equal, count / 4);

    std::size_t chains = 0;
    for (std::size_t i = 0; i < count / 4; ++i) {
        // Neighbours in the sequence, so that equal ones are frequent.
        const auto first = random.Bits() % (sorted.size() - 12);
        const auto pick = [&] { return sorted[first + static_cast<std::size_t>(random.Integer(0, 11))]; };
        const PointCase* p = pick();
        const PointCase* q = pick();
        const PointCase* r = pick();
        ASSERT_FALSE(IsBefore(p, p));
        ASSERT_FALSE(IsBefore(p, q) && IsBefore(q, p));
        ASSERT_TRUE(!(IsBefore(p, q) && IsBefore(q, r)) || IsBefore(p, r));
        if (AreIncomparable(p, q) && AreIncomparable(q, r)) {
            ++chains;
            ASSERT_TRUE(AreIncomparable(p, r));
            ASSERT_EQ(ArePointsEqual(*p->m_Point, *r->m_Point), True);
        }
    }
    EXPECT_GT(chains, count / 40);
}

TEST(ZULMRSBSPPredicatesPoints, TheOrderSortsPointsOfWhichManyAreEqual)
{
    SortAndCheck(26'004, Regime::Easy, 100'000 / ZUL_TEST_CASES_DIVISOR);
}

TEST(ZULMRSBSPPredicatesPoints, TheOrderSortsPointsWhoseProductsLeaveTheDoubles)
{
    for (const Regime regime : {Regime::Tiny, Regime::Denormal, Regime::Huge}) {
        SortAndCheck(26'005, regime, 10'000 / ZUL_TEST_CASES_DIVISOR);
    }
}

//---------------------------------------------------------------- single cases

TEST(ZULMRSBSPPredicatesPoints, APointEqualsItselfAndDoesNotComeAfterItself)
{
    const auto cartesian = AtCoordinates({1, 2, 3});
    const auto meeting = Meeting(Cartesian(1, 0, 0, -1), Cartesian(0, 1, 0, -2), Cartesian(0, 0, 1, -3));
    for (const auto& point : {cartesian.get(), meeting.get()}) {
        EXPECT_EQ(ArePointsEqual(*point, *point), True);
        EXPECT_EQ(LexicographicOrder(*point, *point), False);
    }
    EXPECT_EQ(ArePointsEqual(*cartesian, *meeting), True);
    EXPECT_EQ(ArePointsEqual(*meeting, *cartesian), True);
    EXPECT_EQ(LexicographicOrder(*cartesian, *meeting), False);
    EXPECT_EQ(LexicographicOrder(*meeting, *cartesian), False);
    // The same object even where its coordinates equal nothing.
    const auto nowhere = AtCoordinates({NotANumber, 0, 0});
    EXPECT_EQ(ArePointsEqual(*nowhere, *nowhere), True);
    EXPECT_EQ(LexicographicOrder(*nowhere, *nowhere), False);
}

TEST(ZULMRSBSPPredicatesPoints, TheSamePlanesInAnotherOrderAreTheSamePoint)
{
    const auto x = Cartesian(0.1, 0.7, 0.3, 0.9);
    const auto y = Cartesian(0.9, 0.2, 0.4, 0.7);
    const auto z = ThreePoints({0.3, 0.5, 0.8}, {0.1, 0.6, 0.2}, {0.7, 0.2, 0.9});
    const auto point = Meeting(x, y, z);
    for (const auto& other : {Meeting(y, x, z), Meeting(z, y, x), Meeting(z, x, y)}) {
        EXPECT_EQ(ArePointsEqual(*point, *other), True);
        EXPECT_EQ(LexicographicOrder(*point, *other), False);
    }
    EXPECT_EQ(ArePointsEqual(*point, *Meeting(x, y, Cartesian(0, 0, 1, 0))), False);
    // The planes come before the coordinates.
    const auto at = [&](const ZULMathPoint& p) {
        return Own<ZULMRSBSPPoint>(new ZULMRSBSPCartesianPoint(z.get(), x.get(), y.get(), p));
    };
    EXPECT_EQ(ArePointsEqual(*at({1, 2, 3}), *at({4, 5, 6})), True);
    EXPECT_EQ(ArePointsEqual(*at({1, 2, 3}), *point), True);
}

TEST(ZULMRSBSPPredicatesPoints, CoordinatesAreComparedAsDoubles)
{
    const Point3 p = {1, 0.0, 3};
    EXPECT_EQ(ArePointsEqual(*AtCoordinates(p), *AtCoordinates({1, -0.0, 3})), True);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Point3 other = p;
        other[axis] = std::nextafter(p[axis], 10.0);
        EXPECT_EQ(ArePointsEqual(*AtCoordinates(p), *AtCoordinates(other)), False) << axis;
        EXPECT_EQ(LexicographicOrder(*AtCoordinates(other), *AtCoordinates(p)), True) << axis;
        other[axis] = NotANumber;
        EXPECT_EQ(ArePointsEqual(*AtCoordinates(p), *AtCoordinates(other)), False) << axis;
        EXPECT_EQ(ArePointsEqual(*AtCoordinates(other), *AtCoordinates(other)), False) << axis;
    }
    EXPECT_EQ(LexicographicOrder(*AtCoordinates({1, -0.0, 3}), *AtCoordinates(p)), False);
    EXPECT_EQ(LexicographicOrder(*AtCoordinates(p), *AtCoordinates({1, -0.0, 3})), False);
}

TEST(ZULMRSBSPPredicatesPoints, TheOrderIsByXThenYThenZ)
{
    const auto meetingAt = [](double x, double y, double z) {
        return Meeting(Cartesian(1, 0, 0, -x), Cartesian(0, 1, 0, -y), Cartesian(0, 0, 1, -z));
    };
    const std::vector<Point3> ascending = {{0, 0, 0}, {0, 0, 1}, {0, 1, -5}, {0, 1, 0}, {1, -9, -9}};
    for (std::size_t i = 0; i < ascending.size(); ++i) {
        for (std::size_t j = 0; j < ascending.size(); ++j) {
            const auto [px, py, pz] = ascending[i];
            const auto [qx, qy, qz] = ascending[j];
            const int expected = i > j ? True : False;
            EXPECT_EQ(LexicographicOrder(*AtCoordinates({px, py, pz}), *AtCoordinates({qx, qy, qz})),
                      expected);
            EXPECT_EQ(LexicographicOrder(*meetingAt(px, py, pz), *AtCoordinates({qx, qy, qz})), expected);
            EXPECT_EQ(LexicographicOrder(*AtCoordinates({px, py, pz}), *meetingAt(qx, qy, qz)), expected);
            EXPECT_EQ(LexicographicOrder(*meetingAt(px, py, pz), *meetingAt(qx, qy, qz)), expected);
        }
    }
}

TEST(ZULMRSBSPPredicatesPoints, APlaneTwiceIsInvalidAndAMissingOneUndetermined)
{
    const Silence silence;
    const auto x = Cartesian(1, 0, 0, -1);
    const auto y = Cartesian(0, 1, 0, -1);
    const auto z = Cartesian(0, 0, 1, -1);
    const Owner<ZULMRSBSPPlane> none;
    EXPECT_EQ(IsPointValid(*Meeting(x, y, z)), True);
    EXPECT_EQ(IsPointValid(*Meeting(x, x, z)), False);
    EXPECT_EQ(IsPointValid(*Meeting(x, y, x)), False);
    EXPECT_EQ(IsPointValid(*Meeting(x, y, y)), False);
    EXPECT_EQ(IsPointValid(*Meeting(none, y, z)), Undetermined);
    EXPECT_EQ(IsPointValid(*Meeting(x, none, z)), Undetermined);
    EXPECT_EQ(IsPointValid(*Meeting(x, y, none)), Undetermined);
    // What is missing comes first.
    EXPECT_EQ(IsPointValid(*Meeting(x, x, none)), Undetermined);
    EXPECT_EQ(IsPointValid(*Meeting(none, none, none)), Undetermined);
    // Different objects that are one plane; three planes through a line.
    EXPECT_EQ(IsPointValid(*Meeting(x, y, Cartesian(2, 0, 0, -2))), False);
    EXPECT_EQ(IsPointValid(*Meeting(x, y, Cartesian(1, 1, 0, -2))), False);
    // One object twice whose determinant could not be computed.
    const auto hopeless = Cartesian(NotANumber, 1, 0, 0);
    EXPECT_EQ(IsPointValid(*Meeting(hopeless, hopeless, z)), False);
    EXPECT_EQ(IsPointValid(*AtCoordinates({5, 6, 7})), True);
}

TEST(ZULMRSBSPPredicatesPoints, AMissingPlaneHoldsNoPoint)
{
    const auto x = Cartesian(1, 0, 0, -1);
    const auto y = Cartesian(0, 1, 0, -1);
    const auto broken = Meeting(x, y, {});
    EXPECT_EQ(ArePointsEqual(*broken, *AtCoordinates({1, 1, 1})), False);
    EXPECT_EQ(ArePointsEqual(*AtCoordinates({1, 1, 1}), *broken), False);
    EXPECT_EQ(ArePointsEqual(*broken, *Meeting(x, y, Cartesian(0, 0, 1, -1))), False);
    EXPECT_EQ(LexicographicOrder(*broken, *AtCoordinates({1, 1, 1})), False);
}

// An answer that no stage can give is none; the next plane still tells the points apart.
TEST(ZULMRSBSPPredicatesPoints, APlaneThatCannotBeEvaluatedLeavesTheQuestionToTheOthers)
{
    const Silence silence;
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    const auto hopeless = Cartesian(notANumber, 0, 0, 1);
    const auto point = Meeting(hopeless, Cartesian(0, 1, 0, 0), Cartesian(0, 0, 1, 0));
    EXPECT_EQ(ArePointsEqual(*point, *AtCoordinates({1, 5, 0})), False);
    EXPECT_EQ(ArePointsEqual(*point, *AtCoordinates({1, 0, 0})), True);
}

TEST(ZULMRSBSPPredicatesPoints, ALineIsItsTwoPlanes)
{
    const auto x = Cartesian(1, 0, 0, -1);
    const auto y = ThreePoints({0, 2, 0}, {1, 2, 0}, {0, 2, 1});
    const ZULMRSBSPLine line(*x, *y);
    EXPECT_EQ(&line.GetP1(), x.get());
    EXPECT_EQ(&line.GetP2(), y.get());
    EXPECT_EQ(IsPointOnLine(line, *AtCoordinates({1, 2, 7})), True);
    EXPECT_EQ(IsPointOnLine(line, *AtCoordinates({1, 3, 7})), False);
    EXPECT_EQ(IsPointOnLine(line, *AtCoordinates({0, 2, 7})), False);
    EXPECT_EQ(IsPointOnLine(line, *AtCoordinates({0, 0, 0})), False);
    // Own planes, by identity.
    const auto z = Cartesian(0, 0, 1, 0);
    EXPECT_EQ(IsPointOnLine(line, *Meeting(x, z, y)), True);
    EXPECT_EQ(IsPointOnLine(ZULMRSBSPLine(*z, *z), *Meeting(x, z, y)), True);
}
}  // namespace
