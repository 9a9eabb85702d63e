#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "ZULMRSBSP3PlanesPointKit.h"
#include "ZULMRSBSPQuadrupleHolder.h"
#include "ZULTestNumbers.h"
#include "ZULTestSupport.h"

// The numbers of a point of three planes: formulas, exactness, independence of the caller's environment.

using namespace ThreePlanesPointKit;
using ZULTest::AreSameBits;
using ZULTest::Regime;

namespace
{
constexpr int NbRounds = 10000 / ZUL_TEST_CASES_DIVISOR;

TEST(ThreePlanesPoint, TheCacheIsTheFormulaInItsOrder)
{
    ZULTest::Random random(51);
    int decided = 0;
    const ZULTest::LineCapture lines;
    for (const Regime regime : ZULTest::AllRegimes) {
        for (int round = 0; round < 1000; ++round) {
            const Equations equations = random.PlaneTriple(regime);
            const Fixture f(equations);
            const auto* cache = CacheOf(*f.m_Point);
            if (cache == nullptr) {
                continue;
            }
            std::array<ZULExpDynamic, 4> expected = FilteredPoint(equations);
            if (expected[3].Sign() == ZULExpSignNegative) {
                expected = Negated(expected);
            }
            EXPECT_TRUE(AreSameBits(*cache, expected)) << ZULTest::NameOf(regime);
            ++decided;
        }
    }
    EXPECT_GT(decided, 3000);
}

/// Random planes of both kinds and what they are exactly.
struct MixedPlanes {
    MixedPlanes(ZULTest::Random& random, Regime regime, bool allCartesian)
    {
        const Equations equations = random.PlaneTriple(regime);
        for (std::size_t i = 0; i < 3; ++i) {
            if (allCartesian || random.OneIn(2)) {
                m_Planes[i] = Cartesian(equations[i]);
                m_Exact[i] = ZULTest::ToRational(equations[i]);
            } else {
                const auto points = random.PointTriple(regime);
                m_Planes[i] = Through(points);
                m_Exact[i] = ZULTest::ThroughPoints(points);
            }
            m_LacksFiltered |= !ZULMRSBSPQuadrupleHolder(m_Planes[i]->GetStdEquation_ExpDynamic());
        }
    }

