#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "ZULMRSBSPOrientation.h"
#include "ZULMRSBSPPlaneRelations.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULMRSBSPPredicatesKit.h"
#include "ZULMRSBSPSignKernels.h"
#include "ZULTestAllocation.h"

// Which stage decides what, and that the cheap ones never allocate.
namespace
{
using namespace ZULTest;

constexpr double DenormMin = std::numeric_limits<double>::denorm_min();

enum class Stage { Shortcut, Filter, Interval, Exact, None };

/// The first stage that decides; each is asked on its own.
template <class Kernel>
Stage DecidedBy(const std::array<double, Kernel::NbInputs>& inputs)
{
    using Stages = ZULMRSBSPKernel<Kernel>;
    const ZULExpFloatScope scope;
    if (Stages::Shortcut(inputs).IsDecided()) {
        return Stage::Shortcut;
    }
    _clearfp();
    if (Stages::Filter(inputs).IsDecided()) {
        return Stage::Filter;
    }
    if (Stages::Interval(inputs).IsDecided()) {
        return Stage::Interval;
    }
    return Stages::Exact(inputs).IsDecided() ? Stage::Exact : Stage::None;
}

using Det2 = ZULMRSBSPDeterminant2x2Kernel;
using Det3 = ZULMRSBSPDeterminant3x3Kernel;
using Diff = ZULMRSBSPDifferenceDeterminantKernel;
using Dot2 = ZULMRSBSPDifferenceDotProductKernel;
using Dot3 = ZULMRSBSPDotProductKernel;
using Equation = ZULMRSBSPEquationKernel;

TEST(ZULMRSBSPPredicatesStages, SignsOfFactorsDecideFirst)
{
    EXPECT_EQ(DecidedBy<Det2>({0, 0, 0, 0}), Stage::Shortcut);
    EXPECT_EQ(DecidedBy<Det2>({1, -2, 3, 4}), Stage::Shortcut);
    EXPECT_EQ(DecidedBy<Det2>({DenormMin, 0, 7, DenormMin}), Stage::Shortcut);
    EXPECT_EQ(DecidedBy<Dot3>({1, 2, -3, 4, 0, -5}), Stage::Shortcut);
    EXPECT_EQ(DecidedBy<Equation>({-1, 0, 3, 2, -5, 7, 0}), Stage::Shortcut);
    EXPECT_EQ(DecidedBy<Det3>({1, 0, 0, 0, 1, 0, 0, 0, 1}), Stage::Shortcut);
    EXPECT_EQ(DecidedBy<Det3>({1, 2, 3, 0, 1, 5, 0, 0, 1e-300}), Stage::Shortcut);
    // Kernels whose factors are differences have none.
    EXPECT_EQ(DecidedBy<Diff>({0, 0, 1, 0, 0, 0, 0, 1}), Stage::Filter);
    EXPECT_EQ(DecidedBy<Dot2>({0, 0, 1, 0, 0, 0, 1, 1}), Stage::Filter);
}

TEST(ZULMRSBSPPredicatesStages, EverySignOfAFactorCounts)
{
    using ZULMRSBSPShortcut::FactorSign;
    EXPECT_EQ(FactorSign(3.0), 1);
    EXPECT_EQ(FactorSign(DenormMin), 1);
    EXPECT_EQ(FactorSign(0.0), 0);
    EXPECT_EQ(FactorSign(-0.0), 0);
    EXPECT_EQ(FactorSign(-DenormMin), -1);
    EXPECT_EQ(FactorSign(std::numeric_limits<double>::quiet_NaN()), -1);
    EXPECT_EQ(FactorSign(std::numeric_limits<double>::infinity()), 1);
}

TEST(ZULMRSBSPPredicatesStages, SumsOfSigns)
{
    using ZULMRSBSPShortcut::SignOfOpenSum;
    using ZULMRSBSPShortcut::SignOfSum;
    const ZULMRSBSPSign open = ZULMRSBSPSign::Undecided();
    EXPECT_EQ(SignOfSum(0, 0, 0), ZULMRSBSPSign::Zero());
    EXPECT_EQ(SignOfSum(0, 1, 0), ZULMRSBSPSign::Positive());
    EXPECT_EQ(SignOfSum(-1, 0, -1), ZULMRSBSPSign::Negative());
    EXPECT_EQ(SignOfSum(-1, 1, 0), open);
    EXPECT_EQ(SignOfOpenSum(ZULMRSBSPSign::Positive(), open), open);
    EXPECT_EQ(SignOfOpenSum(ZULMRSBSPSign::Positive(), ZULMRSBSPSign::Zero()), ZULMRSBSPSign::Positive());
}

TEST(ZULMRSBSPPredicatesStages, SignsThatStayOpen)
{
    const ZULMRSBSPSign open = ZULMRSBSPSign::Undecided();
    EXPECT_EQ(open.ToKernelResult(), 2);
    EXPECT_EQ(open.ToAnswer(), ZULMRSExtendedUndetermined);
    EXPECT_EQ(-open, open);
    EXPECT_EQ(open * ZULMRSBSPSign::Zero(), open);
    EXPECT_EQ(ZULMRSBSPSign::Negative() * ZULMRSBSPSign::Negative(), ZULMRSBSPSign::Positive());
    EXPECT_EQ(-ZULMRSBSPSign::Negative(), ZULMRSBSPSign::Positive());
    EXPECT_EQ(ZULMRSBSPSign::FromNumber(ZULExpSignUncertain), open);
    EXPECT_EQ(ZULMRSBSPSign::FromNumber(7), open);
    EXPECT_EQ(ZULMRSBSPSign::FromNumber(-1).ToAnswer(), ZULMRSExtendedFalse);
    EXPECT_EQ(ZULMRSBSPSign::FromNumber(0).ToAnswer(), ZULMRSExtendedUndetermined);
    EXPECT_EQ(ZULMRSBSPSign::FromNumber(1).ToAnswer(), ZULMRSExtendedTrue);
}

TEST(ZULMRSBSPPredicatesStages, OrdinaryInputIsDecidedByTheFilter)
{
    EXPECT_EQ(DecidedBy<Det2>({3, 1, 1, 2}), Stage::Filter);
    EXPECT_EQ(DecidedBy<Diff>({0, 0, 3, 1, 0, 0, 1, 2}), Stage::Filter);
    EXPECT_EQ(DecidedBy<Dot2>({0, 0, 3, 1, 0, 0, 1, -2}), Stage::Filter);
    EXPECT_EQ(DecidedBy<Dot3>({3, 1, 0, 1, -2, 0}), Stage::Filter);
    EXPECT_EQ(DecidedBy<Equation>({1, 2, 3, -4, 5, 6, 7}), Stage::Filter);
    EXPECT_EQ(DecidedBy<Det3>({1, 2, 3, 4, 5, 6, 7, 8, 10}), Stage::Filter);
}

TEST(ZULMRSBSPPredicatesStages, AZeroBoundIsAProvenZero)
{
    EXPECT_EQ(DecidedBy<Diff>({0, 0, 0, 0, 0, 0, 0, 0}), Stage::Filter);
    EXPECT_EQ(DecidedBy<Dot2>({1, 5, 1, 5, 3, 2, 3, 2}), Stage::Interval);
    EXPECT_EQ(DecidedBy<Dot2>({0, 0, 0, 0, 3, 1, 3, 2}), Stage::Filter);
}

TEST(ZULMRSBSPPredicatesStages, ShortDegenerateInputIsDecidedByIntervals)
{
    EXPECT_EQ(DecidedBy<Det2>({1, 1, 1, 1}), Stage::Interval);
    EXPECT_EQ(DecidedBy<Det3>({1, 2, 3, 4, 5, 6, 7, 8, 9}), Stage::Interval);
    EXPECT_EQ(DecidedBy<Equation>({1, 1, 1, -6, 1, 2, 3}), Stage::Interval);
    EXPECT_EQ(DecidedBy<Dot3>({1, 1, 0, 1, -1, 0}), Stage::Interval);
    EXPECT_EQ(DecidedBy<Diff>({0, 0, 1, 1, 5, 5, 7, 7}), Stage::Interval);
}

TEST(ZULMRSBSPPredicatesStages, LongDegenerateInputNeedsExactArithmetic)
{
    EXPECT_EQ(DecidedBy<Det2>({0.1, 0.1, 0.1, 0.1}), Stage::Exact);
    EXPECT_EQ(DecidedBy<Det3>({0.1, 0.2, 0.3, 0.3, 0.7, 0.9, 0.2, 0.4, 0.6}), Stage::Exact);
    EXPECT_EQ(DecidedBy<Equation>({0.1, 0.1, 0, 0, 0.3, -0.3, 0}), Stage::Exact);
    EXPECT_EQ(DecidedBy<Dot3>({0.1, 0.1, 0, 0.3, -0.3, 0}), Stage::Exact);
    EXPECT_EQ(DecidedBy<Diff>({0, 0, 0.1, 0.3, 0, 0, 0.1, 0.3}), Stage::Exact);
    EXPECT_EQ(DecidedBy<Dot2>({0, 0, 0.1, 0.3, 0, 0, -0.3, 0.1}), Stage::Exact);
}

TEST(ZULMRSBSPPredicatesStages, UnderflowAndOverflowLeaveTheCheapStagesOpen)
{
    for (const double size : {1e-200, 2 * DenormMin, 1e200, 1.7e308}) {
        EXPECT_EQ(DecidedBy<Det2>({size, size / 2, size, size}), Stage::Exact) << size;
        EXPECT_EQ(DecidedBy<Dot3>({size, size, 0, size, -size / 2, 0}), Stage::Exact) << size;
        EXPECT_EQ(DecidedBy<Diff>({0, 0, size, size / 2, 0, 0, size, size}), Stage::Exact) << size;
        EXPECT_EQ(DecidedBy<Dot2>({0, 0, size, size / 2, 0, 0, size, -size}), Stage::Exact) << size;
        EXPECT_EQ(DecidedBy<Equation>({size, -size / 2, 0, 0, size, size, 0}), Stage::Exact) << size;
        EXPECT_EQ(DecidedBy<Det3>({size, size / 2, 0, size, size, 0, 0, 0, size}), Stage::Exact) << size;
    }
}

TEST(ZULMRSBSPPredicatesStages, BothSidesOfTheSafeRangeAreRight)
{
    // Magnitudes from far below to far above the edge; below it the status decides whether the filter may.
    for (int exponent = -540; exponent <= 520; ++exponent) {
        const double s = std::ldexp(1.0, exponent);
        const ZULMRSBSPKernel<Det2>::Inputs inputs = {3 * s, s, s, 2 * s};
        EXPECT_EQ(ZULMRSBSPKernel<Det2>::Sign(inputs), 1) << exponent;
        const bool isSafe = exponent > -480 && exponent < 505;
        if (isSafe) {
            EXPECT_EQ(DecidedBy<Det2>(inputs), Stage::Filter) << exponent;
        }
    }
    const double beside = 0x1.0000000000001p-511;  // its products are denormal and not exact
    EXPECT_EQ(DecidedBy<Det2>({beside, beside / 2, beside, beside}), Stage::Exact);
    EXPECT_EQ(DecidedBy<Det2>({0x1p-455, 0x1p-456, 0x1p-455, 0x1p-455}), Stage::Filter);
    EXPECT_EQ(DecidedBy<Det2>({0x1p510, 0x1p509, 0x1p510, 0x1p510}), Stage::Filter);
}

TEST(ZULMRSBSPPredicatesStages, AMinorsUnderflowMultipliedUpIsNotTrusted)
{
    // The first minor is 2^-1200 and vanishes; times 2^1000 it outweighs the other term.
    const ZULMRSBSPKernel<Det3>::Inputs inputs = {0x1p1000, 0,        -0x1p-250, 0,       0x1p-600,
                                                  0,        -0x1p600, 0,         0x1p-600};
    EXPECT_EQ(DecidedBy<Det3>(inputs), Stage::Exact);
    EXPECT_EQ(ZULMRSBSPKernel<Det3>::Sign(inputs), 1);
}

TEST(ZULMRSBSPPredicatesStages, TheCascadeDecidesByTheSignsOfTerms)
{
    // Both minors are certain and their terms agree, although each is small against its magnitude: the sum of
    // magnitudes hides it from the full value.
    const double u = 0x1p-53;
    const ZULExpFloatScope scope;
    int decided = 0;
    for (int k = 6; k < 12; ++k) {
        const double nearOne = 1.0 + k * 2 * u;
        const ZULMRSBSPKernel<Det3>::Inputs inputs = {1, 0, 1, -1, -nearOne, 1, -1, -1, 1};
        const auto sign = ZULMRSBSPDeterminant3x3Kernel::Cascade(inputs);
        decided += sign.IsDecided() ? 1 : 0;
        if (sign.IsDecided()) {
            EXPECT_EQ(sign.ToKernelResult(), ZULMRSBSPKernel<Det3>::Exact(inputs).ToKernelResult());
        }
    }
    EXPECT_GT(decided, 0);
}

TEST(ZULMRSBSPPredicatesStages, RowsThatFitAreDecidedInShortIntegers)
{
    using Kernel = ZULMRSBSPKernel<Det3>;
    const ZULExpFloatScope scope;
    // Full mantissas of similar size; the rows' own sizes do not matter, denormal ones included.
    EXPECT_TRUE(Kernel::ByIntegers({0.1, 0.2, 0.3, 0.3, 0.7, 0.9, 0.2, 0.4, 0.6}).IsZero());
    EXPECT_TRUE(Kernel::ByIntegers({1e300, 2e300, 3e300, 1e-300, 3e-300, 2e-300, 1, 2, 3.1}).IsPositive());
    EXPECT_TRUE(Kernel::ByIntegers({DenormMin, 0, 0, 0, 7 * DenormMin, 0, 0, 0, -1}).IsNegative());
    EXPECT_TRUE(Kernel::ByIntegers({0, 0, 0, 0.1, 0.2, 0.3, 0.2, 0.7, 0.5}).IsZero());
    // The largest inputs, of either sign: 2^62 - 1 in place of the row's common scale.
    const double most = 0x1.fffffffffffffp52;
    EXPECT_TRUE(
        Kernel::ByIntegers({most * 0x1p9, 1, -1, -1, most * 0x1p9, 1, 1, 1, most * 0x1p9}).IsPositive());
    EXPECT_TRUE(Kernel::ByIntegers({most * 0x1p9, -most * 0x1p9, 1, most * 0x1p9, most * 0x1p9, 1, 1, 1, -1})
                    .IsNegative());
    // One place more than fits; and what is not finite.
    EXPECT_FALSE(Kernel::ByIntegers({most * 0x1p10, 1, 0, 0, 1, 0, 0, 0, 1}).IsDecided());
    EXPECT_FALSE(
        Kernel::ByIntegers({std::numeric_limits<double>::infinity(), 1, 0, 0, 1, 0, 0, 0, 1}).IsDecided());
}

TEST(ZULMRSBSPPredicatesStages, InputThatIsNotFiniteLeavesTheExactStageOpenWhereThatIsReported)
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(DecidedBy<Dot3>({notANumber, 1, 0, 1, 1, 0}), Stage::None);
    EXPECT_EQ(DecidedBy<Diff>({notANumber, 0, 0, 0, 0, 0, 0, 0}), Stage::None);
    EXPECT_EQ(DecidedBy<Dot2>({notANumber, 0, 0, 0, 0, 0, 0, 0}), Stage::None);
    EXPECT_EQ(DecidedBy<Equation>({notANumber, 0, 0, 1, 1, 0, 0}), Stage::None);
    // The older kernels count it as zero.
    EXPECT_EQ(DecidedBy<Det2>({notANumber, -1, 1, 1}), Stage::Exact);
    EXPECT_EQ(DecidedBy<Det3>({notANumber, -1, 0, 1, 1, 0, 0, 0, 1}), Stage::Exact);
}

