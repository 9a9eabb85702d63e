#include "ZULMRSBSPHash.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ZULMRSBSPPlaneIdentity.h"
#include "ZULTestSupport.h"

namespace
{
using ZULMRSBSPPlaneIdentity::ExactKey;

/// FNV-1a, written on its own over a text of bytes.
std::uint64_t HashOfBytes(std::string_view bytes)
{
    std::uint64_t hash = 0xcbf29ce484222325ULL;
    for (const char byte : bytes) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001b3ULL;
    }
    return hash;
}

std::string LittleEndianBytes(std::uint64_t word)
{
    std::string bytes;
    for (int i = 0; i < 8; ++i) {
        bytes += static_cast<char>(static_cast<unsigned char>(word >> (8 * i)));
    }
    return bytes;
}

std::size_t GeometricHashOf(double a, double b, double c, double d)
{
    return ZULMRSBSPPlaneIdentity::GeometricKey::OfEquation({a, b, c, d});
}
}  // namespace

TEST(ZULMRSBSPHash, TheReferenceIsTheWellKnownFunction)
{
    EXPECT_EQ(HashOfBytes(""), 0xcbf29ce484222325ULL);
    EXPECT_EQ(HashOfBytes("a"), 0xaf63dc4c8601ec8cULL);
    EXPECT_EQ(HashOfBytes("foobar"), 0x85944171f73967e8ULL);
}

TEST(ZULMRSBSPHash, HashesEightBytesLeastSignificantFirst)
{
    for (const std::uint64_t word : {0ULL, 1ULL, 0x0123456789abcdefULL, ~0ULL, 0x8000000000000000ULL}) {
        EXPECT_EQ(ZULMRSBSPHash::OfWord(word), HashOfBytes(LittleEndianBytes(word)));
    }
    EXPECT_EQ(ZULMRSBSPHash::OfDouble(-2.5),
              HashOfBytes(LittleEndianBytes(std::bit_cast<std::uint64_t>(-2.5))));
    const int object = 0;
    EXPECT_EQ(ZULMRSBSPHash::OfPointer(&object),
              HashOfBytes(LittleEndianBytes(reinterpret_cast<std::uintptr_t>(&object))));
}

TEST(ZULMRSBSPHash, BothZerosHashAlike)
{
    EXPECT_EQ(ZULMRSBSPHash::OfDouble(-0.0), ZULMRSBSPHash::OfDouble(0.0));
    EXPECT_EQ(ZULMRSBSPHash::OfDouble(0.0), HashOfBytes(LittleEndianBytes(0)));
}

TEST(ZULMRSBSPHash, MembersAreCombinedByExclusiveOr)
{
    const std::array<int, 3> objects{};
    EXPECT_EQ(ZULMRSBSPHash::OfPointers(&objects[0], &objects[1], &objects[2]),
              ZULMRSBSPHash::OfPointer(&objects[0]) ^ ZULMRSBSPHash::OfPointer(&objects[1]) ^
                  ZULMRSBSPHash::OfPointer(&objects[2]));
    EXPECT_EQ(ZULMRSBSPHash::OfDoubles(1.0, 2.0, 4.0),
              ZULMRSBSPHash::OfDouble(1.0) ^ ZULMRSBSPHash::OfDouble(2.0) ^ ZULMRSBSPHash::OfDouble(4.0));
}

TEST(ZULMRSBSPHash, TheExactIdentityHashesTheFourCoefficients)
{
    const ExactKey key({1.0, -2.0, 0.5, 7.0});
    EXPECT_EQ(key.GetHash(), ZULMRSBSPHash::OfDoubles(1.0, -2.0, 0.5, 7.0));
    EXPECT_TRUE(key.IsSame(ZULMRSBSPCartesianPlane({1.0, -2.0, 0.5, 7.0})));
    EXPECT_FALSE(key.IsSame(ZULMRSBSPCartesianPlane({1.0, -2.0, 0.5, 7.5})));
    const ExactKey zero({1.0, 0.0, 0.0, 0.0});
    EXPECT_TRUE(zero.IsSame(ZULMRSBSPCartesianPlane({1.0, -0.0, 0.0, -0.0})));
    EXPECT_TRUE(ExactKey({1.0, -0.0, 0.0, -0.0}).IsSame(ZULMRSBSPCartesianPlane({1.0, 0.0, 0.0, 0.0})));
    EXPECT_EQ(zero.GetHash(), ExactKey({1.0, -0.0, 0.0, -0.0}).GetHash());
}

TEST(ZULMRSBSPHash, TheExactIdentityKnowsSmallAndInfiniteCoefficientsButNoNaN)
{
    const double inf = INFINITY;
    const double tiny = 5e-324;
    EXPECT_TRUE(ExactKey({1.0, tiny, inf, -inf}).IsSame(ZULMRSBSPCartesianPlane({1.0, tiny, inf, -inf})));
    EXPECT_FALSE(ExactKey({1.0, tiny, 0.0, 0.0}).IsSame(ZULMRSBSPCartesianPlane({1.0, 0.0, 0.0, 0.0})));
    EXPECT_FALSE(ExactKey({1.0, tiny, 0.0, 0.0}).IsSame(ZULMRSBSPCartesianPlane({1.0, -tiny, 0.0, 0.0})));
    for (std::size_t i = 0; i < 4; ++i) {
        for (const double nan : {double{NAN}, -double{NAN}, std::numeric_limits<double>::signaling_NaN()}) {
            std::array<double, 4> equation{1.0, 2.0, 3.0, 4.0};
            equation[i] = nan;
            EXPECT_FALSE(ExactKey(equation).IsSame(ZULMRSBSPCartesianPlane(equation)));
        }
    }
}

