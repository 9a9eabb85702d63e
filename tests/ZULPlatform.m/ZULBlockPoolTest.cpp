#include "ZULBlockPool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <random>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "ZULPooledObject.h"

namespace
{
std::atomic<long> g_NbRegions{0};
std::atomic<bool> g_IsExhausted{false};
}  // namespace

// Regions of 1 MB are the only memory that the pool asks for in this way.
__attribute__((noinline)) void* operator new(std::size_t size, std::align_val_t alignment,
                                             const std::nothrow_t&) noexcept
{
    if (g_IsExhausted.load()) {
        return nullptr;
    }
    g_NbRegions.fetch_add(1);
    return std::aligned_alloc(static_cast<std::size_t>(alignment), size);
}
__attribute__((noinline)) void* operator new(std::size_t size, std::align_val_t alignment)
{
    void* const block = operator new(size, alignment, std::nothrow);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
__attribute__((noinline)) void operator delete(void* block, std::align_val_t) noexcept
{
    std::free(block);
}
__attribute__((noinline)) void operator delete(void* block, std::size_t, std::align_val_t) noexcept
{
    std::free(block);
}
__attribute__((noinline)) void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept
{
    std::free(block);
}

namespace
{
constexpr std::size_t Largest = ZULBlockPool::LargestSize;

// Where a sanitizer watches the heap, blocks come from there.
#if !defined(__has_feature)
#define __has_feature(feature) 0
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || __has_feature(address_sanitizer) || \
    __has_feature(thread_sanitizer)
#define ZUL_IS_SANITIZED 1
#else
#define ZUL_IS_SANITIZED 0
#endif
constexpr bool IsSanitized = ZUL_IS_SANITIZED != 0;

/// A block whose bytes tell whether somebody else has written to it.
class MarkedBlock
{
public:
    MarkedBlock(std::size_t size, unsigned int mark)
        : m_Block(ZULBlockPool::Allocate(size)), m_Size(size), m_Mark(static_cast<unsigned char>(mark))
    {
        if (m_Block != nullptr) {
            std::memset(m_Block, m_Mark, m_Size);
        }
    }
    bool IsIntact() const
    {
        const auto* bytes = static_cast<const unsigned char*>(m_Block);
        for (std::size_t i = 0; i < m_Size; ++i) {
            if (bytes[i] != m_Mark) {
                return false;
            }
        }
        return m_Block != nullptr;
    }
    void Free() const { ZULBlockPool::Free(m_Block, m_Size); }
    void* Get() const { return m_Block; }

private:
    void* m_Block;
    std::size_t m_Size;
    unsigned char m_Mark;
};

TEST(ZULBlockPool, BlocksAreAlignedAndDoNotOverlap)
{
    std::vector<MarkedBlock> blocks;
    for (std::size_t size = 0; size <= Largest + 40; ++size) {
        for (unsigned int i = 0; i < 20; ++i) {
            blocks.emplace_back(size, static_cast<unsigned int>(size) + i);
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(blocks.back().Get()) % ZULBlockPool::Granularity, 0U);
        }
    }
    for (const MarkedBlock& block : blocks) {
        ASSERT_TRUE(block.IsIntact());
        block.Free();
    }
}

#if !ZUL_IS_SANITIZED
TEST(ZULBlockPool, ABlockGivenBackIsTheNextOfItsSize)
{
    void* const first = ZULBlockPool::Allocate(100);
    void* const second = ZULBlockPool::Allocate(100);
    ZULBlockPool::Free(first, 100);
    EXPECT_EQ(ZULBlockPool::Allocate(97), first);
    ZULBlockPool::Free(first, 97);
    ZULBlockPool::Free(second, 100);
}
#endif

TEST(ZULBlockPool, NullIsIgnored)
{
    ZULBlockPool::Free(nullptr, 100);
    ZULBlockPool::Free(nullptr, 0);
    ZULBlockPool::FreeOfUnknownSize(nullptr);
}

TEST(ZULBlockPool, GreaterBlocksAreThoseOfTheGlobalHeap)
{
    const long before = g_NbRegions.load();
    std::vector<void*> blocks;
    for (int i = 0; i < 1000; ++i) {
        blocks.push_back(ZULBlockPool::Allocate(Largest + 1));
    }
    EXPECT_EQ(g_NbRegions.load(), before);
    ::operator delete(blocks.back());
    blocks.pop_back();
    for (void* block : blocks) {
        ZULBlockPool::Free(block, Largest + 1);
    }
}

TEST(ZULBlockPool, ADestructorThatKnowsNoSizeGivesTheBlockBack)
{
    for (const std::size_t size : {std::size_t{0}, std::size_t{48}, Largest, Largest + 1}) {
        void* const block = ZULBlockPool::Allocate(size);
        ZULBlockPool::FreeOfUnknownSize(block);
        if (!IsSanitized && size != 0 && size <= Largest) {
            void* const again = ZULBlockPool::Allocate(size);
            EXPECT_EQ(again, block);
            ZULBlockPool::Free(again, size);
        }
    }
}

/// Allocates many blocks and gives all of them back.
void UseManyBlocks(std::size_t size, int nbBlocks)
{
    std::vector<MarkedBlock> blocks;
    for (int i = 0; i < nbBlocks; ++i) {
        blocks.emplace_back(size, static_cast<unsigned int>(i));
    }
    for (const MarkedBlock& block : blocks) {
        EXPECT_TRUE(block.IsIntact());
        block.Free();
    }
}

TEST(ZULBlockPool, AThreadThatEndsLeavesItsBlocksToOthers)
{
    constexpr std::size_t size = 208;
    constexpr int nbBlocks = 2000;
    std::thread(UseManyBlocks, size, nbBlocks).join();
    const long before = g_NbRegions.load();
    for (int i = 0; i < 50; ++i) {
        std::thread(UseManyBlocks, size, nbBlocks).join();
    }
    EXPECT_EQ(g_NbRegions.load(), before);
}

TEST(ZULBlockPool, OneThreadAllocatesAndAnotherFreesWithoutGrowth)
{
    constexpr std::size_t size = 240;
    constexpr int nbRounds = 300;
    long afterTheFirst = 0;
    std::vector<void*> blocks(500);
    std::atomic<int> turn{0};
    std::thread consumer([&] {
        for (int round = 0; round < nbRounds; ++round) {
            while (turn.load() != 2 * round + 1) {
                std::this_thread::yield();
            }
            for (void* block : blocks) {
                ZULBlockPool::Free(block, size);
            }
            turn.fetch_add(1);
        }
    });
    for (int round = 0; round < nbRounds; ++round) {
        for (void*& block : blocks) {
            block = ZULBlockPool::Allocate(size);
        }
        turn.fetch_add(1);
        while (turn.load() != 2 * round + 2) {
            std::this_thread::yield();
        }
        if (round == 1) {
            afterTheFirst = g_NbRegions.load();
        }
    }
    consumer.join();
    // What the threads keep of it may have taken one more.
    EXPECT_LE(g_NbRegions.load(), afterTheFirst + 1);
}

#if !ZUL_IS_SANITIZED
TEST(ZULBlockPool, BlocksThatCameBackInAnyOrderAreTakenInTheOrderOfTheirAddresses)
{
    constexpr std::size_t size = 144;
    constexpr std::size_t nbBlocks = 20'000;
    std::vector<void*> blocks(nbBlocks);
    for (void*& block : blocks) {
        block = ZULBlockPool::Allocate(size);
    }
    std::shuffle(blocks.begin(), blocks.end(), std::mt19937(64'001));
    for (void* block : blocks) {
        ZULBlockPool::Free(block, size);
    }
    std::size_t nbNeighbours = 0;
    const char* last = nullptr;
    for (void*& block : blocks) {
        block = ZULBlockPool::Allocate(size);
        nbNeighbours += last != nullptr && block == last + size ? 1 : 0;
        last = static_cast<const char*>(block);
    }
    // The first ones are those that the thread has kept.
    EXPECT_GT(nbNeighbours, nbBlocks * 9 / 10);
    const std::set<void*> distinct(blocks.begin(), blocks.end());
    EXPECT_EQ(distinct.size(), nbBlocks);
    for (void* block : blocks) {
        ZULBlockPool::Free(block, size);
    }
}
#endif

TEST(ZULBlockPool, ManyThreadsExchangeBlocks)
{
    constexpr int nbThreads = 4;
    std::mutex mutex;
    std::vector<MarkedBlock> shared;
    std::atomic<int> nbBroken{0};
    const auto work = [&](unsigned int seed) {
        for (unsigned int i = 0; i < 5000; ++i) {
            const MarkedBlock mine((seed * 7919 + i * 131) % 300 + 1, seed + i);
            const std::lock_guard lock(mutex);
            shared.push_back(mine);
            if (shared.size() > 200) {
                const MarkedBlock other = shared[(seed + i) % 200];
                nbBroken.fetch_add(other.IsIntact() ? 0 : 1);
                shared[(seed + i) % 200] = shared.back();
                shared.pop_back();
                other.Free();
            }
        }
    };
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < nbThreads; ++i) {
        threads.emplace_back(work, i);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::set<void*> distinct;
    for (const MarkedBlock& block : shared) {
        nbBroken.fetch_add(block.IsIntact() ? 0 : 1);
        distinct.insert(block.Get());
        block.Free();
    }
    EXPECT_EQ(nbBroken.load(), 0);
    EXPECT_EQ(distinct.size(), shared.size());
}

#if !ZUL_IS_SANITIZED
TEST(ZULBlockPool, ExhaustedMemoryGivesNullAndHarmsNothing)
{
    constexpr std::size_t size = 336;
    std::vector<MarkedBlock> blocks;
    g_IsExhausted = true;
    for (;;) {
        const MarkedBlock block(size, static_cast<unsigned int>(blocks.size()));
        if (block.Get() == nullptr) {
            break;
        }
        blocks.push_back(block);
    }
    g_IsExhausted = false;
    blocks.emplace_back(size, 1U);
    for (const MarkedBlock& block : blocks) {
        EXPECT_TRUE(block.IsIntact());
        block.Free();
    }
}
#endif

TEST(ZULBlockPool, CannotTurnToTheGlobalHeapOnceInUse)
{
    void* const block = ZULBlockPool::Allocate(32);
    EXPECT_EQ(ZULBlockPool::UseGlobalHeap(), IsSanitized);
    ZULBlockPool::Free(block, 32);
}

//---------------------------------------------------------------- late use

/// Uses the pool when it is destroyed.
class LateUser
{
public:
    LateUser() = default;
    LateUser(const LateUser&) = delete;
    LateUser& operator=(const LateUser&) = delete;
    ~LateUser()
    {
        for (std::size_t i = 0; i < 100; ++i) {
            m_Blocks.emplace_back(176, static_cast<unsigned int>(i));
        }
        for (const MarkedBlock& block : m_Blocks) {
            if (!block.IsIntact()) {
                std::abort();
            }
            block.Free();
        }
    }
    std::vector<MarkedBlock> m_Blocks;
};
LateUser g_LateUser;

TEST(ZULBlockPool, WorksWhileAThreadAndTheProcessEnd)
{
    // Both are destroyed after the lists of their threads, which are made later.
    const auto useLate = [] {
        static thread_local LateUser late;
        late.m_Blocks.emplace_back(176, 1U);
        late.m_Blocks.emplace_back(176, 2U);
    };
    std::thread(useLate).join();
    const long before = g_NbRegions.load();
    for (int i = 0; i < 200; ++i) {
        std::thread(useLate).join();
    }
    EXPECT_EQ(g_NbRegions.load(), before);
    g_LateUser.m_Blocks.emplace_back(176, 3U);
}

//---------------------------------------------------------------- objects

/// Throws when it is told to.
class Pooled : public ZULPooledObject
{
public:
    explicit Pooled(bool isThrowing)
    {
        if (isThrowing) {
            throw std::runtime_error("as told");
        }
    }
    Pooled(const Pooled&) = delete;
    Pooled& operator=(const Pooled&) = delete;
    virtual ~Pooled() = default;

    std::array<char, 100> m_Bytes{};
};
class LargerPooled : public Pooled
{
public:
    using Pooled::Pooled;

    std::array<char, 100> m_MoreBytes{};
};
class alignas(128) AlignedPooled : public Pooled
{
public:
    using Pooled::Pooled;
};

TEST(ZULPooledObject, AddsNothingToAnObject)
{
    struct Plain {
        int m_Number = 0;
    };
    struct PooledPlain : ZULPooledObject {
        int m_Number = 0;
    };
    EXPECT_EQ(sizeof(PooledPlain), sizeof(Plain));
}

TEST(ZULPooledObject, ObjectsOfDerivedClassesGoBackWithTheirOwnSize)
{
    Pooled* const first = new LargerPooled(false);
    delete first;
    void* const block = ZULBlockPool::Allocate(sizeof(LargerPooled));
    EXPECT_TRUE(IsSanitized || block == first);
    ZULBlockPool::Free(block, sizeof(LargerPooled));
}

TEST(ZULPooledObject, AConstructorThatThrowsLosesNoMemory)
{
    EXPECT_THROW(delete new Pooled(true), std::runtime_error);
    EXPECT_THROW(delete new (std::nothrow) Pooled(true), std::runtime_error);
    const long before = g_NbRegions.load();
    for (int i = 0; i < 20'000; ++i) {
        EXPECT_THROW(delete new Pooled(true), std::runtime_error);
        EXPECT_THROW(delete new (std::nothrow) Pooled(true), std::runtime_error);
    }
    EXPECT_EQ(g_NbRegions.load(), before);
}

TEST(ZULPooledObject, AnObjectMayLieInTheCallersMemory)
{
    alignas(Pooled) std::array<unsigned char, sizeof(Pooled)> memory;
    Pooled* const object = new (memory.data()) Pooled(false);
    EXPECT_EQ(static_cast<void*>(object), memory.data());
    object->~Pooled();
    EXPECT_THROW(new (memory.data()) Pooled(true), std::runtime_error);
}

TEST(ZULPooledObject, MoreAlignmentIsHonoured)
{
    std::vector<Pooled*> objects;
    for (int i = 0; i < 20; ++i) {
        objects.push_back(new AlignedPooled(false));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(objects.back()) % 128, 0U);
        objects.push_back(new (std::nothrow) AlignedPooled(false));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(objects.back()) % 128, 0U);
    }
    EXPECT_THROW(new AlignedPooled(true), std::runtime_error);
    EXPECT_THROW(new (std::nothrow) AlignedPooled(true), std::runtime_error);
    for (Pooled* object : objects) {
        delete object;
    }
}

#if !ZUL_IS_SANITIZED
TEST(ZULPooledObject, ExhaustedMemoryThrowsOrGivesNull)
{
    struct Rare : ZULPooledObject {
        std::array<char, 490> m_Bytes{};
    };
    std::vector<Rare*> objects;
    g_IsExhausted = true;
    Rare* object = nullptr;
    while ((object = new (std::nothrow) Rare) != nullptr) {
        objects.push_back(object);
    }
    EXPECT_THROW(delete new Rare, std::bad_alloc);
    g_IsExhausted = false;
    for (Rare* each : objects) {
        delete each;
    }
}
#endif
}  // namespace
