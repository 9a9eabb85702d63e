#include "ZULMRSBSPCartesianPoint.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

#include "ZULMRSBSPCartesianPlane.h"
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
using Triple = std::array<ZULMRSBSPPlane*, 3>;
using PlaneOwner = ZULTest::Owner<ZULMRSBSPPlane>;
using PointOwner = ZULTest::Owner<ZULMRSBSPCartesianPoint>;

PlaneOwner Cartesian(const Plane4& equation)
{
    return PlaneOwner(ZULMRSBSPPlaneNS::CreateCartesianPlane(equation));
}

TEST(CartesianPoint, OwnsTheThreePlanesThroughItsCoordinates)
{
    const unsigned int planesBefore = ZULMRSBSPInstanceCounters::GetPlanes();
    const long before = ZULTest::GetLiveBlocks();
    {
        auto point = Own(new ZULMRSBSPCartesianPoint(ZULMathPoint(1, 2, 3)));
        EXPECT_EQ(point->GetRefCount(), 0);
        EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), planesBefore + 3);
        const std::array<Plane4, 3> expected = {Plane4{1, 0, 0, -1}, Plane4{0, 1, 0, -2},
                                                Plane4{0, 0, 1, -3}};
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(point->GetPlane(i)->GetRefCount(), 0);
            EXPECT_EQ(point->GetPlane(i)->GetType(), ZULMRSBSPPlaneType_Cartesian);
            EXPECT_EQ(point->GetPlane(i)->GetCoords(), expected[i]);
        }
        EXPECT_EQ(ZULTest::GetLiveBlocks(), before + 4);
    }
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

TEST(CartesianPoint, FieldsFollowTheBase)
{
    auto point = Own(new ZULMRSBSPCartesianPoint(ZULMathPoint(1, 2, 3)));
    EXPECT_EQ(sizeof(ZULMRSBSPCartesianPoint),
              sizeof(ZULMRSBSPPoint) + 3 * sizeof(double) + sizeof(ZULMRSBSPIntegerForm));
    EXPECT_EQ((ZULTest::PeekAt<std::array<double, 3>>(*point,
                                                      sizeof(ZULMRSBSPPoint) + sizeof(ZULMRSBSPIntegerForm))),
              (std::array<double, 3>{1, 2, 3}));
}

TEST(CartesianPoint, TheTripleIsOriented)
{
    auto x = Cartesian({1, 0, 0, -1});
    auto y = Cartesian({0, 1, 0, -2});
    auto z = Cartesian({0, 0, 1, -3});
    const Triple zyx = {z.get(), y.get(), x.get()};
    auto fromArray = Own(new ZULMRSBSPCartesianPoint(zyx, std::array<double, 3>{1, 2, 3}));
    EXPECT_EQ(fromArray->GetPlanes(), (Triple{z.get(), x.get(), y.get()}));
    auto fromThree = Own(new ZULMRSBSPCartesianPoint(z.get(), y.get(), x.get(), ZULMathPoint(1, 2, 3)));
    EXPECT_EQ(fromThree->GetPlanes(), (Triple{z.get(), x.get(), y.get()}));
    auto inOrder = Own(new ZULMRSBSPCartesianPoint(x.get(), y.get(), z.get(), ZULMathPoint(1, 2, 3)));
    EXPECT_EQ(inOrder->GetPlanes(), (Triple{x.get(), y.get(), z.get()}));
    EXPECT_EQ(x->GetRefCount(), 3);
    EXPECT_EQ(y->GetRefCount(), 3);
    EXPECT_EQ(z->GetRefCount(), 3);
}

