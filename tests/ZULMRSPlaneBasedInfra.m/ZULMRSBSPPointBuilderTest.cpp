#include "ZULMRSBSPPointBuilder.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "ZULMRSBSP3PointsPlane.h"
#include "ZULMRSBSPCartesianPlane.h"
#include "ZULMRSBSPQuadrupleHolder.h"
#include "ZULTestAllocation.h"
#include "ZULTestDyadic.h"
#include "ZULTestNumbers.h"
#include "ZULTestPlaneStub.h"
#include "ZULTestPolygons.h"
#include "ZULTestTerminal.h"
#include "ZULTestToldPoint.h"

using ZULTest::AreSameBits;
using ZULTest::LineCapture;
using ZULTest::MakePlane;
using ZULTest::MakePoint;
using ZULTest::Own;
using ZULTest::OwnedPlane;
using ZULTest::OwnedPoint;
using ZULTest::Owner;
using ZULTest::PeekAt;
using ZULTest::Random;
using ZULTest::Regime;
using ZULTest::ToldPoint;

namespace
{
using Builder = ZULMRSBSPPointBuilder;
using Exact = ZULExpFloatRingExtensionTS;
using XYZ = std::array<double, 3>;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double Denormal = std::numeric_limits<double>::denorm_min();
/// Any error is greater.
constexpr double NeverQuick = -1.0;

const std::string WarningTrailer =
    " ( Warning In function ZULMRSBSPPointBuilder::Run / Source : ZULMRSBSPPointBuilder / Line : ";
const std::string GoingExact =
    "[w] ZULMRSBSPPointBuilder::Run Passage sur ZULExpFloatFieldExtensionTS !" + WarningTrailer + "106)\n";
const std::string NoEquation =
    "[E] GetCartesianRepresentation_FloatRing Give No Equation !!! ( Error happened in function "
    "ZULMRSBSPPointBuilder::Run / Source : ZULMRSBSPPointBuilder / Line : 145)\n";

std::string BigError(double error)
{
    std::ostringstream line;
    line << "[w] PointBuilder Approximation Error is quite big : " << error << WarningTrailer << "98)\n";
    return line.str();
}

/// What a run did.
struct Outcome {
    bool m_Unused = true;
    bool m_IsQuick = false;
    XYZ m_Result{};
    std::string m_Lines;
};

XYZ ResultOf(const Builder& builder)
{
    XYZ result{};
    builder.GetResult(result[0], result[1], result[2]);
    return result;
}

/// The error of the result; nothing but its place in memory shows it.
double ErrorOf(const Builder& builder)
{
    return PeekAt<double>(builder, 5 * sizeof(double));
}

Outcome RunOnce(Builder& builder)
{
    Outcome outcome;
    const LineCapture lines;
    // From either value, both outputs are set.
    builder.Run(outcome.m_Unused, outcome.m_IsQuick);
    outcome.m_Result = ResultOf(builder);
    outcome.m_Lines = lines.GetText();
    EXPECT_FALSE(outcome.m_Unused);
    return outcome;
}

Outcome RunWith(const ZULMRSBSPPoint& point, double threshold)
{
    Builder builder(point);
    builder.SetMaxErrorThresholdForQuickEval(threshold);
    return RunOnce(builder);
}

Owner<ToldPoint> Tell(double x, double y, double z, double error)
{
    auto point = Own(new ToldPoint);
    point->m_Approximation = {x, y, z, error};
    return point;
}

/// Three planes and their meeting point.
struct Meeting {
    Meeting(OwnedPlane p1, OwnedPlane p2, OwnedPlane p3)
        : m_Planes{std::move(p1), std::move(p2), std::move(p3)}
    {
        const LineCapture lines;
        m_Point = OwnedPoint(ZULMRSBSPPointNS::CreatePoint(m_Planes[0].get(), m_Planes[1].get(),
                                                           m_Planes[2].get(), m_IsValid, false));
    }

