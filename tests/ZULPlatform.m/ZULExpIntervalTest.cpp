#include "ZULExpInterval.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfenv>
#include <type_traits>

#include "ZULExpEnclosureCases.h"
#include "ZULExpRounding.h"

namespace
{
using namespace ZULExpEnclosureCases;

using ZULExpReference::NbCases;
const double Infinity = std::numeric_limits<double>::infinity();
const double NaN = std::numeric_limits<double>::quiet_NaN();
const double Largest = std::numeric_limits<double>::max();
const double SmallestDenormal = std::numeric_limits<double>::denorm_min();

bool HaveSameBits(double x, double y)
{
    return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
}

void ExpectBounds(const ZULExpInterval& x, double lower, double upper)
{
    EXPECT_EQ(x.LowerBound(), lower);
    EXPECT_EQ(x.UpperBound(), upper);
}
}  // namespace

TEST(ZULExpInterval, SumsAreTheNarrowestEnclosure)
{
    EXPECT_EQ(CheckOperation(Addition, 1, NbCases), "");
}

TEST(ZULExpInterval, DifferencesAreTheNarrowestEnclosure)
{
    EXPECT_EQ(CheckOperation(Subtraction, 2, NbCases), "");
}

TEST(ZULExpInterval, ProductsAreTheNarrowestEnclosure)
{
    EXPECT_EQ(CheckOperation(Multiplication, 3, NbCases), "");
}

TEST(ZULExpInterval, QuotientsAreTheNarrowestEnclosure)
{
    EXPECT_EQ(CheckOperation(Division, 4, NbCases), "");
}

TEST(ZULExpInterval, FormulasEnclose)
{
    EXPECT_EQ(CheckDeterminants(5, NbCases / 4), "");
    EXPECT_EQ(CheckConstants(), "");
}

TEST(ZULExpInterval, Constructs)
{
    ExpectBounds(ZULExpInterval(), 0.0, 0.0);
    ExpectBounds(ZULExpInterval(-3.5), -3.5, -3.5);
    ExpectBounds(ZULExpInterval(1.0, 2.0), 1.0, 2.0);
    ExpectBounds(ZULExpInterval(0.0, -0.0), 0.0, 0.0);
    ExpectBounds(ZULExpInterval(-SmallestDenormal, SmallestDenormal), -SmallestDenormal, SmallestDenormal);
    ExpectBounds(ZULExpInterval(-Infinity, 3.0), -Infinity, 3.0);
    for (const ZULExpInterval& whole :
         {ZULExpInterval(NaN), ZULExpInterval(NaN, 1.0), ZULExpInterval(1.0, NaN), ZULExpInterval(2.0, 1.0),
          ZULExpInterval(SmallestDenormal, -SmallestDenormal), ZULExpInterval(-1.0, -2.0),
          ZULExpInterval(-Infinity, Infinity)}) {
        EXPECT_TRUE(IsWholeLine(whole));
    }
    EXPECT_TRUE(std::is_trivially_copyable_v<ZULExpInterval>);
}

TEST(ZULExpInterval, Signs)
{
    EXPECT_EQ(ZULExpInterval().Sign(), 0);
    EXPECT_EQ(ZULExpInterval(-0.0).Sign(), 0);
    EXPECT_EQ(ZULExpInterval(0.0, -0.0).Sign(), 0);
    EXPECT_EQ(ZULExpInterval(SmallestDenormal).Sign(), 1);
    EXPECT_EQ(ZULExpInterval(-SmallestDenormal).Sign(), -1);
    EXPECT_EQ(ZULExpInterval(1.0, Infinity).Sign(), 1);
    EXPECT_EQ(ZULExpInterval(-Infinity, -1.0).Sign(), -1);
    EXPECT_EQ(ZULExpInterval(Infinity).Sign(), 1);
    EXPECT_EQ(ZULExpInterval(0.0, 1.0).Sign(), ZULExpSignUncertain);
    EXPECT_EQ(ZULExpInterval(-1.0, 0.0).Sign(), ZULExpSignUncertain);
    EXPECT_EQ(ZULExpInterval(-1.0, 1.0).Sign(), ZULExpSignUncertain);
    EXPECT_EQ(ZULExpInterval(0.0, SmallestDenormal).Sign(), ZULExpSignUncertain);
    EXPECT_EQ(ZULExpInterval(NaN).Sign(), ZULExpSignUncertain);
}

TEST(ZULExpInterval, Negates)
{
    ExpectBounds(-ZULExpInterval(1.0, 2.0), -2.0, -1.0);
    ExpectBounds(-ZULExpInterval(-Infinity, 5.0), -5.0, Infinity);
    EXPECT_TRUE(IsWholeLine(-ZULExpInterval(NaN)));
}

