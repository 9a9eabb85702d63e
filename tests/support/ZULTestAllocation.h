#ifndef ZULTestAllocation_h
#define ZULTestAllocation_h

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

#include "ZULBlockPool.h"

/// Replaces the allocation functions of a test program by ones that count blocks and fail on demand. To be
/// included by one source of the program.
namespace ZULTest
{
/// Blocks of the pool are blocks like others.
inline const bool g_IsEveryBlockSeen = ZULBlockPool::UseGlobalHeap();

inline std::atomic<long> g_LiveBlocks{0};
inline thread_local int t_AllocationsToPass = 0;
inline thread_local int t_AllocationsToGrant = 0;
inline thread_local int t_AllocationsToFail = 0;
inline thread_local long t_Allocations = 0;

/// Blocks that are allocated and not freed, in the whole process.
inline long GetLiveBlocks()
{
    return g_LiveBlocks.load();
}
/// Allocations that this thread has asked for.
inline long GetAllocations()
{
    return t_Allocations;
}

/// While alive, the next so many allocations of the thread fail, after some that succeed.
class AllocationFailure
{
public:
    explicit AllocationFailure(int count, int nbBefore = 0)
    {
        t_AllocationsToPass = nbBefore;
        t_AllocationsToFail = count;
    }
    ~AllocationFailure() { t_AllocationsToFail = 0; }
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;
};

inline void* AllocateBlock(std::size_t size) noexcept
{
    ++t_Allocations;
    if (t_AllocationsToFail > 0 && t_AllocationsToPass-- <= 0) {
        --t_AllocationsToFail;
        return nullptr;
    }
    void* block = std::malloc(size != 0 ? size : 1);
    if (block != nullptr) {
        g_LiveBlocks.fetch_add(1);
    }
    return block;
}

inline void FreeBlock(void* block) noexcept
{
    if (block != nullptr) {
        g_LiveBlocks.fetch_sub(1);
        std::free(block);
    }
}
}  // namespace ZULTest

// Not inlined: the compiler knows these functions as pairs and warns where it sees the inside of only one.
#define ZUL_TEST_NOINLINE __attribute__((noinline))

ZUL_TEST_NOINLINE void* operator new(std::size_t size)
{
    void* block = ZULTest::AllocateBlock(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}
ZUL_TEST_NOINLINE void* operator new[](std::size_t size)
{
    return operator new(size);
}
ZUL_TEST_NOINLINE void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return ZULTest::AllocateBlock(size);
}
ZUL_TEST_NOINLINE void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return ZULTest::AllocateBlock(size);
}
ZUL_TEST_NOINLINE void operator delete(void* block) noexcept
{
    ZULTest::FreeBlock(block);
}
ZUL_TEST_NOINLINE void operator delete[](void* block) noexcept
{
    ZULTest::FreeBlock(block);
}
ZUL_TEST_NOINLINE void operator delete(void* block, std::size_t) noexcept
{
    ZULTest::FreeBlock(block);
}
ZUL_TEST_NOINLINE void operator delete[](void* block, std::size_t) noexcept
{
    ZULTest::FreeBlock(block);
}
ZUL_TEST_NOINLINE void operator delete(void* block, const std::nothrow_t&) noexcept
{
    ZULTest::FreeBlock(block);
}
ZUL_TEST_NOINLINE void operator delete[](void* block, const std::nothrow_t&) noexcept
{
    ZULTest::FreeBlock(block);
}

#endif
