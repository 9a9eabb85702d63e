#include "ZULMRSBSPShortInteger.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "ZULMRSBSPFormulas.h"
#include "ZULTestBigInteger.h"
#include "ZULTestGeometry.h"

// Integers of fixed length, against integers without a limit.
namespace
{
using namespace ZULTest;
using ZULMRSBSPShortIntegers::Input;

constexpr std::int64_t LargestInput = (std::int64_t{1} << 62) - 1;
constexpr int Cases = 20'000 / ZUL_TEST_CASES_DIVISOR;

template <std::size_t Limbs>
BigInteger ToBig(const ZULMRSBSPShortInteger<Limbs>& x)
{
    return BigInteger::FromLimbs([&x](std::size_t i) { return x.GetLimb(i); }, Limbs);
}
template <std::size_t Limbs>
ZULMRSBSPShortInteger<Limbs> ToShort(const BigInteger& x)
{
    std::array<std::uint64_t, Limbs> limbs;
    for (std::size_t i = 0; i < Limbs; ++i) {
        limbs[i] = x.GetLimb(i);
    }
    return ZULMRSBSPShortInteger<Limbs>(limbs);
}

Input ToInput(std::int64_t value)
{
    return Input({static_cast<std::uint64_t>(value)});
}

/// Of any length below 2^62, the ends and their neighbours often among them.
std::int64_t AnyInput(Random& random)
{
    const std::int64_t sign = random.OneIn(2) ? -1 : 1;
    switch (random.Integer(0, 5)) {
        case 0:
            return sign * LargestInput;
        case 1:
            return sign * (std::int64_t{1} << random.Integer(0, 61));
        case 2:
            return random.Integer(-1, 1);
        default:
            return sign * static_cast<std::int64_t>(random.Bits() >> random.Integer(2, 63));
    }
}

/// Of any length up to the bits given.
BigInteger AnyBig(Random& random, int bits)
{
    const auto length = static_cast<unsigned int>(random.Integer(0, bits));
    BigInteger value(0);
    for (int i = 0; i < 3; ++i) {
        value = value * BigInteger::PowerOfTwo(64) +
                BigInteger(mpz_class(static_cast<unsigned long>(random.Bits())));
    }
    value = value.ShiftedRight(192 - length);
    if (random.OneIn(6)) {
        value = BigInteger::PowerOfTwo(length) - BigInteger(1);
    }
    return random.OneIn(2) ? -value : value;
}

TEST(ZULMRSBSPShortInteger, ThePolynomialsAreExactAtEverySizeOfInput)
{
    Random random(61'001);
    for (int n = 0; n < Cases; ++n) {
        std::array<std::array<Input, 4>, 4> rows;
        std::array<std::array<BigInteger, 4>, 4> exact;
        const bool isExtreme = random.OneIn(4);
        for (std::size_t i = 0; i < 4; ++i) {
            for (std::size_t j = 0; j < 4; ++j) {
                const std::int64_t value =
                    isExtreme ? (random.OneIn(2) ? LargestInput : -LargestInput) : AnyInput(random);
                rows[i][j] = ToInput(value);
                exact[i][j] = BigInteger(value);
            }
        }
        const auto meeting = ZULMRSBSPFormulas::MeetingPoint(rows[0], rows[1], rows[2]);
        const auto expected = ZULMRSBSPFormulas::MeetingPoint(exact[0], exact[1], exact[2]);
        for (std::size_t i = 0; i < 4; ++i) {
            ASSERT_EQ(ToBig(meeting[i]), expected[i]);
            ASSERT_EQ(meeting[i].Sign().ToKernelResult(), expected[i].Sign());
            ASSERT_EQ(ToBig(-meeting[i]), -expected[i]);
        }
        const auto value = ZULMRSBSPFormulas::EquationAtHomogeneous(rows[3], meeting);
        const BigInteger exactValue = ZULMRSBSPFormulas::EquationAtHomogeneous(exact[3], expected);
        ASSERT_EQ(ToBig(value), exactValue);
        ASSERT_EQ(value.Sign().ToKernelResult(), exactValue.Sign());
    }
}

TEST(ZULMRSBSPShortInteger, ProductsOfLongOnes)
{
    Random random(61'004);
    for (int n = 0; n < Cases; ++n) {
        const BigInteger x = AnyBig(random, 127);
        const BigInteger y = AnyBig(random, 191);
        ASSERT_EQ(ToBig(ToShort<2>(x) * ToShort<3>(y)), x * y);
        ASSERT_EQ(ToBig(ToShort<3>(y) * ToShort<2>(x)), x * y);
        ASSERT_EQ(ToBig(ToShort<2>(x) * ToShort<2>(x)), x * x);
        ASSERT_EQ(ToBig(ToShort<3>(y) * ToShort<3>(-y)), -(y * y));
    }
}

TEST(ZULMRSBSPShortInteger, ProductsOfMagnitudes)
{
    Random random(61'002);
    for (int n = 0; n < Cases; ++n) {
        const BigInteger x = AnyBig(random, 190);
        const BigInteger y = AnyBig(random, 190);
        const auto product = ToShort<3>(x).ProductOfMagnitudes(ToShort<3>(y));
        BigInteger sum(0);
        for (std::size_t i = product.size(); i-- > 0;) {
            sum = sum * BigInteger::PowerOfTwo(64) +
                  BigInteger(mpz_class(static_cast<unsigned long>(product[i])));
        }
        ASSERT_EQ(sum, (x * y).Magnitude());
    }
}

void ExpectSignOfDifference(const BigInteger& a, const BigInteger& b, const BigInteger& c,
                            const BigInteger& d)
{
    ASSERT_EQ(SignOfDifferenceOfProducts(ToShort<3>(a), ToShort<3>(b), ToShort<3>(c), ToShort<3>(d))
                  .ToKernelResult(),
              (a * b - c * d).Sign())
        << a.Get().get_str() << " " << b.Get().get_str() << " " << c.Get().get_str() << " "
        << d.Get().get_str();
}

TEST(ZULMRSBSPShortInteger, TheSignOfADifferenceOfProducts)
{
    Random random(61'003);
    for (int n = 0; n < Cases; ++n) {
        ExpectSignOfDifference(AnyBig(random, 190), AnyBig(random, 190), AnyBig(random, 190),
                               AnyBig(random, 190));
        // Equal products of different factors, and what is one beside them.
        const BigInteger r = AnyBig(random, 95);
        const BigInteger s = AnyBig(random, 95);
        const BigInteger t = AnyBig(random, 95);
        const BigInteger u = AnyBig(random, 95);
        const BigInteger one(1);
        ExpectSignOfDifference(r * s, t * u, r * t, s * u);
        ExpectSignOfDifference(r * s + one, t * u, r * t, s * u);
        ExpectSignOfDifference(r * s, t * u, r * t, s * u - one);
        ExpectSignOfDifference(r * s, t * u, -(r * t), s * u);
    }
}

//---------------------------------------------------------------- doubles cut off

/// The exponent above a double's highest place; what is smaller than normal counts as the least normal.
int ExponentAbove(double value)
{
    int exponent = 0;
    std::frexp(value, &exponent);
    constexpr int least = std::numeric_limits<double>::min_exponent;
    return value == 0.0 ? least : std::max(exponent, least);
}

template <std::size_t Size>
void ExpectCut(const std::array<double, Size>& numbers, int shiftOfLast)
{
    const ZULMRSBSPShortIntegers::Row<Size> row = ZULMRSBSPShortIntegers::Cut(numbers, shiftOfLast);
    ASSERT_TRUE(row.m_IsFinite);
    int top = -10'000;
    for (std::size_t i = 0; i < Size; ++i) {
        top = std::max(top, ExponentAbove(numbers[i]) + (i == Size - 1 ? shiftOfLast : 0));
    }
    bool isExact = true;
    for (std::size_t i = 0; i < Size; ++i) {
        Rational exact = ToRational(numbers[i]);
        const int places = ZULMRSBSPShortIntegers::InputBits - top + (i == Size - 1 ? shiftOfLast : 0);
        if (places >= 0) {
            mpq_mul_2exp(exact.get_mpq_t(), exact.get_mpq_t(), static_cast<mp_bitcnt_t>(places));
        } else {
            mpq_div_2exp(exact.get_mpq_t(), exact.get_mpq_t(), static_cast<mp_bitcnt_t>(-places));
        }
        const Rational off = exact - Rational(static_cast<long>(row[i]));
        ASSERT_TRUE(abs(off) < 1);
        ASSERT_GE(sgn(off) * sgn(exact), 0);  // towards zero
        ASSERT_LE(std::abs(row[i]), LargestInput);
        isExact = isExact && sgn(off) == 0;
    }
    ASSERT_EQ(row.m_IsExact, isExact);
}

TEST(ZULMRSBSPShortInteger, DoublesAreCutWhereTheyDoNotFit)
{
    Random random(61'004);
    for (const Regime regime : AllRegimes) {
        for (int n = 0; n < Cases / 10; ++n) {
            const Plane4 numbers = random.Plane(regime);
            for (const int shift : {-4, 0, 4}) {
                ExpectCut(numbers, shift);
                ExpectCut(random.Point(regime), shift);
                ExpectCut(std::array<double, 2>{numbers[0], numbers[3]}, shift);
            }
        }
    }
    ExpectCut(Plane4{0.0, -0.0, 0.0, 0.0}, -4);
    ExpectCut(Plane4{0.0, 0.0, 0.0, 0x1p-1074}, 4);
    ExpectCut(Plane4{0x1p-1074, 0.0, 0.0, 0x1.fffffffffffffp1023}, 4);
    ExpectCut(Plane4{0x1p-1074, 0.0, 0.0, -0x1p-1074}, -4);
}

TEST(ZULMRSBSPShortInteger, SixtyTwoBitsFitAndOneMoreDoesNot)
{
    const auto isExact = [](double x, double y, int shift) {
        return ZULMRSBSPShortIntegers::Cut<2>({x, y}, shift).m_IsExact;
    };
    EXPECT_TRUE(isExact(1.0, 0x1p-61, 0));
    EXPECT_FALSE(isExact(1.0, 0x1p-62, 0));
    EXPECT_TRUE(isExact(-0x1.fffffffffffffp0, 0x1.fffffffffffffp-9, 0));
    EXPECT_FALSE(isExact(-0x1.fffffffffffffp0, 0x1.fffffffffffffp-10, 0));
    EXPECT_TRUE(isExact(-0x1.fffffffffffffp0, 0x1.ffffffffffffep-10, 0));
    EXPECT_TRUE(isExact(1.0, 0x1p-65, 4));
    EXPECT_FALSE(isExact(1.0, 0x1p-66, 4));
    EXPECT_TRUE(isExact(1.0, 0x1p-57, -4));
    EXPECT_FALSE(isExact(1.0, 0x1p-58, -4));
    EXPECT_TRUE(isExact(0x1.fffffffffffffp0, 0x1.fffffffffffffp13, -4));
    EXPECT_FALSE(isExact(0x1.fffffffffffffp0, 0x1.fffffffffffffp14, -4));
}

TEST(ZULMRSBSPShortInteger, WhatIsNotFiniteIsSaid)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double bad : {infinity, -infinity, nan}) {
        for (std::size_t i = 0; i < 4; ++i) {
            Plane4 numbers = {1.0, 2.0, 3.0, 4.0};
            numbers[i] = bad;
            const auto row = ZULMRSBSPShortIntegers::Cut(numbers);
            EXPECT_FALSE(row.m_IsFinite);
            EXPECT_FALSE(row.m_IsExact);
        }
    }
}
}  // namespace
