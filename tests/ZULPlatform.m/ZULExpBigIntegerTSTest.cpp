#include "ZULExpBigIntegerTS.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "ZULExpFloatStatus.h"
#include "ZULExpReference.h"

namespace
{
using ZULExpReference::Random;

using ZULExpReference::NbCases;

/// Mostly of a few limbs, as in practice; some of thousands of bits; runs of zeros and ones at limb borders.
mpz_class RandomInteger(Random& random)
{
    const std::uint64_t kind = random() % 100;
    const std::uint64_t nbLimbs = kind < 90 ? random() % 7 : (kind < 99 ? random() % 20 : random() % 64);
    mpz_class result = 0;
    for (std::uint64_t i = 0; i < nbLimbs; ++i) {
        const std::uint64_t pattern = random() % 8;
        const std::uint64_t limb = pattern == 0 ? 0 : (pattern == 1 ? ~std::uint64_t{0} : random());
        result = (result << 64) + static_cast<unsigned long>(limb);
    }
    result >>= random() % 64;
    return random() % 2 == 0 ? result : mpz_class(-result);
}

ZULExpBigIntegerTS FromReference(const mpz_class& x)
{
    static_assert(std::is_same_v<mp_limb_t, std::uint64_t>);
    return ZULExpBigIntegerTS::FromLimbs(mpz_limbs_read(x.get_mpz_t()), mpz_size(x.get_mpz_t()), sgn(x) < 0);
}

bool AreEqual(const ZULExpBigIntegerTS& x, const mpz_class& y)
{
    const std::size_t size = mpz_size(y.get_mpz_t());
    return x.Sign() == sgn(y) && x.GetNbLimbs() == size &&
           std::equal(x.GetLimbs(), x.GetLimbs() + size, mpz_limbs_read(y.get_mpz_t()));
}

/// A pair that is sometimes equal, opposite or close.
std::pair<mpz_class, mpz_class> RandomPair(Random& random)
{
    const mpz_class x = RandomInteger(random);
    switch (random() % 8) {
        case 0:
            return {x, x};
        case 1:
            return {x, mpz_class(-x)};
        case 2:
            return {x, mpz_class(x + static_cast<int>(random() % 3) - 1)};
        default:
            return {x, RandomInteger(random)};
    }
}

template <class Operation>
void CheckBinary(std::uint64_t seed, Operation isRight)
{
    Random random(seed);
    for (int i = 0; i < NbCases; ++i) {
        const auto [x, y] = RandomPair(random);
        ASSERT_TRUE(isRight(x, y)) << x.get_str(16) << " and " << y.get_str(16);
    }
}
}  // namespace

TEST(ZULExpBigIntegerTS, AddsExactly)
{
    CheckBinary(1, [](const mpz_class& x, const mpz_class& y) {
        return AreEqual(FromReference(x) + FromReference(y), x + y);
    });
}

TEST(ZULExpBigIntegerTS, SubtractsExactly)
{
    CheckBinary(2, [](const mpz_class& x, const mpz_class& y) {
        return AreEqual(FromReference(x) - FromReference(y), x - y);
    });
}

TEST(ZULExpBigIntegerTS, MultipliesExactly)
{
    CheckBinary(3, [](const mpz_class& x, const mpz_class& y) {
        return AreEqual(FromReference(x) * FromReference(y), x * y);
    });
}

TEST(ZULExpBigIntegerTS, Compares)
{
    CheckBinary(4, [](const mpz_class& x, const mpz_class& y) {
        const int order = cmp(x, y);
        return Compare(FromReference(x), FromReference(y)) == (order > 0 ? 1 : 0) - (order < 0 ? 1 : 0);
    });
}

TEST(ZULExpBigIntegerTS, Shifts)
{
    Random random(5);
    for (int i = 0; i < NbCases; ++i) {
        const mpz_class x = RandomInteger(random);
        const std::size_t bits = random() % (i % 8 == 0 ? 2000 : 130);
        const ZULExpBigIntegerTS own = FromReference(x);
        mpz_class right;
        mpz_tdiv_q_2exp(right.get_mpz_t(), x.get_mpz_t(), bits);
        ASSERT_TRUE(AreEqual(own.ShiftedLeft(bits), x << bits)) << x.get_str(16) << " by " << bits;
        ASSERT_TRUE(AreEqual(own.ShiftedRight(bits), right)) << x.get_str(16) << " by " << bits;
    }
}

TEST(ZULExpBigIntegerTS, CountsBits)
{
    Random random(6);
    for (int i = 0; i < NbCases; ++i) {
        const mpz_class x = RandomInteger(random) << (random() % 100);
        const ZULExpBigIntegerTS own = FromReference(x);
        const bool isZero = sgn(x) == 0;
        ASSERT_EQ(own.GetBitLength(), isZero ? 0 : mpz_sizeinbase(x.get_mpz_t(), 2));
        ASSERT_EQ(own.GetTrailingZeros(), isZero ? 0 : mpz_scan1(x.get_mpz_t(), 0));
        ASSERT_EQ(own.IsZero(), isZero);
        ASSERT_TRUE(AreEqual(-own, -x));
    }
}

