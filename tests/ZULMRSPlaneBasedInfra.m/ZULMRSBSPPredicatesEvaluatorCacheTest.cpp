#include "ZULMRSBSPPredicatesEvaluatorCache.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "ZULMRSBSPHash.h"
#include "ZULMRSBSPPredicates.h"
#include "ZULTestBlockingPlane.h"
#include "ZULTestGeometry.h"
#include "ZULTestPolygons.h"

namespace
{
/// How many allocations of concurrent tables still succeed on this thread; negative: all.
thread_local int t_TableAllocationsToGrant = -1;
}  // namespace

namespace tbb::detail::r1
{
/// Stands in for the allocation function of concurrent tables in the whole program.
__attribute__((visibility("default"))) void* allocate_memory(std::size_t size)
{
    using Function = void* (*)(std::size_t);
    static const auto original =
        reinterpret_cast<Function>(dlsym(RTLD_NEXT, "_ZN3tbb6detail2r115allocate_memoryEm"));
    if (t_TableAllocationsToGrant == 0) {
        throw std::bad_alloc();
    }
    if (t_TableAllocationsToGrant > 0) {
        --t_TableAllocationsToGrant;
    }
    return original(size);
}
}  // namespace tbb::detail::r1

namespace
{
using Cache = ZULMRSBSPPredicatesEvaluatorCache;
using ZULTest::MakePlane;
using ZULTest::MakePoint;
using ZULTest::Own;
using ZULTest::OwnedPlane;
using ZULTest::OwnedPoint;
using ZULTest::Owner;
using ZULTest::PlaneStub;

/// Planes x = i whose questions are counted, and points to ask about.
struct Scene {
    explicit Scene(int count)
    {
        for (int i = 0; i < count; ++i) {
            m_Planes.push_back(Own(new PlaneStub({1.0, 0.0, 0.0, -static_cast<double>(i)})));
        }
    }

    /// How often the exact predicate has looked at any of the planes.
    std::size_t GetNbLooks() const
    {
        std::size_t count = 0;
        for (const auto& plane : m_Planes) {
            count += plane->m_Calls.size();
        }
        return count;
    }
    /// Asks about every plane; whether all answers are right.
    bool AskAll(Cache& cache) const
    {
        bool areRight = true;
        for (const auto& plane : m_Planes) {
            const double x = 2.0 + plane->m_Equation[3];
            const ZULMRSExtendedBool answer = cache.IsPointInFrontOfPlane(*plane, *m_Point);
            areRight = areRight && answer == (x > 0.0 ? 1 : (x < 0.0 ? -1 : 0));
        }
        return areRight;
    }
    bool AnswersWithoutLooking(Cache& cache) const
    {
        const std::size_t before = GetNbLooks();
        return AskAll(cache) && GetNbLooks() == before;
    }
    /// Whether the cache has to look at every plane.
    bool KnowsNothing(const Cache& cache) const
    {
        for (const auto& plane : m_Planes) {
            Cache copy(cache);
            const std::size_t before = plane->m_Calls.size();
            copy.IsPointInFrontOfPlane(*plane, *m_Point);
            if (plane->m_Calls.size() == before) {
                return false;
            }
        }
        return true;
    }

    std::vector<Owner<PlaneStub>> m_Planes;
    OwnedPoint m_Point = MakePoint(2, 0, 0);
};

/// A plane whose next question ends in an exception.
class ThrowingPlane : public PlaneStub
{
public:
    using PlaneStub::PlaneStub;

    ZULMRSBSPPlaneType GetType() const override
    {
        if (m_IsThrowing) {
            throw std::runtime_error("no answer");
        }
        return PlaneStub::GetType();
    }
    bool m_IsThrowing = true;
};

/// A plane that stops the first thread that asks where a point lies.
class BlockingQuestion : public ZULTest::BlockingPlane
{
public:
    using BlockingPlane::BlockingPlane;