    std::array<PlaneOwner, 3> m_Planes;
    std::array<ZULTest::RationalPlane, 3> m_Exact;
    bool m_LacksFiltered = false;
};

void CheckAgainstRationals(ZULTest::Random& random, Regime regime, bool allCartesian, int& delivered)
{
    MixedPlanes planes(random, regime, allCartesian);
    const ZULTest::RationalPoint given = ZULTest::MeetingPoint(planes.m_Exact);
    const Triple triple = {planes.m_Planes[0].get(), planes.m_Planes[1].get(), planes.m_Planes[2].get()};
    bool isValid = false;
    const PointOwner point(new ZULMRSBSP3PlanesPoint(triple, isValid));
    if (!planes.m_LacksFiltered || allCartesian) {
        ASSERT_EQ(isValid, sgn(given[3]) != 0) << ZULTest::NameOf(regime);
        ASSERT_EQ(point->GetP2(), sgn(given[3]) < 0 ? triple[2] : triple[1]) << ZULTest::NameOf(regime);
    }
    const bool isExchanged = point->GetP2() != triple[1];
    const ZULMRSBSPQuadrupleHolder filtered(point->GetCartesianRepresentation_ExpDynamic());
    const ZULMRSBSPQuadrupleHolder interval(point->GetCartesianRepresentation_ExpInterval());
    const ZULMRSBSPQuadrupleHolder ring(point->GetCartesianRepresentation_FloatRing());
    ASSERT_TRUE(ring);
    delivered += interval ? 1 : 0;
    for (std::size_t i = 0; i < 4; ++i) {
        const ZULTest::Rational exact = isExchanged ? ZULTest::Rational(-given[i]) : given[i];
        EXPECT_TRUE(ZULTest::ToRational(ring[i]) == exact) << ZULTest::NameOf(regime);
        EXPECT_TRUE(!interval || ZULTest::Contains(interval[i], exact)) << ZULTest::NameOf(regime);
        // After an undecided exchange the cached numbers are those of the triple as given.
        if (filtered && !filtered[i].IsPlaceholder()) {
            EXPECT_TRUE(ZULTest::IsWithinBound(filtered[i], exact) ||
                        (isExchanged && filtered[3].Sign() != ZULExpSignPositive &&
                         ZULTest::IsWithinBound(filtered[i], given[i])))
                << ZULTest::NameOf(regime);
        }
    }
    // The quotients, and their error, enclose the point.
    if (interval && sgn(given[3]) != 0) {
        const ZULMRSBSPQuadrupleHolder approximation(point->GetApproximatedXYZError());
        for (std::size_t i = 0; i < 3 && std::isfinite(approximation[3]); ++i) {
            const ZULTest::Rational error = abs(ZULTest::ToRational(approximation[i]) - given[i] / given[3]);
            EXPECT_TRUE(error <= ZULTest::ToRational(approximation[3])) << ZULTest::NameOf(regime);
        }
    }
}

TEST(ThreePlanesPoint, EveryArithmeticHoldsAgainstRationals)
{
    ZULTest::Random random(52);
    const ZULTest::LineCapture lines;
    int delivered = 0;
    for (const Regime regime : ZULTest::AllRegimes) {
        for (int round = 0; round < NbRounds; ++round) {
            CheckAgainstRationals(random, regime, round % 3 == 0, delivered);
        }
    }
    EXPECT_GT(delivered, 3 * NbRounds);
}

#if ZUL_HAS_SSE2
struct Observed {
    PointOwner m_Point;
    bool m_IsValid = false;
    ZULMRSBSPQuadruple<ZULExpInterval> m_Interval;
    ZULMRSBSPQuadruple<double> m_Approximation;
    Row m_Xyz{};
};

Observed Observe(const Triple& planes)
{
    Observed result;
    result.m_Point = PointOwner(new ZULMRSBSP3PlanesPoint(planes, result.m_IsValid));
    result.m_Interval = result.m_Point->GetCartesianRepresentation_ExpInterval();
    result.m_Approximation = result.m_Point->GetApproximatedXYZError();
    result.m_Xyz = result.m_Point->GetApproximatedXYZ();
    return result;
}

void ExpectSame(const Observed& x, const Observed& y, const char* regime)
{
    EXPECT_EQ(x.m_IsValid, y.m_IsValid) << regime;
    EXPECT_EQ(x.m_Point->GetPlanes(), y.m_Point->GetPlanes()) << regime;
    EXPECT_TRUE(AreSameBits(x.m_Xyz, y.m_Xyz)) << regime;
    ASSERT_EQ(CacheOf(*x.m_Point) == nullptr, CacheOf(*y.m_Point) == nullptr) << regime;
    EXPECT_TRUE(CacheOf(*x.m_Point) == nullptr || AreSameBits(*CacheOf(*x.m_Point), *CacheOf(*y.m_Point)));
    const ZULMRSBSPQuadrupleHolder p(x.m_Interval);
    const ZULMRSBSPQuadrupleHolder q(y.m_Interval);
    ASSERT_EQ(static_cast<bool>(p), static_cast<bool>(q)) << regime;
    for (std::size_t i = 0; p && i < 4; ++i) {
        EXPECT_EQ(p[i].LowerBound(), q[i].LowerBound()) << regime;
        EXPECT_EQ(p[i].UpperBound(), q[i].UpperBound()) << regime;
    }
    const ZULMRSBSPQuadrupleHolder u(x.m_Approximation);
    const ZULMRSBSPQuadrupleHolder v(y.m_Approximation);
    EXPECT_TRUE(AreSameBits(*u, *v)) << regime;
}

TEST(ThreePlanesPoint, TheCallersEnvironmentDoesNotMatterAndStays)
{
    ZULTest::Random random(53);
    const ZULTest::LineCapture lines;
    for (const Regime regime : ZULTest::AllRegimes) {
        for (int round = 0; round < 10; ++round) {
            const MixedPlanes planes(random, regime, round % 2 == 0);
            const Triple triple = {planes.m_Planes[0].get(), planes.m_Planes[1].get(),
                                   planes.m_Planes[2].get()};
            for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
                const Observed expected = Observe(triple);
                Observed observed;
                const auto left = ZULTest::RunUnder(word, [&] { observed = Observe(triple); });
                EXPECT_EQ(left, word);
                ExpectSame(observed, expected, ZULTest::NameOf(regime));
                // The holders of the second comparison own what is left.
            }
        }
    }
}
#endif
}  // namespace
