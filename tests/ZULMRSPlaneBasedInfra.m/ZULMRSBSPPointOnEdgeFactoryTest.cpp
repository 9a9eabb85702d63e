#include "ZULMRSBSPPointOnEdgeFactory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <barrier>
#include <chrono>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "ZULMRSBSPHash.h"
#include "ZULTestBlockingPlane.h"
#include "ZULTestSupport.h"

namespace
{
using Plane = ZULTest::Owner<ZULMRSBSPPlane>;
using Point = ZULTest::Owner<ZULMRSBSPPoint>;
using Factory = ZULMRSBSPPointOnEdgeFactory;

Plane MakePlane(double a, double b, double c, double d)
{
    return ZULTest::Own(ZULMRSBSPPlaneNS::CreateCartesianPlane(a, b, c, d));
}

Point MakePoint(double x, double y, double z)
{
    return ZULTest::Own(ZULMRSBSPPointNS::CreatePoint(ZULMathPoint(x, y, z)));
}

/// An edge along the z axis from a to b, and planes that cut it.
class ZULMRSBSPPointOnEdgeFactoryTest : public testing::Test
{
protected:
    Point Cut(const Point& start, const Point& end, const Plane& cutting)
    {
        return ZULTest::Own(m_Factory.CreatePointOnEdge({m_X.get(), m_Y.get(), cutting.get()}, start.get(),
                                                        end.get(), cutting.get()));
    }
    Plane CuttingPlane(double z) { return MakePlane(1.0, 1.0, 1.0, -z); }
    static std::string TassLine(unsigned int before, unsigned int after, const std::string& reduction)
    {
        return "[i] ZULMRSBSPPointOnEdgeFactory::Tass : Nb Points In Factory before Tass= " +
               std::to_string(before) + " After Tass=" + std::to_string(after) + " Reduction : " + reduction +
               "%\n";
    }