TEST(CartesianPoint, DependentNormalsAndNullPlanesAreAccepted)
{
    const ZULTest::LineCapture lines;
    auto x1 = Cartesian({1, 0, 0, -1});
    auto x2 = Cartesian({-1, 0, 0, 2});
    auto z = Cartesian({0, 0, 1, -3});
    auto dependent = Own(new ZULMRSBSPCartesianPoint(x1.get(), x2.get(), z.get(), ZULMathPoint(1, 2, 3)));
    EXPECT_EQ(dependent->GetPlanes(), (Triple{x1.get(), x2.get(), z.get()}));
    auto incomplete =
        Own(new ZULMRSBSPCartesianPoint(Triple{z.get(), nullptr, x1.get()}, std::array<double, 3>{4, 5, 6}));
    EXPECT_EQ(incomplete->GetPlanes(), (Triple{z.get(), nullptr, x1.get()}));
    EXPECT_EQ(incomplete->GetApproximatedPoint(), ZULMathPoint(4, 5, 6));
    EXPECT_EQ(x1->GetRefCount(), 2);
    EXPECT_EQ(lines.GetText(), "");
}

TEST(CartesianPoint, OrientationIsExactNearDegeneracy)
{
    ZULTest::Random random(41);
    int exchanged = 0;
    for (const ZULTest::Regime regime : ZULTest::AllRegimes) {
        for (int round = 0; round < 300; ++round) {
            const auto equations = random.PlaneTriple(regime);
            auto p1 = Cartesian(equations[0]);
            auto p2 = Cartesian(equations[1]);
            auto p3 = Cartesian(equations[2]);
            if (p1 == nullptr || p2 == nullptr || p3 == nullptr) {
                continue;
            }
            const int sign = sgn(
                ZULTest::MeetingPoint({ZULTest::ToRational(equations[0]), ZULTest::ToRational(equations[1]),
                                       ZULTest::ToRational(equations[2])})[3]);
            auto point = Own(new ZULMRSBSPCartesianPoint(p1.get(), p2.get(), p3.get(), ZULMathPoint()));
            EXPECT_EQ(point->GetP1(), p1.get());
            EXPECT_EQ(point->GetP2(), sign < 0 ? p3.get() : p2.get()) << ZULTest::NameOf(regime);
            exchanged += sign < 0 ? 1 : 0;
        }
    }
    EXPECT_GT(exchanged, 500);
}

TEST(CartesianPoint, RepresentationsAreExactWithWOne)
{
    ZULTest::Random random(42);
    for (const ZULTest::Regime regime : ZULTest::AllRegimes) {
        for (int round = 0; round < 50; ++round) {
            const auto xyz = random.Point(regime);
            auto point = Own(new ZULMRSBSPCartesianPoint(ZULMathPoint(xyz[0], xyz[1], xyz[2])));
            EXPECT_EQ(point->GetType(), ZULMRSBSPPointType_Cartesian);
            const auto dynamicPair = point->GetCartesianRepresentation_ExpDynamic();
            const auto intervalPair = point->GetCartesianRepresentation_ExpInterval();
            const auto ringPair = point->GetCartesianRepresentation_FloatRing();
            const auto errorPair = point->GetApproximatedXYZError();
            EXPECT_TRUE(std::get<1>(dynamicPair) && std::get<1>(intervalPair) && std::get<1>(ringPair) &&
                        std::get<1>(errorPair));
            const ZULMRSBSPQuadrupleHolder filtered(dynamicPair);
            const ZULMRSBSPQuadrupleHolder interval(intervalPair);
            const ZULMRSBSPQuadrupleHolder ring(ringPair);
            const ZULMRSBSPQuadrupleHolder error(errorPair);
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_TRUE(AreSameBits(filtered[i], ZULExpDynamic(xyz[i], std::fabs(xyz[i]), 1)));
                EXPECT_EQ(interval[i].LowerBound(), xyz[i]);
                EXPECT_EQ(interval[i].UpperBound(), xyz[i]);
                EXPECT_TRUE(ZULTest::ToRational(ring[i]) == ZULTest::ToRational(xyz[i]));
                EXPECT_TRUE(AreSameBits(error[i], xyz[i]));
            }
            EXPECT_TRUE(AreSameBits(filtered[3], ZULExpDynamic(1.0, 1.0, 0)));
            EXPECT_EQ(interval[3].LowerBound(), 1.0);
            EXPECT_EQ(interval[3].UpperBound(), 1.0);
            EXPECT_TRUE(ZULTest::ToRational(ring[3]) == 1);
            EXPECT_TRUE(AreSameBits(error[3], 0.0));
            EXPECT_TRUE(AreSameBits(point->GetApproximatedXYZ(), xyz));
            EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(xyz[0], xyz[1], xyz[2]));
        }
    }
}

