#include "ZULMRSBSPMeetingIntegers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "ZULTestBigInteger.h"
#include "ZULTestNumbers.h"

// The meeting point from the planes' integers, against integers without a limit.
namespace
{
using namespace ZULTest;
using namespace ZULMRSBSPMeetingIntegers;

constexpr std::size_t Cases = 40'000 / ZUL_TEST_CASES_DIVISOR;
constexpr std::int64_t Largest = (std::int64_t{1} << InputBits) - 1;

using ExactRow = std::array<BigInteger, 4>;
using Triple = std::array<Form, 3>;

ExactRow ToExact(const Form& form)
{
    const auto& v = form.m_Values;
    return {BigInteger(v[0]), BigInteger(v[1]), BigInteger(v[2]), BigInteger(v[3])};
}
ExactRow ExactMeeting(const Triple& planes)
{
    return ZULMRSBSPFormulas::MeetingPoint(ToExact(planes[0]), ToExact(planes[1]), ToExact(planes[2]));
}

Form Plane(std::int64_t a, std::int64_t b, std::int64_t c, std::int64_t d)
{
    Form form;
    form.m_Values = {a, b, c, d};
    form.m_Error = 0;
    return form;
}

//---------------------------------------------------------------- what is checked

/// How far v is off x / 2^places at most, in units of 2^-16.
std::int64_t Distance(const Form& form, const ExactRow& exact, unsigned int places)
{
    BigInteger most(0);
    for (std::size_t i = 0; i < 4; ++i) {
        const BigInteger value = BigInteger(form.m_Values[i]) * BigInteger::PowerOfTwo(places);
        most = std::max(most, (value - exact[i]).Magnitude());
    }
    const BigInteger inUnits = (most * BigInteger::PowerOfTwo(16)).ShiftedRight(places);
    return inUnits < BigInteger(Largest) ? inUnits.Get().get_si() : Largest;
}

std::size_t LengthOf(const ExactRow& numbers)
{
    std::size_t length = 0;
    for (const BigInteger& number : numbers) {
        length = std::max(length, mpz_sizeinbase(number.Get().get_mpz_t(), 2));
    }
    return length;
}

/// The least distance over all scales that are not absurd.
std::int64_t LeastDistance(const Form& form, const ExactRow& exact)
{
    const std::size_t length = LengthOf(exact);
    const std::size_t places = length - std::min(length - 1, LengthOf(ToExact(form)));
    std::int64_t least = Largest;
    for (std::size_t i = places - 1; i <= places + 1; ++i) {
        least = std::min(least, Distance(form, exact, static_cast<unsigned int>(i)));
    }
    return least;
}

struct Tally {
    std::size_t m_NbExact = 0;
    std::size_t m_NbCut = 0;    ///< of exact numbers
    std::size_t m_NbShort = 0;  ///< of sums that are off
    std::size_t m_NbNone = 0;
    std::int64_t m_MostDistance = 0;
};

void Check(const Triple& planes, Tally& tally)
{
    ExactRow exact = ExactMeeting(planes);
    const Meeting meeting = Meet(planes[0], planes[1], planes[2]);
    ASSERT_EQ(meeting.m_W.ToKernelResult(), exact[3].Sign());
    ASSERT_TRUE(meeting.m_W.IsDecided());
    if (exact[3].Sign() == 0) {
        ++tally.m_NbNone;
        return;
    }
    if (exact[3].Sign() < 0) {
        std::transform(exact.begin(), exact.end(), exact.begin(), std::negate<>());
    }
    for (const std::int64_t value : meeting.m_Form.m_Values) {
        ASSERT_LE(std::max(value, -value), Largest + 1);
    }
    if (meeting.m_Form.IsExact()) {
        ++tally.m_NbExact;
        ASSERT_GT(meeting.m_Form.m_Values[3], 0);
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_EQ(exact[i] * BigInteger(meeting.m_Form.m_Values[3]),
                      exact[3] * BigInteger(meeting.m_Form.m_Values[i]));
        }
        return;
    }
    const std::int64_t distance = LeastDistance(meeting.m_Form, exact);
    ASSERT_LT(distance, (meeting.m_Form.m_Error - 1) << 16);
    ++(meeting.m_Form.m_Error == ErrorOfCutting ? tally.m_NbCut : tally.m_NbShort);
    tally.m_MostDistance = std::max(tally.m_MostDistance, distance);
}

