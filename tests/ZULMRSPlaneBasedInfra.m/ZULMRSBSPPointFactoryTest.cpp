#include <gtest/gtest.h>

#include <array>
#include <barrier>
#include <chrono>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <tbb/parallel_for.h>
#include <tbb/task_group.h>

#include "ZULMRSBSPPointFactoryImpl.h"
#include "ZULTestAllocation.h"
#include "ZULTestBlockingPlane.h"
#include "ZULTestSupport.h"

namespace
{
using Plane = ZULTest::Owner<ZULMRSBSPPlane>;
using Point = ZULTest::Owner<ZULMRSBSPPoint>;

Plane MakePlane(double a, double b, double c, double d)
{
    return ZULTest::Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(a, b, c, d));
}

class ZULMRSBSPPointFactoryTest : public testing::Test
{
protected:
    Point Create(const Plane& p1, const Plane& p2, const Plane& p3)
    {
        return ZULTest::Own(m_Factory->CreatePoint({p1.get(), p2.get(), p3.get()}, m_IsValid));
    }
    Point CreateThird(double d) { return Create(m_X, m_Y, NewPlane(d)); }
    const Plane& NewPlane(double d)
    {
        m_Planes.push_back(MakePlane(1.0, 1.0, 1.0, d));
        return m_Planes.back();
    }
    /// The text of the factory's end without the measured time.
    std::string Statistics()
    {
        m_Factory.reset();
        const std::string text = m_Lines.GetText();
        const std::string label = " ~ZULMRSBSPPointFactoryImpl release time : ";
        const std::size_t time = text.rfind(label);
        EXPECT_NE(time, std::string::npos);
        const std::string seconds = text.substr(time + label.size());
        std::size_t nbRead = 0;
        EXPECT_GE(std::stof(seconds, &nbRead), 0.0F);
        EXPECT_EQ(seconds.substr(nbRead), "\n");
        return text.substr(0, time + label.size());
    }

    ZULTest::LineCapture m_Lines;
    Plane m_X = MakePlane(1.0, 0.0, 0.0, -1.0);
    Plane m_Y = MakePlane(0.0, 1.0, 0.0, -2.0);
    Plane m_Z = MakePlane(0.0, 0.0, 1.0, -3.0);
    Plane m_Skew = MakePlane(1.0, 2.0, 3.0, -4.0);
    std::vector<Plane> m_Planes;
    std::unique_ptr<ZULMRSBSPPointFactory> m_Factory{ZULMRSCreatePointFactory()};
    bool m_IsValid = false;
};

std::string ExpectedStatistics(unsigned int required, unsigned int reused, const std::string& percentage,
                               unsigned int size)
{
    const std::string banner = "======= ~ ZULMRSBSPPointFactory Stats ~ ==================\n";
    return banner + "Nb Points Required for New : " + std::to_string(required) +
           "\nNb Points Reused : " + std::to_string(reused) + "\n" +
           (percentage.empty() ? "" : "Re-Use Percentage : " + percentage + "%\n") +
           "Factory Size : " + std::to_string(size) + "\n" + banner +
           " ~ZULMRSBSPPointFactoryImpl release time : ";
}

std::string ExpectedTass(unsigned int before, unsigned int after, const std::string& reduction)
{
    return "ZULMRSBSPPointFactoryImpl::Tass : Nb Points In Factory before Tass= " + std::to_string(before) +
           " After Tass=" + std::to_string(after) + " Reduction : " + reduction + "%\n" +
           "[i] ZULMRSBSPPointOnEdgeFactory::Tass : Nb Points In Factory before Tass= 0 After Tass=0 "
           "Reduction : nan%\n";
}
}  // namespace

