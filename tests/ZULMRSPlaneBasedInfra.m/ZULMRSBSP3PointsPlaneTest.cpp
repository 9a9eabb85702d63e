#include "ZULMRSBSP3PointsPlane.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include "ZULMRSBSPCoordinateRecord.h"
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
using Points = std::array<std::array<double, 3>, 3>;
using Records = std::array<ZULMRSBSPCoordinateRecord*, 3>;
using PlaneOwner = ZULTest::Owner<ZULMRSBSP3PointsPlane>;

constexpr int NbRounds = 10000 / ZUL_TEST_CASES_DIVISOR;
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
const Points UnitPoints = {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}};

PlaneOwner Through(const Points& points)
{
    return Own(new ZULMRSBSP3PointsPlane(points));
}

Records RecordsOf(const ZULMRSBSP3PointsPlane& plane)
{
    return ZULTest::PeekAt<Records>(plane, sizeof(ZULMRSBSPPlane) + sizeof(ZULMRSBSPIntegerForm));
}

Plane4 Reversed(const Plane4& plane)
{
    return {-plane[0], -plane[1], -plane[2], -plane[3]};
}

TEST(ThreePointsPlane, FieldsFollowTheBaseInOrder)
{
    auto plane = Through(UnitPoints);
    EXPECT_EQ(sizeof(ZULMRSBSP3PointsPlane),
              sizeof(ZULMRSBSPPlane) + 16 * sizeof(double) + sizeof(ZULMRSBSPIntegerForm));
    std::size_t offset = sizeof(ZULMRSBSPPlane) + sizeof(ZULMRSBSPIntegerForm);
    const auto records = ZULTest::PeekAt<Records>(*plane, offset);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(records[i]->m_Coordinates, UnitPoints[i]);
    }
    offset += sizeof(Records);
    EXPECT_EQ(std::get<0>(plane->GetStdEquation_ExpDynamic()),
              static_cast<const void*>(reinterpret_cast<const unsigned char*>(plane.get()) + offset));
    offset += 4 * sizeof(ZULExpDynamic);
    EXPECT_EQ(ZULTest::PeekAt<unsigned char>(*plane, offset), 1);
    auto overflown = Through({{{1e200, 0, 0}, {0, 1e200, 0}, {0, 0, 1e200}}});
    EXPECT_EQ(ZULTest::PeekAt<unsigned char>(*overflown, offset), 0);
}

TEST(ThreePointsPlane, TheFrontSeesThePointsCounterClockwise)
{
    auto plane = Through(UnitPoints);
    EXPECT_EQ(plane->GetCoords(), (Plane4{0, 0, 1, 0}));
    EXPECT_EQ(plane->GetType(), ZULMRSBSPPlaneType_3Points);
    EXPECT_EQ(plane->GetRefCount(), 0);
    EXPECT_EQ(plane->Get3Points(), UnitPoints);
    auto reversed = Through({UnitPoints[0], UnitPoints[2], UnitPoints[1]});
    EXPECT_EQ(reversed->GetCoords(), (Plane4{0, 0, -1, 0}));
    EXPECT_EQ(reversed->GetDouble(2), -1.0);
    EXPECT_EQ(reversed->GetNormalVector().z, -1.0);
}

TEST(ThreePointsPlane, CollinearPointsGiveZeros)
{
    for (const Points& points : {Points{{{0, 0, 0}, {1, 1, 1}, {2, 2, 2}}}, Points{}}) {
        auto plane = Through(points);
        EXPECT_EQ(plane->GetCoords(), Plane4{});
        const ZULMRSBSPQuadrupleHolder ring(plane->GetStdEquation_FloatRing());
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_TRUE(ring[i].IsZero());
        }
    }
}

TEST(ThreePointsPlane, NeverCanonicalAndTheAxisStays)
{
    auto plane = Through(UnitPoints);
    int axis = 77;
    EXPECT_FALSE(plane->IsCanonical(axis));
    EXPECT_EQ(axis, 77);
}