//---------------------------------------------------------------- planes

std::int64_t Full(Random& random)
{
    return static_cast<std::int64_t>(random.Bits() >> 1) - Largest;
}
/// In the highest places of an input.
std::int64_t Short(Random& random, int bits)
{
    const int range = (1 << bits) - 1;
    return static_cast<std::int64_t>(random.Integer(-range, range)) * (std::int64_t{1} << (InputBits - bits));
}
std::int64_t Extreme(Random& random)
{
    constexpr std::array<std::int64_t, 8> values = {
        Largest, -Largest, Largest - 1, 1 - Largest, Largest / 2 + 1, -1 - Largest / 2, 0, 1};
    return values[static_cast<std::size_t>(random.Integer(0, 7))];
}

template <class Number>
Triple AnyTriple(const Number& number)
{
    Triple planes;
    for (Form& plane : planes) {
        plane = Plane(number(), number(), number(), number());
    }
    return planes;
}

TEST(ZULMRSBSPMeetingIntegers, OfFullIntegersTheShortSumsDecide)
{
    Random random(63'001);
    Tally tally;
    for (std::size_t n = 0; n < Cases; ++n) {
        Check(AnyTriple([&] { return Full(random); }), tally);
    }
    EXPECT_GT(tally.m_NbShort, Cases - Cases / 50);
    EXPECT_EQ(tally.m_NbNone, 0U);
    // What the bound is about is met, or nearly so.
    EXPECT_GT(tally.m_MostDistance, (std::int64_t{5} << 16) / 2);
    EXPECT_LT(tally.m_MostDistance, ErrorOfSums << 16);
}

TEST(ZULMRSBSPMeetingIntegers, ShortIntegersGiveExactForms)
{
    Random random(63'002);
    Tally tally;
    for (const int bits : {1, 3, 10, 18, 20}) {
        for (std::size_t n = 0; n < Cases / 20; ++n) {
            Check(AnyTriple([&] { return Short(random, bits); }), tally);
        }
    }
    EXPECT_EQ(tally.m_NbShort, 0U);
    EXPECT_EQ(tally.m_NbCut, 0U);
    EXPECT_GT(tally.m_NbExact, Cases / 10);
    EXPECT_GT(tally.m_NbNone, 0U);
}

TEST(ZULMRSBSPMeetingIntegers, MinorsThatAreExactLeaveOnlyTheCuttingOff)
{
    Random random(63'003);
    Tally tally;
    for (std::size_t n = 0; n < Cases / 4; ++n) {
        Check(AnyTriple([&] { return Short(random, 29); }), tally);
    }
    EXPECT_EQ(tally.m_NbShort, 0U);
    EXPECT_GT(tally.m_NbCut, Cases / 5);
}

TEST(ZULMRSBSPMeetingIntegers, IntegersAtTheirLimits)
{
    Random random(63'004);
    Tally tally;
    for (std::size_t n = 0; n < Cases; ++n) {
        Check(AnyTriple([&] { return Extreme(random); }), tally);
        Check(AnyTriple([&] { return random.OneIn(2) ? Extreme(random) : Full(random); }), tally);
        Check(AnyTriple([&] { return random.OneIn(2) ? 0 : Full(random); }), tally);
        Check(AnyTriple([&] { return Full(random) >> random.Integer(0, 61); }), tally);
    }
    EXPECT_GT(tally.m_NbNone, 0U);
    EXPECT_GT(tally.m_NbExact, 0U);
    EXPECT_GT(tally.m_NbCut, 0U);
    EXPECT_GT(tally.m_NbShort, 0U);
}

/// The third plane is a sum of the others, or differs from it in some places: W, or all four numbers, cancel.
TEST(ZULMRSBSPMeetingIntegers, PlanesThatNearlyShareALine)
{
    Random random(63'005);
    Tally tally;
    for (int places = -1; places < InputBits - 2; ++places) {
        for (std::size_t n = 0; n < Cases / 40; ++n) {
            Triple planes = AnyTriple([&] { return Full(random) / 2; });
            const std::int64_t off = places < 0 ? 0 : std::int64_t{1} << places;
            for (std::size_t i = 0; i < 4; ++i) {
                const bool isOff = i == static_cast<std::size_t>(random.Integer(0, 3)) || random.OneIn(3);
                planes[2].m_Values[i] = planes[0].m_Values[i] + planes[1].m_Values[i] + (isOff ? off : 0);
            }
            std::rotate(planes.begin(), planes.begin() + random.Integer(0, 2), planes.end());
            if (std::all_of(planes.begin(), planes.end(), [](const Form& plane) {
                    return std::all_of(plane.m_Values.begin(), plane.m_Values.end(),
                                       [](std::int64_t v) { return v <= Largest && v >= -Largest; });
                })) {
                Check(planes, tally);
            }
        }
    }
    EXPECT_GT(tally.m_NbNone, 0U);
    EXPECT_GT(tally.m_NbCut, Cases / 10);
    EXPECT_GT(tally.m_NbShort, Cases / 20);
}

//---------------------------------------------------------------- the bound, derived again

/// How far an upper half, or a sum of some, may be off, in quarters of a unit.
struct Off {
    std::int64_t m_Quarters = 0;

    friend Off operator+(Off x, Off y) { return {x.m_Quarters + y.m_Quarters}; }
    friend Off operator-(Off x, Off y) { return {x.m_Quarters + y.m_Quarters}; }
};
/// A minor is off by one, a factor by nothing; a factor is below 2^62, a product is divided by 2^64 and
/// rounded down.
struct CutMinor {
};
struct ExactFactor {
    friend ExactFactor operator-(ExactFactor x) { return x; }
    friend Off operator*(CutMinor, ExactFactor) { return {1 + 4}; }
};

TEST(ZULMRSBSPMeetingIntegers, TheErrorOfSumsFollowsFromTheFormula)
{
    const std::array<ExactFactor, 4> plane{};
    const std::array<CutMinor, 6> minors{};
    for (const Off& off : ZULMRSBSPFormulas::MeetingPointOfMinors(plane, minors)) {
        EXPECT_EQ(off.m_Quarters, 15);
        EXPECT_LT(off.m_Quarters, 4 * ErrorOfSums);
        EXPECT_GT(off.m_Quarters, 4 * (ErrorOfSums - 1));
    }
}

TEST(ZULMRSBSPMeetingIntegers, NumbersAreCutAtAnyPlace)
{
    Random random(63'006);
    for (int length = 65; length <= 125; ++length) {
        for (int n = 0; n < 200; ++n) {
            std::array<Wide, 6> numbers;
            bool isExact = true;
            const int zeros = random.Integer(0, length);
            for (Wide& number : numbers) {
                const Wide bits = (Wide{static_cast<std::int64_t>(random.Bits())} << 64) | random.Bits();
                number = (bits >> (127 - random.Integer(1, length))) >> zeros << zeros;
            }
            numbers[3] = (Wide{1} << (length - 1)) * (random.OneIn(2) ? 1 : -1);
            numbers[3] -= numbers[3] < 0 ? 1 : 0;
            const Cutting<6> cutting(numbers, 62);
            ASSERT_TRUE(cutting.IsLong());
            ASSERT_EQ(cutting.GetPlaces(), static_cast<unsigned int>(length - 62));
            for (const Wide number : numbers) {
                const Wide cut = number >> (length - 62);
                ASSERT_EQ(cutting.Cut(number), static_cast<std::int64_t>(cut));
                isExact = isExact && (cut << (length - 62)) == number;
            }
            ASSERT_EQ(cutting.IsExact(), isExact);
        }
    }
}
}  // namespace
