#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPPolygon.h"
#include "ZULMRSBSPThinBox.h"
#include "ZULTestAllocation.h"
#include "ZULTestGeometry.h"
#include "ZULTestNumbers.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestPolygons.h"
#include "ZULTestTerminal.h"
#include "ZULTestToldPoint.h"

using ZULTest::LineCapture;
using ZULTest::Loop;
using ZULTest::MakePlane;
using ZULTest::MakePoint;
using ZULTest::Own;
using ZULTest::OwnedPlane;
using ZULTest::OwnedPoint;
using ZULTest::OwnedPolygon;
using ZULTest::Pointers;
using ZULTest::ToldPoint;

namespace
{
using XYZ = std::array<double, 3>;
using Bytes = std::array<unsigned char, sizeof(ZULMathOBB)>;

static_assert(std::is_trivially_copyable_v<ZULMathOBB>);

constexpr unsigned char UsedState = 7;

XYZ ToXYZ(const ZULMathVector& v)
{
    return {v.x, v.y, v.z};
}
XYZ ToXYZ(const ZULMathPoint& p)
{
    return {p.x, p.y, p.z};
}

/// A box that holds something else and a state that is not 0.
ZULMathOBB UsedBox()
{
    ZULMathOBB box(ZULMathOBBBase({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}, {13, 14, 15}));
    Bytes bytes{};
    std::memcpy(bytes.data(), &box, bytes.size());
    bytes[sizeof(ZULMathOBBBase)] = UsedState;
    std::memcpy(static_cast<void*>(&box), bytes.data(), bytes.size());
    return box;
}

bool IsStillUsedBox(const ZULMathOBB& box)
{
    return ToXYZ(box.GetAxisU()) == XYZ{1, 2, 3} && ToXYZ(box.GetAxisV()) == XYZ{4, 5, 6} &&
           ToXYZ(box.GetAxisW()) == XYZ{7, 8, 9} && ToXYZ(box.GetExtents()) == XYZ{10, 11, 12} &&
           ToXYZ(box.GetCenter()) == XYZ{13, 14, 15} && box.GetState() == UsedState;
}

/// A polygon whose vertices are given, so that its edges do not matter.
struct GivenPolygon {
    GivenPolygon(OwnedPlane supportingPlane, std::vector<OwnedPoint> points)
        : m_SupportingPlane(std::move(supportingPlane)), m_Points(std::move(points))
    {
        m_Polygon = OwnedPolygon(new ZULMRSBSPPolygon(
            m_SupportingPlane.get(), std::vector<ZULMRSBSPPlane*>(m_Points.size(), m_Edge.get()),
            Pointers(m_Points)));
    }

    OwnedPlane m_SupportingPlane;
    OwnedPlane m_Edge = MakePlane(1, 1, 1, 1);
    std::vector<OwnedPoint> m_Points;
    OwnedPolygon m_Polygon;
};

std::vector<OwnedPoint> MakePoints(const std::vector<XYZ>& places)
{
    std::vector<OwnedPoint> points;
    for (const XYZ& place : places) {
        points.push_back(MakePoint(place[0], place[1], place[2]));
    }
    return points;
}

GivenPolygon MakeGiven(const std::array<double, 4>& plane, const std::vector<XYZ>& places)
{
    return {OwnedPlane(new ZULMRSBSPCartesianPlane(plane)), MakePoints(places)};
}

ZULMathOBB BoxOf(ZULMRSBSPPolygon& polygon)
{
    ZULMathOBB box = UsedBox();
    EXPECT_EQ(polygon.GetOBB(box), ZULMRSNoError);
    EXPECT_EQ(box.GetState(), 0);
    return box;
}

/// The square from (x, 0, 0) to (x + 1, 1, 0), by its planes alone.
Loop MakeUnitSquare(double x)
{
    Loop loop{MakePlane(0, 0, 1, 0), {}};
    loop.m_Edges.push_back(MakePlane(0, -1, 0, 0));
    loop.m_Edges.push_back(MakePlane(1, 0, 0, -(x + 1)));
    loop.m_Edges.push_back(MakePlane(0, 1, 0, -1));
    loop.m_Edges.push_back(MakePlane(-1, 0, 0, x));
    return loop;
}

/// The box in long double, written out on its own.
struct ReferenceBox {
    using Real = long double;
    using Vector = std::array<Real, 3>;