    std::array<OwnedPlane, 3> m_Planes;
    bool m_IsValid = false;
    OwnedPoint m_Point;
};

Meeting MeetAtThirds()
{
    return {MakePlane(3, 0, 0, -1), MakePlane(0, 3, 0, 2), MakePlane(0, 0, 7, -1)};
}

std::array<double, 4> ApproximationOf(const ZULMRSBSPPoint& point)
{
    return *ZULMRSBSPQuadrupleHolder<double>(point.GetApproximatedXYZError());
}

//---------------------------------------------------------------- before and without the exact stage

TEST(PointBuilder, StartsWithZeros)
{
    const OwnedPoint point = MakePoint(1, 2, 3);
    const Builder builder(*point);
    EXPECT_EQ(ResultOf(builder), (XYZ{0, 0, 0}));
    ZULMathPoint result(7, 7, 7);
    builder.GetResult(result);
    EXPECT_EQ((XYZ{result.x, result.y, result.z}), (XYZ{0, 0, 0}));
    EXPECT_EQ(point->GetRefCount(), 0);
}

TEST(PointBuilder, FieldsAreInOrder)
{
    const OwnedPoint point = MakePoint(1, 2, 3);
    Builder builder(*point);
    EXPECT_EQ(sizeof(Builder), 6 * sizeof(double));
    EXPECT_EQ(PeekAt<const ZULMRSBSPPoint*>(builder, 0), point.get());
    EXPECT_EQ(PeekAt<double>(builder, sizeof(double)), 0.0001);
    EXPECT_EQ(ErrorOf(builder), 0.0);
    builder.SetMaxErrorThresholdForQuickEval(2.5);
    EXPECT_EQ(PeekAt<double>(builder, sizeof(double)), 2.5);
    RunOnce(builder);
    EXPECT_EQ(PeekAt<XYZ>(builder, 2 * sizeof(double)), (XYZ{1, 2, 3}));
}

TEST(PointBuilder, ACartesianPointIsQuick)
{
    const OwnedPoint point = MakePoint(0.1, -2e300, 5e-324);
    Builder builder(*point);
    const Outcome outcome = RunOnce(builder);
    EXPECT_TRUE(outcome.m_IsQuick);
    EXPECT_TRUE(AreSameBits(outcome.m_Result, {0.1, -2e300, 5e-324}));
    EXPECT_EQ(outcome.m_Lines, "");
    EXPECT_EQ(ErrorOf(builder), 0.0);
}

TEST(PointBuilder, ASmallErrorIsQuick)
{
    const Meeting thirds = MeetAtThirds();
    const std::array<double, 4> quick = ApproximationOf(*thirds.m_Point);
    const Outcome outcome = RunWith(*thirds.m_Point, 0.0001);
    EXPECT_TRUE(outcome.m_IsQuick);
    EXPECT_EQ(outcome.m_Lines, "");
    EXPECT_TRUE(AreSameBits(outcome.m_Result, {quick[0], quick[1], quick[2]}));
}

TEST(PointBuilder, AsksForNothingButTheApproximation)
{
    const auto point = Tell(1, 2, 3, 0.00005);
    point->m_Representation = {Exact(9), Exact(9), Exact(9), Exact(1)};
    Builder builder(*point);
    EXPECT_TRUE(RunOnce(builder).m_IsQuick);
    EXPECT_EQ(point->m_Calls, (std::vector<int>{4}));
    EXPECT_EQ(ErrorOf(builder), 0.00005);
}

TEST(PointBuilder, BothFormsOfTheResultAgree)
{
    const auto point = Tell(1.5, -2.5, 3.5, 0);
    Builder builder(*point);
    RunOnce(builder);
    ZULMathPoint result;
    builder.GetResult(result);
    EXPECT_EQ((XYZ{result.x, result.y, result.z}), (XYZ{1.5, -2.5, 3.5}));
    EXPECT_EQ(ResultOf(builder), (XYZ{1.5, -2.5, 3.5}));
}

//---------------------------------------------------------------- the threshold

TEST(PointBuilder, TheDefaultThresholdIsATenThousandth)
{
    for (const auto& [error, isQuick] : std::vector<std::pair<double, bool>>{
             {0.0001, true}, {std::nextafter(0.0001, 1.0), false}, {0.00009, true}, {1.0, false}}) {
        const auto point = Tell(1, 2, 3, error);
        Builder builder(*point);
        EXPECT_EQ(RunOnce(builder).m_IsQuick, isQuick) << error;
    }
}

TEST(PointBuilder, QuickUnlessTheErrorIsGreater)
{
    const std::vector<double> values = {NotANumber, -Infinity, -1.0,   -0.0,  0.0,
                                        Denormal,   0.0001,    1e-300, 1e300, Infinity};
    for (const double threshold : values) {
        for (const double error : values) {
            const auto point = Tell(1, 2, 3, error);
            point->m_Representation = {Exact(8), Exact(-6), Exact(4), Exact(2)};
            const Outcome outcome = RunWith(*point, threshold);
            const bool isQuick = !(error > threshold);
            EXPECT_EQ(outcome.m_IsQuick, isQuick) << error << " > " << threshold;
            EXPECT_EQ(outcome.m_Lines, isQuick ? "" : BigError(error) + GoingExact);
            EXPECT_EQ(outcome.m_Result, isQuick ? (XYZ{1, 2, 3}) : (XYZ{4, -3, 2}));
        }
    }
}

TEST(PointBuilder, AThresholdThatIsNotANumberTakesTheQuickResult)
{
    const Meeting thirds = MeetAtThirds();
    const Outcome outcome = RunWith(*thirds.m_Point, NotANumber);
    EXPECT_TRUE(outcome.m_IsQuick);
    EXPECT_EQ(outcome.m_Lines, "");
}

//---------------------------------------------------------------- the exact stage

TEST(PointBuilder, AThresholdOfZeroGoesExact)
{
    const Meeting thirds = MeetAtThirds();
    ASSERT_TRUE(thirds.m_IsValid);
    const double error = ApproximationOf(*thirds.m_Point)[3];
    ASSERT_GT(error, 0.0);
    Builder builder(*thirds.m_Point);
    builder.SetMaxErrorThresholdForQuickEval(0.0);
    const Outcome outcome = RunOnce(builder);
    EXPECT_FALSE(outcome.m_IsQuick);
    EXPECT_EQ(outcome.m_Lines, BigError(error) + GoingExact);
    EXPECT_TRUE(AreSameBits(outcome.m_Result, {1.0 / 3.0, -2.0 / 3.0, 1.0 / 7.0}));
    EXPECT_EQ(ErrorOf(builder), 0.0);
}

TEST(PointBuilder, WarnsWithTheError)
{
    const auto point = Tell(1, 2, 3, 0.125);
    point->m_Representation = {Exact(1), Exact(2), Exact(3), Exact(4)};
    EXPECT_EQ(
        RunWith(*point, 0).m_Lines,
        "[w] PointBuilder Approximation Error is quite big : 0.125 ( Warning In function "
        "ZULMRSBSPPointBuilder::Run / Source : ZULMRSBSPPointBuilder / Line : 98)\n"
        "[w] ZULMRSBSPPointBuilder::Run Passage sur ZULExpFloatFieldExtensionTS ! ( Warning In function "
        "ZULMRSBSPPointBuilder::Run / Source : ZULMRSBSPPointBuilder / Line : 106)\n");
}

TEST(PointBuilder, ColoursOnATerminal)
{
    const auto point = Tell(1, 2, 3, 0.125);
    std::string text;
    bool isUnused = true;
    bool isQuick = true;
    {
        const ZULTest::TerminalOnStandardError terminal;
        ASSERT_TRUE(terminal.IsGood());
        Builder builder(*point);
        builder.Run(isUnused, isQuick);
        text = terminal.Read();
    }
    const std::string plain = "\033[39;49m";
    const std::string tag = "\033[93;49m[w] " + plain;
    EXPECT_FALSE(isUnused);
    EXPECT_FALSE(isQuick);
    EXPECT_EQ(text, tag + BigError(0.125).substr(4) + tag + GoingExact.substr(4) + "\033[91;49m" +
                        NoEquation + plain);
}

TEST(PointBuilder, ExactCoordinatesAreSignedQuotients)
{
    const auto point = Tell(0, 0, 0, 1);
    for (const double w : {2.0, -2.0}) {
        point->m_Representation = {Exact(3), Exact(-5), Exact(0.0), Exact(w)};
        const XYZ expected = w > 0.0 ? XYZ{1.5, -2.5, 0.0} : XYZ{-1.5, 2.5, 0.0};
        EXPECT_TRUE(AreSameBits(RunWith(*point, 0).m_Result, expected));
    }
}

TEST(PointBuilder, ExactCoordinatesMayBeBeyondDoubles)
{
    const auto point = Tell(0, 0, 0, 1);
    const Exact far(ZULExpBigIntegerTS(3), 5000);
    const Exact near(ZULExpBigIntegerTS(-3), -5000);
    point->m_Representation = {far, near, -far, Exact(1)};
    EXPECT_TRUE(AreSameBits(RunWith(*point, 0).m_Result, {Infinity, -0.0, -Infinity}));
    point->m_Representation = {far, far * Exact(-0.75), far * far, far};
    EXPECT_TRUE(AreSameBits(RunWith(*point, 0).m_Result, {1.0, -0.75, Infinity}));
}

TEST(PointBuilder, WithoutAMeetingPointCoordinatesAreInfinite)
{
    const auto point = Tell(1, 2, 3, Infinity);
    point->m_Representation = {Exact(5), Exact(-5), Exact(0.0), Exact(0.0)};
    const Outcome outcome = RunWith(*point, 1);
    EXPECT_FALSE(outcome.m_IsQuick);
    // A zero counts among the numbers that are not positive.
    EXPECT_TRUE(AreSameBits(outcome.m_Result, {-Infinity, Infinity, 0.0}));
}

TEST(PointBuilder, KeepsTheQuickResultWithoutExactNumbers)
{
    const auto point = Tell(1, 2, 3, 0.5);
    Builder builder(*point);
    const Outcome outcome = RunOnce(builder);
    EXPECT_FALSE(outcome.m_IsQuick);
    EXPECT_EQ(outcome.m_Result, (XYZ{1, 2, 3}));
    EXPECT_EQ(outcome.m_Lines, BigError(0.5) + GoingExact + NoEquation);
    EXPECT_EQ(ErrorOf(builder), 0.5);
    EXPECT_EQ(point->m_Calls, (std::vector<int>{4, 3}));
}

TEST(PointBuilder, KeepsTheFormerResultWithoutApproximation)
{
    const auto point = Own(new ToldPoint);
    point->m_Representation = {Exact(8), Exact(8), Exact(8), Exact(1)};
    Builder builder(*point);
    builder.SetMaxErrorThresholdForQuickEval(NeverQuick);
    Outcome outcome = RunOnce(builder);
    EXPECT_TRUE(outcome.m_IsQuick);
    EXPECT_EQ(outcome.m_Result, (XYZ{0, 0, 0}));
    EXPECT_EQ(outcome.m_Lines, "");
    EXPECT_EQ(point->m_Calls, (std::vector<int>{4}));

    point->m_Approximation = {1, 2, 3, 0};
    builder.SetMaxErrorThresholdForQuickEval(0);
    EXPECT_EQ(RunOnce(builder).m_Result, (XYZ{1, 2, 3}));
    point->m_Approximation.reset();
    outcome = RunOnce(builder);
    EXPECT_TRUE(outcome.m_IsQuick);
    EXPECT_EQ(outcome.m_Result, (XYZ{1, 2, 3}));
}

TEST(PointBuilder, RunsAgain)
{
    const auto point = Tell(1, 2, 3, 0.5);
    point->m_Representation = {Exact(8), Exact(10), Exact(12), Exact(2)};
    Builder builder(*point);
    for (int i = 0; i < 2; ++i) {
        builder.SetMaxErrorThresholdForQuickEval(0.25);
        Outcome outcome = RunOnce(builder);
        EXPECT_FALSE(outcome.m_IsQuick);
        EXPECT_EQ(outcome.m_Result, (XYZ{4, 5, 6}));
        EXPECT_EQ(outcome.m_Lines, BigError(0.5) + GoingExact);
        EXPECT_EQ(ErrorOf(builder), 0.0);

        builder.SetMaxErrorThresholdForQuickEval(0.5);
        outcome = RunOnce(builder);
        EXPECT_TRUE(outcome.m_IsQuick);
        EXPECT_EQ(outcome.m_Result, (XYZ{1, 2, 3}));
        EXPECT_EQ(outcome.m_Lines, "");
        EXPECT_EQ(ErrorOf(builder), 0.5);
    }
}

TEST(PointBuilder, FreesWhatItOwns)
{
    const auto point = Tell(1, 2, 3, 0.5);
    point->m_Representation = {Exact(8), Exact(10), Exact(12), Exact(2)};
    for (const bool givesOwnership : {true, false}) {
        point->m_GivesOwnership = givesOwnership;
        for (const double threshold : {0.0, 1.0}) {
            // The record of calls grows once.
            point->m_Calls.clear();
            RunWith(*point, threshold);
            const long before = ZULTest::GetLiveBlocks();
            for (int i = 0; i < 3; ++i) {
                point->m_Calls.clear();
                RunWith(*point, threshold);
            }
            EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
        }
    }
    // What was lent is still there.
    EXPECT_EQ((*point->m_Approximation)[3], 0.5);
    EXPECT_EQ((*point->m_Representation)[0].Estimate(), 8.0);
}

//---------------------------------------------------------------- accuracy

/// A double and the distance to its neighbour, the nearer one if they differ.
double UnitOf(double value)
{
    const double magnitude = std::fabs(value);
    return magnitude == 0.0 ? Denormal : magnitude - std::nextafter(magnitude, 0.0);
}

ZULTest::Dyadic Magnitude(const ZULTest::Dyadic& x)
{
    return x.Sign() < 0 ? -x : x;
}

/// Whether a coordinate is within two units of numerator / w.
bool IsWithinTwoUnits(double coordinate, const ZULTest::Dyadic& numerator, const ZULTest::Dyadic& w)
{
    using ZULTest::Dyadic;
    if (std::isnan(coordinate)) {
        return false;
    }
    if (std::isinf(coordinate)) {
        return numerator.Sign() * w.Sign() == (coordinate < 0.0 ? -1 : 1) &&
               (Magnitude(numerator) - Magnitude(w) * Dyadic(std::numeric_limits<double>::max())).Sign() > 0;
    }
    const Dyadic error = Magnitude(Dyadic(coordinate) * w - numerator);
    return (Magnitude(w) * Dyadic(UnitOf(coordinate)) * Dyadic(2.0) - error).Sign() >= 0;
}

/// A random plane and its exact equation. Three points make no plane in the degenerate regime.
OwnedPlane RandomPlane(Random& random, Regime regime, const ZULTest::Plane4& equation,
                       ZULTest::DyadicPlane& exact)
{
    if (regime == Regime::Degenerate || random.OneIn(2)) {
        exact = ZULTest::ToDyadic(equation);
        return OwnedPlane(new ZULMRSBSPCartesianPlane(equation));
    }
    const std::array<ZULTest::Point3, 3> points = random.PointTriple(regime);
    exact = ZULTest::DyadicThroughPoints(points);
    return OwnedPlane(new ZULMRSBSP3PointsPlane(points));
}

/// The number of points that were valid and right; stops at the first that is wrong.
int CountRightPoints(Random& random, Regime regime, int nbPoints)
{
    int nbRight = 0;
    for (int i = 0; nbRight < nbPoints && i < 20 * nbPoints; ++i) {
        // Of four planes through one point any three do; the other regimes have no such thing.
        const std::array<ZULTest::Plane4, 4> four = random.PlanesThroughOnePoint(regime);
        std::array<ZULTest::Plane4, 3> equations = {four[0], four[1], four[2]};
        if (regime == Regime::NearDegenerate) {
            equations = random.PlaneTriple(regime);
        }
        std::array<ZULTest::DyadicPlane, 3> exact;
        OwnedPlane p1 = RandomPlane(random, regime, equations[0], exact[0]);
        OwnedPlane p2 = RandomPlane(random, regime, equations[1], exact[1]);
        const Meeting meeting(std::move(p1), std::move(p2),
                              RandomPlane(random, regime, equations[2], exact[2]));
        const ZULTest::DyadicPlane truth = ZULTest::DyadicMeetingPoint(exact);
        // Where a plane has no filtered equation a point passes for valid unseen.
        if (!meeting.m_IsValid || truth[3].Sign() == 0) {
            continue;
        }
        const Outcome outcome = RunWith(*meeting.m_Point, NeverQuick);
        EXPECT_FALSE(outcome.m_IsQuick);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if (!IsWithinTwoUnits(outcome.m_Result[axis], truth[axis], truth[3])) {
                ADD_FAILURE() << ZULTest::NameOf(regime) << ", point " << i << ", axis " << axis << ": "
                              << outcome.m_Result[axis];
                return nbRight;
            }
        }
        ++nbRight;
    }
    return nbRight;
}

