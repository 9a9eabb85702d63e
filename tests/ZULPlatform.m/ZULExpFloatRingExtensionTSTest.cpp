#include "ZULExpFloatRingExtensionTS.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include "ZULExpFloatStatus.h"
#include "ZULExpReference.h"

namespace
{
using ZULExpReference::Compare;
using ZULExpReference::Exact;
using ZULExpReference::FromBits;
using ZULExpReference::Random;
using ZULExpReference::RandomDouble;

using ZULExpReference::NbCases;
const double Infinity = std::numeric_limits<double>::infinity();
const double Largest = std::numeric_limits<double>::max();
const double SmallestDenormal = std::numeric_limits<double>::denorm_min();

Exact ToReference(const ZULExpFloatRingExtensionTS& x)
{
    const ZULExpBigIntegerTS& integer = x.GetInteger();
    mpz_class magnitude;
    mpz_import(magnitude.get_mpz_t(), integer.GetNbLimbs(), -1, sizeof(std::uint64_t), 0, 0,
               integer.GetLimbs());
    return {integer.Sign() < 0 ? mpz_class(-magnitude) : magnitude, x.GetExponent()};
}

ZULExpFloatRingExtensionTS FromReference(const Exact& x)
{
    const mpz_srcptr integer = x.m_Mantissa.get_mpz_t();
    return {ZULExpBigIntegerTS::FromLimbs(mpz_limbs_read(integer), mpz_size(integer), x.Sign() < 0),
            x.m_Exponent};
}

bool AreEqual(const ZULExpFloatRingExtensionTS& x, const Exact& y)
{
    return x.Sign() == y.Sign() && Compare(ToReference(x), y) == 0;
}

/// Neither a zero limb at the top nor, the number being kept short, at the low end.
bool IsNormalized(const ZULExpFloatRingExtensionTS& x)
{
    const ZULExpBigIntegerTS& integer = x.GetInteger();
    const std::size_t size = integer.GetNbLimbs();
    return size == 0 || (integer.GetLimbs()[0] != 0 && integer.GetLimbs()[size - 1] != 0);
}

/// Integers of up to some thousand bits, mostly short, with exponents near and far.
Exact RandomNumber(Random& random)
{
    const std::uint64_t kind = random() % 100;
    if (kind < 40) {
        return Exact(RandomDouble(random));
    }
    const std::uint64_t nbLimbs = kind < 90 ? 1 + random() % 6 : (kind < 99 ? random() % 20 : random() % 64);
    mpz_class integer = 0;
    for (std::uint64_t i = 0; i < nbLimbs; ++i) {
        const std::uint64_t pattern = random() % 8;
        const std::uint64_t limb = pattern == 0 ? 0 : (pattern == 1 ? ~std::uint64_t{0} : random());
        integer = (integer << 64) + static_cast<unsigned long>(limb);
    }
    integer >>= random() % 64;
    const std::int64_t range = kind % 4 == 0 ? 2000 : 100;
    const auto exponent = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(2 * range)) - range;
    return {random() % 2 == 0 ? integer : mpz_class(-integer), exponent};
}

/// A pair that is sometimes equal, opposite, or close.
std::pair<Exact, Exact> RandomPair(Random& random)
{
    const Exact x = RandomNumber(random);
    switch (random() % 8) {
        case 0:
            return {x, x};
        case 1:
            return {x, -x};
        case 2:
            return {x, Exact(-x.m_Mantissa + static_cast<int>(random() % 3) - 1, x.m_Exponent)};
        default:
            return {x, RandomNumber(random)};
    }
}

template <class Operation>
void CheckBinary(std::uint64_t seed, Operation operation)
{
    Random random(seed);
    for (int i = 0; i < NbCases; ++i) {
        const auto [x, y] = RandomPair(random);
        const ZULExpFloatRingExtensionTS result = operation(FromReference(x), FromReference(y));
        ASSERT_TRUE(AreEqual(result, operation(x, y)) && IsNormalized(result))
            << x.m_Mantissa.get_str(16) << " * 2^" << x.m_Exponent << " and " << y.m_Mantissa.get_str(16)
            << " * 2^" << y.m_Exponent;
    }
}

