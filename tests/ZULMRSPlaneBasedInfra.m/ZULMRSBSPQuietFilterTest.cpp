#include "ZULMRSBSPQuietFilter.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>

#include "ZULMRSBSPPredicatesKit.h"
#include "ZULMRSBSPSignKernels.h"

// The filter in quiet arithmetic: what it decides is right, what it should decide it does, in any
// environment.
namespace
{
using namespace ZULTest;
using Kernel = ZULMRSBSPDeterminant3x3Kernel;
using Inputs = std::array<double, 9>;

/// Whether the processor has quiet arithmetic: just then is the filter asked. Elsewhere that is all there is
/// to show.
bool IsAsked()
{
    const bool isAsked = ZULExpProcessor::HasQuietArithmetic();
    EXPECT_EQ(ZULMRSBSPKernel<Kernel>::Quietly({1, 0, 0, 0, 1, 0, 0, 0, 1}).IsDecided(), isAsked);
    return isAsked;
}

int ExactSign(const Inputs& x)
{
    const std::array<DyadicPoint, 3> rows = {ToDyadic(Point3{x[0], x[1], x[2]}),
                                             ToDyadic(Point3{x[3], x[4], x[5]}),
                                             ToDyadic(Point3{x[6], x[7], x[8]})};
    return DyadicDeterminant(rows, 0, 1, 2).Sign();
}

std::string Text(const Inputs& x)
{
    std::ostringstream text;
    text << std::hexfloat;
    for (const double number : x) {
        text << number << ' ';
    }
    return text.str();
}

/// Not wrong; and decided where it must be.
void ExpectRight(const Inputs& x, bool mustDecide = false)
{
    const ZULMRSBSPSign sign = Kernel::Quietly(x);
    EXPECT_TRUE(sign.IsDecided() || !mustDecide) << Text(x);
    EXPECT_TRUE(!sign.IsDecided() || sign.ToKernelResult() == ExactSign(x)) << Text(x);
}

/// The last row all but a combination of the others.
Inputs NearlyFlat(Random& random, int lowest, int highest, int mostSteps)
{
    Inputs x{};
    for (std::size_t i = 0; i < 6; ++i) {
        x[i] = random.Scaled(lowest, highest);
    }
    const double s = random.Between(-2.0, 2.0);
    const double t = random.Between(-2.0, 2.0);
    for (std::size_t i = 0; i < 3; ++i) {
        x[6 + i] = random.Nudged(s * x[i] + t * x[3 + i], mostSteps);
    }
    return x;
}

TEST(ZULMRSBSPQuietFilter, DecidesWhatIsNotFlat)
{
    if (!IsAsked()) {
        return;
    }
    Random random(72'001);
    for (int i = 0; i < 20'000; ++i) {
        Inputs x{};
        for (double& number : x) {
            number = random.Between(-100.0, 100.0);
        }
        const double value = std::fabs(Kernel::Value<double>(x));
        ExpectRight(x, value > 1e-6);
    }
}

TEST(ZULMRSBSPQuietFilter, IsNotWrongNearZero)
{
    if (!IsAsked()) {
        return;
    }
    Random random(72'002);
    int nbDecided = 0;
    const int nbCases = 400'000 / ZUL_TEST_CASES_DIVISOR;
    for (int i = 0; i < nbCases; ++i) {
        // From one unit to where the bound lies, so that both answers occur on both sides of it.
        const Inputs x = NearlyFlat(random, -3, 3, 1 << random.Integer(0, 7));
        ExpectRight(x);
        nbDecided += static_cast<int>(Kernel::Quietly(x).IsDecided());
    }
    EXPECT_GT(nbDecided, nbCases / 100);
    EXPECT_LT(nbDecided, nbCases * 99 / 100);
}

TEST(ZULMRSBSPQuietFilter, BoundCoversTheErrorOfTheFormula)
{
    // Six products of three, each off by the roundings on its path: units of the product of the largest.
    constexpr double nbProducts = 6;
    constexpr double roundings = 5;
    constexpr double roundingsOfBound = 4;
    constexpr double u = 0x1p-53;
    const double error = nbProducts * std::expm1(roundings * std::log1p(u));
    const double bound =
        ZULMRSBSPQuietFilter::DeterminantUnits * u * std::exp(roundingsOfBound * std::log1p(-u));
    EXPECT_GT(bound - error, 9 * u);
    // Products taken as zero, or denormal numbers: in units of the product of the largest.
    const double least = ZULMRSBSPQuietFilter::LeastLargest;
    const double flushedPairs = nbProducts * 0x1p-1022 / (least * least);
    const double flushedProducts = 9 * 0x1p-1022 / (least * least * least);
    const double denormalInputs = 9 * 2 * 0x1p-1022 / least;
    EXPECT_LT(flushedPairs + flushedProducts + denormalInputs, u);
}

TEST(ZULMRSBSPQuietFilter, DecidesShortZeros)
{
    if (!IsAsked()) {
        return;
    }
    Random random(72'003);
    for (int i = 0; i < 20'000; ++i) {
        // 17 bits in all three rows, the third a sum or a difference of the others; scaled by rows.
        Inputs x{};
        const double s = random.Sign();
        for (std::size_t k = 0; k < 3; ++k) {
            x[k] = random.Integer(-65'535, 65'535);
            x[3 + k] = random.Integer(-65'535, 65'535);
            x[6 + k] = x[k] + s * x[3 + k];
        }
        ExpectRight(x, true);
        for (std::size_t k = 0; k < 9; ++k) {
            x[k] = std::ldexp(x[k], k < 3 ? -280 : (k < 6 ? 250 : 17));
        }
        ExpectRight(x, true);
        x[static_cast<std::size_t>(random.Integer(0, 8))] *= -1.0;
        ExpectRight(x, true);
    }
}

TEST(ZULMRSBSPQuietFilter, ShortEndsAtSeventeenBits)
{
    if (!IsAsked()) {
        return;
    }
    using ZULMRSBSPQuietFilter::BitsBeyondShort;
    using ZULMRSBSPQuietFilter::LargestOf;
    using ZULMRSBSPQuietFilter::MakeRow;
    const auto isShort = [](double x, double y, double z) {
        const auto row = MakeRow(x, y, z);
        return BitsBeyondShort(row, LargestOf(row)) == 0;
    };
    EXPECT_TRUE(isShort(131'071.0, 1.0, -131'071.0));
    EXPECT_TRUE(isShort(131'072.0, 2.0, 0.0));
    EXPECT_FALSE(isShort(131'072.0, 1.0, 0.0));
    EXPECT_FALSE(isShort(131'071.0, 0.5, 0.0));
    EXPECT_TRUE(isShort(-65'535.5, 0.5, -0.0));
    EXPECT_FALSE(isShort(1.0, 0x1p-60, 0.0));
    EXPECT_FALSE(isShort(1.0, std::numeric_limits<double>::denorm_min(), 0.0));
    EXPECT_TRUE(isShort(0x1p300, 0x1p284, 0.0));
    EXPECT_FALSE(isShort(0x1p300, 0x1p283, 0.0));
    // The greatest values that the sums can have: 6 products of (2^17 - 1)^3 on one side.
    const double most = 131'071.0;
    ExpectRight({most, most, -most, -most, most, most, most, -most, most}, true);
    ExpectRight({most, most, most, most, most, most, most, most, most - 1}, true);
}

TEST(ZULMRSBSPQuietFilter, KnowsTheEdgesOfItsRange)
{
    if (!IsAsked()) {
        return;
    }
    const auto decides = [](double scale) {
        Inputs x = {3, 1, 2, 1, 4, 1, 2, 1, 5};
        x[0] = std::ldexp(1.0, 2);  // the largest of the first row
        for (std::size_t i = 0; i < 3; ++i) {
            x[i] *= scale;
        }
        const ZULMRSBSPSign sign = Kernel::Quietly(x);
        EXPECT_TRUE(!sign.IsDecided() || sign.IsPositive());
        return sign.IsDecided();
    };
    EXPECT_TRUE(decides(0x1p298));
    EXPECT_FALSE(decides(0x1p299));
    EXPECT_TRUE(decides(0x1p-302));
    EXPECT_FALSE(decides(0x1p-303));
    const auto isDecided = [](const Inputs& x) { return Kernel::Quietly(x).IsDecided(); };
    EXPECT_FALSE(isDecided({0, 0, 0, 1, 4, 1, 2, 1, 5}));
    for (const double bad : {Infinity, -Infinity, NotANumber, -NotANumber}) {
        for (std::size_t i = 0; i < 9; ++i) {
            Inputs x = {3, 1, 2, 1, 4, 1, 2, 1, 5};
            x[i] = bad;
            EXPECT_FALSE(isDecided(x)) << bad << " at " << i;
            x = {3, 0, 0, 0, 4, 0, 0, 0, 5};
            x[i] = bad;
            EXPECT_FALSE(isDecided(x)) << bad << " at " << i;
        }
    }
}

TEST(ZULMRSBSPQuietFilter, IsNotWrongInEveryRegime)
{
    if (!IsAsked()) {
        return;
    }
    Random random(72'004);
    for (const Regime regime : AllRegimes) {
        for (int i = 0; i < 20'000 / ZUL_TEST_CASES_DIVISOR + 1; ++i) {
            Inputs x{};
            for (double& number : x) {
                number = random.Number(regime);
            }
            ExpectRight(x);
        }
    }
}

#if ZUL_HAS_SSE2
TEST(ZULMRSBSPQuietFilter, IsNotWrongInAnyEnvironment)
{
    if (!IsAsked()) {
        return;
    }
    Random random(72'005);
    const double denormal = std::numeric_limits<double>::min() / 2;
    for (int i = 0; i < 4'000; ++i) {
        Inputs x = NearlyFlat(random, -3, 3, 1 << random.Integer(0, 9));
        if (random.OneIn(3)) {
            // Products that all but vanish, beside numbers that the processor may take as zero.
            const int scale = random.Integer(-310, 310);
            for (std::size_t k = 0; k < 9; ++k) {
                x[k] = random.OneIn(4) ? random.Sign() * denormal : std::ldexp(x[k], k < 3 ? scale : -scale);
            }
        }
        const int exact = ExactSign(x);
        for (const ZULExpProcessor::ControlWord word : HostileControlWords()) {
            ZULMRSBSPSign sign;
            const auto left = RunUnder(word, [&] { sign = Kernel::Quietly(x); });
            ASSERT_EQ(left, word) << Text(x);
            ASSERT_TRUE(!sign.IsDecided() || sign.ToKernelResult() == exact) << Text(x) << " under " << word;
        }
    }
}
#endif
}  // namespace