    static Real Dot(const Vector& u, const Vector& v) { return u[0] * v[0] + u[1] * v[1] + u[2] * v[2]; }
    static Vector Unit(const Vector& u)
    {
        const Real length = std::sqrt(Dot(u, u));
        return {u[0] / length, u[1] / length, u[2] / length};
    }

    ReferenceBox(const std::array<double, 4>& plane, const std::vector<XYZ>& places)
    {
        const Vector h = plane[0] != 0.0   ? Vector{0, 1, 0}
                         : plane[1] != 0.0 ? Vector{0, 0, 1}
                                           : Vector{1, 0, 0};
        m_N = Unit({plane[0], plane[1], plane[2]});
        const Real along = Dot(m_N, h);
        m_U = Unit({h[0] - along * m_N[0], h[1] - along * m_N[1], h[2] - along * m_N[2]});
        m_V = {m_N[1] * m_U[2] - m_N[2] * m_U[1], m_N[2] * m_U[0] - m_N[0] * m_U[2],
               m_N[0] * m_U[1] - m_N[1] * m_U[0]};
        for (const XYZ& place : places) {
            for (std::size_t i = 0; i < 3; ++i) {
                m_Center[i] += place[i] / static_cast<Real>(places.size());
            }
        }
        m_Extents = {HalfExtent(m_U, places), HalfExtent(m_V, places), 0.01L};
    }

    Real HalfExtent(const Vector& axis, const std::vector<XYZ>& places) const
    {
        Real lowest = 0;
        Real highest = 0;
        for (const XYZ& place : places) {
            const Real projection = Dot(axis, {place[0], place[1], place[2]});
            lowest = std::min(lowest, projection);
            highest = std::max(highest, projection);
        }
        const Real center = Dot(axis, m_Center);
        return 0.01L + std::max(highest - center, center - lowest);
    }

    Vector m_U;
    Vector m_V;
    Vector m_N;
    Vector m_Center{};
    Vector m_Extents;
};

void ExpectNear(const XYZ& actual, const ReferenceBox::Vector& expected, double tolerance)
{
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(actual[i], static_cast<double>(expected[i]), tolerance) << "component " << i;
    }
}

void ExpectIsReference(const ZULMathOBB& box, const ReferenceBox& reference, double size)
{
    ExpectNear(ToXYZ(box.GetAxisU()), reference.m_U, 4e-14);
    ExpectNear(ToXYZ(box.GetAxisV()), reference.m_V, 4e-14);
    ExpectNear(ToXYZ(box.GetAxisW()), reference.m_N, 1e-14);
    ExpectNear(ToXYZ(box.GetCenter()), reference.m_Center, 1e-14 * size);
    ExpectNear(ToXYZ(box.GetExtents()), reference.m_Extents, 1e-13 * size);
}

//---------------------------------------------------------------- squares

TEST(PolygonBox, TheUnitSquare)
{
    const Loop square = MakeUnitSquare(0);
    const OwnedPolygon polygon = square.MakePolygon();
    const ZULMathOBB box = BoxOf(*polygon);
    EXPECT_EQ(ToXYZ(box.GetAxisU()), (XYZ{1, 0, 0}));
    EXPECT_EQ(ToXYZ(box.GetAxisV()), (XYZ{0, 1, 0}));
    EXPECT_EQ(ToXYZ(box.GetAxisW()), (XYZ{0, 0, 1}));
    EXPECT_EQ(ToXYZ(box.GetCenter()), (XYZ{0.5, 0.5, 0}));
    EXPECT_EQ(ToXYZ(box.GetExtents()), (XYZ{0.51, 0.51, 0.01}));
}

