#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPPoint.h"
#include "ZULMRSLeafBox.h"
#include "ZULMRSPlace.h"
#include "ZULTestDyadic.h"
#include "ZULTestGeometry.h"
#include "ZULTestSupport.h"

// What the cutter decides from doubles: the constants, derived again, and attacks on places, heights and
// boxes.
namespace
{
using namespace ZULTest;

constexpr int NbCases = 40'000 / ZUL_TEST_CASES_DIVISOR;
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::array Regimes = {Regime::Easy,     Regime::Degenerate, Regime::NearDegenerate, Regime::Tiny,
                                Regime::Denormal, Regime::Huge,       Regime::Mixed};

int SignOf(const Dyadic& x)
{
    return x.Sign();
}
bool IsLess(const Dyadic& x, const Dyadic& y)
{
    return (x - y).Sign() < 0;
}
Dyadic Abs(const Dyadic& x)
{
    return x.Sign() < 0 ? -x : x;
}
template <std::size_t Size>
bool AreFinite(const std::array<double, Size>& numbers)
{
    return std::all_of(numbers.begin(), numbers.end(), [](double x) { return std::isfinite(x); });
}

//---------------------------------------------------------------- constants

/// Roundings on the longest path from an input.
struct Tracked {
    int m_Roundings = 0;

    friend Tracked operator+(const Tracked& x, const Tracked& y)
    {
        return {std::max(x.m_Roundings, y.m_Roundings) + 1};
    }
    friend Tracked operator*(const Tracked& x, const Tracked& y)
    {
        return {x.m_Roundings + y.m_Roundings + 1};
    }
};

constexpr long double U = 0x1p-53L;
/// (1 + u)^roundings - 1; negative roundings are divided by.
long double Growth(int roundings)
{
    return std::expm1(static_cast<long double>(roundings) * std::log1p(roundings < 0 ? -U : U));
}
/// (1 - u)^roundings
long double Shrinking(int roundings)
{
    return std::exp(static_cast<long double>(roundings) * std::log1p(-U));
}

TEST(ZULMRSHeightFunction, TheConstantsCoverTheRoundings)
{
    const Tracked product = Tracked() * Tracked();
    const int t = ZULMRSHeightFunction::Sum(product, product, product, Tracked()).m_Roundings;
    EXPECT_EQ(t, 3);
    // The magnitude, its product and two sums; then the difference of value and bound.
    const long double bound = static_cast<long double>(ZULMRSHeightFunction::Units) * U * Shrinking(t + 3);
    EXPECT_GT(bound * (1.0L - U), Growth(t) + U * (1.0L + Growth(t)));
    // Two sums for the steepness, two products, two sums, the difference.
    EXPECT_GT(static_cast<long double>(ZULMRSHeightFunction::Room) * Shrinking(7), 1.0L);
}

TEST(ZULMRSLeafBox, TheConstantsCoverTheRoundings)
{
    // As Locate() adds.
    const Tracked product = Tracked() * Tracked();
    const int t = (((Tracked() + product) + product) + product).m_Roundings;
    EXPECT_EQ(t, 4);
    EXPECT_GT(16.0L * U * Shrinking(t + 2), Growth(t));
}

TEST(ZULMRSPlace, TheConstantsCoverTheRoundings)
{
    // Everything in the error, its denominator included, and what the coordinate itself is off.
    EXPECT_GT((1.0L + 1e-9L) * Shrinking(12), 1.0L + 4.0L * U);
    EXPECT_GT(1e-15L * Shrinking(4), 3.0L * U);
    EXPECT_GT(ZULMRSPlace::Underflow * ZULMRSPlace::LeastW, 0x1p-1074 * 0x1p20);
}

//---------------------------------------------------------------- heights

struct HeightCase {
    std::array<double, 4> m_Equation;
    ZULMRSPlace m_Place;
};

/// Anything, or such that value and bound are next to each other.
HeightCase MakeHeightCase(Random& random, Regime regime)
{
    HeightCase result{random.Plane(regime), {random.Point(regime), 0.0}};
    auto& [a, b, c, d] = result.m_Equation;
    const auto& [x, y, z] = result.m_Place.m_At;
    const double steepness = std::fabs(a) + std::fabs(b) + std::fabs(c);
    const double least = std::fabs(a * x) + std::fabs(b * y) + std::fabs(c * z);
    if (random.OneIn(2)) {
        result.m_Place.m_Error = random.OneIn(3) ? std::fabs(random.Number(regime))
                                                 : std::fabs(random.Scaled(-60, 2)) * least / steepness;
        result.m_Place.m_Error = std::isnan(result.m_Place.m_Error) ? Infinity : result.m_Place.m_Error;
    }
    if (!random.OneIn(4)) {
        const double atEdge =
            random.Sign() * (1.0 + random.Between(-0.002, 0.002)) * steepness * result.m_Place.m_Error;
        d = random.Nudged(-(a * x + b * y + c * z) + (std::isfinite(atEdge) ? atEdge : 0.0), 20);
    }
    return result;
}

/// What a height may be, exactly.
struct HeightRange {
    explicit HeightRange(const HeightCase& subject)
    {
        Dyadic steepness;
        Dyadic value(subject.m_Equation[3]);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            steepness = steepness + Abs(Dyadic(subject.m_Equation[axis]));
            value = value + Dyadic(subject.m_Equation[axis]) * Dyadic(subject.m_Place.m_At[axis]);
        }
        const Dyadic reach = steepness * Dyadic(subject.m_Place.m_Error);
        m_Least = value - reach;
        m_Greatest = value + reach;
        m_Sign = SignOf(value);
    }
    Dyadic m_Least;
    Dyadic m_Greatest;
    int m_Sign = 0;
};