TEST(CartesianPoint, NoRepresentationWithoutMemory)
{
    auto point = Own(new ZULMRSBSPCartesianPoint(ZULMathPoint(1, 2, 3)));
    const ZULTest::AllocationFailure failure(4);
    EXPECT_EQ(point->GetCartesianRepresentation_ExpDynamic(),
              ZULMRSBSPQuadruple<ZULExpDynamic>(nullptr, false));
    EXPECT_EQ(point->GetCartesianRepresentation_ExpInterval(),
              ZULMRSBSPQuadruple<ZULExpInterval>(nullptr, false));
    EXPECT_EQ(point->GetCartesianRepresentation_FloatRing(),
              ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS>(nullptr, false));
    EXPECT_EQ(point->GetApproximatedXYZError(), ZULMRSBSPQuadruple<double>(nullptr, false));
}

TEST(CartesianPoint, ReplacementKeepsCoordinatesAndOrientsAgain)
{
    auto x = Cartesian({1, 0, 0, -1});
    auto y = Cartesian({0, 1, 0, -2});
    auto z = Cartesian({0, 0, 1, -3});
    auto opposedZ = Cartesian({0, 0, -2, 6});
    auto point = Own(new ZULMRSBSPCartesianPoint(x.get(), y.get(), z.get(), ZULMathPoint(1, 2, 3)));
    EXPECT_FALSE(point->ReplacePlaneByEquivalentPlane(z.get(), opposedZ.get()));
    EXPECT_EQ(point->GetPlanes(), (Triple{x.get(), y.get(), z.get()}));
    EXPECT_EQ(z->GetRefCount(), 1);

    EXPECT_TRUE(point->ReplacePlaneByEquivalentPlane(opposedZ.get(), z.get()));
    EXPECT_EQ(point->GetPlanes(), (Triple{x.get(), opposedZ.get(), y.get()}));
    EXPECT_EQ(z->GetRefCount(), 0);
    EXPECT_EQ(opposedZ->GetRefCount(), 1);
    EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(1, 2, 3));

    EXPECT_TRUE(point->ReplacePlaneByEquivalentPlane(y.get(), y.get()));
    EXPECT_EQ(y->GetRefCount(), 1);
    EXPECT_EQ(point->GetPlanes(), (Triple{x.get(), opposedZ.get(), y.get()}));

    EXPECT_TRUE(point->ReplacePlaneByEquivalentPlane(nullptr, x.get()));
    EXPECT_EQ(x->GetRefCount(), 0);
    EXPECT_EQ(point->GetPlanes(), (Triple{nullptr, opposedZ.get(), y.get()}));
}

TEST(CartesianPoint, EverySlotOfTheOldPlaneIsReplaced)
{
    auto x = Cartesian({1, 0, 0, -1});
    auto other = Cartesian({2, 0, 0, -2});
    auto y = Cartesian({0, 1, 0, -2});
    auto point = Own(new ZULMRSBSPCartesianPoint(x.get(), y.get(), x.get(), ZULMathPoint(1, 2, 3)));
    EXPECT_EQ(x->GetRefCount(), 2);
    EXPECT_TRUE(point->ReplacePlaneByEquivalentPlane(other.get(), x.get()));
    EXPECT_EQ(x->GetRefCount(), 0);
    EXPECT_EQ(other->GetRefCount(), 2);
    EXPECT_EQ(point->GetPlanes(), (Triple{other.get(), y.get(), other.get()}));
}

