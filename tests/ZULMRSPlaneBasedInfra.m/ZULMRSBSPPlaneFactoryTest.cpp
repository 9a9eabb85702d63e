#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "ZULMRSBSPObjectFactory.h"
#include "ZULMRSBSPPlaneFactoryImpl.h"
#include "ZULTestAllocation.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestSupport.h"

namespace
{
using Equation = std::array<double, 4>;
using Plane = ZULTest::Owner<ZULMRSBSPPlane>;

constexpr unsigned int Quantize = ZULMRSBSPCreatePlane_Quantize;
constexpr unsigned int AcceptOpposite = ZULMRSBSPCreatePlane_AcceptOpposite;
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

const std::string GriddingErrorHead =
    "[E] Gridding Tol Too Tight or Box too wide !! ( Error happened in function "
    "ZULMRSBSPPlaneFactoryImpl::SetGriddingTolerance / Source : ZULMRSBSPPlaneFactoryImpl / Line : ";

/// A factory of its own per test; its statistics are kept out of the test's output.
class PlaneFactoryTest : public testing::Test
{
protected:
    explicit PlaneFactoryTest(bool geometricIdentity = false)
        : m_Factory(ZULMRSCreatePlaneFactory(geometricIdentity))
    {
    }

    Plane Create(const Equation& equation, unsigned int flags)
    {
        m_IsOpposite = true;
        return ZULTest::Own(m_Factory->CreatePlane(equation, m_IsOpposite, flags));
    }
    Equation Quantized(const Equation& equation)
    {
        const Plane plane = Create(equation, Quantize);
        return plane != nullptr ? plane->GetCoords() : Equation{};
    }
    static ZULMathOBB Box(double e1, double e2, double e3)
    {
        return ZULMathOBB(ZULMathOBBBase({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {e1, e2, e3}, {7, 8, 9}));
    }
    std::string Statistics()
    {
        m_Factory.reset();
        return m_Lines.GetText();
    }

    ZULTest::LineCapture m_Lines;
    std::unique_ptr<ZULMRSBSPPlaneFactory> m_Factory;
    bool m_IsOpposite = false;
};

class ZULMRSBSPPlaneFactoryGeometric : public PlaneFactoryTest
{
protected:
    ZULMRSBSPPlaneFactoryGeometric() : PlaneFactoryTest(true) {}
};

using ZULMRSBSPPlaneFactoryExact = PlaneFactoryTest;

std::string ExpectedStatistics(unsigned int required, unsigned int reused, const std::string& percentage,
                               unsigned int size)
{
    const std::string banner = "======= ~ ZULMRSBSPPlaneFactory Stats ~ ==================\n";
    return banner + "Nb Planes Required for New : " + std::to_string(required) +
           "\nNb Planes Reused : " + std::to_string(reused) + "\n" +
           (percentage.empty() ? "" : "Re-Use Percentage : " + percentage + "%\n") +
           "Factory Size : " + std::to_string(size) + "\n" + banner;
}

double SnapReference(double value, double step)
{
    return static_cast<double>(static_cast<std::int64_t>(std::floor(value / step + 0.5))) * step;
}
}  // namespace

TEST_F(ZULMRSBSPPlaneFactoryExact, PlanesThatDifferByNoiseAreOne)
{
    const Plane first = Create({1.0, 0.0, 0.0, -2.0000001}, Quantize);
    const Plane second = Create({1.0, 0.0, 0.0, -2.0000004}, Quantize);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_FALSE(m_IsOpposite);
    EXPECT_EQ(first->GetRefCount(), 2);
    EXPECT_EQ(first->GetDouble(3), -200000.0 * 1e-05);
    EXPECT_EQ(m_Factory->Size(), 1U);
    EXPECT_EQ(Statistics(), ExpectedStatistics(2, 1, "50", 1));
}

TEST_F(ZULMRSBSPPlaneFactoryExact, WithoutQuantizationTheCoefficientsAreKeptAsGiven)
{
    const Equation given = {0.1, -3.0, 1e-7, 12.3456789};
    const Plane plane = Create(given, 0);
    EXPECT_EQ(plane->GetCoords(), given);
    EXPECT_EQ(Create({0.1, -3.0, 1e-7, 12.34567890001}, 0)->GetCoords()[3], 12.34567890001);
    EXPECT_EQ(Create(given, 0).get(), plane.get());
    EXPECT_EQ(m_Factory->Size(), 2U);
}

TEST_F(ZULMRSBSPPlaneFactoryExact, BothZerosAreOne)
{
    const Plane plane = Create({1.0, 0.0, 0.0, 0.0}, 0);
    EXPECT_EQ(Create({1.0, -0.0, 0.0, -0.0}, 0).get(), plane.get());
}

TEST_F(ZULMRSBSPPlaneFactoryExact, ANewPlaneHasTwoOwners)
{
    const Plane plane = Create({0.0, 0.0, 1.0, 5.0}, Quantize | AcceptOpposite);
    EXPECT_EQ(plane->GetRefCount(), 1);
    EXPECT_FALSE(m_IsOpposite);
    EXPECT_EQ(plane->GetType(), ZULMRSBSPPlaneType_Cartesian);
}

TEST_F(ZULMRSBSPPlaneFactoryExact, TheNegationIsAcceptedOnlyWhenAskedFor)
{
    const Plane plane = Create({0.0, 0.6, 0.8, -2.0}, Quantize);
    const Plane opposite = Create({0.0, -0.6, -0.8, 2.0}, Quantize | AcceptOpposite);
    EXPECT_EQ(opposite.get(), plane.get());
    EXPECT_TRUE(m_IsOpposite);
    EXPECT_EQ(plane->GetRefCount(), 2);
    const Plane made = Create({0.0, -0.6, -0.8, 2.0}, Quantize);
    EXPECT_NE(made.get(), plane.get());
    EXPECT_FALSE(m_IsOpposite);
    // The same orientation is preferred.
    EXPECT_EQ(Create({0.0, -0.6, -0.8, 2.0}, Quantize | AcceptOpposite).get(), made.get());
    EXPECT_FALSE(m_IsOpposite);
    EXPECT_EQ(Statistics(), ExpectedStatistics(4, 2, "50", 2));
}

TEST_F(ZULMRSBSPPlaneFactoryExact, AcceptOppositeWorksWithoutQuantization)
{
    const Plane plane = Create({3.0, 0.0, 0.0, 1.0}, 0);
    EXPECT_EQ(Create({-3.0, -0.0, 0.0, -1.0}, AcceptOpposite).get(), plane.get());
    EXPECT_TRUE(m_IsOpposite);
}

TEST_F(ZULMRSBSPPlaneFactoryExact, AnUnfoundOppositeIsMadeAsRequested)
{
    const Plane plane = Create({3.0, -1.0, 2.0, 1.0}, AcceptOpposite);
    EXPECT_EQ(plane->GetCoords(), (Equation{3.0, -1.0, 2.0, 1.0}));
    EXPECT_FALSE(m_IsOpposite);
}

TEST_F(ZULMRSBSPPlaneFactoryExact, ProportionalPlanesAreTwo)
{
    const Plane first = Create({2.0, 0.0, 0.0, -4.0}, 0);
    const Plane second = Create({1.0, 0.0, 0.0, -2.0}, 0);
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(Statistics(), ExpectedStatistics(2, 0, "", 2));
}

TEST_F(ZULMRSBSPPlaneFactoryGeometric, ProportionalPlanesAreOne)
{
    const Plane first = Create({2.0, 0.0, 0.0, -4.0}, 0);
    const Plane second = Create({1.0, 0.0, 0.0, -2.0}, 0);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(m_Factory->Size(), 1U);
    EXPECT_EQ(Statistics(), ExpectedStatistics(2, 1, "50", 1));
}

TEST_F(ZULMRSBSPPlaneFactoryGeometric, ParallelPlanesAndOppositeOnesAreTold)
{
    const Plane plane = Create({1.0, 2.0, 2.0, -4.0}, 0);
    EXPECT_NE(Create({1.0, 2.0, 2.0, -5.0}, 0).get(), plane.get());
    EXPECT_EQ(Create({-2.0, -4.0, -4.0, 8.0}, AcceptOpposite).get(), plane.get());
    EXPECT_TRUE(m_IsOpposite);
    EXPECT_NE(Create({-2.0, -4.0, -4.0, 8.0}, 0).get(), plane.get());
    EXPECT_FALSE(m_IsOpposite);
    EXPECT_EQ(m_Factory->Size(), 3U);
}

TEST_F(ZULMRSBSPPlaneFactoryGeometric, NormalsWithoutDirectionDoNoHarm)
{
    for (const Equation& equation :
         {Equation{0.0, 0.0, 0.0, 1.0}, Equation{NaN, 0.0, 1.0, 0.0}, Equation{Infinity, 0.0, 0.0, 1.0},
          Equation{5e-324, 0.0, 0.0, 1e300}, Equation{1e308, 1e308, 1e308, NaN}}) {
        const Plane plane = Create(equation, AcceptOpposite);
        EXPECT_NE(plane, nullptr);
    }
    const Plane far = Create({1e300, 0.0, 0.0, 1e300}, 0);
    EXPECT_EQ(Create({1e-300, 0.0, 0.0, 1e-300}, 0).get(), far.get());
}

TEST_F(ZULMRSBSPPlaneFactoryExact, QuantizesAsTheFormulaSays)
{
    std::mt19937_64 random(99);
    std::uniform_real_distribution<double> uniform(-10.0, 10.0);
    const double step = 1e-05;
    for (int i = 0; i < 2000; ++i) {
        const Equation e = {uniform(random), uniform(random), uniform(random), 100.0 * uniform(random)};
        const double n = std::sqrt((e[0] * e[0] + e[1] * e[1]) + e[2] * e[2]);
        const Equation expected = {SnapReference(e[0] / n, step), SnapReference(e[1] / n, step),
                                   SnapReference(e[2] / n, step), SnapReference(e[3] / n, step)};
        ASSERT_EQ(Quantized(e), expected);
        Equation normal = {e[0], e[1], e[2], -77.0};
        m_Factory->QuantizePlaneEquation(normal);
        ASSERT_EQ(normal, (Equation{expected[0], expected[1], expected[2], -77.0}));
    }
}

TEST_F(ZULMRSBSPPlaneFactoryExact, ANormalOfNearlyUnitLengthIsNotDivided)
{
    // Within the offset step of 1 the coefficients are snapped as they are.
    const double inside = 1.0 + 0.9e-5;
    EXPECT_EQ(Quantized({inside, 0.0, 0.0, 1000.0})[3], SnapReference(1000.0, 1e-05));
    const double outside = 1.0 + 1.5e-5;
    EXPECT_EQ(Quantized({outside, 0.0, 0.0, 1000.0})[3], SnapReference(1000.0 / outside, 1e-05));
    const double below = 1.0 - 1.5e-5;
    EXPECT_EQ(Quantized({0.0, below, 0.0, 1000.0})[3], SnapReference(1000.0 / below, 1e-05));
}

TEST_F(ZULMRSBSPPlaneFactoryExact, GriddingTakesItsStepsFromTheBox)
{
    // Largest extent 5: 5 / ceil(5 / 0.9); diagonal 7.07: 1 / ceil(7.07 / 0.9).
    ASSERT_EQ(m_Factory->SetGriddingTolerance(Box(3.0, 4.0, 5.0), 0.9), ZULMRSNoError);
    const double stepD = 5.0 / 6.0;
    const double stepN = 1.0 / 8.0;
    EXPECT_EQ(
        Quantized({0.0, 3.0, 4.0, 5.0 * 2.2}),
        (Equation{0.0, SnapReference(0.6, stepN), SnapReference(0.8, stepN), SnapReference(2.2, stepD)}));
    EXPECT_EQ(m_Lines.GetText(), "");
}

TEST_F(ZULMRSBSPPlaneFactoryExact, ABoxTooWideIsRefusedAndChangesNothing)
{
    const Equation probe = {0.0, 3.0, 4.0, 5.0 * 2.2222222};
    const Equation before = Quantized(probe);
    const double limit = 0.001 * 2147483646.0;
    EXPECT_EQ(m_Factory->SetGriddingTolerance(Box(1.0, limit, 1.0), 0.001), 29);
    EXPECT_EQ(m_Lines.GetText(), GriddingErrorHead + "312)\n");
    EXPECT_EQ(Quantized(probe), before);
    EXPECT_EQ(m_Factory->SetGriddingTolerance(Box(0.0, std::nextafter(limit, 0.0), 0.0), 0.001), 0);
    EXPECT_NE(Quantized(probe), before);
}

TEST_F(ZULMRSBSPPlaneFactoryExact, ADiagonalTooLongIsRefusedAfterTheOffsetStep)
{
    EXPECT_EQ(m_Factory->SetGriddingTolerance(Box(2e9, 2e9, 2e9), 1.0), ZULMRSErrorGriddingTolerance);
    EXPECT_EQ(m_Lines.GetText(), GriddingErrorHead + "319)\n");
    // The offset step is 1 now, the normal's steps are still the default.
    EXPECT_EQ(Quantized({3.0, 0.0, 4.0, 5.0 * 2.2}),
              (Equation{SnapReference(0.6, 1e-05), 0.0, SnapReference(0.8, 1e-05), 2.0}));
}

TEST_F(ZULMRSBSPPlaneFactoryExact, AToleranceOrBoxThatIsNotFiniteAndPositiveIsRefused)
{
    const Equation probe = {0.0, 3.0, 4.0, 5.0 * 2.2222222};
    const Equation before = Quantized(probe);
    int nbRefused = 0;
    const auto expectRefused = [&](const ZULMathOBB& box, double tolerance) {
        EXPECT_EQ(m_Factory->SetGriddingTolerance(box, tolerance), ZULMRSErrorGriddingTolerance);
        ++nbRefused;
    };
    for (const double tolerance : {0.0, -0.0, -0.1, Infinity, -Infinity, NaN}) {
        expectRefused(Box(1.0, 1.0, 1.0), tolerance);
    }
    for (const double extent : {Infinity, NaN}) {
        expectRefused(Box(extent, 1.0, 1.0), 0.1);
        expectRefused(Box(1.0, extent, 1.0), 0.1);
        expectRefused(Box(1.0, 1.0, extent), 0.1);
    }
    expectRefused(Box(0.0, 0.0, 0.0), 0.1);
    expectRefused(Box(-1.0, -2.0, -0.0), 0.1);
    std::string expected;
    for (int i = 0; i < nbRefused; ++i) {
        expected += GriddingErrorHead + "312)\n";
    }
    EXPECT_EQ(m_Lines.GetText(), expected);
    EXPECT_EQ(Quantized(probe), before);
}

TEST_F(ZULMRSBSPPlaneFactoryExact, BoxesOfAnySizeGiveTheStepsOfTheirProportions)
{
    for (const double unit : {1e-200, 1e200, 1e303}) {
        ASSERT_EQ(m_Factory->SetGriddingTolerance(Box(3.0 * unit, 4.0 * unit, 5.0 * unit), 0.9 * unit),
                  ZULMRSNoError)
            << unit;
        // Steps of 1/8 for the normal. The tiny box's offset step is too small for any snapping.
        Equation normal = {0.0, 0.55, 0.8, 0.0};
        m_Factory->QuantizePlaneEquation(normal);
        const Equation expected = unit > 1.0 ? Equation{0.0, 0.5, 0.75, 0.0} : Equation{0.0, 0.55, 0.8, 0.0};
        EXPECT_EQ(normal, expected) << unit;
    }
    // A tolerance far beyond the box: one step.
    ASSERT_EQ(m_Factory->SetGriddingTolerance(Box(1e-300, 1e-300, 1e-300), 1e300), ZULMRSNoError);
    const Equation kept = {0.0, 0.6, 0.8, 1.5};
    EXPECT_EQ(Quantized(kept), kept);
}

TEST_F(ZULMRSBSPPlaneFactoryExact, HugePlanesAreNotLost)
{
    const double step = 1e-05;
    const double third = SnapReference(1.0 / std::sqrt(3.0), step);
    EXPECT_EQ(Quantized({1.5e308, 1.5e308, -1.5e308, 1.5e308}), (Equation{third, third, -third, third}));
    EXPECT_EQ(Quantized({3e200, 0.0, 4e200, 0.0}),
              (Equation{SnapReference(0.6, step), 0.0, SnapReference(0.8, step), 0.0}));
    Equation normal = {0.0, -1.7e308, 0.0, 3.0};
    m_Factory->QuantizePlaneEquation(normal);
    EXPECT_EQ(normal, (Equation{0.0, -100000.0 * step, 0.0, 3.0}));
}

TEST_F(ZULMRSBSPPlaneFactoryExact, AShortNormalIsNotSnappedAway)
{
    ASSERT_EQ(m_Factory->SetGriddingTolerance(Box(10.0, 10.0, 10.0), 5.0), ZULMRSNoError);
    // Step 5 for the offset makes every short normal count as unit.
    const Equation quantized = Quantized({0.001, 0.0, 0.0, 0.01});
    EXPECT_EQ(quantized, (Equation{1.0, 0.0, 0.0, 10.0}));
    Equation normal = {0.0, 0.0, -1e-6, 9.0};
    m_Factory->QuantizePlaneEquation(normal);
    EXPECT_EQ(normal, (Equation{0.0, 0.0, -1.0, 9.0}));
}

TEST_F(ZULMRSBSPPlaneFactoryExact, AQuotientBeyond64BitsIsLeftUnsnapped)
{
    for (const double offset : {1e300, -1e300, 1.234567890123456e14, Infinity}) {
        EXPECT_EQ(Quantized({1.0, 0.0, 0.0, offset})[3], offset);
    }
    EXPECT_EQ(Quantized({1.0, 0.0, 0.0, 9e13})[3], SnapReference(9e13, 1e-05));
    const Equation quantized = Quantized({0.0, 1.0, 0.0, NaN});
    EXPECT_TRUE(std::isnan(quantized[3]));
    EXPECT_EQ(quantized[1], 100000.0 * 1e-05);
}

TEST_F(ZULMRSBSPPlaneFactoryExact, StepsTooSmallMeanNoSnapping)
{
    ASSERT_EQ(m_Factory->SetGriddingTolerance(Box(1e-4, 1e-4, 1e-4), 5e-13), ZULMRSNoError);
    EXPECT_EQ(Quantized({0.0, 3.0, 4.0, 1.23456789}),
              (Equation{0.0, 3.0 / 5.0, 4.0 / 5.0, 1.23456789 / 5.0}));
    const Equation unit = {0.0, 0.6, 0.8, 1.23456789};
    EXPECT_EQ(Quantized(unit), unit);
    Equation normal = {0.0, 3.0, 4.0, 1.0};
    m_Factory->QuantizePlaneEquation(normal);
    EXPECT_EQ(normal, (Equation{0.0, 3.0, 4.0, 1.0}));
}

TEST_F(ZULMRSBSPPlaneFactoryExact, ANormalTooShortIsReportedByThePublicQuantizer)
{
    Equation normal = {0.0, 9e-13, 0.0, 5.0};
    m_Factory->QuantizePlaneEquation(normal);
    EXPECT_EQ(normal, (Equation{0.0, 9e-13, 0.0, 5.0}));
    EXPECT_EQ(m_Lines.GetText(),
              "[E] Plane Equation Norm of Axis is Very Small ! Norm=9e-13 ( Error happened in function "
              "ZULMRSBSPPlaneFactoryImpl::QuantizePlaneEquation / Source : ZULMRSBSPPlaneFactoryImpl / "
              "Line : 334)\n");
}

TEST_F(ZULMRSBSPPlaneFactoryExact, ANormalTooShortGivesNoPlaneAndCountsNothing)
{
    const Plane plane = Create({0.0, 0.0, 0.0, 1.0}, Quantize | AcceptOpposite);
    EXPECT_EQ(plane, nullptr);
    EXPECT_FALSE(m_IsOpposite);
    EXPECT_EQ(m_Factory->Size(), 0U);
    EXPECT_EQ(Statistics(),
              "[E] Plane Equation Norm of Axis is Very Small ! Norm=0 ( Error happened in function "
              "ZULMRSBSPPlaneFactoryImpl::QuantizePlaneEquation / Source : ZULMRSBSPPlaneFactoryImpl / "
              "Line : 378)\n" +
                  ExpectedStatistics(0, 0, "", 0));
}

TEST_F(ZULMRSBSPPlaneFactoryExact, TheFourthEntryIsNotTouchedByThePublicQuantizer)
{
    const std::uint64_t bits = 0x7FF4DEADBEEF1234ULL;  // a signalling NaN: arithmetic would change it
    Equation equation = {3.0, 0.0, 4.0, std::bit_cast<double>(bits)};
    m_Factory->QuantizePlaneEquation(equation);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(equation[3]), bits);
    EXPECT_EQ(equation[0], SnapReference(0.6, 1e-05));
}