TEST(ZULMRSHeightFunction, WithstandsAnAttack)
{
    Random random(71'001);
    int nbDecided = 0;
    int nbWrongWithoutBound = 0;
    for (const Regime regime : Regimes) {
        for (int index = 0; index < NbCases; ++index) {
            const HeightCase subject = MakeHeightCase(random, regime);
            if (!AreFinite(subject.m_Equation) || !std::isfinite(subject.m_Place.m_Error)) {
                EXPECT_EQ(ZULMRSHeightFunction(subject.m_Equation).SideOf(subject.m_Place), 0);
                continue;
            }
            const ZULMRSHeightFunction heightAt(subject.m_Equation);
            const HeightRange range(subject);
            const int side = heightAt.SideOf(subject.m_Place);
            ASSERT_TRUE(side <= 0 || range.m_Least.Sign() > 0) << index;
            ASSERT_TRUE(side >= 0 || range.m_Greatest.Sign() < 0) << index;
            nbDecided += side != 0 ? 1 : 0;
            const auto [value, error] = heightAt(subject.m_Place);
            const double least = value - error;
            ASSERT_TRUE(!std::isfinite(least) || !IsLess(range.m_Least, Dyadic(least))) << index;
            const int guess = static_cast<int>(value > 0.0) - static_cast<int>(value < 0.0);
            nbWrongWithoutBound += guess != 0 && guess != range.m_Sign ? 1 : 0;
        }
    }
    EXPECT_GT(nbDecided, NbCases / 10);
    EXPECT_GT(nbWrongWithoutBound, 0);
}

TEST(ZULMRSHeightFunction, DecidesNothingFromWhatIsNotFinite)
{
    for (const double strange : {Infinity, -Infinity, NaN}) {
        for (std::size_t position = 0; position < 4; ++position) {
            std::array<double, 4> equation{0.5, 2.0, -1.0, 3.0};
            equation[position] = strange;
            EXPECT_EQ(ZULMRSHeightFunction(equation).SideOf({{1.0, 2.0, 3.0}, 0.0}), 0);
        }
        ZULMRSPlace place{{1.0, strange, 3.0}, 0.0};
        EXPECT_EQ(ZULMRSHeightFunction({1.0, 1.0, 1.0, 1.0}).SideOf(place), 0);
    }
    EXPECT_EQ(ZULMRSHeightFunction({1.0, 0.0, 0.0, 5.0}).SideOf({{}, Infinity}), 0);
    EXPECT_EQ(ZULMRSHeightFunction({0.0, 0.0, 0.0, 5.0}).SideOf({{}, Infinity}), 0);
    EXPECT_EQ(ZULMRSHeightFunction({1e300, 1e300, 0.0, 0.0}).SideOf({{1e300, 1e300, 0.0}, 0.0}), 0);
}

/// 1.001 of the smallest denormal is the smallest denormal.
TEST(ZULMRSHeightFunction, ADenormalSteepnessKeepsItsRoom)
{
    for (int units = 1; units < 600; ++units) {
        const double slope = std::ldexp(units, -1074);
        const HeightCase subject{{slope, 0.0, 0.0, 0.0},
                                 {{}, std::ldexp(1.0 + 0x1p-52 * (2 * units + 1), 900)}};
        const auto [value, error] = ZULMRSHeightFunction(subject.m_Equation)(subject.m_Place);
        ASSERT_FALSE(IsLess(Dyadic(error), HeightRange(subject).m_Greatest)) << units;
    }
}

//---------------------------------------------------------------- places

/// Whether a fraction lies between what doubles say its least and its greatest value are.
bool IsEnclosed(const ZULMRSPlace& place, std::size_t axis, const Dyadic& numerator, const Dyadic& w)
{
    const double least = place.m_At[axis] - place.m_Error;
    const double greatest = place.m_At[axis] + place.m_Error;
    return !IsLess(numerator, Dyadic(least) * w) && !IsLess(Dyadic(greatest) * w, numerator);
}

TEST(ZULMRSPlace, EnclosesMeetingPoints)
{
    Random random(71'002);
    const LineCapture lines;  // of planes that do not meet
    for (const Regime regime : Regimes) {
        int nbKnown = 0;
        for (int index = 0; index < NbCases / 10; ++index) {
            const std::array<Plane4, 3> equations = random.PlaneTriple(regime);
            std::array<Owner<ZULMRSBSPPlane>, 3> planes;
            for (std::size_t i = 0; i < 3; ++i) {
                const auto& [a, b, c, d] = equations[i];
                planes[i] = Own<ZULMRSBSPPlane>(ZULMRSBSPPlaneNS::CreateCartesianPlane(a, b, c, d));
            }
            bool isValid = false;
            const auto point = Own(ZULMRSBSPPointNS::CreatePoint(planes[0].get(), planes[1].get(),
                                                                 planes[2].get(), isValid, index % 2 == 0));
            const ZULMRSPlace place = ZULMRSPlace::Of(*point);
            if (!isValid || !std::isfinite(place.m_Error)) {
                continue;
            }
            ++nbKnown;
            const DyadicPlane exact = DyadicWithPositiveW(
                DyadicMeetingPoint({ToDyadic(equations[0]), ToDyadic(equations[1]), ToDyadic(equations[2])}));
            for (std::size_t axis = 0; axis < 3; ++axis) {
                ASSERT_TRUE(IsEnclosed(place, axis, exact[axis], exact[3])) << index;
            }
        }
        if (regime == Regime::Easy) {
            EXPECT_GT(nbKnown, NbCases / 10 - 10);
        }
    }
}

/// A number that has lost all but some bits, with an exponent from a range.
ZULExpDynamic MakeNumber(Random& random, int lowest, int highest)
{
    const double value = random.OneIn(20) ? 0.0 : random.Scaled(lowest, highest);
    const double magnitude =
        std::max(std::ldexp(std::fabs(value), random.OneIn(2) ? 0 : random.Integer(0, 53)),
                 random.OneIn(20) ? std::ldexp(1.0, random.Integer(lowest, highest)) : 0.0);
    return {value, magnitude, static_cast<std::uint32_t>(random.Integer(1, 60))};
}
/// As far from its true number as it may be.
Dyadic ErrorOf(const ZULExpDynamic& number)
{
    const Dyadic count(number.GetCount());
    return count * Dyadic(0x1p-53) * Dyadic(number.GetMagnitude()) * (Dyadic(1.0) + Dyadic(0x1p-52) * count);
}

TEST(ZULMRSPlace, EnclosesTheQuotientsOfTheWorstNumbers)
{
    Random random(71'003);
    int nbKnown = 0;
    for (int index = 0; index < NbCases; ++index) {
        const int scale = random.OneIn(3) ? -600 : random.Integer(-700, 960);
        ZULExpDynamic w = MakeNumber(random, scale - 3, scale + 3);
        w = w.GetValue() < 0.0 ? -w : w;
        const int lowest = std::max(-1074, scale + random.Integer(-500, 0));
        const int highest = std::min(960, scale + random.Integer(0, 500));
        std::array<ZULExpDynamic, 4> numbers;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            numbers[axis] = MakeNumber(random, lowest, std::max(lowest, highest));
        }
        numbers[3] = w;
        const ZULMRSPlace place = ZULMRSPlace::OfNumbers(numbers);
        if (!std::isfinite(place.m_Error)) {
            continue;
        }
        ++nbKnown;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            for (int corner = 0; corner < 4; ++corner) {
                const Dyadic e = ErrorOf(numbers[axis]);
                const Dyadic x = Dyadic(numbers[axis].GetValue()) + ((corner & 1) != 0 ? e : -e);
                const Dyadic eW = ErrorOf(w);
                const Dyadic trueW = Dyadic(w.GetValue()) + ((corner & 2) != 0 ? eW : -eW);
                ASSERT_GT(trueW.Sign(), 0);
                ASSERT_TRUE(IsEnclosed(place, axis, x, trueW)) << index << " axis " << axis;
            }
        }
    }
    EXPECT_GT(nbKnown, NbCases / 4);
}

TEST(ZULMRSPlace, TellsNothingOutsideItsRange)
{
    const auto errorOf = [](const ZULExpDynamic& x, const ZULExpDynamic& w) {
        return ZULMRSPlace::OfNumbers({x, ZULExpDynamic(1.0), ZULExpDynamic(1.0), w}).m_Error;
    };
    const ZULExpDynamic one(1.0);
    EXPECT_LT(errorOf(one, one), 1e-14);
    EXPECT_LT(errorOf(one, ZULExpDynamic(ZULMRSPlace::LeastW * 1.001)), Infinity);
    for (const double w : {ZULMRSPlace::LeastW * 0.999, 0x1p-1074, 0.0, -0.0, -1.0, NaN}) {
        EXPECT_EQ(errorOf(one, ZULExpDynamic(w)), Infinity) << w;
    }
    EXPECT_EQ(errorOf(one, ZULExpDynamic(1.0, 0x1p53, 1)), Infinity);
    EXPECT_EQ(errorOf(ZULExpDynamic(0x1p1000), ZULExpDynamic(0x1p-500)), Infinity);
    for (const double strange : {Infinity, -Infinity, NaN}) {
        EXPECT_EQ(errorOf(ZULExpDynamic(strange), one), Infinity);
        EXPECT_EQ(errorOf(ZULExpDynamic(1.0, strange, 3), one), Infinity);
    }
}

//---------------------------------------------------------------- boxes

/// The equation's value at its least or greatest corner of a box.
Dyadic AtCorner(const ZULMRSLeafBox& box, const std::array<double, 4>& equation, int sign)
{
    Dyadic value(equation[3]);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const bool isHigh = (equation[axis] > 0.0) == (sign > 0);
        value = value + Dyadic(equation[axis]) * Dyadic(isHigh ? box.m_High[axis] : box.m_Low[axis]);
    }
    return value;
}