    ZULMRSBSPPlaneType GetType() const override
    {
        int axis = 0;
        IsCanonical(axis);
        return ZULMRSBSPPlaneType_3Points;
    }
};

TEST(PredicatesEvaluatorCache, AsksThePredicateOnce)
{
    const Scene scene(5);
    Cache cache;
    ASSERT_TRUE(scene.AskAll(cache));
    const std::size_t nbLooks = scene.GetNbLooks();
    EXPECT_GT(nbLooks, 0U);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(scene.AskAll(cache));
    }
    EXPECT_EQ(scene.GetNbLooks(), nbLooks);
    // Without the cache each round would have looked again.
    for (const auto& plane : scene.m_Planes) {
        ZULMRSBSPPredicates::IsPointInFrontOfPlane(*plane, *scene.m_Point);
    }
    EXPECT_EQ(scene.GetNbLooks(), 2 * nbLooks);
}

TEST(PredicatesEvaluatorCache, RemembersEachOfTheThreeAnswers)
{
    const auto plane = Own(new PlaneStub({1, 0, 0, 0}));
    const std::vector<std::pair<OwnedPoint, ZULMRSExtendedBool>> questions = [] {
        std::vector<std::pair<OwnedPoint, ZULMRSExtendedBool>> result;
        result.emplace_back(MakePoint(5e-324, 0, 0), ZULMRSExtendedTrue);
        result.emplace_back(MakePoint(-1, 0, 0), ZULMRSExtendedFalse);
        result.emplace_back(MakePoint(0, 7, 0), ZULMRSExtendedUndetermined);
        return result;
    }();
    Cache cache;
    for (const auto& [point, answer] : questions) {
        EXPECT_EQ(cache.IsPointInFrontOfPlane(*plane, *point), answer);
    }
    const std::size_t nbLooks = plane->m_Calls.size();
    for (const auto& [point, answer] : questions) {
        EXPECT_EQ(cache.IsPointInFrontOfPlane(*plane, *point), answer);
    }
    EXPECT_EQ(plane->m_Calls.size(), nbLooks);
}

TEST(PredicatesEvaluatorCache, AnswersThroughTheBase)
{
    const Scene scene(3);
    Cache cache;
    ZULMRSBSPPredicatesEvaluator& evaluator = cache;
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*scene.m_Planes[0], *scene.m_Point), ZULMRSExtendedTrue);
    const std::size_t nbLooks = scene.GetNbLooks();
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*scene.m_Planes[0], *scene.m_Point), ZULMRSExtendedTrue);
    EXPECT_EQ(scene.GetNbLooks(), nbLooks);
    evaluator.clear();
    EXPECT_EQ(evaluator.IsPointInFrontOfPlane(*scene.m_Planes[0], *scene.m_Point), ZULMRSExtendedTrue);
    EXPECT_EQ(scene.GetNbLooks(), 2 * nbLooks);
    const std::unique_ptr<ZULMRSBSPPredicatesEvaluator> owned = std::make_unique<Cache>(cache);
    EXPECT_TRUE(scene.KnowsNothing(Cache()));
    EXPECT_FALSE(scene.KnowsNothing(dynamic_cast<Cache&>(*owned)));
}

TEST(PredicatesEvaluatorCache, AnotherPointObjectIsAnotherKey)
{
    const auto plane = Own(new PlaneStub({1, 0, 0, -1}));
    const OwnedPoint point = MakePoint(2, 0, 0);
    const OwnedPoint equal = MakePoint(2, 0, 0);
    Cache cache;
    EXPECT_EQ(cache.IsPointInFrontOfPlane(*plane, *point), ZULMRSExtendedTrue);
    const std::size_t nbLooks = plane->m_Calls.size();
    EXPECT_EQ(cache.IsPointInFrontOfPlane(*plane, *equal), ZULMRSExtendedTrue);
    EXPECT_EQ(plane->m_Calls.size(), 2 * nbLooks);
    EXPECT_EQ(cache.IsPointInFrontOfPlane(*plane, *point), ZULMRSExtendedTrue);
    EXPECT_EQ(cache.IsPointInFrontOfPlane(*plane, *equal), ZULMRSExtendedTrue);
    EXPECT_EQ(plane->m_Calls.size(), 2 * nbLooks);
}