TEST(ZULMRSBSPHash, TheGeometricIdentityHashesTheDirectionAlone)
{
    constexpr std::uint64_t byte0 = 1ULL << 32U;
    EXPECT_EQ(GeometricHashOf(1.0, 0.0, 0.0, -2.0), 0x03 * byte0);
    EXPECT_EQ(GeometricHashOf(-5.0, 0.0, 0.0, 1e300), 0x0B * byte0);
    EXPECT_EQ(GeometricHashOf(0.0, 1.0, 0.0, 0.0), 0x05 * byte0);
    EXPECT_EQ(GeometricHashOf(0.0, -1.0, 0.0, 0.0), 0x15 * byte0);
    EXPECT_EQ(GeometricHashOf(0.0, 0.0, 1.0, 0.0), 0x01 * byte0);
    EXPECT_EQ(GeometricHashOf(0.0, 0.0, -1.0, 0.0), 0x21 * byte0);
    // 0.6 and 0.8 of the scale are 1779491 and 2372655.
    EXPECT_EQ(GeometricHashOf(3.0, 4.0, 0.0, 1.0), 0x0000C8C5000006C9ULL);
    // The dominant component goes, the others stay: 2372655 last, 1779491 as the second.
    EXPECT_EQ(GeometricHashOf(-4.0, -3.0, 0.0, 1.0), (0x1BULL << 32U) | (1779491ULL << 11U));
    EXPECT_EQ(GeometricHashOf(0.0, 3.0, 4.0, 1.0), (0x01ULL << 32U) | (1779491ULL << 11U));
    EXPECT_EQ(GeometricHashOf(0.0, 4.0, 3.0, 1.0), (0x05ULL << 32U) | (1779491ULL << 11U));
}

TEST(ZULMRSBSPHash, ATieInDirectionGoesToTheFirstComponent)
{
    const double scale = 2965819.3865442984;
    const auto u = static_cast<std::uint64_t>(1.0 / std::sqrt(2.0) * scale);
    const std::uint64_t expected =
        ((u >> 2U & 0xFFU) << 40U) | (((u * 64U | 3U) & 0xFFU) << 32U) | (u >> 10U);
    // Of (1, 0, 1) the x component goes: first is z, second is y.
    EXPECT_EQ(GeometricHashOf(1.0, 0.0, 1.0, 0.0), expected);
}

TEST(ZULMRSBSPHash, PlanesThatCoincideHashAlikeWhateverTheirLength)
{
    for (int exponent = -1070; exponent <= 1020; exponent += 10) {
        const double s = std::ldexp(1.0, exponent);
        EXPECT_EQ(GeometricHashOf(s, 0.0, 0.0, 2.0), GeometricHashOf(1.0, 0.0, 0.0, 7.0)) << exponent;
        EXPECT_EQ(GeometricHashOf(0.0, -s, s, 0.0), GeometricHashOf(0.0, -1.0, 1.0, 0.0)) << exponent;
    }
}

TEST(ZULMRSBSPHash, ANormalWithoutDirectionHashesToZero)
{
    const double inf = INFINITY;
    const double nan = NAN;
    EXPECT_EQ(GeometricHashOf(0.0, 0.0, 0.0, 1.0), 0U);
    EXPECT_EQ(GeometricHashOf(0.0, -0.0, 0.0, nan), 0U);
    EXPECT_EQ(GeometricHashOf(nan, 0.0, 0.0, 1.0), 0U);
    EXPECT_EQ(GeometricHashOf(1.0, inf, 0.0, 1.0), 0U);
    EXPECT_EQ(GeometricHashOf(-inf, -inf, 0.0, 1.0), 0U);
    // An offset that is not finite takes no part either.
    EXPECT_EQ(GeometricHashOf(1.0, 0.0, 0.0, inf), GeometricHashOf(1.0, 0.0, 0.0, 0.0));
    EXPECT_EQ(GeometricHashOf(1.0, 0.0, 0.0, nan), GeometricHashOf(1.0, 0.0, 0.0, 0.0));
}

TEST(ZULMRSBSPHash, TheScaledNormIsThePlainOneInTheOrdinaryRange)
{
    for (const auto& [a, b, c] : std::vector<std::array<double, 3>>{{1.0, 2.0, 3.0},
                                                                    {1e150, 1e-150, 3.3},
                                                                    {1e-100, 2e-101, 0.0},
                                                                    {0.1, 0.2, 0.3},
                                                                    {0.0, 0.0, 0.0}}) {
        const ZULMRSBSPScaledNorm norm(a, b, c);
        EXPECT_EQ(norm.m_Exponent, 0);
        EXPECT_EQ(norm.Length(), std::sqrt((a * a + b * b) + c * c));
    }
}

TEST(ZULMRSBSPHash, TheScaledNormNeitherOverflowsNorVanishes)
{
    const double huge = 1.5e308;
    const ZULMRSBSPScaledNorm large(huge, huge, huge);
    EXPECT_EQ(large.Length(), INFINITY);
    EXPECT_NEAR(large.Divide(huge), 1.0 / std::sqrt(3.0), 1e-15);
    const ZULMRSBSPScaledNorm two(3e200, 4e200, 0.0);
    EXPECT_NEAR(two.Length() / 5e200, 1.0, 1e-15);
    const double tiny = 5e-324;
    const ZULMRSBSPScaledNorm small(tiny, 0.0, 0.0);
    EXPECT_EQ(small.Length(), tiny);
    EXPECT_EQ(small.Divide(tiny), 1.0);
    EXPECT_FALSE(std::isfinite(ZULMRSBSPScaledNorm(INFINITY, 1.0, 0.0).m_Value));
    EXPECT_FALSE(std::isfinite(ZULMRSBSPScaledNorm(1.0, NAN, 0.0).m_Value));
}