//---------------------------------------------------------------- stages of the predicates on objects

Stage SideDecidedBy(const ZULMRSBSPPlane& plane, const ZULMRSBSPPoint& point)
{
    using namespace ZULMRSBSPOrientation;
    const ZULExpFloatScope scope;
    if (FilterByRepresentation(plane, point).m_Sign.IsDecided()) {
        return Stage::Filter;
    }
    if (IntervalByRepresentation(plane, point).m_Sign.IsDecided()) {
        return Stage::Interval;
    }
    return ExactByPlanes(plane, point).IsDecided() ? Stage::Exact : Stage::None;
}

TEST(ZULMRSBSPPredicatesStages, SidesOfAMeetingPoint)
{
    const auto corner = Meeting(Cartesian(1, 0, 0, -1), Cartesian(0, 1, 0, -2), Cartesian(0, 0, 1, -3));
    EXPECT_EQ(SideDecidedBy(*Cartesian(1, 1, 1, 0), *corner), Stage::Filter);
    EXPECT_EQ(SideDecidedBy(*Cartesian(1, 1, 1, -5), *corner), Stage::Filter);
    EXPECT_EQ(SideDecidedBy(*Cartesian(1, 1, 1, -6), *corner), Stage::Interval);
    // A plane equal to one of the point's own, but another object.
    const auto skew =
        Meeting(Cartesian(0.1, 0.7, 0.3, 0.9), Cartesian(0.9, 0.2, 0.4, 0.7), Cartesian(0.3, 0.5, 0.8, 0.1));
    EXPECT_EQ(SideDecidedBy(*Cartesian(0.1, 0.7, 0.3, 0.9), *skew), Stage::Exact);
#if ZUL_HAS_SSE2
    // Denormal operands leave the cheap stages open, even where every product is exact.
    EXPECT_EQ(SideDecidedBy(*Cartesian(DenormMin, DenormMin, 0, 0), *corner), Stage::Exact);
#endif
    const auto thin = Cartesian(1e-200, 1e-200, 1e-200, 1e-200);
    EXPECT_EQ(SideDecidedBy(*thin, *corner), Stage::Filter);
}