TEST_F(ZULMRSBSPPointFactoryTest, ATripleIsSharedInItsOrder)
{
    const Point point = Create(m_X, m_Y, m_Z);
    EXPECT_TRUE(m_IsValid);
    EXPECT_EQ(point->GetRefCount(), 1);
    EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(1.0, 2.0, 3.0));
    EXPECT_EQ(Create(m_X, m_Y, m_Z).get(), point.get());
    const Point other = Create(m_Y, m_X, m_Z);
    EXPECT_NE(other.get(), point.get());
    EXPECT_EQ(other->GetApproximatedPoint(), ZULMathPoint(1.0, 2.0, 3.0));
    EXPECT_EQ(m_Factory->Size(), 2U);
    EXPECT_EQ(Statistics(), ExpectedStatistics(3, 1, "33.3333", 2));
}

TEST_F(ZULMRSBSPPointFactoryTest, TheKindOfPointFollowsThePlanes)
{
    EXPECT_EQ(Create(m_X, m_Y, m_Z)->GetType(), ZULMRSBSPPointType_Cartesian);
    EXPECT_EQ(Create(m_X, m_Y, m_Skew)->GetType(), ZULMRSBSPPointType_3Planes);
}

TEST_F(ZULMRSBSPPointFactoryTest, NothingReusedMeansNoPercentage)
{
    Create(m_X, m_Y, m_Z);
    EXPECT_EQ(Statistics(), ExpectedStatistics(1, 0, "", 1));
}

TEST_F(ZULMRSBSPPointFactoryTest, TheFlagIsWrittenForNewPointsOnly)
{
    const Plane parallel = MakePlane(2.0, 0.0, 0.0, -5.0);
    m_IsValid = true;
    const Point invalid = Create(m_X, parallel, m_Skew);
    ASSERT_NE(invalid, nullptr);
    EXPECT_FALSE(m_IsValid);
    m_IsValid = true;
    EXPECT_EQ(Create(m_X, parallel, m_Skew).get(), invalid.get());
    EXPECT_TRUE(m_IsValid);
}

TEST_F(ZULMRSBSPPointFactoryTest, CoordinatesGivenWithThePlanesAreTakenOnce)
{
    const ZULMathPoint coordinates(9.0, 8.0, 7.0);
    const Point point =
        ZULTest::Own(m_Factory->CreatePoint(m_X.get(), m_Y.get(), m_Skew.get(), &coordinates));
    EXPECT_EQ(point->GetType(), ZULMRSBSPPointType_Cartesian);
    EXPECT_EQ(point->GetApproximatedPoint(), coordinates);
    const ZULMathPoint others(1.0, 1.0, 1.0);
    EXPECT_EQ(ZULTest::Own(m_Factory->CreatePoint(m_X.get(), m_Y.get(), m_Skew.get(), &others)).get(),
              point.get());
    EXPECT_EQ(ZULTest::Own(m_Factory->CreatePoint(m_X.get(), m_Y.get(), m_Skew.get(), nullptr)).get(),
              point.get());
    EXPECT_EQ(Create(m_X, m_Y, m_Skew).get(), point.get());
    EXPECT_EQ(Statistics(), ExpectedStatistics(4, 3, "75", 1));
}

TEST_F(ZULMRSBSPPointFactoryTest, WithoutCoordinatesThePlanesDecide)
{
    const Point point = ZULTest::Own(m_Factory->CreatePoint(m_X.get(), m_Y.get(), m_Z.get(), nullptr));
    EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(1.0, 2.0, 3.0));
    EXPECT_EQ(Create(m_X, m_Y, m_Z).get(), point.get());
}

TEST_F(ZULMRSBSPPointFactoryTest, APointOfCoordinatesIsSharedAndCountsNowhere)
{
    const Point point = ZULTest::Own(m_Factory->CreatePoint({1.0, 0.0, -3.0}));
    EXPECT_EQ(point->GetRefCount(), 1);
    EXPECT_EQ(point->GetType(), ZULMRSBSPPointType_Cartesian);
    EXPECT_EQ(ZULTest::Own(m_Factory->CreatePoint({1.0, -0.0, -3.0})).get(), point.get());
    EXPECT_NE(ZULTest::Own(m_Factory->CreatePoint({1.0, 0.5, -3.0})).get(), point.get());
    EXPECT_EQ(m_Factory->Size(), 0U);
    EXPECT_EQ(Statistics(), ExpectedStatistics(0, 0, "", 0));
}

