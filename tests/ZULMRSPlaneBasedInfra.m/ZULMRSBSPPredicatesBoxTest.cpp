#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <ostream>
#include <utility>

#include "ZULListValZULMathPoint.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULTestAllocation.h"
#include "ZULTestPlaneStub.h"

// Whether a plane cuts a box, held against exact arithmetic.
namespace
{
using namespace ZULMRSBSPPredicates;
using namespace ZULTest;

constexpr auto NoSide = static_cast<ZULMRSExtendedBool>(2);
constexpr auto Unset = static_cast<ZULMRSExtendedBool>(77);

using Corners = std::array<Point3, 8>;

ZULListValZULMathPoint ToList(const Corners& corners)
{
    ZULListValZULMathPoint list;
    for (const Point3& corner : corners) {
        list.Append(ToMathPoint(corner));
    }
    return list;
}

/// The box around a place with the given half edges, any of which may be zero.
Corners CornersOf(const Point3& centre, const std::array<Point3, 3>& halfEdges)
{
    Corners corners;
    for (std::size_t k = 0; k < corners.size(); ++k) {
        Point3& corner = corners[k];
        corner = centre;
        for (std::size_t edge = 0; edge < 3; ++edge) {
            const double sign = (k >> edge & 1U) != 0 ? 1.0 : -1.0;
            for (std::size_t i = 0; i < 3; ++i) {
                corner[i] += sign * halfEdges[edge][i];
            }
        }
    }
    return corners;
}

/// What the answer and the side must be, from the sides of the corners.
struct Expected {
    int m_IsCrossing = 0;
    ZULMRSExtendedBool m_Side = NoSide;
    int m_NbOnPlane = 0;

    Expected(const DyadicPlane& plane, const Corners& corners)
    {
        bool isSomeBehind = false;
        bool isSomeInFront = false;
        for (const Point3& corner : corners) {
            const int side = DyadicSide(plane, corner);
            m_NbOnPlane += side == 0 ? 1 : 0;
            isSomeBehind = isSomeBehind || side < 0;
            isSomeInFront = isSomeInFront || side > 0;
        }
        if (isSomeBehind && isSomeInFront) {
            m_IsCrossing = 1;
            m_Side = ZULMRSExtendedUndetermined;
        } else if (isSomeBehind || isSomeInFront) {
            m_Side = isSomeInFront ? ZULMRSExtendedTrue : ZULMRSExtendedFalse;
        }
    }
};

/// An oriented box and a plane. Not in general position the plane often touches a corner, an edge or a face,
/// or contains a flat box.
struct BoxCase {
    Corners m_Corners;
    PlaneCase m_Plane;

