#include "ZULMathOBB.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace
{
using Points = std::vector<ZULMathPoint>;
using Rational = mpq_class;
using RationalVector = std::array<Rational, 3>;

RationalVector Exact(double x, double y, double z)
{
    return {Rational(x), Rational(y), Rational(z)};
}
RationalVector Exact(const ZULMathVector& v)
{
    return Exact(v.x, v.y, v.z);
}
RationalVector Exact(const ZULMathPoint& p)
{
    return Exact(p.x, p.y, p.z);
}

Rational Determinant(const RationalVector& u, const RationalVector& v, const RationalVector& w)
{
    return u[0] * (v[1] * w[2] - v[2] * w[1]) - u[1] * (v[0] * w[2] - v[2] * w[0]) +
           u[2] * (v[0] * w[1] - v[1] * w[0]);
}

/// Whether the point is one of center + u U + v V + w W with |u|, |v|, |w| at most the extents, decided by
/// exact arithmetic on the box's own numbers.
bool ContainsExactly(const ZULMathOBBBase& box, const ZULMathPoint& point)
{
    const RationalVector axes[3] = {Exact(box.GetAxisU()), Exact(box.GetAxisV()), Exact(box.GetAxisW())};
    const RationalVector extents = Exact(box.GetExtents());
    const RationalVector p = Exact(point);
    const RationalVector center = Exact(box.GetCenter());
    const RationalVector offset = {Rational(p[0] - center[0]), Rational(p[1] - center[1]),
                                   Rational(p[2] - center[2])};
    const Rational determinant = Determinant(axes[0], axes[1], axes[2]);
    if (determinant == 0) {
        return false;
    }
    const Rational u = Determinant(offset, axes[1], axes[2]) / determinant;
    const Rational v = Determinant(axes[0], offset, axes[2]) / determinant;
    const Rational w = Determinant(axes[0], axes[1], offset) / determinant;
    return abs(u) <= extents[0] && abs(v) <= extents[1] && abs(w) <= extents[2];
}

void ExpectOrthonormal(const ZULMathOBBBase& box)
{
    constexpr double tolerance = 1e-15;
    EXPECT_NEAR(box.GetAxisU().Norm(), 1.0, tolerance);
    EXPECT_NEAR(box.GetAxisV().Norm(), 1.0, tolerance);
    EXPECT_NEAR(box.GetAxisW().Norm(), 1.0, tolerance);
    EXPECT_NEAR(box.GetAxisU() * box.GetAxisV(), 0.0, tolerance);
    EXPECT_NEAR(box.GetAxisV() * box.GetAxisW(), 0.0, tolerance);
    EXPECT_NEAR(box.GetAxisW() * box.GetAxisU(), 0.0, tolerance);
    EXPECT_GT((box.GetAxisU() ^ box.GetAxisV()) * box.GetAxisW(), 0.9);
}

/// Fits a box and checks what holds for every set: orthonormal axes, and each point inside, both as the box
/// itself computes it and exactly.
ZULMathOBBBase Fit(const Points& points)
{
    ZULMathOBBBase box;
    EXPECT_EQ(box.DefineElements(points.data(), points.size()), 0);
    ExpectOrthonormal(box);
    for (const ZULMathPoint& p : points) {
        const ZULMathPoint uvw = box.XYZtoUVW(p);
        EXPECT_LE(std::fabs(uvw.x), box.GetExtents().x);
        EXPECT_LE(std::fabs(uvw.y), box.GetExtents().y);
        EXPECT_LE(std::fabs(uvw.z), box.GetExtents().z);
        EXPECT_TRUE(ContainsExactly(box, p)) << p.x << " " << p.y << " " << p.z;
    }
    return box;
}

Points CornersOf(const ZULMathOBBBase& box)
{
    const ZULMathVector& e = box.GetExtents();
    Points corners;
    for (const double u : {-e.x, e.x}) {
        for (const double v : {-e.y, e.y}) {
            for (const double w : {-e.z, e.z}) {
                corners.push_back(box.UVWtoXYZ({u, v, w}));
            }
        }
    }
    return corners;
}

double SizeOf(const Points& points)
{
    double size = 0.0;
    for (const ZULMathPoint& p : points) {
        size = std::max(size, (p - points[0]).Norm());
    }
    return size;
}

/// The box has the given corners, to within the tolerance.
void ExpectCorners(const ZULMathOBBBase& box, const Points& expected, double tolerance)
{
    const Points corners = CornersOf(box);
    const auto distance = [](const ZULMathPoint& p, const Points& others) {
        double least = std::numeric_limits<double>::infinity();
        for (const ZULMathPoint& q : others) {
            least = std::min(least, std::hypot(p.x - q.x, p.y - q.y, p.z - q.z));
        }
        return least;
    };
    for (const ZULMathPoint& p : expected) {
        EXPECT_LE(distance(p, corners), tolerance);
    }
    for (const ZULMathPoint& p : corners) {
        EXPECT_LE(distance(p, expected), tolerance);
    }
}

class RandomSource
{
public:
    explicit RandomSource(unsigned int seed) : m_Engine(seed) {}
    double Uniform(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(m_Engine);
    }
    ZULMathVector Vector(double size)
    {
        return {Uniform(-size, size), Uniform(-size, size), Uniform(-size, size)};
    }
    ZULMathPoint Point(double size)
    {
        const ZULMathVector v = Vector(size);
        return {v.x, v.y, v.z};
    }
    ZULMathOBBBase Box(const ZULMathVector& extents, double centerSize)
    {
        ZULMathVector u = Vector(1.0);
        u.Normalize();
        ZULMathVector v = u ^ Vector(1.0);
        v.Normalize();
        ZULMathVector w = u ^ v;
        w.Normalize();
        return {u, v, w, extents, Point(centerSize)};
    }
    void Shuffle(Points& points) { std::shuffle(points.begin(), points.end(), m_Engine); }

private:
    std::mt19937_64 m_Engine;
};

double AxisAlignedVolume(const Points& points)
{
    ZULMathPoint low = points[0];
    ZULMathPoint high = points[0];
    for (const ZULMathPoint& p : points) {
        low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
        high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    return (high.x - low.x) * (high.y - low.y) * (high.z - low.z);
}
}  // namespace

TEST(ZULMathOBB, StartsAsThePointOrigin)
{
    const ZULMathOBB box;
    EXPECT_EQ(box.GetCenter(), ZULMathPoint(0.0, 0.0, 0.0));
    EXPECT_EQ(box.GetExtents().Norm(), 0.0);
    EXPECT_EQ(box.GetAxisU().x, 1.0);
    EXPECT_EQ(box.GetAxisV().y, 1.0);
    EXPECT_EQ(box.GetAxisW().z, 1.0);
    EXPECT_EQ(box.GetState(), 0);
}

TEST(ZULMathOBB, UVWtoXYZUsesAxesAsTheyAre)
{
    const ZULMathOBBBase box({2.0, 0.0, 0.0}, {0.0, 0.0, 3.0}, {0.0, -5.0, 0.0}, {1.0, 1.0, 1.0},
                             {10.0, 20.0, 30.0});
    EXPECT_EQ(box.UVWtoXYZ({1.0, 2.0, 3.0}), ZULMathPoint(12.0, 5.0, 36.0));
}

TEST(ZULMathOBB, XYZtoUVWReversesUVWtoXYZ)
{
    RandomSource random(7);
    for (int i = 0; i < 100; ++i) {
        const ZULMathOBBBase box = random.Box({1.0, 2.0, 3.0}, 10.0);
        const ZULMathPoint uvw = random.Point(5.0);
        EXPECT_LE((box.XYZtoUVW(box.UVWtoXYZ(uvw)) - uvw).Norm(), 1e-13);
    }
}

TEST(ZULMathOBB, SetBaseTakesTheBaseOver)
{
    const ZULMathOBBBase base({0.0, 1.0, 0.0}, {-1.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 2.0, 4.0},
                              {5.0, 6.0, 7.0});
    ZULMathOBB box;
    box.SetBase(base);
    EXPECT_EQ(box.GetCenter(), base.GetCenter());
    EXPECT_EQ(box.GetAxisU().y, 1.0);
    EXPECT_EQ(box.Volume(), 64.0);
    EXPECT_EQ(ZULMathOBB(base).Volume(), 64.0);
}

TEST(ZULMathOBB, InflateMovesEveryFace)
{
    ZULMathOBB box(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1.0, 2.0, 3.0}, {0, 0, 0}));
    box.Inflate(0.5);
    EXPECT_EQ(box.GetExtents().x, 1.5);
    EXPECT_EQ(box.GetExtents().y, 2.5);
    EXPECT_EQ(box.GetExtents().z, 3.5);
    box.Inflate(-2.0);
    EXPECT_EQ(box.GetExtents().x, 0.0);
    EXPECT_EQ(box.GetExtents().y, 0.5);
    EXPECT_EQ(box.GetExtents().z, 1.5);
}