TEST_F(ZULMRSBSPPointFactoryTest, CoordinatesThatAreNoNumberAreNeverShared)
{
    const Point first = ZULTest::Own(m_Factory->CreatePoint({1.0, NAN, 2.0}));
    const Point second = ZULTest::Own(m_Factory->CreatePoint({1.0, NAN, 2.0}));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(first->GetRefCount(), 1);
    m_Factory.reset();
    EXPECT_EQ(first->GetRefCount(), 0);
    EXPECT_EQ(second->GetRefCount(), 0);
}

TEST_F(ZULMRSBSPPointFactoryTest, ANullPlaneGivesNullEveryTimeAndCountsAsNoPoint)
{
    for (int round = 0; round < 3; ++round) {
        m_IsValid = true;
        EXPECT_EQ(Create(m_X, Plane(), m_Z), nullptr);
        EXPECT_EQ(m_IsValid, round != 0) << "only a first request writes the flag";
        EXPECT_EQ(m_Factory->CreatePoint(nullptr, nullptr, nullptr, nullptr), nullptr);
        EXPECT_EQ(m_Factory->Size(), 0U);
    }
    const Point point = Create(m_X, m_Y, m_Z);
    EXPECT_EQ(m_Factory->Size(), 1U);
    EXPECT_EQ(m_Factory->Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Factory->Size(), 0U);
    m_IsValid = true;
    EXPECT_EQ(Create(m_X, Plane(), m_Z), nullptr);
    EXPECT_FALSE(m_IsValid) << "Tass has dropped the entry, so this request is the first again";
    EXPECT_EQ(m_Factory->Size(), 0U);
    EXPECT_EQ(Statistics(), ExpectedTass(1, 0, "100") + ExpectedStatistics(8, 4, "50", 0));
}

TEST_F(ZULMRSBSPPointFactoryTest, MemoryThatIsExhaustedGivesNull)
{
    {
        const ZULTest::AllocationFailure failure(1000);
        EXPECT_EQ(Create(m_X, m_Y, m_Skew), nullptr);
        EXPECT_EQ(m_Factory->CreatePoint({1.0, 2.0, 3.0}), nullptr);
    }
    EXPECT_EQ(m_Factory->Size(), 0U);
    EXPECT_EQ(Create(m_X, m_Y, m_Skew), nullptr) << "an entry without point is not tried again";
    EXPECT_NE(ZULTest::Own(m_Factory->CreatePoint({1.0, 2.0, 3.0})), nullptr);
    m_Factory->Tass();
    EXPECT_NE(Create(m_X, m_Y, m_Skew), nullptr);
}

TEST_F(ZULMRSBSPPointFactoryTest, AFactoryThatCannotBeAllocatedIsNull)
{
    const ZULTest::AllocationFailure failure(1);
    EXPECT_EQ(ZULMRSCreatePointFactory(), nullptr);
}

TEST_F(ZULMRSBSPPointFactoryTest, TassKeepsPointsOfTwoHoldersOrMore)
{
    const Point unheld = CreateThird(1.0);
    unheld->AddRef();
    Point once = CreateThird(2.0);
    Point twice = CreateThird(3.0);
    Point thrice = CreateThird(4.0);
    CreateThird(5.0);
    twice->AddRef();
    thrice->AddRef();
    thrice->AddRef();
    // Counts, the factory's share included: 2, 1, 2, 3, 0.
    unheld->Release();
    EXPECT_EQ(unheld->GetRefCount(), 1);
    EXPECT_EQ(m_Factory->Size(), 5U);
    EXPECT_EQ(m_Factory->Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Factory->Size(), 2U);
    EXPECT_EQ(unheld->GetRefCount(), 0) << "the factory has given its reference up";
    EXPECT_EQ(once->GetRefCount(), 0);
    EXPECT_EQ(twice->GetRefCount(), 2) << "the factory's reference has moved along";
    EXPECT_EQ(thrice->GetRefCount(), 3);
    EXPECT_EQ(Create(m_X, m_Y, m_Planes[2]).get(), twice.get());
    EXPECT_NE(Create(m_X, m_Y, m_Planes[1]).get(), once.get());
    EXPECT_EQ(m_Lines.GetText(), ExpectedTass(5, 2, "60"));
    twice->Release();
    thrice->Release();
    thrice->Release();
}

