#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>
#include <vector>

#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULMRSBSPSignKernels.h"

// Triple products of normals and directions, and the angle of a triangle's normal, held against exact
// arithmetic.
namespace
{
using namespace ZULMRSBSPPredicates;
using namespace ZULTest;

/// The orders of three, even ones first.
constexpr std::array<std::array<std::size_t, 3>, 6> Orders = {
    {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {1, 0, 2}, {0, 2, 1}, {2, 1, 0}}};

int SignOfRows(const DyadicPoint& p, const DyadicPoint& q, const DyadicPoint& r)
{
    return DyadicDeterminant(std::array<DyadicPoint, 3>{p, q, r}, 0, 1, 2).Sign();
}

/// Three points and three planes. Not in general position the points often lie on one line, and the normals
/// are often parallel to the directions between the points, to each other's plane with these, or to the
/// points' plane.
struct Path {
    Path(Random& random, Regime regime, Position position)
    {
        Scene first(random, regime, position);
        const auto factor = [&random] { return random.Integer(-2, 2); };
        const Point3 d1 = SmallVector(random, 8);
        const Point3 d2 = random.OneIn(4) ? Combined(factor(), d1, 0, d1) : SmallVector(random, 8);
        Scene second(first, Combined(1, first.GetIntegers(), 1, d1));
        Scene third(first, Combined(1, second.GetIntegers(), 1, d2));
        for (Scene* scene : {&first, &second, &third}) {
            m_Points.push_back(scene->AnyPoint());
        }
        const int s = factor();
        const Point3 across = Combined(s, d1, factor(), d2);
        const Point3 n0 = random.OneIn(2) ? SmallVector(random, 8) : across;
        const int t = factor();
        const Point3 n1 = random.OneIn(4) ? d1 : Combined(t, n0, factor(), d1);
        for (const Point3& normal : {n0, n1, Combined(1, n0, 1, d2)}) {
            m_Planes.push_back(first.PlaneWithNormal(normal));
        }
    }

    std::vector<PointCase> m_Points;
    std::vector<PlaneCase> m_Planes;
};
constexpr std::size_t CasesPerPath = 18;

/// Both products over every order of the points; returns how many are zero.
std::size_t CheckDirections(const Path& path)
{
    std::size_t zeros = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        const PointCase& q1 = path.m_Points[i];
        const PointCase& q2 = path.m_Points[(i + 1) % 3];
        const DyadicPoint d = DyadicDirection(q1.m_Exact, q2.m_Exact);
        for (std::size_t k = 0; k < 3; ++k) {
            const PlaneCase& p1 = path.m_Planes[k];
            const PlaneCase& p2 = path.m_Planes[(k + 1) % 3];
            const int expected = SignOfRows(DyadicNormal(p1.m_Exact), d, DyadicNormal(p2.m_Exact));
            zeros += expected == 0 ? 2U : 0U;
            EXPECT_EQ(SignOfTripleProduct(*p1.m_Plane, *p2.m_Plane, *q1.m_Point, *q2.m_Point), expected);
            EXPECT_EQ(SignOfTripleProduct(*p1.m_Plane, *p2.m_Plane, *q2.m_Point, *q1.m_Point), -expected);
        }
    }
    return zeros;
}
std::size_t CheckNormals(const Path& path)
{
    std::size_t zeros = 0;
    const std::vector<PointCase>& q = path.m_Points;
    const DyadicPoint d1 = DyadicDirection(q[0].m_Exact, q[1].m_Exact);
    const DyadicPoint d2 = DyadicDirection(q[1].m_Exact, q[2].m_Exact);
    for (const PlaneCase& plane : path.m_Planes) {
        const int expected = SignOfRows(d1, d2, DyadicNormal(plane.m_Exact));
        zeros += expected == 0 ? 6U : 0U;
        for (std::size_t k = 0; k < Orders.size(); ++k) {
            const auto [i, j, l] = Orders[k];
            EXPECT_EQ(SignOfTripleProduct(*plane.m_Plane, *q[i].m_Point, *q[j].m_Point, *q[l].m_Point),
                      k < 3 ? expected : -expected);
        }
    }
    return zeros;
}

TEST(ZULMRSBSPPredicatesTripleProducts, TripleProductsAreExactInEveryRegime)
{
    const Silence silence;
    Random random(27'001);
    std::size_t directionZeros = 0;
    std::size_t normalZeros = 0;
    ForAllKinds(CasesPerPredicate / CasesPerPath, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const Path path(random, regime, position);
            directionZeros += CheckDirections(path);
            normalZeros += CheckNormals(path);
            ASSERT_FALSE(testing::Test::HasFailure()) << NameOf(regime);
        }
    });
    EXPECT_GT(directionZeros, CasesPerPredicate / 10);
    EXPECT_GT(normalZeros, CasesPerPredicate / 10);
}

