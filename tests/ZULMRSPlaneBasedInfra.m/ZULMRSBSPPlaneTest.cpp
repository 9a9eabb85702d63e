#include "ZULMRSBSPPlane.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "ZULMRSBSP3PointsPlane.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPInstanceCounters.h"
#include "ZULSystem.h"
#include "ZULTestAllocation.h"
#include "ZULTestNumbers.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestSupport.h"

using ZULTest::AreSameBits;
using ZULTest::Own;
using ZULTest::Plane4;
using ZULTest::PlaneStub;
using ZULTest::PlaneStubWithDoubles;

namespace
{
using Calls = std::vector<int>;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
const Plane4 SomeEquation = {1.5, -2.25, 1.0 / 3.0, 7.0};

std::array<double, 3> ArrayOf(const ZULMathPoint& point)
{
    return {point.x, point.y, point.z};
}

TEST(Plane, TypesHaveTheirNumbers)
{
    EXPECT_EQ(ZULMRSBSPPlaneType_Cartesian, 0);
    EXPECT_EQ(ZULMRSBSPPlaneType_3Points, 1);
}

#if ZUL_TEST_HAS_SLOTS
TEST(Plane, SlotsComeInOrder)
{
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPlane::GetType), 0U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPlane::IsCanonical), 1U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPlane::GetStdEquation_ExpDynamic), 2U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPlane::GetStdEquation_ExpInterval), 3U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPlane::GetStdEquation_FloatRing), 4U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPlane::GetCoords), 5U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPlane::GetDouble), 6U);
    EXPECT_EQ(ZULTest::SlotOf(&ZULMRSBSPPlane::GetNormalVector), 7U);
}
#endif

TEST(Plane, TheCountIsTheFirstAndOnlyMember)
{
    auto plane = Own(new PlaneStub(SomeEquation));
    plane->AddRef();
    plane->AddRef();
    const ZULMRSBSPPlane& base = *plane;
    EXPECT_EQ(ZULTest::PeekAt<std::int32_t>(base, sizeof(void*)), 2);
    EXPECT_EQ(sizeof(ZULMRSBSPPlane), 2 * sizeof(void*));
    plane->Release();
    plane->Release();
}

TEST(Plane, GetCoordsStopsAtTheFirstArithmeticThatDelivers)
{
    auto plane = Own(new PlaneStub(SomeEquation));
    EXPECT_TRUE(AreSameBits(plane->GetCoords(), SomeEquation));
    EXPECT_EQ(plane->m_Calls, Calls{2});

    plane->m_Calls.clear();
    plane->m_GivesDynamic = false;
    EXPECT_TRUE(AreSameBits(plane->GetCoords(), SomeEquation));
    EXPECT_EQ(plane->m_Calls, (Calls{2, 3}));

    plane->m_Calls.clear();
    plane->m_GivesInterval = false;
    EXPECT_TRUE(AreSameBits(plane->GetCoords(), SomeEquation));
    EXPECT_EQ(plane->m_Calls, (Calls{2, 3, 4}));
}

TEST(Plane, GetDoubleRunsTheSameCascadeForOneCoefficient)
{
    auto plane = Own(new PlaneStub(SomeEquation));
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(plane->GetDouble(i), SomeEquation[static_cast<std::size_t>(i)]);
    }
    plane->m_GivesDynamic = false;
    EXPECT_EQ(plane->GetDouble(1), SomeEquation[1]);
    plane->m_GivesInterval = false;
    EXPECT_EQ(plane->GetDouble(3), SomeEquation[3]);
    EXPECT_EQ(plane->m_Calls, (Calls{2, 2, 2, 2, 2, 3, 2, 3, 4}));
}

