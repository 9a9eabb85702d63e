#include "ZULMRSBSPIntegerForms.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "ZULMRSBSPEquation.h"
#include "ZULMRSBSPOrientation.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULTestBigInteger.h"

// The integers that planes and points keep: how they are made, and that they never decide wrongly.
namespace
{
using namespace ZULTest;
using namespace ZULMRSBSPIntegerForms;
using Form = ZULMRSBSPIntegerForm;
using Filtered = std::array<ZULExpDynamic, 4>;

constexpr std::int64_t Largest = std::int64_t{1} << 62;
constexpr std::size_t Cases = 40'000 / ZUL_TEST_CASES_DIVISOR;

//---------------------------------------------------------------- exact values of forms

Dyadic PowerOfTwo(int exponent)
{
    Dyadic result(1.0);
    for (; exponent > 1000; exponent -= 1000) {
        result = result * Dyadic(0x1p1000);
    }
    for (; exponent < -1000; exponent += 1000) {
        result = result * Dyadic(0x1p-1000);
    }
    return result * Dyadic(std::ldexp(1.0, exponent));
}
Dyadic ToDyadic(std::int64_t value)
{
    constexpr int halfBits = 32;
    const std::int64_t high = value >> halfBits;
    const std::int64_t low = value - high * (std::int64_t{1} << halfBits);
    return Dyadic(static_cast<double>(high)) * Dyadic(0x1p32) + Dyadic(static_cast<double>(low));
}
bool IsBelow(const Dyadic& x, const Dyadic& limit)
{
    return (limit - x).Sign() > 0 && (limit + x).Sign() > 0;
}

int ExponentAbove(double value)
{
    int exponent = 0;
    std::frexp(value, &exponent);
    constexpr int least = std::numeric_limits<double>::min_exponent;
    return value == 0.0 ? least : std::max(exponent, least);
}

/// Whether the form is the exact numbers, divided by the unit of the doubles that it was made from, to within
/// its error.
testing::AssertionResult Holds(const Form& form, const DyadicPlane& exact, const Plane4& madeFrom,
                               int shiftOfLast)
{
    if (form.m_Error == Form::Unknown) {
        return form.m_Values == Form().m_Values ? testing::AssertionSuccess()
                                                : testing::AssertionFailure() << "unknown and not zero";
    }
    int top = -10'000;
    for (std::size_t i = 0; i < 4; ++i) {
        top = std::max(top, ExponentAbove(madeFrom[i]) + (i == 3 ? shiftOfLast : 0));
    }
    for (std::size_t i = 0; i < 4; ++i) {
        const int places = ZULMRSBSPShortIntegers::InputBits - top + (i == 3 ? shiftOfLast : 0);
        const Dyadic off = exact[i] * PowerOfTwo(places) - ToDyadic(form.m_Values[i]);
        const bool isWithin = form.IsExact() ? off.Sign() == 0 : IsBelow(off, ToDyadic(form.m_Error - 1));
        if (!isWithin || std::abs(form.m_Values[i]) > Largest) {
            return testing::AssertionFailure() << "number " << i << ", error " << form.m_Error;
        }
    }
    return testing::AssertionSuccess();
}

Plane4 ValuesOf(const Filtered& numbers)
{
    return {numbers[0].GetValue(), numbers[1].GetValue(), numbers[2].GetValue(), numbers[3].GetValue()};
}

//---------------------------------------------------------------- from doubles

TEST(ZULMRSBSPIntegerForms, OfDoublesInEveryRegime)
{
    Random random(62'001);
    std::size_t nbExact = 0;
    for (const Regime regime : AllRegimes) {
        for (std::size_t n = 0; n < Cases / 10; ++n) {
            const Plane4 plane = random.Plane(regime);
            const Point3 point = random.Point(regime);
            const Form ofPlane = OfPlane(plane);
            ASSERT_TRUE(Holds(ofPlane, ZULTest::ToDyadic(plane), plane, -OffsetShift)) << NameOf(regime);
            const Plane4 homogeneous = {point[0], point[1], point[2], 1.0};
            ASSERT_TRUE(Holds(OfCoordinates(point), ZULTest::ToDyadic(homogeneous), homogeneous, OffsetShift))
                << NameOf(regime);
            ASSERT_NE(ofPlane.m_Error, Form::Unknown);
            nbExact += ofPlane.IsExact() ? 1 : 0;
        }
    }
    EXPECT_GT(nbExact, Cases / 10);
}

TEST(ZULMRSBSPIntegerForms, ExactIsSaidExactlyWhereNothingIsLost)
{
    EXPECT_TRUE(OfPlane(Plane4{0, 0, 0, 0}).IsExact());
    EXPECT_TRUE(OfPlane(Plane4{0x1p-1074, 0, 0, 0x1p-1074}).IsExact());
    EXPECT_TRUE(OfPlane(Plane4{0x1p1023, 0, 0, 0x1.8p1023}).IsExact());
    EXPECT_FALSE(OfPlane(Plane4{0x1p1023, 0, 0, 0x1p-1074}).IsExact());
    // Unit normals with all places in use, from 2^-5 to 2^13 units away.
    constexpr double full = 0x1.5555555555555p-1;
    EXPECT_TRUE(OfPlane(Plane4{full, full, full, 0x1.5555555555555p12}).IsExact());
    EXPECT_FALSE(OfPlane(Plane4{full, full, full, 0x1.5555555555555p13}).IsExact());
    EXPECT_TRUE(OfPlane(Plane4{1, 0, full, 0x1.5555555555555p-5}).IsExact());
    EXPECT_FALSE(OfPlane(Plane4{1, 0, full, 0x1.5555555555555p-6}).IsExact());
    EXPECT_EQ(OfPlane(Plane4{1, 0, full, 0x1.5555555555555p-6}).m_Error, ErrorOfCutting);
    EXPECT_TRUE(OfCoordinates(Point3{0x1.5555555555555p-5, 0, 0}).IsExact());
    EXPECT_FALSE(OfCoordinates(Point3{0x1.5555555555555p-6, 0, 0}).IsExact());
    for (const double bad : {Infinity, -Infinity, NotANumber}) {
        EXPECT_EQ(OfPlane(Plane4{1, bad, 0, 0}).m_Error, Form::Unknown);
        EXPECT_EQ(OfPlane(Plane4{1, 0, 0, bad}).m_Values, Form().m_Values);
        EXPECT_EQ(OfCoordinates(Point3{0, 0, bad}).m_Error, Form::Unknown);
    }
}

//---------------------------------------------------------------- from filtered numbers

TEST(ZULMRSBSPIntegerForms, OfPlanesAndPointsAsTheyAreKept)
{
    const Silence silence;
    Random random(62'002);
    std::size_t nbExact = 0;
    std::size_t nbOff = 0;
    std::size_t nbFiltered = 0;
    ForAllKinds(Cases, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t n = 0; n < count; ++n) {
            Scene scene(random, regime, position);
            const PlaneCase plane = scene.ThreePointsPlane();
            const auto* equation = std::get<0>(plane.m_Plane->GetStdEquation_ExpDynamic());
            const Form ofPlane = *ZULMRSBSPDirectReads::Integers(*plane.m_Plane);
            if (equation != nullptr) {
                ASSERT_TRUE(Holds(ofPlane, plane.m_Exact, ValuesOf(*equation), -OffsetShift))
                    << NameOf(regime);
            } else {
                ASSERT_EQ(ofPlane.m_Error, Form::Unknown);
            }
            const PointCase point = scene.MeetingPoint();
            const Form ofPoint = *ZULMRSBSPDirectReads::Integers(*point.m_Point);
            // Proportional to the exact place by a positive factor, whatever the planes' own factors.
            for (std::size_t i = 0; i < 4 && ofPoint.IsExact(); ++i) {
                const Dyadic w16 = point.m_Exact[3] * Dyadic(16.0);
                const Dyadic v = i == 3 ? w16 : point.m_Exact[i];
                ASSERT_EQ((v * ToDyadic(ofPoint.m_Values[3]) - w16 * ToDyadic(ofPoint.m_Values[i])).Sign(), 0)
                    << NameOf(regime);
                ASSERT_GT(ofPoint.m_Values[3], 0);
            }
            // Made of filtered numbers, in their scale.
            const auto planes = point.m_Point->GetPlanes();
            const bool isFiltered = std::any_of(planes.begin(), planes.end(), [](const ZULMRSBSPPlane* p) {
                return ZULMRSBSPDirectReads::ExactIntegers(p) == nullptr;
            });
            const auto* numbers = std::get<0>(point.m_Point->GetCartesianRepresentation_ExpDynamic());
            if (isFiltered && ofPoint.m_Error != Form::Unknown) {
                ASSERT_NE(numbers, nullptr);
                ASSERT_TRUE(Holds(ofPoint, point.m_Exact, ValuesOf(*numbers), OffsetShift)) << NameOf(regime);
                ++nbFiltered;
            }
            nbExact += ofPoint.IsExact() ? 1 : 0;
            nbOff += !ofPoint.IsExact() && ofPoint.m_Error != Form::Unknown ? 1 : 0;
        }
    });
    EXPECT_GT(nbExact, 0U);
    EXPECT_GT(nbOff, 0U);
    EXPECT_GT(nbFiltered, Cases / 10);
}

/// A number computed in doubles, with cancellation, and what it is exactly.
struct Computed {
    ZULExpDynamic m_Number;
    Dyadic m_Exact;
};
Computed AnyComputed(Random& random)
{
    const std::array<double, 3> u = {random.Scaled(-20, 20), random.Scaled(-20, 20), random.Scaled(-20, 20)};
    std::array<double, 3> v = {random.Scaled(-20, 20), random.Scaled(-20, 20), 0.0};
    v[2] = random.Nudged(-(u[0] * v[0] + u[1] * v[1]) / u[2], 3);
    const auto dot = ZULMRSBSPFormulas::DotProduct(ZULMRSBSPFormulas::Convert<ZULExpDynamic>(u),
                                                   ZULMRSBSPFormulas::Convert<ZULExpDynamic>(v));
    const Dyadic exact =
        Dyadic(u[0]) * Dyadic(v[0]) + Dyadic(u[1]) * Dyadic(v[1]) + Dyadic(u[2]) * Dyadic(v[2]);
    const double factor = random.Scaled(-5, 5);
    return random.OneIn(2) ? Computed{dot, exact}
                           : Computed{dot * ZULExpDynamic(factor), exact * Dyadic(factor)};
}

TEST(ZULMRSBSPIntegerForms, OfNumbersThatHaveCancelled)
{
    Random random(62'003);
    std::size_t nbKnown = 0;
    std::int64_t mostError = 0;
    for (std::size_t n = 0; n < Cases; ++n) {
        Filtered numbers;
        DyadicPlane exact;
        for (std::size_t i = 0; i < 4; ++i) {
            const Computed computed = AnyComputed(random);
            numbers[i] = computed.m_Number;
            exact[i] = computed.m_Exact;
        }
        // One number that is not cancelled keeps the unit up, or none does.
        if (random.OneIn(2)) {
            const double value = random.Scaled(-30, 45);
            numbers[0] = ZULExpDynamic(value);
            exact[0] = Dyadic(value);
        }
        const Form form = FromFiltered(numbers, 0);
        ASSERT_TRUE(Holds(form, exact, ValuesOf(numbers), 0));
        if (form.m_Error != Form::Unknown) {
            ++nbKnown;
            mostError = std::max(mostError, form.m_Error);
            ASSERT_FALSE(form.IsExact());
        }
    }
    EXPECT_GT(nbKnown, Cases / 10);
    EXPECT_LT(nbKnown, Cases);
    EXPECT_GT(mostError, std::int64_t{1} << 28);
    EXPECT_LE(mostError, (std::int64_t{1} << 30) + ErrorOfCutting);
}

TEST(ZULMRSBSPIntegerForms, WhatIsNotFiniteOrTooUncertainSaysNothing)
{
    const ZULExpDynamic one(1.0);
    for (const ZULExpDynamic& bad :
         {ZULExpDynamic(Infinity), ZULExpDynamic(NotANumber), ZULExpDynamic(1.0, Infinity, 1)}) {
        EXPECT_EQ(FromFiltered({one, bad, one, one}, 0).m_Error, Form::Unknown);
        EXPECT_EQ(FromFiltered({one, one, one, bad}, 4).m_Error, Form::Unknown);
    }
    // A count of one bit, one bit of slack, the 9 places that an integer has more than a mantissa: 11, and
    // the bits by which the magnitude exceeds the values.
    EXPECT_EQ(FromFiltered({one, one, one, one}, 0).m_Error, (std::int64_t{1} << 11) + ErrorOfCutting);
    const auto withMagnitude = [&one](int exponent, int shift) {
        const ZULExpDynamic vague(1.0, std::ldexp(1.0, exponent), 1);
        return shift == 0 ? FromFiltered({one, vague, one, one}, 0).m_Error
                          : FromFiltered({one, one, one, vague}, shift).m_Error;
    };
    EXPECT_EQ(withMagnitude(19, 0), (std::int64_t{1} << 30) + ErrorOfCutting);
    EXPECT_EQ(withMagnitude(20, 0), Form::Unknown);
    EXPECT_EQ(withMagnitude(23, -4), (std::int64_t{1} << 30) + ErrorOfCutting);
    EXPECT_EQ(withMagnitude(24, -4), Form::Unknown);
    EXPECT_EQ(FromFiltered({ZULExpDynamic(1.0, 1.0, 0xFFFFFFFFU), one, one, one}, 0).m_Error, Form::Unknown);
}

//---------------------------------------------------------------- from exact numbers

ZULMRSBSPShortInteger<3> ToShort(const BigInteger& x)
{
    return ZULMRSBSPShortInteger<3>({x.GetLimb(0), x.GetLimb(1), x.GetLimb(2)});
}

BigInteger BigOf(Random& random, unsigned int length)
{
    BigInteger value(0);
    for (int i = 0; i < 3; ++i) {
        value = value * BigInteger::PowerOfTwo(64) +
                BigInteger(mpz_class(static_cast<unsigned long>(random.Bits())));
    }
    switch (random.Integer(0, 3)) {
        case 0:
            return BigInteger::PowerOfTwo(length) - BigInteger(1);
        case 1:
            return length > 0 ? BigInteger::PowerOfTwo(length - 1) : BigInteger(0);
        default:
            return value.ShiftedRight(192 - length);
    }
}

/// The bits of the greatest number, a negative one counted by its complement.
unsigned int LengthOf(const std::array<BigInteger, 4>& numbers)
{
    std::size_t length = 0;
    for (const BigInteger& number : numbers) {
        const BigInteger used = number.Sign() < 0 ? -number - BigInteger(1) : number;
        length = std::max(length, used.Sign() == 0 ? 0 : mpz_sizeinbase(used.Get().get_mpz_t(), 2));
    }
    return static_cast<unsigned int>(length);
}

void ExpectFromExact(const std::array<BigInteger, 4>& numbers)
{
    const Form form =
        FromExact({ToShort(numbers[0]), ToShort(numbers[1]), ToShort(numbers[2]), ToShort(numbers[3])});
    const unsigned int length = LengthOf(numbers);
    bool isExact = true;
    for (std::size_t i = 0; i < 4; ++i) {
        const BigInteger value(form.m_Values[i]);
        if (length <= 62) {
            ASSERT_EQ(value, numbers[i] * BigInteger::PowerOfTwo(62 - length));
        } else {
            ASSERT_EQ(value, numbers[i].ShiftedRight(length - 62)) << length;
            isExact = isExact && value * BigInteger::PowerOfTwo(length - 62) == numbers[i];
        }
        ASSERT_LE(std::abs(form.m_Values[i]), Largest);
    }
    ASSERT_EQ(form.m_Error, isExact ? 0 : ErrorOfCutting) << length;
}

TEST(ZULMRSBSPIntegerForms, OfExactNumbersAtTheBordersOfLimbs)
{
    Random random(62'004);
    ExpectFromExact({});
    for (const unsigned int length : {0U,   1U,   2U,   61U,  62U,  63U,  64U,  65U,  66U,  100U, 124U,
                                      125U, 126U, 127U, 128U, 129U, 130U, 187U, 188U, 189U, 190U, 191U}) {
        for (int n = 0; n < 300; ++n) {
            std::array<BigInteger, 4> numbers;
            for (BigInteger& number : numbers) {
                const auto shorter = static_cast<unsigned int>(random.Integer(0, static_cast<int>(length)));
                number = BigOf(random, random.OneIn(2) ? length : shorter);
                number = random.OneIn(2) ? -number : number;
            }
            ExpectFromExact(numbers);
            // Bits below the last place that is kept are zeros, or one of them is set.
            const unsigned int zeros = length > 62 ? length - 62 : 0;
            for (BigInteger& number : numbers) {
                number = number.ShiftedRight(zeros) * BigInteger::PowerOfTwo(zeros);
            }
            ExpectFromExact(numbers);
            if (zeros > 0) {
                const auto place = static_cast<unsigned int>(random.Integer(0, static_cast<int>(zeros) - 1));
                BigInteger& any = numbers[static_cast<std::size_t>(random.Integer(0, 3))];
                any = any + BigInteger::PowerOfTwo(place);
                ExpectFromExact(numbers);
            }
        }
        const BigInteger power = BigInteger::PowerOfTwo(length);
        ExpectFromExact({-power, BigInteger(0), BigInteger(-1), BigInteger(1)});
        ExpectFromExact({-power, BigInteger(0), BigInteger(0), BigInteger(0)});
    }
}

//---------------------------------------------------------------- deciding

BigInteger Scalar(const std::array<BigInteger, 4>& p, const std::array<BigInteger, 4>& q)
{
    return ZULMRSBSPFormulas::EquationAtHomogeneous(p, q);
}
std::array<BigInteger, 4> ToBig(const std::array<std::int64_t, 4>& values)
{
    return {BigInteger(values[0]), BigInteger(values[1]), BigInteger(values[2]), BigInteger(values[3])};
}

/// Forms whose scalar product is exactly the number, of at most 124 bits, and whose other places are as large
/// as they may be, so that errors weigh as much as they can.
std::array<Form, 2> FormsWithProduct(const BigInteger& product, std::int64_t errorP, std::int64_t errorQ)
{
    const BigInteger high = product.ShiftedRight(62);
    const BigInteger low = product - high * BigInteger::PowerOfTwo(62);
    Form p;
    Form q;
    p.m_Values = {static_cast<std::int64_t>(high.Get().get_si()), 0, 0,
                  static_cast<std::int64_t>(low.Get().get_si())};
    q.m_Values = {Largest, Largest, -Largest, 1};
    p.m_Error = errorP;
    q.m_Error = errorQ;
    return {p, q};
}

/// The true numbers that lie as far as the error permits in the direction that changes the product most. (In
/// integers: they are off by at most the error less two.)
std::array<BigInteger, 4> Worst(const Form& form, const Form& other, int direction)
{
    std::array<BigInteger, 4> result = ToBig(form.m_Values);
    const std::int64_t reach = std::max<std::int64_t>(form.m_Error - 2, 0);
    for (std::size_t i = 0; i < 4; ++i) {
        const std::int64_t sign = other.m_Values[i] < 0 ? -direction : direction;
        result[i] = result[i] + BigInteger(sign * reach);
    }
    return result;
}

constexpr std::array<std::int64_t, 7> Errors = {0, 2, 3, 4, 130, (1 << 11) + 2, (std::int64_t{1} << 30) + 2};

TEST(ZULMRSBSPIntegerForms, TheEdgeOfWhatDecides)
{
    const BigInteger one(1);
    for (const std::int64_t errorP : Errors) {
        for (const std::int64_t errorQ : Errors) {
            const std::int64_t error = errorP + errorQ;
            if (error == 0) {
                continue;
            }
            const BigInteger edge = BigInteger(error) * BigInteger::PowerOfTwo(64);
            const auto sign = [errorP, errorQ](const BigInteger& product) {
                const auto [p, q] = FormsWithProduct(product, errorP, errorQ);
                EXPECT_EQ(Scalar(ToBig(p.m_Values), ToBig(q.m_Values)), product);
                EXPECT_EQ(SideOf(p, q), SideOf(q, p));
                return SideOf(p, q).ToKernelResult();
            };
            EXPECT_EQ(sign(edge), 1);
            EXPECT_EQ(sign(edge + one), 1);
            EXPECT_EQ(sign(edge - one), 2);
            EXPECT_EQ(sign(-edge), 2);
            EXPECT_EQ(sign(-edge + one), 2);
            EXPECT_EQ(sign(-edge - one), -1);
            EXPECT_EQ(sign(BigInteger(0)), 2);
            // The true numbers cannot turn the sign, but could at a quarter of the bound.
            for (const int direction : {-1, 1}) {
                const auto product = [&, errorP = errorP, errorQ = errorQ](const BigInteger& value) {
                    const auto [p, q] = FormsWithProduct(value, errorP, errorQ);
                    return Scalar(Worst(p, q, direction), Worst(q, p, direction));
                };
                EXPECT_GT(product(edge).Sign(), 0);
                EXPECT_LT(product(-edge).Sign(), 0);
                if (errorP > 100 && errorP >= errorQ) {
                    EXPECT_EQ(product(edge.ShiftedRight(2)).Sign(), direction);
                }
            }
        }
    }
}

TEST(ZULMRSBSPIntegerForms, ExactFormsDecideZeroAndBesideIt)
{
    const BigInteger one(1);
    const auto sign = [](const BigInteger& product) {
        const auto [p, q] = FormsWithProduct(product, 0, 0);
        return SideOf(p, q).ToKernelResult();
    };
    EXPECT_EQ(sign(BigInteger(0)), 0);
    EXPECT_EQ(sign(one), 1);
    EXPECT_EQ(sign(-one), -1);
    EXPECT_EQ(sign(BigInteger::PowerOfTwo(64)), 1);
    EXPECT_EQ(sign(-BigInteger::PowerOfTwo(64)), -1);
}

TEST(ZULMRSBSPIntegerForms, TheLargestIntegersDoNotOverflow)
{
    for (unsigned int signs = 0; signs < 256; ++signs) {
        Form p;
        Form q;
        p.m_Error = 0;
        q.m_Error = 0;
        for (unsigned int i = 0; i < 4; ++i) {
            p.m_Values[i] = (signs >> i & 1U) != 0 ? -Largest : Largest;
            q.m_Values[i] = (signs >> (i + 4) & 1U) != 0 ? -Largest : Largest;
        }
        const auto a = ToBig(p.m_Values);
        const auto b = ToBig(q.m_Values);
        for (const std::int64_t error : Errors) {
            p.m_Error = error;
            const int side = SideOf(p, q).ToKernelResult();
            const int exact = Scalar(a, b).Sign();
            ASSERT_EQ(side, exact == 0 && error != 0 ? 2 : exact) << signs;
            for (std::size_t i = 0; i < 4; ++i) {
                for (std::size_t j = 0; j < 4; ++j) {
                    const int minor = (a[i] * b[j] - a[j] * b[i]).Sign();
                    ASSERT_EQ(Minor(p, q, i, j).ToKernelResult(), minor == 0 && error != 0 ? 2 : minor);
                }
            }
        }
    }
}

TEST(ZULMRSBSPIntegerForms, FormsThatSayNothingDecideNothing)
{
    const Form unknown;
    Form exact;
    exact.m_Values = {Largest, -Largest, Largest, 1};
    exact.m_Error = 0;
    Form off = exact;
    off.m_Error = (std::int64_t{1} << 30) + 2;
    for (const Form& other : {unknown, exact, off}) {
        EXPECT_FALSE(SideOf(unknown, other).IsDecided());
        EXPECT_FALSE(SideOf(other, unknown).IsDecided());
        EXPECT_FALSE(Minor(unknown, other, 0, 3).IsDecided());
        EXPECT_FALSE(Minor(other, unknown, 3, 1).IsDecided());
    }
}

/// Integers of any size, and true numbers anywhere within the error.
TEST(ZULMRSBSPIntegerForms, NoTrueNumbersContradictADecision)
{
    Random random(62'005);
    std::size_t nbDecided = 0;
    for (std::size_t n = 0; n < Cases; ++n) {
        std::array<Form, 2> forms;
        std::array<std::array<BigInteger, 4>, 2> truth;
        for (std::size_t f = 0; f < 2; ++f) {
            forms[f].m_Error = Errors[static_cast<std::size_t>(random.Integer(0, 6))];
            const int shift = random.Integer(2, 40);
            const std::int64_t reach = std::max<std::int64_t>(forms[f].m_Error - 2, 0);
            for (std::size_t i = 0; i < 4; ++i) {
                const auto value = static_cast<std::int64_t>(random.Bits() >> shift);
                forms[f].m_Values[i] = random.OneIn(2) ? value : -value;
                const std::int64_t off = random.OneIn(3) ? 0 : (random.OneIn(2) ? reach : -reach);
                truth[f][i] = BigInteger(forms[f].m_Values[i]) + BigInteger(off);
            }
        }
        const ZULMRSBSPSign side = SideOf(forms[0], forms[1]);
        if (side.IsDecided()) {
            ++nbDecided;
            ASSERT_EQ(side.ToKernelResult(), Scalar(truth[0], truth[1]).Sign());
        }
        for (const auto& [i, j] : {std::array<std::size_t, 2>{0, 1}, {3, 0}, {1, 2}}) {
            const ZULMRSBSPSign minor = Minor(forms[0], forms[1], i, j);
            if (minor.IsDecided()) {
                ASSERT_EQ(minor.ToKernelResult(),
                          (truth[0][i] * truth[1][j] - truth[0][j] * truth[1][i]).Sign());
            }
        }
    }
    EXPECT_GT(nbDecided, Cases / 10);
}

TEST(ZULMRSBSPIntegerForms, SidesOfEveryKindOfPlaneAndPointAreRight)
{
    const Silence silence;
    Random random(62'006);
    std::size_t nbDecided = 0;
    ForAllKinds(2 * Cases, [&](Regime regime, Position position, std::size_t count) {
        for (std::size_t n = 0; n < count; ++n) {
            Scene scene(random, regime, position);
            const PlaneCase plane = scene.Plane();
            const PointCase point = scene.AnyPoint();
            const int exact = DyadicSide(plane.m_Exact, point.m_Exact);
            const ZULMRSBSPSign kept = ZULMRSBSPOrientation::ByIntegers(*plane.m_Plane, *point.m_Point);
            const ZULMRSBSPSign byPlanes =
                ZULMRSBSPOrientation::ExactByIntegers(*plane.m_Plane, *point.m_Point);
            for (const ZULMRSBSPSign& sign : {kept, byPlanes}) {
                if (sign.IsDecided()) {
                    ++nbDecided;
                    ASSERT_EQ(sign.ToKernelResult(), exact) << NameOf(regime);
                }
            }
        }
    });
    EXPECT_GT(nbDecided, Cases / 4);
}

#if ZUL_HAS_SSE2
/// Not one floating-point instruction: the whole word stays, raised flags and those that are not.
TEST(ZULMRSBSPIntegerForms, NothingOfTheCallersEnvironmentIsTouched)
{
    const auto plane = Cartesian(0.1, 0.2, 0.3, -0.4);
    const auto through = ThreePoints({0.1, 0.2, 0.3}, {1.1, 0.2, 0.7}, {0.3, 5.2, 0.3});
    const auto point =
        Meeting(Cartesian(1, 0, 0.1, -0.3), Cartesian(0, 1, 0.2, -0.1), Cartesian(0.1, 0, 1, -0.7));
    const std::array<Filtered, 2> numbers = {
        Filtered{ZULExpDynamic(0.1), ZULExpDynamic(0x1p-1074), ZULExpDynamic(0.3), ZULExpDynamic(-0.4)},
        Filtered{ZULExpDynamic(1e308), ZULExpDynamic(NotANumber), ZULExpDynamic(0.3), ZULExpDynamic(-0.4)}};
    constexpr unsigned int masked = 0x1F80;
    auto words = HostileControlWords();
    words.push_back(masked);
    for (const ZULExpProcessor::ControlWord word : words) {
        int sum = 0;
        const auto left = RunUnder(word, [&] {
            sum += ZULMRSBSPOrientation::ByIntegers(*plane, *point).ToKernelResult();
            sum += ZULMRSBSPOrientation::ByIntegers(*through, *point).ToKernelResult();
            sum += ZULMRSBSPOrientation::ExactByIntegers(*plane, *point).ToKernelResult();
            for (const Filtered& filtered : numbers) {
                sum += static_cast<int>(FromFiltered(filtered, OffsetShift).IsExact());
            }
            sum += static_cast<int>(OfPlane(Plane4{0x1p-1074, 0.1, NotANumber, Infinity}).IsExact());
            sum += static_cast<int>(OfPlane(Plane4{0x1p-1074, 0.1, 1e308, 3.0}).IsExact());
        });
        EXPECT_EQ(left, word);
        EXPECT_NE(sum, 99);
    }
}
#endif
}  // namespace