TEST(ZULMRSBSPPredicatesTripleProducts, SignsFollowTheOrderOfTheRows)
{
    const auto x = Cartesian(1, 0, 0, -7);
    const auto y = Cartesian(0, 1, 0, 3);
    const auto z = ThreePoints({0, 0, 5}, {1, 0, 5}, {0, 1, 5});
    const auto origin = AtCoordinates({0, 0, 0});
    const auto alongX = Meeting(Cartesian(1, 0, 0, -2), Cartesian(0, 1, 0, 0), Cartesian(0, 0, 1, 0));
    const auto alongY = AtCoordinates({0, 3, 0});
    // n1 . (d x n2): x . (y x z) is positive.
    EXPECT_EQ(SignOfTripleProduct(*x, *z, *origin, *alongY), 1);
    EXPECT_EQ(SignOfTripleProduct(*z, *x, *origin, *alongY), -1);
    EXPECT_EQ(SignOfTripleProduct(*x, *z, *alongY, *origin), -1);
    EXPECT_EQ(SignOfTripleProduct(*y, *z, *origin, *alongX), -1);
    EXPECT_EQ(SignOfTripleProduct(*y, *z, *origin, *alongY), 0);
    EXPECT_EQ(SignOfTripleProduct(*x, *x, *origin, *alongY), 0);
    EXPECT_EQ(SignOfTripleProduct(*x, *z, *alongY, *alongY), 0);
    // (d1 x d2) . n
    EXPECT_EQ(SignOfTripleProduct(*z, *origin, *alongX, *alongY), 1);
    EXPECT_EQ(SignOfTripleProduct(*z, *alongX, *origin, *alongY), -1);
    EXPECT_EQ(SignOfTripleProduct(*x, *origin, *alongX, *alongY), 0);
    EXPECT_EQ(SignOfTripleProduct(*z, *origin, *alongX, *origin), 0);
    EXPECT_EQ(SignOfTripleProduct(*z, *origin, *alongX, *AtCoordinates({5, 0, 0})), 0);
}

//---------------------------------------------------------------- the angle of a triangle's normal

using AngleKernel = ZULMRSBSPKernel<ZULMRSBSPNormalAngleKernel>;
using Triangle = std::array<Point3, 3>;

struct AngleCase {
    Triangle m_Triangle;
    double m_Cosine = 0.0;

    AngleKernel::Inputs GetInputs() const
    {
        const auto& [a, b, c] = m_Triangle;
        return {a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2], m_Cosine};
    }
    int GetAnswer() const
    {
        const auto& [a, b, c] = m_Triangle;
        return GetSignOfNormalSignAngleDiff({ToMathPoint(a), ToMathPoint(b), ToMathPoint(c)}, m_Cosine);
    }
    int GetExactSign() const
    {
        const DyadicPoint n = DyadicNormal(DyadicThroughPoints(m_Triangle));
        const Dyadic s(m_Cosine);
        const Dyadic z2 = n[2] * n[2];
        return (z2 - s * s * (n[0] * n[0] + n[1] * n[1] + z2)).Sign();
    }
};

/// A triangle of small integers with a normal along the given one, scaled.
Triangle TriangleAcross(Random& random, const Point3& normal, int scale)
{
    const Point3 axis = std::fabs(normal[0]) < std::fabs(normal[1]) ? Point3{1, 0, 0} : Point3{0, 1, 0};
    const Point3 u = Cross(normal, axis);
    const Point3 v = Cross(normal, u);
    const Point3 base = SmallVector(random, 50);
    const int s = random.Integer(1, 3);
    const Point3 b = Combined(1, base, s, u);
    const int t = random.Integer(-3, 3);
    const Point3 c = Combined(1, Combined(1, base, random.OneIn(2) ? 1 : -2, v), t, u);
    Triangle triangle = {base, b, c};
    for (Point3& point : triangle) {
        random.ScaleByPowerOfTwo(point, scale, scale);
    }
    return triangle;
}

/// Normals of whole length: their cosines are rational, but none strictly between 0 and 1 is a double (4^q -
/// p^2 with p odd is 3 modulo 4, and no square times that is a sum of two squares). The nearest doubles are
/// as near to zero as it gets.
constexpr std::array<std::array<double, 4>, 6> WholeNormals = {
    {{0, 3, 4, 5}, {2, 3, 6, 7}, {2, 6, 3, 7}, {1, 2, 2, 3}, {4, 4, 7, 9}, {8, 9, 12, 17}}};

