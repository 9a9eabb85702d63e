// The exact stage of ordinary decisions does not touch the heap.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <new>
#include <random>
#include <vector>

#include "ZULExpFloatRingExtensionTS.h"

namespace
{
thread_local long t_Allocations = 0;
}

void* operator new(std::size_t size)
{
    ++t_Allocations;
    if (void* const block = std::malloc(size)) {
        return block;
    }
    throw std::bad_alloc();
}
void* operator new[](std::size_t size)
{
    return operator new(size);
}
void operator delete(void* block) noexcept
{
    std::free(block);
}
void operator delete[](void* block) noexcept
{
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept
{
    std::free(block);
}

namespace
{
using Number = ZULExpFloatRingExtensionTS;
using Random = std::mt19937_64;
using Point = std::array<double, 3>;
using Plane = std::array<Number, 4>;

constexpr int NbCases = 100000;

Number Determinant(const Plane& p, const Plane& q, const Plane& r, std::size_t i, std::size_t j,
                   std::size_t k)
{
    return p[i] * (q[j] * r[k] - q[k] * r[j]) - p[j] * (q[i] * r[k] - q[k] * r[i]) +
           p[k] * (q[i] * r[j] - q[j] * r[i]);
}

Number SideOfPlane(const Plane& p, const Plane& q, const Plane& r, const Plane& s)
{
    return s[3] * Determinant(p, q, r, 0, 1, 2) - s[2] * Determinant(p, q, r, 0, 1, 3) +
           s[1] * Determinant(p, q, r, 0, 2, 3) - s[0] * Determinant(p, q, r, 1, 2, 3);
}

/// As coordinates come: some tenths of microns up to metres, with all their digits.
double RandomCoordinate(Random& random)
{
    const auto digits = static_cast<double>(random() % 2000000001U) - 1e9;
    return digits * 1e-6;
}

double RandomCoefficient(Random& random)
{
    return std::uniform_real_distribution<double>(-1.0, 1.0)(random);
}

Plane ThroughPoints(const Point& a, const Point& b, const Point& c)
{
    std::array<Number, 3> u;
    std::array<Number, 3> v;
    for (std::size_t i = 0; i < 3; ++i) {
        u[i] = Number(b[i]) - Number(a[i]);
        v[i] = Number(c[i]) - Number(a[i]);
    }
    const Number nx = u[1] * v[2] - u[2] * v[1];
    const Number ny = u[2] * v[0] - u[0] * v[2];
    const Number nz = u[0] * v[1] - u[1] * v[0];
    return {nx, ny, nz, -(nx * Number(a[0]) + ny * Number(a[1]) + nz * Number(a[2]))};
}

Plane RandomCartesianPlane(Random& random)
{
    const double x = RandomCoefficient(random);
    const double y = RandomCoefficient(random);
    const double z = RandomCoefficient(random);
    return {x, y, z, RandomCoordinate(random)};
}

Plane RandomPointsPlane(Random& random)
{
    std::array<Point, 3> points{};
    for (Point& point : points) {
        for (double& x : point) {
            x = RandomCoordinate(random);
        }
    }
    return ThroughPoints(points[0], points[1], points[2]);
}

template <class MakePlane>
long CountAllocationsOfSideTests(MakePlane makePlane)
{
    Random random(2);
    const long before = t_Allocations;
    int nbPositive = 0;
    for (int i = 0; i < NbCases; ++i) {
        const Plane p = makePlane(random);
        const Plane q = makePlane(random);
        const Plane r = makePlane(random);
        nbPositive += SideOfPlane(p, q, r, makePlane(random)).IsPositive() ? 1 : 0;
    }
    EXPECT_GT(nbPositive, NbCases / 3);
    EXPECT_LT(nbPositive, 2 * NbCases / 3);
    return t_Allocations - before;
}
}  // namespace

TEST(ZULExpAllocation, DeterminantsOfDoublesStayInside)
{
    Random random(1);
    const long before = t_Allocations;
    for (int i = 0; i < NbCases; ++i) {
        Plane p = RandomCartesianPlane(random);
        const Plane q = RandomCartesianPlane(random);
        const Plane r = RandomCartesianPlane(random);
        p[0] += p[1];
        Determinant(p, q, r, 0, 1, 2);
    }
    EXPECT_EQ(t_Allocations, before);
}

TEST(ZULExpAllocation, SideOfCartesianPlanesStaysInside)
{
    EXPECT_EQ(CountAllocationsOfSideTests(RandomCartesianPlane), 0);
}

TEST(ZULExpAllocation, SideOfThreePointsPlanesStaysInside)
{
    EXPECT_EQ(CountAllocationsOfSideTests(RandomPointsPlane), 0);
}

TEST(ZULExpAllocation, MixedPlanesStayInside)
{
    EXPECT_EQ(CountAllocationsOfSideTests([](Random& random) {
                  return random() % 2 == 0 ? RandomCartesianPlane(random) : RandomPointsPlane(random);
              }),
              0);
}

TEST(ZULExpAllocation, LargeNumbersAreOnTheHeapAndFreed)
{
    const long before = t_Allocations;
    const Number sum = Number(1e300) + Number(1e-300);
    EXPECT_GT(t_Allocations, before);
    Number copy = sum;
    copy -= sum;
    EXPECT_TRUE(copy.IsZero());
}