TEST(PolygonBox, FarFromTheOriginItReachesBack)
{
    const Loop square = MakeUnitSquare(10);
    const OwnedPolygon polygon = square.MakePolygon();
    const ZULMathOBB box = BoxOf(*polygon);
    EXPECT_EQ(ToXYZ(box.GetCenter()), (XYZ{10.5, 0.5, 0}));
    EXPECT_EQ(ToXYZ(box.GetExtents()), (XYZ{10.51, 0.51, 0.01}));
}

TEST(PolygonBox, OnTheOtherSideOfTheOriginToo)
{
    const Loop square = MakeUnitSquare(-11);
    const OwnedPolygon polygon = square.MakePolygon();
    const ZULMathOBB box = BoxOf(*polygon);
    EXPECT_EQ(ToXYZ(box.GetCenter()), (XYZ{-10.5, 0.5, 0}));
    EXPECT_EQ(ToXYZ(box.GetExtents()), (XYZ{10.51, 0.51, 0.01}));
}

TEST(PolygonBox, TheHeightAboveTheOriginCountsForNothing)
{
    GivenPolygon given = MakeGiven({0, 0, 1, -100}, {{0, 0, 100}, {1, 0, 100}, {1, 1, 100}, {0, 1, 100}});
    const ZULMathOBB box = BoxOf(*given.m_Polygon);
    EXPECT_EQ(ToXYZ(box.GetCenter()), (XYZ{0.5, 0.5, 100}));
    EXPECT_EQ(ToXYZ(box.GetExtents()), (XYZ{0.51, 0.51, 0.01}));
}

//---------------------------------------------------------------- axes