#if ZUL_HAS_SSE2
TEST_F(ZULMRSBSPPlaneFactoryExact, TheCallersRoundingPlaysNoPart)
{
    const Equation given = {1.0, 3.0, -7.0, 123.456};
    const Plane plane = Create(given, Quantize);
    Equation expectedNormal = {0.1, 0.3, 0.7, 0.0};
    m_Factory->QuantizePlaneEquation(expectedNormal);
    for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
        Plane again;
        Equation normal = {0.1, 0.3, 0.7, 0.0};
        ZULMRSErrorTypes gridding = ZULMRSNoError;
        const ZULExpProcessor::ControlWord left = ZULTest::RunUnder(word, [&] {
            again = Create(given, Quantize);
            m_Factory->QuantizePlaneEquation(normal);
            gridding = m_Factory->SetGriddingTolerance(Box(1.0, 1.0, NaN), 0.1);
        });
        EXPECT_EQ(left, word);
        EXPECT_EQ(again.get(), plane.get());
        EXPECT_EQ(normal, expectedNormal);
        EXPECT_EQ(gridding, ZULMRSErrorGriddingTolerance);
    }
}
#endif

TEST_F(ZULMRSBSPPlaneFactoryExact, TassOnAnEmptyFactoryIsSilent)
{
    EXPECT_EQ(m_Factory->Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Lines.GetText(), "");
}