TEST(ZULExpInterval, CompoundOperatorsAreTheBinaryOnes)
{
    const ZULExpRounding rounding;
    const ZULExpInterval x(1.0, 2.0);
    const ZULExpInterval y(3.0, 5.0);
    ZULExpInterval z = x;
    ExpectBounds(z += y, 4.0, 7.0);
    ExpectBounds(z -= y, -1.0, 4.0);
    ExpectBounds(z *= y, -5.0, 20.0);
    ExpectBounds(z /= ZULExpInterval(-2.0, -1.0), -20.0, 5.0);
    ZULExpInterval own(-1.0, 2.0);
    const ZULExpInterval& same = own;
    ExpectBounds(own *= same, -2.0, 4.0);
    ExpectBounds(own -= same, -6.0, 6.0);
    ExpectBounds(own += same, -12.0, 12.0);
}

TEST(ZULExpInterval, OverflowReachesInfinityOnOneSideOnly)
{
    const ZULExpRounding rounding;
    ExpectBounds(ZULExpInterval(Largest) + ZULExpInterval(Largest), Largest, Infinity);
    ExpectBounds(ZULExpInterval(-Largest) - ZULExpInterval(Largest), -Infinity, -Largest);
    ExpectBounds(ZULExpInterval(-Largest) * ZULExpInterval(2.0), -Infinity, -Largest);
    ExpectBounds(ZULExpInterval(1.0) / ZULExpInterval(SmallestDenormal), Largest, Infinity);
    const ZULExpInterval tooLarge = ZULExpInterval(Largest) * ZULExpInterval(Largest);
    ExpectBounds(tooLarge - tooLarge, -Infinity, Infinity);
    ExpectBounds(tooLarge / tooLarge, 0.0, Infinity);
    EXPECT_EQ((tooLarge * ZULExpInterval(-3.0)).Sign(), -1);
}

TEST(ZULExpInterval, UnderflowKeepsBothSides)
{
    const ZULExpRounding rounding;
    ExpectBounds(ZULExpInterval(SmallestDenormal) * ZULExpInterval(SmallestDenormal), 0.0, SmallestDenormal);
    ExpectBounds(ZULExpInterval(-SmallestDenormal) * ZULExpInterval(0.5), -SmallestDenormal, 0.0);
    ExpectBounds(ZULExpInterval(SmallestDenormal) / ZULExpInterval(-2.0), -SmallestDenormal, 0.0);
}

TEST(ZULExpInterval, DivisionByAnythingThatHoldsZeroIsTheWholeLine)
{
    const ZULExpRounding rounding;
    for (const ZULExpInterval& divisor :
         {ZULExpInterval(), ZULExpInterval(-0.0), ZULExpInterval(-1.0, 1.0), ZULExpInterval(0.0, 1.0),
          ZULExpInterval(-1.0, 0.0), ZULExpInterval(-Infinity, Infinity), ZULExpInterval(NaN)}) {
        EXPECT_TRUE(IsWholeLine(ZULExpInterval(1.0) / divisor));
        EXPECT_TRUE(IsWholeLine(ZULExpInterval() / divisor));
    }
}

TEST(ZULExpInterval, WithoutValueIsTheWholeLine)
{
    const ZULExpRounding rounding;
    const ZULExpInterval infinite(Infinity);
    const ZULExpInterval nan(NaN);
    EXPECT_TRUE(IsWholeLine(infinite - infinite));
    EXPECT_TRUE(IsWholeLine(infinite * ZULExpInterval()));
    EXPECT_TRUE(IsWholeLine(ZULExpInterval() * ZULExpInterval(-Infinity, 1.0)));
    EXPECT_TRUE(IsWholeLine(infinite / infinite));
    EXPECT_TRUE(IsWholeLine(ZULExpInterval(-Infinity, 5.0) + infinite));
    for (const ZULExpInterval& x :
         {ZULExpInterval(2.0), ZULExpInterval(), ZULExpInterval(-1.0, 3.0), infinite}) {
        EXPECT_TRUE(IsWholeLine(x + nan));
        EXPECT_TRUE(IsWholeLine(x - nan));
        EXPECT_TRUE(IsWholeLine(x * nan));
        EXPECT_TRUE(IsWholeLine(x / nan));
        EXPECT_TRUE(IsWholeLine(nan - x));
        EXPECT_TRUE(IsWholeLine(nan * x));
        EXPECT_TRUE(IsWholeLine(nan / x));
    }
    EXPECT_EQ(nan.Estimate(), 0.0);
}