TEST(PolygonBox, CanonicalNormalsGiveCanonicalAxes)
{
    struct Case {
        XYZ m_Normal;
        XYZ m_U;
        XYZ m_V;
    };
    for (const Case& c : {Case{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, Case{{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}},
                          Case{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}, Case{{0, -1, 0}, {0, 0, 1}, {-1, 0, 0}},
                          Case{{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}, Case{{0, 0, -1}, {1, 0, 0}, {0, -1, 0}}}) {
        // Not normalised: the length is none of the axes' business.
        for (const double length : {1.0, 0.25, 4096.0}) {
            GivenPolygon given = MakeGiven(
                {length * c.m_Normal[0], length * c.m_Normal[1], length * c.m_Normal[2], 0}, {{0, 0, 0}});
            const ZULMathOBB box = BoxOf(*given.m_Polygon);
            EXPECT_EQ(ToXYZ(box.GetAxisU()), c.m_U);
            EXPECT_EQ(ToXYZ(box.GetAxisV()), c.m_V);
            EXPECT_EQ(ToXYZ(box.GetAxisW()), c.m_Normal);
        }
    }
}

TEST(PolygonBox, AxesForEverySignOfTheNormal)
{
    const std::vector<XYZ> places = {{1, 2, 3}, {-2, 5, 1}, {0.5, -1, 4}};
    for (const double a : {-3.0, -0.0, 0.0, 0.7}) {
        for (const double b : {-0.2, -0.0, 0.0, 5.0}) {
            for (const double c : {-11.0, 0.0, 1.5}) {
                if (a == 0.0 && b == 0.0 && c == 0.0) {
                    continue;
                }
                const std::array<double, 4> plane = {a, b, c, 1.0};
                GivenPolygon given = MakeGiven(plane, places);
                SCOPED_TRACE(testing::Message() << a << ' ' << b << ' ' << c);
                const ZULMathOBB box = BoxOf(*given.m_Polygon);
                ExpectIsReference(box, ReferenceBox(plane, places), 10.0);
                // Right-handed and orthonormal, but for what cancels where H is close to the normal.
                EXPECT_NEAR(box.GetAxisU() * box.GetAxisW(), 0.0, 4e-14);
                EXPECT_NEAR(box.GetAxisV() * box.GetAxisW(), 0.0, 4e-14);
                EXPECT_NEAR(box.GetAxisU() * box.GetAxisV(), 0.0, 4e-14);
                EXPECT_NEAR((box.GetAxisU() ^ box.GetAxisV()) * box.GetAxisW(), 1.0, 4e-14);
            }
        }
    }
}

TEST(PolygonBox, TheSmallestCoefficientIsNotZero)
{
    const double tiny = std::numeric_limits<double>::denorm_min();
    GivenPolygon first = MakeGiven({tiny, 0, 1, 0}, {{0, 0, 0}});
    EXPECT_EQ(ToXYZ(BoxOf(*first.m_Polygon).GetAxisU()), (XYZ{0, 1, 0}));
    // H is the normal but for the tiny coefficient, which alone is left of it.
    for (const double b : {tiny, 1e-200, 1e-100, 1e-20}) {
        GivenPolygon second = MakeGiven({0, -b, 1, 0}, {{0, 0, 0}});
        const ZULMathOBB box = BoxOf(*second.m_Polygon);
        EXPECT_EQ(ToXYZ(box.GetAxisW()), (XYZ{0, -b, 1})) << b;
        EXPECT_EQ(ToXYZ(box.GetAxisU()), (XYZ{0, 1, 0})) << b;
        EXPECT_EQ(ToXYZ(box.GetAxisV()), (XYZ{-1, 0, 0})) << b;
    }
}

TEST(PolygonBox, NormalsOfAnyLengthGiveUnitAxes)
{
    const std::vector<XYZ> places = {{1, 2, 3}, {-2, 5, 1}, {0.5, -1, 4}};
    for (const int exponent : {-1060, -700, -520, 0, 511, 600, 1020}) {
        const auto scaled = [exponent](double x) { return std::ldexp(x, exponent); };
        GivenPolygon given = MakeGiven({scaled(3), scaled(-2), scaled(5), 0}, places);
        SCOPED_TRACE(exponent);
        ExpectIsReference(BoxOf(*given.m_Polygon), ReferenceBox({3, -2, 5, 0}, places), 10.0);
    }
}

TEST(PolygonBox, ReadsTheCoefficientsOneByOne)
{
    std::vector<OwnedPoint> points = MakePoints({{1, 2, 0}});
    auto* const plane = new ZULTest::PlaneStubWithDoubles({0, 0, -2, 5});
    GivenPolygon given(OwnedPlane(plane), std::move(points));
    EXPECT_EQ(ToXYZ(BoxOf(*given.m_Polygon).GetAxisW()), (XYZ{0, 0, -1}));
    EXPECT_EQ(plane->m_Calls, (std::vector<int>{6, 6, 6}));
}

//---------------------------------------------------------------- ranges

TEST(PolygonBox, RangesStartAtTheOriginInEveryOctant)
{
    ZULTest::Random random(18);
    for (int i = 0; i < 400; ++i) {
        const XYZ corner = {(i & 1) != 0 ? 100.0 : -100.0, (i & 2) != 0 ? 100.0 : -100.0,
                            (i & 4) != 0 ? 100.0 : -100.0};
        const std::array<double, 4> plane = random.Plane(ZULTest::Regime::Easy);
        // Any places will do: none is held against the plane.
        const double spread = i % 3 == 0 ? 300.0 : 5.0;
        std::vector<XYZ> places(static_cast<std::size_t>(random.Integer(1, 12)));
        for (XYZ& place : places) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                place[axis] = corner[axis] + random.Between(-spread, spread);
            }
        }
        GivenPolygon given = MakeGiven(plane, places);
        SCOPED_TRACE(testing::Message() << "polygon " << i);
        const ZULMathOBB box = BoxOf(*given.m_Polygon);
        ExpectIsReference(box, ReferenceBox(plane, places), 1000.0);
        // What makes the box larger than the polygon: it holds the origin's projection as well.
        const ZULMathPoint origin = box.XYZtoUVW({0, 0, 0});
        EXPECT_LE(std::fabs(origin.x), box.GetExtents().x - 0.0099);
        EXPECT_LE(std::fabs(origin.y), box.GetExtents().y - 0.0099);
    }
}