AngleCase NearlyWhole(Random& random, int scale)
{
    const auto& [x, y, z, length] = WholeNormals[static_cast<std::size_t>(random.Integer(0, 5))];
    const double cosine = random.Nudged(z / length, 1);
    const double sx = random.Sign();
    const double sy = random.Sign();
    const double sz = random.Sign();
    return {TriangleAcross(random, {sx * x, sy * y, sz * z}, scale), random.Sign() * cosine};
}

/// The ways to be exactly zero: a normal along z with a cosine of one, across z with zero, no normal at all.
AngleCase ExactlyZero(Random& random, int scale)
{
    const int kind = random.Integer(0, 2);
    if (kind == 0) {
        return {TriangleAcross(random, {0, 0, random.Sign()}, scale), random.Sign()};
    }
    const Point3 p = SmallVector(random, 20);
    if (kind == 1) {
        return {TriangleAcross(random, {p[0], p[1], 0}, scale), 0.0};
    }
    const Point3 d = SmallVector(random, 20);
    const int s = random.Integer(-3, 3);
    Triangle line = {p, Combined(1, p, s, d), Combined(1, p, random.Integer(-3, 3), d)};
    for (Point3& point : line) {
        random.ScaleByPowerOfTwo(point, scale, scale);
    }
    return {line, random.Between(-1.5, 1.5)};
}

AngleCase MakeAngleCase(Random& random, Regime regime, Position position)
{
    if (position == Position::General) {
        const Point3 a = random.Point(regime);
        const Point3 b = random.Point(regime);
        const Point3 c = random.Point(regime);
        const double wild = random.Number(regime);
        return {{a, b, c}, random.OneIn(4) ? wild : random.Between(-1.0, 1.0)};
    }
    const auto range = ScaleOf(regime);
    const int scale = random.Integer(range.first, range.second);
    if (position == Position::Degenerate) {
        return random.OneIn(4) ? NearlyWhole(random, scale) : ExactlyZero(random, scale);
    }
    AngleCase near = random.OneIn(2) ? NearlyWhole(random, scale) : ExactlyZero(random, scale);
    Blur(random, position, near.m_Triangle[static_cast<std::size_t>(random.Integer(0, 2))]);
    near.m_Cosine = random.Nudged(near.m_Cosine, 1);
    return near;
}

TEST(ZULMRSBSPPredicatesTripleProducts, AnglesAreExactInEveryRegime)
{
    Random random(27'002);
    std::array<std::size_t, 3> census{};
    ForAllKinds(CasesPerPredicate, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const AngleCase angle = MakeAngleCase(random, regime, position);
            const int expected = angle.GetExactSign();
            ++census[static_cast<std::size_t>(expected + 1)];
            ASSERT_EQ(angle.GetAnswer(), expected) << NameOf(regime);
        }
    });
    for (const std::size_t seen : census) {
        EXPECT_GT(seen, CasesPerPredicate / 10);
    }
}

TEST(ZULMRSBSPPredicatesTripleProducts, EveryStageOfTheAngleIsRightWhereItDecides)
{
    Random random(27'003);
    std::array<std::size_t, 3> firstDecided{};  // filter, interval, exact
    ForAllKinds(CasesPerPredicate / 10, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const AngleCase angle = MakeAngleCase(random, regime, position);
            const int expected = angle.GetExactSign();
            const auto inputs = angle.GetInputs();
            const ZULExpFloatScope scope;
            ASSERT_FALSE(AngleKernel::Shortcut(inputs).IsDecided());
            _clearfp();
            const std::array<ZULMRSBSPSign, 3> signs = {
                AngleKernel::Filter(inputs), AngleKernel::Interval(inputs), AngleKernel::Exact(inputs)};
            bool isOpen = true;
            for (std::size_t stage = 0; stage < signs.size(); ++stage) {
                if (signs[stage].IsDecided()) {
                    ASSERT_EQ(signs[stage].ToKernelResult(), expected) << NameOf(regime) << ' ' << stage;
                    firstDecided[stage] += isOpen ? 1U : 0U;
                    isOpen = false;
                }
            }
            ASSERT_TRUE(signs[2].IsDecided());
        }
    });
    for (const std::size_t decided : firstDecided) {
        EXPECT_GT(decided, CasesPerPredicate / 1'000);
    }
}

