#include "ZULExpQuietDouble.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "ZULTestGeometry.h"
#include "ZULTestSupport.h"

namespace
{
using namespace ZULTest;
using ZULExpProcessor::HasQuietArithmetic;

std::uint64_t BitsOf(double x)
{
    return std::bit_cast<std::uint64_t>(x);
}

struct Results {
    double m_Sum;
    double m_Difference;
    double m_Product;

    bool operator==(const Results& other) const
    {
        return BitsOf(m_Sum) == BitsOf(other.m_Sum) && BitsOf(m_Difference) == BitsOf(other.m_Difference) &&
               BitsOf(m_Product) == BitsOf(other.m_Product);
    }
};

Results Plainly(double x, double y)
{
    const ZULExpFloatScope scope;
    ZULExpProcessor::Pin(x);
    ZULExpProcessor::Pin(y);
    Results results = {x + y, x - y, x * y};
    ZULExpProcessor::Pin(results.m_Sum);
    ZULExpProcessor::Pin(results.m_Difference);
    ZULExpProcessor::Pin(results.m_Product);
    return results;
}
Results Quietly(double x, double y)
{
    const ZULExpQuietDouble p(x);
    const ZULExpQuietDouble q(y);
    return {(p + q).GetValue(), (p - q).GetValue(), (p * q).GetValue()};
}

TEST(ZULExpQuietDouble, ComparesByBits)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(ZULExpQuietDouble().GetMagnitudeBits(), 0U);
    EXPECT_EQ(ZULExpQuietDouble(-0.0).GetMagnitudeBits(), 0U);
    EXPECT_TRUE(ZULExpQuietDouble(-0.0).HasSignBit());
    EXPECT_FALSE(ZULExpQuietDouble(0.0).HasSignBit());
    EXPECT_TRUE(ZULExpQuietDouble(-2.5).HasSignBit());
    EXPECT_LT(ZULExpQuietDouble(-1.0).GetMagnitudeBits(), ZULExpQuietDouble(1.5).GetMagnitudeBits());
    EXPECT_LT(ZULExpQuietDouble(std::numeric_limits<double>::max()).GetMagnitudeBits(),
              ZULExpQuietDouble(-infinity).GetMagnitudeBits());
    EXPECT_EQ(Abs(ZULExpQuietDouble(-2.5)).GetValue(), 2.5);
}

#if ZUL_HAS_SSE2
TEST(ZULExpQuietDouble, RoundsToNearestAndLeavesNoTraceInAnyEnvironment)
{
    if (!HasQuietArithmetic()) {
        SUCCEED() << "this processor has none, and nobody asks it";
        return;
    }
    Random random(71'001);
    for (int i = 0; i < 2'000; ++i) {
        // Neither operands nor results are denormal.
        const double x = random.Scaled(-200, 200);
        const double y = random.OneIn(4) ? random.Nudged(-x, 3) : random.Scaled(-200, 200);
        const Results expected = Plainly(x, y);
        for (const ZULExpProcessor::ControlWord word : HostileControlWords()) {
            Results found{};
            const auto left = RunUnder(word, [&] { found = Quietly(x, y); });
            ASSERT_TRUE(found == expected) << std::hexfloat << x << ' ' << y << " under " << word;
            ASSERT_EQ(left, word) << std::hexfloat << x << ' ' << y;
        }
    }
}

TEST(ZULExpQuietDouble, TrapsOnNothing)
{
    if (!HasQuietArithmetic()) {
        return;
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double largest = std::numeric_limits<double>::max();
    constexpr double denormal = std::numeric_limits<double>::denorm_min();
    const std::array<double, 8> numbers = {
        0.0, 1.0, infinity, -infinity, largest, denormal, -denormal, std::nan(""),
    };
    constexpr ZULExpProcessor::ControlWord allUnmasked = 0x0000;
    for (const double x : numbers) {
        for (const double y : numbers) {
            Results found{};
            double maximum = 0.0;
            const auto left = RunUnder(allUnmasked, [&] {
                found = Quietly(x, y);
                maximum = Maximum(ZULExpQuietDouble(x), ZULExpQuietDouble(y)).GetValue();
            });
            EXPECT_EQ(left, allUnmasked);
            if (std::isnan(x) || std::isnan(y)) {
                EXPECT_TRUE(std::isnan(found.m_Sum) && std::isnan(found.m_Product));
                EXPECT_EQ(BitsOf(maximum), BitsOf(y));
            } else {
                EXPECT_EQ(maximum, std::max(x, y));
            }
        }
    }
}
#endif
}  // namespace