// Differences, products and sums carry value, magnitude and count by the rules of the filtered number.
TEST(ThreePointsPlane, TheCacheIsTheFormulaInItsOrder)
{
    ZULTest::Random random(31);
    const auto sub = [](const ZULExpDynamic& x, const ZULExpDynamic& y) { return x - y; };
    for (int i = 0; i < 1000; ++i) {
        const Points points = random.PointTriple(ZULTest::Regime::Easy);
        std::array<std::array<ZULExpDynamic, 3>, 3> p;
        for (std::size_t j = 0; j < 3; ++j) {
            p[j] = {ZULExpDynamic(points[j][0]), ZULExpDynamic(points[j][1]), ZULExpDynamic(points[j][2])};
        }
        const std::array u = {sub(p[1][0], p[0][0]), sub(p[1][1], p[0][1]), sub(p[1][2], p[0][2])};
        const std::array v = {sub(p[2][0], p[0][0]), sub(p[2][1], p[0][1]), sub(p[2][2], p[0][2])};
        const ZULExpDynamic a = u[1] * v[2] - u[2] * v[1];
        const ZULExpDynamic b = u[2] * v[0] - u[0] * v[2];
        const ZULExpDynamic c = u[0] * v[1] - u[1] * v[0];
        const ZULExpDynamic d = -((b * p[0][1] + a * p[0][0]) + c * p[0][2]);
        auto plane = Through(points);
        const auto [cache, isOwned] = plane->GetStdEquation_ExpDynamic();
        ASSERT_NE(cache, nullptr);
        EXPECT_FALSE(isOwned);
        EXPECT_TRUE(AreSameBits(*cache, std::array<ZULExpDynamic, 4>{a, b, c, d}));
        EXPECT_EQ((*cache)[0].GetCount(), 6U);
        EXPECT_EQ((*cache)[3].GetCount(), 10U);
    }
}

TEST(ThreePointsPlane, EveryArithmeticHoldsAgainstRationals)
{
    ZULTest::Random random(32);
    int delivered = 0;
    for (const ZULTest::Regime regime : ZULTest::AllRegimes) {
        for (int round = 0; round < NbRounds; ++round) {
            const Points points = random.PointTriple(regime);
            const ZULTest::RationalPlane exact = ZULTest::ThroughPoints(points);
            auto plane = Through(points);
            const ZULMRSBSPQuadrupleHolder filtered(plane->GetStdEquation_ExpDynamic());
            const ZULMRSBSPQuadrupleHolder interval(plane->GetStdEquation_ExpInterval());
            const auto ringPair = plane->GetStdEquation_FloatRing();
            EXPECT_TRUE(std::get<1>(ringPair));
            const ZULMRSBSPQuadrupleHolder ring(ringPair);
            delivered += (filtered ? 1 : 0) + (interval ? 1 : 0);
            for (std::size_t i = 0; i < 4; ++i) {
                EXPECT_TRUE(ZULTest::ToRational(ring[i]) == exact[i]) << ZULTest::NameOf(regime);
                EXPECT_TRUE(!filtered || ZULTest::IsWithinBound(filtered[i], exact[i]))
                    << ZULTest::NameOf(regime);
                EXPECT_TRUE(!interval || ZULTest::Contains(interval[i], exact[i])) << ZULTest::NameOf(regime);
            }
            if (regime == ZULTest::Regime::Easy) {
                EXPECT_TRUE(filtered && interval);
            }
            if (regime == ZULTest::Regime::Tiny || regime == ZULTest::Regime::Huge) {
                EXPECT_FALSE(filtered || interval);
            }
        }
    }
    EXPECT_GT(delivered, 6 * NbRounds);
}