    static BoxCase Make(Random& random, Regime regime, Position position)
    {
        Scene scene(random, regime, position);
        return position == Position::General ? General(random, regime, scene) : Touching(random, scene);
    }

private:
    static BoxCase General(Random& random, Regime regime, Scene& scene)
    {
        std::array<Point3, 3> halfEdges = {random.Point(regime), random.Point(regime), random.Point(regime)};
        for (Point3& edge : halfEdges) {
            random.ScaleByPowerOfTwo(edge, -6, 0);
        }
        return {CornersOf(scene.GetPoint(), halfEdges), scene.Plane()};
    }
    static BoxCase Touching(Random& random, Scene& scene)
    {
        // Edges at right angles to each other; all numbers so small that none overflows when scaled.
        const Point3 u = random.OneIn(2) ? Point3{3, 0, 0} : SmallVector(random, 3);
        Point3 v = Cross(u, SmallVector(random, 3));
        Point3 w = Cross(u, v);
        random.ScaleByPowerOfTwo(v, -2, 2);
        random.ScaleByPowerOfTwo(w, -2, 2);
        const int flatness = random.Integer(0, 9);
        w = flatness <= 1 ? Point3{} : w;
        v = flatness == 1 ? Point3{} : v;
        const Corners integers = CornersOf(scene.GetIntegers(), {u, v, w});
        const Point3& through = random.OneIn(8) ? scene.GetIntegers() : integers[random.Bits() % 8];
        Corners corners;
        std::transform(integers.begin(), integers.end(), corners.begin(),
                       [&scene](const Point3& corner) { return scene.Scaled(corner); });
        return {corners, scene.PlaneThrough(through, TouchingNormal(random, {u, v, Cross(u, v)}))};
    }
    /// Along an edge: a face touches; across one: an edge or a diagonal does; otherwise a corner.
    static Point3 TouchingNormal(Random& random, const std::array<Point3, 3>& edges)
    {
        const Point3& edge = edges[random.Bits() % 3];
        switch (random.Integer(0, 2)) {
            case 0:
                return Combined(random.OneIn(2) ? 1 : -1, edge, 0, edge);
            case 1:
                return Cross(edge, SmallVector(random, 3));
            default:
                return SmallVector(random, 6);
        }
    }
};

TEST(ZULMRSBSPPredicatesBox, CrossingIsExactInEveryRegime)
{
    Random random(28'001);
    std::array<std::size_t, 9> onPlane{};
    std::array<std::size_t, 4> sides{};
    constexpr std::size_t casesPerBox = 4;
    ForAllKinds(CasesPerPredicate / casesPerBox, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            BoxCase box = BoxCase::Make(random, regime, position);
            const Expected expected(box.m_Plane.m_Exact, box.m_Corners);
            onPlane[static_cast<std::size_t>(expected.m_NbOnPlane)] += casesPerBox;
            sides[static_cast<std::size_t>(expected.m_Side + 1)] += casesPerBox;
            for (std::size_t order = 0; order < casesPerBox; ++order) {
                ZULMRSExtendedBool side = Unset;
                ASSERT_EQ(IsCrossingOBB(*box.m_Plane.m_Plane, ToList(box.m_Corners), &side),
                          expected.m_IsCrossing)
                    << NameOf(regime);
                ASSERT_EQ(side, expected.m_Side) << NameOf(regime);
                // The corners in another order.
                std::swap(box.m_Corners[random.Bits() % 8], box.m_Corners[random.Bits() % 8]);
                std::rotate(box.m_Corners.begin(), box.m_Corners.begin() + random.Integer(1, 7),
                            box.m_Corners.end());
            }
        }
    });
    for (const std::size_t nb : {0U, 1U, 2U, 4U, 8U}) {
        EXPECT_GT(onPlane[nb], CasesPerPredicate / 100) << nb;
    }
    for (const std::size_t seen : sides) {
        EXPECT_GT(seen, CasesPerPredicate / 100);
    }
}

#if ZUL_HAS_SSE2
TEST(ZULMRSBSPPredicatesBox, AnswersDoNotDependOnTheEnvironmentAndLeaveItAlone)
{
    Random random(28'002);
    ForAllKinds(10'000 / ZUL_TEST_CASES_DIVISOR, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const BoxCase box = BoxCase::Make(random, regime, position);
            const Expected expected(box.m_Plane.m_Exact, box.m_Corners);
            const ZULListValZULMathPoint list = ToList(box.m_Corners);
            ASSERT_TRUE(HoldsInEveryEnvironment(10 * expected.m_IsCrossing + expected.m_Side, [&] {
                ZULMRSExtendedBool side = Unset;
                const int answer = IsCrossingOBB(*box.m_Plane.m_Plane, list, &side);
                return 10 * answer + side;
            })) << NameOf(regime);
        }
    });
}
#endif