TEST(PolygonBox, TheMarginDoesNotFollowTheError)
{
    auto* const point = new ToldPoint;
    std::vector<OwnedPoint> points;
    points.emplace_back(point);
    GivenPolygon given(MakePlane(0, 0, 1, 0), std::move(points));
    for (const double error : {0.0, 5.0, std::numeric_limits<double>::infinity()}) {
        point->m_Approximation = {2, -3, 0, error};
        const ZULMathOBB box = BoxOf(*given.m_Polygon);
        EXPECT_EQ(ToXYZ(box.GetCenter()), (XYZ{2, -3, 0}));
        EXPECT_EQ(ToXYZ(box.GetExtents()), (XYZ{2.01, 3.01, 0.01}));
    }
    EXPECT_EQ(point->m_Calls, (std::vector<int>{4, 4, 4}));
}

TEST(PolygonBox, OnePointAtTheOriginHasTheMarginAlone)
{
    GivenPolygon given = MakeGiven({0, 3, 0, 0}, {{0, 0, 0}});
    EXPECT_EQ(ToXYZ(BoxOf(*given.m_Polygon).GetExtents()), (XYZ{0.01, 0.01, 0.01}));
}

TEST(PolygonBox, WithoutVerticesThereIsNoCentre)
{
    const OwnedPlane plane = MakePlane(0, 0, 1, 0);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(plane.get(), 0));
    const ZULMathOBB box = BoxOf(*polygon);
    EXPECT_TRUE(std::isnan(box.GetCenter().x));
    EXPECT_TRUE(std::isnan(box.GetExtents().x));
    EXPECT_EQ(box.GetExtents().z, 0.01);
    EXPECT_EQ(ToXYZ(box.GetAxisW()), (XYZ{0, 0, 1}));
}

//---------------------------------------------------------------- vertices

TEST(PolygonBox, VerticesAreMadeOnDemand)
{
    const Loop square = ZULTest::MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    EXPECT_EQ(polygon->GetNbPoints(), 0U);
    const LineCapture lines;
    const ZULMathOBB box = BoxOf(*polygon);
    EXPECT_EQ(lines.GetText(), "");
    EXPECT_EQ(polygon->GetNbPoints(), 4U);
    EXPECT_EQ(ToXYZ(box.GetCenter()), (XYZ{0, 0, 0}));
    EXPECT_EQ(ToXYZ(box.GetExtents()), (XYZ{1.01, 1.01, 0.01}));
    const std::vector<ZULMRSBSPPoint*> points = polygon->GetPoints();
    BoxOf(*polygon);
    EXPECT_EQ(polygon->GetPoints(), points);
}

TEST(PolygonBox, ManyVertices)
{
    const Loop circle = ZULTest::MakeRegular(100);
    const OwnedPolygon polygon = circle.MakePolygon();
    const ZULMathOBB box = BoxOf(*polygon);
    EXPECT_EQ(polygon->GetNbPoints(), 100U);
    EXPECT_NEAR(box.GetCenter().x, 0.0, 1e-12);
    EXPECT_NEAR(box.GetCenter().y, 0.0, 1e-12);
    // The vertices nearest to the axes are half a side away from them; the radius is 1 / cos(pi / 100).
    EXPECT_NEAR(box.GetExtents().x, 1.01, 1e-12);
    EXPECT_NEAR(box.GetExtents().y, 1.01, 1e-12);
}