/// The same in doubles.
double AddUp(const ZULMRSLeafBox& box, const std::array<double, 4>& equation, int sign)
{
    double value = equation[3];
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const bool isHigh = (equation[axis] > 0.0) == (sign > 0);
        value += equation[axis] * (isHigh ? box.m_High[axis] : box.m_Low[axis]);
    }
    return value;
}

TEST(ZULMRSLeafBox, WithstandsAnAttack)
{
    using Position = ZULMRSLeafBox::Position;
    Random random(71'004);
    int nbDecided = 0;
    int nbWrongWithoutBound = 0;
    for (const Regime regime : Regimes) {
        for (int index = 0; index < NbCases; ++index) {
            std::array<double, 4> equation = random.Plane(regime);
            ZULMRSLeafBox box = ZULMRSLeafBox::Empty();
            box.Include(ZULMRSPlace{random.Point(regime), 0.0});
            box.Include(ZULMRSPlace{random.Point(regime), 0.0});
            if (!random.OneIn(4)) {
                double sum = 0.0;
                const bool isLeast = random.OneIn(2);
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    const bool isHigh = (equation[axis] > 0.0) != isLeast;
                    sum += equation[axis] * (isHigh ? box.m_High[axis] : box.m_Low[axis]);
                }
                equation[3] = random.Nudged(-sum, 3);
            }
            const Position position = box.Locate(equation);
            if (!AreFinite(equation)) {
                EXPECT_EQ(position, Position::Unknown);
                continue;
            }
            ASSERT_TRUE(position != Position::InFront || AtCorner(box, equation, -1).Sign() > 0) << index;
            ASSERT_TRUE(position != Position::Behind || AtCorner(box, equation, 1).Sign() < 0) << index;
            nbDecided += position != Position::Unknown ? 1 : 0;
            nbWrongWithoutBound += AddUp(box, equation, -1) > 0.0 && AtCorner(box, equation, -1).Sign() <= 0;
        }
    }
    EXPECT_GT(nbDecided, NbCases / 10);
    EXPECT_GT(nbWrongWithoutBound, 0);
}

