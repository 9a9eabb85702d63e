#include <gtest/gtest.h>

#include <tbb/blocked_range.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "ZULMRSBSPPolygon.h"
#include "ZULTestPolygons.h"

using namespace ZULTest;

namespace
{
constexpr std::size_t NbThreads = 4;

/// Runs a task on several threads that start together.
void RunTogether(const std::function<void(std::size_t)>& task)
{
    std::atomic<std::size_t> arrived{0};
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < NbThreads; ++thread) {
        threads.emplace_back([&, thread] {
            arrived.fetch_add(1);
            while (arrived.load() != NbThreads) {
                std::this_thread::yield();
            }
            task(thread);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Vertex k is made once, from the right planes, and the polygon is its only owner.
void ExpectComplete(ZULMRSBSPPolygon& polygon, const Loop& loop)
{
    const std::size_t nbEdges = loop.m_Edges.size();
    ASSERT_EQ(polygon.GetNbPoints(), nbEdges);
    for (std::size_t k = 0; k < nbEdges; ++k) {
        const ZULMRSBSPPoint* const point = polygon.GetPoints()[k];
        ASSERT_NE(point, nullptr);
        EXPECT_EQ(point->GetPlane(1), loop.m_Edges[k].get());
        EXPECT_EQ(point->GetPlane(2), loop.m_Edges[(k + 1) % nbEdges].get());
        EXPECT_EQ(point->GetRefCount(), 0);
    }
    // Besides its owner and the polygon, two vertices hold each edge: nothing was made twice and lost.
    EXPECT_EQ(RefCounts(loop.m_Edges), std::vector<int>(nbEdges, 3));
}

TEST(PolygonThreads, AllGetTheSameVertices)
{
    constexpr std::size_t nbEdges = 50;
    const Loop loop = MakeRegular(nbEdges);
    for (int round = 0; round < 100; ++round) {
        const OwnedPolygon polygon = loop.MakePolygon();
        std::vector<std::vector<ZULMRSBSPPoint*>> seen(NbThreads, std::vector<ZULMRSBSPPoint*>(nbEdges));
        RunTogether([&](std::size_t thread) {
            for (std::size_t step = 0; step < nbEdges; ++step) {
                // Every thread begins elsewhere, every other one walks backwards.
                const std::size_t forward = (step + thread * 7) % nbEdges;
                const std::size_t k = thread % 2 == 0 ? forward : nbEdges - 1 - forward;
                seen[thread][k] = polygon->GetCachedPoint(k);
            }
        });
        ExpectComplete(*polygon, loop);
        for (const auto& points : seen) {
            EXPECT_EQ(points, polygon->GetPoints());
        }
    }
}

TEST(PolygonThreads, AllAtOnceAndOneByOneMayMix)
{
    constexpr std::size_t nbEdges = 70;
    const Loop loop = MakeRegular(nbEdges);
    for (int round = 0; round < 100; ++round) {
        const OwnedPolygon polygon = loop.MakePolygon();
        RunTogether([&](std::size_t thread) {
            if (thread % 2 == 0) {
                EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
            }
            for (std::size_t k = 0; k < nbEdges; ++k) {
                EXPECT_NE(polygon->GetCachedPoint(k), nullptr);
            }
        });
        ExpectComplete(*polygon, loop);
    }
}

TEST(PolygonThreads, ALoopOfOneBlockIsFilledByItsCaller)
{
    constexpr std::size_t nbEdges = 8;
    const Loop loop = MakeRegular(nbEdges);
    for (int round = 0; round < 300; ++round) {
        const OwnedPolygon polygon = loop.MakePolygon();
        RunTogether([&](std::size_t thread) {
            if (thread == 0) {
                EXPECT_NE(polygon->GetCachedPoint(nbEdges - 1), nullptr);
            }
            EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
            for (std::size_t k = 0; k < nbEdges; ++k) {
                EXPECT_NE(polygon->GetCachedPoint((k + thread) % nbEdges), nullptr);
            }
        });
        ExpectComplete(*polygon, loop);
    }
}

TEST(PolygonThreads, AShortCacheIsCompletedOnce)
{
    const Loop loop = MakeRegular(30);
    const OwnedPoint given = MakePoint(1, 0, 0);
    for (int round = 0; round < 50; ++round) {
        const OwnedPolygon polygon(new ZULMRSBSPPolygon(loop.m_SupportingPlane.get(), Pointers(loop.m_Edges),
                                                        std::vector<ZULMRSBSPPoint*>{given.get()}));
        RunTogether([&](std::size_t thread) {
            EXPECT_EQ(polygon->GetCachedPoint(0), given.get());
            EXPECT_NE(polygon->GetCachedPoint(29 - thread), nullptr);
        });
        EXPECT_EQ(polygon->GetNbPoints(), 30U);
    }
}

TEST(PolygonThreads, TasksThatWaitForOnePolygonDoNotBlockItsLoop)
{
    // The thread that fills the points waits for its blocks; were it to take one of the outer tasks
    // meanwhile, that task would wait for ever for the lock that its own thread holds.
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, NbThreads);
    tbb::task_arena arena(static_cast<int>(NbThreads));
    const Loop loop = MakeRegular(200);
    for (int round = 0; round < 30; ++round) {
        const OwnedPolygon polygon = loop.MakePolygon();
        arena.execute([&] {
            tbb::parallel_for(
                tbb::blocked_range<std::size_t>(0, 64, 1),
                [&](const tbb::blocked_range<std::size_t>&) {
                    EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
                    EXPECT_NE(polygon->GetCachedPoint(199), nullptr);
                },
                tbb::simple_partitioner());
        });
        ExpectComplete(*polygon, loop);
    }
}

TEST(PolygonThreads, ACancelledCallerStillGetsEveryVertex)
{
    const Loop loop = MakeRegular(100);
    const OwnedPolygon polygon = loop.MakePolygon();
    tbb::task_group_context context;
    tbb::parallel_for(
        tbb::blocked_range<int>(0, 1),
        [&](const tbb::blocked_range<int>&) {
            context.cancel_group_execution();
            EXPECT_EQ(polygon->UpdatePoints(), ZULMRSNoError);
        },
        tbb::auto_partitioner(), context);
    EXPECT_TRUE(context.is_group_execution_cancelled());
    ExpectComplete(*polygon, loop);
}

TEST(PolygonThreads, ManyPolygonsShareTheirPlanes)
{
    const Loop loop = MakeRegular(20);
    std::vector<OwnedPolygon> polygons;
    for (int i = 0; i < 40; ++i) {
        polygons.push_back(loop.MakePolygon());
    }
    RunTogether([&](std::size_t thread) {
        for (std::size_t i = 0; i < polygons.size(); ++i) {
            polygons[(i + thread * 10) % polygons.size()]->UpdatePoints();
        }
    });
    for (const OwnedPolygon& polygon : polygons) {
        EXPECT_EQ(polygon->GetNbPoints(), 20U);
        polygon->DEBUG_ClearAllPoints();
    }
    EXPECT_EQ(RefCounts(loop.m_Edges), std::vector<int>(20, 40));
}

TEST(PolygonThreads, CountingReferencesDestroysOnce)
{
    const OwnedPlane plane = MakePlane(0, 0, 1, 0);
    auto* const polygon = new ZULMRSBSPPolygon(plane.get(), 0);
    for (std::size_t thread = 1; thread < NbThreads; ++thread) {
        polygon->AddRef();
    }
    RunTogether([&](std::size_t) {
        for (int i = 0; i < 1000; ++i) {
            polygon->AddRef();
            polygon->Release();
        }
        polygon->Release();
    });
    EXPECT_EQ(plane->GetRefCount(), 0);
}
}  // namespace