TEST(PointBuilder, ExactCoordinatesAreWithinTwoUnitsOfTheTruth)
{
    constexpr int nbPoints = 16000 / ZUL_TEST_CASES_DIVISOR;
    Random random(20261121);
    for (const Regime regime : ZULTest::AllRegimes) {
        EXPECT_EQ(CountRightPoints(random, regime, nbPoints), nbPoints) << ZULTest::NameOf(regime);
    }
}

TEST(PointBuilder, ThinAnglesLeaveTheCoordinatesExact)
{
    // Planes that differ from one another by a few units in the last place; their meeting point is far out or
    // anywhere.
    constexpr int nbPoints = 10000 / ZUL_TEST_CASES_DIVISOR;
    Random random(7);
    int nbValid = 0;
    for (int i = 0; i < nbPoints; ++i) {
        const ZULTest::Plane4 first = random.Plane(Regime::Easy);
        std::array<ZULTest::Plane4, 3> equations = {first, first, first};
        for (double& coefficient : equations[1]) {
            coefficient = random.Nudged(coefficient, 3);
        }
        for (double& coefficient : equations[2]) {
            coefficient = random.Nudged(coefficient, 3);
        }
        const Meeting meeting(MakePlane(first[0], first[1], first[2], first[3]),
                              OwnedPlane(new ZULMRSBSPCartesianPlane(equations[1])),
                              OwnedPlane(new ZULMRSBSPCartesianPlane(equations[2])));
        if (!meeting.m_IsValid) {
            continue;
        }
        ++nbValid;
        const ZULTest::DyadicPlane truth =
            ZULTest::DyadicMeetingPoint({ZULTest::ToDyadic(equations[0]), ZULTest::ToDyadic(equations[1]),
                                         ZULTest::ToDyadic(equations[2])});
        const XYZ result = RunWith(*meeting.m_Point, NeverQuick).m_Result;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            ASSERT_TRUE(IsWithinTwoUnits(result[axis], truth[axis], truth[3])) << i << ' ' << result[axis];
        }
    }
    EXPECT_GT(nbValid, nbPoints / 2);
}

