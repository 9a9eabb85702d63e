#include "ZULCriticalSection.h"

#include <gtest/gtest.h>

#include <chrono>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

TEST(ZULCriticalSection, ReentryByTheOwnerIsAnErrorAndLeavesTheLockHeld)
{
    ZULCriticalSection section;
    section.lock();
    try {
        section.lock();
        FAIL() << "the second lock() returned";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::make_error_code(std::errc::resource_deadlock_would_occur));
    }
    bool gotIt = true;
    std::thread([&] { gotIt = section.try_lock(); }).join();
    EXPECT_FALSE(gotIt);
    section.unlock();
}

TEST(ZULCriticalSection, TryLockFailsForTheOwnerToo)
{
    ZULCriticalSection section;
    ASSERT_TRUE(section.try_lock());
    EXPECT_FALSE(section.try_lock());
    EXPECT_THROW(section.lock(), std::system_error);
    section.unlock();
}

TEST(ZULCriticalSection, IsFreeAgainAfterUnlock)
{
    ZULCriticalSection section;
    for (int round = 0; round < 3; ++round) {
        section.lock();
        section.unlock();
        ASSERT_TRUE(section.try_lock());
        section.unlock();
    }
    bool gotIt = false;
    std::thread([&] {
        gotIt = section.try_lock();
        if (gotIt) {
            section.unlock();
        }
    }).join();
    EXPECT_TRUE(gotIt);
}

TEST(ZULCriticalSection, ExcludesOtherThreads)
{
    ZULCriticalSection section;
    long counter = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20000; ++i) {
                const std::lock_guard guard(section);
                ++counter;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counter, 80000);
}

TEST(ZULCriticalSection, WhoWaitsLongSleepsAndIsWoken)
{
    ZULCriticalSection section;
    int nbServed = 0;
    section.lock();
    std::vector<std::thread> threads;
    for (int t = 0; t < 5; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 3; ++i) {
                const std::lock_guard guard(section);
                ++nbServed;
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
    }
    // Long beyond the time that a waiting thread stays on the processor.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(nbServed, 0);
    section.unlock();
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(nbServed, 15);
    EXPECT_TRUE(section.try_lock());
    section.unlock();
}