TEST_F(ZULMRSBSPPlaneFactoryExact, TassDropsWhatNobodyElseHolds)
{
    Plane held = Create({1.0, 0.0, 0.0, 1.0}, 0);
    Create({1.0, 0.0, 0.0, 2.0}, 0);
    Create({1.0, 0.0, 0.0, 3.0}, 0);
    Create({1.0, 0.0, 0.0, 4.0}, 0);
    EXPECT_EQ(m_Factory->Size(), 4U);
    EXPECT_EQ(m_Factory->Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Factory->Size(), 1U);
    EXPECT_EQ(Create({1.0, 0.0, 0.0, 1.0}, 0).get(), held.get());
    held.reset();
    EXPECT_EQ(m_Factory->Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Factory->Size(), 0U);
    EXPECT_EQ(m_Lines.GetText(),
              "ZULMRSBSPPlaneFactoryImpl::Tass : Nb Planes In Factory before Tass= 4 After Tass=1 "
              "Reduction : 75%\n"
              "ZULMRSBSPPlaneFactoryImpl::Tass : Nb Planes In Factory before Tass= 1 After Tass=0 "
              "Reduction : 100%\n");
}

TEST_F(ZULMRSBSPPlaneFactoryGeometric, TassWorksOnTheSetInUse)
{
    Create({1.0, 0.0, 0.0, 1.0}, 0);
    const Plane held = Create({1.0, 0.0, 0.0, 2.0}, 0);
    EXPECT_EQ(m_Factory->Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Factory->Size(), 1U);
}