TEST(Plane, TheCascadeFreesWhatItOwns)
{
    auto plane = Own(new PlaneStub(SomeEquation));
    plane->m_Calls.reserve(100);
    const long before = ZULTest::GetLiveBlocks();
    for (int missing = 0; missing < 3; ++missing) {
        plane->m_GivesDynamic = missing < 1;
        plane->m_GivesInterval = missing < 2;
        plane->GetCoords();
        plane->GetDouble(0);
        plane->GetNormalVector();
    }
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

TEST(Plane, TheCascadeLeavesACacheAlone)
{
    auto plane = Own(new ZULMRSBSP3PointsPlane({{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}}));
    const auto [cache, isOwned] = plane->GetStdEquation_ExpDynamic();
    ASSERT_NE(cache, nullptr);
    EXPECT_FALSE(isOwned);
    EXPECT_EQ(plane->GetCoords()[2], 1.0);
    EXPECT_EQ(plane->GetDouble(2), 1.0);
    EXPECT_EQ((*cache)[2].GetValue(), 1.0);
}

TEST(Plane, GetNormalVectorReadsGetCoords)
{
    class Overriding : public PlaneStub
    {
    public:
        using PlaneStub::PlaneStub;
        std::array<double, 4> GetCoords() const override
        {
            m_Calls.push_back(5);
            return {4.0, 5.0, 6.0, 7.0};
        }
    };
    auto plane = Own(new Overriding(SomeEquation));
    const ZULMathVector normal = plane->GetNormalVector();
    EXPECT_EQ(plane->m_Calls, Calls{5});
    EXPECT_EQ(normal.x, 4.0);
    EXPECT_EQ(normal.y, 5.0);
    EXPECT_EQ(normal.z, 6.0);
}

TEST(Plane, TheTemplateAccessorCallsTheSlotOfItsNumber)
{
    auto plane = Own(new PlaneStub(SomeEquation));
    plane->m_GivesDynamic = plane->m_GivesInterval = plane->m_GivesFloatRing = false;
    EXPECT_EQ(std::get<0>(plane->GetStdEquationTpl<ZULExpDynamic>()), nullptr);
    EXPECT_EQ(plane->m_Calls, Calls{2});
    EXPECT_EQ(std::get<0>(plane->GetStdEquationTpl<ZULExpInterval>()), nullptr);
    EXPECT_EQ(plane->m_Calls, (Calls{2, 3}));
    EXPECT_EQ(std::get<0>(plane->GetStdEquationTpl<ZULExpFloatRingExtensionTS>()), nullptr);
    EXPECT_EQ(plane->m_Calls, (Calls{2, 3, 4}));
}

TEST(Plane, DistanceReadsGetCoordsOnce)
{
    auto plane = Own(new PlaneStubWithDoubles({1.0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(plane->GetSquareDistanceTo(ZULMathPoint(3.0, 5.0, 7.0)), 9.0);
    EXPECT_EQ(plane->m_Calls, Calls{5});
}

TEST(Plane, DistanceIsTheFormulaInItsOrder)
{
    ZULTest::Random random(11);
    for (int i = 0; i < 1000; ++i) {
        const auto [a, b, c, d] = random.Plane(ZULTest::Regime::Easy);
        const auto [x, y, z] = random.Point(ZULTest::Regime::Easy);
        const double s = ((b * y + a * x) + c * z) + d;
        const double n = (b * b + a * a) + c * c;
        auto plane = Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(a, b, c, d));
        EXPECT_TRUE(AreSameBits(plane->GetSquareDistanceTo(ZULMathPoint(x, y, z)), s * s / n));
    }
}

TEST(Plane, DistanceFromAPlaneWithoutNormalIsNotGuarded)
{
    auto plane = Own(new ZULMRSBSPCartesianPlane({0.0, 0.0, 0.0, 1.0}));
    EXPECT_TRUE(std::isinf(plane->GetSquareDistanceTo(ZULMathPoint(1.0, 2.0, 3.0))));
    plane->SetCoords({0.0, 0.0, 0.0, 0.0});
    EXPECT_TRUE(std::isnan(plane->GetSquareDistanceTo(ZULMathPoint(1.0, 2.0, 3.0))));
}

TEST(Plane, ProjectionReadsTheNormalThenTheCoordinates)
{
    auto plane = Own(new PlaneStubWithDoubles({1.0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(plane->ProjectPointOnPlane(ZULMathPoint(3.0, 5.0, 7.0)), ZULMathPoint(0.0, 5.0, 7.0));
    EXPECT_EQ(plane->m_Calls, (Calls{7, 5}));
    EXPECT_EQ(plane->GetPointOnPlane(), ZULMathPoint(0.0, 0.0, 0.0));
    EXPECT_EQ(plane->m_Calls, (Calls{7, 5, 7, 5}));
}

TEST(Plane, ProjectionIsTheFormulaInItsOrder)
{
    ZULTest::Random random(12);
    for (int i = 0; i < 1000; ++i) {
        const auto [a, b, c, d] = random.Plane(ZULTest::Regime::Easy);
        const auto [x, y, z] = random.Point(ZULTest::Regime::Easy);
        const double t = (d + ((b * y + a * x) + c * z)) / ((a * a + b * b) + c * c);
        auto plane = Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(a, b, c, d));
        const auto projection = ArrayOf(plane->ProjectPointOnPlane(ZULMathPoint(x, y, z)));
        EXPECT_TRUE(AreSameBits(projection, std::array{x - a * t, y - b * t, z - c * t}));
    }
}

TEST(Plane, PointOnPlaneIsTheProjectionOfTheOrigin)
{
    auto plane = Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(0.0, 0.0, 2.0, -4.0));
    EXPECT_EQ(plane->GetPointOnPlane(), ZULMathPoint(0.0, 0.0, 2.0));
}

struct Fatal {
    std::string m_Message;
    std::string m_File;
    int m_Line = 0;
    int m_Count = 0;
};
Fatal g_Fatal;

/// While alive, fatal errors are recorded and survived.
class FatalRecorder
{
public:
    FatalRecorder() : m_Previous(ZULSetFatalErrorHandler(&Record)) { g_Fatal = Fatal(); }
    ~FatalRecorder() { ZULSetFatalErrorHandler(m_Previous); }
    FatalRecorder(const FatalRecorder&) = delete;
    FatalRecorder& operator=(const FatalRecorder&) = delete;

private:
    static void Record(const char* message, const char* file, int line)
    {
        g_Fatal = {message, file, line, g_Fatal.m_Count + 1};
    }
    ZULFatalErrorHandler m_Previous;
};

TEST(Plane, ProjectionOnATinyNormalIsAFatalError)
{
    const FatalRecorder recorder;
    const ZULTest::LineCapture lines;
    auto plane = Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(1e-4, 0.0, 0.0, -2e-4));
    const ZULMathPoint projection = plane->ProjectPointOnPlane(ZULMathPoint(5.0, 6.0, 7.0));
    EXPECT_EQ(g_Fatal.m_Count, 1);
    EXPECT_EQ(g_Fatal.m_Message, "AssertionFailed:fabs(SquarredNorm) > 1.e-7");
    EXPECT_EQ(g_Fatal.m_File, "ZULMRSBSPPlane");
    EXPECT_EQ(g_Fatal.m_Line, 211);
    EXPECT_EQ(lines.GetText(), "[F] AssertionFailed:fabs(SquarredNorm) > 1.e-7 ( ZULMRSBSPPlane : 211 )\n");
    // The handler returned: the projection went on with the tiny norm.
    EXPECT_NEAR(projection.x, 2.0, 1e-12);
    EXPECT_EQ(projection.y, 6.0);
    plane->GetPointOnPlane();
    EXPECT_EQ(g_Fatal.m_Count, 2);
}

TEST(Plane, TheLimitOfTheNormIsExclusiveAndANaNFails)
{
    const FatalRecorder recorder;
    const ZULTest::LineCapture lines;
    const ZULMathPoint point(1.0, 2.0, 3.0);
    // 2^-12 squared is 2^-24, some 6e-8; 2^-11 squared some 2.4e-7.
    Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(0x1p-11, 0.0, 0.0, 1.0))->ProjectPointOnPlane(point);
    EXPECT_EQ(g_Fatal.m_Count, 0);
    Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(0x1p-12, 0.0, 0.0, 1.0))->ProjectPointOnPlane(point);
    EXPECT_EQ(g_Fatal.m_Count, 1);
    Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(NaN, 0.0, 0.0, 1.0))->ProjectPointOnPlane(point);
    EXPECT_EQ(g_Fatal.m_Count, 2);
}