// Every combination of notable bounds, infinite ones included: the result must hold every combination of the
// operands' bounds that has a value.
TEST(ZULExpInterval, EnclosesNotableBounds)
{
    const std::array<double, 13> notable{
        -Infinity, -Largest,         -2.0, -1.0, -SmallestDenormal, -0.0,    0.0,
        1e-320,    SmallestDenormal, 1.0,  3.0,  Largest,           Infinity};
    const ZULExpRounding rounding;
    for (const double a : notable) {
        for (const double b : notable) {
            for (const double c : notable) {
                for (const double d : notable) {
                    if (a > b || c > d) {
                        continue;
                    }
                    for (const Operation operation : {Addition, Subtraction, Multiplication, Division}) {
                        const ZULExpInterval result =
                            Compute(operation, ZULExpInterval(a, b), ZULExpInterval(c, d));
                        for (const double x : {a, b}) {
                            for (const double y : {c, d}) {
                                if (std::isinf(x) || std::isinf(y) || (operation == Division && y == 0.0)) {
                                    continue;
                                }
                                const Fraction exact = ComputeExactly(operation, x, y);
                                ASSERT_TRUE(CompareWithFraction(result.LowerBound(), exact) <= 0 &&
                                            CompareWithFraction(result.UpperBound(), exact) >= 0)
                                    << Describe(operation, {a, b}, {c, d}, result);
                            }
                        }
                    }
                }
            }
        }
    }
}

TEST(ZULExpInterval, EstimateOfAPointIsThatPoint)
{
    Random random(6);
    for (int i = 0; i < NbCases; ++i) {
        const double x = ZULExpReference::RandomDouble(random);
        ASSERT_TRUE(HaveSameBits(ZULExpInterval(x).Estimate(), x)) << x;
    }
    for (const double x :
         {0.0, SmallestDenormal, -SmallestDenormal, Largest, -Largest, Infinity, -Infinity}) {
        EXPECT_TRUE(HaveSameBits(ZULExpInterval(x).Estimate(), x)) << x;
    }
}

TEST(ZULExpInterval, EstimateLiesInsideNearTheMiddle)
{
    Random random(7);
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        for (int i = 0; i < NbCases / 4; ++i) {
            const Bounds x = RandomBounds(random);
            double estimate = 0.0;
            {
                const ZULExpFloatScope scope;
                std::fesetround(mode);
                estimate = ZULExpInterval(x.m_Lower, x.m_Upper).Estimate();
            }
            ASSERT_TRUE(x.m_Lower <= estimate && estimate <= x.m_Upper) << x.m_Lower << ' ' << x.m_Upper;
            const double fromMiddle =
                std::fabs((estimate * 0.5 - x.m_Lower * 0.5) - (x.m_Upper * 0.5 - estimate * 0.5));
            const double largest = std::max(std::fabs(x.m_Lower), std::fabs(x.m_Upper));
            ASSERT_LE(fromMiddle, 2.0 * (largest - std::nextafter(largest, 0.0)) + 2.0 * SmallestDenormal);
        }
    }
    EXPECT_EQ(ZULExpInterval(1.0, 3.0).Estimate(), 2.0);
    EXPECT_EQ(ZULExpInterval(-Largest, Largest).Estimate(), 0.0);
    EXPECT_EQ(ZULExpInterval(Largest / 2, Largest).Estimate(), Largest * 0.75);
    EXPECT_EQ(ZULExpInterval(-Infinity, Infinity).Estimate(), 0.0);
    EXPECT_EQ(ZULExpInterval(2.0, Infinity).Estimate(), 2.0);
    EXPECT_EQ(ZULExpInterval(-Infinity, -2.0).Estimate(), -2.0);
}

#if ZUL_HAS_SSE2
TEST(ZULExpInterval, QuestionsDoNotDependOnTheControlWordNorChangeIt)
{
    using namespace ZULExpProcessor;
    const ZULExpFloatScope restored;
    for (const ControlWord word : {0x8040U, 0xE040U, 0x0000U, 0x7F80U}) {
        WriteControlWord(word);  // mostly with exceptions unmasked and denormals treated as zero
        const int sign = ZULExpInterval(SmallestDenormal, 1.0).Sign();
        const int uncertain = ZULExpInterval(-SmallestDenormal, SmallestDenormal).Sign();
        const double estimate = ZULExpInterval(SmallestDenormal, ZULExpReference::FromBits(3)).Estimate();
        const double lower = ZULExpInterval(SmallestDenormal).LowerBound();
        const bool isOutOfOrder = IsWholeLine(ZULExpInterval(ZULExpReference::FromBits(2), SmallestDenormal));
        const ControlWord after = ReadControlWord();
        WriteControlWord(DefaultControlWord);
        EXPECT_EQ(sign, 1);
        EXPECT_EQ(uncertain, ZULExpSignUncertain);
        EXPECT_TRUE(HaveSameBits(estimate, ZULExpReference::FromBits(2)));
        EXPECT_TRUE(HaveSameBits(lower, SmallestDenormal));
        EXPECT_TRUE(isOutOfOrder);
        EXPECT_EQ(after, word);
    }
}
#endif
