#include "ZULMRSBSPPlaneRows.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "ZULMRSBSPPredicatesKit.h"
#include "ZULTestBigInteger.h"

// Equations as integers of the length that a question needs: against exact arithmetic, and at the ends of
// every length.
namespace
{
using namespace ZULTest;
using ZULMRSBSPPlaneRows::Question;
using ZULMRSBSPPlaneRows::Row;
using ZULMRSBSPPlaneRows::SideOfCoordinates;

ZULMRSBSPSign Side(const Owner<ZULMRSBSPPlane>& plane, const Owner<ZULMRSBSPPoint>& point)
{
    return ZULMRSBSPPlaneRows::SideOfMeetingPoint(*plane, point->GetPlanes());
}

/// How many limbs a question about these planes needs.
std::size_t LimbsOf(const Owner<ZULMRSBSPPlane>& p, const Owner<ZULMRSBSPPlane>& q)
{
    Question<2> question;
    return question.Ask({p.get(), q.get()}) ? question.GetNbLimbs() : 0;
}
std::size_t LimbsAt(const Owner<ZULMRSBSPPlane>& plane, const Point3& point)
{
    Question<1, 1> question;
    return question.Ask({plane.get()}, {point}) ? question.GetNbLimbs() : 0;
}

TEST(ZULMRSBSPPlaneRows, NormalsAndOffsetsHaveScalesOfTheirOwn)
{
    // Normals of length one and offsets of any common size.
    for (const double size : {1e-300, 1e-9, 1.0, 1e9, 1e300}) {
        const auto point = Meeting(Cartesian(0.6, 0.8, 0, -37.5 * size), Cartesian(0, 0, 1, -0.3 * size),
                                   Cartesian(-0.8, 0.6, 0, -12.1 * size));
        EXPECT_TRUE(Side(Cartesian(0, 0, 2, -0.6 * size), point).IsZero()) << size;
        EXPECT_TRUE(Side(Cartesian(0, 0, 0x1p-40, 0x1p-44 * size), point).IsPositive()) << size;
    }
}

TEST(ZULMRSBSPPlaneRows, EquationsEndAtTheirLongestLength)
{
    const auto corner = Meeting(Cartesian(1, 0, 0, -1), Cartesian(0, 1, 0, -1), Cartesian(0, 0, 1, -1));
    EXPECT_TRUE(Side(Cartesian(1, 1, 1, 0), corner).IsPositive());
    EXPECT_TRUE(Side(Cartesian(0, 0, 0, -1), corner).IsNegative());
    EXPECT_TRUE(Side(Cartesian(1, 0x1p-189, 0, 0), corner).IsPositive());
    EXPECT_FALSE(Side(Cartesian(1, 0x1p-190, 0, 0), corner).IsDecided());
    EXPECT_TRUE(Side(Cartesian(1, 0, 0, 0x1p-378), corner).IsPositive());
    EXPECT_FALSE(Side(Cartesian(1, 0, 0, 0x1p-379), corner).IsDecided());
    // Just as long as the question needs.
    const auto unit = Cartesian(0, 0, 1, 0);
    EXPECT_EQ(LimbsOf(unit, Cartesian(1, 0x1p-61, 0, 0)), 1U);
    EXPECT_EQ(LimbsOf(unit, Cartesian(1, 0x1p-62, 0, 0)), 2U);
    EXPECT_EQ(LimbsOf(unit, Cartesian(1, 0x1p-125, 0, 0)), 2U);
    EXPECT_EQ(LimbsOf(unit, Cartesian(1, 0x1p-126, 0, 0)), 3U);
    EXPECT_EQ(LimbsOf(unit, Cartesian(1, 0x1p-189, 0, 0)), 3U);
    EXPECT_EQ(LimbsOf(unit, Cartesian(1, 0x1p-190, 0, 0)), 0U);
}

TEST(ZULMRSBSPPlaneRows, PlanesThroughPointsEndAtTheBitsOfTheirCoordinates)
{
    const auto through = [](double most) { return ThreePoints({0, 0, 1}, {most, 0, 0}, {0, most, 0}); };
    const auto limbs = [&through](int bits) {
        return LimbsOf(through(std::ldexp(1.0, bits - 1)), Cartesian(0, 0, 1, 0));
    };
    EXPECT_EQ(limbs(19), 1U);
    EXPECT_EQ(limbs(20), 2U);
    EXPECT_EQ(limbs(40), 2U);
    EXPECT_EQ(limbs(41), 3U);
    EXPECT_EQ(limbs(61), 3U);
    EXPECT_EQ(limbs(62), 0U);
    // A point beside the plane counts as its points do; alone it may be longer.
    EXPECT_EQ(LimbsAt(through(1.0), {0x1p60, 0, 0}), 3U);
    EXPECT_EQ(LimbsAt(through(1.0), {0x1p61, 1, 0}), 0U);
    EXPECT_EQ(LimbsAt(Cartesian(1, 1, 1, 0), {0x1p61, 1, 0}), 1U);
    EXPECT_EQ(LimbsAt(Cartesian(1, 1, 1, 0), {0x1p62, 1, 0}), 2U);
    EXPECT_EQ(LimbsAt(Cartesian(1, 1, 1, 0), {0x1p189, 1, 0}), 3U);
    EXPECT_EQ(LimbsAt(Cartesian(1, 1, 1, 0), {0x1p190, 1, 0}), 0U);
}

TEST(ZULMRSBSPPlaneRows, OnlyPlanesOfTheLibrarysOwnClassesAndFiniteNumbers)
{
    class Derived : public ZULMRSBSPCartesianPlane
    {
    public:
        using ZULMRSBSPCartesianPlane::ZULMRSBSPCartesianPlane;
    };
    const auto unit = Cartesian(0, 0, 1, 0);
    const auto derived = Own<ZULMRSBSPPlane>(new Derived(Plane4{1, 0, 0, 0}));
    Question<2> question;
    EXPECT_FALSE(question.Ask({unit.get(), derived.get()}));
    EXPECT_FALSE(question.Ask({unit.get(), nullptr}));
    for (const double bad : {Infinity, -Infinity, NotANumber}) {
        EXPECT_FALSE(question.Ask({unit.get(), Cartesian(1, 0, bad, 0).get()}));
        EXPECT_FALSE(question.Ask({unit.get(), ThreePoints({0, 0, 0}, {1, 0, 0}, {0, bad, 0}).get()}));
        EXPECT_FALSE(SideOfCoordinates(*unit, {bad, 0, 0}).IsDecided());
    }
    // Coordinates without any size, and denormal ones, are numbers like others.
    const double denormal = std::numeric_limits<double>::denorm_min();
    EXPECT_TRUE(SideOfCoordinates(*unit, {0, 0, 0}).IsZero());
    EXPECT_TRUE(SideOfCoordinates(*unit, {0, 0, denormal}).IsPositive());
    EXPECT_TRUE(
        SideOfCoordinates(*ThreePoints({0, 0, 0}, {denormal, 0, 0}, {0, denormal, 0}), {0, 0, -denormal})
            .IsNegative());
    EXPECT_TRUE(SideOfCoordinates(*ThreePoints({0, 0, 0}, {0, 0, 0}, {0, 0, 0}), {0, 0, 0}).IsZero());
}

//---------------------------------------------------------------- the greatest numbers of a length

template <std::size_t Limbs>
BigInteger ToBig(const ZULMRSBSPShortInteger<Limbs>& x)
{
    return BigInteger::FromLimbs([&x](std::size_t i) { return x.GetLimb(i); }, Limbs);
}

/// Rows of numbers at the ends of their range, and the polynomials of them.
template <std::size_t Limbs>
void ExpectThatPolynomialsFit(std::uint64_t seed)
{
    Random random(seed);
    const BigInteger most =
        BigInteger::PowerOfTwo(static_cast<unsigned int>(ZULMRSBSPPlaneRows::BitsOf<Limbs>)) - BigInteger(1);
    for (int n = 0; n < 4'000; ++n) {
        std::array<Row<Limbs>, 4> rows;
        std::array<std::array<BigInteger, 4>, 4> exact;
        for (std::size_t i = 0; i < 16; ++i) {
            const BigInteger value = random.OneIn(2) ? most : -most;
            std::array<std::uint64_t, Limbs> limbs;
            for (std::size_t k = 0; k < Limbs; ++k) {
                limbs[k] = value.GetLimb(k);
            }
            rows[i / 4][i % 4] = ZULMRSBSPShortInteger<Limbs>(limbs);
            exact[i / 4][i % 4] = value;
        }
        const auto meeting = ZULMRSBSPFormulas::MeetingPoint(rows[0], rows[1], rows[2]);
        const auto expected = ZULMRSBSPFormulas::MeetingPoint(exact[0], exact[1], exact[2]);
        for (std::size_t i = 0; i < 4; ++i) {
            ASSERT_EQ(ToBig(meeting[i]), expected[i]);
        }
        ASSERT_EQ(ToBig(ZULMRSBSPFormulas::EquationAtHomogeneous(rows[3], meeting)),
                  ZULMRSBSPFormulas::EquationAtHomogeneous(exact[3], expected));
        ASSERT_EQ(ToBig(ZULMRSBSPFormulas::EquationAtHomogeneous(rows[0], rows[1])),
                  ZULMRSBSPFormulas::EquationAtHomogeneous(exact[0], exact[1]));
    }
}

TEST(ZULMRSBSPPlaneRows, ThePolynomialsFitAtTheGreatestNumbers)
{
    ExpectThatPolynomialsFit<1>(73'001);
    ExpectThatPolynomialsFit<2>(73'002);
    ExpectThatPolynomialsFit<3>(73'003);
}

TEST(ZULMRSBSPPlaneRows, RowsThroughPointsFitAtTheGreatestCoordinates)
{
    Random random(73'004);
    for (const int bits : {19, 40, 53}) {
        const double most = std::ldexp(1.0, bits) - 1.0;
        for (int n = 0; n < 4'000; ++n) {
            std::array<Point3, 3> points;
            for (std::size_t i = 0; i < 9; ++i) {
                points[i / 3][i % 3] = random.OneIn(8) ? 1.0 : random.Sign() * most;
            }
            const auto plane = ThreePoints(points[0], points[1], points[2]);
            const DyadicPlane exact = DyadicThroughPoints(points);
            const Point3 point = {random.Sign() * most, random.Sign() * most, random.Sign() * most};
            const ZULMRSBSPSign sign = SideOfCoordinates(*plane, point);
            ASSERT_TRUE(sign.IsDecided());
            ASSERT_EQ(sign.ToKernelResult(), DyadicSide(exact, point));
        }
    }
}

//---------------------------------------------------------------- any input

/// Three normals, minors of two planes, coordinates of two points.
void ExpectRelationsToBeRight(Scene& scene, Random& random)
{
    const auto isRight = [](ZULMRSBSPSign sign, int expected) {
        return !sign.IsDecided() || sign.ToKernelResult() == expected;
    };
    const std::array<PlaneCase, 3> planes = {scene.Plane(), scene.Plane(), scene.Plane()};
    const std::array<DyadicPlane, 3> exact = {planes[0].m_Exact, planes[1].m_Exact, planes[2].m_Exact};
    ASSERT_TRUE(isRight(
        ZULMRSBSPPlaneRows::DeterminantOfNormals(*planes[0].m_Plane, *planes[1].m_Plane, *planes[2].m_Plane),
        DyadicDeterminant(exact, 0, 1, 2).Sign()));
    const auto i = static_cast<std::size_t>(random.Integer(0, 3));
    const auto j = static_cast<std::size_t>(random.Integer(0, 3));
    ASSERT_TRUE(isRight(ZULMRSBSPPlaneRows::Minor(*planes[0].m_Plane, *planes[1].m_Plane, i, j),
                        (exact[0][i] * exact[1][j] - exact[0][j] * exact[1][i]).Sign()));
    const PointCase p = scene.MeetingPoint();
    const PointCase q = scene.MeetingPoint();
    const std::size_t axis = i % 3;
    ASSERT_TRUE(isRight(ZULMRSBSPPlaneRows::Order(p.m_Point->GetPlanes(), q.m_Point->GetPlanes(), axis),
                        (p.m_Exact[axis] * q.m_Exact[3] - p.m_Exact[3] * q.m_Exact[axis]).Sign()));
}

TEST(ZULMRSBSPPlaneRows, RelationsAreRightWhereTheyAreDecidedInEveryRegime)
{
    const Silence silence;
    Random random(73'006);
    ForAllKinds(CasesPerPredicate / 10, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            Scene scene(random, regime, position);
            ExpectRelationsToBeRight(scene, random);
            ASSERT_FALSE(testing::Test::HasFatalFailure());
        }
    });
}

TEST(ZULMRSBSPPlaneRows, IsRightWhereItDecidesInEveryRegime)
{
    const Silence silence;
    Random random(73'005);
    std::array<std::size_t, 2> nbDecided{};
    std::array<std::size_t, 2> nbAsked{};
    ForAllKinds(CasesPerPredicate / 10, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            Scene scene(random, regime, position);
            const PlaneCase tested = scene.Plane();
            const PointCase point = scene.MeetingPoint();
            const ZULMRSBSPSign side = Side(tested.m_Plane, point.m_Point);
            ASSERT_TRUE(!side.IsDecided() ||
                        side.ToKernelResult() == DyadicSide(tested.m_Exact, point.m_Exact));
            const ZULMRSBSPSign atPoint = SideOfCoordinates(*tested.m_Plane, scene.GetPoint());
            ASSERT_TRUE(!atPoint.IsDecided() ||
                        atPoint.ToKernelResult() == DyadicSide(tested.m_Exact, scene.GetPoint()));
            const bool isUsual = regime == Regime::Easy || regime == Regime::Degenerate;
            nbAsked[isUsual] += 2;
            nbDecided[isUsual] +=
                static_cast<std::size_t>(side.IsDecided()) + static_cast<std::size_t>(atPoint.IsDecided());
        }
    });
    EXPECT_GT(nbDecided[1], nbAsked[1] * 4 / 5);
    EXPECT_GT(nbDecided[0], nbAsked[0] / 4);
}
}  // namespace
