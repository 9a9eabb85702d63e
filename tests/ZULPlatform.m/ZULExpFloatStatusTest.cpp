#include "ZULExpFloatStatus.h"

#include <gtest/gtest.h>

#include <array>
#include <cfenv>
#include <limits>
#include <stdexcept>
#include <thread>

#include "ZULExpInterval.h"
#include "ZULExpRounding.h"

namespace
{
using namespace ZULExpProcessor;

double Pinned(double value)
{
    Pin(value);
    return value;
}

// Each of them computes where the compiler cannot see it.
double Plus(double x, double y)
{
    return Pinned(Pinned(x) + Pinned(y));
}
double Times(double x, double y)
{
    return Pinned(Pinned(x) * Pinned(y));
}
double Over(double x, double y)
{
    return Pinned(Pinned(x) / Pinned(y));
}

const double Largest = std::numeric_limits<double>::max();
const double Smallest = std::numeric_limits<double>::min();

bool IsRoundingUp()
{
    return Plus(1.0, 1e-30) > 1.0 && Plus(-1.0, 1e-30) > -1.0;
}
bool IsRoundingToNearest()
{
    return Plus(1.0, 1e-30) == 1.0 && Plus(1.0, -1e-30) == 1.0 && Plus(-1.0, 1e-30) == -1.0;
}
}  // namespace

TEST(ZULExpFloatStatus, MapsEachFlag)
{
    const ZULExpFloatScope scope;
    EXPECT_EQ(_statusfp(), 0U);
    Over(1.0, 3.0);
    EXPECT_EQ(_clearfp(), ZULExpFloatInexact);
    Times(Largest, 2.0);
    EXPECT_EQ(_clearfp(), ZULExpFloatInexact | ZULExpFloatOverflow);
    Times(Smallest, Pinned(0.3));
    EXPECT_EQ(_clearfp(), ZULExpFloatInexact | ZULExpFloatUnderflow);
    Over(1.0, 0.0);
    EXPECT_EQ(_clearfp(), ZULExpFloatZeroDivide);
    Over(0.0, 0.0);
    EXPECT_EQ(_clearfp(), ZULExpFloatInvalid);
    Plus(1.0, 2.0);
    EXPECT_EQ(_clearfp(), 0U);
}

#if ZUL_HAS_SSE2
TEST(ZULExpFloatStatus, ShowsDenormalOperands)
{
    const ZULExpFloatScope scope;
    const double smallestDenormal = std::numeric_limits<double>::denorm_min();
    Plus(smallestDenormal, smallestDenormal);
    EXPECT_EQ(_statusfp(), ZULExpFloatDenormal);
    EXPECT_TRUE(scope.IsFaulted());
}
#endif

TEST(ZULExpFloatStatus, NumbersAreThoseOfTheInterface)
{
    EXPECT_EQ(ZULExpFloatInexact, 0x1U);
    EXPECT_EQ(ZULExpFloatUnderflow, 0x2U);
    EXPECT_EQ(ZULExpFloatOverflow, 0x4U);
    EXPECT_EQ(ZULExpFloatZeroDivide, 0x8U);
    EXPECT_EQ(ZULExpFloatInvalid, 0x10U);
    EXPECT_EQ(ZULExpFloatDenormal, 0x80000U);
    EXPECT_EQ(ZULExpFloatFault, ZULExpFloatUnderflow | ZULExpFloatOverflow | ZULExpFloatDenormal);
}

TEST(ZULExpFloatStatus, ClearReturnsWhatWasSetAndKeepsTheMode)
{
    const ZULExpRounding rounding;
    Times(Largest, 2.0);
    EXPECT_EQ(_clearfp(), ZULExpFloatInexact | ZULExpFloatOverflow);
    EXPECT_EQ(_statusfp(), 0U);
    EXPECT_TRUE(IsRoundingUp());
}

TEST(ZULExpFloatStatus, IsFaultedBySpoiledBoundsOnly)
{
    const ZULExpFloatScope scope;
    Over(1.0, 3.0);
    Over(1.0, 0.0);
    Over(0.0, 0.0);
    EXPECT_FALSE(scope.IsFaulted());
    Times(Smallest, Pinned(0.3));
    EXPECT_TRUE(scope.IsFaulted());
    _clearfp();
    EXPECT_FALSE(scope.IsFaulted());
    Times(Largest, -2.0);
    EXPECT_TRUE(scope.IsFaulted());
}

TEST(ZULExpFloatStatus, OverflowIsRaisedOnRequest)
{
    const ZULExpFloatScope scope;
    RaiseOverflow();
    EXPECT_EQ(_statusfp(), ZULExpFloatOverflow);
    EXPECT_TRUE(IsRoundingToNearest());
}

TEST(ZULExpFloatStatus, BelongsToTheThread)
{
    const ZULExpFloatScope scope;
    std::thread([] {
        const ZULExpRounding rounding;
        Times(Largest, 2.0);
        EXPECT_NE(_statusfp(), 0U);
    }).join();
    EXPECT_EQ(_statusfp(), 0U);
    EXPECT_TRUE(IsRoundingToNearest());
}