TEST(PlaneDeathTest, AFatalErrorEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(1e-4, 0.0, 0.0, 0.0))->GetPointOnPlane(),
                 "AssertionFailed:fabs\\(SquarredNorm\\) > 1.e-7 \\( ZULMRSBSPPlane : 211 \\)");
}

TEST(Plane, OpposedCoefficientsExchangeFrontAndBack)
{
    const Plane4 equation = {1.0, 2.0, -3.0, 4.0};
    auto plane = Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(equation));
    auto opposed = Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(-1.0, -2.0, 3.0, -4.0));
    ZULTest::Random random(13);
    for (int i = 0; i < 100; ++i) {
        const auto [x, y, z] = random.Point(ZULTest::Regime::Easy);
        EXPECT_EQ(plane->GetSquareDistanceTo(ZULMathPoint(x, y, z)),
                  opposed->GetSquareDistanceTo(ZULMathPoint(x, y, z)));
        EXPECT_EQ(plane->ProjectPointOnPlane(ZULMathPoint(x, y, z)),
                  opposed->ProjectPointOnPlane(ZULMathPoint(x, y, z)));
    }
}

TEST(PlaneCreation, CartesianPlanesNeedANormal)
{
    const unsigned int before = ZULMRSBSPInstanceCounters::GetPlanes();
    const ZULTest::LineCapture lines;
    EXPECT_EQ(ZULMRSBSPPlaneNS::CreateCartesianPlane(0.0, 0.0, 0.0, 5.0), nullptr);
    EXPECT_EQ(ZULMRSBSPPlaneNS::CreateCartesianPlane({0.0, -0.0, 0.0, 5.0}), nullptr);
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), before);
    EXPECT_EQ(lines.GetText(), "");

    auto tiny = Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(0.0, 0.0, 1e-300, 5.0));
    ASSERT_NE(tiny, nullptr);
    EXPECT_EQ(tiny->GetRefCount(), 0);
    EXPECT_EQ(tiny->GetType(), ZULMRSBSPPlaneType_Cartesian);
    EXPECT_TRUE(AreSameBits(tiny->GetCoords(), Plane4{0.0, 0.0, 1e-300, 5.0}));
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), before + 1);
    auto denormal = Own(ZULMRSBSPPlaneNS::CreateCartesianPlane({5e-324, 0.0, 0.0, 0.0}));
    ASSERT_NE(denormal, nullptr);
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), before + 2);
}