/// The nearest double, ties to even, by comparison with the middle between neighbours.
bool IsNearest(double estimate, const Exact& x)
{
    const double magnitude = std::fabs(estimate);
    const Exact wanted = x.Sign() < 0 ? -x : x;
    const double below = std::nextafter(magnitude, 0.0);
    const double above = std::nextafter(magnitude, Infinity);
    // Beyond the largest double lies, for rounding, the next power of two.
    const auto exactly = [](double y) { return std::isinf(y) ? Exact(mpz_class(1), 1024) : Exact(y); };
    const Exact two(2.0);
    std::uint64_t bits = 0;
    std::memcpy(&bits, &magnitude, sizeof bits);
    const bool isTieTaken = (bits & 1U) == 0;
    if (magnitude > 0.0) {
        const int low = Compare(wanted * two, exactly(magnitude) + exactly(below));
        if (low < 0 || (low == 0 && !isTieTaken)) {
            return false;
        }
    }
    if (std::isinf(magnitude)) {
        return std::signbit(estimate) == (x.Sign() < 0);
    }
    const int high = Compare(wanted * two, exactly(magnitude) + exactly(above));
    return (high < 0 || (high == 0 && isTieTaken)) &&
           (x.Sign() == 0 || std::signbit(estimate) == (x.Sign() < 0));
}

template <class T>
T SideOfPlane(const std::vector<T>& m)
{
    const auto minor2 = [&m](std::size_t r, std::size_t s, std::size_t i, std::size_t j) {
        return m[4 * r + i] * m[4 * s + j] - m[4 * r + j] * m[4 * s + i];
    };
    return minor2(0, 1, 0, 1) * minor2(2, 3, 2, 3) - minor2(0, 1, 0, 2) * minor2(2, 3, 1, 3) +
           minor2(0, 1, 0, 3) * minor2(2, 3, 1, 2) + minor2(0, 1, 1, 2) * minor2(2, 3, 0, 3) -
           minor2(0, 1, 1, 3) * minor2(2, 3, 0, 2) + minor2(0, 1, 2, 3) * minor2(2, 3, 0, 1);
}
}  // namespace

TEST(ZULExpFloatRingExtensionTS, AddsExactly)
{
    CheckBinary(1, [](const auto& x, const auto& y) { return x + y; });
}

TEST(ZULExpFloatRingExtensionTS, SubtractsExactly)
{
    CheckBinary(2, [](const auto& x, const auto& y) { return x - y; });
}

TEST(ZULExpFloatRingExtensionTS, MultipliesExactly)
{
    CheckBinary(3, [](const auto& x, const auto& y) { return x * y; });
}

TEST(ZULExpFloatRingExtensionTS, CompoundOperatorsAreTheBinaryOnes)
{
    Random random(4);
    for (int i = 0; i < NbCases / 10; ++i) {
        const auto [x, y] = RandomPair(random);
        ZULExpFloatRingExtensionTS z = FromReference(x);
        ASSERT_TRUE(AreEqual(z += FromReference(y), x + y));
        ASSERT_TRUE(AreEqual(z -= FromReference(y), x));
        ASSERT_TRUE(AreEqual(z *= FromReference(y), x * y));
        ASSERT_TRUE(AreEqual(-z, -(x * y)));
        ASSERT_TRUE(AreEqual(z += z, x * y + x * y));
        ASSERT_TRUE((z -= z).IsZero());
    }
}

TEST(ZULExpFloatRingExtensionTS, ConvertsEveryKindOfDouble)
{
    Random random(5);
    for (int i = 0; i < NbCases; ++i) {
        const double x = i % 2 == 0 ? RandomDouble(random) : FromBits(random());
        if (std::isfinite(x)) {
            const ZULExpFloatRingExtensionTS own(x);
            ASSERT_TRUE(AreEqual(own, Exact(x)) && IsNormalized(own)) << x;
            ASSERT_EQ(own.Estimate(), x);
            ASSERT_EQ(own.IsPositive(), x > 0.0);
            ASSERT_EQ(own.IsZero(), x == 0.0);
        }
    }
    for (std::uint64_t exponent = 0; exponent < 0x7FF; ++exponent) {
        for (const std::uint64_t mantissa : {std::uint64_t{0}, std::uint64_t{1}, ~std::uint64_t{0} >> 12}) {
            for (const std::uint64_t sign : {std::uint64_t{0}, std::uint64_t{1} << 63}) {
                const double x = FromBits(sign | (exponent << 52) | mantissa);
                ASSERT_TRUE(AreEqual(ZULExpFloatRingExtensionTS(x), Exact(x))) << x;
                ASSERT_EQ(ZULExpFloatRingExtensionTS(x).Estimate(), x);
            }
        }
    }
    EXPECT_TRUE(ZULExpFloatRingExtensionTS(-0.0).IsZero());
    EXPECT_FALSE(ZULExpFloatRingExtensionTS(0.0).IsPositive());
    EXPECT_TRUE(ZULExpFloatRingExtensionTS().IsZero());
}