TEST(ZULMathOBB, NoPointIsRefusedAndChangesNothing)
{
    ZULMathOBBBase box({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    const ZULMathPoint point;
    EXPECT_LT(box.DefineElements(nullptr, 0), 0);
    EXPECT_LT(box.DefineElements(nullptr, 3), 0);
    EXPECT_LT(box.DefineElements(&point, 0), 0);
    EXPECT_EQ(box.GetCenter(), ZULMathPoint(4.0, 5.0, 6.0));
    EXPECT_EQ(box.Volume(), 48.0);
}

TEST(ZULMathOBB, ACoordinateThatIsNotFiniteIsRefusedAndChangesNothing)
{
    const double inf = std::numeric_limits<double>::infinity();
    for (const double bad : {inf, -inf, std::numeric_limits<double>::quiet_NaN()}) {
        for (int where = 0; where < 9; ++where) {
            double c[9] = {0.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 9.0};
            c[where] = bad;
            const Points points = {{c[0], c[1], c[2]}, {c[3], c[4], c[5]}, {c[6], c[7], c[8]}};
            ZULMathOBBBase box({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
            EXPECT_LT(box.DefineElements(points.data(), points.size()), 0);
            EXPECT_EQ(box.Volume(), 48.0);
        }
    }
}

TEST(ZULMathOBB, AnAxisAlignedBoxComesBackExactly)
{
    const ZULMathOBBBase given({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1.0, 2.0, 3.0}, {0.0, 0.0, 0.0});
    const ZULMathOBBBase box = Fit(CornersOf(given));
    ExpectCorners(box, CornersOf(given), 0.0);
    EXPECT_EQ(box.GetCenter(), given.GetCenter());
    EXPECT_EQ(box.Volume(), 48.0);
}

TEST(ZULMathOBB, TheCornersOfAnyBoxGiveThatBoxBack)
{
    RandomSource random(11);
    for (int i = 0; i < 300; ++i) {
        const double flat = std::pow(10.0, random.Uniform(-4.0, 0.0));
        const ZULMathVector extents(random.Uniform(0.5, 50.0), random.Uniform(0.5, 50.0),
                                    flat * random.Uniform(0.5, 50.0));
        const ZULMathOBBBase given = random.Box(extents, 50.0);
        Points corners = CornersOf(given);
        random.Shuffle(corners);
        const ZULMathOBBBase box = Fit(corners);
        ExpectCorners(box, corners, 1e-12 * SizeOf(corners));
        EXPECT_NEAR(box.Volume(), given.Volume(), 1e-12 * 8.0 * 50.0 * 50.0 * 50.0);
    }
}

TEST(ZULMathOBB, TheCornersOfAnyCubeGiveThatCubeBack)
{
    RandomSource random(12);
    for (int i = 0; i < 300; ++i) {
        const double extent = std::pow(10.0, random.Uniform(-3.0, 3.0));
        const ZULMathOBBBase given = random.Box({extent, extent, extent}, 10.0 * extent);
        Points corners = CornersOf(given);
        random.Shuffle(corners);
        const ZULMathOBBBase box = Fit(corners);
        ExpectCorners(box, corners, 1e-12 * SizeOf(corners));
        for (const double e : {box.GetExtents().x, box.GetExtents().y, box.GetExtents().z}) {
            EXPECT_NEAR(e, extent, 1e-12 * extent);
        }
    }
}

TEST(ZULMathOBB, RepeatedCornersChangeNothing)
{
    RandomSource random(13);
    const ZULMathOBBBase given = random.Box({3.0, 3.0, 3.0}, 5.0);
    const Points corners = CornersOf(given);
    Points repeated = corners;
    for (int i = 0; i < 5; ++i) {
        repeated.insert(repeated.end(), corners.begin(), corners.end());
    }
    ExpectCorners(Fit(repeated), corners, 1e-12 * SizeOf(corners));
}

TEST(ZULMathOBB, IsNeverLargerThanTheAxisAlignedBox)
{
    RandomSource random(14);
    for (int i = 0; i < 400; ++i) {
        const int count = 4 + i % 60;
        Points points;
        for (int k = 0; k < count; ++k) {
            points.push_back(random.Point(1.0));
        }
        // The center is a double, so a face may lie one unit of the coordinates further out.
        const double rounding = 1.0 + 8.0 * std::numeric_limits<double>::epsilon();
        EXPECT_LE(Fit(points).Volume(), AxisAlignedVolume(points) * rounding);
    }
}

TEST(ZULMathOBB, FollowsATurnedCloudOfManyPoints)
{
    RandomSource random(15);
    for (int i = 0; i < 20; ++i) {
        const ZULMathOBBBase given = random.Box({20.0, 5.0, 1.0}, 30.0);
        Points points = CornersOf(given);
        for (int k = 0; k < 500; ++k) {
            points.push_back(given.UVWtoXYZ(
                {random.Uniform(-20.0, 20.0), random.Uniform(-5.0, 5.0), random.Uniform(-1.0, 1.0)}));
        }
        EXPECT_LE(Fit(points).Volume(), 1.02 * given.Volume());
    }
}

TEST(ZULMathOBB, APointIsABoxOfNoSize)
{
    const Points points(3, ZULMathPoint(1.25, -3.0, 1e6));
    const ZULMathOBBBase box = Fit(points);
    EXPECT_EQ(box.GetCenter(), points[0]);
    EXPECT_EQ(box.GetExtents().Norm(), 0.0);
}

TEST(ZULMathOBB, CollinearPointsGiveASegment)
{
    RandomSource random(16);
    for (int i = 0; i < 50; ++i) {
        const ZULMathPoint start = random.Point(10.0);
        const ZULMathVector direction = random.Vector(1.0);
        Points points;
        const int count = 2 + i;
        for (int k = 0; k < count; ++k) {
            points.push_back(start + (k / (count - 1.0)) * direction);
        }
        const ZULMathOBBBase box = Fit(points);
        const ZULMathVector& e = box.GetExtents();
        const double longest = std::max({e.x, e.y, e.z});
        EXPECT_NEAR(longest, 0.5 * direction.Norm(), 1e-12);
        EXPECT_LE(e.x + e.y + e.z - longest, 1e-13);
    }
}

TEST(ZULMathOBB, TheCornersOfARectangleGiveThatRectangleBack)
{
    RandomSource random(17);
    for (int i = 0; i < 100; ++i) {
        const ZULMathOBBBase given =
            random.Box({random.Uniform(1.0, 9.0), random.Uniform(1.0, 9.0), 0.0}, 10.0);
        const Points corners = CornersOf(given);
        ExpectCorners(Fit(corners), corners, 1e-12 * SizeOf(corners));
    }
}

TEST(ZULMathOBB, ARectangleTurnedWithinACoordinatePlaneStaysFlat)
{
    const double c = 0.8;
    const double s = 0.6;
    const ZULMathOBBBase given({c, s, 0.0}, {-s, c, 0.0}, {0.0, 0.0, 1.0}, {4.0, 2.0, 0.0}, {1.0, 2.0, 3.0});
    const ZULMathOBBBase box = Fit(CornersOf(given));
    ExpectCorners(box, CornersOf(given), 1e-12);
    EXPECT_EQ(box.Volume(), 0.0);
}

TEST(ZULMathOBB, CoplanarPointsGiveAFlatBox)
{
    RandomSource random(18);
    for (int i = 0; i < 50; ++i) {
        const ZULMathOBBBase plane = random.Box({5.0, 5.0, 0.0}, 10.0);
        Points points;
        for (int k = 0; k < 3 + i; ++k) {
            points.push_back(plane.UVWtoXYZ({random.Uniform(-5.0, 5.0), random.Uniform(-5.0, 5.0), 0.0}));
        }
        const ZULMathVector e = Fit(points).GetExtents();
        EXPECT_LE(std::min({e.x, e.y, e.z}), 1e-13);
    }
}

TEST(ZULMathOBB, WorksForNumbersOfAnySize)
{
    RandomSource random(19);
    for (const double unit : {1e-300, 1e-150, 1e150, 1e300}) {
        const ZULMathOBBBase given = random.Box({2.0, 1.0, 1.0}, 3.0);
        Points points;
        for (const ZULMathPoint& p : CornersOf(given)) {
            points.emplace_back(unit * p.x, unit * p.y, unit * p.z);
        }
        ExpectCorners(Fit(points), points, 1e-12 * 6.0 * unit);
    }
    const double huge = std::numeric_limits<double>::max();
    Fit({{huge, huge, huge}, {-huge, -huge, -huge}, {huge, -huge, 0.5 * huge}});
    Fit({{huge, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, -1e-300}});
    const double tiny = std::numeric_limits<double>::denorm_min();
    Fit({{tiny, 0.0, 0.0}, {0.0, 3.0 * tiny, 0.0}, {0.0, 0.0, -7.0 * tiny}, {tiny, tiny, tiny}});
}

TEST(ZULMathOBB, HoldsPointsFarFromTheOrigin)
{
    RandomSource random(20);
    for (int i = 0; i < 50; ++i) {
        const ZULMathPoint far = random.Point(1e9);
        Points points;
        for (int k = 0; k < 12; ++k) {
            points.push_back(far + random.Vector(1e-3));
        }
        Fit(points);
    }
}