TEST_F(ZULMRSBSPPointFactoryTest, TassOnAnEmptyFactoryStillWritesItsLine)
{
    EXPECT_EQ(m_Factory->Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Lines.GetText(), ExpectedTass(0, 0, "nan"));
}

TEST_F(ZULMRSBSPPointFactoryTest, TassLeavesThePointsOfCoordinates)
{
    Point point = ZULTest::Own(m_Factory->CreatePoint({1.0, 2.0, 3.0}));
    point.reset();
    m_Factory->Tass();
    ZULMRSBSPPoint* const again = m_Factory->CreatePoint({1.0, 2.0, 3.0});
    EXPECT_EQ(again->GetRefCount(), 1);
    again->Release();
}

TEST_F(ZULMRSBSPPointFactoryTest, TassAndDestructionWorkInsideACancelledTask)
{
    Point point = Create(m_X, m_Y, m_Skew);
    const std::int32_t countBefore = m_Skew->GetRefCount();
    point.reset();
    tbb::task_group_context cancelled;
    tbb::parallel_for(
        0, 1,
        [&](int) {
            cancelled.cancel_group_execution();
            m_Factory->Tass();
        },
        cancelled);
    EXPECT_EQ(m_Factory->Size(), 0U);
    EXPECT_EQ(m_Skew->GetRefCount(), countBefore - 1);
}

TEST_F(ZULMRSBSPPointFactoryTest, PointsOutliveTheFactory)
{
    const Point point = Create(m_X, m_Y, m_Skew);
    const Point cartesian = ZULTest::Own(m_Factory->CreatePoint({1.0, 2.0, 3.0}));
    const Point onEdge = ZULTest::Own(m_Factory->CreatePointOnEdge({m_X.get(), m_Y.get(), m_Z.get()},
                                                                   point.get(), cartesian.get(), m_Z.get()));
    m_Factory.reset();
    EXPECT_EQ(point->GetRefCount(), 0);
    EXPECT_EQ(cartesian->GetRefCount(), 0);
    EXPECT_EQ(onEdge->GetRefCount(), 0);
    EXPECT_EQ(onEdge->GetApproximatedPoint(), ZULMathPoint(1.0, 2.0, 3.0));
}

TEST_F(ZULMRSBSPPointFactoryTest, PointsOnEdgesAreSharedByEdgeAndPlane)
{
    const Point a = Create(m_X, m_Y, m_Z);
    const Point b = Create(m_X, m_Y, m_Skew);
    const std::array<ZULMRSBSPPlane*, 3> planes = {m_X.get(), m_Y.get(), m_Skew.get()};
    const Point cut = ZULTest::Own(m_Factory->CreatePointOnEdge(planes, a.get(), b.get(), m_Skew.get()));
    EXPECT_EQ(ZULTest::Own(m_Factory->CreatePointOnEdge(planes, b.get(), a.get(), m_Skew.get())).get(),
              cut.get());
    EXPECT_NE(cut.get(), b.get()) << "the tables are separate";
    EXPECT_EQ(m_Factory->Size(), 2U) << "points on edges are not counted";
}