TEST(PredicatesEvaluatorCache, AnotherPlaneObjectIsAnotherKey)
{
    const auto plane = Own(new PlaneStub({1, 0, 0, -1}));
    const auto equal = Own(new PlaneStub({1, 0, 0, -1}));
    const OwnedPoint point = MakePoint(2, 0, 0);
    Cache cache;
    cache.IsPointInFrontOfPlane(*plane, *point);
    EXPECT_TRUE(equal->m_Calls.empty());
    EXPECT_EQ(cache.IsPointInFrontOfPlane(*equal, *point), ZULMRSExtendedTrue);
    EXPECT_FALSE(equal->m_Calls.empty());
}

TEST(PredicatesEvaluatorCache, HoldsNoReferences)
{
    const Scene scene(1);
    Cache cache;
    scene.AskAll(cache);
    EXPECT_EQ(scene.m_Planes[0]->GetRefCount(), 0);
    EXPECT_EQ(scene.m_Point->GetRefCount(), 0);
}

TEST(PredicatesEvaluatorCache, AnAnswerStaysUntilClear)
{
    const Scene scene(1);
    PlaneStub& plane = *scene.m_Planes[0];
    Cache cache;
    EXPECT_EQ(cache.IsPointInFrontOfPlane(plane, *scene.m_Point), ZULMRSExtendedTrue);
    plane.m_Equation[3] = -3.0;
    EXPECT_EQ(cache.IsPointInFrontOfPlane(plane, *scene.m_Point), ZULMRSExtendedTrue);
    cache.clear();
    EXPECT_EQ(cache.IsPointInFrontOfPlane(plane, *scene.m_Point), ZULMRSExtendedFalse);
}

TEST(PredicatesEvaluatorCache, ClearForgetsEverything)
{
    const Scene scene(100);
    Cache cache;
    cache.clear();
    scene.AskAll(cache);
    const std::size_t nbLooks = scene.GetNbLooks();
    cache.clear();
    EXPECT_TRUE(scene.AskAll(cache));
    EXPECT_EQ(scene.GetNbLooks(), 2 * nbLooks);
    cache.clear();
    EXPECT_TRUE(scene.KnowsNothing(cache));
}

TEST(PredicatesEvaluatorCache, EqualityIsAskedEveryTime)
{
    const std::vector<Owner<PlaneStub>> planes = [] {
        std::vector<Owner<PlaneStub>> result;
        result.push_back(Own(new PlaneStub({1, 0, 0, -1})));
        result.push_back(Own(new PlaneStub({0, 1, 0, -2})));
        result.push_back(Own(new PlaneStub({0, 0, 1, -3})));
        return result;
    }();
    bool isValid = false;
    const OwnedPoint point(
        ZULMRSBSPPointNS::CreatePoint(planes[0].get(), planes[1].get(), planes[2].get(), isValid, false));
    ASSERT_TRUE(isValid);
    const OwnedPoint same = MakePoint(1, 2, 3);
    const OwnedPoint other = MakePoint(1, 2, 4);
    Cache cache;
    std::size_t nbLooks = 0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(cache.ArePointsEqual(*same, *point), ZULMRSExtendedTrue);
        EXPECT_EQ(cache.ArePointsEqual(*point, *other), ZULMRSExtendedFalse);
        const std::size_t before = std::exchange(nbLooks, planes[2]->m_Calls.size());
        EXPECT_GT(nbLooks, before);
    }
}

TEST(PredicatesEvaluatorCache, ACopyAnswersByItself)
{
    const Scene scene(100);
    const Scene later(10);
    Cache cache;
    scene.AskAll(cache);
    Cache copy(cache);
    EXPECT_TRUE(scene.AnswersWithoutLooking(copy));
    // What either learns or forgets afterwards is its own.
    later.AskAll(copy);
    EXPECT_TRUE(later.KnowsNothing(cache));
    cache.clear();
    EXPECT_TRUE(scene.AnswersWithoutLooking(copy));
    Cache second(copy);
    copy.clear();
    EXPECT_TRUE(scene.AnswersWithoutLooking(second));
    EXPECT_TRUE(later.AnswersWithoutLooking(second));
}

