#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "ZULExpDynamic.h"
#include "ZULMRSBSPFormulas.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULMRSBSPSignKernels.h"

// The constants of the filters, derived again from the formulas, and attacked.
namespace
{
using namespace ZULTest;

//---------------------------------------------------------------- roundings on the longest path

/// A number that knows how many factors (1 + u) its error may hold, and what the library's number would
/// count.
struct Tracked {
    int m_Roundings = 0;
    std::uint32_t m_Count = 1;

    static Tracked Uncounted() { return {0, 0}; }

    friend Tracked operator+(const Tracked& x, const Tracked& y)
    {
        return {std::max(x.m_Roundings, y.m_Roundings) + 1,
                (ZULExpDynamic(1.0, 1.0, x.m_Count) + ZULExpDynamic(1.0, 1.0, y.m_Count)).GetCount()};
    }
    friend Tracked operator-(const Tracked& x, const Tracked& y)
    {
        return {std::max(x.m_Roundings, y.m_Roundings) + 1,
                (ZULExpDynamic(1.0, 1.0, x.m_Count) - ZULExpDynamic(1.0, 1.0, y.m_Count)).GetCount()};
    }
    friend Tracked operator*(const Tracked& x, const Tracked& y)
    {
        return {x.m_Roundings + y.m_Roundings + 1,
                (ZULExpDynamic(1.0, 1.0, x.m_Count) * ZULExpDynamic(1.0, 1.0, y.m_Count)).GetCount()};
    }
    friend Tracked operator-(const Tracked& x)
    {
        return {x.m_Roundings, (-ZULExpDynamic(1.0, 1.0, x.m_Count)).GetCount()};
    }
};

template <class Kernel>
int RoundingsOf()
{
    std::array<Tracked, Kernel::NbInputs> inputs;
    return Kernel::template Value<Tracked>(inputs).m_Roundings;
}

/// K u M (1 - u)^(t + 1) >= ((1 + u)^t - 1) M', the bound as it is computed against the error, and units to
/// spare for underflow.
void ExpectSufficient(int k, int t, int unitsToSpare)
{
    constexpr long double u = 0x1p-53L;
    const long double error = std::expm1(static_cast<long double>(t) * std::log1p(u));
    const long double bound = static_cast<long double>(k - unitsToSpare) * u *
                              std::exp(static_cast<long double>(t + 1) * std::log1p(-u));
    EXPECT_GE(bound, error) << "K " << k << ", t " << t;
}

TEST(ZULMRSBSPFilterConstants, RoundingsOfTheKernels)
{
    EXPECT_EQ(RoundingsOf<ZULMRSBSPDeterminant2x2Kernel>(), 2);
    EXPECT_EQ(RoundingsOf<ZULMRSBSPDifferenceDeterminantKernel>(), 4);
    EXPECT_EQ(RoundingsOf<ZULMRSBSPDifferenceDotProductKernel>(), 4);
    EXPECT_EQ(RoundingsOf<ZULMRSBSPDotProductKernel>(), 3);
    EXPECT_EQ(RoundingsOf<ZULMRSBSPEquationKernel>(), 3);
    EXPECT_EQ(RoundingsOf<ZULMRSBSPDeterminant3x3Kernel>(), 5);
    EXPECT_EQ(RoundingsOf<ZULMRSBSPNormalAngleKernel>(), 14);
    // The minors, and the sum of two terms, as the cascade takes them.
    const auto minors = ZULMRSBSPFormulas::CrossProduct<Tracked>({}, {});
    for (const Tracked& minor : minors) {
        EXPECT_EQ(minor.m_Roundings, 2);
    }
    EXPECT_EQ((minors[0] * Tracked() + minors[1] * Tracked()).m_Roundings, 4);
}

TEST(ZULMRSBSPFilterConstants, TheConstantsCoverTheRoundingsWithUnitsToSpare)
{
    const auto half = [](int k) { return k / 2; };
    using Large = ZULMRSBSPDeterminant3x3Kernel;
    constexpr int k2x2 = ZULMRSBSPDeterminant2x2Kernel::K;
    ExpectSufficient(k2x2, RoundingsOf<ZULMRSBSPDeterminant2x2Kernel>(), half(k2x2));
    ExpectSufficient(ZULMRSBSPDotProductKernel::K, RoundingsOf<ZULMRSBSPDotProductKernel>(), 2);
    ExpectSufficient(ZULMRSBSPEquationKernel::K, RoundingsOf<ZULMRSBSPEquationKernel>(), 3);
    ExpectSufficient(ZULMRSBSPDifferenceDeterminantKernel::K,
                     RoundingsOf<ZULMRSBSPDifferenceDeterminantKernel>(), 3);
    ExpectSufficient(ZULMRSBSPDifferenceDotProductKernel::K,
                     RoundingsOf<ZULMRSBSPDifferenceDotProductKernel>(), 3);
    ExpectSufficient(Large::MinorK, 2, half(Large::MinorK));
    ExpectSufficient(Large::PartialK, 4, half(Large::PartialK));
    ExpectSufficient(Large::K, RoundingsOf<Large>(), 4);
    ExpectSufficient(ZULMRSBSPNormalAngleKernel::K, RoundingsOf<ZULMRSBSPNormalAngleKernel>(), 7);
}

TEST(ZULMRSBSPFilterConstants, CountsAreAtLeastOneAboveTheRoundings)
{
    const auto check = [](const Tracked& x, int roundings) {
        EXPECT_LE(x.m_Roundings + 1, static_cast<int>(x.m_Count));
        EXPECT_EQ(x.m_Roundings, roundings);
        // The filter's units, and those of an integer form: the count itself, twice for its bit of slack.
        ExpectSufficient(static_cast<int>(x.m_Count) + 2, x.m_Roundings, 2);
        ExpectSufficient(2 * static_cast<int>(x.m_Count), x.m_Roundings, static_cast<int>(x.m_Count) - 1);
    };
    using Quadruple = std::array<Tracked, 4>;
    const Quadruple cartesian;
    const Quadruple through = ZULMRSBSPFormulas::PlaneThroughPoints<Tracked>({}, {}, {});
    check(through[0], 4);
    check(through[1], 4);
    check(through[2], 4);
    check(through[3], 7);
    for (const Quadruple& plane : {cartesian, through}) {
        const Quadruple meeting = ZULMRSBSPFormulas::MeetingPoint(plane, plane, plane);
        const int normal = plane[0].m_Roundings;
        const int offset = plane[3].m_Roundings;
        check(meeting[0], 2 * normal + offset + 5);
        check(meeting[1], 2 * normal + offset + 5);
        check(meeting[2], 2 * normal + offset + 5);
        check(meeting[3], 3 * normal + 5);
        for (const Quadruple& tested : {cartesian, through}) {
            const Tracked side = ZULMRSBSPFormulas::EquationAtHomogeneous(tested, meeting);
            EXPECT_LE(side.m_Roundings + 1, static_cast<int>(side.m_Count));
            const Tracked atPoint = ZULMRSBSPFormulas::EquationAt<Tracked>(tested, {});
            EXPECT_LE(atPoint.m_Roundings + 1, static_cast<int>(atPoint.m_Count));
        }
    }
    // The W of a Cartesian point counts nothing, and has been through nothing.
    const Quadruple point = {Tracked(), Tracked(), Tracked(), Tracked::Uncounted()};
    const Tracked side = ZULMRSBSPFormulas::EquationAtHomogeneous(through, point);
    EXPECT_LE(side.m_Roundings, static_cast<int>(side.m_Count));
    const Tracked order = ZULMRSBSPFormulas::CoordinateDifference(point, point, 0);
    EXPECT_LE(order.m_Roundings, static_cast<int>(order.m_Count));
}

//---------------------------------------------------------------- attack

/// A kernel's polynomial in doubles and exactly.
template <class Kernel>
struct Evaluation {
    using Inputs = std::array<double, Kernel::NbInputs>;