TEST(PointBuilder, RepresentableCoordinatesAreHit)
{
    // Whole numbers, and the same scaled to any size: numerators and W then fit 53 bits.
    constexpr int nbPoints = 10000 / ZUL_TEST_CASES_DIVISOR;
    Random random(8);
    int nbValid = 0;
    for (int i = 0; i < nbPoints; ++i) {
        const auto number = [&random] { return static_cast<double>(random.Integer(-1000, 1000)); };
        const double scale = std::ldexp(1.0, random.Integer(-1050, 1000));
        XYZ point{};
        for (double& coordinate : point) {
            coordinate = number();
        }
        std::array<OwnedPlane, 3> planes;
        for (OwnedPlane& plane : planes) {
            const double a = number();
            const double b = number();
            const double c = number();
            const double d = -(a * point[0] + b * point[1] + c * point[2]);
            // The offset holds the scale, so the coordinates have it.
            plane = OwnedPlane(new ZULMRSBSPCartesianPlane({a, b, c, d * scale}));
            if (std::fabs(d * scale) > 1e300 || (d * scale) / scale != d) {
                plane.reset();
                break;
            }
        }
        if (planes[0] == nullptr || planes[1] == nullptr || planes[2] == nullptr) {
            continue;
        }
        const Meeting meeting(std::move(planes[0]), std::move(planes[1]), std::move(planes[2]));
        if (meeting.m_IsValid) {
            ++nbValid;
            const XYZ result = RunWith(*meeting.m_Point, NeverQuick).m_Result;
            ASSERT_EQ(result, (XYZ{point[0] * scale, point[1] * scale, point[2] * scale})) << i;
        }
    }
    EXPECT_GT(nbValid, nbPoints / 2);
}