TEST(ZULMRSLeafBox, WhatIsNotFiniteDecidesNothing)
{
    using Position = ZULMRSLeafBox::Position;
    ZULMRSLeafBox box{{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}};
    EXPECT_EQ(box.Locate({1.0, 1.0, 1.0, 1.0}), Position::InFront);
    EXPECT_EQ(box.Locate({1.0, 1.0, 1.0, -4.0}), Position::Behind);
    EXPECT_EQ(box.Locate({1.0, 1.0, 1.0, Infinity}), Position::Unknown);
    EXPECT_EQ(box.Locate({1.0, 1.0, NaN, 1.0}), Position::Unknown);
    EXPECT_EQ(ZULMRSLeafBox::Empty().Locate({1.0, 1.0, 1.0, 1.0}), Position::Unknown);
    box.Include(ZULMRSPlace{{}, Infinity});
    EXPECT_EQ(box.Locate({1.0, 1.0, 1.0, 1.0}), Position::Unknown);
    EXPECT_EQ(box.Locate({0.0, 0.0, 1.0, 1.0}), Position::Unknown);
    const ZULMRSLeafBox great{{1e300, 1e300, 1e300}, {1e305, 1e305, 1e305}};
    EXPECT_EQ(great.Locate({1e10, 1e10, 1e10, 1.0}), Position::Unknown);
}
}  // namespace