TEST(ThreePointsPlane, AFaultLeavesTheExactEquationAlone)
{
    const Points overflowing = {{{1e200, 0, 0}, {0, 1e200, 0}, {0, 0, 1e200}}};
    const Points underflowing = {{{0, 0, 0}, {1e-170, 3e-170, 0}, {0, 1e-170, 7e-170}}};
    const Points denormal = {{{0, 0, 0}, {5e-324, 0, 0}, {0, 1, 0}}};
    const long before = ZULTest::GetLiveBlocks();
    for (const Points& points : {overflowing, underflowing, denormal}) {
        auto plane = Through(points);
        EXPECT_EQ(plane->GetStdEquation_ExpDynamic(), ZULMRSBSPQuadruple<ZULExpDynamic>(nullptr, false));
        EXPECT_EQ(plane->GetStdEquation_ExpInterval(), ZULMRSBSPQuadruple<ZULExpInterval>(nullptr, false));
        // The doubles come from the exact numbers then.
        const ZULMRSBSPQuadrupleHolder ring(plane->GetStdEquation_FloatRing());
        const Plane4 coords = plane->GetCoords();
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_TRUE(AreSameBits(coords[i], ring[i].Estimate()));
            EXPECT_TRUE(AreSameBits(plane->GetDouble(static_cast<int>(i)), coords[i]));
        }
    }
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
    auto plane = Through(denormal);
    EXPECT_EQ(plane->GetCoords(), (Plane4{0, 0, 5e-324, 0}));
}

TEST(ThreePointsPlane, NoEquationWithoutMemory)
{
    auto plane = Through(UnitPoints);
    const long before = ZULTest::GetLiveBlocks();
    {
        const ZULTest::AllocationFailure failure(2);
        EXPECT_EQ(plane->GetStdEquation_ExpInterval(), ZULMRSBSPQuadruple<ZULExpInterval>(nullptr, false));
        EXPECT_EQ(plane->GetStdEquation_FloatRing(),
                  ZULMRSBSPQuadruple<ZULExpFloatRingExtensionTS>(nullptr, false));
    }
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

TEST(ThreePointsPlane, ConstructionIsCountedCopiesAreNot)
{
    const unsigned int before = ZULMRSBSPInstanceCounters::GetPlanes();
    auto plane = Through(UnitPoints);
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), before + 1);
    const ZULMRSBSP3PointsPlane copy(*plane);
    EXPECT_EQ(ZULMRSBSPInstanceCounters::GetPlanes(), before + 1);
}

TEST(CoordinateRecord, HashIsWhatItAlwaysWas)
{
    using ZULMRSBSPCoordinates::Hash;
    EXPECT_EQ(Hash({0.0, 0.0, 0.0}), 0xf7f700b40aaacbdcU);
    EXPECT_EQ(Hash({1.0, 2.0, 3.0}), 0x61aa8addac241f6cU);
    EXPECT_EQ(Hash({-0.0, 0.5, 1e-310}), 0xde053ba2edcefff1U);
    EXPECT_EQ(Hash({0.1, -7.25, 1e300}), 0x11b3e36ded9eb11fU);
    EXPECT_EQ(Hash({0.0, -0.0, 0.0}), Hash({-0.0, 0.0, -0.0}));
}

TEST(CoordinateRecord, FieldsAreInOrder)
{
    EXPECT_EQ(offsetof(ZULMRSBSPCoordinateRecord, m_Coordinates), 0U);
    EXPECT_EQ(offsetof(ZULMRSBSPCoordinateRecord, m_References), 24U);
    EXPECT_EQ(offsetof(ZULMRSBSPCoordinateRecord, m_TableCount), 28U);
}

TEST(CoordinateRecord, PlanesOnOnePointShareItsRecord)
{
    const long before = ZULTest::GetLiveBlocks();
    auto first = Through({{{10, 20, 30}, {1, 5, 0}, {0, 1, 5}}});
    const ZULMRSBSPCoordinateRecord* shared = RecordsOf(*first)[0];
    EXPECT_EQ(shared->m_References.load(), 1);
    EXPECT_EQ(shared->m_TableCount, 1);
    auto second = Through({{{7, 7, 7}, {10, 20, 30}, {8, 9, 10}}});
    EXPECT_EQ(RecordsOf(*second)[1], shared);
    EXPECT_EQ(shared->m_References.load(), 2);
    EXPECT_EQ(shared->m_TableCount, 1);

    first.reset();
    EXPECT_EQ(shared->m_References.load(), 1);
    EXPECT_EQ(second->Get3Points()[1], (std::array<double, 3>{10, 20, 30}));
    auto third = Through({{{10, 20, 30}, {10, 20, 30}, {10, 20, 30}}});
    EXPECT_EQ(RecordsOf(*third)[2], shared);
    EXPECT_EQ(shared->m_References.load(), 4);
    EXPECT_EQ(shared->m_TableCount, 1);
    second.reset();
    third.reset();
    // The table may keep its buckets, not a record.
    EXPECT_LE(ZULTest::GetLiveBlocks(), before + 1);
}