TEST(PredicatesEvaluatorCache, ACopyOutlivesItsSource)
{
    const Scene scene(20);
    auto cache = std::make_unique<Cache>();
    scene.AskAll(*cache);
    Cache copy(*cache);
    Cache assigned;
    assigned = *cache;
    cache.reset();
    EXPECT_TRUE(scene.AnswersWithoutLooking(copy));
    EXPECT_TRUE(scene.AnswersWithoutLooking(assigned));
}

TEST(PredicatesEvaluatorCache, AssignmentReplacesWhatWasKnown)
{
    const Scene scene(50);
    const Scene former(60);
    Cache cache;
    scene.AskAll(cache);
    Cache target;
    former.AskAll(target);
    Cache& result = (target = cache);
    EXPECT_EQ(&result, &target);
    EXPECT_TRUE(scene.AnswersWithoutLooking(target));
    EXPECT_TRUE(former.KnowsNothing(target));
    EXPECT_TRUE(scene.AnswersWithoutLooking(cache));
    target = Cache();
    EXPECT_TRUE(scene.KnowsNothing(target));
}

TEST(PredicatesEvaluatorCache, SelfAssignmentKeepsTheAnswers)
{
    const Scene scene(30);
    Cache cache;
    scene.AskAll(cache);
    const Cache& self = cache;
    cache = self;
    EXPECT_TRUE(scene.AnswersWithoutLooking(cache));
}

TEST(PredicatesEvaluatorCache, KeysHashAsPointThenPlane)
{
    const auto* const plane = reinterpret_cast<const ZULMRSBSPPlane*>(std::uintptr_t{0x1000});
    const auto* const point = reinterpret_cast<const ZULMRSBSPPoint*>(std::uintptr_t{0x7f0123456780});
    EXPECT_EQ(ZULMRSBSPHash::OfPointer(plane), 0x53a03f8d0add0c15ULL);
    EXPECT_EQ(ZULMRSBSPHash::OfPointer(point), 0xc2e85496fb673288ULL);
    EXPECT_EQ(ZULMRSBSPHash::OfPointers(point, plane), 0x91486b1bf1ba3e9dULL);
}

TEST(PredicatesEvaluatorCache, AnEntryWithoutAnswerIsComputed)
{
    const auto plane = Own(new ThrowingPlane({1, 0, 0, -1}));
    const OwnedPoint point = MakePoint(2, 0, 0);
    Cache cache;
    EXPECT_THROW(cache.IsPointInFrontOfPlane(*plane, *point), std::runtime_error);
    EXPECT_THROW(cache.IsPointInFrontOfPlane(*plane, *point), std::runtime_error);
    Cache copy(cache);
    plane->m_IsThrowing = false;
    for (Cache* asked : {&cache, &copy}) {
        EXPECT_TRUE(plane->m_Calls.empty());
        EXPECT_EQ(asked->IsPointInFrontOfPlane(*plane, *point), ZULMRSExtendedTrue);
        EXPECT_FALSE(plane->m_Calls.empty());
        plane->m_Calls.clear();
        EXPECT_EQ(asked->IsPointInFrontOfPlane(*plane, *point), ZULMRSExtendedTrue);
    }
}

TEST(PredicatesEvaluatorCache, NobodyWaitsForAnAnswer)
{
    const auto plane = Own(new BlockingQuestion({1, 0, 0, -1}));
    const OwnedPoint point = MakePoint(2, 0, 0);
    Cache cache;
    ZULMRSExtendedBool first = ZULMRSExtendedUndetermined;
    std::thread maker([&] { first = cache.IsPointInFrontOfPlane(*plane, *point); });
    plane->AwaitMaker();
    // The entry stands there without an answer, and its maker does not go on before this one is given.
    EXPECT_EQ(cache.IsPointInFrontOfPlane(*plane, *point), ZULMRSExtendedTrue);
    EXPECT_EQ(cache.IsPointInFrontOfPlane(*plane, *point), ZULMRSExtendedTrue);
    const int nbLooks = plane->GetNbMakings();
    plane->GoOn();
    maker.join();
    EXPECT_EQ(first, ZULMRSExtendedTrue);
    const int nbAllLooks = plane->GetNbMakings();
    EXPECT_GT(nbLooks, 1);
    EXPECT_EQ(cache.IsPointInFrontOfPlane(*plane, *point), ZULMRSExtendedTrue);
    EXPECT_EQ(plane->GetNbMakings(), nbAllLooks);
}