ZULMRSBSPSign FilteredAngle(const AngleKernel::Inputs& inputs)
{
    const ZULExpFloatScope scope;
    _clearfp();
    return AngleKernel::Filter(inputs);
}

// The normal is (0, 0, 1), the value 1 - s^2, the magnitude 1 + s^2: K is above 21 and not above 22.
TEST(ZULMRSBSPPredicatesTripleProducts, TheAnglesFilterAllowsTwentyTwoUnits)
{
    const auto inputs = [](double s) { return AngleKernel::Inputs{0, 0, 0, 1, 0, 0, 0, 1, 0, s}; };
    const double unit = 0x1p-53;
    EXPECT_TRUE(FilteredAngle(inputs(1 - 22 * unit)).IsPositive());
    EXPECT_FALSE(FilteredAngle(inputs(1 - 21 * unit)).IsDecided());
    EXPECT_TRUE(FilteredAngle(inputs(1 + 24 * unit)).IsNegative());
    EXPECT_FALSE(FilteredAngle(inputs(1 + 22 * unit)).IsDecided());
    for (const double s : {1 - 21 * unit, 1 + 22 * unit}) {
        EXPECT_EQ(AngleKernel::Sign(inputs(s)), s < 1 ? 1 : -1);
    }
}

/// The value, and the bound with the given number of units, written out.
std::pair<double, double> AngleByHand(const AngleKernel::Inputs& x, double units)
{
    const auto sum = [](double p, double q) { return std::fabs(p) + std::fabs(q); };
    const double ux = x[3] - x[0];
    const double uy = x[4] - x[1];
    const double uz = x[5] - x[2];
    const double vx = x[6] - x[0];
    const double vy = x[7] - x[1];
    const double vz = x[8] - x[2];
    const double nx = uy * vz - uz * vy;
    const double ny = uz * vx - ux * vz;
    const double nz = ux * vy - uy * vx;
    const double mx = sum(x[4], x[1]) * sum(x[8], x[2]) + sum(x[5], x[2]) * sum(x[7], x[1]);
    const double my = sum(x[5], x[2]) * sum(x[6], x[0]) + sum(x[3], x[0]) * sum(x[8], x[2]);
    const double mz = sum(x[3], x[0]) * sum(x[7], x[1]) + sum(x[4], x[1]) * sum(x[6], x[0]);
    const double s = x[9];
    const double value = nz * nz - (nx * nx + ny * ny + nz * nz) * (s * s);
    const double magnitude = (mx * mx + my * my + mz * mz) * (std::fabs(s) * std::fabs(s)) + mz * mz;
    return {value, units * std::numeric_limits<double>::epsilon() * magnitude * 0.5};
}
int Compared(double value, double bound)
{
    return value > bound ? 1 : (value < -bound ? -1 : (bound == 0.0 ? 0 : 2));
}