TEST_F(ZULMRSBSPPointFactoryTest, TwoThreadsThatComeAtOnceGetOnePoint)
{
    ZULTest::BlockingPlane* const blocking = new ZULTest::BlockingPlane({1.0, 1.0, 1.0, -6.0});
    const Plane owner(blocking);
    Point first;
    Point second;
    std::thread maker([&] {
        bool isValid = false;
        first = ZULTest::Own(m_Factory->CreatePoint({blocking, m_X.get(), m_Y.get()}, isValid));
        EXPECT_TRUE(isValid);
    });
    blocking->AwaitMaker();
    std::thread waiter([&] {
        bool isValid = false;
        second = ZULTest::Own(m_Factory->CreatePoint({blocking, m_X.get(), m_Y.get()}, isValid));
        EXPECT_FALSE(isValid);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // the waiter passes from pausing to yielding
    blocking->GoOn();
    maker.join();
    waiter.join();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(first->GetRefCount(), 2);
    EXPECT_EQ(blocking->GetNbMakings(), 1);
    EXPECT_EQ(first->GetApproximatedPoint(), ZULMathPoint(1.0, 2.0, 3.0));
    first.reset();
    second.reset();
    EXPECT_EQ(Statistics(), ExpectedStatistics(2, 1, "50", 1));
}

TEST_F(ZULMRSBSPPointFactoryTest, AWaitingThreadGetsNullWhenThePointCannotBeMade)
{
    ZULTest::BlockingPlane* const blocking = new ZULTest::BlockingPlane({1.0, 1.0, 1.0, -6.0});
    const Plane owner(blocking);
    blocking->m_Action = [] { ZULTest::t_AllocationsToFail = 1000; };
    bool isValid = false;
    ZULMRSBSPPoint* made = reinterpret_cast<ZULMRSBSPPoint*>(&isValid);
    ZULMRSBSPPoint* awaited = made;
    std::thread maker([&] {
        bool isNewValid = false;
        made = m_Factory->CreatePoint({blocking, m_X.get(), m_Y.get()}, isNewValid);
        ZULTest::t_AllocationsToFail = 0;
    });
    blocking->AwaitMaker();
    std::thread waiter([&] { awaited = m_Factory->CreatePoint({blocking, m_X.get(), m_Y.get()}, isValid); });
    blocking->GoOn();
    maker.join();
    waiter.join();
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(awaited, nullptr);
    EXPECT_EQ(m_Factory->Size(), 0U);
}

TEST_F(ZULMRSBSPPointFactoryTest, AnExceptionOfAPlaneLeavesNobodyWaiting)
{
    ZULTest::BlockingPlane* const blocking = new ZULTest::BlockingPlane({1.0, 1.0, 1.0, -6.0});
    const Plane owner(blocking);
    blocking->m_Action = [] { throw std::runtime_error("broken plane"); };
    bool hasThrown = false;
    bool isValid = false;
    ZULMRSBSPPoint* awaited = reinterpret_cast<ZULMRSBSPPoint*>(&isValid);
    std::thread maker([&] {
        bool isNewValid = false;
        try {
            m_Factory->CreatePoint({blocking, m_X.get(), m_Y.get()}, isNewValid);
        } catch (const std::runtime_error&) {
            hasThrown = true;
        }
    });
    blocking->AwaitMaker();
    std::thread waiter([&] { awaited = m_Factory->CreatePoint({blocking, m_X.get(), m_Y.get()}, isValid); });
    blocking->GoOn();
    maker.join();
    waiter.join();
    EXPECT_TRUE(hasThrown);
    EXPECT_EQ(awaited, nullptr);
    EXPECT_EQ(m_Factory->Size(), 0U);
    m_Factory->Tass();
    EXPECT_NE(ZULTest::Own(m_Factory->CreatePoint({blocking, m_X.get(), m_Y.get()}, isValid)), nullptr);
    EXPECT_TRUE(isValid);
    EXPECT_EQ(m_Factory->Size(), 1U);
}

TEST_F(ZULMRSBSPPointFactoryTest, ManyThreadsShareTheirPoints)
{
    constexpr std::size_t nbThreads = 4;
    constexpr std::size_t nbPoints = 300;
    for (std::size_t i = 0; i < nbPoints; ++i) {
        NewPlane(static_cast<double>(i));
    }
    std::array<std::vector<Point>, nbThreads> points;
    std::barrier start(static_cast<std::ptrdiff_t>(nbThreads));
    std::vector<std::thread> threads;
    for (std::vector<Point>& own : points) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            for (const Plane& plane : m_Planes) {
                bool isValid = false;
                own.push_back(
                    ZULTest::Own(m_Factory->CreatePoint({m_X.get(), m_Y.get(), plane.get()}, isValid)));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < nbPoints; ++i) {
        for (const std::vector<Point>& own : points) {
            ASSERT_EQ(own[i].get(), points[0][i].get());
        }
        EXPECT_EQ(points[0][i]->GetRefCount(), static_cast<std::int32_t>(nbThreads));
    }
    EXPECT_EQ(m_Factory->Size(), nbPoints);
    m_Factory->Tass();
    EXPECT_EQ(m_Factory->Size(), nbPoints);
    for (std::vector<Point>& own : points) {
        own.clear();
    }
    m_Factory->Tass();
    EXPECT_EQ(m_Factory->Size(), 0U);
    EXPECT_EQ(m_X->GetRefCount(), 0);
    EXPECT_EQ(Statistics(), ExpectedTass(300, 300, "0") + ExpectedTass(300, 0, "100") +
                                ExpectedStatistics(1200, 900, "75", 0));
}

TEST_F(ZULMRSBSPPointFactoryTest, ThreadsThatRaceOnCoordinatesGetThePointThatStays)
{
    constexpr std::size_t nbThreads = 4;
    constexpr std::size_t nbRounds = 200;
    const long blocksBefore = ZULTest::GetLiveBlocks();
    {
        std::array<std::array<ZULMRSBSPPoint*, nbRounds>, nbThreads> points{};
        std::barrier start(static_cast<std::ptrdiff_t>(nbThreads));
        std::vector<std::thread> threads;
        for (auto& own : points) {
            threads.emplace_back([&] {
                for (std::size_t round = 0; round < nbRounds; ++round) {
                    start.arrive_and_wait();
                    own[round] = m_Factory->CreatePoint({static_cast<double>(round), 1.0, 2.0});
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (std::size_t round = 0; round < nbRounds; ++round) {
            for (const auto& own : points) {
                ASSERT_EQ(own[round], points[0][round]);
            }
            EXPECT_EQ(points[0][round]->GetRefCount(), static_cast<std::int32_t>(nbThreads));
            for (const auto& own : points) {
                own[round]->Release();
            }
            EXPECT_EQ(points[0][round]->GetRefCount(), 0);
        }
        const ZULTest::LineCapture lines;
        m_Factory.reset();
    }
    // The factory itself was there before.
    EXPECT_EQ(ZULTest::GetLiveBlocks(), blocksBefore - 1);
}

#if ZUL_TEST_HAS_SLOTS
TEST(ZULMRSBSPPointFactoryInterface, SlotsStandInTheirOrder)
{
    using Factory = ZULMRSBSPPointFactory;
    using OfPlanes =
        ZULMRSBSPPoint* (Factory::*)(ZULMRSBSPPlane*, ZULMRSBSPPlane*, ZULMRSBSPPlane*, const ZULMathPoint*);
    using OfCoordinates = ZULMRSBSPPoint* (Factory::*)(const ZULMathPoint&);
    using OfTriple = ZULMRSBSPPoint* (Factory::*)(const std::array<ZULMRSBSPPlane*, 3>&, bool&);
    EXPECT_EQ(ZULTest::SlotOf(static_cast<OfPlanes>(&Factory::CreatePoint)), 0U);
    EXPECT_EQ(ZULTest::SlotOf(static_cast<OfCoordinates>(&Factory::CreatePoint)), 1U);
    EXPECT_EQ(ZULTest::SlotOf(static_cast<OfTriple>(&Factory::CreatePoint)), 2U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::CreatePointOnEdge), 3U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::Size), 4U);
    EXPECT_EQ(ZULTest::SlotOf(&Factory::Tass), 5U);
}
#endif