/// Planes and points of every kind, among them points on the planes, and the answers without a cache.
struct Crowd {
    Crowd()
    {
        ZULTest::Random random(20260711);
        const auto number = [&random] { return static_cast<double>(random.Integer(-9, 9)); };
        while (m_Planes.size() < 64) {
            const double a = number();
            const double b = number();
            const double c = number();
            if (m_Planes.size() % 4 == 0) {
                const double s = number();
                m_Planes.emplace_back(ZULMRSBSPPlaneNS::Create3PointsPlane(
                    ZULMathPoint(a, b, c), ZULMathPoint(s, a, 1), ZULMathPoint(c, s, b + 1)));
            } else if (a != 0.0 || b != 0.0 || c != 0.0) {
                m_Planes.push_back(MakePlane(a, b, c, number()));
            }
        }
        while (m_Points.size() < 64) {
            if (m_Points.size() % 2 == 0) {
                const double x = number();
                const double y = number();
                m_Points.push_back(MakePoint(x, y, number()));
            } else {
                AddMeetingPoint(random);
            }
        }
        for (const OwnedPlane& plane : m_Planes) {
            for (const OwnedPoint& point : m_Points) {
                m_Answers.push_back(ZULMRSBSPPredicates::IsPointInFrontOfPlane(*plane, *point));
            }
        }
    }

    void AddMeetingPoint(ZULTest::Random& random)
    {
        std::array<ZULMRSBSPPlane*, 3> planes{};
        for (ZULMRSBSPPlane*& plane : planes) {
            plane = m_Planes[static_cast<std::size_t>(random.Integer(0, 63))].get();
        }
        if (ZULMRSBSPPredicates::SignOf3PlanesDeterminant(*planes[0], *planes[1], *planes[2]) != 0) {
            bool isValid = false;
            m_Points.emplace_back(
                ZULMRSBSPPointNS::CreatePoint(planes[0], planes[1], planes[2], isValid, false));
        }
    }
    std::size_t CountWrong(Cache& cache, std::size_t start, std::size_t stride) const
    {
        std::size_t nbWrong = 0;
        std::size_t pair = start;
        for (std::size_t i = 0; i < m_Answers.size(); ++i) {
            pair = (pair + stride) % m_Answers.size();
            const ZULMRSBSPPlane& plane = *m_Planes[pair / m_Points.size()];
            const ZULMRSBSPPoint& point = *m_Points[pair % m_Points.size()];
            nbWrong += cache.IsPointInFrontOfPlane(plane, point) == m_Answers[pair] ? 0U : 1U;
        }
        return nbWrong;
    }

    std::vector<OwnedPlane> m_Planes;
    std::vector<OwnedPoint> m_Points;
    std::vector<ZULMRSExtendedBool> m_Answers;
};