TEST(CoordinateRecord, ARecordIsFreedWithItsLastHolder)
{
    Through(UnitPoints).reset();  // the table itself
    const long before = ZULTest::GetLiveBlocks();
    for (int round = 0; round < 3; ++round) {
        auto plane = Through({{{1.25, 2, 3}, {4, 5.25, 6}, {7, 8, 9.25}}});
        // The plane, and a record and its place in the table for each point.
        EXPECT_EQ(ZULTest::GetLiveBlocks(), before + 7);
        auto other = Through({{{1.25, 2, 3}, {4, 5.25, 6}, {7, 8, 9.25}}});
        EXPECT_EQ(ZULTest::GetLiveBlocks(), before + 8);
        plane.reset();
        EXPECT_EQ(ZULTest::GetLiveBlocks(), before + 7);
        other.reset();
        EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
    }
}

TEST(CoordinateRecord, BothZerosAreOnePoint)
{
    auto first = Through({{{0.0, 3, 4}, {1, 0, 0}, {0, 1, 0}}});
    auto second = Through({{{-0.0, 3, 4}, {1, -0.0, 0}, {5, 5, 5}}});
    EXPECT_EQ(RecordsOf(*first)[0], RecordsOf(*second)[0]);
    EXPECT_EQ(RecordsOf(*first)[1], RecordsOf(*second)[1]);
}

TEST(CoordinateRecord, APointThatIsNoNumberIsNeverSharedAndStillFreed)
{
    Through(UnitPoints).reset();
    const long before = ZULTest::GetLiveBlocks();
    const Points points = {{{NaN, 1, 2}, {NaN, 1, 2}, {3, 4, 5}}};
    auto first = Through(points);
    EXPECT_NE(RecordsOf(*first)[0], RecordsOf(*first)[1]);
    auto second = Through(points);
    EXPECT_NE(RecordsOf(*first)[0], RecordsOf(*second)[0]);
    EXPECT_EQ(RecordsOf(*first)[2], RecordsOf(*second)[2]);
    const ZULMRSBSP3PointsPlane copy(*first);
    EXPECT_EQ(RecordsOf(*first)[0]->m_References.load(), 2);
    first.reset();
    second.reset();
    EXPECT_EQ(RecordsOf(copy)[0]->m_References.load(), 1);
    EXPECT_GT(ZULTest::GetLiveBlocks(), before);
}