TEST(ZULExpRounding, RoundsUpwardsWhileAliveAndNests)
{
    EXPECT_TRUE(IsRoundingToNearest());
    {
        const ZULExpRounding outer;
        EXPECT_TRUE(IsRoundingUp());
        {
            const ZULExpFloatScope nearest;
            EXPECT_TRUE(IsRoundingToNearest());
            {
                const ZULExpRounding inner;
                EXPECT_TRUE(IsRoundingUp());
            }
            EXPECT_TRUE(IsRoundingToNearest());
        }
        EXPECT_TRUE(IsRoundingUp());
    }
    EXPECT_TRUE(IsRoundingToNearest());
}

TEST(ZULExpRounding, IsRestoredWhenAnExceptionLeaves)
{
    try {
        const ZULExpRounding rounding;
        const ZULExpFloatScope scope;
        const ZULExpRounding again;
        throw std::runtime_error("leaves");
    } catch (const std::runtime_error&) {
        EXPECT_TRUE(IsRoundingToNearest());
    }
}

TEST(ZULExpRounding, RestoresEveryModeAndFlagOfTheCaller)
{
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        const ZULExpFloatScope scope;
        ASSERT_EQ(std::fesetround(mode), 0);
        Over(1.0, 0.0);
        {
            const ZULExpRounding rounding;
            EXPECT_EQ(_statusfp(), 0U);
            EXPECT_TRUE(IsRoundingUp());
            Times(Largest, 2.0);
        }
        EXPECT_EQ(std::fegetround(), mode);
        EXPECT_EQ(_statusfp(), ZULExpFloatZeroDivide);
        {
            const ZULExpFloatScope inner;
            EXPECT_EQ(_statusfp(), 0U);
            EXPECT_TRUE(IsRoundingToNearest());
            Times(Largest, 2.0);
        }
        EXPECT_EQ(std::fegetround(), mode);
        EXPECT_EQ(_statusfp(), ZULExpFloatZeroDivide);
    }
}

#if ZUL_HAS_SSE2
// Flush to zero, denormals are zero, all four rounding modes, unmasked exceptions and raised flags.
TEST(ZULExpRounding, NeitherSeesNorChangesTheCallersControlWord)
{
    constexpr ControlWord FlushToZero = 0x8000;
    constexpr ControlWord DenormalsAreZero = 0x0040;
    constexpr ControlWord Masks = 0x1F80;
    const ZULExpFloatScope restored;
    for (const ControlWord masks : {Masks, ControlWord{0}}) {
        for (const ControlWord mode : {0x0000U, 0x2000U, 0x4000U, 0x6000U}) {
            for (const ControlWord denormals :
                 {0U, FlushToZero, DenormalsAreZero, FlushToZero | DenormalsAreZero}) {
                const ControlWord word = masks | mode | denormals | (masks != 0 ? 0x21U : 0U);
                WriteControlWord(word);
                bool isUp = false;
                bool isNearest = false;
                double half = 0.0;
                {
                    const ZULExpRounding rounding;
                    isUp = IsRoundingUp();
                    Over(0.0, 0.0);
                    Times(Largest, 2.0);
                }
                const ControlWord afterRounding = ReadControlWord();
                {
                    const ZULExpFloatScope scope;
                    isNearest = IsRoundingToNearest();
                    half = Times(Smallest, 0.5);
                    half = Times(half, 2.0);
                }
                const ControlWord afterScope = ReadControlWord();
                WriteControlWord(DefaultControlWord);
                EXPECT_TRUE(isUp && isNearest);
                EXPECT_EQ(half, Smallest);
                EXPECT_EQ(afterRounding, word);
                EXPECT_EQ(afterScope, word);
            }
        }
    }
}

TEST(ZULExpFloatStatus, OverflowIsRaisedWithoutTrap)
{
    const ZULExpFloatScope restored;
    WriteControlWord(0);  // every exception unmasked
    RaiseOverflow();
    const unsigned int status = _statusfp();
    WriteControlWord(DefaultControlWord);
    EXPECT_EQ(status, ZULExpFloatOverflow);
}
#endif

TEST(ZULExpFloatStatus, PairsComputeEachForItself)
{
    DoublePair x = MakePair(1.0, -2.0);
    Pin(x);
    EXPECT_EQ(First(x), 1.0);
    EXPECT_EQ(Second(x), -2.0);
    EXPECT_EQ(First(Exchanged(x)), -2.0);
    EXPECT_EQ(Second(BothFirst(x)), 1.0);
    EXPECT_EQ(First(BothSecond(x)), -2.0);
    EXPECT_EQ(Second(Negated(x)), 2.0);
    EXPECT_EQ(First(Sum(x, Exchanged(x))), -1.0);
    EXPECT_EQ(Second(Product(x, x)), 4.0);
    EXPECT_EQ(Second(Quotient(MakePair(1.0, 1.0), x)), -0.5);
    EXPECT_EQ(Second(Maximum(x, Exchanged(x))), 1.0);
    const DoublePair choice = ChooseBySign(x, MakePair(3.0, 4.0), MakePair(5.0, 6.0));
    EXPECT_EQ(First(choice), 3.0);
    EXPECT_EQ(Second(choice), 6.0);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(HasNaN(x), 0);
    EXPECT_NE(HasNaN(MakePair(0.0, nan)), 0);
    EXPECT_EQ(HasNaN(x, x, x, x), 0);
    EXPECT_NE(HasNaN(x, x, MakePair(nan, 0.0), x), 0);
}