    ZULTest::LineCapture m_Lines;
    Plane m_X = MakePlane(1.0, 0.0, 0.0, 0.0);
    Plane m_Y = MakePlane(0.0, 1.0, 0.0, 0.0);
    Point m_A = MakePoint(0.0, 0.0, 0.0);
    Point m_B = MakePoint(0.0, 0.0, 10.0);
    Factory m_Factory;
};
}  // namespace

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, AnEdgeIsTheSameInEitherDirection)
{
    const Plane plane = CuttingPlane(4.0);
    const Point point = Cut(m_A, m_B, plane);
    EXPECT_EQ(point->GetRefCount(), 1);
    EXPECT_EQ(point->GetApproximatedPoint(), ZULMathPoint(0.0, 0.0, 4.0));
    EXPECT_EQ(Cut(m_B, m_A, plane).get(), point.get());
    EXPECT_EQ(m_Factory.Size(), 1U);
    const Plane samePlaneElsewhere = CuttingPlane(4.0);
    EXPECT_NE(Cut(m_A, m_B, samePlaneElsewhere).get(), point.get());
    EXPECT_EQ(m_Factory.Size(), 2U);
    EXPECT_EQ(m_A->GetRefCount(), 0) << "end points are not referenced";
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, TheKeyIsOrderedByAddress)
{
    const Plane plane = CuttingPlane(4.0);
    const Point point = Cut(m_A, m_B, plane);
    const Factory::Key key = m_Factory.begin()->first;
    EXPECT_EQ(std::get<0>(key), std::min(m_A.get(), m_B.get(), std::less<>()));
    EXPECT_EQ(std::get<1>(key), std::max(m_A.get(), m_B.get(), std::less<>()));
    EXPECT_EQ(std::get<2>(key), plane.get());
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, TheHashLeavesTheCuttingPlaneOut)
{
    const Factory::KeyHash hash;
    const Plane plane = CuttingPlane(4.0);
    EXPECT_EQ(hash({m_A.get(), m_B.get(), plane.get()}),
              ZULMRSBSPHash::OfPointer(m_A.get()) ^ ZULMRSBSPHash::OfPointer(m_B.get()));
    EXPECT_EQ(hash({m_A.get(), m_B.get(), nullptr}), hash({m_A.get(), m_B.get(), plane.get()}));
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, ThePlanesOfALaterRequestAreNotLookedAt)
{
    const Plane plane = CuttingPlane(4.0);
    const Point point = Cut(m_A, m_B, plane);
    const Point again = ZULTest::Own(
        m_Factory.CreatePointOnEdge({nullptr, nullptr, nullptr}, m_A.get(), m_B.get(), plane.get()));
    EXPECT_EQ(again.get(), point.get());
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, TassDropsWhatNobodyElseHolds)
{
    const Plane p1 = CuttingPlane(1.0);
    const Plane p2 = CuttingPlane(2.0);
    const Plane p3 = CuttingPlane(3.0);
    Cut(m_A, m_B, p1);
    Point held = Cut(m_A, m_B, p2);
    Cut(m_A, m_B, p3);
    EXPECT_EQ(m_Factory.Tass(), ZULMRSNoError);
    ASSERT_EQ(m_Factory.Size(), 1U);
    EXPECT_EQ(m_Factory.begin()->second, held.get());
    EXPECT_EQ(p1->GetRefCount(), 0) << "the point is destroyed and its planes are free";
    EXPECT_EQ(p2->GetRefCount(), 1);
    held.reset();
    EXPECT_EQ(m_Factory.Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Factory.Size(), 0U);
    EXPECT_EQ(m_Factory.begin(), m_Factory.end());
    EXPECT_EQ(m_Lines.GetText(), TassLine(3, 1, "66.6667") + TassLine(1, 0, "100"));
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, TassOnAnEmptyTableStillWritesItsLine)
{
    EXPECT_EQ(m_Factory.Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Lines.GetText(), TassLine(0, 0, "nan"));
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, APointThatCannotBeMadeIsNullUntilTass)
{
    const Plane plane = CuttingPlane(4.0);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(
            m_Factory.CreatePointOnEdge({nullptr, m_Y.get(), plane.get()}, m_A.get(), m_B.get(), plane.get()),
            nullptr);
        EXPECT_EQ(m_Factory.Size(), 0U);
    }
    EXPECT_EQ(Cut(m_A, m_B, plane), nullptr) << "an entry without point is not tried again";
    EXPECT_EQ(m_Factory.Tass(), ZULMRSNoError);
    EXPECT_EQ(m_Factory.begin(), m_Factory.end());
    EXPECT_NE(Cut(m_A, m_B, plane), nullptr);
    EXPECT_EQ(m_Lines.GetText(), TassLine(0, 0, "nan"));
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, EntriesCanBeWalked)
{
    std::set<ZULMRSBSPPoint*> expected;
    std::vector<Plane> planes;
    std::vector<Point> points;
    for (int i = 0; i < 5; ++i) {
        planes.push_back(CuttingPlane(i));
        points.push_back(Cut(m_A, m_B, planes.back()));
        expected.insert(points.back().get());
    }
    std::set<ZULMRSBSPPoint*> ofRange;
    for (const auto& [key, point] : m_Factory) {
        ofRange.insert(point);
    }
    EXPECT_EQ(ofRange, expected);
    const Factory& constant = m_Factory;
    std::set<ZULMRSBSPPoint*> ofConstant;
    for (auto entry = constant.cbegin(); entry != constant.cend(); ++entry) {
        ofConstant.insert(entry->second);
    }
    EXPECT_EQ(ofConstant, expected);
    std::set<ZULMRSBSPPoint*> ofFunctions;
    for (auto entry = begin(m_Factory); entry != end(m_Factory); ++entry) {
        ofFunctions.insert(entry->second);
    }
    EXPECT_EQ(ofFunctions, expected);
    EXPECT_EQ(std::distance(cbegin(constant), cend(constant)), 5);
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, TheDestructorReleasesThePoints)
{
    const Plane plane = CuttingPlane(4.0);
    Point point;
    {
        Factory factory;
        point = ZULTest::Own(factory.CreatePointOnEdge({m_X.get(), m_Y.get(), plane.get()}, m_A.get(),
                                                       m_B.get(), plane.get()));
        factory.CreatePointOnEdge({nullptr, nullptr, nullptr}, m_A.get(), m_B.get(), nullptr);
        EXPECT_EQ(point->GetRefCount(), 1);
    }
    EXPECT_EQ(point->GetRefCount(), 0);
    EXPECT_EQ(m_Lines.GetText(), "");
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, AClassMayDeriveFromIt)
{
    struct Derived : Factory {
        explicit Derived(bool& isDestroyed) : m_IsDestroyed(isDestroyed) {}
        ~Derived() override { m_IsDestroyed = true; }
        bool& m_IsDestroyed;
    };
    bool isDestroyed = false;
    const Factory* const factory = new Derived(isDestroyed);
    delete factory;
    EXPECT_TRUE(isDestroyed);
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, TwoThreadsThatComeAtOnceGetOnePoint)
{
    ZULTest::BlockingPlane* const blocking = new ZULTest::BlockingPlane({1.0, 1.0, 1.0, -4.0});
    const Plane owner(blocking);
    const std::array<ZULMRSBSPPlane*, 3> planes = {blocking, m_X.get(), m_Y.get()};
    Point first;
    Point second;
    std::thread maker(
        [&] { first = ZULTest::Own(m_Factory.CreatePointOnEdge(planes, m_A.get(), m_B.get(), blocking)); });
    blocking->AwaitMaker();
    std::thread waiter(
        [&] { second = ZULTest::Own(m_Factory.CreatePointOnEdge(planes, m_B.get(), m_A.get(), blocking)); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    blocking->GoOn();
    maker.join();
    waiter.join();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first.get(), second.get());
    EXPECT_EQ(blocking->GetNbMakings(), 1);
}

TEST_F(ZULMRSBSPPointOnEdgeFactoryTest, ManyThreadsShareTheirPoints)
{
    constexpr std::size_t nbThreads = 4;
    std::vector<Plane> planes;
    for (int i = 0; i < 200; ++i) {
        planes.push_back(CuttingPlane(0.05 * i));
    }
    std::array<std::vector<Point>, nbThreads> points;
    std::barrier start(static_cast<std::ptrdiff_t>(nbThreads));
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < nbThreads; ++t) {
        threads.emplace_back([&, t] {
            start.arrive_and_wait();
            for (const Plane& plane : planes) {
                points[t].push_back(t % 2 == 0 ? Cut(m_A, m_B, plane) : Cut(m_B, m_A, plane));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < planes.size(); ++i) {
        for (const std::vector<Point>& own : points) {
            ASSERT_EQ(own[i].get(), points[0][i].get());
        }
    }
    EXPECT_EQ(m_Factory.Size(), planes.size());
}
