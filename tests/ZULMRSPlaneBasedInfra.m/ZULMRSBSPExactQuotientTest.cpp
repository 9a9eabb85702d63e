#include "ZULMRSBSPExactQuotient.h"

#include <gmpxx.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "ZULTestNumbers.h"

using ZULMRSBSPExactQuotient::Of;
using ZULTest::AreSameBits;
using ZULTest::Random;
using ZULTest::Rational;
using ZULTest::ToRational;

namespace
{
using Number = ZULExpFloatRingExtensionTS;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double Largest = std::numeric_limits<double>::max();
constexpr double Smallest = std::numeric_limits<double>::denorm_min();
constexpr int NbCases = 20000 / ZUL_TEST_CASES_DIVISOR;

/// 2^exponent times a small integer.
Number Power(std::int64_t factor, std::int64_t exponent)
{
    return {ZULExpBigIntegerTS(factor), exponent};
}

/// An integer of so many random limbs, the highest and the lowest not zero.
ZULExpBigIntegerTS RandomInteger(Random& random, std::size_t nbLimbs)
{
    std::vector<std::uint64_t> limbs(nbLimbs);
    for (std::uint64_t& limb : limbs) {
        limb = random.Bits();
    }
    limbs.front() |= 1U;
    limbs.back() |= 1U;
    return ZULExpBigIntegerTS::FromLimbs(limbs.data(), limbs.size(), random.OneIn(2));
}

/// 2^bits - 1, whose rounded mantissa is the next power of two.
Number AllOnes(std::size_t bits)
{
    return Power(1, static_cast<std::int64_t>(bits)) - Number(1.0);
}

Rational IntegerOf(const Number& number)
{
    mpz_class integer;
    mpz_import(integer.get_mpz_t(), number.GetInteger().GetNbLimbs(), -1, sizeof(std::uint64_t), 0, 0,
               number.GetInteger().GetLimbs());
    return number.Sign() < 0 ? Rational(-integer) : Rational(integer);
}

Rational TrueQuotient(const Number& n, const Number& m)
{
    Rational quotient = IntegerOf(n) / IntegerOf(m);
    const std::int64_t exponent = n.GetExponent() - m.GetExponent();
    if (exponent >= 0) {
        mpq_mul_2exp(quotient.get_mpq_t(), quotient.get_mpq_t(), static_cast<mp_bitcnt_t>(exponent));
    } else {
        mpq_div_2exp(quotient.get_mpq_t(), quotient.get_mpq_t(), static_cast<mp_bitcnt_t>(-exponent));
    }
    return quotient;
}

/// Whether the double is less than the distance to its neighbour away, the nearer one if they differ; beyond
/// the range of doubles, infinite. The sign must be right also where nothing else is left.
bool IsWithinOneUnit(double quotient, const Rational& truth)
{
    if (std::isnan(quotient) || std::signbit(quotient) != (sgn(truth) < 0)) {
        return false;
    }
    if (std::isinf(quotient)) {
        return abs(truth) > ToRational(Largest);
    }
    const double magnitude = std::fabs(quotient);
    const double unit = magnitude == 0.0 ? Smallest : magnitude - std::nextafter(magnitude, 0.0);
    return abs(ToRational(quotient) - truth) < ToRational(unit);
}

TEST(ExactQuotient, LongMantissas)
{
    Random random(1);
    for (int i = 0; i < NbCases; ++i) {
        const auto nbTop = static_cast<std::size_t>(random.Integer(1, 70));
        const auto nbBottom = static_cast<std::size_t>(random.Integer(1, 70));
        // Most quotients are ordinary numbers, some are beyond the range either way.
        const int most = random.OneIn(4) ? 1200 : 300;
        const std::int64_t shift = random.Integer(-most, most);
        const Number n(RandomInteger(random, nbTop), shift - 64 * static_cast<std::int64_t>(nbTop));
        const Number m(RandomInteger(random, nbBottom), -64 * static_cast<std::int64_t>(nbBottom));
        ASSERT_TRUE(IsWithinOneUnit(Of(n, m), TrueQuotient(n, m))) << "case " << i;
    }
}

TEST(ExactQuotient, MantissasThatRoundUpToAPowerOfTwo)
{
    for (const std::size_t bits : {53U, 54U, 55U, 63U, 64U, 65U, 127U, 1000U, 6400U}) {
        for (const std::size_t other : {1U, 2U, 53U, 54U, 64U, 128U, 999U, 1000U, 6401U}) {
            const Number n = AllOnes(bits);
            const Number m = AllOnes(other) * Power(-1, static_cast<std::int64_t>(bits));
            EXPECT_TRUE(IsWithinOneUnit(Of(n, m), TrueQuotient(n, m))) << bits << ' ' << other;
            EXPECT_TRUE(IsWithinOneUnit(Of(m, n), TrueQuotient(m, n))) << bits << ' ' << other;
        }
    }
    EXPECT_EQ(Of(AllOnes(6400), AllOnes(6400)), 1.0);
}

TEST(ExactQuotient, ARepresentableQuotientIsExact)
{
    Random random(2);
    for (int i = 0; i < NbCases; ++i) {
        double quotient = random.Scaled(-1022, 1023);
        if (random.OneIn(4)) {
            quotient = random.Number(ZULTest::Regime::Denormal);
        }
        const Number m(RandomInteger(random, static_cast<std::size_t>(random.Integer(1, 60))),
                       random.Integer(-5000, 5000));
        ASSERT_TRUE(AreSameBits(Of(Number(quotient) * m, m), quotient)) << "case " << i << ": " << quotient;
    }
    for (const double quotient : {Largest, -Largest, Smallest, -Smallest, 0x1p-1022, 1.0, -1.0}) {
        const Number m(RandomInteger(random, 40), -77);
        EXPECT_TRUE(AreSameBits(Of(Number(quotient) * m, m), quotient)) << quotient;
    }
}

TEST(ExactQuotient, OfTwoDoublesIsTheirRoundedQuotient)
{
    Random random(3);
    for (int i = 0; i < 5 * NbCases; ++i) {
        const double n = random.Scaled(-500, 500);
        const double m = random.Scaled(-500, 500);
        ASSERT_TRUE(AreSameBits(Of(Number(n), Number(m)), n / m)) << n << " / " << m;
    }
    EXPECT_EQ(Of(Number(Smallest), Number(Smallest)), 1.0);
    EXPECT_EQ(Of(Number(Smallest), Number(-2.0 * Smallest)), -0.5);
    EXPECT_EQ(Of(Number(Largest), Number(Largest)), 1.0);
    EXPECT_EQ(Of(Number(1.0), Number(3.0)), 1.0 / 3.0);
}

TEST(ExactQuotient, TheSignIsThatOfBoth)
{
    EXPECT_EQ(Of(Number(6.0), Number(2.0)), 3.0);
    EXPECT_EQ(Of(Number(-6.0), Number(2.0)), -3.0);
    EXPECT_EQ(Of(Number(6.0), Number(-2.0)), -3.0);
    EXPECT_EQ(Of(Number(-6.0), Number(-2.0)), 3.0);
}

TEST(ExactQuotient, ZeroIsPositiveZero)
{
    for (const double m : {1.0, -1.0, Smallest, -Largest}) {
        EXPECT_TRUE(AreSameBits(Of(Number(), Number(m)), 0.0));
        EXPECT_TRUE(AreSameBits(Of(Number(-0.0), Number(m)), 0.0));
        EXPECT_TRUE(AreSameBits(Of(Number(m) - Number(m), Number(m)), 0.0));
    }
}

TEST(ExactQuotient, OverflowIsInfinite)
{
    EXPECT_EQ(Of(Power(1, 1024), Number(1.0)), Infinity);
    EXPECT_EQ(Of(Power(-1, 1024), Number(1.0)), -Infinity);
    EXPECT_EQ(Of(Number(1.0), Power(-1, -1024)), -Infinity);
    EXPECT_EQ(Of(Power(-1, 600), Power(-3, -600)), Infinity);
    EXPECT_EQ(Of(Number(Largest), Number(Smallest)), Infinity);
    EXPECT_EQ(Of(Number(-Largest), Number(Smallest)), -Infinity);
    EXPECT_EQ(Of(Power(1, 1023), Number(1.0)), 0x1p1023);
}

TEST(ExactQuotient, UnderflowIsGradualAndKeepsTheSign)
{
    EXPECT_EQ(Of(Power(3, -1074), Number(-1.0)), -3.0 * Smallest);
    EXPECT_EQ(Of(Power(-1, -1073), Power(2, 0)), -Smallest);
    EXPECT_TRUE(AreSameBits(Of(Number(Smallest), Number(Largest)), 0.0));
    EXPECT_TRUE(AreSameBits(Of(Number(-Smallest), Number(Largest)), -0.0));
    EXPECT_TRUE(AreSameBits(Of(Power(1, -5000), Number(-1.0)), -0.0));
    EXPECT_TRUE(AreSameBits(Of(Power(-1, -5000), Number(-1.0)), 0.0));
    Random random(4);
    for (int i = 0; i < NbCases; ++i) {
        const Number n(RandomInteger(random, 3), random.Integer(-1074 - 64, -1074 + 64));
        const Number m(RandomInteger(random, 3), 0);
        ASSERT_TRUE(IsWithinOneUnit(Of(n, m), TrueQuotient(n, m))) << "case " << i;
    }
}

TEST(ExactQuotient, ExponentsBeyondInt)
{
    constexpr std::int64_t far = std::int64_t{1} << 40;
    EXPECT_EQ(Of(Power(3, far), Power(1, far - 1)), 6.0);
    EXPECT_EQ(Of(Power(3, -far), Power(-2, -far)), -1.5);
    EXPECT_EQ(Of(Power(-3, far), Power(2, 0)), -Infinity);
    EXPECT_EQ(Of(Power(3, far), Power(2, -far)), Infinity);
    EXPECT_TRUE(AreSameBits(Of(Power(3, -far), Power(2, 0)), 0.0));
    EXPECT_TRUE(AreSameBits(Of(Power(3, -far), Power(-2, far)), -0.0));
    // A multiple of 2^32 away: nothing may be cut off to 32 bits.
    EXPECT_EQ(Of(Power(1, std::int64_t{1} << 32), Number(1.0)), Infinity);
}

TEST(ExactQuotient, ExponentsAtTheLimitsOfTheirType)
{
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(Of(Power(5, highest), Power(-4, highest)), -1.25);
    EXPECT_EQ(Of(Power(5, lowest), Power(4, lowest)), 1.25);
    EXPECT_EQ(Of(Power(-5, highest), Power(4, lowest)), -Infinity);
    EXPECT_TRUE(AreSameBits(Of(Power(-5, lowest), Power(4, highest)), -0.0));
    EXPECT_EQ(Of(AllOnes(640) * Power(1, highest - 1000), Power(1, highest - 1000 + 640)), 1.0);
}
}  // namespace