TEST(CoordinateRecord, NothingIsLeftOfPointsThatAreNoNumbers)
{
    Through(UnitPoints).reset();
    const long before = ZULTest::GetLiveBlocks();
    Through({{{NaN, 1, 2}, {NaN, 1, 2}, {1, NaN, NaN}}}).reset();
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

TEST(CoordinateRecord, CopiesTakeReferencesAndTheCount)
{
    auto plane = Through({{{11, 1, 2}, {1, 12, 2}, {3, 4, 15}}});
    plane->AddRef();
    auto copy = std::make_unique<ZULMRSBSP3PointsPlane>(*plane);
    EXPECT_EQ(copy->GetRefCount(), 1);
    EXPECT_EQ(RecordsOf(*copy), RecordsOf(*plane));
    EXPECT_EQ(RecordsOf(*plane)[0]->m_References.load(), 2);
    EXPECT_EQ(RecordsOf(*plane)[0]->m_TableCount, 1);
    EXPECT_TRUE(AreSameBits(*std::get<0>(copy->GetStdEquation_ExpDynamic()),
                            *std::get<0>(plane->GetStdEquation_ExpDynamic())));
    EXPECT_NE(std::get<0>(copy->GetStdEquation_ExpDynamic()),
              std::get<0>(plane->GetStdEquation_ExpDynamic()));
    copy.reset();
    EXPECT_EQ(RecordsOf(*plane)[0]->m_References.load(), 1);
    plane->Release();
}

TEST(CoordinateRecord, AssignmentExchangesTheRecords)
{
    Through(UnitPoints).reset();
    const long before = ZULTest::GetLiveBlocks();
    auto source = Through({{{11, 1, 2}, {1, 12, 2}, {3, 4, 15}}});
    source->AddRef();
    auto target = Through({{{1e200, 0, 0}, {0, 1e200, 0}, {3, 4, 15}}});
    EXPECT_EQ(std::get<0>(target->GetStdEquation_ExpDynamic()), nullptr);
    const ZULMRSBSPCoordinateRecord* common = RecordsOf(*source)[2];
    EXPECT_EQ(common->m_References.load(), 2);
    *target = *source;
    EXPECT_EQ(target->GetRefCount(), 1);
    target->Release();
    EXPECT_EQ(RecordsOf(*target), RecordsOf(*source));
    EXPECT_EQ(common->m_References.load(), 2);
    EXPECT_EQ(RecordsOf(*source)[0]->m_References.load(), 2);
    ASSERT_NE(std::get<0>(target->GetStdEquation_ExpDynamic()), nullptr);
    EXPECT_TRUE(AreSameBits(*std::get<0>(target->GetStdEquation_ExpDynamic()),
                            *std::get<0>(source->GetStdEquation_ExpDynamic())));
    const ZULMRSBSP3PointsPlane& alias = *target;
    *target = alias;
    EXPECT_EQ(common->m_References.load(), 2);
    source->Release();
    source.reset();
    EXPECT_EQ(target->Get3Points()[2], (std::array<double, 3>{3, 4, 15}));
    target.reset();
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

TEST(CoordinateRecord, FailedConstructionGivesItsRecordsBack)
{
    Through(UnitPoints).reset();
    const long before = ZULTest::GetLiveBlocks();
    // A plane, then a record and its place in the table for the one point that is new.
    constexpr int nbBlocks = 3;
    for (int granted = 0; granted < nbBlocks; ++granted) {
        auto held = Through({{{5, 6, 7}, {5, 6, 8}, {5, 7, 9}}});
        const ZULTest::Point3 unknown = {0.5, 0.25, 0.125};
        {
            const ZULTest::AllocationFailure failure(1, granted);
            EXPECT_EQ(ZULMRSBSPPlaneNS::Create3PointsPlane({5, 6, 7}, {5, 7, 9}, unknown), nullptr);
            EXPECT_EQ(ZULTest::t_AllocationsToFail, 0);
        }
        EXPECT_EQ(RecordsOf(*held)[0]->m_References.load(), 1);
        EXPECT_EQ(RecordsOf(*held)[0]->m_TableCount, 1);
        EXPECT_EQ(RecordsOf(*held)[2]->m_References.load(), 1);
    }
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

// A plane takes a record between the two halves of its last holder's release: the count going to zero, and
// the look at the table.
TEST(CoordinateRecord, ARecordTakenAgainDuringItsReleaseLives)
{
    Through(UnitPoints).reset();
    const long before = ZULTest::GetLiveBlocks();
    const ZULTest::Point3 point = {31, 32, 33};
    auto leaving = Through({{point, {1, 0, 0}, {0, 1, 0}}});
    ZULMRSBSPCoordinateRecord* record = RecordsOf(*leaving)[0];
    record->m_References.fetch_sub(1);
    auto taking = Through({{{1, 0, 0}, point, {0, 1, 0}}});
    EXPECT_EQ(RecordsOf(*taking)[1], record);
    EXPECT_EQ(record->m_References.load(), 1);
    EXPECT_EQ(record->m_TableCount, 2);
    // The destructor counts down once more than a release that had already begun.
    leaving.reset();
    record->m_References.fetch_add(1);
    EXPECT_EQ(record->m_TableCount, 1);
    EXPECT_EQ(taking->Get3Points()[1], point);
    EXPECT_EQ(RecordsOf(*Through({{point, point, point}}))[0], record);
    taking.reset();
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

// Threads take and drop the same few points, so records are revived while their last holder lets go.
TEST(CoordinateRecord, ThreadsTakeAndDropTheSamePoints)
{
    Through(UnitPoints).reset();
    const long before = ZULTest::GetLiveBlocks();
    constexpr int nbThreads = 4;
    constexpr int nbRounds = 4000;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    threads.reserve(nbThreads);
    for (int t = 0; t < nbThreads; ++t) {
        threads.emplace_back([t, &wrong] {
            ZULTest::Random random(static_cast<std::uint64_t>(t));
            for (int round = 0; round < nbRounds; ++round) {
                Points points;
                for (auto& point : points) {
                    point = {static_cast<double>(random.Integer(0, 1)), 2.0, random.OneIn(50) ? NaN : 3.0};
                }
                auto plane = Through(points);
                const ZULMRSBSP3PointsPlane copy(*plane);
                plane.reset();
                if (copy.Get3Points()[0][1] != 2.0 || copy.Get3Points()[2][0] != points[2][0]) {
                    ++wrong;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    threads.clear();
    threads.shrink_to_fit();
    EXPECT_EQ(wrong.load(), 0);
    EXPECT_EQ(ZULTest::GetLiveBlocks(), before);
}

#if ZUL_HAS_SSE2
TEST(ThreePointsPlane, TheCallersEnvironmentDoesNotMatterAndStays)
{
    ZULTest::Random random(33);
    for (const ZULTest::Regime regime : ZULTest::AllRegimes) {
        const Points points = random.PointTriple(regime);
        auto expected = Through(points);
        const ZULMRSBSPQuadrupleHolder expectedInterval(expected->GetStdEquation_ExpInterval());
        const auto expectedCache = std::get<0>(expected->GetStdEquation_ExpDynamic());
        for (const ZULExpProcessor::ControlWord word : ZULTest::HostileControlWords()) {
            PlaneOwner plane;
            ZULMRSBSPQuadruple<ZULExpInterval> pair;
            Plane4 coords{};
            const auto left = ZULTest::RunUnder(word, [&] {
                plane = Through(points);
                pair = plane->GetStdEquation_ExpInterval();
                coords = plane->GetCoords();
            });
            EXPECT_EQ(left, word);
            const ZULMRSBSPQuadrupleHolder interval(pair);
            const auto cache = std::get<0>(plane->GetStdEquation_ExpDynamic());
            ASSERT_EQ(cache != nullptr, expectedCache != nullptr);
            EXPECT_TRUE(cache == nullptr || AreSameBits(*cache, *expectedCache));
            ASSERT_EQ(static_cast<bool>(interval), static_cast<bool>(expectedInterval));
            for (std::size_t i = 0; interval && i < 4; ++i) {
                EXPECT_EQ(interval[i].LowerBound(), expectedInterval[i].LowerBound());
                EXPECT_EQ(interval[i].UpperBound(), expectedInterval[i].UpperBound());
            }
            EXPECT_TRUE(AreSameBits(coords, expected->GetCoords()));
        }
    }
}

TEST(CoordinateRecord, DenormalsStayApartWhereTheHostTreatsThemAsZero)
{
    const Points points = {{{1e-310, 0, 0}, {2e-310, 0, 0}, {0, 0, 0}}};
    PlaneOwner plane;
    ZULTest::RunUnder(0x1F80 | 0x8040, [&] { plane = Through(points); });
    const Records records = RecordsOf(*plane);
    EXPECT_NE(records[0], records[1]);
    EXPECT_NE(records[0], records[2]);
    EXPECT_EQ(plane->Get3Points(), points);
}
#endif

TEST(ThreePointsPlane, DifferentOrdersFaceAsTheirPointsRun)
{
    ZULTest::Random random(34);
    for (int i = 0; i < 200; ++i) {
        const Points p = random.PointTriple(ZULTest::Regime::Degenerate);
        auto plane = Through(p);
        EXPECT_EQ(Through({p[1], p[2], p[0]})->GetCoords(), plane->GetCoords());
        EXPECT_EQ(Through({p[1], p[0], p[2]})->GetCoords(), Reversed(plane->GetCoords()));
    }
}
}  // namespace