TEST(ZULMRSBSPPredicatesBox, OrdinaryBoxesAllocateNothing)
{
    Random random(28'003);
    for (const Position position : {Position::General, Position::Degenerate}) {
        for (int i = 0; i < 10'000; ++i) {
            const BoxCase box = BoxCase::Make(random, Regime::Easy, position);
            const ZULListValZULMathPoint list = ToList(box.m_Corners);
            const long before = GetAllocations();
            IsCrossingOBB(*box.m_Plane.m_Plane, list, nullptr);
            ASSERT_EQ(GetAllocations(), before);
        }
    }
}

//---------------------------------------------------------------- single cases

constexpr Corners Cube = {
    {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {0, 0, 2}, {2, 0, 2}, {2, 2, 2}, {0, 2, 2}}};

struct Answer {
    int m_IsCrossing;
    int m_Side;
    friend bool operator==(const Answer&, const Answer&) = default;
};
std::ostream& operator<<(std::ostream& stream, const Answer& answer)
{
    return stream << answer.m_IsCrossing << ", side " << answer.m_Side;
}
Answer Ask(const ZULMRSBSPPlane& plane, const ZULListValZULMathPoint& corners)
{
    ZULMRSExtendedBool side = Unset;
    const int answer = IsCrossingOBB(plane, corners, &side);
    // Nobody has to take the side.
    EXPECT_EQ(IsCrossingOBB(plane, corners, nullptr), answer);
    return {answer, side};
}

TEST(ZULMRSBSPPredicatesBox, APlaneThroughAFaceDoesNotCross)
{
    const auto list = ToList(Cube);
    EXPECT_EQ(Ask(*Cartesian(0, 0, 1, 0), list), (Answer{0, 1}));
    EXPECT_EQ(Ask(*Cartesian(0, 0, -1, 0), list), (Answer{0, -1}));
    EXPECT_EQ(Ask(*Cartesian(0, 0, 1, -2), list), (Answer{0, -1}));
    EXPECT_EQ(Ask(*ThreePoints({0, 0, 0}, {1, 0, 0}, {0, 1, 0}), list), (Answer{0, 1}));
    EXPECT_EQ(Ask(*ThreePoints({0, 0, 2}, {1, 0, 2}, {0, 1, 2}), list), (Answer{0, -1}));
}

TEST(ZULMRSBSPPredicatesBox, PlanesThatTouchOrMissOrCut)
{
    const auto list = ToList(Cube);
    // A corner, an edge.
    EXPECT_EQ(Ask(*Cartesian(1, 1, 1, 0), list), (Answer{0, 1}));
    EXPECT_EQ(Ask(*Cartesian(1, 1, 1, -6), list), (Answer{0, -1}));
    EXPECT_EQ(Ask(*Cartesian(1, 1, 0, -4), list), (Answer{0, -1}));
    // Missed by a hair, cut by a hair.
    EXPECT_EQ(Ask(*Cartesian(1, 1, 1, std::nextafter(-6.0, -7.0)), list), (Answer{0, -1}));
    EXPECT_EQ(Ask(*Cartesian(1, 1, 1, std::nextafter(-6.0, -5.0)), list), (Answer{1, 0}));
    EXPECT_EQ(Ask(*Cartesian(0, 0, 1, -1), list), (Answer{1, 0}));
    EXPECT_EQ(Ask(*ThreePoints({0, 0, 1}, {1, 0, 1}, {0, 1, 1}), list), (Answer{1, 0}));
    // Through opposite edges, four corners on the plane.
    EXPECT_EQ(Ask(*Cartesian(1, -1, 0, 0), list), (Answer{1, 0}));
    EXPECT_EQ(Ask(*Cartesian(1, 0, 0, 5), list), (Answer{0, 1}));
}

TEST(ZULMRSBSPPredicatesBox, NoCornerWithASideIsTold)
{
    const Corners flat = CornersOf({1, 2, 3}, {Point3{0.1, 0, 0}, Point3{0, 0.7, 0}, Point3{0, 0, 0}});
    EXPECT_EQ(Ask(*Cartesian(0, 0, 0.1, -3 * 0.1), ToList(flat)).m_Side,
              Expected(ToDyadic(Plane4{0, 0, 0.1, -3 * 0.1}), flat).m_Side);
    EXPECT_EQ(Ask(*Cartesian(0, 0, 1, -3), ToList(flat)), (Answer{0, NoSide}));
    EXPECT_EQ(Ask(*ThreePoints({9, 1, 3}, {5, 0.1, 3}, {0.3, 7, 3}), ToList(flat)), (Answer{0, NoSide}));
    // A plane without a normal that contains everything.
    EXPECT_EQ(Ask(*Cartesian(0, 0, 0, 0), ToList(Cube)), (Answer{0, NoSide}));
}

TEST(ZULMRSBSPPredicatesBox, TheSideIsThatOfTheOnlyCornerThatHasOne)
{
    const auto plane = Cartesian(0, 0, 1, 0);
    for (std::size_t k = 0; k < 8; ++k) {
        for (const double z : {-1e-300, 1e-300}) {
            Corners corners{};
            corners[k][2] = z;
            EXPECT_EQ(Ask(*plane, ToList(corners)), (Answer{0, z > 0 ? 1 : -1})) << k;
            // And one that differs from it, wherever that is.
            corners[(k + 3) % 8][2] = -z;
            EXPECT_EQ(Ask(*plane, ToList(corners)), (Answer{1, 0})) << k;
        }
    }
}

TEST(ZULMRSBSPPredicatesBox, EightCornersAreReadAndNoMore)
{
    const auto plane = Cartesian(0, 0, 1, 1);
    auto list = ToList(Cube);
    list.Append(ZULMathPoint(0, 0, -100));
    list.Append(ZULMathPoint(NotANumber, 0, 0));
    EXPECT_EQ(Ask(*plane, list), (Answer{0, 1}));
    // The eighth one counts; a list that ends before has nothing more to say.
    list[8].z = -100;
    EXPECT_EQ(Ask(*plane, list), (Answer{1, 0}));
    list.RemoveAll();
    EXPECT_EQ(Ask(*plane, list), (Answer{0, NoSide}));
    list.Append(ZULMathPoint(0, 0, -2));
    EXPECT_EQ(Ask(*plane, list), (Answer{0, -1}));
}

/// How often the plane is asked for its coefficients.
std::size_t QuestionsFor(const Corners& corners)
{
    const auto plane = Own(new PlaneStubWithDoubles(Plane4{0, 0, 1, 0}));
    plane->m_Type = ZULMRSBSPPlaneType_Cartesian;
    IsCrossingOBB(*plane, ToList(corners), nullptr);
    constexpr int coords = 5;
    return static_cast<std::size_t>(std::count(plane->m_Calls.begin(), plane->m_Calls.end(), coords));
}

TEST(ZULMRSBSPPredicatesBox, CornersAreAskedInOrderUntilTwoDiffer)
{
    Corners corners{};
    EXPECT_EQ(QuestionsFor(corners), 8U);
    corners[1][2] = 1.0;
    corners[2][2] = 2.0;
    EXPECT_EQ(QuestionsFor(corners), 8U);
    corners[7][2] = -1.0;
    EXPECT_EQ(QuestionsFor(corners), 8U);
    corners[4][2] = -1.0;
    EXPECT_EQ(QuestionsFor(corners), 5U);
    corners[0][2] = -1.0;
    EXPECT_EQ(QuestionsFor(corners), 2U);
}

TEST(ZULMRSBSPPredicatesBox, ADefiningPointIsOnItsPlaneWithoutArithmetic)
{
    // The equation of this plane cannot be computed; its defining points lie on it all the same.
    const Point3 far = {Infinity, 0, 0};
    const auto plane = ThreePoints(far, {0, 1, 0}, {1, 0, 0});
    Corners corners{};
    std::fill(corners.begin(), corners.end(), far);
    corners[3] = {0, 1, 0};
    EXPECT_EQ(Ask(*plane, ToList(corners)), (Answer{0, NoSide}));
}

TEST(ZULMRSBSPPredicatesBox, InputThatIsNotFiniteNeitherCrashesNorHangs)
{
    Random random(28'004);
    const auto spoil = [&random](auto& numbers) {
        for (double& number : numbers) {
            if (random.OneIn(4)) {
                number = random.OneIn(2) ? NotANumber : random.Sign() * Infinity;
            }
        }
    };
    for (int i = 0; i < 5'000; ++i) {
        BoxCase box = BoxCase::Make(random, Regime::Mixed, Position::General);
        for (Point3& corner : box.m_Corners) {
            spoil(corner);
        }
        Plane4 equation = random.Plane(Regime::Mixed);
        spoil(equation);
        std::array<Point3, 3> points = {random.Point(Regime::Mixed), random.Point(Regime::Mixed),
                                        random.Point(Regime::Mixed)};
        spoil(points[0]);
        for (const auto& plane : {Cartesian(equation[0], equation[1], equation[2], equation[3]),
                                  ThreePoints(points[0], points[1], points[2])}) {
            const Answer answer = Ask(*plane, ToList(box.m_Corners));
            ASSERT_TRUE(answer == (Answer{1, 0}) || answer == (Answer{0, 1}) || answer == (Answer{0, -1}) ||
                        answer == (Answer{0, NoSide}))
                << answer;
        }
    }
}
}  // namespace
