#include <gtest/gtest.h>

#include <tbb/blocked_range.h>
#include <tbb/global_control.h>
#include <tbb/parallel_for.h>
#include <tbb/partitioner.h>
#include <tbb/task_arena.h>
#include <tbb/task_group.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "ZULMRSBSPCartesianPlane.h"
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

TEST(PolygonThreads, TasksMayWaitForOnePolygon)
{
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

/// A supporting plane that is told of every vertex under construction.
class WatchedPlane : public ZULMRSBSPCartesianPlane
{
public:
    explicit WatchedPlane(std::function<void()> watch)
        : ZULMRSBSPCartesianPlane({0, 0, 1, 0}), m_Watch(std::move(watch))
    {
    }
    bool IsCanonical(int& axis) const override
    {
        m_Watch();
        return ZULMRSBSPCartesianPlane::IsCanonical(axis);
    }

private:
    std::function<void()> m_Watch;
};

/// Waits for a flag; false when it does not come in a long time.
bool WaitFor(const std::atomic<bool>& flag)
{
    for (int i = 0; i < 10000 && !flag.load(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return flag.load();
}

TEST(PolygonThreads, WhoFillsThePointsTakesNoOtherTaskMeanwhile)
{
    // One thread fills the points, a worker is held up in one of its blocks, and a third thread offers tasks
    // that might want the same polygon. The first one must not take any, since it holds the lock.
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, NbThreads);
    tbb::task_arena arena(3, 2);
    const auto filler = std::this_thread::get_id();
    std::atomic<bool> helped{false};
    std::atomic<bool> offered{false};
    std::atomic<bool> filled{false};
    std::atomic<int> tasksTaken{0};
    const auto watch = [&] {
        if (std::this_thread::get_id() == filler) {
            WaitFor(helped);
        } else if (!helped.exchange(true)) {
            WaitFor(offered);
            // Time for the filler to run out of blocks and to look round.
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    };
    const OwnedPlane support = Own<ZULMRSBSPPlane>(new WatchedPlane(watch));
    const Loop loop = MakeRegular(64);
    const OwnedPolygon polygon(new ZULMRSBSPPolygon(support.get(), Pointers(loop.m_Edges), {}));

    std::thread offerer([&] {
        arena.execute([&] {
            tbb::task_group others;
            WaitFor(helped);
            for (int i = 0; i < 8; ++i) {
                others.run([&] {
                    if (std::this_thread::get_id() == filler && !filled.load()) {
                        tasksTaken.fetch_add(1);
                    }
                });
            }
            offered.store(true);
            WaitFor(filled);
            others.wait();
        });
    });
    arena.execute([&] {
        polygon->UpdatePoints();
        filled.store(true);
    });
    offerer.join();
    EXPECT_TRUE(helped.load());
    EXPECT_EQ(tasksTaken.load(), 0);
    ExpectComplete(*polygon, loop);
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