//---------------------------------------------------------------- the caller's environment

#if ZUL_HAS_SSE2
TEST(PointBuilder, TheCallersControlWordDoesNotMatter)
{
    const Meeting thirds = MeetAtThirds();
    const auto denormal = Tell(1, 2, 3, Denormal);
    denormal->m_Representation = {Exact(3.0 * Denormal), Exact(-1.0), Exact(1.0), Exact(3.0)};
    const auto tiny = Tell(1, 2, 3, 3.0 * Denormal);
    const Meeting huge(MakePlane(1e200, 3, 0, -1e200), MakePlane(0, 1e200, 7, -2e200),
                       MakePlane(0, 0, 1e-300, -3e-300));
    struct Case {
        const ZULMRSBSPPoint* m_Point;
        double m_Threshold;
    };
    for (const Case& run : {Case{thirds.m_Point.get(), 0.0}, Case{thirds.m_Point.get(), 0.0001},
                            Case{denormal.get(), 0.0}, Case{denormal.get(), Denormal},
                            Case{tiny.get(), 2.0 * Denormal}, Case{huge.m_Point.get(), NeverQuick}}) {
        const Outcome expected = RunWith(*run.m_Point, run.m_Threshold);
        for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
            Outcome outcome;
            Builder builder(*run.m_Point);
            builder.SetMaxErrorThresholdForQuickEval(run.m_Threshold);
            const LineCapture lines;
            const auto left =
                ZULTest::RunUnder(word, [&] { builder.Run(outcome.m_Unused, outcome.m_IsQuick); });
            EXPECT_EQ(left, word);
            EXPECT_EQ(outcome.m_IsQuick, expected.m_IsQuick) << word;
            EXPECT_TRUE(AreSameBits(ResultOf(builder), expected.m_Result)) << word;
            EXPECT_EQ(lines.GetText(), expected.m_Lines) << word;
        }
    }
    EXPECT_FALSE(RunWith(*denormal, 0.0).m_IsQuick);
    EXPECT_TRUE(AreSameBits(RunWith(*denormal, 0.0).m_Result, {Denormal, -1.0 / 3.0, 1.0 / 3.0}));
    EXPECT_TRUE(RunWith(*denormal, Denormal).m_IsQuick);
    EXPECT_FALSE(RunWith(*tiny, 2.0 * Denormal).m_IsQuick);
}
#endif
}  // namespace
