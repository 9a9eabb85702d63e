#include "ZULMRSBSP3PlanesPoint.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "ZULMRSBSP3PointsPlane.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPQuadrupleHolder.h"
#include "ZULTestAllocation.h"
#include "ZULTestNumbers.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestSupport.h"

using ZULTest::AreSameBits;
using ZULTest::Own;
using ZULTest::Plane4;
using ZULTest::PlaneStub;
using ZULTest::PlaneStubWithDoubles;
using ZULTest::Regime;

namespace
{
using Triple = std::array<ZULMRSBSPPlane*, 3>;
using Equations = std::array<Plane4, 3>;
using PlaneOwner = ZULTest::Owner<ZULMRSBSPPlane>;
using PointOwner = ZULTest::Owner<ZULMRSBSP3PlanesPoint>;
using Calls = std::vector<int>;

constexpr int NbRounds = 10000 / ZUL_TEST_CASES_DIVISOR;

constexpr const char* ExactLine =
    "[E] ERROR INVALID POINT (nul determinant) ( Error happened in function ZULMRSBSP3PlanesPoint::Init / "
    "Source : ZULMRSBSP3PlanesPoint / Line : 50)\n";
constexpr const char* FilteredLine =
    "[E] ERROR INVALID POINT (nul determinant) ( Error happened in function ZULMRSBSP3PlanesPoint::Init / "
    "Source : ZULMRSBSP3PlanesPoint / Line : 62)\n";
constexpr const char* NoIntervalLine =
    "[E] GetCartesianRepresentation_ExpInterval Invalid Equation Error in Point Evaluation !! ( Error "
    "happened "
    "in function ZULMRSBSP3PlanesPoint::GetApproximatedXYZError / Source : ZULMRSBSP3PlanesPoint / Line : "
    "135)\n";
constexpr const char* NoApproximationLine =
    "[E] ZULMRSBSP3PlanesPoint::GetApproximatedXYZ() INVALID EQUATION !! -> Return (0.,0.,0.) ( Error "
    "happened "
    "in function ZULMRSBSP3PlanesPoint::GetApproximatedXYZ / Source : ZULMRSBSP3PlanesPoint / Line : 188)\n";

/// Three planes held by the test, and the point on them.
struct Fixture {
    explicit Fixture(const Equations& equations)
    {
        for (std::size_t i = 0; i < 3; ++i) {
            m_Planes[i] = PlaneOwner(new ZULMRSBSPCartesianPlane(equations[i]));
        }
        Make();
    }
    Fixture(PlaneOwner p1, PlaneOwner p2, PlaneOwner p3)
        : m_Planes{std::move(p1), std::move(p2), std::move(p3)}
    {
        Make();
    }

    void Make() { m_Point = PointOwner(new ZULMRSBSP3PlanesPoint(GetTriple(), m_IsValid)); }
    Triple GetTriple() const { return {m_Planes[0].get(), m_Planes[1].get(), m_Planes[2].get()}; }
    Triple GetExchanged() const { return {m_Planes[0].get(), m_Planes[2].get(), m_Planes[1].get()}; }

