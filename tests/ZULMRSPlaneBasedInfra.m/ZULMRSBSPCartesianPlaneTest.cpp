#include "ZULMRSBSPCartesianPlane.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <utility>

#include "ZULMRSBSPInstanceCounters.h"
#include "ZULMRSBSPQuadrupleHolder.h"
#include "ZULTestAllocation.h"
#include "ZULTestNumbers.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestSupport.h"

using ZULTest::AreSameBits;
using ZULTest::Own;
using ZULTest::Plane4;

namespace
{
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

std::pair<bool, int> Canonical(const Plane4& equation)
{
    const auto plane = Own(new ZULMRSBSPCartesianPlane(equation));
    int axis = 77;
    const bool isCanonical = plane->IsCanonical(axis);
    return {isCanonical, axis};
}

using Answer = std::pair<bool, int>;

TEST(CartesianPlane, OnlyExactUnitAxesAreCanonical)
{
    EXPECT_EQ(Canonical({0, 0, -1, 5}), Answer(true, 2));
    EXPECT_EQ(Canonical({0, 0, 1, 0}), Answer(true, 2));
    EXPECT_EQ(Canonical({0, 1, 0, 0}), Answer(true, 1));
    EXPECT_EQ(Canonical({0, -1, 0, 1e300}), Answer(true, 1));
    EXPECT_EQ(Canonical({1, 0, 0, 0}), Answer(true, 0));
    EXPECT_EQ(Canonical({-1, 0, 0, 7}), Answer(true, 0));
    EXPECT_EQ(Canonical({-1, -0.0, -0.0, NaN}), Answer(true, 0));
    EXPECT_EQ(Canonical({0, 1, 1e-300, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({0, 0, 0, 1}), Answer(false, -1));
    EXPECT_EQ(Canonical({2, 0, 0, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({0.5, 0, 0, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({1, 1, 0, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({1, 0, 1, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({5, 1, 0, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({0, 5, 1, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({1.0000000000000002, 0, 0, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({NaN, 1, 0, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({0, NaN, 1, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({0, 0, NaN, 0}), Answer(false, -1));
    EXPECT_EQ(Canonical({1, NaN, 0, 0}), Answer(false, -1));
}

TEST(CartesianPlane, DoublesAreKeptAsSupplied)
{
    ZULTest::Random random(21);
    for (const ZULTest::Regime regime : ZULTest::AllRegimes) {
        const Plane4 equation = random.Plane(regime);
        auto plane = Own(new ZULMRSBSPCartesianPlane(equation));
        EXPECT_EQ(plane->GetType(), ZULMRSBSPPlaneType_Cartesian);
        EXPECT_TRUE(AreSameBits(plane->GetCoords(), equation));
        for (int i = 0; i < 4; ++i) {
            EXPECT_TRUE(AreSameBits(plane->GetDouble(i), equation[static_cast<std::size_t>(i)]));
        }
        const ZULMathVector normal = plane->GetNormalVector();
        EXPECT_TRUE(AreSameBits(std::array{normal.x, normal.y, normal.z},
                                std::array{equation[0], equation[1], equation[2]}));
    }
}

TEST(CartesianPlane, DoublesAreReadWithoutAllocation)
{
    auto plane = Own(new ZULMRSBSPCartesianPlane({1, 2, 3, 4}));
    const long before = ZULTest::GetAllocations();
    int axis = 0;
    plane->IsCanonical(axis);
    plane->GetCoords();
    plane->GetDouble(3);
    plane->GetSquareDistanceTo(ZULMathPoint(1, 2, 3));
    plane->ProjectPointOnPlane(ZULMathPoint(1, 2, 3));
    EXPECT_EQ(ZULTest::GetAllocations(), before);
}

TEST(CartesianPlane, CoefficientsFollowTheBase)
{
    const ZULMRSBSPCartesianPlane plane({1.5, 2.5, 3.5, 4.5});
    EXPECT_EQ(sizeof(ZULMRSBSPCartesianPlane),
              sizeof(ZULMRSBSPPlane) + sizeof(Plane4) + sizeof(ZULMRSBSPIntegerForm));
    EXPECT_EQ(ZULTest::PeekAt<Plane4>(plane, sizeof(ZULMRSBSPPlane) + sizeof(ZULMRSBSPIntegerForm)),
              (Plane4{1.5, 2.5, 3.5, 4.5}));
}

#if ZUL_TEST_HAS_SLOTS
TEST(CartesianPlane, OverridesStayInTheirSlots)
{
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPCartesianPlane::GetType), 0U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPCartesianPlane::GetCoords), 5U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPCartesianPlane::GetDouble), 6U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPCartesianPlane::GetNormalVector), 7U);
}
#endif

TEST(CartesianPlane, EquationsAreExactAndOwned)
{
    ZULTest::Random random(22);
    for (const ZULTest::Regime regime : ZULTest::AllRegimes) {
        for (int round = 0; round < 50; ++round) {
            const Plane4 equation = random.Plane(regime);
            auto plane = Own(new ZULMRSBSPCartesianPlane(equation));
            const auto dynamicPair = plane->GetStdEquation_ExpDynamic();
            const auto intervalPair = plane->GetStdEquation_ExpInterval();
            const auto ringPair = plane->GetStdEquation_FloatRing();
            EXPECT_TRUE(std::get<1>(dynamicPair) && std::get<1>(intervalPair) && std::get<1>(ringPair));
            const ZULMRSBSPQuadrupleHolder filtered(dynamicPair);
            const ZULMRSBSPQuadrupleHolder interval(intervalPair);
            const ZULMRSBSPQuadrupleHolder ring(ringPair);
            for (std::size_t i = 0; i < 4; ++i) {
                EXPECT_TRUE(AreSameBits(filtered[i], ZULExpDynamic(equation[i], std::fabs(equation[i]), 1)));
                EXPECT_EQ(interval[i].LowerBound(), equation[i]);
                EXPECT_EQ(interval[i].UpperBound(), equation[i]);
                EXPECT_EQ(interval[i].Estimate(), equation[i]);
                EXPECT_TRUE(ZULTest::ToRational(ring[i]) == ZULTest::ToRational(equation[i]));
            }
        }
    }
}

TEST(CartesianPlane, EachEquationIsANewArray)
{
    auto plane = Own(new ZULMRSBSPCartesianPlane({0.1, 0, 0, 0}));
    const ZULMRSBSPQuadrupleHolder first(plane->GetStdEquation_ExpInterval());
    const ZULMRSBSPQuadrupleHolder second(plane->GetStdEquation_ExpInterval());
    EXPECT_NE(&*first, &*second);
    EXPECT_EQ(first[0].Estimate(), 0.1);
    EXPECT_EQ(first[1].Estimate(), 0.0);
}

TEST(CartesianPlane, NoEquationWithoutMemory)
{
    auto plane = Own(new ZULMRSBSPCartesianPlane({1, 2, 3, 4}));
    {
        const ZULTest::AllocationFailure failure(3);
        EXPECT_EQ(plane->GetStdEquation_ExpDynamic(), ZULMRSBSPQuadruple<ZULExpDynamic>(nullptr, false));
        EXPECT_EQ(plane->GetStdEquation_ExpInterval(), ZULMRSBSPQuadruple<ZULExpInterval>(nullptr, false));
        EXPECT_EQ(plane->GetStdEquation_FloatRing(),
                  ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS>(nullptr, false));
    }
}

TEST(CartesianPlane, CopiesTakeCoefficientsAndCountAndAreNotCounted)
{
    auto plane = Own(new ZULMRSBSPCartesianPlane({1, 2, 3, 4}));
    plane->AddRef();
    const unsigned int before = ZULMRSBSPInstanceCounters::GetPlanes();
    ZULMRSBSPCartesianPlane copy(*plane);
    const ZULMRSBSPCartesianPlane moved(std::move(copy));
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), before);
    EXPECT_EQ(moved.GetRefCount(), 1);
    EXPECT_EQ(moved.GetCoords(), plane->GetCoords());
    ZULMRSBSPCartesianPlane target({9, 9, 9, 9});
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), before + 1);
    target = *plane;
    EXPECT_EQ(target.GetRefCount(), 1);
    EXPECT_EQ(target.GetCoords(), plane->GetCoords());
    plane->Release();
}

TEST(CartesianPlane, SetCoordsChangesTheCoefficientsAlone)
{
    auto plane = Own(new ZULMRSBSPCartesianPlane({1, 2, 3, 4}));
    plane->AddRef();
    const unsigned int before = ZULMRSBSPInstanceCounters::GetPlanes();
    plane->SetCoords({0, 0, -1, 8});
    EXPECT_EQ(plane->GetCoords(), (Plane4{0, 0, -1, 8}));
    int axis = 0;
    EXPECT_TRUE(plane->IsCanonical(axis));
    EXPECT_EQ(axis, 2);
    EXPECT_EQ(plane->GetRefCount(), 1);
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), before);
    plane->Release();
}

TEST(CartesianPlane, TheClassIsOpenToDerivation)
{
    class Derived : public ZULMRSBSPCartesianPlane
    {
    public:
        using ZULMRSBSPCartesianPlane::ZULMRSBSPCartesianPlane;
        std::array<double, 4> GetCoords() const override { return {0, 2, 0, -4}; }
        ZULMathVector GetNormalVector() const override { return {0, 2, 0}; }
    };
    auto plane = Own(new Derived(Plane4{1, 0, 0, 0}));
    EXPECT_EQ(plane->GetSquareDistanceTo(ZULMathPoint(7, 5, 7)), 9.0);
    EXPECT_EQ(plane->GetPointOnPlane(), ZULMathPoint(0, 2, 0));
}

#if ZUL_HAS_SSE2
TEST(CartesianPlane, TheCallersEnvironmentDoesNotMatterAndStays)
{
    const Plane4 equation = {1.0, 5e-324, 0.0, -0.1};
    auto plane = Own(new ZULMRSBSPCartesianPlane(equation));
    for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
        int axis = 5;
        bool isCanonical = true;
        ZULMRSBSPQuadruple<ZULExpInterval> pair;
        ZULMRSBSPPlane* created = nullptr;
        const auto left = ZULTest::RunUnder(word, [&] {
            isCanonical = plane->IsCanonical(axis);
            pair = plane->GetStdEquation_ExpInterval();
            created = ZULMRSBSPPlaneNS::CreateCartesianPlane({0.0, 5e-324, 0.0, 1.0});
        });
        EXPECT_EQ(left, word);
        EXPECT_FALSE(isCanonical);
        const ZULMRSBSPQuadrupleHolder interval(pair);
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_EQ(interval[i].LowerBound(), equation[i]);
            EXPECT_EQ(interval[i].UpperBound(), equation[i]);
        }
        ASSERT_NE(created, nullptr);
        created->Release();
    }
}
#endif
}  // namespace
