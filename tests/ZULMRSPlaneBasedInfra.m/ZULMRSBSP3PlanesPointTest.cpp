#include "ZULMRSBSP3PlanesPoint.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "ZULMRSBSP3PlanesPointKit.h"
#include "ZULMRSBSPQuadrupleHolder.h"
#include "ZULTestAllocation.h"
#include "ZULTestNumbers.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestSupport.h"

using namespace ThreePlanesPointKit;
using ZULTest::AreSameBits;
using ZULTest::Own;
using ZULTest::PlaneStub;
using ZULTest::PlaneStubWithDoubles;

namespace
{
using Calls = std::vector<int>;

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
    EXPECT_EQ(static_cast<const void*>(CacheOf(*f.m_Point)),
              base + sizeof(ZULMRSBSPPoint) + sizeof(ZULMRSBSPIntegerForm));
    const std::size_t flag =
        sizeof(ZULMRSBSPPoint) + sizeof(ZULMRSBSPIntegerForm) + 4 * sizeof(ZULExpDynamic);
    EXPECT_EQ(sizeof(ZULMRSBSP3PlanesPoint), flag + sizeof(double));
    EXPECT_EQ(ZULTest::PeekAt<unsigned char>(*f.m_Point, flag), 1);
    const Fixture huge(Huge);
    EXPECT_EQ(CacheOf(*huge.m_Point), nullptr);
    EXPECT_EQ(ZULTest::PeekAt<unsigned char>(*huge.m_Point, flag), 0);
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

}  // namespace