TEST(PlaneCreation, ThreePointsPlanesKeepTheirPointsInOrder)
{
    const std::array<std::array<double, 3>, 3> points = {{{1, 2, 3}, {4, 5, 6}, {7, 8, 10}}};
    const unsigned int before = ZULMRSBSPInstanceCounters::GetPlanes();
    auto first = Own(ZULMRSBSPPlaneNS::Create3PointsPlane(points));
    auto second = Own(ZULMRSBSPPlaneNS::Create3PointsPlane(points[0], points[1], points[2]));
    auto third = Own(ZULMRSBSPPlaneNS::Create3PointsPlane(ZULMathPoint(1, 2, 3), ZULMathPoint(4, 5, 6),
                                                          ZULMathPoint(7, 8, 10)));
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), before + 3);
    for (const ZULMRSBSPPlane* plane : {first.get(), second.get(), third.get()}) {
        EXPECT_EQ(plane->GetType(), ZULMRSBSPPlaneType_3Points);
        EXPECT_EQ(plane->GetRefCount(), 0);
        EXPECT_EQ(dynamic_cast<const ZULMRSBSP3PointsPlane&>(*plane).Get3Points(), points);
    }
}

TEST(PlaneCreation, CollinearPointsAreAccepted)
{
    auto plane = Own(ZULMRSBSPPlaneNS::Create3PointsPlane(ZULMathPoint(0, 0, 0), ZULMathPoint(1, 1, 1),
                                                          ZULMathPoint(2, 2, 2)));
    ASSERT_NE(plane, nullptr);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(plane->GetDouble(i), 0.0);
    }
}