TEST(ZULMRSBSPPredicatesTripleProducts, TheAnglesBoundIsTheOneWrittenOut)
{
    Random random(27'004);
    int separated = 0;
    for (int i = 0; i < 200'000; ++i) {
        // Far from the origin, so that the magnitudes outweigh the value.
        const Point3 a = random.Point(Regime::Easy);
        Triangle triangle = {a, a, a};
        for (std::size_t k = 1; k < 3; ++k) {
            for (double& coordinate : triangle[k]) {
                coordinate += random.Scaled(-6, -2);
            }
        }
        const double cosine = random.Scaled(-8, -1);
        const AngleKernel::Inputs inputs = AngleCase{triangle, cosine}.GetInputs();
        const auto [value, bound] = AngleByHand(inputs, 22.0);
        ASSERT_EQ(FilteredAngle(inputs).ToKernelResult(), Compared(value, bound));
        separated += Compared(value, bound) != Compared(value, bound / 22 * 21) ? 1 : 0;
        separated += Compared(value, bound) != Compared(value, bound / 22 * 23) ? 1 : 0;
    }
    EXPECT_GT(separated, 100);
}

TEST(ZULMRSBSPPredicatesTripleProducts, AZeroBoundOfTheAngleIsZero)
{
    // All at the origin; along the z axis, whose magnitudes vanish with the cosine or without.
    EXPECT_TRUE(FilteredAngle({0, 0, 0, 0, 0, 0, 0, 0, 0, 0.5}).IsZero());
    EXPECT_TRUE(FilteredAngle({0, 0, 1, 0, 0, 2, 0, 0, 3, 0.5}).IsZero());
    EXPECT_TRUE(FilteredAngle({0, 0, 0, 0, 1, 0, 0, 0, 1, 0.0}).IsZero());
    // Of any other zero the filter does not know.
    EXPECT_FALSE(FilteredAngle({0, 0, 0, 1, 0, 0, 0, 1, 0, 1.0}).IsDecided());
}

TEST(ZULMRSBSPPredicatesTripleProducts, UnderflowAndOverflowLeaveTheAnglesFilterOpen)
{
    for (const double size : {1e-80, 1e-200, 1e80, 1e200}) {
        const AngleCase angle = {{Point3{0, 0, 0}, Point3{size, 0, size / 3}, Point3{0, size, 0}}, 0.5};
        EXPECT_FALSE(FilteredAngle(angle.GetInputs()).IsDecided()) << size;
        EXPECT_EQ(angle.GetAnswer(), 1) << size;
    }
}

TEST(ZULMRSBSPPredicatesTripleProducts, AnglesOfAHorizontalTriangle)
{
    const Triangle up = {Point3{0, 0, 0}, Point3{1, 0, 0}, Point3{0, 1, 0}};
    const Triangle down = {Point3{0.1, 0.2, 0}, Point3{0.3, 0.9, 0}, Point3{0.7, 0.4, 0}};
    for (const Triangle& triangle : {up, down}) {
        const auto answer = [&triangle](double s) { return AngleCase{triangle, s}.GetAnswer(); };
        EXPECT_EQ(answer(1.0), 0);
        EXPECT_EQ(answer(-1.0), 0);
        EXPECT_EQ(answer(0.5), 1);
        EXPECT_EQ(answer(-0.5), 1);
        EXPECT_EQ(answer(0.0), 1);
        EXPECT_EQ(answer(std::nextafter(1.0, 0.0)), 1);
        EXPECT_EQ(answer(std::nextafter(1.0, 2.0)), -1);
    }
    // Upright: never nearer to the z axis than any cosine.
    const Triangle upright = {Point3{0, 0, 0}, Point3{0.1, 0, 0}, Point3{0.7, 0, 0.3}};
    EXPECT_EQ((AngleCase{upright, 0.0}.GetAnswer()), 0);
    EXPECT_EQ((AngleCase{upright, 1e-300}.GetAnswer()), -1);
}

#if ZUL_HAS_SSE2
TEST(ZULMRSBSPPredicatesTripleProducts, AnswersDoNotDependOnTheEnvironmentAndLeaveItAlone)
{
    const Silence silence;
    Random random(27'005);
    ForAllKinds(4'000 / ZUL_TEST_CASES_DIVISOR, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const AngleCase angle = MakeAngleCase(random, regime, position);
            ASSERT_TRUE(
                HoldsInEveryEnvironment(angle.GetExactSign(), [&angle] { return angle.GetAnswer(); }));
            const Path path(random, regime, position);
            const auto& q = path.m_Points;
            const PlaneCase& p0 = path.m_Planes[0];
            const PlaneCase& p1 = path.m_Planes[1];
            const DyadicPoint d1 = DyadicDirection(q[0].m_Exact, q[1].m_Exact);
            const DyadicPoint d2 = DyadicDirection(q[1].m_Exact, q[2].m_Exact);
            ASSERT_TRUE(HoldsInEveryEnvironment(
                SignOfRows(DyadicNormal(p0.m_Exact), d1, DyadicNormal(p1.m_Exact)),
                [&] { return SignOfTripleProduct(*p0.m_Plane, *p1.m_Plane, *q[0].m_Point, *q[1].m_Point); }))
                << NameOf(regime);
            ASSERT_TRUE(HoldsInEveryEnvironment(SignOfRows(d1, d2, DyadicNormal(p0.m_Exact)), [&] {
                return SignOfTripleProduct(*p0.m_Plane, *q[0].m_Point, *q[1].m_Point, *q[2].m_Point);
            })) << NameOf(regime);
        }
    });
}
#endif

TEST(ZULMRSBSPPredicatesTripleProducts, AnAngleThatIsNotFiniteIsUndecided)
{
    const AngleKernel::Inputs finite = {0, 0, 0, 1, 0, 0.5, 0, 1, 0.25, 0.5};
    for (std::size_t i = 0; i < finite.size(); ++i) {
        for (const double bad : {NotANumber, Infinity, -Infinity}) {
            AngleKernel::Inputs inputs = finite;
            inputs[i] = bad;
            // No cosine exceeds an infinite one: intervals can tell.
            const bool isInfiniteCosine = i == 9 && std::isinf(bad);
            EXPECT_EQ(AngleKernel::Sign(inputs), isInfiniteCosine ? -1 : 2) << i;
        }
    }
}
}  // namespace