// The nearest of the two neighbours, and of two equally near ones the even one, found by integer division.
TEST(ZULExpBigIntegerTS, ConvertsToTheNearestDouble)
{
    Random random(7);
    for (int i = 0; i < NbCases; ++i) {
        mpz_class x = RandomInteger(random);
        if (i % 4 == 0) {  // halves and their neighbours
            x = ((x >> (mpz_size(x.get_mpz_t()) * 64 / 2)) * 2 + 1) << (random() % 200);
            x += static_cast<int>(random() % 3) - 1;
        }
        double mantissa = -1.0;
        std::int64_t exponent = -1;
        FromReference(x).ConvertToDouble(mantissa, exponent);
        const mpz_class magnitude = abs(x);
        if (sgn(x) == 0) {
            ASSERT_TRUE(mantissa == 0.0 && exponent == 0);
            continue;
        }
        const std::size_t length = mpz_sizeinbase(magnitude.get_mpz_t(), 2);
        mpz_class top = magnitude << 53;
        mpz_class rest;
        mpz_fdiv_r_2exp(rest.get_mpz_t(), top.get_mpz_t(), length);
        top >>= length;
        const int half = cmp(rest, mpz_class(mpz_class(1) << (length - 1)));
        top += half > 0 || (half == 0 && mpz_odd_p(top.get_mpz_t()) != 0) ? 1 : 0;
        ASSERT_GE(mantissa, 0.5);
        ASSERT_LT(mantissa, 1.0);
        ASSERT_TRUE(exponent == static_cast<std::int64_t>(length) ||
                    exponent == static_cast<std::int64_t>(length) + 1);
        const bool isCarried = exponent > static_cast<std::int64_t>(length);
        ASSERT_EQ(std::ldexp(mantissa, isCarried ? 54 : 53), top.get_d()) << x.get_str(16);
    }
}

TEST(ZULExpBigIntegerTS, ConversionDoesNotDependOnTheRoundingModeAndRaisesNothing)
{
    const ZULExpBigIntegerTS x = ZULExpBigIntegerTS(1).ShiftedLeft(300) + ZULExpBigIntegerTS(1);
    for (const int mode : {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        const ZULExpFloatScope scope;
        std::fesetround(mode);
        double mantissa = 0.0;
        std::int64_t exponent = 0;
        x.ConvertToDouble(mantissa, exponent);
        EXPECT_EQ(mantissa, 0.5);
        EXPECT_EQ(exponent, 301);
        EXPECT_EQ(_statusfp(), 0U);
    }
}

TEST(ZULExpBigIntegerTS, ConstructsFromIntegers)
{
    for (const std::int64_t value :
         {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, std::int64_t{42},
          std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
        EXPECT_TRUE(AreEqual(ZULExpBigIntegerTS(value), mpz_class(static_cast<long>(value)))) << value;
    }
    EXPECT_TRUE(ZULExpBigIntegerTS().IsZero());
    const std::array<std::uint64_t, 6> padded{7, 0, 0, 0, 0, 0};
    EXPECT_TRUE(AreEqual(ZULExpBigIntegerTS::FromLimbs(padded.data(), padded.size(), true), mpz_class(-7)));
    EXPECT_EQ(ZULExpBigIntegerTS::FromLimbs(nullptr, 0, true).Sign(), 0);
}

TEST(ZULExpBigIntegerTS, CopiesAndMovesBetweenInsideAndHeap)
{
    const mpz_class small = 12345;
    const mpz_class medium = (mpz_class(1) << 500) - 3;
    const mpz_class large = (mpz_class(1) << 5000) - 7;
    for (const mpz_class& from : {small, medium, large, mpz_class(0)}) {
        for (const mpz_class& to : {small, medium, large, mpz_class(0)}) {
            const ZULExpBigIntegerTS source = FromReference(from);
            ZULExpBigIntegerTS copied = FromReference(to);
            copied = source;
            EXPECT_TRUE(AreEqual(copied, from));
            EXPECT_TRUE(AreEqual(copied + FromReference(to), from + to));
            ZULExpBigIntegerTS moved = FromReference(to);
            moved = std::move(copied);
            EXPECT_TRUE(AreEqual(moved, from));
            EXPECT_TRUE(
                copied.IsZero());  // NOLINT(bugprone-use-after-move,clang-analyzer-cplusplus.Move): zero
            EXPECT_TRUE(AreEqual(copied + moved, from));
            ZULExpBigIntegerTS constructed(std::move(moved));
            EXPECT_TRUE(AreEqual(constructed, from));
            EXPECT_TRUE(moved.IsZero());  // NOLINT(bugprone-use-after-move,clang-analyzer-cplusplus.Move)
            ZULExpBigIntegerTS& same = constructed;
            constructed = same;
            EXPECT_TRUE(AreEqual(constructed, from));
            constructed = std::move(same);
            EXPECT_TRUE(AreEqual(constructed, from));
            EXPECT_TRUE(AreEqual(constructed * constructed, from * from));
            EXPECT_TRUE((constructed - constructed).IsZero());
        }
    }
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<ZULExpBigIntegerTS>);
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<ZULExpBigIntegerTS>);
}

TEST(ZULExpBigIntegerTS, RefusesWhatNoMemoryHolds)
{
    const ZULExpBigIntegerTS one(1);
    EXPECT_THROW(one.ShiftedLeft(std::numeric_limits<std::size_t>::max()), std::bad_alloc);
    EXPECT_THROW(one.ShiftedLeft(std::size_t{1} << 40), std::bad_alloc);
    EXPECT_TRUE(ZULExpBigIntegerTS().ShiftedLeft(std::numeric_limits<std::size_t>::max()).IsZero());
    EXPECT_TRUE(one.ShiftedRight(std::numeric_limits<std::size_t>::max()).IsZero());
}