    explicit Evaluation(const Inputs& inputs) : m_Filtered(In<ZULMRSBSPFilteredDouble>(inputs))
    {
        const Dyadic exact = In<Dyadic>(inputs);
        m_ExactSign = exact.Sign();
        m_Error = Dyadic(m_Filtered.m_Value) - exact;
        m_Error = m_Error.Sign() < 0 ? -m_Error : m_Error;
    }

    template <class Number>
    static Number In(const Inputs& inputs)
    {
        std::array<Number, Kernel::NbInputs> numbers;
        std::transform(inputs.begin(), inputs.end(), numbers.begin(), [](double x) { return Number(x); });
        return Kernel::template Value<Number>(numbers);
    }
    /// Whether the error exceeds so many units of the magnitude.
    bool IsErrorAbove(double units) const
    {
        return (m_Error - Dyadic(units * 0x1p-53) * Dyadic(m_Filtered.m_Magnitude)).Sign() > 0;
    }
    /// Whether a filter of so many units would decide wrongly.
    bool IsWrongWith(double units) const
    {
        const ZULMRSBSPSign sign = ZULMRSBSPFilter::Compare(
            m_Filtered.m_Value, ZULMRSBSPFilter::Bound(units, m_Filtered.m_Magnitude));
        return sign.IsDecided() && sign.ToKernelResult() != m_ExactSign;
    }
    /// How many units a filter must at least have not to decide wrongly here.
    double GetUnitsNeeded() const
    {
        const int sign =
            static_cast<int>(m_Filtered.m_Value > 0.0) - static_cast<int>(m_Filtered.m_Value < 0.0);
        return sign != 0 && sign != m_ExactSign
                   ? std::fabs(m_Filtered.m_Value) / m_Filtered.m_Magnitude * 0x1p53
                   : 0.0;
    }