TEST_F(ZULMRSBSPPlaneFactoryExact, PlanesOutliveTheFactory)
{
    const Plane plane = Create({1.0, 2.0, 3.0, 4.0}, 0);
    m_Factory.reset();
    EXPECT_EQ(plane->GetRefCount(), 0);
    EXPECT_EQ(plane->GetCoords(), (Equation{1.0, 2.0, 3.0, 4.0}));
}

TEST_F(ZULMRSBSPPlaneFactoryExact, NothingIsLeftBehind)
{
    m_Factory.reset();
    const long before = ZULTest::GetLiveBlocks();
    m_Factory.reset(ZULMRSCreatePlaneFactory(false));
    for (int i = 0; i < 100; ++i) {
        Create({1.0, 0.0, 0.0, 1.0 * (i % 50)}, Quantize | AcceptOpposite);
    }
    {
        const ZULTest::LineCapture lines;
        m_Factory.reset();
    }
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

TEST(ZULMRSBSPPlaneFactoryMemory, WithoutSearchPlaneThereAreNoPlanes)
{
    const ZULTest::LineCapture lines;
    std::unique_ptr<ZULMRSBSPPlaneFactory> factory;
    {
        const ZULTest::AllocationFailure failure(1, 1);  // the factory is had, its search plane is not
        factory.reset(ZULMRSCreatePlaneFactory(false));
    }
    ASSERT_NE(factory, nullptr);
    bool isOpposite = false;
    EXPECT_EQ(factory->CreatePlane({1.0, 0.0, 0.0, 0.0}, isOpposite, 0), nullptr);
    EXPECT_EQ(factory->Size(), 0U);
    factory.reset();
    EXPECT_EQ(lines.GetText(), ExpectedStatistics(0, 0, "", 0));
}

TEST(ZULMRSBSPPlaneFactoryMemory, APlaneThatCannotBeAllocatedIsNullAndNotHeld)
{
    const ZULTest::LineCapture lines;
    std::unique_ptr<ZULMRSBSPPlaneFactory> factory(ZULMRSCreatePlaneFactory(false));
    bool isOpposite = true;
    for (int nbBefore = 0; nbBefore < 2; ++nbBefore) {  // the plane itself, then its place in the set
        const ZULTest::AllocationFailure failure(1, nbBefore);
        EXPECT_EQ(factory->CreatePlane({1.0, 0.0, 0.0, 0.0}, isOpposite, 0), nullptr);
        EXPECT_EQ(factory->Size(), 0U);
        EXPECT_FALSE(isOpposite);
    }
    const Plane plane = ZULTest::Own(factory->CreatePlane({1.0, 0.0, 0.0, 0.0}, isOpposite, 0));
    EXPECT_NE(plane, nullptr);
    factory.reset();
    EXPECT_EQ(lines.GetText(), ExpectedStatistics(3, 0, "", 1));
}

TEST(ZULMRSBSPPlaneFactoryMemory, AFactoryThatCannotBeAllocatedIsNull)
{
    const ZULTest::AllocationFailure failure(1);
    EXPECT_EQ(ZULMRSCreatePlaneFactory(true), nullptr);
}

#if ZUL_HAS_SSE2
TEST(ZULMRSBSPPlaneFactoryReports, LeaveTheCallersControlWordAlone)
{
    for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
        const auto left = ZULTest::RunUnder(word, [] {
            const std::unique_ptr<ZULMRSBSPPlaneFactory> factory(ZULMRSCreatePlaneFactory(false));
            bool isOpposite = false;
            for (int i = 0; i < 3; ++i) {
                factory->CreatePlane({1, 0, 0, i == 2 ? -0.1 : -0.3}, isOpposite, 0)->Release();
                factory->CreatePlane({0.1, 0.7, 0, -0.3}, isOpposite, ZULMRSBSPCreatePlane_Quantize)
                    ->Release();
            }
            factory->Tass();
            factory->CreatePlane({1, 0, 0, -0.3}, isOpposite, 0)->Release();
        });
        EXPECT_EQ(left, word);
    }
}
#endif

