#include "ZULMRSBSPHeldPlanes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <set>
#include <thread>
#include <vector>

#include "ZULTestAllocation.h"
#include "ZULTestSupport.h"

namespace
{
/// Any hash for any plane: the planes are told by their last coefficient.
class Key
{
public:
    Key(std::size_t hash, double number) : m_Hash(hash), m_Number(number) {}
    std::size_t GetHash() const { return m_Hash; }
    bool IsSame(const ZULMRSBSPCartesianPlane& plane) const { return plane.GetDouble(3) == m_Number; }

private:
    std::size_t m_Hash;
    double m_Number;
};

/// Planes by their numbers, each with a reference of the test's.
class Planes
{
public:
    explicit Planes(std::size_t nbHashes) : m_NbHashes(nbHashes) {}
    ~Planes()
    {
        m_Held.ForEach([](ZULMRSBSPPlane* plane) { plane->Release(); });
    }
    Planes(const Planes&) = delete;
    Planes& operator=(const Planes&) = delete;

    Key KeyOf(int number) const
    {
        return {static_cast<std::size_t>(number) % m_NbHashes, static_cast<double>(number)};
    }
    ZULMRSBSPCartesianPlane* Find(int number) const { return m_Held.Find(KeyOf(number)).m_Plane; }
    void Add(int number)
    {
        const Key key = KeyOf(number);
        ZULMRSBSPHeldPlanes::Place place = m_Held.Find(key);
        ASSERT_EQ(place.m_Plane, nullptr);
        ASSERT_TRUE(m_Held.Reserve());
        auto* const plane = new ZULMRSBSPCartesianPlane({1.0, 0.0, 0.0, static_cast<double>(number)});
        m_Held.Add(plane, key.GetHash(), place);
    }
    std::multiset<int> GetNumbers() const
    {
        std::multiset<int> numbers;
        m_Held.ForEach([&](ZULMRSBSPPlane* plane) { numbers.insert(static_cast<int>(plane->GetDouble(3))); });
        return numbers;
    }
    void ExpectJust(const std::set<int>& numbers, int end) const
    {
        EXPECT_EQ(m_Held.GetSize(), numbers.size());
        EXPECT_EQ(GetNumbers(), std::multiset<int>(numbers.begin(), numbers.end()));
        for (int number = 0; number < end; ++number) {
            const ZULMRSBSPCartesianPlane* const plane = Find(number);
            ASSERT_EQ(plane != nullptr, numbers.count(number) == 1) << number;
            ASSERT_TRUE(plane == nullptr || plane->GetDouble(3) == static_cast<double>(number));
        }
    }

    ZULMRSBSPHeldPlanes m_Held;

private:
    std::size_t m_NbHashes;
};
}  // namespace

TEST(ZULMRSBSPHeldPlanes, FindsWhatWasAddedHoweverTheHashesMeet)
{
    for (const std::size_t nbHashes : {std::size_t{1}, std::size_t{7}, std::size_t{100000}}) {
        Planes planes(nbHashes);
        planes.ExpectJust({}, 10);
        std::set<int> numbers;
        for (int number = 0; number < 300; ++number) {
            planes.Add(number);
            numbers.insert(number);
            ASSERT_NE(planes.Find(number), nullptr);
        }
        planes.ExpectJust(numbers, 400);
    }
}

TEST(ZULMRSBSPHeldPlanes, WhatIsLeftIsFoundAfterAnyRemoval)
{
    for (const std::size_t nbHashes :
         {std::size_t{1}, std::size_t{3}, std::size_t{40}, std::size_t{100000}}) {
        for (int step = 1; step < 12; ++step) {
            Planes planes(nbHashes);
            std::set<int> numbers;
            for (int number = 0; number < 80; ++number) {
                planes.Add(number);
                numbers.insert(number);
            }
            // All but every so many, then all.
            for (const int kept : {step, 1000}) {
                int nbRemoved = 0;
                planes.m_Held.RemoveIf(
                    [&](const ZULMRSBSPPlane& plane) {
                        return static_cast<int>(plane.GetDouble(3)) % kept != kept - 1;
                    },
                    [&](ZULMRSBSPPlane* plane) {
                        const int number = static_cast<int>(plane->GetDouble(3));
                        EXPECT_EQ(planes.Find(number), nullptr);
                        EXPECT_EQ(numbers.erase(number), 1U);
                        plane->Release();
                        ++nbRemoved;
                    });
                planes.ExpectJust(numbers, 80);
                EXPECT_EQ(nbRemoved == 0, kept == 1 || (kept == 1000 && step > 80));
            }
        }
    }
}

TEST(ZULMRSBSPHeldPlanes, APlaceFoundInVainSeesWhatWasAddedSince)
{
    Planes planes(2);
    const Key key = planes.KeyOf(6);
    ZULMRSBSPHeldPlanes::Place early = planes.m_Held.Find(key);
    planes.Add(0);
    ZULMRSBSPHeldPlanes::Place late = planes.m_Held.Find(key);
    planes.Add(6);
    planes.m_Held.FindSince(key, early);
    EXPECT_EQ(early.m_Plane, planes.Find(6));
    planes.m_Held.FindSince(key, late);
    EXPECT_EQ(late.m_Plane, planes.Find(6));
    // The table has grown meanwhile.
    const Key other = planes.KeyOf(200);
    ZULMRSBSPHeldPlanes::Place old = planes.m_Held.Find(other);
    for (int number = 100; number <= 200; ++number) {
        planes.Add(number);
    }
    planes.m_Held.FindSince(other, old);
    EXPECT_EQ(old.m_Plane, planes.Find(200));
}

TEST(ZULMRSBSPHeldPlanes, WithoutMemoryThereIsNoRoomAndNothingIsLost)
{
    Planes planes(5);
    const ZULMRSBSPHeldPlanes::Place none = planes.m_Held.Find(planes.KeyOf(1));
    EXPECT_EQ(none.m_Plane, nullptr);
    for (int nbBefore = 0; nbBefore < 2; ++nbBefore) {
        const ZULTest::AllocationFailure failure(1, nbBefore);
        EXPECT_FALSE(planes.m_Held.Reserve());
    }
    std::set<int> numbers;
    for (int number = 0; number < 50; ++number) {
        {
            const ZULTest::AllocationFailure failure(1);
            if (!planes.m_Held.Reserve()) {
                planes.ExpectJust(numbers, 50);
            }
        }
        planes.Add(number);
        numbers.insert(number);
    }
    planes.ExpectJust(numbers, 60);
}

TEST(ZULMRSBSPHeldPlanes, MayBeLookedThroughWhilePlanesAreAdded)
{
    constexpr int nbPlanes = 3000;
    Planes planes(nbPlanes / 3);
    std::atomic<int> nbAdded{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&] {
            for (int seen = 0; seen < nbPlanes;) {
                seen = nbAdded.load();
                for (const int number : {seen - 1, seen / 2, seen / 3}) {
                    if (number >= 0 && number < seen) {
                        const ZULMRSBSPCartesianPlane* const plane = planes.Find(number);
                        ASSERT_NE(plane, nullptr);
                        ASSERT_EQ(plane->GetDouble(3), static_cast<double>(number));
                    }
                }
            }
        });
    }
    for (int number = 0; number < nbPlanes; ++number) {
        planes.Add(number);
        nbAdded.store(number + 1);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}