TEST(PolygonBox, FreesOwnedApproximationsOnly)
{
    auto* const owned = new ToldPoint;
    auto* const lent = new ToldPoint;
    owned->m_Approximation = {1, 0, 0, 0};
    lent->m_Approximation = {0, 1, 0, 0};
    lent->m_GivesOwnership = false;
    std::vector<OwnedPoint> points;
    points.emplace_back(owned);
    points.emplace_back(lent);
    GivenPolygon given(MakePlane(0, 0, 1, 0), std::move(points));
    owned->m_Calls.reserve(10);
    lent->m_Calls.reserve(10);
    const long before = ZULTest::GetLiveBlocks();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(ToXYZ(BoxOf(*given.m_Polygon).GetCenter()), (XYZ{0.5, 0.5, 0}));
    }
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

//---------------------------------------------------------------- failures

TEST(PolygonBox, WithoutSupportingPlane)
{
    const OwnedPolygon empty(new ZULMRSBSPPolygon());
    const Loop square = ZULTest::MakeSquare();
    const OwnedPolygon open(new ZULMRSBSPPolygon(nullptr, Pointers(square.m_Edges), {}));
    for (ZULMRSBSPPolygon* polygon : {empty.get(), open.get()}) {
        ZULMathOBB box = UsedBox();
        const LineCapture lines;
        EXPECT_EQ(polygon->GetOBB(box), ZULMRSErrorInvalidInput);
        EXPECT_EQ(lines.GetText(), "");
        EXPECT_TRUE(IsStillUsedBox(box));
        EXPECT_EQ(polygon->GetNbPoints(), 0U);
    }
}

TEST(PolygonBox, AVertexThatIsMissingStaysSo)
{
    // A cache of the right length is not completed.
    const Loop square = ZULTest::MakeSquare();
    const OwnedPolygon polygon = square.MakePolygon();
    polygon->ResizePoints();
    for (std::size_t nbMade = 0; nbMade < 4; ++nbMade) {
        ZULMathOBB box = UsedBox();
        const LineCapture lines;
        EXPECT_EQ(polygon->GetOBB(box), ZULMRSErrorInvalidInput) << nbMade;
        EXPECT_EQ(lines.GetText(), "");
        EXPECT_TRUE(IsStillUsedBox(box));
        EXPECT_EQ(std::count(polygon->GetPoints().begin(), polygon->GetPoints().end(), nullptr),
                  static_cast<std::ptrdiff_t>(4 - nbMade));
        polygon->GetCachedPoint(nbMade);
    }
    EXPECT_EQ(ToXYZ(BoxOf(*polygon).GetExtents()), (XYZ{1.01, 1.01, 0.01}));
}

TEST(PolygonBox, AVertexThatCannotBeMade)
{
    // Without its edge plane the last vertex, and the one before, have no third plane.
    const Loop square = ZULTest::MakeSquare();
    std::vector<ZULMRSBSPPlane*> edges = Pointers(square.m_Edges);
    edges[3] = nullptr;
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(square.m_SupportingPlane.get(), std::move(edges), {}));
    ZULMathOBB box = UsedBox();
    EXPECT_EQ(polygon->GetOBB(box), ZULMRSErrorInvalidInput);
    EXPECT_TRUE(IsStillUsedBox(box));
}

TEST(PolygonBox, AVertexWithoutApproximation)
{
    std::vector<OwnedPoint> points = MakePoints({{1, 2, 3}});
    points.emplace_back(new ToldPoint);
    GivenPolygon given(MakePlane(0, 0, 1, 0), std::move(points));
    ZULMathOBB box = UsedBox();
    EXPECT_EQ(given.m_Polygon->GetOBB(box), ZULMRSErrorInvalidInput);
    EXPECT_TRUE(IsStillUsedBox(box));
}

const std::string UpdateError =
    "[E] ZULMRSBSPPolygon::UpdatePoints ( Error happened in function ZULMRSBSPPolygon::GetOBB / Source : "
    "ZULMRSBSPPolygon / Line : 1287)\n";

