#include "ZULMathVector.h"

#include <gtest/gtest.h>

#include "ZULMathPoint.h"

namespace
{
void ExpectEqual(const ZULMathVector& v, double x, double y, double z)
{
    EXPECT_EQ(v.GetX(), x);
    EXPECT_EQ(v.GetY(), y);
    EXPECT_EQ(v.GetZ(), z);
}
}  // namespace

TEST(ZULMathVector, Arithmetic)
{
    const ZULMathVector u(1.0, 2.0, 3.0);
    const ZULMathVector v(-4.0, 5.0, 0.5);
    ExpectEqual(u + v, -3.0, 7.0, 3.5);
    ExpectEqual(u - v, 5.0, -3.0, 2.5);
    ExpectEqual(-u, -1.0, -2.0, -3.0);
    ExpectEqual(2.0 * u, 2.0, 4.0, 6.0);
    EXPECT_EQ(u * v, 7.5);
    ExpectEqual(u ^ v, -14.0, -12.5, 13.0);
    ExpectEqual(ZULMathVector(1.0, 0.0, 0.0) ^ ZULMathVector(0.0, 1.0, 0.0), 0.0, 0.0, 1.0);
}

TEST(ZULMathVector, NormalizeDividesByTheLength)
{
    ZULMathVector v(2.0, -3.0, 6.0);
    EXPECT_EQ(v.Norm(), 7.0);
    v.Normalize();
    ExpectEqual(v, 2.0 / 7.0, -3.0 / 7.0, 6.0 / 7.0);
}

TEST(ZULMathVector, NormalizeLeavesAZeroVector)
{
    ZULMathVector zero;
    zero.Normalize();
    ExpectEqual(zero, 0.0, 0.0, 0.0);
}

TEST(ZULMathPoint, DifferencesAndTranslation)
{
    const ZULMathPoint p(1.0, 2.0, 3.0);
    const ZULMathPoint q(4.0, 4.0, 4.0);
    ExpectEqual(q - p, 3.0, 2.0, 1.0);
    EXPECT_EQ(p + ZULMathVector(3.0, 2.0, 1.0), q);
    EXPECT_NE(p, q);
    EXPECT_EQ(ZULMathPoint(), ZULMathPoint(0.0, -0.0, 0.0));
    EXPECT_EQ(p.GetX() + 10.0 * p.GetY() + 100.0 * p.GetZ(), 321.0);
}