TEST(CartesianPoint, CopiesAndMovesAreShallow)
{
    auto x = Cartesian({1, 0, 0, -1});
    auto y = Cartesian({0, 1, 0, -2});
    auto z = Cartesian({0, 0, 1, -3});
    auto point = Own(new ZULMRSBSPCartesianPoint(x.get(), y.get(), z.get(), ZULMathPoint(1, 2, 3)));
    point->AddRef();
    // Each holder of a copy answers for its references.
    const auto answer = [&](ZULMRSBSPCartesianPoint& copy) {
        EXPECT_EQ(copy.GetRefCount(), 1);
        EXPECT_EQ(copy.GetPlanes(), point->GetPlanes());
        EXPECT_EQ(copy.GetApproximatedPoint(), ZULMathPoint(1, 2, 3));
        x->AddRef();
        y->AddRef();
        z->AddRef();
    };
    {
        ZULMRSBSPCartesianPoint copy(*point);
        EXPECT_EQ(x->GetRefCount(), 1);
        answer(copy);
        ZULMRSBSPCartesianPoint moved(std::move(copy));
        EXPECT_EQ(x->GetRefCount(), 2);
        answer(moved);
        ZULMRSBSPCartesianPoint assigned(Triple{}, std::array<double, 3>{});
        assigned = *point;
        EXPECT_EQ(x->GetRefCount(), 3);
        answer(assigned);
        ZULMRSBSPCartesianPoint moveAssigned(Triple{}, std::array<double, 3>{});
        moveAssigned = std::move(moved);
        EXPECT_EQ(x->GetRefCount(), 4);
        answer(moveAssigned);
    }
    EXPECT_EQ(x->GetRefCount(), 1);
    point->Release();
}

TEST(CartesianPoint, TheClassIsOpenToDerivation)
{
    class Derived : public ZULMRSBSPCartesianPoint
    {
    public:
        using ZULMRSBSPCartesianPoint::ZULMRSBSPCartesianPoint;
        ZULMathPoint GetApproximatedPoint() const override { return {9, 9, 9}; }
    };
    PointOwner point(new Derived(ZULMathPoint(1, 2, 3)));
    EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(9, 9, 9));
    EXPECT_EQ(point->GetApproximatedXYZ()[0], 1.0);
}

#if ZUL_HAS_SSE2
TEST(CartesianPoint, TheCallersEnvironmentDoesNotMatterAndStays)
{
    auto p1 = Cartesian({0.1, 0.2, 0.3, 1});
    auto p2 = Cartesian({5e-324, 0.5, 0.6, 1});
    auto p3 = Cartesian({0.7, 0.8, 0.9, 1});
    auto expected =
        Own(new ZULMRSBSPCartesianPoint(p1.get(), p2.get(), p3.get(), ZULMathPoint(0.1, 0, 5e-324)));
    for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
        PointOwner point;
        ZULMRSBSPQuadruple<ZULExpInterval> pair;
        const auto left = ZULTest::RunUnder(word, [&] {
            point = PointOwner(
                new ZULMRSBSPCartesianPoint(p1.get(), p2.get(), p3.get(), ZULMathPoint(0.1, 0, 5e-324)));
            pair = point->GetCartesianRepresentation_ExpInterval();
        });
        EXPECT_EQ(left, word);
        EXPECT_EQ(point->GetPlanes(), expected->GetPlanes());
        const ZULMRSBSPQuadrupleHolder interval(pair);
        EXPECT_EQ(interval[0].LowerBound(), 0.1);
        EXPECT_EQ(interval[0].UpperBound(), 0.1);
        EXPECT_EQ(interval[2].LowerBound(), 5e-324);
        EXPECT_EQ(interval[2].UpperBound(), 5e-324);
    }
}
#endif
}  // namespace