TEST(PredicatesEvaluatorCache, SixteenThreadsFillOneCache)
{
    constexpr std::size_t nbThreads = 16;
    const Crowd crowd;
    ASSERT_EQ(crowd.m_Answers.size(), 4096U);
    for (const int answer : {-1, 0, 1}) {
        EXPECT_GT(std::count(crowd.m_Answers.begin(), crowd.m_Answers.end(),
                             static_cast<ZULMRSExtendedBool>(answer)),
                  50);
    }
    Cache cache;
    std::atomic<std::size_t> nbArrived{0};
    std::atomic<std::size_t> nbWrong{0};
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < nbThreads; ++thread) {
        threads.emplace_back([&, thread] {
            nbArrived.fetch_add(1);
            while (nbArrived.load() != nbThreads) {
                std::this_thread::yield();
            }
            // Half of them go the same way, the others each their own; an odd stride meets every pair.
            const std::size_t stride = thread % 2 == 0 ? 1 : 2 * thread + 1;
            nbWrong.fetch_add(crowd.CountWrong(cache, 0, stride));
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(nbWrong.load(), 0U);
    Cache copy(cache);
    EXPECT_EQ(crowd.CountWrong(cache, 0, 1), 0U);
    EXPECT_EQ(crowd.CountWrong(copy, 0, 1), 0U);
}

//---------------------------------------------------------------- exhausted memory

/// Runs with so few allocations that the function throws, with one more each time until it does not; tells
/// the test after each failure. Returns how often it threw.
int FailAtEveryAllocation(const std::function<void()>& function, const std::function<void()>& afterFailure)
{
    constexpr int most = 10000;
    for (int nbGranted = 0; nbGranted < most; ++nbGranted) {
        try {
            t_TableAllocationsToGrant = nbGranted;
            function();
            t_TableAllocationsToGrant = -1;
            return nbGranted;
        } catch (const std::bad_alloc&) {
            t_TableAllocationsToGrant = -1;
            afterFailure();
        }
    }
    return most;
}

TEST(PredicatesEvaluatorCache, ACopyWithoutMemoryThrowsAndLeavesTheSource)
{
    const Scene scene(20);
    Cache cache;
    scene.AskAll(cache);
    const int nbFailures = FailAtEveryAllocation([&cache] { const Cache copy(cache); },
                                                 [&] { EXPECT_TRUE(scene.AnswersWithoutLooking(cache)); });
    EXPECT_GE(nbFailures, 20);
}

TEST(PredicatesEvaluatorCache, AnAssignmentWithoutMemoryLeavesTheTargetEmpty)
{
    const Scene scene(20);
    const Scene former(10);
    Cache cache;
    scene.AskAll(cache);
    Cache target;
    former.AskAll(target);
    const int nbFailures = FailAtEveryAllocation([&] { target = cache; },
                                                 [&] {
                                                     EXPECT_TRUE(former.KnowsNothing(target));
                                                     EXPECT_TRUE(scene.KnowsNothing(target));
                                                     EXPECT_TRUE(scene.AnswersWithoutLooking(cache));
                                                     EXPECT_TRUE(former.AskAll(target));
                                                     EXPECT_TRUE(former.AnswersWithoutLooking(target));
                                                 });
    EXPECT_GE(nbFailures, 20);
    EXPECT_TRUE(scene.AnswersWithoutLooking(target));
}

TEST(PredicatesEvaluatorCache, AQuestionWithoutMemoryLeavesTheCacheAsItWas)
{
    const Scene known(20);
    const Scene asked(1);
    Cache cache;
    known.AskAll(cache);
    const int nbFailures = FailAtEveryAllocation([&] { asked.AskAll(cache); },
                                                 [&] {
                                                     EXPECT_EQ(asked.GetNbLooks(), 0U);
                                                     EXPECT_TRUE(known.AnswersWithoutLooking(cache));
                                                     EXPECT_TRUE(asked.m_Planes[0]->m_Calls.empty());
                                                 });
    EXPECT_GE(nbFailures, 1);
    EXPECT_TRUE(asked.AnswersWithoutLooking(cache));
    EXPECT_TRUE(known.AnswersWithoutLooking(cache));
}
TEST(PredicatesEvaluatorCache, ClearNeedsNoMemory)
{
    const Scene scene(40);
    Cache cache;
    scene.AskAll(cache);
    t_TableAllocationsToGrant = 0;
    cache.clear();
    cache.clear();
    t_TableAllocationsToGrant = -1;
    EXPECT_TRUE(scene.KnowsNothing(cache));
    EXPECT_TRUE(scene.AskAll(cache));
    EXPECT_TRUE(scene.AnswersWithoutLooking(cache));
}
}  // namespace