TEST(ZULMRSBSPPredicatesStages, TheShortcutOnKeptNumbersDecidesWhereTheValueUnderflows)
{
    using namespace ZULMRSBSPOrientation;
    const auto corner = Meeting(Cartesian(1e-100, 0, 0, -1e-100), Cartesian(0, 1e-100, 0, -1e-100),
                                Cartesian(0, 0, 1, -1e-10));
    const auto plane = Cartesian(1e-200, 1e-200, 0, 0);
    EXPECT_EQ(SideDecidedBy(*plane, *corner), Stage::Filter);
    EXPECT_EQ(ZULMRSBSPPredicates::IsPointInFrontOfPlane(*plane, *corner), ZULMRSExtendedTrue);
}

TEST(ZULMRSBSPPredicatesStages, CheapStagesNeverAllocateForCartesianPlanes)
{
    const Silence silence;
    Random random(24'001);
    for (const Regime regime : AllRegimes) {
        for (int i = 0; i < 2'000; ++i) {
            Scene scene(random, regime, AllPositions[static_cast<std::size_t>(random.Integer(0, 2))]);
            const PlaneCase p1 = scene.CartesianPlane();
            const PlaneCase p2 = scene.CartesianPlane();
            const PlaneCase p3 = scene.CartesianPlane();
            const PlaneCase tested = scene.CartesianPlane();
            bool isValid = false;
            const auto point = Own<ZULMRSBSPPoint>(
                new ZULMRSBSP3PlanesPoint({p1.m_Plane.get(), p2.m_Plane.get(), p3.m_Plane.get()}, isValid));
            const ZULMRSBSPPlane& plane = *tested.m_Plane;
            const Point3 c = scene.GetPoint();
            const ZULMathPoint coordinates(c[0], c[1], c[2]);
            const long before = GetAllocations();
            {
                using namespace ZULMRSBSPOrientation;
                using namespace ZULMRSBSPPlaneRelations;
                const ZULExpFloatScope scope;
                FilterByRepresentation(plane, *point);
                IntervalByRepresentation(plane, *point);
                FilterByPlanes(plane, *point);
                ExactByRows(plane, *point);
                IntervalByPlanes(plane, *point);
                FilterAtCoordinates(plane, coordinates);
                IntervalAtCoordinates(plane, coordinates);
                FilterNormals(*p1.m_Plane, *p2.m_Plane, *p3.m_Plane);
                IntervalNormals(*p1.m_Plane, *p2.m_Plane, *p3.m_Plane);
                FilterMinor(*p1.m_Plane, *p2.m_Plane, 0, 1);
                CoefficientProduct<ZULExpDynamic>(*p1.m_Plane, *p2.m_Plane, 0);
                CoefficientProduct<ZULExpInterval>(*p1.m_Plane, *p2.m_Plane, 0);
            }
            ZULMRSBSPPredicates::IsPointInFrontOfPlaneFast(plane, *point);
            ZULMRSBSPPredicates::IsPointInFrontOfPlaneFast(plane, coordinates);
            ASSERT_EQ(GetAllocations(), before) << NameOf(regime);
        }
    }
}

// The filter keeps no array of its own for a three-points plane either, and intervals stay on the stack.
TEST(ZULMRSBSPPredicatesStages, CheapStagesDoNotAllocateForThreePointsPlanes)
{
    const Silence silence;
    Random random(24'002);
    for (int i = 0; i < 5'000; ++i) {
        Scene scene(random, Regime::Easy, Position::Near);
        const PlaneCase p1 = scene.Plane();
        const PlaneCase p2 = scene.Plane();
        const PlaneCase p3 = scene.Plane();
        const PlaneCase tested = scene.ThreePointsPlane();
        bool isValid = false;
        const auto point = Own<ZULMRSBSPPoint>(
            new ZULMRSBSP3PlanesPoint({p1.m_Plane.get(), p2.m_Plane.get(), p3.m_Plane.get()}, isValid));
        const long before = GetAllocations();
        {
            using namespace ZULMRSBSPOrientation;
            const ZULExpFloatScope scope;
            FilterByRepresentation(*tested.m_Plane, *point);
            FilterByPlanes(*tested.m_Plane, *point);
            IntervalByPlanes(*tested.m_Plane, *point);
            ZULMRSBSPPlaneRelations::FilterNormals(*p1.m_Plane, *p2.m_Plane, *p3.m_Plane);
            ZULMRSBSPPlaneRelations::IntervalNormals(*p1.m_Plane, *p2.m_Plane, *p3.m_Plane);
        }
        ASSERT_EQ(GetAllocations(), before);
    }
}

TEST(ZULMRSBSPPredicatesStages, ExactStagesDoNotAllocateForOrdinaryNumbers)
{
    const Silence silence;
    Random random(24'003);
    // Without numbers a few units beside zero, which are denormal.
    for (const Regime regime : {Regime::Easy, Regime::Degenerate}) {
        for (int i = 0; i < 5'000; ++i) {
            Scene scene(random, regime, random.OneIn(2) ? Position::General : Position::Degenerate);
            const PlaneCase p1 = scene.Plane();
            const PlaneCase p2 = scene.Plane();
            const PlaneCase p3 = scene.Plane();
            const PlaneCase tested = scene.Plane();
            bool isValid = false;
            const auto point = Own<ZULMRSBSPPoint>(
                new ZULMRSBSP3PlanesPoint({p1.m_Plane.get(), p2.m_Plane.get(), p3.m_Plane.get()}, isValid));
            const ZULMRSBSPKernel<Det3>::Inputs rows = {
                random.Number(regime), random.Number(regime), random.Number(regime),
                random.Number(regime), random.Number(regime), random.Number(regime),
                random.Number(regime), random.Number(regime), random.Number(regime)};
            const long before = GetAllocations();
            const ZULExpFloatScope scope;
            ZULMRSBSPKernel<Det3>::Exact(rows);
            ZULMRSBSPOrientation::ExactByPlanes(*tested.m_Plane, *point);
            ZULMRSBSPPlaneRelations::ExactNormals(*p1.m_Plane, *p2.m_Plane, *p3.m_Plane);
            ASSERT_EQ(GetAllocations(), before) << NameOf(regime);
        }
    }
}

TEST(ZULMRSBSPPredicatesStages, WhatTheExactStageAllocatesIsFreed)
{
    const Silence silence;
    Random random(24'004);
    for (const Regime regime : AllRegimes) {
        for (int i = 0; i < 500; ++i) {
            Scene scene(random, regime, Position::Near);
            const PlaneCase p1 = scene.Plane();
            const PlaneCase p2 = scene.Plane();
            const PlaneCase p3 = scene.Plane();
            const PlaneCase tested = scene.Plane();
            bool isValid = false;
            const auto point = Own<ZULMRSBSPPoint>(
                new ZULMRSBSP3PlanesPoint({p1.m_Plane.get(), p2.m_Plane.get(), p3.m_Plane.get()}, isValid));
            const long before = GetLiveBlocks();
            ZULMRSBSPPredicates::IsPointInFrontOfPlane(*tested.m_Plane, *point);
            ZULMRSBSPPredicates::ArePlanesCoincident(*tested.m_Plane, *p1.m_Plane);
            ZULMRSBSPPredicates::CoincidentOrientation(*tested.m_Plane, *p1.m_Plane);
            ZULMRSBSPPredicates::IsPlaneValid(*tested.m_Plane);
            ASSERT_EQ(GetLiveBlocks(), before) << NameOf(regime);
        }
    }
}
}  // namespace