TEST(ZULExpFloatRingExtensionTS, FiniteNumbersRaiseNoFlag)
{
    const ZULExpFloatScope scope;
    const ZULExpFloatRingExtensionTS smallest(SmallestDenormal);
    const ZULExpFloatRingExtensionTS largest(Largest);
    const ZULExpFloatRingExtensionTS x = smallest * smallest - largest * largest + largest;
    EXPECT_EQ(x.Estimate(), -Infinity);
    EXPECT_EQ((smallest * smallest).Estimate(), 0.0);
    EXPECT_EQ((smallest * ZULExpFloatRingExtensionTS(3.5)).Estimate(), 4 * SmallestDenormal);
    EXPECT_EQ(_statusfp() & ~static_cast<unsigned int>(ZULExpFloatDenormal), 0U);
}

TEST(ZULExpFloatRingExtensionTS, NotFiniteCountsAsZeroAndRaisesOverflow)
{
    for (const double x : {Infinity, -Infinity, std::numeric_limits<double>::quiet_NaN(),
                           -std::numeric_limits<double>::signaling_NaN()}) {
        const ZULExpFloatScope scope;
        const ZULExpFloatRingExtensionTS own(x);
        EXPECT_TRUE(own.IsZero());
        EXPECT_EQ(own.Estimate(), 0.0);
        EXPECT_EQ(_statusfp() & ZULExpFloatFault, ZULExpFloatOverflow);
    }
}

TEST(ZULExpFloatRingExtensionTS, EstimateIsTheNearestDouble)
{
    Random random(6);
    for (int i = 0; i < NbCases; ++i) {
        Exact x = RandomNumber(random);
        if (i % 4 == 0) {  // between two doubles, in every range
            const double y = RandomDouble(random);
            const double neighbour = std::nextafter(y, 0.0);
            x = (Exact(y) + Exact(neighbour)) * Exact(mpz_class(1), -1);
            x = x + Exact(mpz_class(static_cast<int>(random() % 3) - 1), -1200);
        }
        const double estimate = FromReference(x).Estimate();
        ASSERT_TRUE(IsNearest(estimate, x))
            << x.m_Mantissa.get_str(16) << " * 2^" << x.m_Exponent << ": " << estimate;
    }
}

TEST(ZULExpFloatRingExtensionTS, EstimateAtTheEnds)
{
    const auto number = [](long mantissa, std::int64_t exponent) {
        return FromReference(Exact(mpz_class(mantissa), exponent)).Estimate();
    };
    EXPECT_EQ(number(1, 1024), Infinity);
    EXPECT_EQ(number(-1, 1024), -Infinity);
    EXPECT_EQ(number((1L << 53) - 1, 971), Largest);
    EXPECT_EQ(number((1L << 54) - 1, 970), Infinity);
    EXPECT_EQ(number((1L << 55) - 3, 969), Largest);
    EXPECT_EQ(number(1, -1074), SmallestDenormal);
    EXPECT_EQ(number(1, -1075), 0.0);
    EXPECT_EQ(number(3, -1076), SmallestDenormal);
    EXPECT_EQ(number(3, -1075), 2 * SmallestDenormal);
    EXPECT_EQ(number(1, -1076), 0.0);
    EXPECT_TRUE(std::signbit(number(-1, -2000)));
    EXPECT_EQ(number((1L << 53) - 1, -1075), std::numeric_limits<double>::min());
    EXPECT_EQ(number(1, std::numeric_limits<std::int64_t>::max()), Infinity);
    EXPECT_EQ(number(-5, std::numeric_limits<std::int64_t>::max()), -Infinity);
    EXPECT_EQ(number(1, std::numeric_limits<std::int64_t>::min()), 0.0);
}

TEST(ZULExpFloatRingExtensionTS, EstimateInAnyRoundingMode)
{
    const ZULExpFloatRingExtensionTS x =
        ZULExpFloatRingExtensionTS(1.0) + ZULExpFloatRingExtensionTS(std::ldexp(1.0, -70));
    const ZULExpFloatRingExtensionTS y =
        ZULExpFloatRingExtensionTS(3.0) * ZULExpFloatRingExtensionTS(SmallestDenormal);
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        const ZULExpFloatScope scope;
        std::fesetround(mode);
        const double ofX = x.Estimate();
        const double ofMinusX = (-x).Estimate();
        const double ofY = y.Estimate();
        const unsigned int status = _statusfp();
        std::fesetround(FE_TONEAREST);
        EXPECT_EQ(ofX, 1.0);
        EXPECT_EQ(ofMinusX, -1.0);
        EXPECT_EQ(ofY, 3 * SmallestDenormal);
        EXPECT_EQ(status, 0U);
    }
}

