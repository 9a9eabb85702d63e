#include "ZULMRSMathUtilities.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace
{
constexpr double Tolerance = 1e-15;

void ExpectBasis(const ZULMathVector& v)
{
    SCOPED_TRACE(testing::Message() << v.x << " " << v.y << " " << v.z);
    ZULMathVector u1;
    ZULMathVector u2;
    ASSERT_EQ(ZULMRSMathUtilities::CompleteOrthogonalBasis(v, u1, u2), 0);
    EXPECT_NEAR(u1.Norm(), 1.0, Tolerance);
    EXPECT_NEAR(u2.Norm(), 1.0, Tolerance);
    EXPECT_NEAR(u1 * u2, 0.0, Tolerance);
    const double largest = std::fmax(std::fabs(v.x), std::fmax(std::fabs(v.y), std::fabs(v.z)));
    const ZULMathVector direction(v.x / largest, v.y / largest, v.z / largest);
    EXPECT_NEAR(direction * u1, 0.0, 2.0 * Tolerance);
    EXPECT_NEAR(direction * u2, 0.0, 2.0 * Tolerance);
    EXPECT_GT((direction ^ u1) * u2, 0.9);
}
}  // namespace

TEST(ZULMRSMathUtilities, CompletesRandomDirections)
{
    std::mt19937_64 random(20240601);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    for (int i = 0; i < 2000; ++i) {
        const double unit = std::ldexp(1.0, static_cast<int>(random() % 80) - 40);
        ExpectBasis({unit * uniform(random), unit * uniform(random), unit * uniform(random)});
    }
}

TEST(ZULMRSMathUtilities, CompletesAxesToAxes)
{
    for (const double sign : {1.0, -1.0}) {
        for (int axis = 0; axis < 3; ++axis) {
            const ZULMathVector v(axis == 0 ? sign : 0.0, axis == 1 ? sign : 0.0, axis == 2 ? sign : 0.0);
            ExpectBasis(v);
            ZULMathVector u1;
            ZULMathVector u2;
            ZULMRSMathUtilities::CompleteOrthogonalBasis(v, u1, u2);
            EXPECT_EQ(std::fabs(u1.x) + std::fabs(u1.y) + std::fabs(u1.z), 1.0);
            EXPECT_EQ(std::fabs(u2.x) + std::fabs(u2.y) + std::fabs(u2.z), 1.0);
        }
    }
}

TEST(ZULMRSMathUtilities, CompletesVectorsOfAnyLength)
{
    const double huge = std::numeric_limits<double>::max();
    const double tiny = std::numeric_limits<double>::denorm_min();
    ExpectBasis({huge, huge, huge});
    ExpectBasis({huge, -huge, 0.0});
    ExpectBasis({tiny, 0.0, 0.0});
    ExpectBasis({tiny, -tiny, tiny});
    ExpectBasis({1e300, 1e-300, 0.0});
}

TEST(ZULMRSMathUtilities, RefusesWhatHasNoDirection)
{
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const ZULMathVector& v : {ZULMathVector(0.0, -0.0, 0.0), ZULMathVector(inf, 0.0, 0.0),
                                   ZULMathVector(0.0, nan, 1.0), ZULMathVector(1.0, 1.0, -inf)}) {
        ZULMathVector u1(9.0, 9.0, 9.0);
        ZULMathVector u2(9.0, 9.0, 9.0);
        EXPECT_EQ(ZULMRSMathUtilities::CompleteOrthogonalBasis(v, u1, u2), -1);
        EXPECT_EQ(u1.x, 1.0);
        EXPECT_EQ(u1.y, 0.0);
        EXPECT_EQ(u1.z, 0.0);
        EXPECT_EQ(u2.x, 0.0);
        EXPECT_EQ(u2.y, 1.0);
        EXPECT_EQ(u2.z, 0.0);
    }
}

TEST(ZULMRSMathUtilities, TheOutputMayBeTheInput)
{
    ZULMathVector v(1.0, 2.0, 3.0);
    ZULMathVector u2;
    ZULMathVector expected1;
    ZULMathVector expected2;
    ZULMRSMathUtilities::CompleteOrthogonalBasis({1.0, 2.0, 3.0}, expected1, expected2);
    ASSERT_EQ(ZULMRSMathUtilities::CompleteOrthogonalBasis(v, v, u2), 0);
    EXPECT_EQ(v.x, expected1.x);
    EXPECT_EQ(u2.z, expected2.z);
}