TEST(PolygonBox, ReportsAnUpdateThatFailed)
{
    for (const ZULMRSErrorTypes error : {ZULMRSErrorInvalidInput, ZULMRSErrorPointsNotUpdated}) {
        const LineCapture lines;
        EXPECT_EQ(ZULMRSBSPThinBox::ReportUpdateError(error), error);
        EXPECT_EQ(lines.GetText(), UpdateError);
    }
}

TEST(PolygonBox, TheReportIsRedOnATerminal)
{
    std::string text;
    {
        const ZULTest::TerminalOnStandardError terminal;
        ASSERT_TRUE(terminal.IsGood());
        ZULMRSBSPThinBox::ReportUpdateError(ZULMRSErrorPointsNotUpdated);
        text = terminal.Read();
    }
    EXPECT_EQ(text, "\033[91;49m" + UpdateError + "\033[39;49m");
}

//---------------------------------------------------------------- the caller's environment

#if ZUL_HAS_SSE2
std::vector<double> NumbersOf(const ZULMathOBB& box)
{
    std::vector<double> numbers;
    for (const XYZ& part : {ToXYZ(box.GetAxisU()), ToXYZ(box.GetAxisV()), ToXYZ(box.GetAxisW()),
                            ToXYZ(box.GetExtents()), ToXYZ(box.GetCenter())}) {
        numbers.insert(numbers.end(), part.begin(), part.end());
    }
    return numbers;
}

TEST(PolygonBox, TheCallersControlWordDoesNotMatter)
{
    ZULTest::Random random(19);
    std::vector<GivenPolygon> polygons;
    for (int i = 0; i < 20; ++i) {
        std::array<double, 4> plane = random.Plane(ZULTest::Regime::Easy);
        if (i % 4 == 0) {
            plane = {random.Number(ZULTest::Regime::Denormal), 0.0, 1.0, 0.0};
        }
        std::vector<XYZ> places(5);
        for (XYZ& place : places) {
            place = random.Point(i % 3 == 0 ? ZULTest::Regime::Denormal : ZULTest::Regime::Easy);
        }
        polygons.push_back(MakeGiven(plane, places));
    }
    for (const GivenPolygon& given : polygons) {
        const std::vector<double> expected = NumbersOf(BoxOf(*given.m_Polygon));
        for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
            ZULMathOBB box = UsedBox();
            ZULMRSErrorTypes error = ZULMRSErrorInvalidInput;
            const auto left = ZULTest::RunUnder(word, [&] { error = given.m_Polygon->GetOBB(box); });
            EXPECT_EQ(left, word);
            EXPECT_EQ(error, ZULMRSNoError);
            const std::vector<double> numbers = NumbersOf(box);
            for (std::size_t i = 0; i < expected.size(); ++i) {
                EXPECT_TRUE(ZULTest::AreSameBits(numbers[i], expected[i])) << word << ' ' << i;
            }
        }
    }
}

TEST(PolygonBox, VerticesAreMadeUnderAnyControlWord)
{
    for (const std::size_t nbEdges : {8U, 30U}) {
        const Loop circle = ZULTest::MakeRegular(nbEdges);
        const OwnedPolygon polygon = circle.MakePolygon();
        const std::vector<double> expected = NumbersOf(BoxOf(*polygon));
        for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
            const OwnedPolygon fresh = circle.MakePolygon();
            ZULMathOBB box = UsedBox();
            const auto left = ZULTest::RunUnder(word, [&] { fresh->GetOBB(box); });
            // The task scheduler, which more than eight vertices call in, keeps modes but drops raised flags.
            const ZULExpProcessor::ControlWord kept =
                nbEdges > 8 ? ~ZULExpProcessor::StatusFlags : ~ZULExpProcessor::ControlWord{0};
            EXPECT_EQ(left & kept, word & kept);
            EXPECT_EQ(NumbersOf(box), expected) << word;
        }
    }
}
#endif
}  // namespace