TEST(PlaneCreation, NullWhenMemoryIsExhausted)
{
    const std::array<std::array<double, 3>, 3> points = {{{1.5, 0, 0}, {0, 1.5, 0}, {0, 0, 1.5}}};
    const long before = ZULTest::GetLiveBlocks();
    {
        const ZULTest::AllocationFailure failure(1);
        EXPECT_EQ(ZULMRSBSPPlaneNS::CreateCartesianPlane(1.0, 0.0, 0.0, 0.0), nullptr);
    }
    {
        const ZULTest::AllocationFailure failure(1);
        EXPECT_EQ(ZULMRSBSPPlaneNS::Create3PointsPlane(points), nullptr);
    }
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

TEST(PlaneCreation, EquationFromThreePoints)
{
    const Plane4 equation = ZULMRSBSPPlaneNS::CreatePlaneEquation(
        ZULMathPoint(0, 0, 0), ZULMathPoint(1, 0, 0), ZULMathPoint(0, 1, 0));
    EXPECT_TRUE(AreSameBits(equation, Plane4{0.0, 0.0, 1.0, -0.0}));

    ZULTest::Random random(14);
    for (int i = 0; i < 1000; ++i) {
        const auto [p1, p2, p3] = random.PointTriple(ZULTest::Regime::Easy);
        const std::array u = {p2[0] - p1[0], p2[1] - p1[1], p2[2] - p1[2]};
        const std::array v = {p3[0] - p1[0], p3[1] - p1[1], p3[2] - p1[2]};
        const double a = u[1] * v[2] - u[2] * v[1];
        const double b = v[0] * u[2] - u[0] * v[2];
        const double c = u[0] * v[1] - v[0] * u[1];
        const double d = -((b * p1[1] + a * p1[0]) + c * p1[2]);
        const Plane4 result = ZULMRSBSPPlaneNS::CreatePlaneEquation(ZULMathPoint(p1[0], p1[1], p1[2]),
                                                                    ZULMathPoint(p2[0], p2[1], p2[2]),
                                                                    ZULMathPoint(p3[0], p3[1], p3[2]));
        EXPECT_TRUE(AreSameBits(result, Plane4{a, b, c, d}));
    }
}

TEST(PlaneCreation, EquationFromAPointAndVectors)
{
    ZULTest::Random random(15);
    for (int i = 0; i < 1000; ++i) {
        const auto [p, u, v] = random.PointTriple(ZULTest::Regime::Easy);
        const double a = v[2] * u[1] - v[1] * u[2];
        const double b = v[0] * u[2] - v[2] * u[0];
        const double c = v[1] * u[0] - v[0] * u[1];
        const double d = -((b * p[1] + a * p[0]) + c * p[2]);
        const ZULMathPoint point(p[0], p[1], p[2]);
        EXPECT_TRUE(AreSameBits(ZULMRSBSPPlaneNS::CreatePlaneEquation(point, ZULMathVector(u[0], u[1], u[2]),
                                                                      ZULMathVector(v[0], v[1], v[2])),
                                Plane4{a, b, c, d}));
        const double offset = -((p[1] * u[1] + p[0] * u[0]) + p[2] * u[2]);
        EXPECT_TRUE(AreSameBits(ZULMRSBSPPlaneNS::CreatePlaneEquation(point, ZULMathVector(u[0], u[1], u[2])),
                                Plane4{u[0], u[1], u[2], offset}));
    }
    EXPECT_TRUE(
        AreSameBits(ZULMRSBSPPlaneNS::CreatePlaneEquation(ZULMathPoint(0, 0, 2), ZULMathVector(0, 0, 1)),
                    Plane4{0.0, 0.0, 1.0, -2.0}));
}
}  // namespace