    std::array<PlaneOwner, 3> m_Planes;
    bool m_IsValid = false;
    PointOwner m_Point;
};

PlaneOwner Cartesian(const Plane4& equation)
{
    return PlaneOwner(new ZULMRSBSPCartesianPlane(equation));
}
PlaneOwner Through(const std::array<std::array<double, 3>, 3>& points)
{
    return PlaneOwner(new ZULMRSBSP3PointsPlane(points));
}
/// A three-points plane (z = 0) whose equation overflows as a filtered number and as an interval.
PlaneOwner Overflowing()
{
    return Through({{{0, 0, 0}, {1e200, 0, 0}, {0, 1e200, 0}}});
}

const std::array<ZULExpDynamic, 4>* CacheOf(const ZULMRSBSP3PlanesPoint& point)
{
    return std::get<0>(point.GetCartesianRepresentation_ExpDynamic());
}

using Row = std::array<double, 3>;

/// The filtered determinant of three rows of doubles, written out.
ZULExpDynamic FilteredDeterminant(const Row& p, const Row& q, const Row& r)
{
    const auto absolute = [](double x) { return std::fabs(x); };
    const double value = (r[2] * q[1] - r[1] * q[2]) * p[0] + (r[0] * q[2] - r[2] * q[0]) * p[1] +
                         (r[1] * q[0] - r[0] * q[1]) * p[2];
    const double magnitude =
        (absolute(q[2]) * absolute(r[0]) + absolute(q[0]) * absolute(r[2])) * absolute(p[1]) +
        (absolute(r[1]) * absolute(q[2]) + absolute(q[1]) * absolute(r[2])) * absolute(p[0]) +
        (absolute(r[1]) * absolute(q[0]) + absolute(q[1]) * absolute(r[0])) * absolute(p[2]);
    return {value, magnitude, 8};
}

std::array<ZULExpDynamic, 4> FilteredPoint(const Equations& planes)
{
    const auto rows = [&planes](int column) {
        std::array<Row, 3> result;
        for (std::size_t i = 0; i < 3; ++i) {
            result[i] = {planes[i][0], planes[i][1], planes[i][2]};
            if (column < 3) {
                result[i][static_cast<std::size_t>(column)] = -planes[i][3];
            }
        }
        return FilteredDeterminant(result[0], result[1], result[2]);
    };
    return {rows(0), rows(1), rows(2), rows(3)};
}

std::array<ZULExpDynamic, 4> Negated(const std::array<ZULExpDynamic, 4>& numbers)
{
    return {-numbers[0], -numbers[1], -numbers[2], -numbers[3]};
}

ZULTest::RationalPoint ExactPoint(const Equations& planes)
{
    return ZULTest::MeetingPoint(
        {ZULTest::ToRational(planes[0]), ZULTest::ToRational(planes[1]), ZULTest::ToRational(planes[2])});
}

const Equations Corner = {Plane4{1, 0, 0, -1}, Plane4{0, 1, 0, -2}, Plane4{0, 0, 1, -3}};
/// Undecided by the filter; the exact determinant is -3 units in the last place of nine.
const Equations NearlyDependent = {Plane4{1, 2, 3, 1}, Plane4{4, 5, 6, 2}, Plane4{7, 8, 9.0 + 0x1p-49, 4}};
const Equations Huge = {Plane4{1e200, 0, 0, -1e200}, Plane4{0, 1e200, 0, -2e200},
                        Plane4{0, 0, 1e200, -3e200}};

TEST(ThreePlanesPoint, ThePointOfThreePlanes)
{
    const Fixture f(Corner);
    EXPECT_TRUE(f.m_IsValid);
    EXPECT_EQ(f.m_Point->GetType(), ZULMRSBSPPointType_3Planes);
    EXPECT_EQ(f.m_Point->GetRefCount(), 0);
    EXPECT_EQ(f.m_Point->GetPlanes(), f.GetTriple());
    EXPECT_EQ(f.m_Point->GetP1()->GetRefCount(), 1);
    ASSERT_NE(CacheOf(*f.m_Point), nullptr);
    EXPECT_EQ((*CacheOf(*f.m_Point))[3].GetValue(), 1.0);
    EXPECT_EQ(f.m_Point->GetApproximatedPoint(), ZULMathPoint(1, 2, 3));
    EXPECT_EQ(f.m_Point->GetApproximatedXYZ(), (Row{1, 2, 3}));
    const ZULMRSBSPQuadrupleHolder approximation(f.m_Point->GetApproximatedXYZError());
    EXPECT_EQ(*approximation, (Plane4{1, 2, 3, 0}));
}

TEST(ThreePlanesPoint, ANegativeTripleIsExchangedAndTheCacheNegated)
{
    const Equations xzy = {Corner[0], Corner[2], Corner[1]};
    const Fixture f(xzy);
    EXPECT_TRUE(f.m_IsValid);
    EXPECT_EQ(f.m_Point->GetPlanes(), f.GetExchanged());
    EXPECT_TRUE(AreSameBits(*CacheOf(*f.m_Point), Negated(FilteredPoint(xzy))));
    EXPECT_EQ((*CacheOf(*f.m_Point))[3].GetValue(), 1.0);
    EXPECT_EQ(f.m_Point->GetApproximatedPoint(), ZULMathPoint(1, 2, 3));
    for (const PlaneOwner& plane : f.m_Planes) {
        EXPECT_EQ(plane->GetRefCount(), 1);
    }
}

TEST(ThreePlanesPoint, ParallelPlanesThatTheFilterDecides)
{
    const ZULTest::LineCapture lines;
    const Fixture f({Corner[0], Plane4{1, 0, 0, -5}, Corner[2]});
    EXPECT_FALSE(f.m_IsValid);
    EXPECT_EQ(lines.GetText(), FilteredLine);
    EXPECT_EQ(f.m_Point->GetPlanes(), f.GetTriple());
    EXPECT_EQ(f.m_Planes[0]->GetRefCount(), 1);
}

TEST(ThreePlanesPoint, DependentPlanesThatOnlyTheExactSignDecides)
{
    const ZULTest::LineCapture lines;
    const Fixture f({Plane4{1, 2, 3, 1}, Plane4{4, 5, 6, 2}, Plane4{7, 8, 9, 4}});
    EXPECT_FALSE(f.m_IsValid);
    EXPECT_EQ(lines.GetText(), ExactLine);
    EXPECT_EQ(f.m_Point->GetPlanes(), f.GetTriple());
}

TEST(ThreePlanesPoint, ANullPlaneIsInvalidWithoutAWord)
{
    const ZULTest::LineCapture lines;
    auto x = Cartesian(Corner[0]);
    for (std::size_t missing = 0; missing < 3; ++missing) {
        Triple planes = {x.get(), x.get(), x.get()};
        planes[missing] = nullptr;
        bool isValid = true;
        const PointOwner point(new ZULMRSBSP3PlanesPoint(planes, isValid));
        EXPECT_FALSE(isValid);
        EXPECT_EQ(point->GetPlanes(), planes);
        EXPECT_EQ(x->GetRefCount(), 2);
        EXPECT_EQ(CacheOf(*point), nullptr);
    }
    EXPECT_EQ(x->GetRefCount(), 0);
    EXPECT_EQ(lines.GetText(), "");
}

TEST(ThreePlanesPoint, TheMoveFormTakesReferencesToo)
{
    auto planes = Fixture(Corner);
    bool isValid = false;
    Triple triple = planes.GetTriple();
    const PointOwner point(new ZULMRSBSP3PlanesPoint(std::move(triple), isValid));
    EXPECT_TRUE(isValid);
    EXPECT_EQ(planes.m_Planes[0]->GetRefCount(), 2);
}

TEST(ThreePlanesPoint, FieldsFollowTheBase)
{
    const Fixture f(Corner);
    const auto* base = reinterpret_cast<const unsigned char*>(f.m_Point.get());
    EXPECT_EQ(static_cast<const void*>(CacheOf(*f.m_Point)), base + sizeof(ZULMRSBSPPoint));
    const std::size_t flag = sizeof(ZULMRSBSPPoint) + 4 * sizeof(ZULExpDynamic);
    EXPECT_EQ(sizeof(ZULMRSBSP3PlanesPoint), flag + sizeof(double));
    EXPECT_EQ(ZULTest::PeekAt<unsigned char>(*f.m_Point, flag), 1);
    EXPECT_EQ(ZULTest::PeekAt<unsigned char>(*Fixture(Huge).m_Point, flag), 0);
}

TEST(ThreePlanesPoint, AnUndecidedExchangeLeavesTheCachedNumbersAlone)
{
    const ZULTest::LineCapture lines;
    const Fixture f(NearlyDependent);
    ASSERT_LT(sgn(ExactPoint(NearlyDependent)[3]), 0);
    EXPECT_TRUE(f.m_IsValid);
    EXPECT_EQ(f.m_Point->GetPlanes(), f.GetExchanged());
    const std::array<ZULExpDynamic, 4> expected = FilteredPoint(NearlyDependent);
    ASSERT_EQ(expected[3].Sign(), ZULExpSignUncertain);
    ASSERT_NE(CacheOf(*f.m_Point), nullptr);
    EXPECT_TRUE(AreSameBits(*CacheOf(*f.m_Point), expected));

    const Fixture positive({NearlyDependent[0], NearlyDependent[2], NearlyDependent[1]});
    EXPECT_TRUE(positive.m_IsValid);
    EXPECT_EQ(positive.m_Point->GetPlanes(), positive.GetTriple());
    EXPECT_EQ(lines.GetText(), "");
}

TEST(ThreePlanesPoint, AFaultLeavesTheExactSignToDecide)
{
    const ZULTest::LineCapture lines;
    const Equations tiny = {Plane4{1e-200, 0, 0, -1e-200}, Plane4{0, 0, 1e-200, -3e-200},
                            Plane4{0, 1e-200, 0, -2e-200}};
    const Equations denormal = {Plane4{5e-324, 0, 0, 0}, Plane4{0, 1, 0, 0}, Plane4{0, 0, 1, 0}};
    const Fixture huge(Huge);
    const Fixture small(tiny);
    const Fixture least(denormal);
    const Fixture mirrored({Huge[0], Huge[2], Huge[1]});
    for (const Fixture* f : {&huge, &small, &least, &mirrored}) {
        EXPECT_TRUE(f->m_IsValid);
        EXPECT_EQ(f->m_Point->GetCartesianRepresentation_ExpDynamic(),
                  ZULMRSBSPQuadruple<ZULExpDynamic>(nullptr, false));
        EXPECT_EQ(f->m_Point->GetCartesianRepresentation_ExpInterval(),
                  ZULMRSBSPQuadruple<ZULExpInterval>(nullptr, false));
    }
    EXPECT_EQ(huge.m_Point->GetPlanes(), huge.GetTriple());
    EXPECT_EQ(least.m_Point->GetPlanes(), least.GetTriple());
    EXPECT_EQ(small.m_Point->GetPlanes(), small.GetExchanged());
    EXPECT_EQ(mirrored.m_Point->GetPlanes(), mirrored.GetExchanged());
    EXPECT_EQ(lines.GetText(), "");

    const Fixture degenerate({Huge[0], Huge[0], Huge[1]});
    EXPECT_FALSE(degenerate.m_IsValid);
    EXPECT_EQ(lines.GetText(), ExactLine);
}

TEST(ThreePlanesPoint, WithoutIntervalTheApproximationIsUnfilledAndSaysSo)
{
    const Fixture f(Huge);
    {
        const ZULTest::LineCapture lines;
        const auto pair = f.m_Point->GetApproximatedXYZError();
        const ZULMRSBSPQuadrupleHolder approximation(pair);
        EXPECT_TRUE(approximation);
        EXPECT_TRUE(std::get<1>(pair));
        EXPECT_EQ(lines.GetText(), NoIntervalLine);
    }
    const ZULTest::LineCapture lines;
    f.m_Point->GetApproximatedPoint();
    f.m_Point->GetApproximatedXYZ();
    EXPECT_EQ(lines.GetText(), std::string(NoIntervalLine) + NoIntervalLine);
}

// Nobody consults the computation: a plane without filtered equation leaves the placeholders, which pass for
// a positive W.
TEST(ThreePlanesPoint, PlaceholdersPassForAPoint)
{
    const ZULTest::LineCapture lines;
    const Fixture f(Cartesian(Corner[0]), Cartesian(Corner[1]), Overflowing());
    EXPECT_TRUE(f.m_IsValid);
    EXPECT_EQ(f.m_Point->GetPlanes(), f.GetTriple());
    ASSERT_NE(CacheOf(*f.m_Point), nullptr);
    for (const ZULExpDynamic& number : *CacheOf(*f.m_Point)) {
        EXPECT_TRUE(AreSameBits(number, ZULExpDynamic(666.0, 666.0, 666)));
    }
    EXPECT_EQ(f.m_Point->GetApproximatedPoint(), ZULMathPoint(1, 1, 1));
    EXPECT_EQ(f.m_Point->GetApproximatedXYZ(), (Row{1, 1, 1}));

    // Whatever the true orientation, and whether the planes meet at all.
    const Fixture mirrored(Cartesian(Corner[1]), Cartesian(Corner[0]), Overflowing());
    EXPECT_TRUE(mirrored.m_IsValid);
    EXPECT_EQ(mirrored.m_Point->GetPlanes(), mirrored.GetTriple());
    const Fixture parallel(Cartesian(Corner[0]), Cartesian(Corner[2]), Overflowing());
    EXPECT_TRUE(parallel.m_IsValid);
    EXPECT_EQ(lines.GetText(), "");
}

TEST(ThreePlanesPoint, NoIntervalWhereAPlaneHasNone)
{
    const ZULTest::LineCapture lines;
    const Fixture f(Cartesian(Corner[0]), Cartesian(Corner[1]), Overflowing());
    const long before = ZULTest::GetLiveBlocks();
    EXPECT_EQ(f.m_Point->GetCartesianRepresentation_ExpInterval(),
              ZULMRSBSPQuadruple<ZULExpInterval>(nullptr, false));
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
    const ZULMRSBSPQuadrupleHolder approximation(f.m_Point->GetApproximatedXYZError());
    EXPECT_TRUE(approximation);
    EXPECT_EQ(lines.GetText(), NoIntervalLine);
    // The exact representation exists all the same: (1, 2, 0).
    const ZULMRSBSPQuadrupleHolder ring(f.m_Point->GetCartesianRepresentation_FloatRing());
    const ZULTest::Rational w = ZULTest::ToRational(ring[3]);
    EXPECT_TRUE(ZULTest::ToRational(ring[0]) == w);
    EXPECT_TRUE(ZULTest::ToRational(ring[1]) == 2 * w);
    EXPECT_TRUE(ZULTest::ToRational(ring[2]) == 0);
}

TEST(ThreePlanesPoint, EarlierNumbersStayWhereANewPlaneHasNone)
{
    Fixture f({Corner[0], Corner[1], Plane4{0, 0, 1, -3}});
    const std::array<ZULExpDynamic, 4> earlier = *CacheOf(*f.m_Point);
    auto overflowing = Overflowing();
    EXPECT_TRUE(f.m_Point->ReplacePlaneByEquivalentPlane(overflowing.get(), f.m_Planes[2].get()));
    ASSERT_NE(CacheOf(*f.m_Point), nullptr);
    EXPECT_TRUE(AreSameBits(*CacheOf(*f.m_Point), earlier));

    // A cache that a fault had made invalid becomes valid with the numbers that the fault left.
    Fixture faulted(Huge);
    ASSERT_EQ(CacheOf(*faulted.m_Point), nullptr);
    EXPECT_TRUE(faulted.m_Point->ReplacePlaneByEquivalentPlane(overflowing.get(), faulted.m_Planes[2].get()));
    EXPECT_NE(CacheOf(*faulted.m_Point), nullptr);
}

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

TEST(ThreePlanesPoint, CartesianPlanesAreReadAsDoublesOnly)
{
    std::array<ZULTest::Owner<PlaneStubWithDoubles>, 3> stubs;
    for (std::size_t i = 0; i < 3; ++i) {
        stubs[i] = Own(new PlaneStubWithDoubles(Corner[i]));
        stubs[i]->m_Type = ZULMRSBSPPlaneType_Cartesian;
    }
    bool isValid = false;
    const PointOwner point(
        new ZULMRSBSP3PlanesPoint(Triple{stubs[0].get(), stubs[1].get(), stubs[2].get()}, isValid));
    EXPECT_TRUE(isValid);
    const ZULMRSBSPQuadrupleHolder interval(point->GetCartesianRepresentation_ExpInterval());
    const ZULMRSBSPQuadrupleHolder ring(point->GetCartesianRepresentation_FloatRing());
    EXPECT_EQ(interval[1].Estimate(), 2.0);
    EXPECT_TRUE(ZULTest::ToRational(ring[2]) == 3);
    for (const auto& stub : stubs) {
        EXPECT_EQ(stub->m_Calls, (Calls{0, 5, 0, 5, 0, 5}));
    }
}

TEST(ThreePlanesPoint, OtherPlanesAreAskedForTheirEquations)
{
    std::array<ZULTest::Owner<PlaneStubWithDoubles>, 3> stubs;
    for (std::size_t i = 0; i < 3; ++i) {
        stubs[i] = Own(new PlaneStubWithDoubles(Corner[i]));
        stubs[i]->m_Calls.reserve(16);
        stubs[i]->m_Type = i == 2 ? ZULMRSBSPPlaneType_3Points : ZULMRSBSPPlaneType_Cartesian;
    }
    const Triple triple = {stubs[0].get(), stubs[1].get(), stubs[2].get()};
    const long before = ZULTest::GetLiveBlocks();
    {
        bool isValid = false;
        const PointOwner point(new ZULMRSBSP3PlanesPoint(triple, isValid));
        EXPECT_TRUE(isValid);
        const ZULMRSBSPQuadrupleHolder interval(point->GetCartesianRepresentation_ExpInterval());
        const ZULMRSBSPQuadrupleHolder ring(point->GetCartesianRepresentation_FloatRing());
        for (const auto& stub : stubs) {
            EXPECT_EQ(stub->m_Calls, (Calls{0, 2, 0, 3, 0, 4}));
        }
        // Route and count differ from the doubles' only in the count of the equations: three again, so eight.
        EXPECT_TRUE(AreSameBits(*CacheOf(*point), FilteredPoint(Corner)));
    }
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

TEST(ThreePlanesPoint, NoExactRepresentationWhereAPlaneHasNone)
{
    const Fixture f(Cartesian(Corner[0]), Cartesian(Corner[1]), PlaneOwner(new PlaneStub(Corner[2])));
    dynamic_cast<PlaneStub&>(*f.m_Planes[2]).m_GivesFloatRing = false;
    const long before = ZULTest::GetLiveBlocks();
    EXPECT_EQ(f.m_Point->GetCartesianRepresentation_FloatRing(),
              ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS>(nullptr, false));
    EXPECT_LE(ZULTest::GetLiveBlocks(), before + 1);  // the stub's notes
}

TEST(ThreePlanesPoint, TheFilteredRepresentationNeverAllocates)
{
    const Fixture f(Corner);
    const Fixture none(Huge);
    const long before = ZULTest::GetAllocations();
    const auto pair = f.m_Point->GetCartesianRepresentation_ExpDynamic();
    EXPECT_EQ(none.m_Point->GetCartesianRepresentation_ExpDynamic(),
              ZULMRSBSPQuadruple<ZULExpDynamic>(nullptr, false));
    f.m_Point->GetApproximatedPoint();
    f.m_Point->GetApproximatedXYZ();
    EXPECT_EQ(ZULTest::GetAllocations(), before);
    EXPECT_FALSE(std::get<1>(pair));
}

TEST(ThreePlanesPoint, MemoryFailures)
{
    const Fixture f(Corner);
    const Fixture huge(Huge);
    const ZULTest::LineCapture lines;
    {
        const ZULTest::AllocationFailure failure(1);
        EXPECT_EQ(f.m_Point->GetCartesianRepresentation_ExpInterval(),
                  ZULMRSBSPQuadruple<ZULExpInterval>(nullptr, true));
    }
    {
        const ZULTest::AllocationFailure failure(1);
        EXPECT_EQ(f.m_Point->GetCartesianRepresentation_FloatRing(),
                  ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS>(nullptr, false));
    }
    {
        const ZULTest::AllocationFailure failure(1);
        EXPECT_EQ(f.m_Point->GetApproximatedXYZError(), ZULMRSBSPQuadruple<double>(nullptr, false));
    }
    {
        const ZULTest::AllocationFailure failure(1);
        EXPECT_EQ(huge.m_Point->GetApproximatedPoint(), ZULMathPoint(-666.666, -666.666, -666.666));
    }
    EXPECT_EQ(lines.GetText(), "");
    {
        const ZULTest::AllocationFailure failure(1);
        EXPECT_EQ(huge.m_Point->GetApproximatedXYZ(), (Row{0, 0, 0}));
    }
    EXPECT_EQ(lines.GetText(), NoApproximationLine);
}

TEST(ThreePlanesPoint, ReplacementOfAPlaneThatIsNotThere)
{
    Fixture f(Corner);
    auto other = Cartesian(Corner[2]);
    EXPECT_FALSE(f.m_Point->ReplacePlaneByEquivalentPlane(f.m_Planes[0].get(), other.get()));
    EXPECT_EQ(f.m_Point->GetPlanes(), f.GetTriple());
    EXPECT_EQ(f.m_Planes[0]->GetRefCount(), 1);
    EXPECT_EQ(other->GetRefCount(), 0);
}

TEST(ThreePlanesPoint, ReplacementExchangesReferencesAndOrientsAgain)
{
    Fixture f(Corner);
    auto opposed = Cartesian({0, 0, -2, 6});
    EXPECT_TRUE(f.m_Point->ReplacePlaneByEquivalentPlane(opposed.get(), f.m_Planes[2].get()));
    EXPECT_EQ(f.m_Planes[2]->GetRefCount(), 0);
    EXPECT_EQ(opposed->GetRefCount(), 1);
    EXPECT_EQ(f.m_Point->GetPlanes(), (Triple{f.m_Planes[0].get(), opposed.get(), f.m_Planes[1].get()}));
    EXPECT_TRUE(
        AreSameBits(*CacheOf(*f.m_Point), Negated(FilteredPoint({Corner[0], Corner[1], {0, 0, -2, 6}}))));
    EXPECT_EQ(f.m_Point->GetApproximatedPoint(), ZULMathPoint(1, 2, 3));

    // The plane itself as its own substitute: found, and no count changes.
    EXPECT_TRUE(f.m_Point->ReplacePlaneByEquivalentPlane(opposed.get(), opposed.get()));
    EXPECT_EQ(opposed->GetRefCount(), 1);
}

TEST(ThreePlanesPoint, ReplacementMayReleaseTheLastReference)
{
    std::vector<const PlaneStub*> destroyed;
    auto* old = new PlaneStub(Corner[1]);
    old->m_Destroyed = &destroyed;
    auto x = Cartesian(Corner[0]);
    auto y = Cartesian(Corner[1]);
    auto z = Cartesian(Corner[2]);
    bool isValid = false;
    const PointOwner point(new ZULMRSBSP3PlanesPoint(Triple{x.get(), old, z.get()}, isValid));
    old->Release();
    EXPECT_TRUE(point->ReplacePlaneByEquivalentPlane(y.get(), old));
    EXPECT_EQ(destroyed.size(), 1U);
    EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(1, 2, 3));
}

TEST(ThreePlanesPoint, ReplacementReachesEverySlotAndReportsADegenerateTriple)
{
    const ZULTest::LineCapture lines;
    auto x = Cartesian(Corner[0]);
    auto twin = Cartesian(Corner[0]);
    auto y = Cartesian(Corner[1]);
    bool isValid = true;
    const PointOwner point(new ZULMRSBSP3PlanesPoint(Triple{x.get(), y.get(), x.get()}, isValid));
    EXPECT_FALSE(isValid);
    EXPECT_EQ(x->GetRefCount(), 2);
    EXPECT_TRUE(point->ReplacePlaneByEquivalentPlane(twin.get(), x.get()));
    EXPECT_EQ(x->GetRefCount(), 0);
    EXPECT_EQ(twin->GetRefCount(), 2);
    EXPECT_EQ(point->GetPlanes(), (Triple{twin.get(), y.get(), twin.get()}));
    EXPECT_EQ(lines.GetText(), std::string(FilteredLine) + FilteredLine);
}

TEST(ThreePlanesPoint, ReplacementByNullIsSafe)
{
    const ZULTest::LineCapture lines;
    Fixture f(Corner);
    EXPECT_TRUE(f.m_Point->ReplacePlaneByEquivalentPlane(nullptr, f.m_Planes[1].get()));
    EXPECT_EQ(f.m_Planes[1]->GetRefCount(), 0);
    EXPECT_EQ(f.m_Point->GetP2(), nullptr);
    EXPECT_TRUE(f.m_Point->ReplacePlaneByEquivalentPlane(f.m_Planes[1].get(), nullptr));
    EXPECT_EQ(f.m_Point->GetPlanes(), f.GetTriple());
    EXPECT_EQ(f.m_Point->GetApproximatedPoint(), ZULMathPoint(1, 2, 3));
    EXPECT_EQ(lines.GetText(), "");
}

TEST(ThreePlanesPoint, CopiesAreShallowAndTakeTheCache)
{
    Fixture f(Corner);
    f.m_Point->AddRef();
    {
        const ZULMRSBSP3PlanesPoint copy(*f.m_Point);
        EXPECT_EQ(copy.GetRefCount(), 1);
        EXPECT_EQ(copy.GetPlanes(), f.GetTriple());
        EXPECT_EQ(f.m_Planes[0]->GetRefCount(), 1);
        EXPECT_NE(CacheOf(copy), CacheOf(*f.m_Point));
        EXPECT_TRUE(AreSameBits(*CacheOf(copy), *CacheOf(*f.m_Point)));
        bool isValid = true;
        ZULMRSBSP3PlanesPoint target(Triple{}, isValid);
        target = copy;
        EXPECT_EQ(target.GetRefCount(), 1);
        EXPECT_TRUE(AreSameBits(*CacheOf(target), *CacheOf(copy)));
        // The two copies' references.
        for (const PlaneOwner& plane : f.m_Planes) {
            plane->AddRef();
            plane->AddRef();
        }
    }
    EXPECT_EQ(f.m_Planes[0]->GetRefCount(), 1);
    f.m_Point->Release();
}

TEST(ThreePlanesPoint, ApproximationsComeThroughTheVirtualInterface)
{
    class Derived : public ZULMRSBSP3PlanesPoint
    {
    public:
        using ZULMRSBSP3PlanesPoint::ZULMRSBSP3PlanesPoint;
        ZULMRSBSPQuadruple<ZULExpInterval> GetCartesianRepresentation_ExpInterval() const override
        {
            m_Calls.push_back(2);
            return {new std::array<ZULExpInterval, 4>{ZULExpInterval(2), ZULExpInterval(4),
                                                      ZULExpInterval(6, 8), ZULExpInterval(2)},
                    true};
        }
        ZULMRSBSPQuadruple<double> GetApproximatedXYZError() const override
        {
            m_Calls.push_back(4);
            return ZULMRSBSP3PlanesPoint::GetApproximatedXYZError();
        }
        mutable Calls m_Calls;
    };
    const Fixture planes(Huge);
    bool isValid = false;
    const ZULTest::Owner<Derived> point(new Derived(planes.GetTriple(), isValid));
    const ZULMRSBSPQuadrupleHolder approximation(point->GetApproximatedXYZError());
    EXPECT_EQ(*approximation, (Plane4{1, 2, 3.5, 1}));
    EXPECT_EQ(point->m_Calls, (Calls{4, 2}));
    EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(1, 2, 3.5));
    EXPECT_EQ(point->GetApproximatedXYZ(), (Row{1, 2, 3.5}));
    EXPECT_EQ(point->m_Calls, (Calls{4, 2, 4, 2, 4, 2}));
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