#if ZUL_HAS_SSE2
TEST(ZULExpFloatRingExtensionTS, DoesNotDependOnTheControlWordNorChangeIt)
{
    using namespace ZULExpProcessor;
    const ZULExpFloatScope restored;
    for (const ControlWord word : {0x8040U, 0xE040U, 0x0000U, 0x7F80U, 0x1F80U}) {
        WriteControlWord(word);  // mostly with exceptions unmasked and denormals treated as zero
        const ZULExpFloatRingExtensionTS x(SmallestDenormal);
        const int sign = (x * x - x).Sign();
        const ZULExpFloatRingExtensionTS third = x + x + x;
        const std::uint64_t limb = third.GetInteger().GetLimbs()[0];
        const double estimate = (x + x).Estimate();
        const ControlWord after = ReadControlWord();
        const ZULExpFloatRingExtensionTS notFinite(Infinity);
        const unsigned int status = _statusfp();
        WriteControlWord(DefaultControlWord);
        EXPECT_EQ(sign, -1);
        EXPECT_EQ(limb, 3U);
        EXPECT_EQ(estimate, 2 * SmallestDenormal);
        EXPECT_EQ(after, word);
        EXPECT_EQ(status, ZULExpFloatOverflow);
        EXPECT_TRUE(notFinite.IsZero());
    }
}
#endif

TEST(ZULExpFloatRingExtensionTS, AlignsFarApartExponents)
{
    const ZULExpFloatRingExtensionTS large(1e300);
    const ZULExpFloatRingExtensionTS small(1e-300);
    const ZULExpFloatRingExtensionTS sum = large + small;
    EXPECT_TRUE(AreEqual(sum, Exact(1e300) + Exact(1e-300)));
    EXPECT_EQ((sum - large).Estimate(), 1e-300);
    EXPECT_EQ((small - sum).Estimate(), -1e300);
    const ZULExpFloatRingExtensionTS farther(ZULExpBigIntegerTS(3), 100000);
    EXPECT_EQ((farther - small - farther).Estimate(), -1e-300);
    EXPECT_EQ((small - farther).Sign(), -1);
}

TEST(ZULExpFloatRingExtensionTS, ExponentsReachTheEndsOf64Bits)
{
    constexpr std::int64_t Top = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t Bottom = std::numeric_limits<std::int64_t>::min();
    const ZULExpFloatRingExtensionTS top(ZULExpBigIntegerTS(5), Top);
    const ZULExpFloatRingExtensionTS bottom(ZULExpBigIntegerTS(7), Bottom);
    const ZULExpFloatRingExtensionTS product = top * bottom;
    EXPECT_EQ(product.GetExponent(), -1);
    EXPECT_EQ(product.Estimate(), 17.5);
    EXPECT_TRUE((top - top).IsZero());
    EXPECT_EQ((bottom + bottom).Sign(), 1);
    EXPECT_EQ((top * ZULExpFloatRingExtensionTS(-1.0)).Sign(), -1);
    EXPECT_THROW(top * ZULExpFloatRingExtensionTS(2.0), std::overflow_error);
    EXPECT_THROW(bottom * ZULExpFloatRingExtensionTS(0.5), std::overflow_error);
    EXPECT_THROW(top + bottom, std::bad_alloc);
    EXPECT_THROW(bottom - top, std::bad_alloc);
    EXPECT_THROW(ZULExpFloatRingExtensionTS(ZULExpBigIntegerTS(1).ShiftedLeft(64), Top), std::overflow_error);
    EXPECT_TRUE((top * ZULExpFloatRingExtensionTS()).IsZero());
    EXPECT_EQ((top + ZULExpFloatRingExtensionTS()).GetExponent(), Top);
}

TEST(ZULExpFloatRingExtensionTS, WholeFormulasAreExact)
{
    Random random(7);
    for (int i = 0; i < NbCases / 10; ++i) {
        std::vector<ZULExpFloatRingExtensionTS> own(16);
        std::vector<Exact> reference(16);
        std::vector<double> values(16);
        const auto scale =
            static_cast<ZULExpReference::Scale>(static_cast<int>(random() % ZULExpReference::NbScales));
        for (std::size_t k = 0; k < 16; ++k) {
            values[k] = k >= 12 && i % 3 == 0 ? values[k - 12] : RandomDouble(random, scale);
            own[k] = values[k];
            reference[k] = Exact(values[k]);
        }
        ASSERT_TRUE(AreEqual(SideOfPlane(own), SideOfPlane(reference)));
    }
}