TEST_F(ZULMRSBSPPlaneFactoryExact, ManyThreadsShareTheirPlanes)
{
    constexpr int nbThreads = 4;
    constexpr int nbPlanes = 200;
    std::array<std::vector<Plane>, nbThreads> planes;
    std::vector<std::thread> threads;
    for (std::vector<Plane>& own : planes) {
        threads.emplace_back([this, &own] {
            for (int i = 0; i < nbPlanes; ++i) {
                bool isOpposite = false;
                own.push_back(ZULTest::Own(m_Factory->CreatePlane({0.0, 1.0, 0.0, 0.5 * i + 1e-8}, isOpposite,
                                                                  Quantize | AcceptOpposite)));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int i = 0; i < nbPlanes; ++i) {
        for (const std::vector<Plane>& own : planes) {
            EXPECT_EQ(own[static_cast<std::size_t>(i)].get(), planes[0][static_cast<std::size_t>(i)].get());
        }
    }
    EXPECT_EQ(Statistics(),
              ExpectedStatistics(nbThreads * nbPlanes, (nbThreads - 1) * nbPlanes, "75", nbPlanes));
}

#if ZUL_TEST_HAS_SLOTS
TEST(ZULMRSBSPPlaneFactoryInterface, SlotsStandInTheirOrder)
{
    using Factory = ZULMRSBSPPlaneFactory;
    EXPECT_EQ(ZULTest::SlotOf(&Factory::SetGriddingTolerance), 0U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::CreatePlane), 1U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::QuantizePlaneEquation), 2U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::Size), 3U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::Tass), 4U);
}
#endif