    ZULMRSBSPFilteredDouble m_Filtered;
    int m_ExactSign = 0;
    Dyadic m_Error;
};

/// Moves one number so that the polynomial, linear in it, all but vanishes.
template <class Kernel>
void MakeVanish(std::array<double, Kernel::NbInputs>& inputs, std::size_t index)
{
    std::array<long double, Kernel::NbInputs> numbers;
    std::copy(inputs.begin(), inputs.end(), numbers.begin());
    numbers[index] = 0.0L;
    const long double atZero = Kernel::template Value<long double>(numbers);
    numbers[index] = 1.0L;
    const long double slope = Kernel::template Value<long double>(numbers) - atZero;
    const auto root = static_cast<double>(-atZero / slope);
    if (std::isfinite(root) && std::fabs(root) < 0x1p40 && (root == 0.0 || std::fabs(root) > 0x1p-40)) {
        inputs[index] = root;
    }
}
/// The cosine of the triangle itself.
template <>
void MakeVanish<ZULMRSBSPNormalAngleKernel>(std::array<double, 10>& inputs, std::size_t /*index*/)
{
    std::array<long double, 10> x;
    std::copy(inputs.begin(), inputs.end(), x.begin());
    const auto n = ZULMRSBSPFormulas::CrossProduct(
        ZULMRSBSPFormulas::Triple<long double>{x[3] - x[0], x[4] - x[1], x[5] - x[2]},
        ZULMRSBSPFormulas::Triple<long double>{x[6] - x[0], x[7] - x[1], x[8] - x[2]});
    const long double root = std::fabs(n[2]) / std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (std::isfinite(root) && root > 0x1p-40L) {
        inputs[9] = static_cast<double>(root);
    }
}

struct AttackResult {
    double m_UnitsNeeded = 0.0;   ///< the most that any input asked for
    bool m_WasEverWrong = false;  ///< the kernel's own filter
    bool m_IsErrorAboveRoundings = false;
    double m_MostError = 0.0;  ///< in units of the magnitude, to a quarter
};

/// Climbs from random inputs close to the zeros of the polynomial to those at which the doubles are furthest
/// on the wrong side.
template <class Kernel>
AttackResult Attack(std::uint64_t seed, int nbClimbs, int nbSteps)
{
    Random random(seed);
    AttackResult result;
    const auto look = [&result](const std::array<double, Kernel::NbInputs>& inputs) {
        const Evaluation<Kernel> evaluation(inputs);
        const ZULMRSBSPSign sign = ZULMRSBSPKernel<Kernel>::Filter(inputs);
        result.m_WasEverWrong = result.m_WasEverWrong || evaluation.IsWrongWith(Kernel::K) ||
                                (sign.IsDecided() && sign.ToKernelResult() != evaluation.m_ExactSign);
        // (t units of the true magnitude, which the computed one misses by a factor next to one.)
        result.m_IsErrorAboveRoundings = result.m_IsErrorAboveRoundings ||
                                         evaluation.IsErrorAbove(RoundingsOf<Kernel>() * (1.0 + 0x1p-40));
        while (evaluation.IsErrorAbove(result.m_MostError + 0.25)) {
            result.m_MostError += 0.25;
        }
        if constexpr (requires { Kernel::Cascade(inputs); }) {
            const ZULMRSBSPSign cascade = Kernel::Cascade(inputs);
            result.m_WasEverWrong =
                result.m_WasEverWrong ||
                (cascade.IsDecided() && cascade.ToKernelResult() != evaluation.m_ExactSign);
        }
        const double needed = evaluation.GetUnitsNeeded();
        result.m_UnitsNeeded = std::max(result.m_UnitsNeeded, needed);
        return needed;
    };
    const auto last = static_cast<int>(Kernel::NbInputs) - 1;
    for (int climb = 0; climb < nbClimbs; ++climb) {
        std::array<double, Kernel::NbInputs> best;
        const int spread = random.Integer(0, 3);
        for (double& input : best) {
            input = random.Scaled(-spread, spread);
        }
        MakeVanish<Kernel>(best, static_cast<std::size_t>(random.Integer(0, last)));
        double bestNeeded = look(best);
        for (int step = 0; step < nbSteps; ++step) {
            auto inputs = best;
            double& changed = inputs[static_cast<std::size_t>(random.Integer(0, last))];
            changed = random.OneIn(3) ? random.Scaled(-spread, spread) : random.Nudged(changed, 40);
            if (random.OneIn(2)) {
                const auto index = static_cast<std::size_t>(random.Integer(0, last));
                MakeVanish<Kernel>(inputs, index);
                inputs[index] = random.Nudged(inputs[index], 2);
            }
            const double needed = look(inputs);
            if (needed >= bestNeeded) {
                best = inputs;
                bestNeeded = needed;
            }
        }
    }
    return result;
}

/// No input breaks the filter, nor the bound that it is derived from; the same attack breaks a filter whose
/// constant is a quarter of the roundings.
template <class Kernel>
void ExpectToWithstand(std::uint64_t seed, int nbClimbs, int nbSteps)
{
    const AttackResult result = Attack<Kernel>(seed, nbClimbs, nbSteps);
    EXPECT_FALSE(result.m_WasEverWrong);
    const int t = RoundingsOf<Kernel>();
    EXPECT_FALSE(result.m_IsErrorAboveRoundings) << "of t " << t;
    EXPECT_GT(result.m_MostError, t * 0.25);
    EXPECT_LT(result.m_UnitsNeeded, Kernel::K);
    if constexpr (std::is_same_v<Kernel, ZULMRSBSPDeterminant2x2Kernel>) {
        // Rounding is monotonic: two products never change places, they only become equal.
        EXPECT_EQ(result.m_UnitsNeeded, 0.0);
    } else {
        EXPECT_GT(result.m_UnitsNeeded, t * 0.25);
    }
}

TEST(ZULMRSBSPFilterConstants, AttackOnDeterminant2x2)
{
    ExpectToWithstand<ZULMRSBSPDeterminant2x2Kernel>(64'001, 60, 400);
}
TEST(ZULMRSBSPFilterConstants, AttackOnDifferenceDeterminant)
{
    ExpectToWithstand<ZULMRSBSPDifferenceDeterminantKernel>(64'002, 60, 400);
}
TEST(ZULMRSBSPFilterConstants, AttackOnDifferenceDotProduct)
{
    ExpectToWithstand<ZULMRSBSPDifferenceDotProductKernel>(64'003, 60, 400);
}
TEST(ZULMRSBSPFilterConstants, AttackOnDotProduct)
{
    ExpectToWithstand<ZULMRSBSPDotProductKernel>(64'004, 60, 400);
}
TEST(ZULMRSBSPFilterConstants, AttackOnEquation)
{
    ExpectToWithstand<ZULMRSBSPEquationKernel>(64'005, 60, 400);
}
TEST(ZULMRSBSPFilterConstants, AttackOnDeterminant3x3)
{
    ExpectToWithstand<ZULMRSBSPDeterminant3x3Kernel>(64'006, 60, 400);
}
TEST(ZULMRSBSPFilterConstants, AttackOnNormalAngle)
{
    ExpectToWithstand<ZULMRSBSPNormalAngleKernel>(64'007, 100, 3'000);
}
}  // namespace
